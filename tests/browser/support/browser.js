// Tests of pages, written once for three browsers. FTHSUMMARY_BROWSER names the one that
// runs them: chromium (if it is not set), firefox or webkit. Every page that a test opens
// must stay silent: no error, no message on the console, nothing asked from a network.

import assert from "node:assert/strict";
import { createServer } from "node:net";
import { dirname, join } from "node:path";
import { after, test as plainTest } from "node:test";

import { inAttempts } from "./attempts.js";
import { Page } from "./page.js";
import { BLANK_PAGE, pageWith } from "./program.js";

export const BROWSER = process.env.FTHSUMMARY_BROWSER ?? "chromium";
const NAMES = ["chromium", "firefox", "webkit"];
assert.ok(NAMES.includes(BROWSER), `FTHSUMMARY_BROWSER must be one of ${NAMES.join(", ")}`);
const { CANNOT, FIXED_SETTINGS, LISTENER, launch } = await import(`./${BROWSER}.js`);

// For what a loaded machine may take long to do; nothing is judged by it.
const PATIENCE_MS = 120_000;

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
  return inAttempts(BROWSER, () => launch({ proxy, patience: PATIENCE_MS }));
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

// To open a window takes longer than most tests: those that wait for the next test, by the
// settings that they cannot change.
const windows = new Map();

async function windowFor(settings, seen) {
  started ??= startBrowser();
  const browser = await started;
  const kind = FIXED_SETTINGS.map((name) => settings[name]).join();
  const tab = windows.get(kind);
  windows.delete(kind);
  if (tab) {
    tab.seen = seen;
    await tab.set(settings);
  }
  return { kind, tab: tab ?? (await browser.newTab(settings, seen)) };
}

/** Forgets what pages stored; false where the page does not let it. */
const FORGET = `(() => {
  try {
    localStorage.clear();
    return true;
  } catch {
    return false;
  }
})()`;

/** Leaves a window as if no test had used it. A page that a test has changed does not stay in it. */
async function leaveWindow(page, kind, isChanged) {
  if (page.hasMouse) {
    await page.moveMouse(0, 0);
  }
  if (isChanged || !(await page.evaluate(FORGET))) {
    await page.open(BLANK_PAGE);
    await page.evaluate(FORGET);
  }
  windows.set(kind, page.tab);
}

// The page that lookAt() left open: its key, its window's kind and the page.
let watched;

async function stopLooking() {
  const { kind, page } = watched ?? {};
  watched = undefined;
  if (page) {
    await leaveWindow(page, kind, false);
  }
}

async function openPage(target, { scripts, ...settings }) {
  const seen = { errors: [], requests: [] };
  const { kind, tab } = await windowFor(settings, seen);
  const page = new Page(tab, seen, PATIENCE_MS);
  try {
    if (settings.until === "start") {
      // Else a look at what has come could be one at the last page.
      await page.open(BLANK_PAGE);
      seen.requests.length = 0;
    }
    await page.open(withScripts(target, LISTENER ? [[LISTENER], ...scripts] : scripts), settings);
    return { kind, page };
  } catch (error) {
    await tab.close();
    throw error;
  }
}

/** Hands the page to the body and checks that it stayed silent; closes its window if not. */
async function usePage(page, body) {
  try {
    await body(page);
    await page.tab.collect?.();
    assertSilent(page.seen);
  } catch (error) {
    await page.tab.close();
    throw error;
  } finally {
    asked.length = 0;
  }
}

/**
 * Opens a file or a URL, hands its page to the body and checks that it stayed silent.
 * Options beside the window's width and height: colorScheme, reducedMotion, scripting
 * and storage (false switches it off), scripts that run before those of the page, each
 * [function, parameter], and until, the event to wait for: "load" or "start", at which
 * the page is still coming.
 */
export async function withPage(target, options, body) {
  await stopLooking();
  const all = { ...DEFAULTS, ...options };
  const { kind, page } = await openPage(target, all);
  await usePage(page, body);
  await leaveWindow(page, kind, all.scripts.length > 0 || all.until === "start");
}

/**
 * The same for a body that leaves the page as it finds it, and options that an open page can
 * follow. If that page was looked at last, it is still open.
 */
export async function lookAt(target, options, body) {
  const all = { ...DEFAULTS, ...options };
  const key = `${target} ${all.scripting}`;
  if (watched?.key === key) {
    await watched.page.tab.set(all);
  } else {
    await stopLooking();
    watched = { key, ...(await openPage(target, all)) };
  }
  const { page } = watched;
  try {
    await usePage(page, body);
  } catch (error) {
    watched = undefined;
    throw error;
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
