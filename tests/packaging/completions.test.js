// Completion, by completing: keys typed into interactive shells that find the
// completions where the installation put them.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { before, after, test } from "node:test";
import os from "node:os";
import { FIRST, SOURCE, run } from "./support.js";

const TYPE_KEYS = path.join(SOURCE, "tests/packaging/type_keys.py");
const OPTIONS = ["--help", "--input", "--json", "--version", "-h", "-o"];

let folder;
let environment;

before(() => {
  folder = fs.mkdtempSync(path.join(os.tmpdir(), "fthsummary-"));
  run("cmake", ["--install", path.join(FIRST, "build/release"), "--prefix", `${folder}/prefix`]);
  for (const name of ["album one", "alley", "reports"]) {
    fs.mkdirSync(path.join(folder, "here", name), { recursive: true });
  }
  for (const name of ["alone.html", "report.html"]) {
    fs.writeFileSync(path.join(folder, "here", name), "");
  }
  environment = {
    HOME: folder,
    PATH: `${folder}/prefix/bin:/usr/bin:/bin`,
    XDG_DATA_DIRS: `${folder}/prefix/share`,
    ZSH_FOLDER: `${folder}/prefix/share/zsh/site-functions`,
  };
});

after(() => fs.rmSync(folder, { recursive: true, force: true }));

// The command line after the keys.
function typed(shell, keys, changes = {}) {
  const options = { cwd: `${folder}/here`, env: { ...environment, ...changes } };
  return JSON.parse(run("python3", [TYPE_KEYS, shell, JSON.stringify(keys)], options).stdout).line;
}

// What fish offers for the command line. It finds completions by XDG_DATA_DIRS.
function fish(line, { dataFolders = environment.XDG_DATA_DIRS } = {}) {
  const options = { cwd: `${folder}/here`, env: { ...environment, XDG_DATA_DIRS: dataFolders } };
  const output = run("fish", ["-c", `complete -C '${line}'`], options).stdout;
  return output
    .split("\n")
    .filter(Boolean)
    .map((each) => each.split("\t")[0])
    .sort();
}

test("shellcheck has nothing to say about the completion for bash", () => {
  run("shellcheck", ["-s", "bash", path.join(SOURCE, "completions/fthsummary.bash")]);
});

for (const shell of ["bash", "zsh"]) {
  test(`${shell}: --in<Tab> becomes --input`, () => {
    assert.equal(typed(shell, "fthsummary --in\t"), "fthsummary --input ");
  });

  test(`${shell}: --j<Tab>, --v<Tab> and --he<Tab> become the options`, () => {
    assert.equal(typed(shell, "fthsummary --j\t"), "fthsummary --json ");
    assert.equal(typed(shell, "fthsummary --v\t"), "fthsummary --version ");
    assert.equal(typed(shell, "fthsummary --he\t"), "fthsummary --help ");
  });

  test(`${shell}: after --input there are folders and no files`, () => {
    assert.equal(typed(shell, "fthsummary --input re\t"), "fthsummary --input reports/");
    assert.equal(typed(shell, "fthsummary --input alo\t"), "fthsummary --input alo");
  });

  test(`${shell}: a folder's name with a blank is quoted`, () => {
    assert.equal(typed(shell, "fthsummary --input alb\t"), "fthsummary --input album\\ one/");
  });

  test(`${shell}: after -o there are files, and folders that may hold them`, () => {
    assert.equal(typed(shell, "fthsummary -o alo\t"), "fthsummary -o alone.html ");
    assert.equal(typed(shell, "fthsummary -o all\t"), "fthsummary -o alley/");
  });

  test(`${shell}: a word that belongs to no option is no file`, () => {
    assert.equal(typed(shell, "fthsummary alo\t"), "fthsummary alo");
  });

  test(`${shell}: options are completed after a value, too`, () => {
    assert.equal(
      typed(shell, "fthsummary --input reports -o x.html --j\t"),
      "fthsummary --input reports -o x.html --json ",
    );
  });
}

test("bash: offers exactly the options of the program", () => {
  const words = typed("bash", "fthsummary -\x1b*").trim().split(" ").slice(1);
  assert.deepEqual(words.sort(), OPTIONS);
});

test("zsh: offers exactly the options of the program", () => {
  const options = { cwd: `${folder}/here`, env: environment };
  const keys = JSON.stringify("fthsummary -\t\t");
  const { printed } = JSON.parse(run("python3", [TYPE_KEYS, "zsh", keys], options).stdout);
  const offered = new Set(printed.match(/(?<=\s)--?[a-z]+(?=\s)/g));
  assert.deepEqual([...offered].sort(), OPTIONS);
});

test("fish: offers exactly the options of the program", () => {
  const offered = new Set([...fish("fthsummary -"), ...fish("fthsummary --")]);
  assert.deepEqual([...offered].sort(), OPTIONS);
});

// To --in, fish 4 would also name --version, which has these letters, too.
test("fish: --inp<Tab> becomes --input", () => {
  assert.deepEqual(fish("fthsummary --inp"), ["--input"]);
});

test("fish: after --input there are folders and no files", () => {
  assert.deepEqual(fish("fthsummary --input al"), ["album one/", "alley/"]);
  assert.deepEqual(fish("fthsummary --input re"), ["reports/"]);
});

test("fish: after -o there are files, and folders that may hold them", () => {
  assert.deepEqual(fish("fthsummary -o al"), ["album one/", "alley/", "alone.html"]);
});

test("without the installed files there are no completions, so these tests can fail", () => {
  // Newer versions of bash-completion also look beside the program.
  const elsewhere = {
    PATH: "/usr/bin:/bin",
    XDG_DATA_DIRS: `${folder}/here`,
    ZSH_FOLDER: `${folder}/here`,
  };
  // Fish 4 knows options from the usage text by itself, but not what their values are.
  const values = fish("fthsummary --input al", { dataFolders: elsewhere.XDG_DATA_DIRS });
  assert.ok(values.includes("alone.html"), values.join());
  for (const shell of ["bash", "zsh"]) {
    assert.equal(typed(shell, "fthsummary alo\t", elsewhere), "fthsummary alone.html ");
  }
});
