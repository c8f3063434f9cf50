// What the tests of installation, packages and documents share. tools/test packaging
// sets the environment: two copies of the tree in which tools/package has run.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import process from "node:process";
import { fileURLToPath } from "node:url";
import Ajv2020 from "ajv/dist/2020.js";

export const SOURCE = path.resolve(path.dirname(fileURLToPath(import.meta.url)), "../..");

function builtCopy(variable) {
  const folder = process.env[variable];
  assert.ok(folder, `${variable} is not set: run tools/test packaging`);
  return folder;
}

export const FIRST = builtCopy("FTHSUMMARY_FIRST_COPY");
export const SECOND = builtCopy("FTHSUMMARY_SECOND_COPY");
// Packages for another processor, made and run as the tests of them name it; else those for
// this machine.
export const FOREIGN = process.env.FTHSUMMARY_ARCHITECTURE ?? "";
const suffix = FOREIGN && `-${FOREIGN}`;
// The command that runs their programs here.
export const RUNNER = { "": [], arm64: ["qemu-aarch64-static", "-L", "/usr/aarch64-linux-gnu"] }[FOREIGN];
export const PROGRAM = path.join(FIRST, "build/release/fthsummary");
export const STATIC_PROGRAM = path.join(FIRST, "build/static/fthsummary");
export const EXAMPLES = path.join(FIRST, "examples/reports");

export function read(...parts) {
  return fs.readFileSync(path.join(...parts), "utf8");
}

// The one file of a folder whose name has the ending.
export function onlyFile(folder, ending) {
  const names = fs.readdirSync(folder).filter((name) => name.endsWith(ending));
  assert.equal(names.length, 1, `${folder} holds ${names.length} files *${ending}`);
  return path.join(folder, names[0]);
}

const packageFile = (copy, ending) => onlyFile(path.join(copy, `build/packages${suffix}`), ending);
export const packageOf = (copy) => packageFile(copy, ".deb");
export const rpmOf = (copy) => packageFile(copy, ".rpm");
export const archiveOf = (copy) => packageFile(copy, ".tar.gz");
export const imageOf = (copy) => packageFile(copy, ".tar");
export const builtProgram = (copy, preset) => path.join(copy, `build/${preset}${suffix}/fthsummary`);

// Runs a command; its status must be the expected one.
export function run(command, args, { status = 0, ...options } = {}) {
  const result = spawnSync(command, args, {
    encoding: "utf8",
    maxBuffer: 1 << 28,
    ...options,
    env: { ...process.env, LC_ALL: "C.UTF-8", ...options.env },
  });
  if (result.error) {
    throw result.error;
  }
  assert.equal(
    result.status,
    status,
    `${command} ${args.join(" ")}: status ${result.status}\n${result.stdout}${result.stderr}`,
  );
  return result;
}

// A file of YAML; all that is no list and no mapping is a string.
export function parseYaml(file) {
  const script = "import json, sys, yaml; print(json.dumps(yaml.load(sys.stdin, yaml.BaseLoader)))";
  return JSON.parse(run("/usr/bin/python3", ["-c", script], { input: read(file) }).stdout);
}

// The same with the rights of root: as it is for root, else in a user namespace.
export function runAsRoot(command, args, options) {
  if (process.getuid() === 0) {
    return run(command, args, options);
  }
  const probe = spawnSync("unshare", ["-r", "true"]);
  assert.equal(probe.status, 0, "this test needs root, or user namespaces for unshare -r");
  return run("unshare", ["-r", command, ...args], options);
}

// A folder that is removed when the test ends.
export function temporaryFolder(test) {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), "fthsummary-"));
  test.after(() => fs.rmSync(folder, { recursive: true, force: true }));
  return folder;
}

// Every file below a folder, sorted, by its path below it.
export function filesBelow(folder) {
  return fs
    .readdirSync(folder, { withFileTypes: true })
    .flatMap((entry) =>
      entry.isDirectory()
        ? filesBelow(path.join(folder, entry.name)).map((below) => `${entry.name}/${below}`)
        : [entry.name],
    )
    .sort();
}

const validate = new Ajv2020({ allErrors: true, strict: true }).compile(
  JSON.parse(read(SOURCE, "docs/summary.schema.json")),
);

// What is wrong with a JSON summary; empty when it follows the schema.
export function matchJson(file) {
  validate(JSON.parse(read(file)));
  return validate.errors ?? [];
}

// Runs the program with --json, by the runner if it is another processor's; the page is
// folder/index.html. Returns the JSON summary, which must follow the schema.
export function summarise(input, folder, { program = PROGRAM, runner = [], status = 1 } = {}) {
  const [command, ...args] = [...runner, program];
  run(command, [...args, "--input", input, "-o", `${folder}/index.html`, "--json"], { status });
  assert.deepEqual(matchJson(`${folder}/index.json`), []);
  return JSON.parse(read(folder, "index.json"));
}

// The bundled reports that passed and those that did not, by their verdict.
export function bundledReports(test) {
  return summarise(EXAMPLES, temporaryFolder(test)).reports;
}

// Copies the first bundled report with the verdict, the rest of it as it is.
export function copyReport(test, verdict, to) {
  const report = bundledReports(test).find((each) => each.verdict === verdict);
  fs.mkdirSync(path.dirname(to), { recursive: true });
  fs.copyFileSync(path.join(EXAMPLES, report.relative_path), to);
}

// The fenced blocks of a document: language, the word "file=..." if any, the marker
// in the comment above it, text.
export function fencedBlocks(document) {
  const pattern = /(?:<!-- ([^\n]*?) -->\n)?^```(\w*)(?: file=(\S+))?\n(.*?)^```$/gms;
  return [...read(SOURCE, document).matchAll(pattern)].map(([, marker, language, file, text]) => ({
    marker,
    language,
    file,
    text,
  }));
}

// One of the files that docs/ci.md shows, written into the folder.
export function writeRecipe(name, folder, { mode = 0o755, edit = (text) => text } = {}) {
  const block = fencedBlocks("docs/ci.md").find(({ file }) => file === name);
  assert.ok(block, `docs/ci.md shows no file ${name}`);
  const target = path.join(folder, path.basename(name));
  fs.writeFileSync(target, edit(block.text), { mode });
  return target;
}

// A folder with a folder of reports, those of the verdicts given.
export function makeProject(test, verdicts) {
  const folder = temporaryFolder(test);
  fs.mkdirSync(`${folder}/reports`);
  for (const verdict of verdicts) {
    copyReport(test, verdict, `${folder}/reports/${verdict}.html`);
  }
  return folder;
}

// The document's Makefile, and what stands for whatever makes the reports.
export function addMakefile(folder) {
  writeRecipe("Makefile", folder);
  fs.writeFileSync(`${folder}/make-reports`, "#!/bin/sh\ntouch made\n", { mode: 0o755 });
}
