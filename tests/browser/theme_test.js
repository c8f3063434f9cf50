// The light/dark switch.

import assert from "node:assert/strict";

import { test, withPage } from "./support/browser.js";
import { pageOf } from "./support/program.js";
import { suite } from "./support/reports.js";

const summary = pageOf(suite({ passed: 2, failed: 1 }));

const KEY = "fathomix-report-theme";

// What the reader sees: the background, and the icon and label of the button.
const LIGHT = {
  background: "rgb(238, 241, 244)",
  sun: "none",
  moon: "block",
  label: "Switch to dark theme",
};
const DARK = {
  background: "rgb(14, 19, 24)",
  sun: "block",
  moon: "none",
  label: "Switch to light theme",
};

function seen(page) {
  return page.evaluate(() => ({
    chosen: document.documentElement.getAttribute("data-theme"),
    background: getComputedStyle(document.body).backgroundColor,
    sun: getComputedStyle(document.querySelector(".ti-sun")).display,
    moon: getComputedStyle(document.querySelector(".ti-moon")).display,
    label: document.getElementById("themeToggle").getAttribute("aria-label"),
  }));
}

async function assertSeen(page, expected, chosen) {
  assert.deepEqual(await seen(page), { ...expected, chosen });
}

function stored(page) {
  return page.evaluate((key) => localStorage.getItem(key), KEY);
}

function store(page, value) {
  return page.evaluate(([key, text]) => localStorage.setItem(key, text), [KEY, value]);
}

/** Opens the page with a value stored before its scripts run. */
function withStored(value, options, body) {
  const script = ([name, text]) => localStorage.setItem(name, text);
  return withPage(summary, { ...options, scripts: [[script, [KEY, value]]] }, body);
}

/** Changes the system's scheme and waits until the page was told. */
async function changeScheme(page, colorScheme) {
  await page.setMedia({ colorScheme });
  await page.evaluate(
    () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))),
  );
}

test("a first visit on a light system shows the light palette and the moon", async () => {
  await withPage(summary, { colorScheme: "light" }, async (page) => {
    await assertSeen(page, LIGHT, null);
    assert.equal(await stored(page), null, "nothing is stored without a click");
  });
});

test("a first visit on a dark system shows the dark palette and the sun", async () => {
  await withPage(summary, { colorScheme: "dark" }, async (page) => {
    await assertSeen(page, DARK, null);
    assert.equal(await stored(page), null, "nothing is stored without a click");
  });
});

test("the icons are shown and hidden by inline display alone", async () => {
  await withPage(summary, {}, async (page) => {
    const styles = await page.$$eval("#themeToggle svg", (all) => all.map((e) => e.getAttribute("style")));
    assert.deepEqual(styles, ["display: none;", "display: block;"]);
    await page.$$eval("#themeToggle svg", (all) => all.forEach((e) => e.removeAttribute("style")));
    const shown = await page.$$eval("#themeToggle svg", (all) => all.map((e) => getComputedStyle(e).display));
    assert.ok(!shown.includes("none"), "no rule hides an icon");
  });
});

for (const [colorScheme, label, background] of [
  ["light", "Switch to dark theme", LIGHT.background],
  ["dark", "Switch to dark theme", DARK.background],
]) {
  test(`before the script runs the palette follows a ${colorScheme} system`, async () => {
    await withPage(summary, { colorScheme, scripting: false }, async (page) => {
      assert.deepEqual(await page.computed("body", ["background-color"]), {
        "background-color": background,
      });
      assert.equal(await page.attribute("#themeToggle", "aria-label"), label);
      assert.equal(await page.attribute("html", "data-theme"), null);
      assert.equal(await page.countVisible("#themeToggle"), 0);
    });
  });
}

test("without scripts every row of a long table is visible and the idle pager is not", async () => {
  const long = pageOf(suite({ passed: 101 }));
  await withPage(long, { scripting: false }, async (page) => {
    assert.equal(await page.countVisible("tbody tr"), 101);
    assert.equal(await page.countVisible(".dt-pager"), 0);
  });
});

for (const [colorScheme, first, second] of [
  ["light", ["dark", DARK], ["light", LIGHT]],
  ["dark", ["light", LIGHT], ["dark", DARK]],
]) {
  test(`clicks on a ${colorScheme} system switch there and back, store and last`, async () => {
    await withPage(summary, { colorScheme }, async (page) => {
      for (const [theme, look] of [first, second, first]) {
        await page.click("#themeToggle");
        await assertSeen(page, look, theme);
        assert.equal(await stored(page), theme);
        assert.equal(await page.evaluate(() => localStorage.length), 1);
      }
      await page.reload();
      await assertSeen(page, first[1], first[0]);
      await page.click("#themeToggle");
      await page.reload();
      await assertSeen(page, second[1], second[0]);
    });
  });
}

test("the choice holds on another summary page, too", async () => {
  await withPage(summary, {}, async (page) => {
    await page.click("#themeToggle");
    await page.open(pageOf(suite({ passed: 1 })));
    await assertSeen(page, DARK, "dark");
  });
});

for (const [value, colorScheme, look] of [
  ["light", "dark", LIGHT],
  ["dark", "light", DARK],
  ["light", "light", LIGHT],
  ["dark", "dark", DARK],
]) {
  test(`a stored ${value} holds on a ${colorScheme} system`, async () => {
    await withStored(value, { colorScheme }, async (page) => {
      await assertSeen(page, look, value);
      assert.equal(await stored(page), value);
    });
  });
}

for (const value of ["", "Dark", "dark ", "blue", "null", "true"]) {
  test(`a stored ${JSON.stringify(value)} is ignored at load and left alone`, async () => {
    for (const [colorScheme, look] of [["light", LIGHT], ["dark", DARK]]) {
      await withStored(value, { colorScheme }, async (page) => {
        await assertSeen(page, look, null);
        assert.equal(await stored(page), value);
      });
    }
  });
}

test("a click replaces an invalid stored value", async () => {
  await withStored("blue", { colorScheme: "dark" }, async (page) => {
    await page.click("#themeToggle");
    await assertSeen(page, LIGHT, "light");
    assert.equal(await stored(page), "light");
  });
});

test("values under other keys are no choice", async () => {
  const script = (keys) => keys.forEach((key) => localStorage.setItem(key, "dark"));
  const keys = ["theme", "fathomix-theme", `${KEY}-2`];
  await withPage(summary, { scripts: [[script, keys]] }, async (page) => {
    assert.equal(await page.evaluate("localStorage.length"), keys.length);
    await assertSeen(page, LIGHT, null);
  });
});

test("an invalid data-theme counts as none", async () => {
  await withPage(summary, { colorScheme: "dark" }, async (page) => {
    await page.evaluate(() => document.documentElement.setAttribute("data-theme", "Light"));
    await page.click("#themeToggle");
    await assertSeen(page, LIGHT, "light");
  });
});

test("a change of the system's scheme is followed without a stored choice", async () => {
  await withPage(summary, { colorScheme: "light" }, async (page) => {
    await changeScheme(page, "dark");
    await assertSeen(page, DARK, null);
    await changeScheme(page, "light");
    await assertSeen(page, LIGHT, null);
    assert.equal(await stored(page), null);
  });
});

test("a change of the system's scheme does nothing to a chosen theme", async () => {
  await withPage(summary, { colorScheme: "dark" }, async (page) => {
    await page.click("#themeToggle");
    await assertSeen(page, LIGHT, "light");
    await changeScheme(page, "light");
    await assertSeen(page, LIGHT, "light");
    await changeScheme(page, "dark");
    await assertSeen(page, LIGHT, "light");
  });
});

test("the store is asked when the scheme changes: with a value the button stays", async () => {
  await withPage(summary, { colorScheme: "light" }, async (page) => {
    for (const value of ["light", "blue", ""]) {
      await store(page, value);
      await changeScheme(page, "dark");
      await assertSeen(page, { ...LIGHT, background: DARK.background }, null);
      await page.evaluate(() => localStorage.clear());
      await changeScheme(page, "light");
      await assertSeen(page, LIGHT, null);
    }
  });
});

test("the store is asked when the scheme changes: once emptied the button follows again", async () => {
  await withStored("blue", { colorScheme: "light" }, async (page) => {
    await page.evaluate(() => localStorage.clear());
    await changeScheme(page, "dark");
    await assertSeen(page, DARK, null);
  });
});

async function assertSwitchesWithoutStore(page) {
  await assertSeen(page, LIGHT, null);
  await changeScheme(page, "dark");
  await assertSeen(page, DARK, null);
  await changeScheme(page, "light");
  await page.click("#themeToggle");
  await assertSeen(page, DARK, "dark");
  await page.click("#themeToggle");
  await assertSeen(page, LIGHT, "light");
}

test("a store that cannot be had at all counts as empty and the button switches the page", async () => {
  const script = () =>
    Object.defineProperty(window, "localStorage", {
      get() {
        throw new Error("refused");
      },
    });
  await withPage(summary, { scripts: [[script]] }, assertSwitchesWithoutStore);
});

test("a store whose reads and writes throw counts as empty and the button switches the page", async () => {
  const script = () => {
    const refuse = () => {
      throw new Error("refused");
    };
    Object.defineProperty(window, "localStorage", { value: { getItem: refuse, setItem: refuse } });
  };
  await withPage(summary, { scripts: [[script]] }, assertSwitchesWithoutStore);
});

test("a store that is full is read, and the button switches the page", async () => {
  const script = () => {
    Object.defineProperty(window, "localStorage", {
      value: {
        getItem: () => "dark",
        setItem() {
          throw new Error("full");
        },
      },
    });
  };
  await withPage(summary, { scripts: [[script]] }, async (page) => {
    await assertSeen(page, DARK, "dark");
    await page.click("#themeToggle");
    await assertSeen(page, LIGHT, "light");
  });
});

test("a browser set to block all storage shows and switches the page", async () => {
  await withPage(summary, { storage: false }, async (page) => {
    const isBlocked = await page.evaluate(() => {
      try {
        return !window.localStorage;
      } catch (refusal) {
        return refusal.name === "SecurityError";
      }
    });
    assert.ok(isBlocked);
    await assertSwitchesWithoutStore(page);
  });
});

test("a browser without matchMedia shows the light button and switches the page", async () => {
  const script = () => {
    window.matchMedia = undefined;
  };
  await withPage(summary, { scripts: [[script]] }, async (page) => {
    await assertSeen(page, LIGHT, null);
    await page.click("#themeToggle");
    await assertSeen(page, DARK, "dark");
    await page.reload();
    await assertSeen(page, DARK, "dark");
  });
});

test("the button is the first stop of the keyboard and works by Enter and by Space", async () => {
  await withPage(summary, {}, async (page) => {
    await page.press("Tab");
    assert.equal(await page.evaluate(() => document.activeElement.id), "themeToggle");
    await page.press("Enter");
    await assertSeen(page, DARK, "dark");
    await page.press("Space");
    await assertSeen(page, LIGHT, "light");
  });
});

test("the scripts leave no global behind", async () => {
  const globals = (page) => page.evaluate(() => Object.getOwnPropertyNames(window).sort());
  let without;
  await withPage(summary, { scripting: false }, async (page) => {
    without = await globals(page);
  });
  await withPage(summary, {}, async (page) => {
    assert.deepEqual(await globals(page), without);
  });
});
