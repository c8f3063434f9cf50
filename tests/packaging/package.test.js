// The Debian package: what it says, what it holds, and a life of it: installed, used,
// removed, all in a folder of its own.

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
  packageOf,
  read,
  run,
  runAsRoot,
  summarise,
  temporaryFolder,
} from "./support.js";

const PACKAGE = packageOf(FIRST);
const field = (name) => run("dpkg-deb", ["-f", PACKAGE, name]).stdout.trim();

test("lintian has no errors and no warnings", () => {
  const { stdout } = run("lintian", ["--allow-root", "--fail-on", "error,warning", PACKAGE]);
  assert.doesNotMatch(stdout, /^[EW]:/m);
});

test("lintian refuses a package without a copyright file, so that test can fail", (t) => {
  const folder = temporaryFolder(t);
  run("dpkg-deb", ["-R", PACKAGE, `${folder}/package`]);
  fs.rmSync(`${folder}/package/usr/share/doc/fthsummary/copyright`);
  run("dpkg-deb", ["--root-owner-group", "-b", `${folder}/package`, `${folder}/bad.deb`]);
  const { stdout } = run("lintian", ["--allow-root", "--fail-on", "error", `${folder}/bad.deb`], {
    status: 2,
  });
  assert.match(stdout, /^E: fthsummary: no-copyright-file/m);
});

test("the package names its section, its architecture and what the program needs", () => {
  assert.equal(field("Package"), "fthsummary");
  assert.equal(field("Section"), "utils");
  assert.equal(field("Architecture"), run("dpkg", ["--print-architecture"]).stdout.trim());
  const depends = field("Depends").split(", ");
  assert.ok(depends.some((each) => /^libc6 \(>= [\d.]+\)$/.test(each)), depends.join());
  assert.equal(depends.length, 1, depends.join());
  assert.ok(field("Suggests").split(", ").includes("jq"));
});

test("man page and changelog are packed, completions are where their shells look", () => {
  const list = run("dpkg-deb", ["-c", PACKAGE]).stdout;
  for (const file of [
    "usr/bin/fthsummary",
    "usr/share/man/man1/fthsummary.1.gz",
    "usr/share/doc/fthsummary/changelog.gz",
    "usr/share/doc/fthsummary/copyright",
    "usr/share/doc/fthsummary/docs/summary.schema.json",
    "usr/share/bash-completion/completions/fthsummary",
    "usr/share/zsh/vendor-completions/_fthsummary",
    "usr/share/fish/vendor_completions.d/fthsummary.fish",
    "usr/share/fthsummary/filters/github.jq",
    "usr/share/fthsummary/filters/junit.jq",
    "usr/share/fthsummary/filters/markdown.jq",
    "usr/share/fthsummary/filters/prometheus.jq",
  ]) {
    assert.ok(list.includes(` ./${file}\n`), file);
  }
  for (const file of ["man1/fthsummary.1\n", "LICENCE-TO-BE-CHOSEN", "CHANGELOG.md", "site-functions"]) {
    assert.ok(!list.includes(file), file);
  }
});

test("everything in it belongs to root and nobody else may write it", () => {
  const lines = run("dpkg-deb", ["-c", PACKAGE]).stdout.trim().split("\n");
  assert.ok(lines.length > 30);
  for (const line of lines) {
    assert.match(line, /^[-d]rw[x-]r-[x-]r-[x-] root\/root /);
  }
});

test("the packed man page is the man page", (t) => {
  const folder = temporaryFolder(t);
  run("dpkg-deb", ["-x", PACKAGE, folder]);
  const packed = path.join(folder, "usr/share/man/man1/fthsummary.1.gz");
  assert.equal(run("gzip", ["-dc", packed]).stdout, read(SOURCE, "man/fthsummary.1"));
});

test("the licence has one marked place, from which the package takes it", (t) => {
  const folder = temporaryFolder(t);
  run("dpkg-deb", ["-x", PACKAGE, folder]);
  const text = read(SOURCE, "LICENCE-TO-BE-CHOSEN");
  assert.equal(read(folder, "usr/share/doc/fthsummary/copyright"), text);
});

test("each file that an installed document links to is installed, too", (t) => {
  const folder = temporaryFolder(t);
  run("dpkg-deb", ["-x", PACKAGE, folder]);
  const papers = path.join(folder, "usr/share/doc/fthsummary");
  const documents = filesBelow(papers).filter((file) => file.endsWith(".md"));
  assert.ok(documents.includes("README.md") && documents.includes("SECURITY.md"));
  const links = documents.flatMap((document) =>
    [...read(papers, document).matchAll(/\]\(([^)#:]+)/g)].map((match) =>
      path.join(path.dirname(document), match[1]),
    ),
  );
  assert.ok(links.length > 0);
  assert.deepEqual(links.filter((file) => !fs.existsSync(path.join(papers, file))), []);
});

test("it can be installed, used on the bundled reports and removed without a trace", (t) => {
  const root = temporaryFolder(t);
  fs.mkdirSync(`${root}/var/lib/dpkg/info`, { recursive: true });
  fs.mkdirSync(`${root}/var/lib/dpkg/updates`);
  fs.mkdirSync(`${root}/var/lib/dpkg/triggers`);
  // What is installed here, so that the dependencies are really asked for.
  fs.copyFileSync("/var/lib/dpkg/status", `${root}/var/lib/dpkg/status`);
  const others = filesBelow(root).filter((file) => !file.startsWith("var/lib/dpkg/"));
  assert.deepEqual(others, []);

  const dpkg = (...args) =>
    runAsRoot("dpkg", [`--root=${root}`, `--log=${root}/var/lib/dpkg/log`, ...args], {
      env: { PATH: `${process.env.PATH}:/usr/sbin:/sbin` },
    });
  const query = [`--admindir=${root}/var/lib/dpkg`, "-f", "${Status}", "-W", "fthsummary"];
  dpkg("-i", PACKAGE);
  assert.equal(run("dpkg-query", query).stdout, "install ok installed");

  const examples = path.join(root, "usr/share/doc/fthsummary/examples/reports");
  const program = path.join(root, "usr/bin/fthsummary");
  assert.deepEqual(filesBelow(examples), filesBelow(EXAMPLES));
  const verdicts = (input, options) =>
    summarise(input, temporaryFolder(t), options).reports.map((each) => each.verdict);
  assert.deepEqual(verdicts(examples, { program }).sort(), verdicts(EXAMPLES).sort());

  dpkg("--purge", "fthsummary");
  assert.ok(!fs.existsSync(program));
  assert.deepEqual(
    filesBelow(root).filter((file) => !file.startsWith("var/lib/dpkg/")),
    [],
  );
  assert.ok(!fs.existsSync(`${root}/usr/share/doc/fthsummary`));
});

test("a dependency that is not there stops the installation", (t) => {
  const root = temporaryFolder(t);
  fs.mkdirSync(`${root}/var/lib/dpkg/info`, { recursive: true });
  fs.mkdirSync(`${root}/var/lib/dpkg/updates`);
  fs.mkdirSync(`${root}/var/lib/dpkg/triggers`);
  fs.writeFileSync(`${root}/var/lib/dpkg/status`, "");
  const { stderr } = runAsRoot("dpkg", [`--root=${root}`, "--log=/dev/null", "-i", PACKAGE], {
    status: 1,
    env: { PATH: `${process.env.PATH}:/usr/sbin:/sbin` },
  });
  assert.match(stderr, /fthsummary depends on libc6/);
});
