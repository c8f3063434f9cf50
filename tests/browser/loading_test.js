// What a reader sees of long tables while their page still comes, and when its scripts
// never run. Rows wait for the script that pages them, but never for good.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { createServer } from "node:http";
import { join } from "node:path";
import { after } from "node:test";

import { test, withPage } from "./support/browser.js";
import { newFolder, pageOf, pageWith } from "./support/program.js";
import { suite } from "./support/reports.js";

const ROWS = 3000;
const longPage = pageOf(suite({ passed: ROWS }));
// Where nothing is still to come, fewer rows show the same in less time.
const FEWER = 150;
const shorterPage = pageOf(suite({ passed: FEWER }));
// Its second table begins with a number of four digits.
const twoTables = pageOf(suite({ failed: 1100, passed: ROWS - 1100 }));
const threeTables = pageOf(suite({ errors: 101, failed: 102, passed: 103 }));

const WAIT_MS = 30_000;
const NOTE = "The rows appear when the page has loaded, within 30 seconds.";

/** Serves the page up to the middle of its rows; the rest when finish() is called. */
async function serveHalf(path) {
  const html = readFileSync(path);
  const middle = html.indexOf("<tr><td>", html.length / 2);
  let finish;
  const finished = new Promise((done) => {
    finish = done;
  });
  const server = createServer(async (request, response) => {
    if (request.url !== "/summary.html") {
      response.writeHead(204).end();
      return;
    }
    response.writeHead(200, { "Content-Type": "text/html; charset=utf-8" });
    response.write(html.subarray(0, middle));
    await finished;
    response.end(html.subarray(middle));
  });
  await new Promise((done) => {
    server.listen(0, "127.0.0.1", done);
  });
  after(() => {
    finish();
    server.closeAllConnections();
    server.close();
  });
  return { url: `http://127.0.0.1:${server.address().port}/summary.html`, finish };
}

/** Opens the first half of the long page, which the body looks at and then finishes. */
async function withHalfPage(options, body, path = longPage) {
  const { url, finish } = await serveHalf(path);
  await withPage(url, { ...options, until: "start" }, async (page) => {
    await page.until(() => document.querySelectorAll("tbody tr").length > 1000);
    await body(page, async () => {
      finish();
      await page.until(() => document.readyState === "complete");
    });
    finish();
  });
}

/** What stands in place of the rows and in the pager's status, as it is displayed. */
function seen(page, index = 0) {
  return page.$eval(
    "table[data-page-size]",
    (table) => {
      const note = getComputedStyle(table, "::after");
      const status = table.parentNode.nextElementSibling?.querySelector(".dt-pager-status") ?? null;
      const made = status && getComputedStyle(status, "::before").content;
      return {
        rows: [...table.querySelectorAll("tbody tr")].filter((e) => e.getClientRects().length > 0).length,
        note: note.display === "none" ? "" : JSON.parse(note.content),
        status: status && (status.textContent || JSON.parse(made)),
      };
    },
    index,
  );
}

const WAITING = { rows: 0, note: NOTE, status: "Next shows all" };
const HALF = { ...WAITING, status: null };
const ALL = { rows: FEWER, note: "", status: "All rows" };
const PAGED = { rows: 100, note: "", status: "Page 1 of 30" };

test("while a page comes, its rows wait and it says so; then they are paged", async () => {
  await withHalfPage({}, async (page, finish) => {
    assert.deepEqual(await seen(page), HALF);
    const note = await page.computed("table[data-page-size]", ["display", "caption-side", "color"], "::after");
    assert.deepEqual(note, { display: "table-caption", "caption-side": "bottom", color: "rgb(85, 99, 111)" });
    await finish();
    assert.deepEqual(await seen(page), PAGED);
  });
});

test("what a reader sees first stands at once and stays where it is when the rows come", async () => {
  // The script takes one of the theme button's icons away, within the button.
  const first = ".topbar, .topbar :not(.theme-toggle *), .signal-row, .signal-row *, .kpi, .kpi *, .card-head, .htext, p, thead, th";
  // Below the first table all goes down when its rows come.
  const places = (page) =>
    page.$$eval(first, (all) =>
      all.map((e) => {
        const { left, top, width, height } = e.getBoundingClientRect();
        const table = document.querySelector("table");
        const isBelow = !table.contains(e) && table.compareDocumentPosition(e) & Node.DOCUMENT_POSITION_FOLLOWING;
        const numbers = [left, isBelow ? 0 : top, width, height].map((value) => value.toFixed(2));
        return [e.tagName, e.className.baseVal ?? e.className, ...numbers].join(" ");
      }),
    );
  const cases = [1280, 390].flatMap((width) => [[width, longPage], [width, twoTables]]);
  for (const [width, path] of cases) {
    await withHalfPage(
      { width },
      async (page, finish) => {
        const before = await places(page);
        assert.ok(before.length > 30);
        assert.equal(await page.text(".kpi .v"), String(ROWS));
        await finish();
        const same = (await places(page)).slice(0, before.length);
        assert.deepEqual(same, before, `${width} pixels, ${path === twoTables ? "two tables" : "one table"}`);
      },
      path,
    );
  }
});

test("print shows all that has come while the page loads", { needs: "print" }, async () => {
  await withHalfPage({}, async (page, finish) => {
    await page.setMedia({ media: "print" });
    const half = await seen(page);
    assert.ok(half.rows > 1000 && half.rows < ROWS);
    assert.equal(half.note, "");
    await page.setMedia({ media: "screen" });
    assert.deepEqual(await seen(page), HALF);
    await finish();
    await page.setMedia({ media: "print" });
    const whole = await seen(page);
    assert.deepEqual([whole.rows, whole.note], [ROWS, ""]);
  });
});

test("nothing of the waiting is left when the rows have come", async () => {
  await withPage(threeTables, {}, async (page) => {
    const left = await page.evaluate(() => document.getAnimations().map((e) => e.animationName ?? e.transitionProperty));
    assert.deepEqual(left, []);
    assert.deepEqual(await page.evaluate(() => document.documentElement.getAttributeNames()), ["lang"]);
    for (const index of [0, 1, 2]) {
      assert.deepEqual(await seen(page, index), { rows: 100, note: "", status: "Page 1 of 2" });
    }
  });
});

test("no row of a paged table has many nodes beside it: a browser visits them all at each press", async () => {
  await withPage(twoTables, {}, async (page) => {
    const bodies = await page.$$eval("tbody", (all) =>
      all.map((e) => [e.children.length, e.childNodes.length, e.rows[0].cells[0].textContent]),
    );
    // The line break before the first row is left.
    assert.deepEqual(bodies, [[1000, 1001, "1"], [100, 100, "1001"], [1000, 1001, "1101"], [900, 900, "2101"]]);
    const lines = await page.$$eval("tbody", (all) =>
      all.map((e) => getComputedStyle(e.lastElementChild.cells[0]).borderBottomStyle),
    );
    assert.deepEqual(lines, ["solid", "none", "solid", "none"], "no line under the last row of a table");
  });
  await withPage(longPage, {}, async (page) => {
    assert.equal(await page.count("tbody"), 3);
    const numbers = await page.$$eval("tbody tr", (all) => all.map((e) => Number(e.cells[0].textContent)));
    assert.deepEqual(numbers, Array.from({ length: ROWS }, (_, index) => index + 1));
  });
});

// Scripts that are allowed in principle, but never run, or not to their end.

function withoutScripts(path) {
  const [text] = readFileSync(path, "utf8").match(/<script>[^]*<\/script>\n/);
  return pageWith(path, text, "");
}

const POLICY_COMPLAINT = /Content[- ]Security[- ]Policy/i;

function withPolicy(path) {
  const policy = '<meta http-equiv="Content-Security-Policy" content="script-src \'none\'">';
  return pageWith(path, "<head>\n", `<head>\n${policy}\n`);
}

const stripped = withoutScripts(shorterPage);
const STATES = [
  ["scripts are stripped", stripped, /^$/],
  ["a policy stops scripts", withPolicy(shorterPage), POLICY_COMPLAINT],
  [
    "the pager throws before it does anything",
    pageWith(shorterPage, "  var DEFAULT_PAGE_SIZE", '  throw new Error("on purpose");\n\n  var DEFAULT_PAGE_SIZE'),
    /on purpose/,
  ],
];

/** Opens a page whose scripts fail in a way that the browser may complain about. */
function withDeadPage(path, complaint, options, body) {
  return withPage(path, options, async (page) => {
    await body(page);
    await page.tab.collect?.();
    // WebKit says no more than this of a script in a file.
    const expected = (error) => error === "Script error." || complaint.test(error);
    assert.deepEqual(page.seen.errors.splice(0).filter((error) => !expected(error)), []);
  });
}

/** The elements that wait, each with the state of its clock. */
function clocks(page) {
  return page.evaluate(() =>
    document
      .getAnimations()
      .filter((e) => e.animationName === "rows-wait")
      .map((e) => [e.effect.target.localName, e.playState]),
  );
}

/** Stops the clocks of the waiting at so many milliseconds. */
function stopClocks(page, time) {
  return page.evaluate((now) => {
    for (const wait of document.getAnimations().filter((e) => e.animationName === "rows-wait")) {
      wait.pause();
      wait.currentTime = now;
    }
  }, time);
}

/** Waits until the rows of the one table stay, whatever becomes of the press. */
function untilKept(page) {
  return page.until(() => {
    const waits = document.getAnimations().filter((e) => e.animationName === "rows-asked-for");
    return waits.every((e) => e.playState === "finished");
  });
}

for (const [state, path, complaint] of STATES) {
  for (const reducedMotion of ["no-preference", "reduce"]) {
    test(`${state}: rows come within 30 s (${reducedMotion})`, async () => {
      await withDeadPage(path, complaint, { reducedMotion }, async (page) => {
        assert.deepEqual(await seen(page), WAITING);
        assert.deepEqual(await clocks(page), [["html", "running"]]);
        await stopClocks(page, WAIT_MS - 1);
        assert.deepEqual(await seen(page), WAITING);
        await stopClocks(page, WAIT_MS + 1);
        assert.deepEqual(await seen(page), ALL);
      });
    });

    test(`${state}: a press on Next shows every row, for good (${reducedMotion})`, async () => {
      await withDeadPage(path, complaint, { reducedMotion }, async (page) => {
        await page.click("[data-dt-next]");
        await page.until((rows) => {
          const last = document.querySelectorAll("tbody tr")[rows - 1];
          return last.getClientRects().length > 0;
        }, FEWER);
        assert.deepEqual(await seen(page), ALL);
        await untilKept(page);
        await page.click("h3");
        assert.ok(await page.evaluate("document.activeElement === document.body"));
        assert.deepEqual(await seen(page), ALL);
      });
    });
  }

  test(`${state}: print shows every row`, { needs: "print" }, async () => {
    await withDeadPage(path, complaint, {}, async (page) => {
      await page.setMedia({ media: "print" });
      const { rows, note } = await seen(page);
      assert.deepEqual([rows, note], [FEWER, ""]);
      await page.setMedia({ media: "screen" });
      assert.equal((await seen(page)).rows, 0);
    });
  });
}

test("a pager that comes when the 30 s are over says no other than its table", async () => {
  await withHalfPage(
    {},
    async (page, finish) => {
      assert.deepEqual(await seen(page), HALF);
      await stopClocks(page, WAIT_MS + 1);
      const half = await seen(page);
      assert.ok(half.rows > 1000 && half.rows < ROWS);
      assert.equal(half.note, "");
      await finish();
      assert.deepEqual(await seen(page), { ...ALL, rows: ROWS });
    },
    withoutScripts(longPage),
  );
});

test("the keyboard shows the rows, too, when it comes to the pager, and they stay when it goes", async () => {
  await withPage(stripped, {}, async (page) => {
    await page.focus("[data-dt-prev]");
    assert.deepEqual(await seen(page), ALL);
    await untilKept(page);
    await page.focus("tbody a");
    assert.ok(await page.evaluate('document.activeElement.matches("tbody a")'));
    assert.deepEqual(await seen(page), ALL);
  });
});

test("a press shows the rows of its own table", async () => {
  const path = pageWith(threeTables, "<script>", "<!--");
  await withPage(path, {}, async (page) => {
    await page.click("[data-dt-next]", { index: 1 });
    const rows = [];
    for (const index of [0, 1, 2]) {
      rows.push((await seen(page, index)).rows);
    }
    assert.deepEqual(rows, [0, 102, 0]);
  });
});

test("for readers who asked for less motion nothing runs but the clocks of the waiting, and in the end nothing", async () => {
  const running = (page) =>
    page.evaluate(() => {
      const names = document.getAnimations().map((e) => e.animationName ?? e.transitionProperty);
      return [...new Set(names)].sort();
    });
  const mayMove = (page) =>
    page.$$eval("*", (all) => {
      const styles = all.flatMap((e) => [null, "::before", "::after"].map((pseudo) => getComputedStyle(e, pseudo)));
      return styles.filter((e) => e.animationName !== "none" || parseFloat(e.transitionDuration) > 0).length;
    });
  await withPage(stripped, { reducedMotion: "reduce" }, async (page) => {
    assert.deepEqual(await running(page), ["rows-asked-for", "rows-wait"]);
    assert.equal(await mayMove(page), 3, "root, table and pager");
  });
  await withPage(threeTables, { reducedMotion: "reduce" }, async (page) => {
    assert.deepEqual(await running(page), []);
    assert.equal(await mayMove(page), 0);
  });
});

test("with scripting switched off every row is there at once and nothing to press", async () => {
  await withPage(threeTables, { scripting: false }, async (page) => {
    assert.equal(await page.countVisible("tbody tr"), 306);
    assert.equal(await page.countVisible(".dt-pager, .theme-toggle"), 0);
    assert.equal((await page.computed("table[data-page-size]", ["display"], "::after")).display, "none");
  });
});

/** A page as it is saved when it has been paged and its second table stands at its end. */
async function savedPage() {
  const saved = join(newFolder(), "saved.html");
  await withPage(threeTables, {}, async (page) => {
    await page.click("[data-dt-next]", { index: 1 });
    assert.deepEqual(await seen(page, 1), { rows: 2, note: "", status: "Page 2 of 2" });
    // Scripts in the head are those that listen for this test.
    await page.$$eval("head script", (all) => all.forEach((e) => e.remove()));
    writeFileSync(saved, await page.evaluate("`<!DOCTYPE html>${document.documentElement.outerHTML}`"));
  });
  return saved;
}

test("a saved page pages anew, and shows every row where scripting is off", async () => {
  const saved = await savedPage();
  await withPage(saved, { scripting: false }, async (page) => {
    assert.equal(await page.countVisible("tbody tr"), 306);
  });
  await withPage(saved, {}, async (page) => {
    assert.deepEqual(await seen(page, 1), { rows: 100, note: "", status: "Page 1 of 2" });
  });
});

test("a saved page whose scripts are dead shows every row within 30 s, and before by a press", async () => {
  const saved = await savedPage();
  for (const [path, complaint] of [[withoutScripts(saved), /^$/], [withPolicy(saved), POLICY_COMPLAINT]]) {
    await withDeadPage(path, complaint, {}, async (page) => {
      assert.equal(await page.countVisible("tbody tr"), 0);
      await page.focus("[data-dt-next]");
      assert.equal((await seen(page)).rows, 101);
      assert.equal(await page.countVisible("tbody tr"), 101);
      await stopClocks(page, WAIT_MS + 1);
      assert.equal(await page.countVisible("tbody tr"), 306);
    });
  }
});

test("a pager that stumbles over one table pages the others and leaves that one all its rows", async () => {
  const status = '<span class="dt-pager-status"></span>';
  const html = readFileSync(threeTables, "utf8");
  const broken = join(newFolder(), "summary.html");
  // The first one's alone.
  writeFileSync(broken, html.replace(status, ""));
  const listen = () => {
    window.complaints = [];
    window.addEventListener("error", (event) => window.complaints.push(event.message));
  };
  await withDeadPage(broken, /null|status/, { scripts: [[listen]] }, async (page) => {
    await page.until(() => window.complaints.length > 0);
    assert.equal(await page.evaluate("window.complaints.length"), 1);
    assert.deepEqual(await seen(page, 0), { rows: 101, note: "", status: null });
    await page.click("[data-dt-next]");
    assert.equal((await seen(page, 0)).rows, 101);
    assert.deepEqual(await seen(page, 1), { rows: 100, note: "", status: "Page 1 of 2" });
    await page.click("[data-dt-next]", { index: 2 });
    assert.deepEqual(await seen(page, 2), { rows: 3, note: "", status: "Page 2 of 2" });
  });
});

test("a pager without its button calls no rows a page that are all there", async () => {
  const broken = join(newFolder(), "summary.html");
  writeFileSync(
    broken,
    readFileSync(threeTables, "utf8").replace(/<button type="button" data-dt-next>.*/, ""),
  );
  await withDeadPage(broken, /null|disabled/, {}, async (page) => {
    await page.until(() => document.querySelector(".dt-pager-status").nextElementSibling === null);
    assert.deepEqual(await seen(page, 0), { rows: 101, note: "", status: "All rows" });
  });
});

test("until its script has run the theme button holds both icons, beside each other", async () => {
  await withPage(stripped, {}, async (page) => {
    const [button, sun, moon] = await page.$$eval(".theme-toggle, .theme-toggle svg", (all) =>
      all.map((e) => {
        const { left, right, width } = e.getBoundingClientRect();
        return { left, right, width, visibility: getComputedStyle(e).visibility };
      }),
    );
    assert.deepEqual([button.width, sun.width, moon.width], [30, 12, 12]);
    assert.ok(button.left < sun.left && sun.right < moon.left && moon.right < button.right);
    assert.ok([button, sun, moon].every((e) => e.visibility === "visible"));
  });
});

test("a page with a long table has its scroll bar from the start", async () => {
  const overflow = async (page) => (await page.computed("html", ["overflow-y"]))["overflow-y"];
  await withPage(stripped, {}, async (page) => assert.equal(await overflow(page), "scroll"));
  await withPage(pageOf(suite({ passed: 100 })), {}, async (page) => {
    assert.equal(await overflow(page), "visible");
  });
});
