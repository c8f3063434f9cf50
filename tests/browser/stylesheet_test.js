// The stylesheet as it is written: palette, order, colours, the rules that must exist.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";

import { lookAt, testOnce } from "./support/browser.js";
import { DARK_BLOCK, LIGHT_BLOCK } from "./support/palette.js";
import { pageOf } from "./support/program.js";
import { suite } from "./support/reports.js";
import { readRules, selectorsOf, written } from "./support/stylesheet.js";

const test = testOnce("the stylesheet is read as it is written");
const plainPage = pageOf(suite({ passed: 1, failed: 1 }));
const erroredPage = pageOf(suite({ errors: 1 }));

const SYSTEM_DARK = "(prefers-color-scheme: dark)";
const LESS_MOTION = "(prefers-reduced-motion: reduce)";

async function rulesOf(path, element) {
  let rules;
  await lookAt(path, {}, async (page) => {
    rules = await readRules(page, element);
  });
  return rules;
}

test("the light block holds the palette, the shadow and the fonts, in order and nothing else", async () => {
  const [light] = await rulesOf(plainPage);
  assert.equal(light.selector, ":root");
  assert.deepEqual(light.media, []);
  assert.deepEqual(light.declarations, LIGHT_BLOCK.map((pair) => [...pair, ""]));
});

test("the explicit dark block holds the dark palette, in order and nothing else", async () => {
  const [, dark] = await rulesOf(plainPage);
  assert.equal(dark.selector, ':root[data-theme="dark"]');
  assert.deepEqual(dark.media, []);
  assert.deepEqual(dark.declarations, DARK_BLOCK.map((pair) => [...pair, ""]));
});

test("the system's dark block holds the dark palette, unless light was chosen", async () => {
  const [, , dark, next] = await rulesOf(plainPage);
  assert.equal(dark.selector, ':root:not([data-theme="light"])');
  assert.deepEqual(dark.media, [SYSTEM_DARK]);
  assert.deepEqual(dark.declarations, DARK_BLOCK.map((pair) => [...pair, ""]));
  assert.deepEqual(next.media, [], "the media block holds one rule");
});

test("the two dark blocks are equal word for word", () => {
  const html = readFileSync(plainPage, "utf8");
  const bodies = [':root[data-theme="dark"] {', ':root:not([data-theme="light"]) {'].map((start) => {
    const from = html.indexOf(start);
    assert.notEqual(from, -1, start);
    return html.slice(from + start.length, html.indexOf("}", from)).trim().split(/\s*\n\s*/);
  });
  assert.equal(bodies[0].length, 27);
  assert.deepEqual(bodies[1], bodies[0]);
});

test("the values of the palette are written to the letter", () => {
  const html = readFileSync(plainPage, "utf8");
  for (const [name, value] of [...LIGHT_BLOCK, ...DARK_BLOCK]) {
    assert.ok(html.includes(`${name}: ${value};\n`), `${name}: ${value}`);
  }
});

test("the six blocks stand in their order", async () => {
  const rules = await rulesOf(plainPage);
  assert.deepEqual(
    rules.slice(0, 6).map((rule) => [rule.selector, ...rule.media]),
    [
      [":root"],
      [':root[data-theme="dark"]'],
      [':root:not([data-theme="light"])', SYSTEM_DARK],
      ["*"],
      ["body"],
      ["::selection"],
    ],
  );
  assert.ok(rules.length > 100);
  const last = rules.at(-1);
  assert.deepEqual(last.media, [LESS_MOTION]);
  assert.deepEqual(rules.filter((rule) => rule.media.includes(LESS_MOTION)), [last]);
});

test("the global rules set the box model, the background and the selection", async () => {
  const [, , , all, body, selection] = await rulesOf(plainPage);
  assert.deepEqual(written(all), [["box-sizing", "border-box"]]);
  assert.deepEqual(new Map(written(body)).get("background"), "var(--bg)");
  assert.deepEqual(Object.fromEntries(written(selection)), {
    background: "var(--accent-soft)",
    color: "var(--ink)",
  });
});

test("reduced motion switches every transition and animation off, pseudo-elements included", async () => {
  const last = (await rulesOf(plainPage)).at(-1);
  assert.deepEqual(selectorsOf(last).sort(), ["*", "::after", "::before"]);
  const values = new Map(last.declarations.map(([name, ...rest]) => [name, rest.join(" !")]));
  assert.equal(values.get("animation-name"), "none !important");
  assert.equal(values.get("transition-property"), "none !important");
  assert.ok([...values.values()].every((value) => value.endsWith(" !important")));
});

const ALLOWED_COLOURS = [
  [".kpi.verdict .k", "color", "rgba(255, 255, 255, 0.75)"],
  [".kpi.verdict .v", "color", "rgb(255, 255, 255)"],
];

test("components take their colours through custom properties", async () => {
  await lookAt(plainPage, {}, async (page) => {
    const rules = (await readRules(page)).slice(3);
    const declarations = rules.flatMap((rule) =>
      written(rule).map(([property, value]) => [rule.selector, property, value]),
    );
    const coloured = await page.evaluate(
      (list) =>
        list.filter(([, property, value]) => {
          const words = value.replace(/var\(--[a-z-]+\)/g, "").match(/[a-z-]+\(|#?[a-z0-9-]+/gi) ?? [];
          return words.some((word) => {
            if (/^(rgba?|hsla?|hwb|lab|lch|oklab|oklch|color|color-mix|light-dark)\($/i.test(word)) {
              return true;
            }
            const isKeyword = /^(inherit|initial|unset|revert|revert-layer|currentcolor)$/i.test(word);
            const mayBeClear = word === "transparent" && property.startsWith("border");
            return !isKeyword && !mayBeClear && window.CSS.supports("color", word);
          });
        }),
      declarations,
    );
    assert.ok(declarations.length > 400);
    assert.deepEqual(coloured, ALLOWED_COLOURS);
  });
});

test("the colours of the markup come from the palette, too, apart from the white glyph", async () => {
  await lookAt(pageOf(suite({ passed: 1, failed: 1, errors: 1, other: 1 })), {}, async (page) => {
    const styles = await page.$$eval("[style]", (elements) =>
      elements.filter((e) => !e.closest("svg")).map((e) => e.getAttribute("style")),
    );
    const notes = Array(4).fill("color:var(--muted);font-size:0.85em");
    assert.deepEqual(styles.sort(), [...notes, "text-align:left", "text-align:left"]);
  });
});

// Each is the end of a selector that must have a rule.
const PAGE_SELECTORS = [
  ".dash", ".topbar", ".brand", ".glyph", ".name", ".topbar .meta", ".meta b", ".topbar .right",
  ".theme-toggle", ".theme-toggle:hover", ".theme-toggle:focus-visible", ".signal-row",
  ".signal-id", ".signal-id.single", ".tag", ".fname", ".kpi-grid", ".kpi", ".kpi .k", ".kpi .v",
  ".kpi.verdict", ".kpi.verdict.ok", ".card", ".card-head", ".htext", "h3", ".sub", ".card-body",
  ".compare-table-title", ".badge", ".badge.pass", ".badge.fail", "table.dt",
  "table.dt.dt-numbered td:first-child", ".overflow-x", ".dt-pager", ".dt-pager button",
  ".dt-pager-status", "footer", ".footer-row-top", "footer b",
];

const REPORT_SELECTORS = [
  ".signal-id.dut", ".signal-meta", ".kpi .v small", ".kpi-sub", ".kpi-note", ".nav-tabs",
  ".nav-tabs a", "a[data-fail]", ".badge.info", ".card-body > p.desc", ".tile-row", ".tile",
  ".tile .k", ".tile .v", ".tile .v.pass", ".tile .v.fail", ".tile .pct", ".tile .v-sub",
  ".tile .delta", ".card-row-gap", ".tile-wide", ".diffrate-bar", ".diffrate-bar-track",
  ".diffrate-bar-fill", ".diffrate-bar-label", ".compare-table-wrap", ".compare-table",
  ".loudness-delta-label", ".align-gauge", ".align-gauge-track", ".align-gauge-pointer",
  ".align-gauge-value", ".align-gauge-num", ".align-gauge-word", ".align-gauge-word.excellent",
  ".align-gauge-word.good", ".align-gauge-word.fair", ".align-gauge-word.poor",
  ".align-gauge-caption", ".spectral-snap-tabs", ".snap-tab", ".snap-tab.active", ".snap-tab-dot",
  ".snap-tab-db", ".spectral-snap-panels .snap-panel[hidden]", ".spectral-rollup",
  ".channel-gallery-heading", ".scope", ".scope-head", ".zoom-toolbar", ".zoom-hint",
  ".zoom-reset", ".trace-toggle", ".trace-toggle.active", ".trace-toggle.ref-active",
  ".trace-toggle.dut-active", ".zoom-frame", ".zoom-box", ".legend-row", ".chart-note",
  "footer .footer-row-tester",
];

test("every class of the page and of the analyzer's own reports has a rule", async () => {
  const rules = (await rulesOf(plainPage)).filter((rule) => rule.media.length === 0);
  const known = rules.filter((rule) => rule.text !== "").flatMap(selectorsOf);
  const hasRule = (wanted) =>
    known.some((selector) => selector === wanted || selector.endsWith(` ${wanted}`) ||
      (!wanted.includes(" ") && selector.endsWith(wanted) && /^[.a-z]/.test(wanted) &&
        selector.at(-wanted.length - 1) === " "));
  assert.deepEqual([...PAGE_SELECTORS, ...REPORT_SELECTORS].filter((wanted) => !hasRule(wanted)), []);
});

test("the declared columns of the tiles, the centred column and the inline-flex parts", async () => {
  const rules = await rulesOf(plainPage);
  const declared = (selector, property, media) =>
    rules
      .filter((rule) => selectorsOf(rule).includes(selector) && rule.media.join() === media)
      .flatMap(written)
      .filter(([name]) => name === property)
      .map(([, value]) => value);
  assert.deepEqual(declared(".kpi-grid", "grid-template-columns", ""), [
    "repeat(3, minmax(150px, 1fr)) minmax(200px, 1.4fr)",
  ]);
  assert.deepEqual(declared(".kpi-grid", "grid-template-columns", "(max-width: 720px)"), [
    "repeat(auto-fit, minmax(150px, 1fr))",
  ]);
  assert.deepEqual(declared(".dash", "margin", ""), ["0px auto"]);
  assert.deepEqual(declared(".theme-toggle", "display", ""), ["inline-flex"]);
  assert.deepEqual(declared(".badge", "display", ""), ["inline-flex"]);
  assert.deepEqual(declared("table.dt", "width", ""), ["100%"]);
});

test("a page with errored reports carries the block for five tiles behind the stylesheet", async () => {
  const block = await rulesOf(erroredPage, 1);
  const selector = ".kpi-grid.with-errored";
  const columns = block.map((rule) => [rule.selector, ...rule.media, ...written(rule)[0]]);
  assert.deepEqual(columns, [
    [selector, "grid-template-columns", "repeat(4, minmax(120px, 1fr)) minmax(200px, 1.4fr)"],
    [selector, "(max-width: 720px)", "grid-template-columns", "repeat(auto-fit, minmax(150px, 1fr))"],
  ]);
});

test("a page without errored reports has one style element, one with them two", async () => {
  for (const [path, count] of [[plainPage, 1], [erroredPage, 2]]) {
    await lookAt(path, {}, async (page) => {
      assert.equal(await page.evaluate(() => document.styleSheets.length), count);
    });
  }
});
