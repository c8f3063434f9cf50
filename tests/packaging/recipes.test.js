// The recipes of docs/ci.md, run as they stand there.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import {
  EXAMPLES,
  FIRST,
  SOURCE,
  addMakefile,
  copyReport,
  fencedBlocks,
  makeProject,
  matchJson,
  read,
  run,
  summarise,
  temporaryFolder,
  writeRecipe,
} from "./support.js";

const PATH = `${FIRST}/build/release:/usr/bin:/bin`;
const ENV = { env: { PATH } };

// Each file that the document shows; all but the web server's are tested here.
const FILES = [
  "check-reports",
  "as-strict-as-the-page",
  "Makefile",
  ".github/workflows/reports.yml",
  "Containerfile",
  ".gitlab-ci.yml",
  "Jenkinsfile",
  "/var/lib/jenkins/init.groovy.d/fthsummary.groovy",
  "/etc/cron.d/fthsummary",
  "print-counts",
  "mail-table",
  "write-metrics",
  "fthsummary.nginx",
  "summarise-all",
  "summarise-all-in-order",
  "merge-summaries",
];

test("the document shows exactly the files that are tested", () => {
  const shown = fencedBlocks("docs/ci.md").map(({ file }) => file);
  assert.deepEqual(shown, FILES);
  const tests = ["content_policy.test", "recipes.test", "ci_recipes.test", "support"]
    .map((name) => read(SOURCE, `tests/packaging/${name}.js`).replace(/^const FILES = .*?;$/ms, ""))
    .join("");
  for (const file of FILES) {
    assert.ok(tests.includes(`"${file}"`), file);
  }
});

test("shellcheck has nothing to say about the shell scripts", (t) => {
  const folder = temporaryFolder(t);
  const scripts = fencedBlocks("docs/ci.md").filter(({ language }) => language === "sh");
  assert.ok(scripts.length >= 8);
  for (const { file } of scripts) {
    run("shellcheck", [writeRecipe(file, folder)]);
  }
});

test("check-reports tells good reports, bad reports and no summary apart", (t) => {
  const folder = makeProject(t, ["PASS"]);
  const script = writeRecipe("check-reports", folder);
  const check = (reports, status) => run(script, [reports], { cwd: folder, status, ...ENV });
  assert.equal(check("reports", 0).stdout, "");

  copyReport(t, "FAIL", `${folder}/reports/FAIL.html`);
  fs.writeFileSync(`${folder}/reports/notes.html`, "");
  assert.deepEqual(check("reports", 1).stdout.trim().split("\n").sort(), [
    "FAIL: FAIL.html",
    "not_analyze_report: notes.html",
  ]);
  assert.match(check("nowhere", 2).stderr, /^No summary of nowhere\.$/m);
});

test("as-strict-as-the-page fails for a file that is no report, too", (t) => {
  const folder = makeProject(t, ["PASS"]);
  const script = writeRecipe("as-strict-as-the-page", folder);
  const strict = (status) => run(script, [`${folder}/out/index.json`], { status, ...ENV });
  summarise(`${folder}/reports`, `${folder}/out`, { status: 0 });
  strict(0);
  fs.writeFileSync(`${folder}/reports/notes.html`, "");
  summarise(`${folder}/reports`, `${folder}/out`, { status: 0 });
  strict(1);
});

test("the Makefile makes the reports and fails when one of them failed", (t) => {
  for (const [verdicts, status] of [[["PASS"], 0], [["PASS", "ERROR"], 2]]) {
    const folder = makeProject(t, verdicts);
    addMakefile(folder);
    run("make", ["check-reports"], { cwd: folder, status, ...ENV });
    assert.ok(fs.existsSync(`${folder}/made`));
    assert.ok(fs.existsSync(`${folder}/reports/index.html`));
  }
});

test("the cron job prints the counts, and none when there is no summary", (t) => {
  const folder = makeProject(t, ["PASS", "FAIL", "ERROR"]);
  const table = read(writeRecipe("/etc/cron.d/fthsummary", folder));
  const [, mailTo, user, command] = table.match(
    /^MAILTO=(\S+)\n(?:[\d*/,-]+ ){4}[\d*/,-]+\s+([a-z]+)\s+([^%\n]+)\n$/,
  );
  assert.match(mailTo, /@/);
  assert.equal(user, "lab");
  const script = writeRecipe("print-counts", folder);
  const line = command
    .replace("/usr/local/bin/print-counts", script)
    .replace("/srv/reports", `${folder}/reports`);
  const cron = (status) => run("/bin/sh", ["-c", line], { cwd: "/", status, ...ENV });
  const counts = "3 reports: 1 passed, 1 failed, 1 errored\nother files: 0\n";
  assert.equal(cron(0).stdout, counts);
  assert.equal(cron(0).stdout, counts);
  assert.deepEqual(matchJson(`${folder}/reports/index.json`), []);

  // The page cannot be written: yesterday's JSON file must not speak for today.
  fs.rmSync(`${folder}/reports/index.html`);
  fs.mkdirSync(`${folder}/reports/index.html`);
  assert.equal(cron(1).stdout, "");
});

const FOLDERS = 1000;

// Folders with one report each; every tenth failed, every hundredth holds an error.
function makeFolders(t) {
  const folder = temporaryFolder(t);
  const { reports } = summarise(EXAMPLES, `${folder}/examples`);
  const source = (verdict) =>
    path.join(EXAMPLES, reports.find((each) => each.verdict === verdict).relative_path);
  for (let i = 0; i < FOLDERS; i += 1) {
    const verdict = i % 100 === 0 ? "ERROR" : i % 10 === 0 ? "FAIL" : "PASS";
    const name = `${folder}/all suites/suite ${i} & 'co'`;
    fs.mkdirSync(name, { recursive: true });
    fs.copyFileSync(source(verdict), `${name}/report.html`);
  }
  return folder;
}

function checkMerged(folder, output) {
  const script = writeRecipe("merge-summaries", folder);
  const merged = JSON.parse(run(script, [output], ENV).stdout);
  const { folders, ...counts } = merged;
  assert.deepEqual(counts, { total_reports: 1000, passed: 900, failed: 90, errored: 10 });
  assert.equal(folders.length, FOLDERS);
  const written = fs.readdirSync(output);
  assert.equal(written.filter((name) => name.endsWith(".html")).length, FOLDERS);
  for (const name of written.filter((each) => each.endsWith(".json"))) {
    assert.deepEqual(matchJson(`${output}/${name}`), [], name);
  }
}

test("the merged JSON of no summaries says 0 and not null", (t) => {
  const folder = temporaryFolder(t);
  fs.mkdirSync(`${folder}/the output`);
  const script = writeRecipe("merge-summaries", folder);
  assert.deepEqual(JSON.parse(run(script, [`${folder}/the output`], ENV).stdout), {
    total_reports: 0,
    passed: 0,
    failed: 0,
    errored: 0,
    folders: [],
  });
});

for (const [recipe, failedStatus] of [
  ["summarise-all", 123],
  ["summarise-all-in-order", 100],
]) {
  test(`${recipe} makes a page for each of ${FOLDERS} folders, and the merged JSON adds up`, (t) => {
    const folder = makeFolders(t);
    const script = writeRecipe(recipe, folder);
    const env = { PATH, HOME: folder };
    const all = [`${folder}/all suites`, `${folder}/the output`];
    const { stdout } = run(script, all, { status: failedStatus, env });
    assert.equal(stdout.match(/^wrote /gm).length, 2 * FOLDERS);
    checkMerged(folder, `${folder}/the output`);
  });

  test(`${recipe} ends with 0 when every folder is well`, (t) => {
    const folder = makeProject(t, ["PASS"]);
    const script = writeRecipe(recipe, folder);
    run(script, [folder, `${folder}/the output`], { env: { PATH, HOME: folder } });
    assert.ok(fs.existsSync(`${folder}/the output/reports.json`));
  });
}
