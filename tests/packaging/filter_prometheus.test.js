// filters/prometheus.jq: promtool takes it, and the numbers are those of the summary.

import assert from "node:assert/strict";
import fs from "node:fs";
import process from "node:process";
import { before, test } from "node:test";
import { EXAMPLES, copyReport, run, summarise, temporaryFolder } from "./support.js";
import { HOSTILE, NO_SUMMARIES, filtered, manyReports, report, summaryOf } from "./filter_samples.js";

const PROMTOOL = process.env.FTHSUMMARY_PROMTOOL;
before(() => assert.ok(PROMTOOL, "FTHSUMMARY_PROMTOOL is not set: run tools/test packaging"));

const promtool = (input, status = 0) => run(PROMTOOL, ["check", "metrics"], { input, status });

// One sample a line, its labels' escapes undone; promtool must have nothing to say.
function samplesOf(text) {
  assert.equal(promtool(text).stderr, "");
  const lines = text.split("\n").filter((line) => line !== "" && !line.startsWith("#"));
  return lines.map((line) => {
    const [, name, labels, value] = line.match(/^(\w+)\{((?:\w+="(?:[^"\\]|\\.)*",?)*)\} (\d+)$/s);
    const pairs = [...labels.matchAll(/(\w+)="((?:[^"\\]|\\.)*)"/gs)].map(([, label, escaped]) => [
      label,
      escaped.replace(/\\(.)/gs, (_, each) => (each === "n" ? "\n" : each)),
    ]);
    return { name, ...Object.fromEntries(pairs), value: Number(value) };
  });
}

function expected(summary) {
  const directory = summary.scanned_directory.replaceAll("\0", "\ufffd");
  const other = summary.other_files.length;
  const passed = summary.failed + summary.errored + other === 0;
  return [
    ...["passed", "failed", "errored"].map((result) => ({
      name: "fthsummary_reports",
      directory,
      result,
      value: summary[result],
    })),
    { name: "fthsummary_other_files", directory, value: other },
    { name: "fthsummary_suite_passed", directory, value: passed ? 1 : 0 },
  ];
}

const check = (t, summary, file = summary) =>
  assert.deepEqual(samplesOf(filtered(t, "prometheus", file)), expected(summary));

test("the metrics of the bundled reports are those of the summary", (t) => {
  const folder = temporaryFolder(t);
  check(t, summarise(EXAMPLES, folder), `${folder}/index.json`);
});

test("the metrics are written as documented", (t) => {
  const reports = ["PASS", "PASS", "PASS", "FAIL", "FAIL", "ERROR"];
  const summary = summaryOf(
    'a "b"\\c\nd',
    reports.map((verdict, i) => report(`${i}.html`, verdict)),
    [{ relative_path: "notes.html", reason: "not_analyze_report" }],
  );
  assert.equal(
    filtered(t, "prometheus", summary),
    `# HELP fthsummary_reports Analyze reports, by result.
# TYPE fthsummary_reports gauge
fthsummary_reports{directory="a \\"b\\"\\\\c\\nd",result="passed"} 3
fthsummary_reports{directory="a \\"b\\"\\\\c\\nd",result="failed"} 2
fthsummary_reports{directory="a \\"b\\"\\\\c\\nd",result="errored"} 1
# HELP fthsummary_other_files Scanned files that are no analyze reports or could not be read.
# TYPE fthsummary_other_files gauge
fthsummary_other_files{directory="a \\"b\\"\\\\c\\nd"} 1
# HELP fthsummary_suite_passed 1 if the page's Suite Verdict is PASS, 0 if it is FAIL.
# TYPE fthsummary_suite_passed gauge
fthsummary_suite_passed{directory="a \\"b\\"\\\\c\\nd"} 0
`,
  );
});

for (const [what, names, status, passed] of [
  ["reports passed", ["PASS"], 0, 1],
  ["one failed", ["PASS", "FAIL"], 1, 0],
  ["one errored", ["PASS", "ERROR"], 1, 0],
  ["there is nothing", [], 0, 1],
]) {
  test(`the suite's metric is ${passed} when ${what}, as the page's verdict is`, (t) => {
    const folder = temporaryFolder(t);
    fs.mkdirSync(`${folder}/reports`);
    names.forEach((verdict) => copyReport(t, verdict, `${folder}/reports/${verdict}.html`));
    const summary = summarise(`${folder}/reports`, `${folder}/out`, { status });
    check(t, summary, `${folder}/out/index.json`);
    assert.equal(samplesOf(filtered(t, "prometheus", summary)).at(-1).value, passed);
    const page = fs.readFileSync(`${folder}/out/index.html`, "utf8");
    assert.equal(page.match(/Suite Verdict<\/div>\n<div class="v">(\w+)</)[1], passed ? "PASS" : "FAIL");
  });
}

test("one file that is no report makes the suite's metric 0", (t) => {
  const others = [{ relative_path: "notes.html", reason: "not_analyze_report" }];
  check(t, summaryOf("reports", [report("a.html", "PASS")], others));
});

test("a directory of any name is a label", (t) => {
  for (const directory of [HOSTILE.join("\n"), '"} 7\nfthsummary_reports{x="', "\\", '\\"', "a\0b", ""]) {
    check(t, summaryOf(directory, [report("a.html", "PASS")]));
  }
});

test("100,000 reports are counted", (t) => check(t, manyReports()));

test("promtool refuses a label that is not escaped, so these tests can fail", (t) => {
  const text = filtered(t, "prometheus", summaryOf('"', []));
  promtool(text.replaceAll('\\"', '"'), 1);
});

test("what is no summary is refused", (t) => {
  for (const each of NO_SUMMARIES) {
    assert.equal(filtered(t, "prometheus", each, { status: 5 }), "");
  }
});
