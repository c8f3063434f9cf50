// Two builds from different folders, by users with different settings, are the same.

import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import { FIRST, SECOND, archiveOf, packageOf } from "./support.js";

function hashOf(file) {
  return createHash("sha256").update(fs.readFileSync(file)).digest("hex");
}

test("the two builds are of different folders", () => {
  assert.notEqual(fs.realpathSync(FIRST), fs.realpathSync(SECOND));
  assert.notEqual(FIRST.length, SECOND.length);
});

for (const program of ["build/release/fthsummary", "build/static/fthsummary"]) {
  test(`${program} is the same to the byte`, () => {
    assert.equal(hashOf(path.join(FIRST, program)), hashOf(path.join(SECOND, program)));
  });
}

test("the Debian package is the same to the byte", () => {
  assert.equal(hashOf(packageOf(FIRST)), hashOf(packageOf(SECOND)));
});

test("the archive and its checksum are the same to the byte", () => {
  assert.equal(hashOf(archiveOf(FIRST)), hashOf(archiveOf(SECOND)));
  assert.equal(hashOf(`${archiveOf(FIRST)}.sha256`), hashOf(`${archiveOf(SECOND)}.sha256`));
});
