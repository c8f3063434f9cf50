// Takes the pictures of a summary page that the README shows:
//
//   node take_screenshots.js PAGE FOLDER
//
// writes FOLDER/summary-light.png and FOLDER/summary-dark.png, down to the end of the
// table of failed reports.

import { join } from "node:path";
import { pathToFileURL } from "node:url";

import { chromium } from "playwright-core";

import { LAUNCH_OPTIONS } from "./chromium.js";

const WIDTH = 1280;
const MARGIN = 22;

async function takePicture(browser, page, colorScheme, picture) {
  const tab = await browser.newPage({ colorScheme, viewport: { width: WIDTH, height: 900 } });
  await tab.goto(pathToFileURL(page).href);
  const bottom = await tab.evaluate(() => {
    const titles = [...document.querySelectorAll(".compare-table-title")];
    const failed = titles.find((title) => title.textContent === "Failed");
    return failed.nextElementSibling.getBoundingClientRect().bottom;
  });
  await tab.screenshot({
    path: picture,
    fullPage: true,
    clip: { x: 0, y: 0, width: WIDTH, height: Math.round(bottom) + MARGIN },
  });
  await tab.close();
}

const [page, folder] = process.argv.slice(2);
const browser = await chromium.launch(LAUNCH_OPTIONS);
try {
  for (const theme of ["light", "dark"]) {
    await takePicture(browser, page, theme, join(folder, `summary-${theme}.png`));
  }
} finally {
  await browser.close();
}
