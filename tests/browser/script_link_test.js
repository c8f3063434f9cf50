// Links made from file names that a browser takes for scripts.

import assert from "node:assert/strict";

import { test, withPage } from "./support/browser.js";
import { newFolder, pageWith, summarize, writeTree } from "./support/program.js";
import { FAILED } from "./support/reports.js";

const NAMES = [
  "javascript:void(window.hit=1).html",
  "JaVaScRiPt:void(window.hit=1).html",
  "java\tscript:void(window.hit=1).html",
  "ja\nva\nscript:void(window.hit=1).html",
  " javascript:void(window.hit=1).html",
  "\u0001javascript:void(window.hit=1).html",
  "javascript\t:void(window.hit=1).html",
  "javascript:void(window.hit=1)/x/y.html",
].map((name) => name.replace("void(window.hit=1).html", "void(window.hit=1)+'x'.html"));

// In the scanned folder, where the names are the links as they are.
function pageOfNames(names) {
  const folder = writeTree(newFolder(), names.map((name) => [name, FAILED]));
  return summarize(folder, `${folder}/summary.html`);
}

const namesPage = pageOfNames(NAMES);
const unguarded = pageWith(namesPage, "event.preventDefault();", "");

const LINKS = "tbody a";

async function pressOn(page, index, keys) {
  await page.focus(LINKS, index);
  await page.press(keys);
}

const WAYS = [
  ["a click", (page, index) => page.click(LINKS, { index })],
  ["a double click", (page, index) => page.click(LINKS, { index, count: 2 })],
  ["a middle click", (page, index) => page.click(LINKS, { index, button: "middle" })],
  ["a Ctrl-click", (page, index) => page.click(LINKS, { index, modifiers: ["Control"] })],
  ["a Shift-click", (page, index) => page.click(LINKS, { index, modifiers: ["Shift"] })],
  ["Enter", (page, index) => pressOn(page, index, "Enter")],
  ["Ctrl-Enter", (page, index) => pressOn(page, index, "Control+Enter")],
];

// Not every browser shows what an unguarded click would do, so what became of each is noted.
const NOTE_CLICKS = () => {
  window.clicks = [];
  for (const name of ["click", "auxclick"]) {
    window.addEventListener(name, (event) => window.clicks.push(event.defaultPrevented));
  }
};

function hits(page) {
  return page.evaluate(() => window.hit ?? 0);
}

/** Follows one more script link, by script, and waits for it: what was followed before has run. */
async function followLast(page) {
  await page.evaluate(() => {
    location.href = "javascript:void(window.last = true)";
  });
  await page.until(() => window.last);
}

for (const [way, act] of WAYS) {
  test(`${way} follows no script link`, async () => {
    await withPage(namesPage, { scripts: [[NOTE_CLICKS]] }, async (page) => {
      assert.equal(await page.count(LINKS), NAMES.length);
      for (const index of NAMES.keys()) {
        await act(page, index);
      }
      await followLast(page);
      assert.equal(await hits(page), 0);
      assert.equal(await page.tabCount(), 1);
      const prevented = await page.evaluate(() => window.clicks);
      assert.ok(prevented.length >= NAMES.length);
      assert.ok(prevented.every(Boolean), "every click is kept from its default");
    });
  });
}

for (const [way, act] of WAYS.filter(([name]) => ["a click", "Enter"].includes(name))) {
  test(`every one of these names would run at ${way} without the guard`, async () => {
    await withPage(unguarded, {}, async (page) => {
      for (const [index, name] of NAMES.entries()) {
        assert.equal(await page.$eval(LINKS, (link) => link.protocol, index), "javascript:");
        await page.evaluate(() => {
          window.hit = 0;
          window.last = false;
        });
        await act(page, index);
        await followLast(page);
        assert.equal(await hits(page), 1, name);
      }
      // The one with a folder runs, and then stumbles over the rest of its path.
      await page.forget();
    });
  });
}

test("without scripts such a link does nothing", async () => {
  await withPage(namesPage, { scripting: false }, async (page) => {
    for (const index of NAMES.keys()) {
      await page.click(LINKS, { index });
    }
    await page.evaluate(() => {
      document.querySelector(".card-head").innerHTML = '<a id="last" href="#last">last</a>';
    });
    await page.click("#last");
    await page.until(() => location.hash === "#last");
    assert.equal(await hits(page), 0);
    assert.equal(await page.tabCount(), 1);
  });
});

test("names that only look alike are followed", async () => {
  const names = ["./javascript.html", "no javascript:x.html", "javascript;x.html"];
  const path = pageOfNames(names);
  await withPage(path, {}, async (page) => {
    for (const index of names.keys()) {
      await page.open(path);
      await page.click(LINKS, { index });
      await page.until(() => document.title === "Report");
    }
  });
});

test("clicks beside links and on their marks for breaks are harmless", async () => {
  await withPage(namesPage, {}, async (page) => {
    await page.click(".card-head");
    await page.$eval("tbody a wbr", (mark) => mark.click());
    await page.evaluate(() => document.dispatchEvent(new window.Event("click", { bubbles: true })));
    assert.equal(await hits(page), 0);
  });
});
