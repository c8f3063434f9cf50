// What the tests of the filters share: how a filter is run, and summaries whose names
// and texts try to be something else in what it writes.

import fs from "node:fs";
import path from "node:path";
import { Buffer } from "node:buffer";
import { SOURCE, run, summarise, temporaryFolder } from "./support.js";

const range = (first, last) => Array.from({ length: last - first + 1 }, (_, i) => first + i);
const between = (codes) => codes.map((code) => `a${String.fromCodePoint(code)}b`).join("");

const COMMANDS = [
  "::error::x",
  "x\n::set-output name=a::b",
  "x\r\n::stop-commands::x",
  "##[error]x",
  "a%0A::warning::b",
  "%25%3A%2C",
  "a:b,c=d::e",
  ",title=x::y",
];

const XML_AND_HTML = [
  "]]>",
  "<![CDATA[x]]>",
  "<!-- x -->",
  "<?x?>",
  "<script>alert(1)</script>",
  '<img src="x" onerror="alert(1)">',
  "&lt;b&gt; &amp; &#64; &#x40; &",
  "</code></td></tr></table><h1>x</h1>",
  `"quoted" 'quoted'`,
  "[[ATTACHMENT|/etc/passwd]]",
  "[[[PROPERTY|a=b]]]",
];

const MARKDOWN = [
  "a|b",
  "\\|",
  "a\\",
  "|",
  "`",
  "```` x",
  "`a` | `b`",
  "``a`",
  "[text](http://x.example)",
  "![image](x)",
  "[x]: http://x.example",
  "[^1]",
  "[ ] x",
  "~~x~~ **x** _y_ *z*",
  "- x",
  "+ x",
  "1. x",
  "# x",
  "> x",
  "---",
  "| x | y |",
  "|---|---|",
  "    x",
  "x  \ny",
  "$`a`$ $x$",
];

const REFERENCES = [
  "@user",
  "@organisation/team",
  "#123",
  "GH-1",
  "owner/project#1",
  "a5c3785ed8d6a35868bc169f07e40e889087fd2e",
  "!1 $1 &1 %1 ~label",
  "http://x.example",
  "see https://x.example/y?z",
  "www.example.com",
  "a@b.example",
  "mailto:a@b.example",
  "xmpp:a@b.example",
  ":tada:",
  "#ff0000",
  "a|#0f0",
  "  #00f",
  "rgb(1, 2, 3)",
  "HSL(1, 2%, 3%)",
];

const CHARACTERS = [
  between(range(0x01, 0x08)),
  between(range(0x09, 0x0d)),
  between(range(0x0e, 0x1f)),
  between(range(0x20, 0x7f)),
  between(range(0x80, 0x9f)),
  "\u001b[31mred",
  "a\u0085b\u2028c\u2029d",
  "\u202aa\u202bb\u202cc\u202dd\u202ee\u2066f\u2067g\u2068h\u2069i",
  "\ufffe\uffff\ufeff\ufffd",
  "\u200b\u00a0é☃\u{1f600}\u{10fffd}",
  " ",
  "  two spaces  ",
  "lmth.",
];

// Each text that is tried as a name and as a text, in every place of a summary.
export const HOSTILE = [...COMMANDS, ...XML_AND_HTML, ...MARKDOWN, ...REFERENCES, ...CHARACTERS];

export const report = (relative_path, verdict, more = {}) => ({
  relative_path,
  verdict,
  analysis_mode: "",
  analysis_mode_sub: "",
  failed_checks: [],
  non_gating_checks: [],
  error: "",
  ...more,
});

// A summary as the program counts it.
export function summaryOf(scanned_directory, reports, other_files = []) {
  const count = (verdict) => reports.filter((each) => each.verdict === verdict).length;
  return {
    scanned_directory,
    total_reports: reports.length,
    passed: count("PASS"),
    failed: count("FAIL"),
    errored: count("ERROR"),
    reports,
    other_files,
  };
}

// Every text in every place; U+0000, which no real name has, is tried, too.
export function hostileSummary() {
  const texts = [...HOSTILE, "a\u0000b\u0001c\u202ed|e\u0000", ""];
  const named = (kind, text) => `${kind} ${text}/${kind}${text}.html`;
  return summaryOf(
    HOSTILE.join(""),
    texts.flatMap((text) => [
      report(named("e", text), "ERROR", { error: text }),
      report(named("f", text), "FAIL", { failed_checks: [text, text], non_gating_checks: [text] }),
      report(named("p", text), "PASS", { non_gating_checks: [text] }),
    ]),
    texts.flatMap((text) => [
      { relative_path: named("u", text), reason: "unreadable" },
      { relative_path: named("n", text), reason: "not_analyze_report" },
    ]),
  );
}

const escaped = (text) => text.replace(/[&<>"']/g, (each) => `&#${each.codePointAt(0)};`);

// A report as the program reads it.
function reportPage(verdict, { failed = [], nonGating = [], error = "" }) {
  return [
    '<div class="k">Overall Verdict</div>',
    `<div class="v">${verdict}</div>`,
    `<p class="run-error">${error}</p>`,
    '<nav class="nav-tabs">',
    ...failed.map((name) => `<a href="#" data-fail>${name}</a>`),
    ...nonGating.map((name) => `<a href="#" data-fail data-nongating>${name}</a>`),
    "</nav>",
    "",
  ].join("\n");
}

// The summary that the program writes of a folder whose names and reports hold the
// texts, cut as names and reports cut them.
export function hostileTree(test) {
  const folder = temporaryFolder(test);
  HOSTILE.forEach((text, index) => {
    const name = text.replaceAll("/", "⁄").slice(0, 60);
    const below = path.join(folder, "reports", `${index} ${name}`);
    const checks = { failed: [text.split("<")[0], text.split("<")[0]], nonGating: [text.split("<")[0]] };
    fs.mkdirSync(below, { recursive: true });
    fs.writeFileSync(`${below}/e ${name}.html`, reportPage("ERROR", { error: escaped(text) }));
    fs.writeFileSync(`${below}/f ${name}.HTM`, reportPage("FAIL", checks));
    fs.writeFileSync(`${below}/${name}.html`, "<p>no report</p>");
  });
  const latin1 = Buffer.concat([
    Buffer.from(`${folder}/reports/caf`),
    Buffer.from([0xe9]),
    Buffer.from(".html"),
  ]);
  fs.writeFileSync(latin1, reportPage("FAIL", { failed: ["x"] }));
  run("mkfifo", [`${folder}/reports/pipe.html`]);
  const summary = summarise(path.join(folder, "reports"), path.join(folder, "out"));
  return { summary, file: path.join(folder, "out/index.json") };
}

// A hundred thousand reports, one in ten of which failed.
export function manyReports() {
  return summaryOf(
    "reports",
    Array.from({ length: 100_000 }, (_, i) =>
      i % 10 === 0
        ? report(`folder ${i % 7}/report ${i}.html`, "FAIL", { failed_checks: ["Check A"] })
        : report(`folder ${i % 7}/report ${i}.html`, "PASS"),
    ),
  );
}

// What a filter makes of a summary, which is a value or the name of a file.
export function filtered(test, filter, summary, { status = 0 } = {}) {
  let file = summary;
  if (typeof summary !== "string") {
    file = path.join(temporaryFolder(test), "summary.json");
    fs.writeFileSync(file, JSON.stringify(summary));
  }
  return run("jq", ["-r", "-f", `${SOURCE}/filters/${filter}.jq`, file], { status }).stdout;
}

// What is no summary, or not all of one.
const NOTHING = { scanned_directory: "d", total_reports: 0, passed: 0, failed: 0, errored: 0, other_files: [] };
const BARE = { relative_path: "r.html", verdict: "PASS", failed_checks: [], non_gating_checks: [] };
export const NO_SUMMARIES = [
  ...[{}, [], ["text"], 1, null, { reports: [] }, { reports: [], other_files: {} }],
  { reports: [], other_files: [] },
  { ...NOTHING, reports: [1] },
  { ...NOTHING, reports: [{ relative_path: "r.html", verdict: "PASS" }] },
  { ...NOTHING, reports: [{ ...BARE, verdict: "FUTURE" }] },
];
