// Computed values in both themes, chosen and asked for by the system, and at both widths.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";

import { lookAt, test, withPage } from "./support/browser.js";
import { DOTS, FULL_PAGE_LAYOUT, LAYOUT, PASSED_PAGE_LAYOUT } from "./support/layout.js";
import { DARK_BLOCK, inTheme, LIGHT_BLOCK } from "./support/palette.js";
import { pageOf } from "./support/program.js";
import { suite } from "./support/reports.js";

const fullPage = pageOf(suite({ errors: 2, failed: 101, passed: 3, other: 2 }));
const passedPage = pageOf(suite({ passed: 3 }));

const LOOKS = [
  { name: "light", theme: "light", colorScheme: "light" },
  { name: "dark by the system", theme: "dark", colorScheme: "dark" },
  { name: "dark by choice", theme: "dark", colorScheme: "light", chosen: "dark" },
  { name: "light by choice", theme: "light", colorScheme: "dark", chosen: "light" },
];

function inLook(path, look, width, body) {
  return lookAt(path, { colorScheme: look.colorScheme, width }, async (page) => {
    const choose = (theme) =>
      page.evaluate((value) => {
        const root = document.documentElement;
        return value ? root.setAttribute("data-theme", value) : root.removeAttribute("data-theme");
      }, theme);
    if (look.chosen) {
      await choose(look.chosen);
    }
    await body(page);
    if (look.chosen) {
      await choose(null);
    }
  });
}

function expectedIn(values, theme) {
  return Object.fromEntries(
    Object.entries(values).map(([name, value]) => [
      name,
      value.startsWith("--") ? inTheme(value, theme) : value,
    ]),
  );
}

// Browsers keep lengths as multiples of a 64th of a pixel at the coarsest.
const NEAR = 1 / 64;

/** The computed values, with a number as it is expected wherever it is as good as that. */
function likened(actual, expected) {
  const like = (value, wanted) => {
    const numbers = wanted.match(/[\d.]+/g) ?? [];
    return value.replace(/[\d.]+/g, (number) => {
      const next = numbers.shift();
      return Math.abs(number - next) <= NEAR ? next : number;
    });
  };
  return Object.fromEntries(
    Object.entries(actual).map(([name, value]) => [name, like(value, expected[name])]),
  );
}

async function assertLayout(page, table, theme, pseudo) {
  const expected = table.map(([selector, values]) => [selector, expectedIn(values, theme)]);
  const wanted = expected.map(([selector, values]) => [selector, Object.keys(values)]);
  const found = await page.computedAll(wanted, pseudo);
  const actual = found.map((values, index) => [wanted[index][0], likened(values, expected[index][1])]);
  assert.deepEqual(actual, expected, `in the ${theme} theme`);
}

async function assertFullPage(page, theme) {
  await assertLayout(page, [...LAYOUT, ...FULL_PAGE_LAYOUT], theme);
  await assertLayout(page, [...DOTS, [".badge", { "border-top-left-radius": "50%" }]], theme, "::before");
}

function assertPassedPage(page, theme) {
  return assertLayout(page, [...LAYOUT, ...PASSED_PAGE_LAYOUT], theme);
}

for (const [name, path, assertPage] of [
  ["errored, failed and passed reports", fullPage, assertFullPage],
  ["passed reports", passedPage, assertPassedPage],
]) {
  for (const look of LOOKS) {
    for (const width of [1280, 700]) {
      test(`the layout holds: ${name}, ${look.name}, ${width} pixels wide`, async () => {
        await inLook(path, look, width, (page) => assertPage(page, look.theme));
      });
    }
  }
}

for (const look of LOOKS) {
  test(`the custom properties have their values: ${look.name}`, async () => {
    await inLook(passedPage, look, 1280, async (page) => {
      const expected = new Map(LIGHT_BLOCK);
      if (look.theme === "dark") {
        DARK_BLOCK.forEach(([name, value]) => expected.set(name, value));
      }
      expected.set("--ref-trace", "#FF7F0E");
      expected.set("--dut-trace", "#1F77B4");
      const values = await page.computed("html", [...expected.keys()]);
      assert.deepEqual(values, Object.fromEntries(expected));
    });
  });
}

function widthsOf(page, selector) {
  return page.$$eval(selector, (all) => all.map((e) => e.getBoundingClientRect().width));
}

/** The tiles as rows of widths, each as a share of the first. */
async function tileRows(page) {
  return page.$$eval(".kpi-grid > .kpi", (tiles) => {
    const rows = new Map();
    const first = tiles[0].getBoundingClientRect().width;
    for (const tile of tiles) {
      const { top, width } = tile.getBoundingClientRect();
      rows.set(top, [...(rows.get(top) ?? []), Number((width / first).toFixed(2))]);
    }
    return [...rows.values()];
  });
}

for (const [path, tiles, width, rows] of [
  [passedPage, "four", 1280, [[1, 1, 1, 1.4]]],
  [passedPage, "four", 721, [[1, 1, 1, 1.33]]],
  [passedPage, "four", 720, [[1, 1, 1, 1]]],
  [passedPage, "four", 700, [[1, 1, 1, 1]]],
  [fullPage, "five", 1280, [[1, 1, 1, 1, 1.4]]],
  [fullPage, "five", 731, [[1, 1, 1, 1, 1.24]]],
]) {
  test(`${tiles} tiles share the width as laid out at ${width} pixels`, async () => {
    await lookAt(path, { width }, async (page) => {
      const found = await tileRows(page);
      // Fonts, and so the room that the last tile's text needs, differ a little.
      const isNear = (share, row, tile) => Math.abs(share - rows[row]?.[tile]) < 0.02;
      assert.deepEqual(found.map((row) => row.length), rows.map((row) => row.length));
      assert.ok(found.every((row, at) => row.every((share, tile) => isNear(share, at, tile))), `${found}`);
    });
  });
}

test("five tiles wrap at 720 pixels and fill both rows", async () => {
  await lookAt(fullPage, { width: 720 }, async (page) => {
    const rows = await tileRows(page);
    assert.deepEqual(rows[0], [1, 1, 1, 1]);
    assert.equal(rows.length, 2);
  });
});

test("the page column is 1180 pixels wide at most, in the middle, on the page's background", async () => {
  await lookAt(passedPage, { width: 1400 }, async (page) => {
    const box = await page.box(".dash");
    assert.deepEqual([box.left, box.width], [110, 1180]);
  });
});

test("the first column of a numbered table is 2.2rem wide and a table fills its wrapper", async () => {
  await lookAt(passedPage, {}, async (page) => {
    const widths = await widthsOf(page, "table.dt-numbered th:first-child");
    assert.deepEqual(widths.map((width) => width.toFixed(1)), ["35.2"]);
    assert.deepEqual(await widthsOf(page, "table.dt"), await widthsOf(page, ".overflow-x"));
  });
});

test("only the last body row of a table is without a line", async () => {
  await lookAt(passedPage, {}, async (page) => {
    const lines = await page.$$eval("table.dt tr", (rows) =>
      rows.map((row) => [...row.cells].map((cell) => getComputedStyle(cell).borderBottomWidth)),
    );
    const line = Array(5).fill("1px");
    assert.deepEqual(lines, [line, line, line, Array(5).fill("0px")]);
  });
});

test("the header of an empty table keeps its line", async () => {
  await withPage(pageOf([]), {}, async (page) => {
    const values = await page.computed("table.dt th", ["border-bottom-width"]);
    assert.deepEqual(values, { "border-bottom-width": "1px" });
  });
});

for (const theme of ["light", "dark"]) {
  test(`hovering shows on buttons that can be pressed: ${theme}`, async () => {
    await withPage(fullPage, { colorScheme: theme, reducedMotion: "reduce" }, async (page) => {
      await page.hover(".theme-toggle");
      await assertLayout(
        page,
        [
          [
            ".theme-toggle",
            { "background-color": "--surface-sunken", "border-top-color": "--line-strong" },
          ],
        ],
        theme,
      );
      await page.hover("[data-dt-next]");
      await assertLayout(page, [["[data-dt-next]", { "background-color": "--surface-sunken" }]], theme);
      await page.hover("[data-dt-prev]");
      await assertLayout(page, [["[data-dt-prev]", { "background-color": "--surface" }]], theme);
    });
  });

  test(`the keyboard's focus ring, which a mouse does not raise: ${theme}`, async () => {
    const ring = {
      "outline-style": "solid",
      "outline-width": "2px",
      "outline-color": "--accent",
      "outline-offset": "1px",
    };
    await withPage(fullPage, { colorScheme: theme }, async (page) => {
      await page.press("Tab");
      await assertLayout(page, [[".theme-toggle:focus", ring]], theme);
    });
    await withPage(fullPage, { colorScheme: theme }, async (page) => {
      await page.click(".theme-toggle");
      await assertLayout(page, [[".theme-toggle", { "outline-style": "none" }]], "light");
    });
  });

  test(`selected text: ${theme}`, async () => {
    await lookAt(passedPage, { colorScheme: theme }, async (page) => {
      const actual = await page.computed("p", ["color", "background-color"], "::selection");
      assert.deepEqual(actual, {
        color: inTheme("--ink", theme),
        "background-color": inTheme("--accent-soft", theme),
      });
    });
  });
}

test("motion stops for those who asked for less", async () => {
  const moving = async (page) =>
    page.$$eval("*", (all) =>
      all.filter((e) => {
        const style = getComputedStyle(e);
        return style.transitionDuration !== "0s" || style.animationName !== "none";
      }).length,
    );
  const addMotion = (page) =>
    page.evaluate(() => {
      const style = document.head.appendChild(document.createElement("style"));
      style.textContent =
        ".name { transition: color 1s; animation: x 1s } @keyframes x { to { top: 0 } }";
    });
  for (const [reducedMotion, expected] of [["no-preference", true], ["reduce", false]]) {
    await withPage(passedPage, { reducedMotion }, async (page) => {
      await addMotion(page);
      assert.equal((await moving(page)) > 0, expected, reducedMotion);
    });
  }
});

// Parts that only the analyzer's own reports have.
const REPORT_PARTS = `
  <div class="signal-id dut" id="dut"><span class="tag" id="dut-tag">Device</span></div>
  <div class="nav-tabs"><a id="failed-tab" data-fail href="#x">Noise</a></div>
  <div class="tile"><div class="v pass" id="v-pass">1</div><div class="v fail" id="v-fail">1</div></div>
  <span class="zoom-hint" id="hint">Drag to zoom</span>
  <div class="spectral-snap-panels"><div class="snap-panel" id="shown">1</div>
  <div class="snap-panel" id="gone" hidden>2</div></div>
  <div class="align-gauge-track" id="track"></div>
  <div class="signal-id" id="ref"><span class="tag" id="ref-tag">Reference</span></div>`;

function withParts(body) {
  return withPage(passedPage, {}, async (page) => {
    await page.evaluate((html) => {
      document.querySelector(".dash").insertAdjacentHTML("beforeend", html);
    }, REPORT_PARTS);
    await body(page);
  });
}

test("parts of the analyzer's own reports have their colours", async () => {
  await withParts(async (page) => {
    await assertLayout(
      page,
      [
        ["#ref", { "border-left-color": "--ref", "border-left-width": "3px" }],
        ["#ref-tag", { color: "--ref" }],
        ["#dut", { "border-left-color": "--dut", "border-left-width": "3px" }],
        ["#dut-tag", { color: "--dut" }],
        ["#failed-tab", { color: "--fail" }],
        ["#v-pass", { color: "--pass" }],
        ["#v-fail", { color: "--fail" }],
        ["#shown", { display: "block" }],
        ["#gone", { display: "none" }],
      ],
      "light",
    );
    const { "background-image": gradient } = await page.computed("#track", ["background-image"]);
    assert.match(gradient, /^linear-gradient\(/);
    assert.equal(gradient.match(/rgb\(/g).length, 4);
  });
});

test("the hint at zooming goes at 960 pixels", async () => {
  await withParts(async (page) => {
    for (const [width, isShown] of [[961, 1], [960, 0]]) {
      await page.resize(width);
      assert.equal(await page.countVisible("#hint"), isShown, `${width} pixels`);
    }
  });
});

test("plots are 340 pixels high, one kind of them 210", () => {
  const html = readFileSync(passedPage, "utf8");
  const heights = [...html.matchAll(/^\.zoom-frame[^{]*\{[^}]*\bheight: (\d+px);/gm)].map((m) => m[1]);
  assert.deepEqual(heights, ["340px", "210px"]);
});
