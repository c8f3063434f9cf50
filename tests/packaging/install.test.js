// cmake --install, the archive, and the static program on a machine that has nothing.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import {
  EXAMPLES,
  FIRST,
  STATIC_PROGRAM,
  archiveOf,
  filesBelow,
  read,
  run,
  runAsRoot,
  summarise,
  temporaryFolder,
} from "./support.js";

const PAPERS = /^share\/doc\/fthsummary\/(docs|examples|tools)\//;

test("cmake --install puts program, man page, completions and papers in the usual folders", (t) => {
  const prefix = temporaryFolder(t);
  run("cmake", ["--install", path.join(FIRST, "build/release"), "--prefix", prefix]);
  const files = filesBelow(prefix);
  assert.deepEqual(
    files.filter((file) => !PAPERS.test(file)),
    [
      "bin/fthsummary",
      "share/bash-completion/completions/fthsummary",
      "share/doc/fthsummary/CHANGELOG.md",
      "share/doc/fthsummary/LICENCE-TO-BE-CHOSEN",
      "share/doc/fthsummary/README.md",
      "share/doc/fthsummary/SECURITY.md",
      "share/fish/vendor_completions.d/fthsummary.fish",
      "share/fthsummary/filters/github.jq",
      "share/fthsummary/filters/junit.jq",
      "share/fthsummary/filters/markdown.jq",
      "share/fthsummary/filters/prometheus.jq",
      "share/man/man1/fthsummary.1",
      "share/zsh/site-functions/_fthsummary",
    ],
  );
  for (const file of ["docs/ci.md", "docs/summary.schema.json", "docs/content-policy"]) {
    assert.ok(files.includes(`share/doc/fthsummary/${file}`), file);
  }
  const examples = path.join(prefix, "share/doc/fthsummary/examples/reports");
  assert.deepEqual(filesBelow(examples), filesBelow(EXAMPLES));
  summarise(examples, path.join(prefix, "out"), { program: `${prefix}/bin/fthsummary` });
});

test("an install folder given by GNUInstallDirs is taken", (t) => {
  const folder = temporaryFolder(t);
  const build = ["-S", FIRST, "-B", `${folder}/build`, "-DCMAKE_INSTALL_MANDIR=pages"];
  run("cmake", [...build, "-DCMAKE_INSTALL_BINDIR=programs"]);
  run("cmake", ["--build", `${folder}/build`, "-j", "2"]);
  run("cmake", ["--install", `${folder}/build`, "--prefix", `${folder}/there`]);
  assert.ok(fs.existsSync(`${folder}/there/programs/fthsummary`));
  assert.ok(fs.existsSync(`${folder}/there/pages/man1/fthsummary.1`));
});

test("the static program runs in a folder that holds nothing else", (t) => {
  const root = temporaryFolder(t);
  fs.copyFileSync(STATIC_PROGRAM, `${root}/fthsummary`);
  assert.equal(
    runAsRoot("chroot", [root, "/fthsummary", "--version"]).stdout,
    run(STATIC_PROGRAM, ["--version"]).stdout,
  );
  fs.cpSync(EXAMPLES, `${root}/reports`, { recursive: true });
  runAsRoot("chroot", [root, "/fthsummary", "--input", "/reports", "-o", "/out/s.html", "--json"], {
    status: 1,
  });
  const there = JSON.parse(read(root, "out/s.json")).reports.map((each) => each.verdict);
  const here = summarise(EXAMPLES, temporaryFolder(t)).reports.map((each) => each.verdict);
  assert.deepEqual(there.sort(), here.sort());
});

test("the dynamic program does not, so that test can fail", (t) => {
  const root = temporaryFolder(t);
  fs.copyFileSync(path.join(FIRST, "build/release/fthsummary"), `${root}/fthsummary`);
  runAsRoot("chroot", [root, "/fthsummary", "--version"], { status: 127 });
});

test("the archive matches its checksum and its program runs", (t) => {
  const folder = temporaryFolder(t);
  const archive = archiveOf(FIRST);
  run("sha256sum", ["-c", `${path.basename(archive)}.sha256`], { cwd: path.dirname(archive) });
  run("tar", ["-xzf", archive, "-C", folder]);
  const [name] = fs.readdirSync(folder);
  assert.equal(`${name}.tar.gz`, path.basename(archive));
  summarise(
    `${folder}/${name}/share/doc/fthsummary/examples/reports`,
    path.join(folder, "out"),
    { program: `${folder}/${name}/bin/fthsummary` },
  );
  const program = read(folder, name, "bin/fthsummary");
  assert.ok(!program.includes(FIRST), "the program holds the path of its sources");
});
