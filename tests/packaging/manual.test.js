// The man page: well-formed, complete, and found by man.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import { SOURCE, packageOf, FIRST, read, run, temporaryFolder } from "./support.js";

const PAGE = path.join(SOURCE, "man/fthsummary.1");
// Without the backspaces by which bold and underlined characters are made.
const rendered = () =>
  run("mandoc", ["-T", "utf8", "-O", "width=100", PAGE]).stdout.replace(/.[\b]/g, "");

test("mandoc has nothing to say about the man page", () => {
  const { stdout, stderr } = run("mandoc", ["-T", "lint", "-W", "warning", PAGE]);
  assert.equal(stdout + stderr, "");
});

test("mandoc refuses a page with a macro that does not exist, so that test can fail", (t) => {
  const bad = path.join(temporaryFolder(t), "bad.1");
  fs.writeFileSync(bad, read(PAGE).replace(".Sh FILES", ".Nothing FILES"));
  const { stdout } = run("mandoc", ["-T", "lint", "-W", "warning", bad], { status: 3 });
  assert.match(stdout, /unknown macro/);
});

test("the man page has every section that is looked for", () => {
  const sections = [...read(PAGE).matchAll(/^\.Sh (.*)$/gm)].map((match) => match[1]);
  assert.deepEqual(sections, [
    "NAME",
    "SYNOPSIS",
    "DESCRIPTION",
    "ENVIRONMENT",
    "FILES",
    "EXIT STATUS",
    "EXAMPLES",
    "CAVEATS",
    "SECURITY CONSIDERATIONS",
  ]);
});

test("the table of exit statuses sets each outcome against the Suite Verdict", () => {
  const rows = [...read(PAGE).matchAll(/^\.It (.*) Ta (\d) Ta (.*)$/gm)].map((row) => row.slice(1));
  assert.deepEqual(
    rows.map(([, status, verdict]) => `${status} ${verdict}`),
    [
      "0 PASS",
      "0 FAIL",
      "1 FAIL",
      "1 FAIL",
      "1 FAIL",
      "1 no new page",
      "1 no new page",
      "1 no new page",
      "1 no new page",
      "1 incomplete page",
      "1 as without Fl -json",
      "0 no page",
    ],
  );
});

test("man finds and shows the installed page", (t) => {
  const folder = temporaryFolder(t);
  run("dpkg-deb", ["-x", packageOf(FIRST), folder]);
  const env = { MANPATH: `${folder}/usr/share/man`, MANPAGER: "cat", MANWIDTH: "100" };
  const shown = run("man", ["fthsummary"], { env }).stdout;
  assert.match(shown, /pass\/fail summary of fathomix analyze reports/);
  assert.match(shown, /SECURITY CONSIDERATIONS/);
});

test("groff has nothing to say about the man page in an ordinary terminal", () => {
  const env = { MANPAGER: "cat", MANWIDTH: "80" };
  assert.equal(run("man", ["--warnings", "--local-file", PAGE], { env }).stderr, "");
});

test("the rendered page shows the quoted characters", () => {
  assert.match(rendered(), /holds ‘\\’, ‘#’,\s+‘\?’, a tab/);
});
