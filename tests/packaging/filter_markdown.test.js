// filters/markdown.jq: what GitHub's own renderer and a second Markdown library make of
// the table is nothing but the table, whatever the names and texts hold.

import assert from "node:assert/strict";
import { test } from "node:test";
import remarkGfm from "remark-gfm";
import remarkGithub from "remark-github";
import remarkParse from "remark-parse";
import { unified } from "unified";
import { EXAMPLES, run, summarise, temporaryFolder } from "./support.js";
import {
  HOSTILE,
  NO_SUMMARIES,
  filtered,
  hostileSummary,
  hostileTree,
  manyReports,
  report,
  summaryOf,
} from "./filter_samples.js";

// The tree with mentions and references resolved, as GitHub does it.
function parse(markdown) {
  const reader = unified()
    .use(remarkParse)
    .use(remarkGfm)
    .use(remarkGithub, { repository: "owner/project" });
  return reader.runSync(reader.parse(markdown));
}

const nodesOf = (node) => [node, ...(node.children ?? []).flatMap(nodesOf)];
const textOf = (node) => node.value ?? (node.children ?? []).map(textOf).join("");
const ofType = (node, type) => nodesOf(node).filter((each) => each.type === type);

// GitHub's renderer: how often each element is there.
function elementsOf(markdown) {
  const extensions = ["table", "strikethrough", "autolink", "tagfilter", "tasklist"];
  const args = [...extensions.flatMap((each) => ["-e", each]), "--unsafe"];
  const html = run("cmark-gfm", args, { input: markdown }).stdout;
  const counts = {};
  for (const [, name] of html.matchAll(/<([a-z!?][a-z0-9]*)/gi)) {
    counts[name] = (counts[name] ?? 0) + 1;
  }
  return counts;
}

// Names and texts as they are shown.
const shown = (text) =>
  text
    .replace(/[\t-\r\u0085\u2028\u2029]/g, " ")
    // eslint-disable-next-line no-control-regex
    .replace(/[\0-\x1f\x7f-\x9f\u202a-\u202e\u2066-\u2069]/g, "\ufffd") || "(empty)";
const list = (names) => names.map(shown).join(", ");

function expectedRow(file) {
  const { reason, verdict, error, failed_checks: failed = [], non_gating_checks: soft = [] } = file;
  const why = [
    ...(error ? [shown(error)] : []),
    ...(failed.length > 0 ? [list(failed)] : []),
    ...(soft.length > 0 ? [`not gating: ${list(soft)}`] : []),
  ];
  const result = verdict ?? (reason === "unreadable" ? "unreadable" : "no report");
  return [result, shown(file.relative_path), why.join("; ")];
}

const ORDER = ["ERROR", "FAIL", "unreadable", "not_analyze_report", "PASS"];
const worstFirst = ({ reports, other_files: others }) =>
  ORDER.flatMap((kind) =>
    [...reports, ...others].filter(({ verdict, reason }) => kind === (verdict ?? reason)),
  );

// What stands outside the code spans of a cell: what the filter itself writes.
const OWN_TEXT = /^(?:[|`, ;#rh]|not gating: |\(empty\))*$/i;

function checkTable(markdown, summary) {
  const files = worstFirst(summary);
  const tree = parse(markdown);
  const kinds = new Set(nodesOf(tree).map(({ type }) => type));
  const allowed = ["root", "heading", "paragraph", "text", "inlineCode", "table", "tableRow", "tableCell"];
  assert.deepEqual([...kinds].filter((kind) => !allowed.includes(kind)), []);

  const [, ...rows] = ofType(tree, "tableRow");
  const cells = rows.map((row) => ofType(row, "tableCell"));
  assert.deepEqual(
    cells.map((row) => row.map((cell) => textOf(cell).trim())),
    files.slice(0, 200).map((file) => expectedRow(file).map((text) => text.trim())),
  );
  for (const [, name, why] of cells) {
    for (const text of [...ofType(name, "text"), ...ofType(why, "text")]) {
      assert.match(text.value, OWN_TEXT);
    }
  }
  const codes = ofType(tree, "inlineCode");
  assert.deepEqual(codes.filter(({ value }) => /^\s*(#[0-9a-f]{3,8}|(rgb|hsl)a?\(.*\))\s*$/i.test(value)), []);

  const count = rows.length;
  assert.deepEqual(elementsOf(markdown), {
    h2: 1,
    p: files.length > 200 ? 2 : 1,
    ...(codes.length > 0 && { code: codes.length }),
    ...(count > 0 && { table: 1, thead: 1, tbody: 1, tr: count + 1, th: 3, td: 3 * count }),
  });
}

test("the table of the bundled reports is as the summary has it", (t) => {
  const folder = temporaryFolder(t);
  const summary = summarise(EXAMPLES, folder);
  checkTable(filtered(t, "markdown", `${folder}/index.json`), summary);
});

test("headline, order and one row of each kind are written as documented", (t) => {
  const summary = summaryOf(
    "the reports",
    [
      report("one.html", "PASS", { non_gating_checks: ["Check C"] }),
      report("a|b/two.html", "FAIL", { failed_checks: ["Check A", "`B`"], non_gating_checks: ["Check C"] }),
      report("three.html", "ERROR", { error: "It broke\nfor good" }),
      report("four.html", "PASS"),
    ],
    [
      { relative_path: "notes.html", reason: "not_analyze_report" },
      { relative_path: "lost.html", reason: "unreadable" },
    ],
  );
  assert.equal(
    filtered(t, "markdown", summary),
    `## Suite Verdict: FAIL

4 reports in \`the reports\`: 2 passed, 1 failed, 1 errored. Other files: 2.

| Result | File | Why |
|---|---|---|
| ERROR | \`three.html\` | \`It broke for good\` |
| FAIL | \`a\`&#124;\`b/two.html\` | \`Check A\`, &#96;\`B\`&#96;; not gating: \`Check C\` |
| unreadable | \`lost.html\` |  |
| no report | \`notes.html\` |  |
| PASS | \`one.html\` | not gating: \`Check C\` |
| PASS | \`four.html\` |  |
`,
  );
});

test("no name and no text becomes markup, a link, a mention or HTML", (t) => {
  const { scanned_directory: directory, reports, other_files: others } = hostileSummary();
  // At most 200 rows are shown of each.
  const files = [...reports, ...others];
  for (let first = 0; first < files.length; first += 200) {
    const some = files.slice(first, first + 200);
    const summary = summaryOf(
      directory,
      some.filter(({ verdict }) => verdict),
      some.filter(({ reason }) => reason),
    );
    checkTable(filtered(t, "markdown", summary), summary);
  }
});

test("nor does one of a real file or report", (t) => {
  const { summary, file } = hostileTree(t);
  checkTable(filtered(t, "markdown", file), summary);
});

test("the readers do see markup, links and mentions, so these tests can fail", () => {
  const raw = HOSTILE.map((text) => `\n\nx ${text.replace(/^ +/, "")}`).join("");
  const kinds = new Set(nodesOf(parse(raw)).map(({ type }) => type));
  for (const kind of ["link", "html", "image", "strong", "emphasis", "delete", "inlineCode"]) {
    assert.ok(kinds.has(kind), kind);
  }
  const links = ofType(parse(raw), "link").map(({ url }) => url);
  for (const url of ["https://github.com/user", "https://github.com/owner/project/issues/123"]) {
    assert.ok(links.includes(url), links.join());
  }
  const elements = elementsOf(raw);
  for (const element of ["a", "img", "h1", "strong", "em", "del", "code"]) {
    assert.ok(elements[element] > 0, element);
  }
});

test("the verdict of the headline is the page's Suite Verdict", (t) => {
  const other = { relative_path: "x.html", reason: "not_analyze_report" };
  const passed = report("a.html", "PASS");
  for (const [verdict, reports, others] of [
    ["PASS", [passed], []],
    ["PASS", [], []],
    ["FAIL", [passed], [other]],
    ["FAIL", [passed], [{ ...other, reason: "unreadable" }]],
    ["FAIL", [passed, report("b.html", "FAIL")], []],
    ["FAIL", [passed, report("b.html", "ERROR")], []],
  ]) {
    const markdown = filtered(t, "markdown", summaryOf("reports", reports, others));
    assert.match(markdown, new RegExp(`^## Suite Verdict: ${verdict}\n`));
  }
});

test("an empty summary has a headline and no table", (t) => {
  const markdown = filtered(t, "markdown", summaryOf("", []));
  assert.equal(
    markdown,
    "## Suite Verdict: PASS\n\n0 reports in (empty): 0 passed, 0 failed, 0 errored. Other files: 0.\n",
  );
  checkTable(markdown, summaryOf("", []));
});

test("200 rows are shown, and how many more there are", (t) => {
  const summary = (count) =>
    summaryOf("reports", Array.from({ length: count }, (_, i) => report(`${i}.html`, "PASS")));
  for (const [count, more] of [[199, null], [200, null], [201, "and 1 more"], [300, "and 100 more"]]) {
    const markdown = filtered(t, "markdown", summary(count));
    checkTable(markdown, summary(count));
    assert.equal(markdown.match(/\n\n(and .*)\n$/)?.[1] ?? null, more);
  }
});

test("of 100,000 reports those that failed come first", (t) => {
  const summary = manyReports();
  const markdown = filtered(t, "markdown", summary);
  checkTable(markdown, summary);
  assert.equal(markdown.match(/^\| FAIL \|/gm).length, 200);
  assert.match(markdown, /\nand 99800 more\n$/);
});

test("what is no summary is refused", (t) => {
  for (const each of NO_SUMMARIES) {
    assert.equal(filtered(t, "markdown", each, { status: 5 }), "");
  }
});
