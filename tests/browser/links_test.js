// The page alone, and the page among the reports.

import assert from "node:assert/strict";
import { copyFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";

import { computed, useBrowser } from "./support/browser.js";
import { newFolder, pageOf, summarize, writeTree } from "./support/program.js";
import { analyzed, errored, suite } from "./support/reports.js";

const withPage = useBrowser();

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
      const links = tab.locator("tbody a");
      assert.equal(await links.count(), NAMES.length);
      const titles = [];
      for (let index = 0; index < NAMES.length; index += 1) {
        await links.nth(index).click();
        await tab.waitForURL((url) => !url.href.endsWith("summary.html"));
        titles.push(await tab.title());
        await tab.goBack();
      }
      assert.deepEqual(titles.sort(), NAMES.map((name) => `This is ${name}`).sort());
    });
  });
}

test("links open by the keyboard, too", async () => {
  const folder = writeTree(newFolder(), FILES);
  await withPage(summarize(folder), {}, async (page) => {
    await page.locator("tbody a").last().press("Enter");
    await page.waitForFunction(() => document.title.startsWith("This is "));
  });
});

/** What a reader can see and do on a page, to compare two pages by. */
async function impression(page) {
  const looks = [];
  const look = async () => looks.push((await page.screenshot({ fullPage: true })).toString("base64"));
  await look();
  await page.click("[data-dt-next]");
  await look();
  await page.click("#themeToggle");
  await page.mouse.move(0, 0);
  await look();
  const texts = await page.innerText("body");
  const values = await page.$$eval("body, body *", (all) =>
    all.map((e) => ["color", "background-color", "font", "width"].map((name) => getComputedStyle(e)[name])),
  );
  return { looks, texts, values };
}

test("a page moved to an empty folder and opened offline looks and behaves the same", async () => {
  const path = pageOf(suite({ passed: 101, failed: 2, errors: 1, other: 1 }));
  const alone = join(newFolder(), "moved.html");
  copyFileSync(path, alone);
  const impressions = [];
  for (const [file, offline] of [[path, false], [alone, true]]) {
    await withPage(file, { offline, reducedMotion: "reduce" }, async (page, { seen }) => {
      impressions.push(await impression(page));
      assert.equal(seen.requests.length, 1, "the page is all that is read");
    });
  }
  assert.equal(new Set(impressions[0].looks).size, 3, "each step can be seen");
  assert.deepEqual(impressions[1], impressions[0]);
});

test("the page names nothing that it would have to fetch", async () => {
  await withPage(pageOf(suite({ passed: 101, errors: 1 })), {}, async (page) => {
    const fetching = "link, img, iframe, object, embed, script[src], [srcset], base, use, image, source";
    assert.equal(await page.locator(fetching).count(), 0);
    const styles = await page.$$eval("style", (all) => all.map((e) => e.textContent).join("\n"));
    assert.doesNotMatch(styles, /url\(|@import|@font-face|src:/i);
    assert.ok(styles.length > 10_000);
  });
});

test("an errored report's text is shown beside its link", async () => {
  await withPage(pageOf([["x.html", errored("a &amp;lt; b")]]), {}, async (page) => {
    assert.deepEqual(await page.locator("tbody td").first().locator("..").innerText(), "1\tx\tERROR\ta &lt; b");
    assert.deepEqual(await computed(page, "tbody td:last-child", ["text-align"]), { "text-align": "left" });
  });
});
