// The container image: what it holds, what it says, and a run of it as a container's first
// process would be: in a root folder that holds nothing else.

import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import { gunzipSync } from "node:zlib";
import {
  EXAMPLES,
  FIRST,
  PROGRAM,
  SOURCE,
  filesBelow,
  imageOf,
  read,
  run,
  runAsRoot,
  summarise,
  temporaryFolder,
} from "./support.js";

const VERSION = run(PROGRAM, ["--version"]).stdout.trim().replace(/^.* v/, "");

// The image's layout, and what umoci makes of it.
function unpacked(t) {
  const layout = temporaryFolder(t);
  run("tar", ["-xf", imageOf(FIRST), "-C", layout]);
  run("umoci", ["unpack", "--rootless", "--image", `${layout}:${VERSION}`, `${layout}/bundle`]);
  return { layout, root: `${layout}/bundle/rootfs` };
}

test("it holds the program and nothing else, and starts it", (t) => {
  const { layout, root } = unpacked(t);
  assert.deepEqual(fs.readdirSync(root), ["fthsummary"]);
  const { process: started } = JSON.parse(read(layout, "bundle/config.json"));
  assert.deepEqual(started.args, ["/fthsummary"]);
});

test("its program makes the summary of a folder that is put there", (t) => {
  const { root } = unpacked(t);
  fs.cpSync(EXAMPLES, `${root}/reports`, { recursive: true });
  runAsRoot("chroot", [root, "/fthsummary", "--input", "/reports", "-o", "/out/s.html", "--json"], {
    status: 1,
  });
  const verdicts = ({ reports }) => reports.map(({ verdict }) => verdict).sort();
  const here = summarise(EXAMPLES, temporaryFolder(t));
  assert.deepEqual(verdicts(JSON.parse(read(root, "out/s.json"))), verdicts(here));
});

test("each of its parts is what its name says, for Docker's reader, too", (t) => {
  const { layout } = unpacked(t);
  const hash = (bytes) => createHash("sha256").update(bytes).digest("hex");
  const blobs = path.join(layout, "blobs/sha256");
  assert.equal(filesBelow(blobs).length, 3);
  for (const name of filesBelow(blobs)) {
    assert.equal(hash(fs.readFileSync(path.join(blobs, name))), name);
  }
  const [{ Config: config, RepoTags: names, Layers: layers }] = JSON.parse(read(layout, "manifest.json"));
  assert.deepEqual(names, [`fthsummary:${VERSION}`]);
  const { architecture, rootfs } = JSON.parse(read(layout, config));
  assert.deepEqual(rootfs.diff_ids, [`sha256:${hash(gunzipSync(fs.readFileSync(path.join(layout, layers[0]))))}`]);
  assert.ok(imageOf(FIRST).endsWith(`-image-${architecture}.tar`));
});

test("the documents name the image as it is named", () => {
  for (const document of ["README.md", "docs/ci.md"]) {
    const names = [...read(SOURCE, document).matchAll(/\bfthsummary:([\w.-]+)/g)].map((match) => match[1]);
    assert.deepEqual([...new Set(names)], [VERSION], document);
  }
});
