// The markup against the HTML standard.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";

import { HtmlValidate, StaticConfigLoader } from "html-validate";

import { testOnce } from "./support/browser.js";
import { HOSTILE, treeOf } from "./support/hostile.js";
import { FOR_HOSTILE_NAMES, HTML_VALIDATE_CONFIG } from "./support/html_validate_rules.js";
import { pageOf, pageWith } from "./support/program.js";
import { suite } from "./support/reports.js";

const test = testOnce("html-validate reads the file");

async function problems(path, rules) {
  const config = { ...HTML_VALIDATE_CONFIG, rules };
  const validator = new HtmlValidate(new StaticConfigLoader(config));
  const report = await validator.validateString(readFileSync(path, "utf8"), "summary.html");
  return report.results.flatMap(({ messages }) =>
    messages.map(({ ruleId, line, message }) => `${ruleId}: ${message} (line ${line})`),
  );
}

const PAGES = [
  ["empty", pageOf([])],
  ["passed", pageOf(suite({ passed: 3 }))],
  ["errored", pageOf(suite({ passed: 1, failed: 2, errors: 1, other: 2 }))],
  ["paged", pageOf(suite({ passed: 101, failed: 101, errors: 101 }))],
];
const RULES = HTML_VALIDATE_CONFIG.rules;

for (const [name, path] of PAGES) {
  test(`the markup is valid: ${name}`, async () => {
    assert.deepEqual(await problems(path, RULES), []);
  });
}

test("the markup is valid however hostile the names and texts", async () => {
  const path = pageOf(treeOf(HOSTILE));
  assert.deepEqual(await problems(path, { ...RULES, ...FOR_HOSTILE_NAMES }), []);
});

for (const rule of Object.keys(RULES)) {
  test(`the validator has to do without its rule ${rule}`, async () => {
    const found = await problems(PAGES[2][1], { ...RULES, [rule]: "error" });
    assert.deepEqual([...new Set(found.map((text) => text.split(":")[0]))], [rule]);
  });
}

test("the validator is awake", async () => {
  const broken = pageWith(PAGES[1][1], "</footer>", "</footer></main>");
  assert.match((await problems(broken, RULES)).join("\n"), /^close-order/m);
});
