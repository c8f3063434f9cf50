// Pages in Debian's Chromium. Every page that a test opens must stay silent: no
// error, no message on the console, nothing asked from a network.

import assert from "node:assert/strict";
import { after, before } from "node:test";
import { pathToFileURL } from "node:url";

import { chromium } from "playwright-core";

export const LAUNCH_OPTIONS = {
  executablePath: "/usr/bin/chromium",
  args: [
    "--no-sandbox",
    "--disable-gpu",
    "--disable-quic",
    "--no-first-run",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
  ],
};

const PATIENCE_MS = 30_000;

/** What a page must not do; fill it before the page opens anything. */
export function watch(context) {
  const seen = { errors: [], requests: [] };
  context.on("weberror", (event) => seen.errors.push(String(event.error())));
  context.on("console", (message) => seen.errors.push(message.text()));
  context.on("dialog", (dialog) => {
    seen.errors.push(`dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  context.on("request", (request) => seen.requests.push(request.url()));
  return seen;
}

export function assertSilent(seen) {
  assert.deepEqual(seen.errors, []);
  assert.deepEqual(seen.requests.filter((url) => !url.startsWith("file:///")), []);
}

const DEFAULTS = {
  colorScheme: "light",
  reducedMotion: "no-preference",
  width: 1280,
  height: 900,
  initScripts: [],
};

/**
 * Opens the file, hands it to the body and checks that it stayed silent. The init scripts,
 * each [function, argument], run before those of the page.
 */
async function withPage(browser, path, options, body) {
  const { width, height, initScripts, ...rest } = { ...DEFAULTS, ...options };
  const context = await browser.newContext({ ...rest, viewport: { width, height } });
  try {
    context.setDefaultTimeout(PATIENCE_MS);
    const seen = watch(context);
    for (const [script, argument] of initScripts) {
      await context.addInitScript(script, argument);
    }
    const page = await context.newPage();
    await page.goto(pathToFileURL(path).href);
    await body(page, { context, seen });
    assertSilent(seen);
  } finally {
    await context.close();
  }
}

/** Keeps one browser open while the tests of a file run; returns the way to open pages. */
export function useBrowser(extraOptions = {}) {
  let browser;
  before(async () => {
    browser = await chromium.launch({ ...LAUNCH_OPTIONS, ...extraOptions });
  });
  after(async () => {
    await browser?.close();
  });
  return (path, options, body) => withPage(browser, path, options, body);
}

/** Computed values of an element, or of its pseudo-element, by property name. */
export function computed(page, selector, properties, pseudo = null) {
  return page.evaluate(
    ([wanted, names, part]) => {
      const element = document.querySelector(wanted);
      if (!element) {
        throw new Error(`nothing matches ${wanted}`);
      }
      const style = getComputedStyle(element, part);
      return Object.fromEntries(names.map((name) => [name, style.getPropertyValue(name)]));
    },
    [selector, properties, pseudo],
  );
}
