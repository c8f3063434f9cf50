// What must hold for the page to look right at any width and with any names.

import assert from "node:assert/strict";

import { lookAt, test, withPage } from "./support/browser.js";
import { pageOf, pageWith } from "./support/program.js";
import { analyzed, errored, suite } from "./support/reports.js";

const LONG_FOLDER = `${"unbroken".repeat(25)}/${"a rather long folder name ".repeat(8)}`.trim();
const CHECKS = Array.from({ length: 16 }, (_, index) => `Quantisation noise in band number ${index}`);
const LONG_NAMES = [
  [`${LONG_FOLDER}/${"x".repeat(240)}.html`, analyzed("FAIL", { failed: CHECKS })],
  ["z.html", analyzed("PASS", { mode: "M".repeat(39), subMode: "S".repeat(39), nonGating: CHECKS })],
  ["e.html", errored("NoBlanksInThisErrorText".repeat(27))],
  [`${LONG_FOLDER}/${"y".repeat(240)}.htm`, "other"],
];

const PAGES = [
  ["empty", pageOf([])],
  ["all passed", pageOf(suite({ passed: 3 }))],
  ["failed", pageOf(suite({ passed: 1, failed: 1 }))],
  ["errored", pageOf(suite({ passed: 1, failed: 1, errors: 1, other: 1 }))],
  ["paged", pageOf(suite({ errors: 101, failed: 101, passed: 101 }))],
  ["long names", pageOf(LONG_NAMES)],
];
PAGES.push(["errored, in a browser without units of a container", pageWith(PAGES[3][1], "100cqi", "100unknown")]);
const WIDTHS = [240, 280, 320, 390, 480, 525, 545, 600, 685, 700, 720, 721, 739, 740, 760, 782, 783, 900, 960, 1280, 2560];

for (const [name, path] of PAGES) {
  test(`only the tables' wrappers scroll sideways, at any width: ${name}`, async () => {
    await lookAt(path, {}, async (page) => {
      for (const width of WIDTHS) {
        await page.resize(width);
        const found = await page.evaluate(() => {
          const outside = [...document.querySelectorAll("body *")].filter((e) => {
            const box = e.getBoundingClientRect();
            const isWithin = e.closest(".overflow-x") && !e.matches(".overflow-x");
            return !isWithin && box.width > 0 && (box.left < 0 || box.right > window.innerWidth);
          });
          return [document.documentElement.scrollWidth, ...outside.map((e) => e.className)];
        });
        assert.deepEqual(found, [width], `${width} pixels`);
      }
    });
  });
}

for (const width of [390, 1280]) {
  test(`the pager's buttons stay where they are while its text changes: ${width} pixels`, async () => {
    // As many pages as its text may have to name, without as many reports.
    const path = pageWith(PAGES[4][1], 'data-page-size="100"', 'data-page-size="1"');
    await withPage(path, { width }, async (page) => {
      const places = await page.$$eval(".dt-pager", ([first]) => {
        const look = () => [...first.children].map((e) => e.getBoundingClientRect().left.toFixed(1)).join();
        const found = [look()];
        for (let click = 0; click < 100; click += 1) {
          first.querySelector("[data-dt-next]").click();
          found.push(look());
        }
        return found;
      });
      assert.equal(places.length, 101);
      assert.equal(new Set(places).size, 1);
      assert.equal(await page.text(".dt-pager-status"), "Page 101 of 101");
    });
  });
}

test("the pager stands in the middle below its table", async () => {
  await lookAt(PAGES[4][1], {}, async (page) => {
    const middle = async (selector) => {
      const { left, width } = await page.box(selector);
      return Math.round(left + width / 2);
    };
    assert.equal(await middle(".dt-pager-status"), await middle("table.dt"));
  });
});

test("nothing in a row is cut off, however long", async () => {
  for (const width of [390, 1280]) {
    await lookAt(PAGES[5][1], { width }, async (page) => {
      const overflowing = await page.$$eval("td, th, .kpi, .fname", (all) =>
        all.filter((e) => e.scrollWidth > e.clientWidth + 1).map((e) => e.textContent),
      );
      assert.deepEqual(overflowing, []);
    });
  }
});

test("the tables of a page stand in line: their first columns are equally wide", async () => {
  await lookAt(PAGES[3][1], {}, async (page) => {
    const starts = await page.$$eval(".dt-numbered", (tables) =>
      tables.map((table) => [...table.rows[0].cells].slice(0, 3).map((c) => Math.round(c.getBoundingClientRect().left))),
    );
    assert.equal(starts.length, 3);
    assert.deepEqual(starts[1], starts[2]);
    assert.deepEqual(starts[0].slice(0, 2), starts[1].slice(0, 2));
  });
});

test("every stop of the keyboard shows a ring that is not cut off", async () => {
  await withPage(PAGES[4][1], {}, async (page) => {
    const stops = ["#themeToggle", "tbody a", "[data-dt-next]"];
    for (const stop of stops) {
      await page.focus(stop);
      await page.press("Tab");
      await page.press("Shift+Tab");
      const ring = await page.evaluate(() => {
        const element = document.activeElement;
        const style = getComputedStyle(element);
        const box = element.getBoundingClientRect();
        const clip = element.closest(".overflow-x")?.getBoundingClientRect();
        const reach = parseFloat(style.outlineWidth) + parseFloat(style.outlineOffset);
        return {
          style: style.outlineStyle,
          isWhole: !clip || box.left - reach >= clip.left,
        };
      });
      assert.deepEqual(ring, { style: "solid", isWhole: true }, stop);
    }
  });
});
