// The JSON Schema accepts what the program writes and refuses everything else.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import {
  EXAMPLES,
  SOURCE,
  copyReport,
  filesBelow,
  matchJson,
  read,
  run,
  summarise,
  temporaryFolder,
} from "./support.js";

test("the summary of the bundled reports follows the schema and adds up", (t) => {
  const summary = summarise(EXAMPLES, temporaryFolder(t));
  assert.equal(summary.reports.length, summary.total_reports);
  assert.equal(summary.total_reports, summary.passed + summary.failed + summary.errored);
  assert.ok(summary.passed > 0 && summary.failed > 0 && summary.errored > 0);
  assert.ok(summary.other_files.length > 0);
});

test("the summary of an empty folder follows the schema", (t) => {
  const folder = temporaryFolder(t);
  fs.mkdirSync(`${folder}/reports`);
  assert.equal(summarise(`${folder}/reports`, `${folder}/out`, { status: 0 }).total_reports, 0);
});

test("the summary of hostile names and of an unreadable file follows the schema", (t) => {
  const folder = temporaryFolder(t);
  for (const name of ['"quoted"', "back\\slash", "tab\there", "line\nbreak", "bell\u0007", "snow☃"]) {
    copyReport(t, "PASS", path.join(folder, "reports", name, `${name}.HTM`));
  }
  run("mkfifo", [`${folder}/reports/pipe.html`]);
  const summary = summarise(`${folder}/reports`, `${folder}/out`);
  assert.equal(summary.passed, 6);
  assert.deepEqual(summary.other_files, [{ relative_path: "pipe.html", reason: "unreadable" }]);
});

test("each JSON file that the other tests compare with follows the schema", () => {
  const golden = path.join(SOURCE, "tests/cli/golden");
  const files = filesBelow(golden).filter((name) => name.endsWith(".json"));
  assert.ok(files.length > 0);
  for (const file of files) {
    assert.deepEqual(matchJson(path.join(golden, file)), [], file);
  }
});

// What is wrong, how to make it so, and which rule finds it.
const WRONG = [
  ["a key is missing", (s) => delete s.errored, "required"],
  ["there is a key too many", (s) => (s.version = "1"), "additionalProperties"],
  ["a count is negative", (s) => (s.passed = -1), "minimum"],
  ["a count is a fraction", (s) => (s.failed = 0.5), "type"],
  ["a count is a string", (s) => (s.total_reports = "3"), "type"],
  ["the directory is null", (s) => (s.scanned_directory = null), "type"],
  ["the reports are an object", (s) => (s.reports = {}), "type"],
  ["a report's key is missing", (s) => delete s.reports[0].error, "required"],
  ["a report has a key too many", (s) => (s.reports[0].status = 0), "additionalProperties"],
  ["a verdict is in lower case", (s) => (s.reports[0].verdict = "pass"), "enum"],
  ["there are 17 failed checks", (s) => (s.reports[0].failed_checks = Array(17).fill("x")), "maxItems"],
  ["a check is no string", (s) => (s.reports[0].non_gating_checks = [7]), "type"],
  ["a check's name has 40 characters", (s) => (s.reports[0].failed_checks = ["x".repeat(40)]), "maxLength"],
  ["an error text has 640 characters", (s) => (s.reports[0].error = "x".repeat(640)), "maxLength"],
  ["a report that passed has an error text", (s) => (s.reports[0].error = "x"), "const"],
  ["a run that ended in an error has a mode", (s) => (s.reports[1].analysis_mode = "x"), "const"],
  ["a path is absolute", (s) => (s.reports[0].relative_path = "/etc/x.html"), "pattern"],
  ["a path is empty", (s) => (s.other_files[0].relative_path = ""), "pattern"],
  ["a reason is unknown", (s) => (s.other_files[0].reason = "empty"), "enum"],
  ["an other file has a verdict", (s) => (s.other_files[0].verdict = "PASS"), "additionalProperties"],
];

const report = (verdict, error) => ({
  relative_path: `${verdict}.html`,
  verdict,
  analysis_mode: "",
  analysis_mode_sub: "",
  failed_checks: [],
  non_gating_checks: [],
  error,
});

const right = () => ({
  scanned_directory: "reports",
  total_reports: 2,
  passed: 1,
  failed: 0,
  errored: 1,
  reports: [report("PASS", ""), report("ERROR", "It broke")],
  other_files: [{ relative_path: "notes.html", reason: "not_analyze_report" }],
});

function problemsOf(t, summary) {
  const file = path.join(temporaryFolder(t), "summary.json");
  fs.writeFileSync(file, JSON.stringify(summary));
  return { file, rules: matchJson(file).map((error) => error.keyword) };
}

// By the README's command, with another file.
const [, CHECK] = read(SOURCE, "README.md").match(/^(python3 -c '.*jsonschema\.validate.*') \\$/m);
const checkByHand = (file, status) =>
  run("sh", ["-c", `${CHECK} "$@"`, "-", file, path.join(SOURCE, "docs/summary.schema.json")], {
    status,
    env: { PATH: "/usr/bin:/bin" },
  });

test("the document that the wrong ones are made of is right", (t) => {
  const { file, rules } = problemsOf(t, right());
  assert.deepEqual(rules, []);
  checkByHand(file, 0);
});

for (const [what, spoil, rule] of WRONG) {
  test(`the schema refuses a document in which ${what}`, (t) => {
    const summary = right();
    spoil(summary);
    const { file, rules } = problemsOf(t, summary);
    assert.ok(rules.includes(rule), rules.join());
    checkByHand(file, 1);
  });
}

test("the schema's own text follows the rules of its dialect", () => {
  const schema = JSON.parse(read(SOURCE, "docs/summary.schema.json"));
  assert.equal(schema.$schema, "https://json-schema.org/draft/2020-12/schema");
});
