// The program in each package is hardened, is content with an old C library, and runs. The
// packages are those for this machine, or for another processor (see support.js).

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import {
  EXAMPLES,
  FIRST,
  RUNNER,
  archiveOf,
  builtProgram,
  imageOf,
  packageOf,
  rpmOf,
  run,
  summarise,
  temporaryFolder,
} from "./support.js";

// The oldest C library that has all symbols that the program asks for: what the long-term
// distributions have.
const NEWEST_LIBC = [2, 34];

const byVersion = ([major, minor], [otherMajor, otherMinor]) => major - otherMajor || minor - otherMinor;
const versionsIn = (text, pattern) => [...text.matchAll(pattern)].map((match) => match[1].split(".").map(Number));

function imageName(layout) {
  return `${layout}:${run("umoci", ["ls", "--layout", layout]).stdout.trim()}`;
}

// Where the program lies after each package is unpacked into the folder; and the build that
// it is stripped of.
const PACKAGES = {
  "the Debian package": [
    "release",
    (folder) => {
      run("dpkg-deb", ["-x", packageOf(FIRST), folder]);
      return `${folder}/usr/bin/fthsummary`;
    },
  ],
  "the RPM": [
    "release",
    (folder) => {
      run("sh", ["-c", 'rpm2cpio "$1" | cpio -id --quiet', "-", rpmOf(FIRST)], { cwd: folder });
      return `${folder}/usr/bin/fthsummary`;
    },
  ],
  "the archive": [
    "static",
    (folder) => {
      run("tar", ["-xzf", archiveOf(FIRST), "--strip-components=1", "-C", folder]);
      return `${folder}/bin/fthsummary`;
    },
  ],
  "the container image": [
    "static",
    (folder) => {
      run("tar", ["-xf", imageOf(FIRST), "-C", folder]);
      run("umoci", ["unpack", "--rootless", "--image", imageName(folder), `${folder}/bundle`]);
      return `${folder}/bundle/rootfs/fthsummary`;
    },
  ],
};

// What a program lacks of the usual hardening. Which functions it calls is told by the one
// that it is stripped of.
function weaknesses(program, unstripped = program) {
  const headers = run("readelf", ["-hlW", program]).stdout;
  const dynamic = run("readelf", ["-dW", program]).stdout;
  const symbols = run("readelf", ["-sW", unstripped]).stdout;
  const strengths = {
    "position-independent": /^ +Type: +DYN /m.test(headers),
    "read-only relocations": /^ +GNU_RELRO /m.test(headers),
    "all bound at the start": /\(FLAGS(_1)?\).*\b(BIND_)?NOW\b/.test(dynamic),
    "no executable stack": /^ +GNU_STACK .* RW +0x/m.test(headers),
    "no memory to write and execute": !/ RWE /.test(headers),
    "guarded stack": / __stack_chk_fail(@|$| )/m.test(symbols),
    fortified: / __\w+_chk(@|$| )/m.test(symbols),
  };
  return Object.keys(strengths).filter((what) => !strengths[what]);
}

for (const [what, [preset, unpack]] of Object.entries(PACKAGES)) {
  test(`the program of ${what} is hardened`, (t) => {
    assert.deepEqual(weaknesses(unpack(temporaryFolder(t)), builtProgram(FIRST, preset)), []);
  });

  test(`the program of ${what} needs ${preset === "static" ? "no library" : "an old C library alone"}`, (t) => {
    const program = unpack(temporaryFolder(t));
    const dynamic = run("readelf", ["-dW", program]).stdout;
    const libraries = [...dynamic.matchAll(/\(NEEDED\).*\[(.*)\]/g)].map((match) => match[1]);
    const interpreter = / INTERP /.test(run("readelf", ["-lW", program]).stdout);
    if (preset === "static") {
      assert.deepEqual({ libraries, interpreter }, { libraries: [], interpreter: false });
      return;
    }
    assert.deepEqual(libraries.filter((name) => !/^ld-linux-[\w-]+\.so/.test(name)), ["libc.so.6"]);
    const versions = versionsIn(run("readelf", ["-VW", program]).stdout, /Name: GLIBC_([\d.]+)/g);
    const newest = versions.sort(byVersion).at(-1);
    assert.ok(byVersion(newest, NEWEST_LIBC) <= 0, newest.join("."));
  });

  test(`the program of ${what} runs`, (t) => {
    const folder = temporaryFolder(t);
    const program = unpack(folder);
    const there = summarise(EXAMPLES, `${folder}/there`, { program, runner: RUNNER });
    assert.deepEqual(there, summarise(EXAMPLES, `${folder}/here`));
  });
}

test("the packages ask for a C library that has what the program needs, and for no newer one", () => {
  const needed = versionsIn(
    run("readelf", ["-VW", builtProgram(FIRST, "release")]).stdout,
    /Name: GLIBC_([\d.]+)/g,
  ).sort(byVersion).at(-1);
  const debian = run("dpkg-deb", ["-f", packageOf(FIRST), "Depends"]).stdout;
  const [asked, ...others] = versionsIn(debian, />= ([\d.]+)/g);
  assert.deepEqual(others, []);
  assert.ok(byVersion(needed, asked) <= 0 && byVersion(asked, NEWEST_LIBC) <= 0, debian);
  const rpm = run("rpm", ["-qp", "--requires", rpmOf(FIRST)]).stdout;
  assert.deepEqual(versionsIn(rpm, /libc\.so\.6\(GLIBC_([\d.]+)\)/g).sort(byVersion).at(-1), needed);
});

test("each weakness is found, so these tests can fail", (t) => {
  const folder = temporaryFolder(t);
  fs.writeFileSync(`${folder}/weak.cpp`, "int main() {}\n");
  const build = (...options) => {
    const program = path.join(folder, "weak");
    run("g++", [...options, `${folder}/weak.cpp`, "-o", program]);
    return weaknesses(program);
  };
  assert.deepEqual(build("-no-pie", "-Wl,-z,norelro,-z,lazy,-z,execstack"), [
    "position-independent",
    "read-only relocations",
    "all bound at the start",
    "no executable stack",
    "no memory to write and execute",
    "guarded stack",
    "fortified",
  ]);
  assert.deepEqual(build("-pie", "-Wl,-z,relro,-z,now"), ["guarded stack", "fortified"]);
});
