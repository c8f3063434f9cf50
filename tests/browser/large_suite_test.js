// 20,000 reports: what the scripts cost, and what a click costs.
//
// Times depend on the machine and are printed, not judged; what keeps a click cheap,
// the number of rows that it touches, is.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";

import { useBrowser } from "./support/browser.js";
import { newFolder, pageOf } from "./support/program.js";
import { suite } from "./support/reports.js";

const withPage = useBrowser();

const LOADS = 3;
const CLICKS = 9;

const largePage = pageOf(suite({ passed: 20_000 }));
const smallPage = pageOf(suite({ passed: 1_000 }));

function median(values) {
  return values.sort((a, b) => a - b)[Math.floor(values.length / 2)];
}

/** Milliseconds from navigation until the whole page stood and was painted. */
async function loadTime(page, path) {
  await page.goto(pathToFileURL(path).href);
  return page.evaluate(
    () =>
      new Promise((done) => {
        requestAnimationFrame(() => setTimeout(() => done(performance.now())));
      }),
  );
}

function withoutScripts(path) {
  const html = readFileSync(path, "utf8");
  const bare = html.replace(/<script>\n[^]*?<\/script>\n/g, "");
  assert.equal(html.split("<script>").length - bare.split("<script>").length, 2);
  const copy = join(newFolder(), "summary.html");
  writeFileSync(copy, bare);
  return copy;
}

test("the page of 20,000 reports loads with and without its scripts", async (t) => {
  const bare = withoutScripts(largePage);
  await withPage(smallPage, {}, async (page) => {
    const times = { full: [], bare: [] };
    await loadTime(page, largePage);
    for (let load = 0; load < LOADS; load += 1) {
      times.full.push(await loadTime(page, largePage));
      assert.equal(await page.locator("tbody tr:visible").count(), 100);
      times.bare.push(await loadTime(page, bare));
      assert.equal(await page.locator("tbody tr:visible").count(), 20_000);
    }
    const [full, plain] = [median(times.full), median(times.bare)];
    t.diagnostic(
      `20,000 rows, median of ${LOADS} loads: ${full.toFixed(0)} ms, without the scripts ` +
        `${plain.toFixed(0)} ms, ratio ${(full / plain).toFixed(2)}`,
    );
  });
});

/** Clicks through the pages; gives the rows changed and the milliseconds, click by click. */
function clickThrough(page, clicks) {
  return page.evaluate(async (count) => {
    const table = document.querySelector("table[data-page-size]");
    const next = document.querySelector("[data-dt-next]");
    const changed = [];
    const times = [];
    const observer = new MutationObserver(() => undefined);
    observer.observe(table, { attributes: true, childList: true, characterData: true, subtree: true });
    for (let click = 0; click < count; click += 1) {
      const start = performance.now();
      next.click();
      table.getBoundingClientRect();
      times.push(performance.now() - start);
      changed.push(observer.takeRecords().length);
      await new Promise((done) => requestAnimationFrame(done));
    }
    return { changed, times };
  }, clicks);
}

for (const [rows, path] of [
  ["1,000", smallPage],
  ["20,000", largePage],
]) {
  test(`a click changes the rows that leave and that come, no others: ${rows} rows`, async (t) => {
    await withPage(path, {}, async (page) => {
      const { changed, times } = await clickThrough(page, CLICKS);
      assert.deepEqual(changed, Array(CLICKS).fill(200));
      t.diagnostic(
        `${rows} rows, median of ${CLICKS} clicks on Next: ${median(times).toFixed(2)} ms, ` +
          "200 rows changed by each",
      );
    });
  });
}
