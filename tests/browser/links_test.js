// The page alone, and the page among the reports.

import assert from "node:assert/strict";
import { copyFileSync, readFileSync } from "node:fs";
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

const PLACES = [
  ["inside the scanned folder", "in/summary.html"],
  ["beside it", "summary.html"],
  ["above it", "../summary.html"],
  ["below it", "in/out/pages/summary.html"],
  ["far away", "../else/where/summary.html"],
  ["in a folder with odd letters", "out & 'about' é/summary.html"],
];

function titleOf(report) {
  return report.match(/<title>(.*)<\/title>/)[1].replace(/&lt;/g, "<");
}

// Where the browser takes each link is read from the disk; one of a page's links is followed.
for (const [place, [where, page]] of PLACES.entries()) {
  test(`links of a page ${where} lead to the right reports`, async () => {
    const parent = join(newFolder(), "work");
    writeTree(join(parent, "in"), FILES);
    await withPage(summarize("in", page, { cwd: parent }), {}, async (tab) => {
      const links = await tab.$$eval("tbody a", (all) => all.map((a) => [a.textContent, a.href]));
      const titles = links.map(([, url]) => titleOf(readFileSync(new URL(url), "utf8")));
      assert.deepEqual([...titles].sort(), NAMES.map((name) => `This is ${name}`).sort());
      links.forEach(([text], index) => {
        assert.ok(titles[index].startsWith(`This is ${text}`), `${text} leads to ${titles[index]}`);
      });
      await tab.click("tbody a", { index: place });
      const title = await tab.until(() => document.title !== "Fathomix Summary" && document.title);
      assert.equal(title, titles[place]);
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

/**
 * What a reader sees: the text, and for every element where it is and how it looks. How far a
 * browser scrolls to what is clicked is its own affair.
 */
function look(page) {
  return page.evaluate(() => [
    document.body.innerText,
    ...[...document.querySelectorAll("body, body *")].map((element) => {
      const { left, top, width, height } = element.getBoundingClientRect();
      const { color, backgroundColor, font } = getComputedStyle(element);
      const place = [left + window.scrollX, top + window.scrollY, width, height].map(Math.round);
      return [...place, color, backgroundColor, font].join(" ");
    }),
  ]);
}

test("a page moved to an empty folder looks and behaves the same", async () => {
  const path = pageOf(suite({ passed: 101, failed: 2, errors: 1, other: 1 }));
  const alone = join(newFolder(), "moved.html");
  copyFileSync(path, alone);
  const impressions = [];
  for (const file of [path, alone]) {
    await withPage(file, { reducedMotion: "reduce" }, async (page) => {
      const looks = [await look(page)];
      for (const button of ["[data-dt-next]", "#themeToggle"]) {
        await page.click(button);
        await page.moveMouse(0, 0);
        await page.until(() => !document.querySelector("button:hover"));
        looks.push(await look(page));
      }
      impressions.push(looks);
      assert.ok(page.seen.requests.length <= 1, "the page is all that is read");
    });
  }
  const steps = impressions[0].map((parts) => parts.join());
  assert.equal(new Set(steps).size, 3, "each step can be seen");
  impressions[0].forEach((parts, step) => {
    const other = impressions[1][step];
    assert.equal(other.length, parts.length);
    // Not the lists themselves: nobody reads the message of so long a comparison.
    const differing = parts.map((part, i) => [part, other[i]]).filter(([one, two]) => one !== two);
    assert.deepEqual(differing.slice(0, 3), [], `step ${step}`);
  });
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
