// WebKitGTK's MiniBrowser through WebKitWebDriver (the W3C WebDriver protocol). Each session
// has a display of its own, whose settings daemon tells it the colour scheme, and one window.

import { execFile, spawn } from "node:child_process";
import { mkdirSync, writeFileSync } from "node:fs";
import { createServer } from "node:net";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { pathToFileURL } from "node:url";
import { promisify } from "node:util";

import { inAttempts } from "./attempts.js";
import { BLANK_PAGE, newFolder } from "./program.js";

export const CANNOT = {
  print: "its driver can neither print nor show a page as printed",
};

/** The settings that a window keeps as long as it is open. */
export const FIXED_SETTINGS = ["scripting", "storage", "until"];

const MINI_BROWSER = "/usr/lib/x86_64-linux-gnu/webkit2gtk-4.1/MiniBrowser";

const BROWSER_ARGUMENTS = ["--automation", "--javascript-can-open-windows-automatically=true"];

// The window can be as narrow as its bars: they are made as good as invisible.
const NO_BARS = "* { padding: 0; margin: 0; border-width: 0; min-width: 0; font-size: 1px }\n";

/**
 * No driver learns what its console says, so a script at the head of the page listens
 * there. It must stand in the page that is opened.
 */
export const LISTENER = () => {
  const errors = [];
  Object.defineProperty(window, Symbol.for("errors"), { value: errors });
  window.addEventListener("error", (event) => {
    if (event instanceof window.ErrorEvent) {
      errors.push(event.message);
    }
  });
  window.addEventListener("unhandledrejection", (event) => errors.push(String(event.reason)));
  for (const name of ["log", "info", "warn", "error", "debug"]) {
    console[name] = (...texts) => errors.push(texts.join(" "));
  }
};

const KEYS = { Tab: "\ue004", Enter: "\ue007", Space: " ", Shift: "\ue008", Control: "\ue009" };
// A browser starts in a second or two; now and then one does not answer for minutes.
const START_LIMIT_MS = 30_000;
const BUTTONS = { left: 0, middle: 1, right: 2 };

function freePort() {
  return new Promise((done) => {
    const server = createServer().listen(0, "127.0.0.1", () => {
      const { port } = server.address();
      server.close(() => done(port));
    });
  });
}

// However this process ends, the other end of the pipe is closed then, and with the command
// all that it started is gone.
const WITH_ITS_CHILDREN = `signal=$1; shift
(trap "" "$signal"; read -r _ <&3; kill -s "$signal" 0) &
exec "$@" 3<&-`;

/** Starts a command; end() ends it and its children by the signal. */
function start(signal, command, parameters, environment, output = "ignore") {
  const words = ["-c", WITH_ITS_CHILDREN, "sh", signal, command, ...parameters];
  const child = spawn("sh", words, {
    env: environment,
    detached: true,
    stdio: ["ignore", "ignore", "ignore", "pipe", output],
  });
  return Object.assign(child, { end: () => child.stdio[3].destroy() });
}

/** An X display that nobody sees; gives its name. */
function startDisplay(children) {
  const screen = ["-screen", "0", "2600x2000x24", "-nolisten", "tcp", "-displayfd", "4"];
  const server = start("TERM", "Xvfb", screen, process.env, "pipe");
  children.push(server);
  return new Promise((done, fail) => {
    server.on("error", fail);
    server.on("exit", () => fail(new Error("Xvfb did not start")));
    server.stdio[4].once("data", (data) => done(`:${data.toString().trim()}`));
  });
}

const runCommand = promisify(execFile);

/** The settings of the desktop; a change reaches the browsers by itself. */
class Settings {
  constructor(home, display, children) {
    this.file = join(home, "xsettings");
    this.values = { colorScheme: "light", reducedMotion: "no-preference" };
    this.write();
    const environment = { ...process.env, DISPLAY: display };
    this.daemon = start("TERM", "xsettingsd", ["-c", this.file], environment);
    children.push(this.daemon);
  }

  write() {
    const { colorScheme, reducedMotion } = this.values;
    writeFileSync(
      this.file,
      `Net/ThemeName "${colorScheme === "dark" ? "Adwaita-dark" : "Adwaita"}"\n` +
        `Gtk/EnableAnimations ${reducedMotion === "reduce" ? 0 : 1}\n`,
    );
  }

  change(changes) {
    const before = JSON.stringify(this.values);
    this.values = { ...this.values, ...changes };
    const isChanged = JSON.stringify(this.values) !== before;
    if (isChanged) {
      this.write();
      this.daemon.kill("SIGHUP");
    }
    return { isChanged, ...this.values };
  }
}

class Session {
  children = [];

  isUsable = true;

  /** Starts a display of its own, a driver and its browser with these arguments. */
  static async start(options, browserArguments, pageLoadStrategy) {
    const session = new Session();
    try {
      await session.#start(options, browserArguments, pageLoadStrategy);
      return session;
    } catch (error) {
      session.end();
      const isLate = error.name === "TimeoutError";
      throw isLate ? new Error(`no answer within ${START_LIMIT_MS / 1000} s`, { cause: error }) : error;
    }
  }

  async #start({ proxy, patience, hasLayers }, browserArguments, pageLoadStrategy) {
    this.waitsForPages = pageLoadStrategy === "normal";
    const end = Date.now() + START_LIMIT_MS;
    const home = newFolder();
    const styles = join(home, "config", "gtk-3.0");
    mkdirSync(styles, { recursive: true });
    writeFileSync(join(styles, "gtk.css"), NO_BARS);
    const display = await startDisplay(this.children);
    this.settings = new Settings(home, display, this.children);
    this.environment = {
      ...process.env,
      DISPLAY: display,
      GDK_BACKEND: "x11",
      HOME: home,
      NO_AT_BRIDGE: "1",
      // Without a graphics card, to draw in layers takes longer than all else that a page needs.
      ...(hasLayers ? {} : { WEBKIT_DISABLE_COMPOSITING_MODE: "1" }),
      XDG_CONFIG_HOME: join(home, "config"),
      XDG_CACHE_HOME: join(home, "cache"),
      XDG_DATA_HOME: join(home, "data"),
    };
    const port = await freePort();
    const driver = start("KILL", "WebKitWebDriver", [`--port=${port}`], this.environment);
    this.children.push(driver);
    this.base = `http://127.0.0.1:${port}`;
    const starting = AbortSignal.timeout(START_LIMIT_MS);
    this.limit = () => starting;
    while (!(await this.send("GET", "/status").catch(() => null))?.ready) {
      if (Date.now() > end || driver.exitCode !== null) {
        throw new Error("WebKitWebDriver did not start");
      }
      await pause(10);
    }
    const { host } = new URL(proxy);
    const { sessionId } = await this.send("POST", "/session", {
      capabilities: {
        alwaysMatch: {
          pageLoadStrategy,
          timeouts: { script: patience, pageLoad: patience },
          proxy: { proxyType: "manual", httpProxy: host, sslProxy: host, noProxy: ["127.0.0.1"] },
          "webkitgtk:browserOptions": {
            binary: MINI_BROWSER,
            args: [...BROWSER_ARGUMENTS, ...browserArguments],
          },
        },
      },
    });
    this.base += `/session/${sessionId}`;
    await this.openWindow();
    await this.takeFocus(end);
    this.limit = () => AbortSignal.timeout(patience);
  }

  async send(method, path, body) {
    const response = await fetch(this.base + path, {
      method,
      signal: this.limit(),
      body: body === undefined ? undefined : JSON.stringify(body),
    });
    const { value } = await response.json();
    if (!response.ok) {
      throw new Error(`${value.error}: ${value.message}`);
    }
    return value;
  }

  // A window without a tool bar, which would keep it from being narrow.
  async openWindow() {
    const [first] = await this.send("GET", "/window/handles");
    const script = "window.open('about:blank', '', 'popup,menubar=no,toolbar=no,location=no,resizable,width=800,height=600')";
    await this.send("POST", "/execute/sync", { script, args: [] });
    const handles = await this.send("GET", "/window/handles");
    this.windows = handles.length;
    await this.send("POST", "/window", { handle: handles.find((handle) => handle !== first) });
  }

  /** Gives the window the keyboard: there is no window manager that would. */
  async takeFocus(end) {
    const run = async (...words) => (await runCommand("xdotool", words, { env: this.environment })).stdout;
    while (!(await this.evaluate("document.hasFocus()"))) {
      if (Date.now() > end) {
        throw new Error("MiniBrowser does not take the keyboard");
      }
      const windows = await run("search", "--onlyvisible", "--class", "MiniBrowser");
      for (const window of windows.trim().split("\n")) {
        await run("windowfocus", "--sync", window);
        if (await this.evaluate("document.hasFocus()")) {
          return;
        }
      }
    }
  }

  async evaluate(expression) {
    const script = `const done = arguments[0];
      new Promise((good) => good(${expression})).then(
        (value) => done({ value }),
        (error) => done({ error: String(error) }));`;
    const { value, error } = await this.send("POST", "/execute/async", { script, args: [] });
    if (error) {
      throw new Error(error);
    }
    return value;
  }

  act(...devices) {
    return this.send("POST", "/actions", { actions: devices });
  }

  /** Ends the driver, its browser and the display. */
  end() {
    this.isUsable = false;
    this.children.forEach((child) => child.end());
  }
}

function keyboard(...actions) {
  return { type: "key", id: "keyboard", actions };
}

function mouse(...actions) {
  return { type: "pointer", id: "mouse", parameters: { pointerType: "mouse" }, actions };
}

class Tab {
  constructor(session, seen) {
    Object.assign(this, { session, seen });
  }

  /**
   * Every answer brings with it what the page's listener heard and what the page fetched
   * since the last one: a question of its own would cost as much again.
   */
  async evaluate(expression) {
    const [value, heard, fetched] = await this.session.evaluate(`Promise.resolve(${expression}).then((value) => {
      const heard = (window[Symbol.for("errors")] || []).splice(0);
      const fetched = performance.getEntriesByType("resource").map((entry) => entry.name);
      performance.clearResourceTimings();
      return [value, heard, fetched];
    })`);
    this.seen.errors.push(...heard);
    this.seen.requests.push(...fetched);
    return value;
  }

  collect() {
    return this.evaluate("null");
  }

  /** Makes the window as it is for a test that begins. */
  async set({ width, height, colorScheme, reducedMotion }) {
    if (this.session.size !== `${width} ${height}`) {
      await this.resize({ width, height });
    }
    await this.setMedia({ colorScheme, reducedMotion });
    this.isLeft = true;
  }

  async open(url, { until }) {
    if (!this.isLeft) {
      await this.collect();
    }
    this.isLeft = false;
    this.seen.requests.push(url);
    await this.session.send("POST", "/url", { url });
    if (until === "load" && !this.session.waitsForPages) {
      await this.untilAt(url);
    }
  }

  async reload() {
    this.seen.requests.push(await this.evaluate("location.href"));
    await this.session.send("POST", "/refresh", {});
  }

  async resize({ width, height }) {
    this.session.size = `${width} ${height}`;
    await this.session.send("POST", "/window/rect", { x: 0, y: 0, width, height });
    await this.waitFor(`innerWidth === ${width} && innerHeight === ${height}`);
  }

  async waitFor(expression) {
    while (!(await this.evaluate(expression))) {
      await pause(5);
    }
  }

  /** A session that waits for no page still asks the last one for a while, which leaves. */
  async untilAt(url) {
    const isThere = `location.href === ${JSON.stringify(url)} && document.readyState === "complete"`;
    const leaving = (error) => {
      if (!error.message.startsWith("no such frame")) {
        throw error;
      }
    };
    while (!(await this.evaluate(isThere).catch(leaving))) {
      await pause(5);
    }
  }

  async setMedia(changes) {
    const { isChanged, colorScheme, reducedMotion } = this.session.settings.change(changes);
    if (!isChanged) {
      return;
    }
    const queries = [
      `(prefers-color-scheme: ${colorScheme})`,
      `(prefers-reduced-motion: ${reducedMotion})`,
    ];
    await this.waitFor(
      `!window.matchMedia || ${JSON.stringify(queries)}.every((q) => matchMedia(q).matches)`,
    );
  }

  moveMouse(x, y) {
    return this.session.act(mouse({ type: "pointerMove", x, y }));
  }

  async click(x, y, { button, count, modifiers }) {
    const press = [
      { type: "pointerDown", button: BUTTONS[button] },
      { type: "pointerUp", button: BUTTONS[button] },
    ];
    const keys = modifiers.map((name) => ({ type: "keyDown", value: KEYS[name] }));
    const clicks = Array(count).fill(press).flat();
    const wait = { type: "pause" };
    await this.session.act(
      keyboard(...keys, wait),
      mouse(...keys.map(() => wait), { type: "pointerMove", x, y }, ...clicks),
    );
    if (modifiers.length > 0) {
      await this.session.send("DELETE", "/actions");
    }
  }

  async press(names, times) {
    const values = names.map((name) => KEYS[name] ?? name);
    const down = values.map((value) => ({ type: "keyDown", value }));
    const up = [...values].reverse().map((value) => ({ type: "keyUp", value }));
    await this.session.act(keyboard(...Array(times).fill([...down, ...up]).flat()));
  }

  async screenshot() {
    return Buffer.from(await this.session.send("GET", "/screenshot"), "base64");
  }

  async tabCount() {
    const handles = await this.session.send("GET", "/window/handles");
    return 1 + handles.length - this.session.windows;
  }

  /** Leaves the window empty for the next, or ends a browser that cannot be had back. */
  async close() {
    try {
      await this.open(pathToFileURL(BLANK_PAGE).href, { until: "load" });
      await this.evaluate("window.localStorage && localStorage.clear()");
    } catch {
      this.session.end();
    }
  }
}

/** Starts browsers as they are needed; with hasLayers as readers have them. */
export function launch(options) {
  const sessions = new Map();
  return {
    async newTab(settings, seen) {
      const { scripting, storage, until } = settings;
      const words = [
        ...(scripting ? [] : ["--enable-javascript=false"]),
        ...(storage ? [] : ["--enable-html5-local-storage=false"]),
      ];
      const strategy = until === "load" ? "normal" : "none";
      const key = [strategy, ...words].join(" ");
      if (!sessions.get(key)?.isUsable) {
        sessions.set(key, await inAttempts("webkit", () => Session.start(options, words, strategy)));
      }
      const tab = new Tab(sessions.get(key), seen);
      await tab.set(settings);
      return tab;
    },
    close() {
      sessions.forEach((session) => session.end());
    },
  };
}
