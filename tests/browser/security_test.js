// Reports and file names that try to become markup or script.

import assert from "node:assert/strict";
import { join } from "node:path";

import { asked, lookAt, test, withPage } from "./support/browser.js";
import { HARMLESS, HOSTILE, rowName, treeOf } from "./support/hostile.js";
import { inventory, otherNodes } from "./support/inventory.js";
import { newFolder, summarize, writeTree } from "./support/program.js";

const FOLDER = "in <b onclick=\"hit()\"> & 'x'</span><script>hit()<";
const HARMLESS_FOLDER = FOLDER.replace(/[^/]/g, "x");

// The page lies in the scanned folder, so that the names are the links as they are.
function pageIn(folder, texts) {
  const parent = newFolder();
  writeTree(join(parent, folder), treeOf(texts));
  return summarize(folder, `${folder}/summary.html`, { cwd: parent });
}

const hostilePage = pageIn(FOLDER, HOSTILE);
const harmlessPage = pageIn(HARMLESS_FOLDER, HARMLESS);

const CANARY = () => {
  window.hits = 0;
  window.hit = () => {
    window.hits += 1;
  };
};

test("no script of the data runs, not even when every element is hovered, focused and clicked", async () => {
  await withPage(hostilePage, { scripts: [[CANARY]] }, async (page) => {
    const touched = await page.evaluate(() => {
      document.addEventListener("click", (event) => event.preventDefault());
      const elements = [...document.querySelectorAll(".dash *")];
      for (const element of elements) {
        for (const name of ["mouseover", "focus", "click", "load", "error"]) {
          element.dispatchEvent(new window.Event(name, { bubbles: true, cancelable: true }));
        }
      }
      return elements.length;
    });
    assert.ok(touched > 1000);
    assert.equal(await page.evaluate(() => window.hits), 0);
    assert.equal(await page.evaluate("document.title"), "Fathomix Summary");
  });
});

/** Asks for a picture that is not there and waits until the answer has come. */
function fetchPicture(page) {
  return page.evaluate(
    () =>
      new Promise((done) => {
        const picture = new window.Image();
        picture.onerror = () => done();
        picture.src = "http://a.test/x.png";
      }),
  );
}

test("not one request leaves the page before the one that the test makes", async () => {
  await withPage(hostilePage, {}, async (page) => {
    await page.click("#themeToggle");
    await page.reload();
    await fetchPicture(page);
    const [first] = asked;
    assert.match(first, /^(GET http:\/\/a\.test\/x\.png|CONNECT a\.test:443) HTTP/);
    assert.ok(asked.splice(0).every((line) => line === first));
    const requests = page.seen.requests.filter((url) => !/^https?:\/\/a\.test\//.test(url));
    assert.ok(requests.every((url) => /^file:.*\/(summary|with-scripts)\.html$/.test(url)));
    await page.forget();
  });
});

test("no element, attribute, comment or other node is made by data", async () => {
  const found = [];
  for (const path of [harmlessPage, hostilePage]) {
    await lookAt(path, {}, async (page) => {
      found.push(await inventory(page));
      assert.deepEqual(await otherNodes(page), ["html"]);
    });
  }
  const [harmless, hostile] = found;
  assert.deepEqual(hostile, harmless);
  const rows = Object.entries(harmless).filter(([kind]) => kind.endsWith(">tbody>tr"));
  // Two headers stand in body groups: none in the results, one above the other files.
  assert.deepEqual(rows.map(([, count]) => count), [HOSTILE.length * 4 + 1]);
});

/** The texts of the cells of a table, row by row. */
function cells(page, title) {
  return page.evaluate((wanted) => {
    const heading = [...document.querySelectorAll("p")].find((p) => p.textContent === wanted);
    const rows = heading.nextElementSibling.querySelectorAll("tbody tr");
    return [...rows].map((row) => [...row.cells].slice(1).map((cell) => cell.textContent));
  }, title);
}

test("every text of failed and passed reports reads back exactly", async () => {
  await lookAt(hostilePage, {}, async (page) => {
    assert.deepEqual(
      await cells(page, "Failed"),
      HOSTILE.map(({ shown }, index) => [
        rowName("failed", index, shown),
        `${shown} · ${shown}`,
        "FAIL",
        `${shown}, xNot gating: ${shown}`,
      ]),
    );
    assert.deepEqual(
      await cells(page, "Passed"),
      HOSTILE.map(({ shown }, index) => [
        rowName("passed", index, shown),
        `${shown} · ${shown}`,
        "PASS",
        `Not gating: ${shown}, ${shown}, x`,
      ]),
    );
  });
});

test("every text of errored reports reads back exactly, decoded once", async () => {
  await lookAt(hostilePage, {}, async (page) => {
    assert.deepEqual(
      await cells(page, "Errored"),
      HOSTILE.map(({ shown, decoded }, index) => [
        rowName("errored", index, shown),
        "ERROR",
        decoded,
      ]),
    );
  });
});

test("every other file, the folder and every link target read back exactly", async () => {
  await lookAt(hostilePage, {}, async (page) => {
    const others = await page.$$eval("#other-files td", (all) => all.map((e) => e.textContent));
    const expected = HOSTILE.map(({ shown }, index) => `${rowName("other", index, shown)}.html`);
    assert.deepEqual(others.sort(), expected.sort());
    assert.equal(await page.text(".fname"), FOLDER);
    const links = await page.$$eval("tbody a", (all) => all.map((e) => e.getAttribute("href")));
    assert.deepEqual(
      links,
      ["errored", "failed", "passed"].flatMap((folder) =>
        HOSTILE.map(({ linked }, index) => `${rowName(folder, index, linked)}.html`),
      ),
    );
  });
});
