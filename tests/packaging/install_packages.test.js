// tools/lib/install-packages with stand-ins for apt-get and sudo: nothing is installed.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import process from "node:process";
import { test } from "node:test";
import { SOURCE, read, run, temporaryFolder } from "./support.js";

const SCRIPT = path.join(SOURCE, "tools/lib/install-packages");
const MISSING = "fthsummary-no-such-package";

// A machine on which apt-get notes how it is called, for the user with that number.
function makeMachine(t, user, { sudo, aptStatus = 0 }) {
  const folder = temporaryFolder(t);
  const stub = (name, text) => fs.writeFileSync(`${folder}/${name}`, `#!/bin/sh\n${text}`, { mode: 0o755 });
  stub("id", `echo ${user}\n`);
  stub("sudo", sudo);
  stub(
    "apt-get",
    `cat >"${folder}/input"
echo "$1 \${DEBIAN_FRONTEND-unset}" >>"${folder}/calls"
echo "what apt-get says"
exit ${aptStatus}
`,
  );
  const env = { PATH: `${folder}:${process.env.PATH}` };
  return { folder, install: (status) => run(SCRIPT, [MISSING], { env, status, input: "typed" }) };
}

// Hands on no variable, and asks for no password.
const SUDO = '[ "$1" != -n ] || shift\nexec env -i PATH="$PATH" "$@"\n';

for (const [who, user] of [["root", 0], ["a user with sudo", 1000]]) {
  test(`for ${who}, apt-get is told not to ask and has nobody to ask`, (t) => {
    const { folder, install } = makeMachine(t, user, { sudo: SUDO });
    assert.equal(install(0).stdout, `Installing ${MISSING}\n`);
    assert.match(read(folder, "calls"), /^update \w+\ninstall noninteractive\n$/);
    assert.equal(read(folder, "input"), "");
  });
}

test("without the right to install, it says what to do", (t) => {
  const { folder, install } = makeMachine(t, 1000, { sudo: "exit 1\n" });
  assert.match(install(1).stderr, new RegExp(`sudo apt-get install ${MISSING}$`, "m"));
  assert.ok(!fs.existsSync(`${folder}/calls`));
});

test("what apt-get says is shown when it fails", (t) => {
  const { install } = makeMachine(t, 0, { sudo: SUDO, aptStatus: 100 });
  assert.match(install(1).stderr, /^what apt-get says$/m);
});
