// The built program and the folders that it reads and writes during the tests.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

export const SOURCE_FOLDER = fileURLToPath(new URL("../../..", import.meta.url));

const PROGRAM = resolve(SOURCE_FOLDER, process.env.FTHSUMMARY ?? "build/checked/fthsummary");

const folders = [];
function removeFolders() {
  folders.forEach((folder) => rmSync(folder, { recursive: true, force: true }));
}
process.on("exit", removeFolders);
process.once("SIGTERM", () => {
  // After the browsers, which are ended at exit, too, and write into them.
  process.removeListener("exit", removeFolders);
  process.on("exit", removeFolders);
  process.exit(128 + 15);
});

/** A new empty folder, removed when the tests of this file have ended. */
export function newFolder() {
  const folder = mkdtempSync(join(tmpdir(), "fthsummary-browser-"));
  folders.push(folder);
  return folder;
}

/** A page with nothing in it. */
export const BLANK_PAGE = join(newFolder(), "blank.html");
writeFileSync(BLANK_PAGE, "<!doctype html>\n");

/**
 * Writes files below a folder and returns the folder. Each is [path, content], both
 * strings or, for names that are not UTF-8, buffers.
 */
export function writeTree(folder, files) {
  for (const [path, content] of files) {
    const full = Buffer.concat([Buffer.from(`${folder}/`), Buffer.from(path)]);
    mkdirSync(full.subarray(0, full.lastIndexOf("/")), { recursive: true });
    writeFileSync(full, content);
  }
  return folder;
}

/** Runs the program, by default from inside the input's parent, and returns the page's path. */
export function summarize(input, page = join(newFolder(), "summary.html"), options = {}) {
  const run = spawnSync(PROGRAM, ["--input", input, "-o", page], { encoding: "utf8", ...options });
  assert.equal(run.error, undefined, `${PROGRAM} could not be run`);
  assert.match(run.stdout, /^wrote /, run.stderr);
  return resolve(options.cwd ?? ".", page);
}

/** The page of a tree of these files. */
export function pageOf(files) {
  return summarize(writeTree(newFolder(), files));
}

/** Writes a copy of the page in which one text is replaced, which must be there. */
export function pageWith(page, text, replacement, copy = join(newFolder(), "summary.html")) {
  const html = readFileSync(page, "utf8");
  assert.ok(html.includes(text), `the page holds ${text}`);
  writeFileSync(copy, html.replaceAll(text, () => replacement));
  return copy;
}
