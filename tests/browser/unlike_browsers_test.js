// Browsers that lack something which the page would like to use, and systems that paint
// pages in their own way.

import assert from "node:assert/strict";

import { test, testOnce, withPage } from "./support/browser.js";
import { newFolder, pageOf, pageWith, summarize, writeTree } from "./support/program.js";
import { FAILED, suite } from "./support/reports.js";

const summary = pageOf(suite({ passed: 101 }));
const LIGHT = "rgb(238, 241, 244)";
const DARK = "rgb(14, 19, 24)";

async function assertSwitches(page) {
  const background = async () => (await page.computed("body", ["background-color"]))["background-color"];
  assert.equal(await background(), LIGHT);
  await page.click("#themeToggle");
  assert.equal(await background(), DARK);
  await page.click("#themeToggle");
  assert.equal(await background(), LIGHT);
  assert.equal(await page.text(".dt-pager-status"), "Page 1 of 2");
}

test("a matchMedia whose queries cannot be listened to: the button works, the tables page", async () => {
  const script = () => {
    window.matchMedia = () => ({ matches: false });
  };
  await withPage(summary, { scripts: [[script]] }, assertSwitches);
});

test("a matchMedia with the older way to listen is listened to in that way", async () => {
  const script = () => {
    const query = {
      matches: false,
      addListener(listener) {
        window.tell = (matches) => {
          query.matches = matches;
          listener();
        };
      },
    };
    window.matchMedia = () => query;
  };
  await withPage(summary, { scripts: [[script]] }, async (page) => {
    const label = () => page.attribute("#themeToggle", "aria-label");
    assert.equal(await label(), "Switch to dark theme");
    await page.evaluate("window.tell(true)");
    assert.equal(await label(), "Switch to light theme");
    await page.evaluate("window.tell(false)");
    await assertSwitches(page);
  });
});

const WITHOUT_CLOSEST = () => {
  delete window.Element.prototype.closest;
};

test("without Element.closest the tables page", async () => {
  await withPage(summary, { scripts: [[WITHOUT_CLOSEST]] }, async (page) => {
    assert.equal(await page.evaluate("typeof document.body.closest"), "undefined");
    assert.equal(await page.text(".dt-pager-status"), "Page 1 of 2");
    await page.click("[data-dt-next]");
    assert.equal(await page.text(".dt-pager-status"), "Page 2 of 2");
    assert.equal(await page.countVisible("tbody tr"), 1);
  });
});

test("without Element.closest no script link is followed", async () => {
  const folder = writeTree(newFolder(), [["javascript:void(window.hit=1)+'x'.html", FAILED]]);
  const path = summarize(folder, `${folder}/summary.html`);
  await withPage(path, { scripts: [[WITHOUT_CLOSEST]] }, async (page) => {
    const wasStopped = await page.evaluate(() => {
      let stopped;
      window.addEventListener("click", (event) => {
        stopped = event.defaultPrevented;
        event.preventDefault();
      });
      document.querySelector("tbody a").click();
      return stopped;
    });
    assert.equal(wasStopped, true);
  });
});

const testInChromium = testOnce("its driver alone sets the colours that a system forces, and older names are the same rule");

testInChromium("in forced colours the logo keeps its background, on which its strokes are white", async () => {
  await withPage(summary, {}, async (page) => {
    await page.setMedia({ forcedColors: "active" });
    assert.ok(await page.evaluate('matchMedia("(forced-colors: active)").matches'));
    const { "background-color": background } = await page.computed(".glyph", ["background-color"]);
    assert.equal(background, "rgb(41, 82, 204)");
    assert.deepEqual(await page.computed(".glyph circle", ["stroke"]), { stroke: "rgb(255, 255, 255)" });
  });
});

testInChromium("a browser that knows the prefixed name alone prints backgrounds, too", async () => {
  const path = pageWith(summary, " print-color-adjust: exact;", "");
  const value = async (page, selector) =>
    (await page.computed(selector, ["-webkit-print-color-adjust"]))["-webkit-print-color-adjust"];
  await withPage(path, { colorScheme: "dark" }, async (page) => {
    await page.setMedia({ media: "print" });
    for (const selector of ["html", ".glyph", ".kpi.verdict", ".badge"]) {
      assert.equal(await value(page, selector), "exact", selector);
    }
    assert.equal(await value(page, "td:first-child"), "exact", "all of a dark page");
  });
  await withPage(path, {}, async (page) => {
    await page.setMedia({ media: "print" });
    assert.equal(await value(page, "html"), "economy");
    assert.equal(await value(page, ".badge"), "exact");
  });
});
