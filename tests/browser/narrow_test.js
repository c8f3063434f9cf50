// What has little room: the pager in a narrow card, five tiles in a row.

import assert from "node:assert/strict";

import { lookAt, test, withPage } from "./support/browser.js";
import { pageOf } from "./support/program.js";
import { suite } from "./support/reports.js";

const pagedPage = pageOf(suite({ passed: 101 }));
const erroredPage = pageOf(suite({ passed: 1, failed: 1, errors: 1 }));

/** The parts of the pager that reach out of an element that cuts off what does. */
function cutParts(page) {
  return page.$$eval(".dt-pager > *", (parts) => {
    const isCut = (part) => {
      const box = part.getBoundingClientRect();
      for (let outer = part.parentElement; outer; outer = outer.parentElement) {
        const edge = outer.getBoundingClientRect();
        const clips = outer === document.documentElement || getComputedStyle(outer).overflowX !== "visible";
        if (clips && (box.left < edge.left || box.right > edge.right || box.bottom > edge.bottom)) {
          return true;
        }
      }
      return false;
    };
    return parts.filter(isCut).map((part) => part.textContent);
  });
}

for (const [size, widths] of [
  ["16px", [240, 280, 320, 335, 336, 360, 400, 401, 480]],
  ["24px", [280, 360, 480]],
  ["32px", [320, 360, 400, 480, 600, 720]],
]) {
  test(`nothing cuts the pager's buttons off: root font of ${size}`, async () => {
    await lookAt(pagedPage, {}, async (page) => {
      const setSize = (value) =>
        page.evaluate((text) => {
          document.documentElement.style.fontSize = text;
        }, value);
      await setSize(size);
      for (const width of widths) {
        await page.resize(width);
        assert.equal(await page.evaluate("innerWidth"), width);
        assert.deepEqual(await cutParts(page), [], `${width} pixels`);
      }
      await setSize("");
    });
  });
}

test("where the pager is narrow its buttons stand beside each other above the status", async () => {
  const tops = (page) => page.$$eval(".dt-pager > *", (all) => all.map((e) => e.getBoundingClientRect().top));
  await lookAt(pagedPage, {}, async (page) => {
    for (const width of [320, 400]) {
      await page.resize(width);
      const [previous, status, next] = await tops(page);
      assert.equal(previous, next);
      assert.ok(status > next, `${width} pixels`);
    }
    await page.resize(401);
    const [previous, status, next] = await tops(page);
    assert.equal(previous, next);
    assert.ok(Math.abs(status - next) < 10);
  });
});

test("five tiles keep their gap, stay in the column and hold their texts", async () => {
  await withPage(erroredPage, {}, async (page) => {
    // A classic scroll bar takes a part of the window's width from the page.
    const widths = [721, 740, 782, 783, 797, 834, 1280];
    for (const [width, bar] of widths.flatMap((value) => [[value, 0], [value, 15]])) {
      await page.resize(width);
      await page.evaluate((margin) => {
        document.documentElement.style.marginRight = `${margin}px`;
      }, bar);
      const found = await page.evaluate(() => {
        const tiles = [...document.querySelectorAll(".kpi")];
        const boxes = tiles.map((e) => e.getBoundingClientRect());
        const column = document.querySelector(".signal-row").getBoundingClientRect();
        return {
          gap: getComputedStyle(document.querySelector(".kpi-grid")).gap,
          gaps: boxes.slice(1).map((box, index) => Number((box.left - boxes[index].right).toFixed(1))),
          isLevel: boxes.every((box) => box.top === boxes[0].top),
          left: Math.round(boxes[0].left - column.left),
          isRightInside: boxes[4].right <= column.right + 0.1,
          cut: tiles.filter((e) => e.scrollWidth > e.clientWidth).length,
          sideways: document.documentElement.scrollWidth - window.innerWidth,
        };
      });
      assert.deepEqual(
        found,
        {
          gap: "12.8px",
          gaps: [12.8, 12.8, 12.8, 12.8],
          isLevel: true,
          left: 0,
          isRightInside: true,
          cut: 0,
          sideways: 0,
        },
        `${width} pixels, ${bar} of them a scroll bar`,
      );
    }
  });
});
