// axe-core on the page, in both themes. What it finds must stand on the lists below.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";

import { lookAt, testOnce } from "./support/browser.js";
import { pageOf } from "./support/program.js";
import { suite } from "./support/reports.js";

const test = testOnce("axe reads markup and colours, which are the same in every browser");
const AXE = readFileSync(createRequire(import.meta.url).resolve("axe-core"), "utf8");

const fullPage = pageOf(suite({ errors: 1, failed: 101, passed: 2, other: 1 }));
const passedPage = pageOf(suite({ passed: 2 }));

/** What the fixed markup forces, whatever the stylesheet says. */
const FORCED_BY_MARKUP = [
  "landmark-one-main", // the column is a plain block, there is no main element
  "page-has-heading-one", // the sections' titles are of the third level, above them is none
  "region", // so the texts stand outside of any landmark
];

/**
 * Texts and backgrounds of less contrast than asked for (4.5 to 1, large ones 3 to 1)
 * that the fixed palette forces.
 */
const MUTED_LIGHT = "#8b96a1 on #ffffff"; // --muted on --surface: labels, notes, header cells
const MUTED_DARK = "#5c6b78 on #161d24";
const BADGE = "#2e7d32 on #e6f2e6"; // --pass on --pass-soft: 4.44 to 1
const FORCED_BY_PALETTE = {
  light: {
    full: [MUTED_LIGHT, BADGE, "#f1c9c9 on #c62828"], // the label on the verdict tile
    passed: [MUTED_LIGHT, BADGE, "#cbdfcc on #2e7d32"],
  },
  dark: {
    full: [MUTED_DARK, "#f8e1de on #e2857b", "#ffffff on #e2857b"], // its label and its white value
    passed: [MUTED_DARK, "#dbefdc on #6fbf73", "#ffffff on #6fbf73"],
  },
};

async function violations(page) {
  await page.evaluate(AXE);
  const result = await page.evaluate(() => window.axe.run());
  assert.ok(result.passes.length > 10, "axe looked at the page");
  return result.violations;
}

function contrastPairs(violation) {
  const pairs = violation.nodes.map(({ any: [{ data }] }) => `${data.fgColor} on ${data.bgColor}`);
  return [...new Set(pairs)].sort();
}

for (const [name, path] of [["full", fullPage], ["passed", passedPage]]) {
  for (const theme of ["light", "dark"]) {
    test(`no violation but the forced ones: ${name} page, ${theme}`, async () => {
      await lookAt(path, { colorScheme: theme }, async (page) => {
        const found = await violations(page);
        const contrast = found.find(({ id }) => id === "color-contrast");
        assert.deepEqual(contrastPairs(contrast), FORCED_BY_PALETTE[theme][name].sort());
        const others = found.filter((violation) => violation !== contrast);
        assert.deepEqual(others.map(({ id }) => id).sort(), FORCED_BY_MARKUP);
      });
    });
  }
}
