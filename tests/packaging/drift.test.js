// What is said in several places is said alike: the usage text, the man page, the
// completions, the README, the schema, and what the program does.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import {
  EXAMPLES,
  FIRST,
  PROGRAM,
  SOURCE,
  bundledReports,
  copyReport,
  fencedBlocks,
  read,
  run,
  summarise,
  temporaryFolder,
} from "./support.js";

const USAGE = run(PROGRAM, ["--help"]).stdout;
// Accepted, but not in the usage text.
const UNLISTED = ["--help", "--version", "-h"];
const OPTIONS = [...new Set(USAGE.match(/(?<=[\s[])--?[a-z]+/g)), ...UNLISTED].sort();
const MANUAL = read(SOURCE, "man/fthsummary.1");
const README = read(SOURCE, "README.md");

const unique = (values) => [...new Set(values)].sort();
const matches = (text, pattern) => unique([...text.matchAll(pattern)].map((match) => match[1]));

test("the usage text names three options", () => {
  assert.deepEqual(
    OPTIONS.filter((option) => !UNLISTED.includes(option)),
    ["--input", "--json", "-o"],
  );
});

test("the program takes each option that is documented and no other", () => {
  for (const option of UNLISTED) {
    run(PROGRAM, [option]);
  }
  for (const option of ["--Input", "--verbose", "-v", "-V", "-j", "-i", "--output"]) {
    assert.match(run(PROGRAM, [option], { status: 1 }).stderr, /^error: unrecognized argument/);
  }
});

test("the man page describes each option", () => {
  const described = [...MANUAL.matchAll(/^\.It (Fl .*)$/gm)]
    .filter(([line]) => !line.includes(" Ta "))
    .flatMap(([, item]) => [...item.matchAll(/Fl (-?[a-z]+)/g)].map((match) => `-${match[1]}`));
  assert.deepEqual(unique(described), OPTIONS);
});

test("the man page's synopsis names each option", () => {
  const synopsis = MANUAL.match(/^\.Sh SYNOPSIS\n(.*?)^\.Sh/ms)[1];
  assert.deepEqual(
    matches(synopsis, /Fl (-?[a-z]+)/g).map((option) => `-${option}`).sort(),
    OPTIONS,
  );
});

test("the README's table describes each option", () => {
  const cells = [...README.matchAll(/^\| (`-.*?) \|/gm)].map((match) => match[1]).join(" ");
  assert.deepEqual(matches(cells, /(?:^|[\s`])(--?[a-z]+)/g), OPTIONS);
});

test("the README's usage lines are the usage text's", () => {
  const line = USAGE.match(/^ {2}(fthsummary --input .*)$/m)[1];
  assert.ok(README.includes(`\n${line}\n`), line);
});

test("each completion knows each option", () => {
  const bash = read(SOURCE, "completions/fthsummary.bash").match(/compgen -W '(.*?)'/)[1];
  assert.deepEqual(bash.split(" ").sort(), OPTIONS);

  const zsh = read(SOURCE, "completions/_fthsummary").replace("{--help,-h}", " '--help' '-h'");
  assert.deepEqual(matches(zsh, /['\s)](--?[a-z]+)(?=[['\s])/g), OPTIONS);

  const fish = read(SOURCE, "completions/fthsummary.fish");
  const long = matches(fish, /-l (\w+)/g).map((name) => `--${name}`);
  const short = matches(fish, /-s (\w)/g).map((name) => `-${name}`);
  assert.deepEqual([...long, ...short].sort(), OPTIONS);
});

function keysOf(summary) {
  return [
    Object.keys(summary),
    Object.keys(summary.reports[0]),
    Object.keys(summary.other_files[0]),
  ];
}

test("the man page lists the JSON's keys in their order", (t) => {
  const keys = keysOf(summarise(EXAMPLES, temporaryFolder(t))).flat();
  assert.deepEqual([...MANUAL.matchAll(/^\.It Cm (\w+)$/gm)].map((match) => match[1]), keys);
});

test("the README names each of the JSON's keys", (t) => {
  const section = README.match(/^## JSON\n(.*?)^## /ms)[1];
  for (const key of keysOf(summarise(EXAMPLES, temporaryFolder(t))).flat()) {
    assert.ok(section.includes(`\`${key}\``), key);
  }
});

test("the schema describes the JSON's keys, in their order, and no others", (t) => {
  const [top, report, other] = keysOf(summarise(EXAMPLES, temporaryFolder(t)));
  const schema = JSON.parse(read(SOURCE, "docs/summary.schema.json"));
  const { report: reportSchema, other_file: otherSchema } = schema.$defs;
  for (const [keys, object] of [
    [top, schema],
    [report, reportSchema],
    [other, otherSchema],
  ]) {
    assert.deepEqual(Object.keys(object.properties), keys);
    assert.deepEqual(object.required, keys);
    assert.equal(object.additionalProperties, false);
    for (const [key, value] of Object.entries(object.properties)) {
      assert.ok(value.description?.endsWith("."), key);
    }
  }
});

// One folder for each outcome in the tables of README and man page.
function outcomes(t) {
  const folder = temporaryFolder(t);
  const report = (name, verdict) => copyReport(t, verdict, path.join(folder, name, `${verdict}.html`));
  report("passed", "PASS");
  report("no report", "PASS");
  fs.writeFileSync(path.join(folder, "no report/notes.html"), "<p>Notes</p>");
  report("failed", "FAIL");
  report("errored", "ERROR");
  report("unreadable", "PASS");
  fs.mkdirSync(path.join(folder, "empty"));
  // A pipe is listed like a file, but cannot be measured; for root, too.
  run("mkfifo", [path.join(folder, "unreadable/pipe.html")]);
  return folder;
}

const STATUS_TABLE = [
  ["passed", 0, "PASS"],
  ["empty", 0, "PASS"],
  ["no report", 0, "FAIL"],
  ["failed", 1, "FAIL"],
  ["errored", 1, "FAIL"],
  ["unreadable", 1, "FAIL"],
];

test("exit status and Suite Verdict are those of the tables", { timeout: 60000 }, (t) => {
  const folder = outcomes(t);
  for (const [name, status, verdict] of STATUS_TABLE) {
    summarise(path.join(folder, name), path.join(folder, "out", name), { status });
    const page = read(folder, "out", name, "index.html");
    assert.equal(page.match(/Suite Verdict<\/div>\n<div class="v">(\w+)</)[1], verdict, name);
  }
});

// One folder with a report that passed; the page is "out/index.html" in it.
function passedFolder(t) {
  const folder = temporaryFolder(t);
  copyReport(t, "PASS", `${folder}/reports/PASS.html`);
  fs.mkdirSync(`${folder}/out`);
  return folder;
}

const PAGE_ARGS = ["--input", "reports", "-o", "out/index.html"];

test("wrong arguments and a missing directory end with 1 and leave an older page", (t) => {
  const folder = passedFolder(t);
  fs.writeFileSync(`${folder}/out/index.html`, "old");
  for (const args of [["--wrong"], PAGE_ARGS.slice(2), ["--input", "nowhere", ...PAGE_ARGS.slice(2)]]) {
    run(PROGRAM, args, { cwd: folder, status: 1 });
    assert.equal(read(folder, "out/index.html"), "old");
  }
});

test("a folder that cannot be created ends with 1 and no page", (t) => {
  const folder = passedFolder(t);
  fs.writeFileSync(`${folder}/file`, "");
  const args = ["--input", "reports", "-o", "file/below/index.html"];
  const { stdout, stderr } = run(PROGRAM, args, { cwd: folder, status: 1 });
  assert.equal(stdout, "");
  assert.match(stderr, /^error: could not create the folder for /);
});

test("a page that cannot be opened ends with 1 and leaves what was there", (t) => {
  const folder = passedFolder(t);
  // Nobody, root included, can open a program for writing while it runs.
  const page = `${folder}/out/index.html`;
  fs.copyFileSync(PROGRAM, page);
  const { stdout } = run(page, PAGE_ARGS, { cwd: folder, status: 1 });
  assert.equal(stdout, "");
  assert.ok(fs.readFileSync(page).equals(fs.readFileSync(PROGRAM)));
});

test("a page that cannot be written whole ends with 1 and is incomplete", (t) => {
  const folder = passedFolder(t);
  const limited = ["-c", 'ulimit -f 1; exec "$@"', "-", PROGRAM, ...PAGE_ARGS];
  const { stdout } = run("sh", limited, { cwd: folder, status: 1 });
  assert.equal(stdout, "");
  const page = read(folder, "out/index.html");
  assert.match(page, /^<!DOCTYPE html>/i);
  assert.doesNotMatch(page, /<\/html>/);
});

test("a JSON file that cannot be written ends with 1 beside a whole page", (t) => {
  const folder = passedFolder(t);
  // Can be opened, but takes nothing.
  fs.symlinkSync("/dev/full", `${folder}/out/index.json`);
  const { stdout } = run(PROGRAM, [...PAGE_ARGS, "--json"], { cwd: folder, status: 1 });
  assert.equal(stdout, "");
  const withJson = read(folder, "out/index.html");
  run(PROGRAM, PAGE_ARGS, { cwd: folder });
  const withoutTime = (page) => page.replace(/\d{4}-\d\d-\d\d \d\d:\d\d(:\d\d)?/, "");
  assert.equal(withoutTime(withJson), withoutTime(read(folder, "out/index.html")));
  assert.match(withJson, /<div class="v">PASS<[^]*<\/html>\s*$/);
});

test("the README's table of exit statuses is the man page's", () => {
  const section = README.match(/^## Exit status.*?\n(.*?)^## /ms)[1];
  const rows = [...section.matchAll(/^\| (.*) \| (\d) \| (.*) \|$/gm)].map((row) =>
    row.slice(1).map((cell) => cell.replaceAll("`", "")),
  );
  const manual = [...MANUAL.matchAll(/^\.It (.*) Ta (\d) Ta (.*)$/gm)].map((row) =>
    row.slice(1).map((cell) =>
      cell.replace(/\bFl /g, "-").replace(/ ,/g, ",").replace(/\bNo /g, ""),
    ),
  );
  assert.equal(rows.length, 12);
  assert.deepEqual(rows, manual);
});

test("the limits in README and man page are those of the program", () => {
  const entry = read(SOURCE, "src/report/report_entry.h");
  const value = (name) => Number(entry.match(new RegExp(`${name} = (\\d+)`))[1]);
  for (const text of [README, MANUAL]) {
    const words = text.replace(/\s+/g, " ");
    assert.match(words, new RegExp(`at most ${value("REPORT_MAX_CHECKS")} `));
    assert.match(words, new RegExp(`cut to ${value("REPORT_TEXT_SIZE") - 1} bytes`));
    assert.match(words, new RegExp(`error texts to ${value("REPORT_ERROR_SIZE") - 1}`));
    assert.match(words, /4,095 characters/);
  }
});

test("the page's storage key in the man page is the script's", () => {
  const key = read(SOURCE, "src/summary/theme_script.js").match(/STORAGE_KEY = "(.*?)"/)[1];
  assert.ok(MANUAL.includes(`.Ql ${key} .`));
});

test("the closing lines in the README are of a form that the program prints", (t) => {
  const folder = temporaryFolder(t);
  const args = ["--input", EXAMPLES, "-o", "out/summary.html", "--json"];
  const shape = (text) => text.replace(/\d+/g, "N");
  const printed = shape(run(PROGRAM, args, { cwd: folder, status: 1 }).stdout);
  const blocks = fencedBlocks("README.md").filter(({ text }) => text.startsWith("wrote "));
  assert.deepEqual(blocks.map(({ text }) => shape(text)), [printed]);
});

test("the lines of JSON in the README are the program's", (t) => {
  const folder = temporaryFolder(t);
  const printed = run("sh", ["-c", '"$0" --input examples/reports -o "$1/s.html" --json', PROGRAM, folder], {
    cwd: FIRST,
    status: 1,
  });
  assert.match(printed.stdout, /\+ json$/m);
  const file = read(folder, "s.json");
  const [block] = fencedBlocks("README.md").filter(({ text }) => text.startsWith("{\n"));
  const lines = block.text.trimEnd().split("\n");
  const pathLine = lines.findIndex((line) => line.includes("relative_path"));
  // Which report comes first depends on the file system.
  assert.ok(file.startsWith(lines.slice(0, pathLine).join("\n")), block.text);
  assert.ok(file.includes(lines.slice(pathLine).join("\n")), block.text);
});

test("README, docs/ci.md and man page name each filter, and say the same of it", () => {
  const filters = fs.readdirSync(path.join(SOURCE, "filters")).sort();
  assert.deepEqual(filters, ["github.jq", "junit.jq", "markdown.jq", "prometheus.jq"]);
  const rows = (text) => [...text.matchAll(/^\| `(\w+\.jq)` \| (.*) \| (.*) \|$/gm)].map((row) => row.slice(1));
  const tables = [README, read(SOURCE, "docs/ci.md")].map(rows);
  for (const table of tables) {
    assert.deepEqual(table.map(([file]) => file).sort(), filters);
  }
  tables[0].forEach(([, gives, readers], i) => {
    assert.ok(tables[1][i][1].startsWith(gives), gives);
    assert.equal(tables[1][i][2], readers);
  });
  const files = MANUAL.match(/^\.It Pa \/usr\/share\/fthsummary\/filters\n(.*?)^\.El/ms)[1];
  assert.deepEqual(matches(files, /^\.Pa (\w+\.jq)$/gm), filters);
});

test("each filter's own words name it as it is used", () => {
  for (const name of fs.readdirSync(path.join(SOURCE, "filters"))) {
    assert.match(read(SOURCE, "filters", name), new RegExp(`^#   jq -r -f ${name} summary.json`, "m"));
  }
});

test("the bundled reports show every verdict", (t) => {
  assert.deepEqual(unique(bundledReports(t).map((each) => each.verdict)), ["ERROR", "FAIL", "PASS"]);
});
