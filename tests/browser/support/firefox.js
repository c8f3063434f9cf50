// The stock Firefox ESR through WebDriver BiDi. What that protocol lacks, colour scheme,
// media and scripting, is set in the browser's own window, which sees every tab.

import puppeteer from "puppeteer-core";

import { newFolder } from "./program.js";

export const CANNOT = {};

/** The settings that a window keeps as long as it is open: none. */
export const FIXED_SETTINGS = [];

const EXECUTABLE = "/usr/bin/firefox-esr";

let ownWindow;

/** Runs an expression in the browser's own window. */
async function inBrowser(browser, expression) {
  const send = async (method, parameters) => (await browser.connection.send(method, parameters)).result;
  ownWindow ??= send("browsingContext.getTree", { "moz:scope": "chrome", maxDepth: 0 });
  const { contexts } = await ownWindow;
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

function watch(page, tab) {
  // Names of files that are not UTF-8 stand in the page as they are.
  page.on("pageerror", (error) => {
    if (!error.message.startsWith("The byte stream was erroneous")) {
      tab.seen.errors.push(String(error));
    }
  });
  page.on("console", (message) => tab.seen.errors.push(message.text()));
  page.on("dialog", (dialog) => {
    tab.seen.errors.push(`dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  page.on("request", (request) => tab.seen.requests.push(request.url()));
}

class Tab {
  /** Opens a window with these settings, which tells what it hears. */
  static async start(browser, settings, seen, patience) {
    const tab = new Tab();
    Object.assign(tab, { browser, seen });
    tab.context = await browser.createBrowserContext();
    tab.page = await tab.context.newPage();
    tab.page.setDefaultTimeout(patience);
    watch(tab.page, tab);
    await tab.set(settings);
    return tab;
  }

  /** Makes the window as it is for a test that begins. */
  async set({ width, height, colorScheme, reducedMotion, scripting, storage }) {
    await this.resize({ width, height });
    await this.setMedia({ colorScheme, reducedMotion, scripting, storage, media: "screen" });
  }

  open(url, { until }) {
    if (until === "load") {
      return this.page.goto(url);
    }
    return this.send("browsingContext.navigate", { url, wait: "none" });
  }

  /** Sends the browser a command about this window. */
  send(command, parameters) {
    const context = this.page.mainFrame()._id;
    return this.browser.connection.send(command, { context, ...parameters });
  }

  reload() {
    return this.page.reload();
  }

  evaluate(expression) {
    return this.page.evaluate(expression);
  }

  // Page.setViewport would also turn the screen, which Firefox 140 cannot do.
  async resize(size) {
    if (this.width !== size.width || this.height !== size.height) {
      await this.send("browsingContext.setViewport", { viewport: size });
      Object.assign(this, size);
    }
  }

  setMedia(media) {
    return setMedia(this.browser, media);
  }

  moveMouse(x, y) {
    return this.page.mouse.move(x, y);
  }

  async click(x, y, { button, count, modifiers }) {
    const { keyboard, mouse } = this.page;
    for (const key of modifiers) {
      await keyboard.down(key);
    }
    await mouse.click(x, y, { button, count });
    for (const key of modifiers) {
      await keyboard.up(key);
    }
  }

  async press(names, times) {
    const { keyboard } = this.page;
    const keys = names.map((name) => (name === "Space" ? " " : name));
    for (let count = 0; count < times; count += 1) {
      for (const key of keys) {
        await keyboard.down(key);
      }
      for (const key of [...keys].reverse()) {
        await keyboard.up(key);
      }
    }
  }

  async screenshot() {
    return Buffer.from(await this.page.screenshot());
  }

  async pdf() {
    return Buffer.from(await this.page.pdf());
  }

  async tabCount() {
    return (await this.context.pages()).length;
  }

  close() {
    return this.context.close();
  }
}

/** Starts the browser. */
export async function launch({ proxy, patience }) {
  // A home of its own: Firefox does not start in one that belongs to somebody else.
  const { hostname, port } = new URL(proxy);
  const browser = await puppeteer.launch({
    browser: "firefox",
    executablePath: EXECUTABLE,
    args: ["--remote-allow-system-access"],
    env: { ...process.env, HOME: newFolder() },
    timeout: patience,
    protocolTimeout: patience,
    extraPrefsFirefox: {
      // No page that was left is kept.
      "browser.sessionhistory.max_total_viewers": 0,
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
    newTab: (settings, seen) => Tab.start(browser, settings, seen, patience),
    close: () => browser.close(),
  };
}
