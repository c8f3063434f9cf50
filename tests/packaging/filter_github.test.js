// filters/github.jq: each line is one command, as the runner reads it, and says what
// was meant.

import assert from "node:assert/strict";
import { test } from "node:test";
import { EXAMPLES, summarise, temporaryFolder } from "./support.js";
import {
  NO_SUMMARIES,
  filtered,
  hostileSummary,
  hostileTree,
  manyReports,
  report,
  summaryOf,
} from "./filter_samples.js";

const MESSAGE_ESCAPES = [["%0D", "\r"], ["%0A", "\n"], ["%25", "%"]];
const PROPERTY_ESCAPES = [["%0D", "\r"], ["%0A", "\n"], ["%3A", ":"], ["%2C", ","], ["%25", "%"]];
const unescaped = (text, escapes) =>
  escapes.reduce((before, [escape, character]) => before.replaceAll(escape, character), text);

// A line as the runner takes it apart: the name ends at a space, the properties at the
// first "::" behind it, a property at a ",", its name at the first "=".
function commandOf(line) {
  assert.ok(line.startsWith("::"), line);
  const end = line.indexOf("::", 2);
  assert.ok(end > 0, line);
  const [, level, list] = line.slice(2, end).match(/^(\S+) (.*)$/);
  const properties = list.split(",").map((each) => {
    const [, name, value] = each.match(/^([a-z]+)=(.*)$/);
    return [name, unescaped(value, PROPERTY_ESCAPES)];
  });
  return {
    level,
    ...Object.fromEntries(properties),
    message: unescaped(line.slice(end + 2), MESSAGE_ESCAPES),
  };
}

// What any reader takes for a line.
const commandsOf = (text) =>
  text
    .split(/\r\n|[\n\v\f\r\u0085\u2028\u2029]/)
    .slice(0, -1)
    .map(commandOf);

const shown = (text) =>
  // eslint-disable-next-line no-control-regex
  text.replace(/[\0-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f\u2028-\u202e\u2066-\u2069]/g, "\ufffd");

const command = (level, what, { relative_path: file }, message) => ({
  level,
  title: shown(`${what}: ${file}`),
  message: shown(message),
});

function expected({ reports, other_files: others }) {
  const failure = ({ failed_checks: failed }) =>
    failed.length > 0 ? `Failed checks: ${failed.join(", ")}` : "The report names no failed check.";
  return [
    ...reports
      .filter(({ verdict }) => verdict === "ERROR")
      .map((each) => command("error", "ERROR", each, each.error || "The report names no error.")),
    ...others
      .filter(({ reason }) => reason === "unreadable")
      .map((each) => command("error", "Unreadable", each, "The file could not be read.")),
    ...reports
      .filter(({ verdict }) => verdict === "FAIL")
      .map((each) => command("error", "FAIL", each, failure(each))),
    ...others
      .filter(({ reason }) => reason === "not_analyze_report")
      .map((each) => command("warning", "No report", each, "This file is no analyze report.")),
  ];
}

const check = (t, summary, file = summary) =>
  assert.deepEqual(commandsOf(filtered(t, "github", file)), expected(summary));

test("the bundled reports become an error for each that did not pass, and a warning", (t) => {
  const folder = temporaryFolder(t);
  const summary = summarise(EXAMPLES, folder);
  check(t, summary, `${folder}/index.json`);
  assert.equal(expected(summary).length, summary.failed + summary.errored + summary.other_files.length);
});

test("one command of each kind is written as documented", (t) => {
  const summary = summaryOf(
    "reports",
    [
      report("a/one.html", "PASS", { non_gating_checks: ["Check C"] }),
      report("a/two.html", "FAIL", { failed_checks: ["100 %: A, B", "C"] }),
      report("a,b/three.html", "ERROR", { error: "It broke:\nfor good" }),
    ],
    [
      { relative_path: "notes.html", reason: "not_analyze_report" },
      { relative_path: "lost: 5%.html", reason: "unreadable" },
    ],
  );
  assert.equal(
    filtered(t, "github", summary),
    `::error title=ERROR%3A a%2Cb/three.html::It broke:%0Afor good
::error title=Unreadable%3A lost%3A 5%25.html::The file could not be read.
::error title=FAIL%3A a/two.html::Failed checks: 100 %25: A, B, C
::warning title=No report%3A notes.html::This file is no analyze report.
`,
  );
});

test("no name and no text starts or changes a command", (t) => check(t, hostileSummary()));

test("nor does one of a real file or report", (t) => {
  const { summary, file } = hostileTree(t);
  check(t, summary, file);
});

test("a summary in which all is well or nothing is gives no command", (t) => {
  assert.equal(filtered(t, "github", summaryOf("reports", [report("a.html", "PASS")])), "");
  assert.equal(filtered(t, "github", summaryOf("", [])), "");
});

test("100,000 reports give a command for each that failed", (t) => {
  assert.equal(commandsOf(filtered(t, "github", manyReports())).length, 10_000);
});

test("what is no summary is refused", (t) => {
  for (const each of NO_SUMMARIES) {
    assert.equal(filtered(t, "github", each, { status: 5 }), "");
  }
});
