// Paging of long tables.

import assert from "node:assert/strict";

import { test, withPage } from "./support/browser.js";
import { pageOf, pageWith } from "./support/program.js";
import { suite } from "./support/reports.js";

const pages = new Map();

function passedPage(count) {
  if (!pages.has(count)) {
    pages.set(count, pageOf(suite({ passed: count })));
  }
  return pages.get(count);
}

/** The numbers of the rows that are visible in a table, as runs [first, last]. */
async function visibleRows(page, table = "table.dt-numbered") {
  const numbers = await page.$$eval(`${table} tbody tr`, (rows) =>
    rows
      .filter((row) => row.getClientRects().length > 0)
      .map((row) => Number(row.cells[0].textContent)),
  );
  const runs = [];
  for (const number of numbers) {
    if (runs.at(-1)?.[1] === number - 1) {
      runs.at(-1)[1] = number;
    } else {
      runs.push([number, number]);
    }
  }
  return runs;
}

/** Pager number n of the page: its status and which of its buttons can be pressed. */
function pagerState(page, index = 0) {
  return page.$eval(
    ".dt-pager",
    (pager) => ({
      status: pager.querySelector(".dt-pager-status").textContent,
      previous: !pager.querySelector("[data-dt-prev]").disabled,
      next: !pager.querySelector("[data-dt-next]").disabled,
    }),
    index,
  );
}

function state(status, previous, next) {
  return { status, previous, next };
}

for (const count of [0, 1, 99, 100]) {
  test(`${count} rows are not paged`, async () => {
    await withPage(passedPage(count), {}, async (page) => {
      assert.equal(await page.count(".dt-pager"), 0);
      assert.equal(await page.count("[data-page-size], tbody tr[hidden]"), 0);
      assert.deepEqual(await visibleRows(page), count === 0 ? [] : [[1, count]]);
    });
  });
}

for (const [count, steps] of [
  [101, [[1, 100, "Page 1 of 2", false, true], [101, 101, "Page 2 of 2", true, false]]],
  [200, [[1, 100, "Page 1 of 2", false, true], [101, 200, "Page 2 of 2", true, false]]],
  [
    201,
    [
      [1, 100, "Page 1 of 3", false, true],
      [101, 200, "Page 2 of 3", true, true],
      [201, 201, "Page 3 of 3", true, false],
    ],
  ],
]) {
  test(`${count} rows page forth and back`, async () => {
    await withPage(passedPage(count), {}, async (page) => {
      const assertStep = async ([first, last, status, previous, next]) => {
        assert.deepEqual(await visibleRows(page), [[first, last]]);
        assert.deepEqual(await pagerState(page), state(status, previous, next));
      };
      await assertStep(steps[0]);
      for (const step of steps.slice(1)) {
        await page.click("[data-dt-next]");
        await assertStep(step);
      }
      for (const step of steps.slice(0, -1).reverse()) {
        await page.click("[data-dt-prev]");
        await assertStep(step);
      }
    });
  });
}

test("1,000 rows have ten pages of a hundred", async () => {
  await withPage(passedPage(1000), {}, async (page) => {
    for (let number = 1; number <= 10; number += 1) {
      assert.deepEqual(await visibleRows(page), [[number * 100 - 99, number * 100]]);
      const expected = state(`Page ${number} of 10`, number > 1, number < 10);
      assert.deepEqual(await pagerState(page), expected);
      if (number < 10) {
        await page.click("[data-dt-next]");
      }
    }
  });
});

test("rows that are not shown have the hidden attribute, shown ones do not, headers never", async () => {
  await withPage(passedPage(201), {}, async (page) => {
    await page.click("[data-dt-next]");
    const hidden = await page.$$eval("tr", (rows) => rows.map((row) => row.hasAttribute("hidden")));
    const expected = Array.from({ length: 202 }, (_, row) => row > 0 && (row <= 100 || row > 200));
    assert.deepEqual(hidden, expected);
  });
});

test("clicks beyond the first and the last page do nothing", async () => {
  const clickDespiteDisabled = (page, selector) =>
    page.$eval(selector, (button) => {
      button.disabled = false;
      button.click();
    });
  await withPage(passedPage(101), {}, async (page) => {
    await clickDespiteDisabled(page, "[data-dt-prev]");
    assert.deepEqual(await visibleRows(page), [[1, 100]]);
    assert.equal((await pagerState(page)).status, "Page 1 of 2");
    await page.click("[data-dt-next]");
    await clickDespiteDisabled(page, "[data-dt-next]");
    assert.deepEqual(await visibleRows(page), [[101, 101]]);
    assert.equal((await pagerState(page)).status, "Page 2 of 2");
  });
});

test("a reload begins at the first page", async () => {
  await withPage(passedPage(101), {}, async (page) => {
    await page.click("[data-dt-next]");
    await page.reload();
    assert.deepEqual(await visibleRows(page), [[1, 100]]);
    assert.deepEqual(await pagerState(page), state("Page 1 of 2", false, true));
  });
});

for (const [size, count, first, status] of [
  ["0", 101, 100, "Page 1 of 2"],
  ["abc", 101, 100, "Page 1 of 2"],
  ["", 101, 100, "Page 1 of 2"],
  ["7", 101, 7, "Page 1 of 15"],
  ["7.9 rows", 101, 7, "Page 1 of 15"],
  ["010", 101, 10, "Page 1 of 11"],
  ["0x10", 101, 100, "Page 1 of 2"],
  ["1", 101, 1, "Page 1 of 101"],
  ["101", 101, 101, "Page 1 of 1"],
  ["1e9", 101, 1, "Page 1 of 101"],
]) {
  test(`data-page-size ${JSON.stringify(size)} of ${count} rows shows ${first}`, async () => {
    const path = pageWith(passedPage(count), 'data-page-size="100"', `data-page-size="${size}"`);
    await withPage(path, {}, async (page) => {
      assert.deepEqual(await visibleRows(page), [[1, first]]);
      assert.deepEqual(await pagerState(page), state(status, false, first < count));
    });
  });
}

test("pages of 7 rows: the last one holds the rest", async () => {
  const path = pageWith(passedPage(101), 'data-page-size="100"', 'data-page-size="7"');
  await withPage(path, {}, async (page) => {
    for (let number = 2; number <= 15; number += 1) {
      await page.click("[data-dt-next]");
    }
    assert.deepEqual(await visibleRows(page), [[99, 101]]);
    assert.deepEqual(await pagerState(page), state("Page 15 of 15", true, false));
  });
});

const PAGER = '<div class="dt-pager">';
const PAGER_BLOCK = [
  PAGER,
  '<button type="button" data-dt-prev>Prev</button>',
  '<span class="dt-pager-status"></span>',
  '<button type="button" data-dt-next>Next</button>',
  "</div>\n",
].join("\n");

for (const [what, text, replacement] of [
  ["whose wrapper lacks its class", '<div class="overflow-x">', '<div class="overflow">'],
  ["whose pager lacks its class", PAGER, '<div class="pager">'],
  ["whose pager does not follow at once", PAGER, `<p>Between</p>${PAGER}`],
  ["without the page size", ' data-page-size="100"', ""],
]) {
  test(`a table ${what} keeps all its rows visible`, async () => {
    await withPage(pageWith(passedPage(101), text, replacement), {}, async (page) => {
      assert.deepEqual(await visibleRows(page), [[1, 101]]);
      assert.equal(await page.count("tr[hidden]"), 0);
      assert.equal(await page.text(".dt-pager-status"), "");
    });
  });
}

test("a table with nothing behind its wrapper keeps all its rows visible", async () => {
  const html = '</div>\n</section>\n<footer>';
  const start = "</tbody>\n</table></div>\n<div class=\"dt-pager\">";
  const nested = pageWith(passedPage(101), start, `</tbody>\n</table></div></div>\n<div>${PAGER}`);
  await withPage(pageWith(nested, html, `</div>${html}`), {}, async (page) => {
    assert.equal(await page.count(".overflow-x + *"), 0);
    assert.deepEqual(await visibleRows(page), [[1, 101]]);
  });
});

test("a table that cannot be paged does not keep the next ones from it", async () => {
  const path = pageOf(suite({ errors: 101, failed: 101, passed: 101 }));
  const title = '<p class="compare-table-title">Failed';
  await withPage(pageWith(path, PAGER_BLOCK + title, title), {}, async (page) => {
    assert.equal(await page.count(".dt-pager"), 2);
    assert.deepEqual(await visibleRows(page), [[1, 201], [203, 302]]);
  });
});

test("a page without rows in its table: one page, both buttons disabled", async () => {
  const empty = pageOf([]);
  const sized = pageWith(empty, '"dt dt-numbered"', '"dt dt-numbered" data-page-size="100"');
  const path = pageWith(sized, "</table></div>\n", `</table></div>\n${PAGER_BLOCK}`);
  await withPage(path, {}, async (page) => {
    assert.deepEqual(await visibleRows(page), []);
    assert.deepEqual(await pagerState(page), state("Page 1 of 1", false, false));
  });
});

test("the rows of all body sections are paged as one list", async () => {
  const path = pageWith(passedPage(101), "<tr><td>50</td>", "</tbody><tbody><tr><td>50</td>");
  await withPage(path, {}, async (page) => {
    assert.equal(await page.count("tbody"), 2);
    assert.deepEqual(await visibleRows(page), [[1, 100]]);
  });
});

test("three tables page independently", async () => {
  await withPage(pageOf(suite({ errors: 101, failed: 150, passed: 201 })), {}, async (page) => {
    const status = () =>
      page.$$eval(".dt-pager-status", (all) => all.map((element) => element.textContent));
    const next = (index) => page.click("[data-dt-next]", { index });
    assert.deepEqual(await visibleRows(page), [[1, 100], [102, 201], [252, 351]]);
    assert.deepEqual(await status(), ["Page 1 of 2", "Page 1 of 2", "Page 1 of 3"]);
    await next(2);
    await next(0);
    await next(2);
    assert.deepEqual(await visibleRows(page), [[101, 201], [452, 452]]);
    assert.deepEqual(await status(), ["Page 2 of 2", "Page 1 of 2", "Page 3 of 3"]);
    await next(1);
    await page.click("[data-dt-prev]", { index: 2 });
    assert.deepEqual(await visibleRows(page), [[101, 101], [202, 251], [352, 451]]);
    assert.deepEqual(await status(), ["Page 2 of 2", "Page 2 of 2", "Page 2 of 3"]);
  });
});

test("150 failed and 20 passed reports: only the failed ones are paged, numbers run on", async () => {
  await withPage(pageOf(suite({ failed: 150, passed: 20 })), {}, async (page) => {
    assert.equal(await page.count(".dt-pager"), 1);
    assert.deepEqual(await visibleRows(page), [[1, 100], [151, 170]]);
  });
});

test("other files are never paged", async () => {
  await withPage(pageOf(suite({ passed: 1, other: 150 })), {}, async (page) => {
    assert.equal(await page.countVisible("#other-files td"), 150);
    assert.equal(await page.count(".dt-pager"), 0);
  });
});

function focusOn(page, attribute) {
  return page.evaluate((name) => document.activeElement.hasAttribute(name), attribute);
}

test("the keyboard reaches both buttons and presses them by Enter and by Space", async () => {
  await withPage(passedPage(201), {}, async (page) => {
    await page.focus("tbody a", 99);
    await page.press("Tab");
    assert.ok(await focusOn(page, "data-dt-next"), "the disabled button is no stop");
    await page.press("Enter");
    assert.deepEqual(await visibleRows(page), [[101, 200]]);
    await page.press("Shift+Tab");
    assert.ok(await focusOn(page, "data-dt-prev"));
    await page.press("Space");
    assert.deepEqual(await visibleRows(page), [[1, 100]]);
    await page.focus("[data-dt-next]");
    await page.press("Space");
    await page.press("Enter");
    assert.deepEqual(await visibleRows(page), [[201, 201]]);
    assert.deepEqual(await pagerState(page), state("Page 3 of 3", true, false));
  });
});

test("links in hidden rows are no stop of the keyboard", async () => {
  await withPage(passedPage(101), {}, async (page) => {
    await page.focus("#themeToggle");
    await page.evaluate(() => {
      window.stops = [];
      document.addEventListener("focusin", (event) => window.stops.push(event.target.textContent));
    });
    await page.press("Tab", 101);
    const stops = await page.evaluate("window.stops");
    assert.equal(stops.length, 101);
    assert.deepEqual([stops[0], stops[99], stops[100]], ["passed/case-00001", "passed/case-00100", "Next"]);
  });
});

for (const theme of ["light", "dark"]) {
  test(`print shows every row and nothing to press: ${theme}`, { needs: "print" }, async () => {
    await withPage(pageOf(suite({ failed: 201, passed: 101 })), { colorScheme: theme }, async (page) => {
      await page.click("[data-dt-next]");
      assert.deepEqual(await visibleRows(page), [[101, 200], [202, 301]]);
      await page.setMedia({ media: "print" });
      assert.deepEqual(await visibleRows(page), [[1, 302]]);
      assert.equal(await page.countVisible(".dt-pager, .theme-toggle"), 0);
      await page.setMedia({ media: "screen" });
      assert.deepEqual(await visibleRows(page), [[101, 200], [202, 301]]);
    });
  });
}

test("print lets no table scroll and no row break", { needs: "print" }, async () => {
  await withPage(passedPage(101), {}, async (page) => {
    await page.setMedia({ media: "print" });
    const values = await page.$$eval(".overflow-x, tbody tr", (all) => [
      ...new Set(all.map((e) => `${e.tagName} ${getComputedStyle(e).overflowX} ${getComputedStyle(e).breakInside}`)),
    ]);
    assert.deepEqual(values, ["DIV visible auto", "TR visible avoid"]);
  });
});
