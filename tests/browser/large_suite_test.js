// 20,000 reports: the rows, the pager, and what keeps a click cheap: the number of rows
// that it touches.

import assert from "node:assert/strict";

import { test, withPage } from "./support/browser.js";
import { pageOf } from "./support/program.js";
import { suite } from "./support/reports.js";

const COUNT = 20_000;
const largePage = pageOf(suite({ passed: COUNT }));

/** The rows of the table and those that can be seen, by their numbers, and the pager's words. */
function look(page) {
  return page.evaluate(() => {
    const rows = [...document.querySelectorAll("tbody tr")];
    const shown = rows.filter((row) => row.getClientRects().length > 0);
    return {
      rows: rows.length,
      shown: shown.length,
      first: shown[0].cells[0].textContent,
      last: shown.at(-1).cells[0].textContent,
      status: document.querySelector(".dt-pager-status").textContent,
    };
  });
}

/** Clicks on a button; gives the number of rows that each click changed. */
function press(page, button, clicks) {
  return page.evaluate(
    async (selector, count) => {
      let records = 0;
      const observer = new MutationObserver((list) => {
        records += list.length;
      });
      observer.observe(document.querySelector("table[data-page-size]"), {
        attributes: true,
        childList: true,
        characterData: true,
        subtree: true,
      });
      const changed = [];
      for (let click = 0; click < count; click += 1) {
        records = 0;
        document.querySelector(selector).click();
        // The observer is told before what follows the await.
        await null;
        changed.push(records);
      }
      return changed;
    },
    button,
    clicks,
  );
}

test("20,000 rows: each click changes the rows that leave and that come, no others", async () => {
  await withPage(largePage, {}, async (page) => {
    const at = (number) => ({
      rows: COUNT,
      shown: 100,
      first: String(number * 100 - 99),
      last: String(number * 100),
      status: `Page ${number} of 200`,
    });
    assert.deepEqual(await look(page), at(1));
    assert.deepEqual(await press(page, "[data-dt-next]", 199), Array(199).fill(200));
    assert.deepEqual(await look(page), at(200));
    assert.deepEqual(await press(page, "[data-dt-next]", 1), [0], "the last page is the last");
    assert.deepEqual(await press(page, "[data-dt-prev]", 9), Array(9).fill(200));
    assert.deepEqual(await look(page), at(191));
  });
});
