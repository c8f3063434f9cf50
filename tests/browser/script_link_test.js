// Links made from file names that a browser takes for scripts.

import assert from "node:assert/strict";
import { test } from "node:test";

import { useBrowser } from "./support/browser.js";
import { newFolder, pageWith, summarize, writeTree } from "./support/program.js";
import { FAILED } from "./support/reports.js";

const withPage = useBrowser();

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

const WAYS = [
  ["a click", (page, link) => link.click()],
  ["a double click", (page, link) => link.dblclick()],
  ["a middle click", (page, link) => link.click({ button: "middle" })],
  ["a Ctrl-click", (page, link) => link.click({ modifiers: ["Control"] })],
  ["a Shift-click", (page, link) => link.click({ modifiers: ["Shift"] })],
  ["Enter", (page, link) => link.press("Enter")],
  ["Ctrl-Enter", (page, link) => link.press("Control+Enter")],
];

// Long enough for a script link to run or to open a window.
const WHILE_MS = 100;

// Not every browser shows what an unguarded click would do, so what became of each is noted.
const NOTE_CLICKS = () => {
  window.clicks = [];
  for (const name of ["click", "auxclick"]) {
    window.addEventListener(name, (event) => window.clicks.push(event.defaultPrevented));
  }
};

function hit(page) {
  return page.evaluate(() => window.hit ?? 0);
}

for (const [way, act] of WAYS) {
  test(`${way} follows no script link`, async () => {
    await withPage(namesPage, { initScripts: [[NOTE_CLICKS]] }, async (page, { context, seen }) => {
      const links = page.locator("tbody a");
      assert.equal(await links.count(), NAMES.length);
      for (const link of await links.all()) {
        await act(page, link);
        await page.waitForTimeout(WHILE_MS);
        const name = await link.getAttribute("href");
        assert.equal(await hit(page), 0, name);
        assert.equal(context.pages().length, 1, name);
      }
      const prevented = await page.evaluate(() => window.clicks);
      assert.ok(prevented.length >= NAMES.length);
      assert.ok(prevented.every(Boolean), "every click is kept from its default");
      assert.equal(seen.requests.length, 1);
    });
  });
}

test("every one of these names would run without the guard", async () => {
  await withPage(unguarded, {}, async (page, { seen }) => {
    for (const link of await page.locator("tbody a").all()) {
      assert.equal(await link.evaluate((element) => element.protocol), "javascript:");
      await page.evaluate(() => {
        window.hit = 0;
      });
      await link.click();
      await page.waitForFunction(() => window.hit === 1);
    }
    // The one with a folder runs, and then stumbles over the rest of its path.
    seen.errors.length = 0;
  });
});

test("without scripts such a link does nothing", async () => {
  await withPage(namesPage, { javaScriptEnabled: false }, async (page, { context, seen }) => {
    for (const link of await page.locator("tbody a").all()) {
      await link.click();
      await page.waitForTimeout(WHILE_MS);
    }
    assert.equal(await hit(page), 0);
    assert.equal(context.pages().length, 1);
    assert.equal(seen.requests.length, 1);
  });
});

test("names that only look alike are followed", async () => {
  const names = ["./javascript.html", "no javascript:x.html", "javascript;x.html"];
  const folder = newFolder();
  writeTree(folder, names.map((name) => [name, FAILED]));
  const path = summarize(folder, `${folder}/summary.html`);
  for (const index of names.keys()) {
    await withPage(path, {}, async (page) => {
      await page.locator("tbody a").nth(index).click();
      await page.waitForFunction(() => document.title === "Report");
    });
  }
});

test("clicks beside links and on their marks for breaks are harmless", async () => {
  await withPage(namesPage, {}, async (page) => {
    await page.click(".card-head");
    await page.$eval("tbody a wbr", (mark) => mark.click());
    await page.evaluate(() => document.dispatchEvent(new window.Event("click", { bubbles: true })));
    assert.equal(await hit(page), 0);
  });
});
