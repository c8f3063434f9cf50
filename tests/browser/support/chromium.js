// Debian's Chromium. To start a window takes longer than to open a page in it, so that one
// window is left to the next test, as far as nothing went wrong in it.

import { mkdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";

import { chromium } from "playwright-core";

import { newFolder } from "./program.js";

const EXECUTABLE = "/usr/bin/chromium";
const ARGUMENTS = [
  "--no-sandbox",
  "--disable-gpu",
  "--disable-quic",
  "--no-first-run",
  "--disable-background-networking",
  "--disable-component-update",
  "--disable-sync",
];
export const LAUNCH_OPTIONS = { executablePath: EXECUTABLE, args: ARGUMENTS };

export const CANNOT = {};

/** The settings that a window keeps as long as it is open. */
export const FIXED_SETTINGS = ["storage"];

function watch(context, tab) {
  context.on("weberror", (event) => tab.seen.errors.push(String(event.error())));
  context.on("console", (message) => tab.seen.errors.push(message.text()));
  context.on("dialog", (dialog) => {
    tab.seen.errors.push(`dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  context.on("request", (request) => tab.seen.requests.push(request.url()));
}

/** Only a profile's own file can say that nothing may be stored. */
function profileWithoutStorage() {
  const profile = newFolder();
  mkdirSync(join(profile, "Default"));
  writeFileSync(
    join(profile, "Default", "Preferences"),
    JSON.stringify({ profile: { default_content_setting_values: { cookies: 2 } } }),
  );
  return profile;
}

class Tab {
  /** Opens a window with these settings, which tells what it hears. */
  static async start(browser, settings, seen, patience) {
    const tab = new Tab();
    tab.seen = seen;
    tab.context = settings.storage
      ? await browser.newContext()
      : await chromium.launchPersistentContext(profileWithoutStorage(), LAUNCH_OPTIONS);
    tab.context.setDefaultTimeout(patience);
    watch(tab.context, tab);
    tab.page = await tab.context.newPage();
    tab.session = await tab.context.newCDPSession(tab.page);
    // Started on a busy machine, it can show scroll bars in spite of its command line.
    await tab.session.send("Emulation.setScrollbarsHidden", { hidden: true });
    await tab.set(settings);
    return tab;
  }

  /** Makes the window as it is for a test that begins. */
  async set({ width, height, colorScheme, reducedMotion, scripting }) {
    await this.resize({ width, height });
    await this.setMedia({ colorScheme, reducedMotion, media: "screen", forcedColors: "none" });
    if (this.scripting !== scripting) {
      this.scripting = scripting;
      await this.session.send("Emulation.setScriptExecutionDisabled", { value: !scripting });
    }
  }

  open(url, { until }) {
    return this.page.goto(url, { waitUntil: until === "load" ? "load" : "commit" });
  }

  reload() {
    return this.page.reload();
  }

  /** By the protocol itself: what is around it elsewhere costs more than most questions. */
  async evaluate(expression) {
    const { result, exceptionDetails: problem } = await this.session.send("Runtime.evaluate", {
      expression,
      awaitPromise: true,
      returnByValue: true,
    });
    if (problem) {
      throw new Error(problem.exception?.description ?? problem.text);
    }
    return result.value;
  }

  async resize(size) {
    const { width, height } = this.page.viewportSize();
    if (width !== size.width || height !== size.height) {
      await this.page.setViewportSize(size);
    }
  }

  async setMedia(changes) {
    const media = { ...this.media, ...changes };
    if (JSON.stringify(media) !== JSON.stringify(this.media)) {
      this.media = media;
      await this.page.emulateMedia(media);
    }
  }

  moveMouse(x, y) {
    return this.page.mouse.move(x, y);
  }

  async click(x, y, { button, count, modifiers }) {
    for (const key of modifiers) {
      await this.page.keyboard.down(key);
    }
    await this.page.mouse.click(x, y, { button, clickCount: count });
    for (const key of modifiers) {
      await this.page.keyboard.up(key);
    }
  }

  async press(keys, times) {
    for (let count = 0; count < times; count += 1) {
      await this.page.keyboard.press(keys.join("+"));
    }
  }

  screenshot() {
    return this.page.screenshot();
  }

  pdf() {
    return this.page.pdf();
  }

  tabCount() {
    return this.context.pages().length;
  }

  close() {
    return this.context.close();
  }
}

/** Starts the browser. */
export async function launch({ proxy, patience }) {
  const browser = await chromium.launch({
    ...LAUNCH_OPTIONS,
    proxy: { server: proxy, bypass: "127.0.0.1" },
    timeout: patience,
  });
  const tabs = [];
  return {
    async newTab(settings, seen) {
      const tab = await Tab.start(browser, settings, seen, patience);
      tabs.push(tab);
      return tab;
    },
    async close() {
      // A window without storage is a browser by itself.
      await Promise.all(tabs.map((tab) => tab.close()));
      await browser.close();
    },
  };
}
