// WebKitGTK's MiniBrowser through WebKitWebDriver (the W3C WebDriver protocol), on a
// display of its own. The desktop's settings daemon of that display tells it the colour
// scheme. A session keeps one window; what a page stored is cleared after each.

import { execFile, spawn } from "node:child_process";
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { setTimeout as pause } from "node:timers/promises";
import { pathToFileURL } from "node:url";
import { promisify } from "node:util";

export const CANNOT = {
  print: "its driver can neither print nor show a page as printed",
};

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
const BUTTONS = { left: 0, middle: 1, right: 2 };

function freePort() {
  return new Promise((done) => {
    const server = createServer().listen(0, "127.0.0.1", () => {
      const { port } = server.address();
      server.close(() => done(port));
    });
  });
}

/** An X display that nobody sees; gives its name. */
function startDisplay(children) {
  const screen = ["-screen", "0", "2600x2000x24", "-nolisten", "tcp", "-displayfd", "3"];
  const server = spawn("Xvfb", screen, { stdio: ["ignore", "ignore", "ignore", "pipe"] });
  children.push(server);
  return new Promise((done, fail) => {
    server.on("error", fail);
    server.on("exit", () => fail(new Error("Xvfb did not start")));
    server.stdio[3].once("data", (data) => done(`:${data.toString().trim()}`));
  });
}

const runCommand = promisify(execFile);

class Session {
  /** Starts a driver and its browser with these arguments. */
  static async start(environment, { proxy, patience }, browserArguments, pageLoadStrategy) {
    const port = await freePort();
    const driver = spawn("WebKitWebDriver", [`--port=${port}`], {
      env: environment,
      stdio: "ignore",
    });
    const session = new Session();
    session.driver = driver;
    session.environment = environment;
    session.base = `http://127.0.0.1:${port}`;
    const end = Date.now() + patience;
    while (!(await session.send("GET", "/status").catch(() => null))?.ready) {
      if (Date.now() > end || driver.exitCode !== null) {
        throw new Error("WebKitWebDriver did not start");
      }
      await pause(10);
    }
    const { host } = new URL(proxy);
    const { sessionId } = await session.send("POST", "/session", {
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
    session.base += `/session/${sessionId}`;
    await session.openWindow();
    return session;
  }

  async send(method, path, body) {
    const response = await fetch(this.base + path, {
      method,
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
  async takeFocus(patience) {
    const run = async (...words) => (await runCommand("xdotool", words, { env: this.environment })).stdout;
    const end = Date.now() + patience;
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

  async close() {
    await this.send("DELETE", "").catch(() => null);
    this.driver.kill();
  }
}

function keyboard(...actions) {
  return { type: "key", id: "keyboard", actions };
}

function mouse(...actions) {
  return { type: "pointer", id: "mouse", parameters: { pointerType: "mouse" }, actions };
}

class Tab {
  constructor(session, settings, home, seen) {
    Object.assign(this, { session, settings, seen });
    this.blank = pathToFileURL(join(home, "blank.html")).href;
  }

  /** What the page's listener heard and what the page fetched since the last time. */
  async collect() {
    const [heard, fetched] = await this.evaluate(`(() => {
      const heard = (window[Symbol.for("errors")] || []).splice(0);
      const fetched = performance.getEntriesByType("resource").map((entry) => entry.name);
      performance.clearResourceTimings();
      return [heard, fetched];
    })()`);
    this.seen.errors.push(...heard);
    this.seen.requests.push(...fetched);
  }

  evaluate(expression) {
    return this.session.evaluate(expression);
  }

  async open(url) {
    await this.collect();
    this.seen.requests.push(url);
    await this.session.send("POST", "/url", { url });
  }

  async reload() {
    await this.collect();
    this.seen.requests.push(await this.evaluate("location.href"));
    await this.session.send("POST", "/refresh", {});
  }

  async resize({ width, height }) {
    await this.session.send("POST", "/window/rect", { x: 0, y: 0, width, height });
    await this.waitFor(`innerWidth === ${width} && innerHeight === ${height}`);
  }

  async waitFor(expression) {
    while (!(await this.evaluate(expression))) {
      await pause(5);
    }
  }

  /** A session that waits for no page still asks the last one for a while, which leaves. */
  async untilBlank() {
    const isBlank = `location.href === ${JSON.stringify(this.blank)}`;
    const leaving = (error) => {
      if (!error.message.startsWith("no such frame")) {
        throw error;
      }
    };
    while (!(await this.evaluate(isBlank).catch(leaving))) {
      await pause(5);
    }
  }

  async setMedia(changes) {
    const { colorScheme, reducedMotion } = this.settings.change(changes);
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
    await this.collect();
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
    await this.session.send("DELETE", "/actions");
  }

  async press(names) {
    await this.collect();
    const values = names.map((name) => KEYS[name] ?? name);
    const down = values.map((value) => ({ type: "keyDown", value }));
    const up = [...values].reverse().map((value) => ({ type: "keyUp", value }));
    await this.session.act(keyboard(...down, ...up));
  }

  async screenshot() {
    return Buffer.from(await this.session.send("GET", "/screenshot"), "base64");
  }

  async tabCount() {
    const handles = await this.session.send("GET", "/window/handles");
    return 1 + handles.length - this.session.windows;
  }

  async close() {
    await this.collect();
    await this.session.send("POST", "/url", { url: this.blank });
    await this.untilBlank();
    await this.evaluate("window.localStorage && localStorage.clear()");
  }
}

/** The settings of the desktop; a change reaches the browsers by itself. */
class Settings {
  constructor(home, display, children) {
    this.file = join(home, "xsettings");
    this.values = { colorScheme: "light", reducedMotion: "no-preference" };
    this.write();
    this.daemon = spawn("xsettingsd", ["-c", this.file], {
      env: { ...process.env, DISPLAY: display },
      stdio: "ignore",
    });
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
    if (JSON.stringify(this.values) !== before) {
      this.write();
      this.daemon.kill("SIGHUP");
    }
    return this.values;
  }
}

/** Starts a display; browsers are started as they are needed. */
export async function launch({ proxy, patience }) {
  const children = [];
  const home = mkdtempSync(join(tmpdir(), "fthsummary-webkit-"));
  const styles = join(home, "config", "gtk-3.0");
  mkdirSync(styles, { recursive: true });
  writeFileSync(join(styles, "gtk.css"), NO_BARS);
  writeFileSync(join(home, "blank.html"), "<!doctype html>\n");
  const display = await startDisplay(children);
  const settings = new Settings(home, display, children);
  const environment = {
    ...process.env,
    DISPLAY: display,
    GDK_BACKEND: "x11",
    HOME: home,
    NO_AT_BRIDGE: "1",
    XDG_CONFIG_HOME: join(home, "config"),
    XDG_CACHE_HOME: join(home, "cache"),
    XDG_DATA_HOME: join(home, "data"),
  };
  const sessions = new Map();
  const sessionFor = (browserArguments, strategy) => {
    const key = [strategy, ...browserArguments].join(" ");
    if (!sessions.has(key)) {
      const start = Session.start(environment, { proxy, patience }, browserArguments, strategy);
      sessions.set(key, start);
    }
    return sessions.get(key);
  };
  return {
    async newTab({ width, height, colorScheme, reducedMotion, scripting, storage, until }, seen) {
      const browserArguments = [
        ...(scripting ? [] : ["--enable-javascript=false"]),
        ...(storage ? [] : ["--enable-html5-local-storage=false"]),
      ];
      const session = await sessionFor(browserArguments, until === "load" ? "normal" : "none");
      const tab = new Tab(session, settings, home, seen);
      await session.takeFocus(patience);
      await tab.resize({ width, height });
      await tab.setMedia({ colorScheme, reducedMotion });
      return tab;
    },
    async close() {
      await Promise.all([...sessions.values()].map(async (session) => (await session).close()));
      children.forEach((child) => child.kill());
      rmSync(home, { recursive: true, force: true });
    },
  };
}
