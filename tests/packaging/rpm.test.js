// The RPM: what rpmlint says of it, and a life of it: installed, used, removed, all in a
// folder of its own.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import process from "node:process";
import { test } from "node:test";
import {
  EXAMPLES,
  FIRST,
  SOURCE,
  filesBelow,
  read,
  rpmOf,
  run,
  runAsRoot,
  summarise,
  temporaryFolder,
} from "./support.js";

const PACKAGE = rpmOf(FIRST);

// The licence and a signature are the owner's to add; the reports are there to be shown;
// and rpmlint looks for a man page that is packed by bzip2.
const KNOWN = [
  "E: no-signature",
  "W: invalid-license",
  "W: manpage-not-compressed",
  "W: no-manual-page-for-binary",
  "W: no-url-tag",
  "W: package-with-huge-docs",
];

test("rpmlint finds nothing but what is known", () => {
  const { stdout } = run("rpmlint", [PACKAGE], { status: 64 });
  const found = [...stdout.matchAll(/^fthsummary\.\w+: ([EW]: [\w-]+)/gm)].map((match) => match[1]);
  assert.deepEqual([...new Set(found)].filter((each) => !KNOWN.includes(each)), []);
  assert.ok(found.includes("E: no-signature"), stdout);
});

// rpm with a root folder of its own, and its files there but those that it keeps itself.
function machine(t) {
  const root = temporaryFolder(t);
  const env = { PATH: `${process.env.PATH}:/usr/sbin:/sbin` };
  const rpm = (args, options) => runAsRoot("rpm", ["--root", root, "--dbpath", "/rpmdb", ...args], { env, ...options });
  const files = () => filesBelow(root).filter((file) => !file.startsWith("rpmdb/"));
  return { root, rpm, files };
}

test("it can be installed, used on the bundled reports and removed without a trace", (t) => {
  const { root, rpm, files } = machine(t);
  // Nothing is installed there that could be depended on.
  rpm(["--install", "--nodeps", PACKAGE]);
  assert.match(rpm(["-q", "fthsummary"]).stdout, /^fthsummary-\d/);
  assert.equal(rpm(["--verify", "--nodeps", "fthsummary"]).stdout, "");
  const papers = path.join(root, "usr/share/doc/fthsummary");
  assert.deepEqual(filesBelow(`${papers}/examples/reports`), filesBelow(EXAMPLES));
  const page = path.join(root, "usr/share/man/man1/fthsummary.1.gz");
  assert.equal(run("gzip", ["-dc", page]).stdout, read(SOURCE, "man/fthsummary.1"));
  for (const file of [
    "usr/share/bash-completion/completions/fthsummary",
    "usr/share/zsh/site-functions/_fthsummary",
    "usr/share/fish/vendor_completions.d/fthsummary.fish",
    "usr/share/fthsummary/filters/junit.jq",
    "usr/share/doc/fthsummary/LICENCE-TO-BE-CHOSEN",
  ]) {
    assert.ok(fs.existsSync(path.join(root, file)), file);
  }
  const program = path.join(root, "usr/bin/fthsummary");
  const { reports } = summarise(`${papers}/examples/reports`, temporaryFolder(t), { program });
  assert.equal(reports.length, 17);

  rpm(["--erase", "fthsummary"]);
  assert.deepEqual(files(), []);
  assert.ok(!fs.existsSync(papers));
});

test("a dependency that is not there stops the installation", (t) => {
  const { rpm, files } = machine(t);
  assert.match(rpm(["--install", PACKAGE], { status: 1 }).stderr, /libc\.so\.6\S* is needed by fthsummary/);
  assert.deepEqual(files(), []);
});

test("everything in it belongs to root and nobody else may write it", () => {
  const format = "[%{FILEMODES:perms} %{FILEUSERNAME} %{FILEGROUPNAME}\n]";
  const lines = run("rpm", ["-qp", "--qf", format, PACKAGE]).stdout.trim().split("\n");
  assert.ok(lines.length > 30);
  for (const line of lines) {
    assert.match(line, /^[-d]rw[x-]r-[x-]r-[x-] root root$/);
  }
});
