// Two builds from different folders, by users with different settings, are the same.

import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import fs from "node:fs";
import { test } from "node:test";
import { FIRST, SECOND, archiveOf, builtProgram, imageOf, packageOf, rpmOf } from "./support.js";

function hashOf(file) {
  return createHash("sha256").update(fs.readFileSync(file)).digest("hex");
}

test("the two builds are of different folders", () => {
  assert.notEqual(fs.realpathSync(FIRST), fs.realpathSync(SECOND));
  assert.notEqual(FIRST.length, SECOND.length);
});

const MADE = {
  "the program": (copy) => builtProgram(copy, "release"),
  "the static program": (copy) => builtProgram(copy, "static"),
  "the Debian package": packageOf,
  "the RPM": rpmOf,
  "the archive": archiveOf,
  "the archive's checksum": (copy) => `${archiveOf(copy)}.sha256`,
  "the container image": imageOf,
};
for (const [what, fileOf] of Object.entries(MADE)) {
  test(`${what} is the same to the byte`, () => {
    assert.equal(hashOf(fileOf(FIRST)), hashOf(fileOf(SECOND)));
  });
}
