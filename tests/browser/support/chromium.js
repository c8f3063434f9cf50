// Debian's Chromium. A page has a context of its own: nothing stored is seen by the next.

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

function watch(context, seen) {
  context.on("weberror", (event) => seen.errors.push(String(event.error())));
  context.on("console", (message) => seen.errors.push(message.text()));
  context.on("dialog", (dialog) => {
    seen.errors.push(`dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  context.on("request", (request) => seen.requests.push(request.url()));
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

async function newTab(browser, options, seen, patience) {
  const { width, height, colorScheme, reducedMotion, scripting, storage } = options;
  const settings = {
    colorScheme,
    reducedMotion,
    javaScriptEnabled: scripting,
    viewport: { width, height },
  };
  const context = storage
    ? await browser.newContext(settings)
    : await chromium.launchPersistentContext(profileWithoutStorage(), {
        ...LAUNCH_OPTIONS,
        ...settings,
      });
  context.setDefaultTimeout(patience);
  watch(context, seen);
  const page = await context.newPage();
  // Started on a busy machine, it can show scroll bars in spite of its command line.
  const session = await context.newCDPSession(page);
  await session.send("Emulation.setScrollbarsHidden", { hidden: true });
  return {
    open: (url, { until }) => page.goto(url, { waitUntil: until === "load" ? "load" : "commit" }),
    reload: () => page.reload(),
    evaluate: (expression) => page.evaluate(expression),
    resize: (size) => page.setViewportSize(size),
    setMedia: (media) => page.emulateMedia(media),
    moveMouse: (x, y) => page.mouse.move(x, y),
    async click(x, y, { button, count, modifiers }) {
      for (const key of modifiers) {
        await page.keyboard.down(key);
      }
      await page.mouse.click(x, y, { button, clickCount: count });
      for (const key of modifiers) {
        await page.keyboard.up(key);
      }
    },
    press: (keys) => page.keyboard.press(keys.join("+")),
    screenshot: () => page.screenshot(),
    pdf: () => page.pdf(),
    tabCount: async () => context.pages().length,
    close: () => context.close(),
  };
}

/** Starts the browser. */
export async function launch({ proxy, patience }) {
  const browser = await chromium.launch({
    ...LAUNCH_OPTIONS,
    proxy: { server: proxy, bypass: "127.0.0.1" },
    timeout: patience,
  });
  return {
    newTab: (options, seen) => newTab(browser, options, seen, patience),
    close: () => browser.close(),
  };
}
