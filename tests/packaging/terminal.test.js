// The shipped programs on a terminal, by the system's own clock: a run of more than a
// second shows where it is, and leaves nothing of that behind.

import assert from "node:assert/strict";
import fs from "node:fs";
import { test } from "node:test";
import { PROGRAM, STATIC_PROGRAM, run, temporaryFolder } from "./support.js";

const REPORTS = 100;
const HELD_UP = 15_000; // microseconds for each call that opens a file: the run takes 1.5 s
const DRAWN = /\rreading: \d+ of 100 \(\d+ %\)/;
const END = "\x1b[J\r\r\x1b[Jwrote s.html (100 fathomix reports: 100 passed, 0 failed)\r\n";
const REPORT = '<div class="k">Overall Verdict</div>\n<div class="v">PASS</div>\n';

for (const program of [PROGRAM, STATIC_PROGRAM]) {
  test(`a slow run of ${program} shows where it is`, (t) => {
    const folder = temporaryFolder(t);
    fs.mkdirSync(`${folder}/in`);
    for (let i = 0; i < REPORTS; ++i) {
      fs.writeFileSync(`${folder}/in/${i}.html`, REPORT);
    }
    const command =
      `strace -qq -o trace -e trace=openat,?open -e inject=openat,?open:delay_enter=${HELD_UP} ` +
      `'${program}' --input in -o s.html`;
    const { stdout } = run("script", ["-qec", command, "/dev/null"], {
      cwd: folder,
      env: { TERM: "xterm" },
    });
    assert.match(stdout, DRAWN);
    assert.ok(stdout.endsWith(END), JSON.stringify(stdout.slice(-200)));
  });
}
