// tools/lib/check-release and tools/release say yes to what agrees and no to what does not.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import { FIRST, filesBelow, run, temporaryFolder } from "./support.js";

// A copy with only what the check looks at.
function releaseCopy(t) {
  const folder = temporaryFolder(t);
  const parts = ["tools", "man", "CHANGELOG.md", "src/cli/version.h", "build/packages"];
  for (const part of [...parts, "build/release/fthsummary", "build/static/fthsummary"]) {
    fs.cpSync(path.join(FIRST, part), path.join(folder, part), { recursive: true });
  }
  return folder;
}

const check = (folder, status) => run(path.join(folder, "tools/lib/check-release"), [], { status });

function replaceIn(file, pattern, text) {
  const before = fs.readFileSync(file, "utf8");
  const changed = before.replace(pattern, text);
  assert.notEqual(changed, before);
  fs.writeFileSync(file, changed);
}

test("program, man page, changelog and packages of this tree agree", (t) => {
  const { stdout, stderr } = check(releaseCopy(t), 0);
  assert.equal(stderr, "");
  assert.equal(stdout.match(/^ok: /gm).length, 10);
});

const DISAGREEMENTS = [
  ["the changelog's version", "CHANGELOG.md", /^## [\d.]+/m, "## 9.9.9", /error: CHANGELOG\.md: /],
  ["the changelog's date", "CHANGELOG.md", /\(\d{4}/, "(1999", /error: man page, date: /],
  ["the man page's version", "man/fthsummary.1", /^\.Os "fthsummary /m, '.Os "fthsummary 9', /error: man page, version: /],
  ["the source's version", "src/cli/version.h", /"\d/, '"9', /error: program: [^]*error: static program: [^]*error: packages: /],
];

for (const [what, file, pattern, text, message] of DISAGREEMENTS) {
  test(`${what} is compared`, (t) => {
    const folder = releaseCopy(t);
    replaceIn(path.join(folder, file), pattern, text);
    assert.match(check(folder, 1).stderr, message);
  });
}

test("a package of another version is refused", (t) => {
  const folder = releaseCopy(t);
  const packages = path.join(folder, "build/packages");
  const name = fs.readdirSync(packages).find((each) => each.endsWith(".deb"));
  run("dpkg-deb", ["-R", `${packages}/${name}`, `${folder}/package`]);
  replaceIn(`${folder}/package/DEBIAN/control`, /^Version: .*$/m, "Version: 1.0");
  run("dpkg-deb", ["--root-owner-group", "-b", `${folder}/package`, `${packages}/${name}`]);
  assert.match(check(folder, 1).stderr, /error: Debian package: '1\.0'/);
});

test("an RPM of another version is refused", (t) => {
  const folder = releaseCopy(t);
  const packages = path.join(folder, "build/packages");
  const rpm = fs.readdirSync(packages).find((each) => each.endsWith(".rpm"));
  const sources = `${folder}/other.spec`;
  fs.writeFileSync(
    sources,
    "Name: fthsummary\nVersion: 1.0\nRelease: 1\nSummary: x\nLicense: x\n%description\nx\n%files\n",
  );
  run("rpmbuild", ["-bb", "--quiet", "--define", `_topdir ${folder}/rpm`, sources]);
  const [made] = filesBelow(`${folder}/rpm/RPMS`);
  fs.copyFileSync(`${folder}/rpm/RPMS/${made}`, `${packages}/${rpm}`);
  assert.match(check(folder, 1).stderr, /error: RPM: '1\.0'/);
});

test("an archive that does not match its checksum is refused", (t) => {
  const folder = releaseCopy(t);
  const packages = path.join(folder, "build/packages");
  const name = fs.readdirSync(packages).find((each) => each.endsWith(".tar.gz"));
  fs.appendFileSync(`${packages}/${name}`, "x");
  assert.match(check(folder, 1).stderr, /error: checksum of the archive: /);
});

test("tools/release refuses a tree with uncommitted changes, before it does anything", (t) => {
  const folder = releaseCopy(t);
  run("git", ["init", "-q", folder]);
  const { stderr } = run(path.join(folder, "tools/release"), [], { status: 1 });
  assert.match(stderr, /uncommitted changes/);
});

test("tools/release stops when git cannot tell whether there are any", (t) => {
  const { stdout, stderr } = run(path.join(releaseCopy(t), "tools/release"), [], { status: 128 });
  assert.equal(stdout, "");
  assert.match(stderr, /not a git repository/);
});

test("tools/release refuses an argument that it does not know", (t) => {
  const { stderr } = run(path.join(releaseCopy(t), "tools/release"), ["--quick"], { status: 1 });
  assert.match(stderr, /^usage: /);
});

test("a changelog without a dated release is refused", (t) => {
  const file = path.join(temporaryFolder(t), "CHANGELOG.md");
  fs.writeFileSync(file, "# Changes\n\n## 1.0.0\n\n- Something.\n");
  const { stderr } = run(path.join(FIRST, "tools/lib/debian-changelog"), ["--epoch", file], { status: 1 });
  assert.match(stderr, /no heading such as/);
});

test("Debian's changelog holds every release, newest first, with wrapped items", (t) => {
  const file = path.join(temporaryFolder(t), "CHANGELOG.md");
  const long = `${"word ".repeat(20)}end.`;
  fs.writeFileSync(file, `# Changes\n\n## 1.1.0-rc1 (2027-02-03)\n\n- \`Two\`.\n- ${long}\n\n## 1.0.0 (2026-11-20)\n\n- One.\n`);
  const { stdout } = run(path.join(FIRST, "tools/lib/debian-changelog"), ["A B <a@b>", file]);
  const words = "word ".repeat(14).trim();
  assert.equal(
    stdout,
    `fthsummary (1.1.0~rc1) unstable; urgency=medium

  * Two.
  * ${words}
    word word word word word word end.

 -- A B <a@b>  Wed, 03 Feb 2027 00:00:00 +0000

fthsummary (1.0.0) unstable; urgency=medium

  * One.

 -- A B <a@b>  Fri, 20 Nov 2026 00:00:00 +0000
`,
  );
});
