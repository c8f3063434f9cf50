// The recipes of docs/ci.md for other tools than a shell: what they would run is run,
// and what they would be given is looked at.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import process from "node:process";
import { Buffer } from "node:buffer";
import { test } from "node:test";
import {
  FIRST,
  addMakefile,
  imageOf,
  makeProject,
  packageOf,
  parseYaml,
  read,
  run,
  writeRecipe,
} from "./support.js";

// A program of the machine that a test does without.
function addStub(folder, name, script) {
  fs.mkdirSync(`${folder}/stubs`, { recursive: true });
  fs.writeFileSync(`${folder}/stubs/${name}`, `#!/bin/sh\n${script}\n`, { mode: 0o755 });
}

// A project on a machine where the program is not installed yet: apt-get unpacks the
// package into a folder.
function makeCiProject(t, verdicts) {
  const folder = makeProject(t, verdicts);
  addMakefile(folder);
  fs.mkdirSync(`${folder}/ci`);
  fs.copyFileSync(packageOf(FIRST), `${folder}/ci/fthsummary.deb`);
  addStub(folder, "sudo", 'exec "$@"');
  addStub(
    folder,
    "apt-get",
    `for argument; do
    case $argument in ./*) dpkg-deb -x "$argument" "${folder}/machine" || exit ;; esac
done`,
  );
  return folder;
}

// A project on a machine with the program, as an administrator has installed it.
function makeInstalledProject(t, verdicts) {
  const folder = makeCiProject(t, verdicts);
  run("dpkg-deb", ["-x", `${folder}/ci/fthsummary.deb`, `${folder}/machine`]);
  return folder;
}

// The filters are those that the package has brought.
const onMachine = (folder, text) => text.replaceAll("/usr/share/fthsummary", `${folder}/machine$&`);
const environment = (folder) => ({ PATH: `${folder}/stubs:${folder}/machine/usr/bin:/usr/bin:/bin` });

function runLine(folder, line, { status = 0, env = {} } = {}) {
  const all = { ...environment(folder), ...env };
  return run("sh", ["-e", "-c", onMachine(folder, line)], { cwd: folder, env: all, status });
}

// A project whose job runs on a machine that is made as the image's file says: apt-get is
// a stand-in again, and the files come from the project and from the container image.
function makeImageProject(t, verdicts) {
  const folder = makeCiProject(t, verdicts);
  run("tar", ["-x", "-f", imageOf(FIRST), "--one-top-level=image"], { cwd: folder });
  fs.copyFileSync(path.join(FIRST, "filters/junit.jq"), `${folder}/junit.jq`);
  const steps = {
    FROM: (image) => assert.equal(image, "debian:12"),
    RUN: (...words) => runLine(folder, words.join(" ")),
    COPY: (...words) => {
      const [file, to] = words.slice(-2);
      const [, image] = words[0].match(/^--from=fthsummary:(.*)$/) ?? [];
      const unpack = ["unpack", "--rootless", "--image", `${folder}/image:${image}`, `${folder}/unpacked`];
      const from = image ? `${folder}/unpacked/rootfs` : folder;
      if (image) {
        run("umoci", unpack);
      }
      fs.cpSync(path.join(from, file), path.join(`${folder}/machine`, to));
    },
  };
  for (const line of read(writeRecipe("Containerfile", folder)).trim().split("\n")) {
    const [instruction, ...words] = line.split(" ");
    steps[instruction](...words);
  }
  return folder;
}

const SUM_UP = /^fthsummary /;

// Runs lines as a CI system does; only the one that sums up may fail, and it must be
// the last. Gives what the lines printed.
function runLines(folder, lines, status) {
  assert.ok(SUM_UP.test(lines.at(-1)), lines.at(-1));
  return lines.map((line, i) => runLine(folder, line, { status: i === lines.length - 1 ? status : 0 }));
}

const CASES = [
  [["PASS"], 0],
  [["PASS", "FAIL"], 1],
];
const hasFailure = (junit) => /<failure /.test(junit);

for (const [verdicts, status] of CASES) {
  const what = `ends with ${status} for ${verdicts.join(" and ")}`;

  test(`the GitHub job ${what}; annotations, table and page are made all the same`, (t) => {
    const folder = makeCiProject(t, verdicts);
    const { steps } = parseYaml(writeRecipe(".github/workflows/reports.yml", folder)).jobs.summary;
    const summing = steps.findIndex((step) => SUM_UP.test(step.run));
    const before = steps.slice(0, summing + 1).map((step) => step.run).filter(Boolean);
    runLines(folder, before, status);

    const after = steps.slice(summing + 1);
    for (const step of after) {
      assert.match(step.if, /^always\(\)/);
    }
    const env = { GITHUB_STEP_SUMMARY: `${folder}/step-summary` };
    fs.writeFileSync(env.GITHUB_STEP_SUMMARY, "What another step wrote.\n\n");
    const [annotate, table, upload] = after;
    const { stdout } = runLine(folder, annotate.run, { env });
    assert.equal(stdout.startsWith("::error title=FAIL%3A FAIL.html::"), status === 1);
    assert.equal(runLine(folder, table.run, { env }).stdout, "");
    const verdict = status === 0 ? "PASS" : "FAIL";
    assert.ok(
      read(env.GITHUB_STEP_SUMMARY).startsWith(`What another step wrote.\n\n## Suite Verdict: ${verdict}\n`),
    );
    assert.match(upload.uses, /^actions\/upload-artifact@/);
    assert.ok(fs.existsSync(path.join(folder, upload.with.path, "index.html")));
    assert.equal(after.length, 3);
  });

  test(`the GitLab job ${what}; page and JUnit report are kept all the same`, (t) => {
    const folder = makeImageProject(t, verdicts);
    const { summary } = parseYaml(writeRecipe(".gitlab-ci.yml", folder));
    runLines(folder, summary.script, status);
    summary.after_script.forEach((line) => runLine(folder, line));
    const { when, expose_as: link, paths, reports } = summary.artifacts;
    assert.equal(when, "always");
    // What GitLab allows there.
    assert.match(link, /^[\w -]+$/);
    assert.doesNotMatch(paths.join(""), /[*?$[\]]/);
    assert.ok(fs.existsSync(path.join(folder, paths[0], "index.html")));
    assert.equal(hasFailure(read(folder, reports.junit)), status === 1);
  });

  test(`the Jenkins build ${what}; page and JUnit report are kept all the same`, (t) => {
    const folder = makeInstalledProject(t, verdicts);
    const text = read(writeRecipe("Jenkinsfile", folder));
    assert.equal(text.match(/\{/g).length, text.match(/\}/g).length);
    const [stages, always] = text.split(/^ {4}post \{\n {8}always \{$/m);
    const shells = (part) => [...part.matchAll(/^ +sh '([^'\n]*)'$/gm)].map((match) => match[1]);
    runLines(folder, shells(stages), status);
    assert.equal(shells(always).length, 1);
    shells(always).forEach((line) => runLine(folder, line));
    const [, kept] = always.match(/archiveArtifacts artifacts: '(\w+)\/\*\*'/);
    assert.ok(fs.existsSync(path.join(folder, kept, "index.html")));
    assert.equal(hasFailure(read(folder, always.match(/^ +junit '(.*)'$/m)[1])), status === 1);
  });

  test(`the mail for ${verdicts.join(" and ")} has the table as its body`, (t) => {
    const folder = makeInstalledProject(t, verdicts);
    addStub(folder, "sendmail", `printf '%s ' "$@" >"${folder}/arguments"\ncat >"${folder}/mail"`);
    const edit = (script) =>
      onMachine(folder, script).replace("/usr/sbin/sendmail", `${folder}/stubs/sendmail`);
    const script = writeRecipe("mail-table", folder, { edit });
    run(script, [`${folder}/reports`, "lab@example.org"], { env: environment(folder) });

    assert.equal(read(folder, "arguments"), "-t -oi ");
    const [head, body] = read(folder, "mail").split("\n\n");
    const verdict = status === 0 ? "PASS" : "FAIL";
    assert.ok(head.startsWith(`To: lab@example.org\nSubject: Suite Verdict: ${verdict}\nMIME-Version: 1.0\n`));
    assert.match(head, /^Content-Transfer-Encoding: base64$/m);
    const filter = onMachine(folder, "/usr/share/fthsummary/filters/markdown.jq");
    const table = run("jq", ["-r", "-f", filter, `${folder}/reports/index.json`]).stdout;
    assert.equal(Buffer.from(body, "base64").toString(), table);
    assert.ok(body.split("\n").every((line) => line.length <= 76));
  });

  test(`the metrics for ${verdicts.join(" and ")} take the place of older ones`, (t) => {
    const folder = makeInstalledProject(t, verdicts);
    const collector = `${folder}/collector`;
    fs.mkdirSync(collector);
    fs.writeFileSync(`${collector}/lab.prom`, "old");
    const before = fs.statSync(`${collector}/lab.prom`).ino;
    const script = writeRecipe("write-metrics", folder, { edit: (text) => onMachine(folder, text) });
    run(script, [`${folder}/reports`, collector, "lab"], { env: environment(folder) });

    const input = read(collector, "lab.prom");
    run(process.env.FTHSUMMARY_PROMTOOL, ["check", "metrics"], { input });
    assert.match(input, new RegExp(`^fthsummary_suite_passed\\{.*\\} ${1 - status}$`, "m"));
    // A file of its own, moved there, that the exporter may read; and nothing beside it.
    const { ino, mode } = fs.statSync(`${collector}/lab.prom`);
    assert.notEqual(ino, before);
    assert.equal(mode & 0o777, 0o644);
    assert.deepEqual(fs.readdirSync(collector), ["lab.prom"]);
  });
}

for (const name of ["mail-table", "write-metrics"]) {
  test(`without a summary, ${name} ends with 1 and leaves what was there`, (t) => {
    const folder = makeInstalledProject(t, ["PASS"]);
    addStub(folder, "sendmail", `touch "${folder}/mail"`);
    const collector = `${folder}/collector`;
    fs.mkdirSync(collector);
    fs.writeFileSync(`${collector}/lab.prom`, "old");
    // Yesterday's JSON file must not speak for today.
    fs.writeFileSync(`${folder}/reports/index.json`, "{}");
    fs.mkdirSync(`${folder}/reports/index.html`);
    const edit = (text) => onMachine(folder, text).replace("/usr/sbin/sendmail", `${folder}/stubs/sendmail`);
    const script = writeRecipe(name, folder, { edit });
    run(script, [`${folder}/reports`, collector, "lab"], { env: environment(folder), status: 1 });
    assert.ok(!fs.existsSync(`${folder}/mail`));
    assert.deepEqual(fs.readdirSync(collector), ["lab.prom"]);
    assert.equal(read(collector, "lab.prom"), "old");
  });
}

test("metrics that cannot be made leave the old ones, and nothing beside them", (t) => {
  const folder = makeInstalledProject(t, ["PASS"]);
  fs.mkdirSync(`${folder}/collector`);
  fs.writeFileSync(`${folder}/collector/lab.prom`, "old");
  addStub(folder, "jq", "echo half of it\nexit 5");
  const script = writeRecipe("write-metrics", folder);
  const args = [`${folder}/reports`, `${folder}/collector`, "lab"];
  run(script, args, { env: environment(folder), status: 5 });
  assert.deepEqual(fs.readdirSync(`${folder}/collector`), ["lab.prom"]);
  assert.equal(read(folder, "collector/lab.prom"), "old");
});
