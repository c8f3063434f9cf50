// The page alone, and the page among the reports.

import assert from "node:assert/strict";
import { copyFileSync } from "node:fs";
import { join } from "node:path";

import { test, withPage } from "./support/browser.js";
import { newFolder, pageOf, summarize, writeTree } from "./support/program.js";
import { analyzed, errored, suite } from "./support/reports.js";


const NAMES = [
  "plain.html",
  "with blanks & ampersands.html",
  "deep/er/and deeper.htm",
  "it's <quoted> \"twice\".html",
  "Café – 潮読み 🔊.HTML",
  "plus+comma,semi;colon=equals.html",
  "dots...and..more.html",
];

const FILES = NAMES.map((name) => [name, analyzed("PASS", { title: `This is ${name.replace(/</g, "&lt;")}` })]);

for (const [where, page] of [
  ["inside the scanned folder", "in/summary.html"],
  ["beside it", "summary.html"],
  ["above it", "../summary.html"],
  ["below it", "in/out/pages/summary.html"],
  ["far away", "../else/where/summary.html"],
  ["in a folder with odd letters", "out & 'about' é/summary.html"],
]) {
  test(`links of a page ${where} open the right reports`, async () => {
    const parent = join(newFolder(), "work");
    writeTree(join(parent, "in"), FILES);
    const path = summarize("in", page, { cwd: parent });
    await withPage(path, {}, async (tab) => {
      assert.equal(await tab.count("tbody a"), NAMES.length);
      const titles = [];
      for (const index of NAMES.keys()) {
        await tab.click("tbody a", { index });
        titles.push(await tab.until(() => document.title !== "Fathomix Summary" && document.title));
        await tab.back();
      }
      assert.deepEqual(titles.sort(), NAMES.map((name) => `This is ${name}`).sort());
    });
  });
}

test("links open by the keyboard, too", async () => {
  const folder = writeTree(newFolder(), FILES);
  await withPage(summarize(folder), {}, async (page) => {
    await page.focus("tbody a", NAMES.length - 1);
    await page.press("Enter");
    await page.until(() => document.title.startsWith("This is "));
  });
});

/** What a reader can see and do on a page, to compare two pages by. */
async function impression(page) {
  const looks = [];
  const look = async () => looks.push((await page.screenshot()).toString("base64"));
  await look();
  await page.click("[data-dt-next]");
  await look();
  await page.click("#themeToggle");
  await page.moveMouse(0, 0);
  await look();
  const texts = await page.evaluate(() => document.body.innerText);
  const values = await page.$$eval("body, body *", (all) =>
    all.map((e) => ["color", "background-color", "font", "width"].map((name) => getComputedStyle(e)[name])),
  );
  return { looks, texts, values };
}

test("a page moved to an empty folder looks and behaves the same", async () => {
  const path = pageOf(suite({ passed: 101, failed: 2, errors: 1, other: 1 }));
  const alone = join(newFolder(), "moved.html");
  copyFileSync(path, alone);
  const impressions = [];
  for (const file of [path, alone]) {
    await withPage(file, { height: 3000, reducedMotion: "reduce" }, async (page) => {
      impressions.push(await impression(page));
      assert.equal(new Set(page.seen.requests).size, 1, "the page is all that is read");
    });
  }
  assert.equal(new Set(impressions[0].looks).size, 3, "each step can be seen");
  assert.deepEqual(impressions[1], impressions[0]);
});

test("the page names nothing that it would have to fetch", async () => {
  await withPage(pageOf(suite({ passed: 101, errors: 1 })), {}, async (page) => {
    const fetching = "link, img, iframe, object, embed, script[src], [srcset], base, use, image, source";
    assert.equal(await page.count(fetching), 0);
    const styles = await page.$$eval("style", (all) => all.map((e) => e.textContent).join("\n"));
    assert.doesNotMatch(styles, /url\(|@import|@font-face|src:/i);
    assert.ok(styles.length > 10_000);
  });
});

test("an errored report's text is shown beside its link", async () => {
  await withPage(pageOf([["x.html", errored("a &amp;lt; b")]]), {}, async (page) => {
    assert.deepEqual(await page.$eval("tbody tr", (row) => row.innerText), "1\tx\tERROR\ta &lt; b");
    assert.deepEqual(await page.computed("tbody td:last-child", ["text-align"]), { "text-align": "left" });
  });
});
