// Every command in a document works as it stands there. The commands run in a fresh
// copy of the tree; "sudo" and "apt" are stand-ins that install into a folder.

import assert from "node:assert/strict";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import process from "node:process";
import { after, before, test } from "node:test";
import {
  FIRST,
  PROGRAM,
  SOURCE,
  archiveOf,
  fencedBlocks,
  matchJson,
  read,
  run,
  temporaryFolder,
} from "./support.js";

const DOCUMENTS = run("git", ["ls-files", "--cached", "--others", "--exclude-standard", "*.md"], {
  cwd: SOURCE,
})
  .stdout.trim()
  .split("\n")
  .filter((document) => fs.existsSync(path.join(SOURCE, document)))
  .sort((first, second) => (second === "README.md") - (first === "README.md"));

// What needs no run of its own: these tests are a part of it.
const RUN_ELSEWHERE = ["tools/test"];

// Runs what follows; cmake --install then installs below $ROOT.
const SUDO = '#!/bin/sh\nDESTDIR=$ROOT exec "$@"\n';

// Installs a package file below $ROOT, whose list of packages is the machine's. A
// package of Debian must be on the machine already.
const APT = `#!/bin/sh
set -eu
[ "$1" = install ] || [ "$1" = remove ]
case $2 in
    ./*.deb) $AS_ROOT dpkg --root="$ROOT" --log=/dev/null -i "$2" ;;
    fthsummary) $AS_ROOT dpkg --root="$ROOT" --log=/dev/null -r "$2" ;;
    *) dpkg-query -W -f '\${db:Status-Status}' "$2" | grep -qx installed ;;
esac
`;

// Installs an RPM into a folder of its own; what it depends on is not there.
const DNF = `#!/bin/sh
set -eu
in_folder() { $AS_ROOT rpm --root="$ROOT/fedora" --dbpath=/rpmdb "$@"; }
case $1 in
    install) in_folder --install --nodeps "$2" ;;
    remove) in_folder --erase "$2" ;;
esac
`;

// Unpacks an image, and runs it where the mounted folder lies in place.
const PODMAN = `#!/bin/sh
set -eu
image=$ROOT/image
case $1 in
    load)
        mkdir -p "$image"
        tar -xf "$3" -C "$image"
        name=$(jq -r '.[0].RepoTags[0]' "$image/manifest.json")
        umoci unpack --rootless --image "$image:\${name#*:}" "$image/$name"
        ;;
    run)
        shift 2
        mounted=\${2%:*}
        root=$ROOT
        while [ "\${1#-}" != "$1" ]; do shift 2; done
        root=$image/$1/rootfs
        shift
        cp -r "$mounted/." "$root/reports"
        $AS_ROOT chroot "$root" /fthsummary "$@"
        cp -r "$root/reports/." "$mounted"
        ;;
esac
`;

function makeSandbox(folder) {
  const [tree, root, stubs] = ["tree", "root", "stubs"].map((name) => path.join(folder, name));
  fs.cpSync(FIRST, tree, { recursive: true, filter: (file) => file !== path.join(FIRST, "build") });
  fs.cpSync(path.join(FIRST, "build/packages"), path.join(tree, "build/packages"), { recursive: true });
  for (const name of ["info", "updates", "triggers"]) {
    fs.mkdirSync(`${root}/var/lib/dpkg/${name}`, { recursive: true });
  }
  fs.copyFileSync("/var/lib/dpkg/status", `${root}/var/lib/dpkg/status`);
  fs.mkdirSync(stubs);
  fs.writeFileSync(`${stubs}/sudo`, SUDO, { mode: 0o755 });
  fs.writeFileSync(`${stubs}/apt`, APT, { mode: 0o755 });
  fs.writeFileSync(`${stubs}/dnf`, DNF, { mode: 0o755 });
  for (const name of ["podman", "docker"]) {
    fs.writeFileSync(`${stubs}/${name}`, PODMAN, { mode: 0o755 });
  }
  const env = {
    ROOT: root,
    AS_ROOT: process.getuid() === 0 ? "" : "unshare -r",
    PATH: `${stubs}:${root}/usr/bin:/usr/bin:/bin:/usr/sbin:/sbin:${path.dirname(process.execPath)}`,
    MANPATH: `${root}/usr/share/man`,
    MANPAGER: "cat",
  };
  return { tree, root, env };
}

function runBlock({ tree, root, env }, { marker = "", text }) {
  const status = Number(marker.match(/^status: (\d+)$/)?.[1] ?? 0);
  const replacement = marker.match(/^run as: (.*)$/)?.[1];
  // The paths that are not below the sandbox by themselves.
  const script = (replacement ?? text).replace(/\/usr\/share\/(?=doc|fthsummary)/g, `${root}$&`);
  const result = run("sh", ["-eu", "-c", script], { cwd: tree, env, status });
  const page = script.match(/ -o (\S+)\.html --json/)?.[1];
  if (page) {
    assert.deepEqual(matchJson(path.join(tree, `${page}.json`)), []);
  }
  return result;
}

const isRunHere = ({ language, file, marker }) =>
  language === "sh" && !file && !marker?.startsWith("run by: ");

// One sandbox for all: what the README installs, the other documents use.
let sandboxFolder;
let sandbox;
before(() => {
  sandboxFolder = fs.mkdtempSync(path.join(os.tmpdir(), "fthsummary-"));
  sandbox = makeSandbox(sandboxFolder);
});
after(() => fs.rmSync(sandboxFolder, { recursive: true, force: true }));

// The commands of the README's tables of installations, by what they are for.
const COMMANDS = Object.fromEntries(
  [...read(SOURCE, "README.md").match(/^## Install\n(.*?)^## /ms)[1].matchAll(/^\| (.*) \| `(.*)` \|$/gm)].map(
    ([, what, command]) => [what, command],
  ),
);

test("each command of the README's tables installs a program that runs", () => {
  const { root, tree } = sandbox;
  const inPackages = (text) => runBlock(sandbox, { text: `cd build/packages\n${text}` });
  const version = run(PROGRAM, ["--version"]).stdout;
  const installed = {
    "Debian 12, Ubuntu 22.04, and later": () => `${root}/usr/bin/fthsummary`,
    "Fedora 35, Red Hat 9, and later": () => `${root}/fedora/usr/bin/fthsummary`,
    "any Linux": () => `${archiveOf(tree).replace(/\.tar\.gz$/, "")}/bin/fthsummary`,
  };
  for (const [system, program] of Object.entries(installed)) {
    inPackages(COMMANDS[system]);
    assert.equal(run(program(), ["--version"]).stdout, version, system);
  }
  for (const by of ["Podman", "Docker"]) {
    inPackages(COMMANDS[`a container, by ${by}`]);
    const reports = path.join(tree, `reports for ${by}`);
    fs.cpSync(path.join(tree, "examples/reports/albums"), reports, { recursive: true });
    const { stdout } = runBlock(sandbox, { marker: "status: 1", text: `cd '${reports}'\n${COMMANDS[by]}` });
    assert.match(stdout, /^wrote \/reports\/summary\.html /);
    const [name] = COMMANDS[by].match(/fthsummary:\S+/);
    const { process: started } = JSON.parse(read(`${root}/image/${name}`, "config.json"));
    assert.equal(started.cwd, "/reports", "where relative paths begin");
    fs.rmSync(`${root}/image`, { recursive: true });
  }
  // Loading and running by each of the two, and nothing that was not tried.
  assert.equal(Object.keys(COMMANDS).length, Object.keys(installed).length + 4);
});

for (const document of DOCUMENTS) {
  const blocks = fencedBlocks(document).filter(isRunHere);
  if (blocks.length > 0) {
    test(`each of the ${blocks.length} blocks of commands in ${document} works`, () => {
      for (const block of blocks) {
        runBlock(sandbox, block);
      }
    });
  }
}

test("what the README names for it removes the package", () => {
  const command = "sudo apt remove fthsummary";
  assert.ok(read(SOURCE, "README.md").includes(`\`${command}\``));
  const program = `${sandbox.root}/usr/bin/fthsummary`;
  assert.ok(fs.existsSync(program));
  runBlock(sandbox, { text: command });
  assert.ok(!fs.existsSync(program));
});

test("tools/update/content-policy puts today's policies into docs/ci.md", () => {
  const document = path.join(sandbox.tree, "docs/ci.md");
  const today = read(document);
  const stale = today.replace(/sha256-[\w+/]{43}=/g, "sha256-x");
  assert.ok(today.length - stale.length > 12 * 40);
  fs.writeFileSync(document, stale);
  runBlock(sandbox, { text: "tools/update/content-policy" });
  assert.equal(read(document), today);
});

test("each document is closed, and each of its blocks is of a kind that is checked", () => {
  assert.ok(DOCUMENTS.length >= 6, DOCUMENTS.join());
  for (const document of DOCUMENTS) {
    const fences = read(SOURCE, document).match(/^```.*$/gm) ?? [];
    const blocks = fencedBlocks(document);
    assert.equal(fences.length, 2 * blocks.length, document);
    for (const { language, file } of blocks) {
      const shown = file ? document === "docs/ci.md" : ["sh", "text"].includes(language);
      assert.ok(shown, `${document}: a block of language "${language}"`);
    }
  }
});

test("nothing else is left out but what these tests are a part of", () => {
  const elsewhere = DOCUMENTS.flatMap(fencedBlocks).filter(({ marker }) => marker?.startsWith("run by: "));
  assert.deepEqual(elsewhere.map(({ text }) => text.trim()), RUN_ELSEWHERE);
});

test("a command that fails is noticed, so these tests can fail", () => {
  assert.throws(() => runBlock(sandbox, { text: "false\ntrue\n" }));
  assert.throws(() => runBlock(sandbox, { text: "apt install ./missing.deb\n" }));
  assert.throws(() => runBlock(sandbox, { text: "apt install no-such-package\n" }));
});

test("each file that a document links to or names is there", () => {
  const missing = DOCUMENTS.flatMap((document) => {
    const text = read(SOURCE, document).replace(/^```.*?^```$/gms, "");
    const links = [...text.matchAll(/\]\(([^)#:]+)(?:#[^)]*)?\)/g)].map(([, link]) =>
      path.join(path.dirname(document), link),
    );
    const named = [...text.matchAll(/`((?:src|tests|tools|docs|cmake|man|completions|examples)\/[\w./-]*)`/g)];
    return [...links, ...named.map((match) => match[1])]
      .filter((file) => !fs.existsSync(path.join(SOURCE, file)))
      .map((file) => `${document}: ${file}`);
  });
  assert.deepEqual(missing, []);
});

test("each heading that a document links to is there", () => {
  const wrong = DOCUMENTS.flatMap((document) =>
    [...read(SOURCE, document).matchAll(/\]\(([^)#:]*)#([^)]*)\)/g)].filter(([, file, heading]) => {
      const target = read(SOURCE, file ? path.join(path.dirname(document), file) : document);
      const headings = [...target.matchAll(/^#+ (.*)$/gm)].map((match) =>
        match[1].toLowerCase().replace(/[^\w -]/g, "").replaceAll(" ", "-"),
      );
      return !headings.includes(heading);
    }),
  );
  assert.deepEqual(wrong, []);
});

test("the examples in the man page work", (t) => {
  const folder = temporaryFolder(t);
  fs.cpSync(path.join(FIRST, "examples/reports"), `${folder}/reports`, { recursive: true });
  const env = { PATH: `${FIRST}/build/release:/usr/bin:/bin` };
  const section = read(SOURCE, "man/fthsummary.1").match(/^\.Sh EXAMPLES\n(.*?)^\.Sh/ms)[1];
  const line = section.match(/^\.Dl (.*)$/m)[1];
  const [script, ci, query] = [...section.matchAll(/^\.Bd [^\n]*\n(.*?)^\.Ed$/gms)].map((match) =>
    match[1].replaceAll("\\e", "\\"),
  );
  const shell = (text, status) => run("sh", ["-eu", "-c", text], { cwd: folder, env, status });
  shell(line, 1);
  assert.match(shell(script, 1).stderr, /^See out\/summary.html\.$/m);
  const job = JSON.parse(
    run("python3", ["-c", "import json,sys,yaml; print(json.dumps(yaml.safe_load(sys.stdin)))"], {
      input: ci,
    }).stdout,
  );
  assert.deepEqual(job.artifacts, { when: "always", paths: ["public/", "reports/"] });
  shell(job.script.join("\n"), 1);
  assert.ok(fs.existsSync(`${folder}/public/summary.json`));
  const failed = JSON.parse(read(folder, "out/summary.json")).reports.filter(
    ({ verdict }) => verdict !== "PASS",
  );
  assert.equal(shell(query, 0).stdout, failed.map((each) => `${each.relative_path}\n`).join(""));
});
