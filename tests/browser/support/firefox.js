// The stock Firefox ESR through WebDriver BiDi. What that protocol lacks, colour scheme,
// media and scripting, is set in the browser's own window, which sees every tab.

import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

import puppeteer from "puppeteer-core";

export const CANNOT = {};

const EXECUTABLE = "/usr/bin/firefox-esr";

/** Runs an expression in the browser's own window. */
async function inBrowser(browser, expression) {
  const send = async (method, parameters) => (await browser.connection.send(method, parameters)).result;
  const { contexts } = await send("browsingContext.getTree", { "moz:scope": "chrome", maxDepth: 0 });
  const outcome = await send("script.evaluate", {
    expression,
    target: { context: contexts[0].context },
    awaitPromise: true,
  });
  if (outcome.type !== "success") {
    throw new Error(`${expression}: ${outcome.exceptionDetails.text}`);
  }
}

const MEDIA_SETTINGS = {
  colorScheme: (value) => `tab.prefersColorSchemeOverride = "${value}"`,
  media: (value) => `tab.mediumOverride = "${value === "print" ? "print" : ""}"`,
  // Tells pages that nothing can be stored, by throwing; 5 is the value by default.
  storage: (value) => `Services.prefs.setIntPref("network.cookie.cookieBehavior", ${value ? 5 : 2})`,
  scripting: (value) => `tab.allowJavascript = ${value}`,
  reducedMotion: (value) =>
    `Services.prefs.setIntPref("ui.prefersReducedMotion", ${value === "reduce" ? 1 : 0})`,
};

function setMedia(browser, settings) {
  const lines = Object.entries(settings).map(([name, value]) => MEDIA_SETTINGS[name](value));
  return inBrowser(
    browser,
    `(() => { const tab = gBrowser.browsers.at(-1).browsingContext; ${lines.join("; ")}; })()`,
  );
}

function watch(page, seen) {
  // Names of files that are not UTF-8 stand in the page as they are.
  page.on("pageerror", (error) => {
    if (!error.message.startsWith("The byte stream was erroneous")) {
      seen.errors.push(String(error));
    }
  });
  page.on("console", (message) => seen.errors.push(message.text()));
  page.on("dialog", (dialog) => {
    seen.errors.push(`dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  page.on("request", (request) => seen.requests.push(request.url()));
}

async function newTab(browser, options, seen, patience) {
  const { width, height, colorScheme, reducedMotion, scripting, storage } = options;
  const context = await browser.createBrowserContext();
  const page = await context.newPage();
  page.setDefaultTimeout(patience);
  watch(page, seen);
  await page.setViewport({ width, height });
  await setMedia(browser, { colorScheme, reducedMotion, scripting, storage });
  const send = (method, parameters) =>
    browser.connection.send(method, { context: page.mainFrame()._id, ...parameters });
  return {
    open: (url, { until }) =>
      until === "load"
        ? page.goto(url)
        : send("browsingContext.navigate", { url, wait: "none" }),
    reload: () => page.reload(),
    evaluate: (expression) => page.evaluate(expression),
    resize: (size) => page.setViewport(size),
    setMedia: (media) => setMedia(browser, media),
    moveMouse: (x, y) => page.mouse.move(x, y),
    async click(x, y, { button, count, modifiers }) {
      for (const key of modifiers) {
        await page.keyboard.down(key);
      }
      await page.mouse.click(x, y, { button, count });
      for (const key of modifiers) {
        await page.keyboard.up(key);
      }
    },
    async press(names) {
      const keys = names.map((name) => (name === "Space" ? " " : name));
      for (const key of keys) {
        await page.keyboard.down(key);
      }
      for (const key of keys.reverse()) {
        await page.keyboard.up(key);
      }
    },
    screenshot: async () => Buffer.from(await page.screenshot()),
    pdf: async () => Buffer.from(await page.pdf()),
    tabCount: async () => (await context.pages()).length,
    close: () => context.close(),
  };
}

/** Starts the browser. */
export async function launch({ proxy, patience }) {
  // A home of its own: Firefox does not start in one that belongs to somebody else.
  const home = mkdtempSync(join(tmpdir(), "fthsummary-firefox-"));
  const { hostname, port } = new URL(proxy);
  const browser = await puppeteer.launch({
    browser: "firefox",
    executablePath: EXECUTABLE,
    args: ["--remote-allow-system-access"],
    env: { ...process.env, HOME: home },
    timeout: patience,
    protocolTimeout: patience,
    extraPrefsFirefox: {
      // Scroll bars that take no room, as in the other browsers' windows.
      "ui.useOverlayScrollbars": 1,
      "dom.security.https_first": false,
      "network.proxy.type": 1,
      "network.proxy.http": hostname,
      "network.proxy.http_port": Number(port),
      "network.proxy.ssl": hostname,
      "network.proxy.ssl_port": Number(port),
    },
  });
  return {
    newTab: (options, seen) => newTab(browser, options, seen, patience),
    async close() {
      await browser.close();
      rmSync(home, { recursive: true, force: true });
    },
  };
}
