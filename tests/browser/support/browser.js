// Tests of pages, written once for three browsers. FTHSUMMARY_BROWSER names the one that
// runs them: chromium (if it is not set), firefox or webkit. Every page that a test opens
// must stay silent: no error, no message on the console, nothing asked from a network.

import assert from "node:assert/strict";
import { createServer } from "node:net";
import { dirname, join } from "node:path";
import { after, test as plainTest } from "node:test";

import { Page } from "./page.js";
import { pageWith } from "./program.js";

export const BROWSER = process.env.FTHSUMMARY_BROWSER ?? "chromium";
const NAMES = ["chromium", "firefox", "webkit"];
assert.ok(NAMES.includes(BROWSER), `FTHSUMMARY_BROWSER must be one of ${NAMES.join(", ")}`);
const { CANNOT, LISTENER, launch } = await import(`./${BROWSER}.js`);

// For what a loaded machine may take long to do; nothing is judged by it.
const PATIENCE_MS = 120_000;
const ATTEMPTS_TO_START = 3;

/** What the browser asked a network for. It has questions of its own, which no page makes it ask. */
export const asked = [];
const BROWSERS_OWN =
  /^\w+ (https?:\/\/)?[a-z0-9.-]+\.(google|googleapis|gvt1|mozilla|firefox)\.(com|net|org)[:/]/;

function startProxy() {
  const proxy = createServer((socket) => {
    socket.on("error", () => undefined);
    // A request's first line tells whose it is; its body may come later.
    socket.once("data", (data) => {
      const [line] = data.toString("latin1").split("\r\n");
      if (!BROWSERS_OWN.test(line)) {
        asked.push(line);
      }
      socket.end("HTTP/1.1 502 Bad Gateway\r\nContent-Length: 0\r\n\r\n");
    });
  });
  proxy.unref();
  return new Promise((done) => {
    proxy.listen(0, "127.0.0.1", () => done(`http://127.0.0.1:${proxy.address().port}`));
  });
}

async function startBrowser() {
  const proxy = await startProxy();
  for (let attempt = 1; ; attempt += 1) {
    try {
      return await launch({ proxy, patience: PATIENCE_MS });
    } catch (error) {
      if (attempt === ATTEMPTS_TO_START) {
        throw error;
      }
    }
  }
}

// One browser for all tests of a process.
let started;
after(async () => {
  await (await started)?.close();
});

export function assertSilent(seen) {
  assert.deepEqual(seen.errors, []);
  assert.deepEqual(seen.requests.filter((url) => !/^(file:\/\/\/|http:\/\/127\.0\.0\.1:)/.test(url)), []);
  assert.deepEqual(asked, []);
}

/**
 * The page with scripts that run before its own, each [function, parameter]: the file
 * itself if there are none, else a copy beside it, from where its links lead as far.
 */
function withScripts(path, scripts) {
  if (!path.startsWith("/") || scripts.length === 0) {
    return path;
  }
  const text = scripts
    .map(([run, parameter]) => `<script>(${run})(${JSON.stringify(parameter) ?? ""})</script>`)
    .join("");
  return pageWith(path, "<head>\n", `<head>\n${text}`, join(dirname(path), "with-scripts.html"));
}

const DEFAULTS = {
  colorScheme: "light",
  reducedMotion: "no-preference",
  scripting: true,
  storage: true,
  width: 1280,
  height: 900,
  scripts: [],
  until: "load",
};

/**
 * Opens a file or a URL, hands its page to the body and checks that it stayed silent.
 * Options beside the window's width and height: colorScheme, reducedMotion, scripting
 * and storage (false switches it off), scripts that run before those of the page, each
 * [function, parameter], and until, the event to wait for: "load" or "start", at which
 * the page is still coming.
 */
export async function withPage(target, options, body) {
  const { scripts, ...rest } = { ...DEFAULTS, ...options };
  started ??= startBrowser();
  const browser = await started;
  const seen = { errors: [], requests: [] };
  const tab = await browser.newTab(rest, seen);
  try {
    const page = new Page(tab, seen, PATIENCE_MS);
    const heard = LISTENER ? [[LISTENER], ...scripts] : scripts;
    await page.open(withScripts(target, heard), { until: rest.until });
    await body(page);
    await tab.collect?.();
    assertSilent(seen);
  } finally {
    asked.length = 0;
    await tab.close();
  }
}

// What this browser did not run, and why: said in one line each when the tests have ended.
const left = new Map();
process.on("exit", () => {
  left.forEach((count, why) => console.log(`# ${BROWSER} did not run ${count} tests: ${why}`));
});

function leave(why) {
  left.set(why, (left.get(why) ?? 0) + 1);
}

/**
 * Browsers stumble by themselves now and then, most of all on a busy machine. What fails
 * twice is a failure; what fails once is named.
 */
function inTwoTries(name, body) {
  return async (...context) => {
    try {
      await body(...context);
    } catch (problem) {
      const [reason] = String(problem.message).split("\n");
      console.log(`# ${BROWSER} needed a second try: ${name}: ${reason}`);
      await body(...context);
    }
  };
}

/**
 * A test that runs in every browser that can do what it needs, for example
 * { needs: "print" }; the lists of what they cannot are in their files.
 */
export function test(name, ...rest) {
  const body = rest.pop();
  const needs = [rest[0]?.needs ?? []].flat();
  const missing = needs.find((feature) => feature in CANNOT);
  if (missing) {
    leave(CANNOT[missing]);
  } else {
    plainTest(name, inTwoTries(name, body));
  }
}

/** Gives a test() for what is the same in every browser, so that one is enough. */
export function testOnce(why) {
  return (name, body) => {
    if (BROWSER === NAMES[0]) {
      plainTest(name, inTwoTries(name, body));
    } else {
      leave(`${why}, so ${NAMES[0]} alone runs them`);
    }
  };
}
