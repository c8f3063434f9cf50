// Reports and file names that try to become markup or script.

import assert from "node:assert/strict";
import { createServer } from "node:net";
import { join } from "node:path";
import { after, before, test } from "node:test";

import { useBrowser } from "./support/browser.js";
import { inventory, otherNodes } from "./support/inventory.js";
import { newFolder, summarize, writeTree } from "./support/program.js";
import { analyzed, errored, OTHER_PAGE } from "./support/reports.js";

// Whatever the browser asks a network for arrives here.
const asked = [];
const proxy = createServer((socket) => {
  socket.on("error", () => undefined);
  socket.once("data", (data) => asked.push(data.toString("latin1").split("\r\n")[0]));
  socket.end();
});
before(() => new Promise((done) => proxy.listen(0, "127.0.0.1", done)));
after(() => proxy.close());

const withPage = useBrowser();

// A text as it stands in a report or a file name, and what a reader must see of it
// where that differs: a carriage return becomes a line feed in any HTML document,
// bytes that are not UTF-8 become replacement characters.
const HOSTILE = [
  ["<script>hit()</script>"],
  ["<img src=x onerror=hit()>"],
  ["<svg onload=hit()>"],
  ["\"><b onclick=hit()>"],
  ["' onmouseover='hit()"],
  ["\" onfocus=\"hit()\" autofocus=\""],
  ["&lt;i&gt; &amp;amp; &quot; &#39; &#60;b&#x3e;"],
  ["&lt &copy; &notanentity; &#0; & &&"],
  ["</style><style>*{display:none}"],
  ["</title></td></tr></table></div>"],
  ["]]><![CDATA[x"],
  ["<!--"],
  ["--><!-- -->"],
  ["<!doctype x><?php x ?>"],
  ["`${hit()}`{{hit()}}"],
  ["<base href=http:__a.test_>"],
  ["<link rel=prefetch href=x>"],
  ["<meta http-equiv=refresh content=0>"],
  ["<iframe srcdoc=hit()>"],
  ["<form><input autofocus>"],
  ["<plaintext><textarea><noscript>"],
  ["tab\there\tand\x01\x02\x1b[31m\x7f"],
  ["line\nfeed"],
  ["carriage\rreturn\r\nboth", "carriage\nreturn\nboth"],
  ["\u202egpj.exe\u202c \u200f\u2066x\u2069"],
  ["\u0085\u2028\u2029\ufeff\u{1f50a} \u00e9\u0301"],
  ["expression(hit()) url(javascript:hit())"],
  ["\\u003cscript\\u003e \\\\ \\n %3Cscript%3E"],
  ["  two  blanks, one at the end "],
];

const NOT_UTF8 = [
  [Buffer.from("bad \xff\xfe byte", "latin1"), "bad \ufffd\ufffd byte"],
  [Buffer.from("cut \xe2\x82", "latin1"), "cut \ufffd"],
  [Buffer.from("long \xc0\xbcscript\xc0\xbe", "latin1"), "long \ufffd\ufffdscript\ufffd\ufffd"],
];

const ALL = [...HOSTILE, ...NOT_UTF8].map(([text, shown]) => [Buffer.from(text), shown ?? text]);

// Numbers keep the rows in the order of the list.
function fileName(index, text) {
  return Buffer.concat([Buffer.from(`${100 + index} `), text, Buffer.from(".html")]);
}

function report(verdict, text) {
  const marked = analyzed(verdict, { mode: "@m", subMode: "@s", failed: ["@f"], nonGating: ["@n"] });
  const parts = marked.split(/@[msfn]/);
  return Buffer.concat(
    parts.flatMap((part, index) => (index === 0 ? [Buffer.from(part)] : [text, Buffer.from(part)])),
  );
}

// Fields hold 39 bytes; of longer texts the start is kept.
const FIELD_BYTES = 39;

function fieldOf([text, shown]) {
  return text.length <= FIELD_BYTES ? shown : text.subarray(0, FIELD_BYTES).toString("utf8");
}

function treeOf(texts) {
  return texts.flatMap((text, index) => [
    [Buffer.concat([Buffer.from("a/"), fileName(index, text)]), report("FAIL", text)],
    [Buffer.concat([Buffer.from("b/"), fileName(index, text)]), report("PASS", text)],
    [
      Buffer.concat([Buffer.from("c/"), fileName(index, text)]),
      Buffer.from(errored("@e").replace("@e", () => text.toString("latin1")), "latin1"),
    ],
    [Buffer.concat([Buffer.from("d/"), fileName(index, text)]), OTHER_PAGE],
  ]);
}

const NASTY_FOLDER = "in <b onclick=\"hit()\"> & 'x'</span><script>hit()<";
const hostilePage = summarize(writeTree(join(newFolder(), NASTY_FOLDER), treeOf(ALL.map(([t]) => t))));
const plainFolder = join(newFolder(), "in plain<");
const plainPage = summarize(
  writeTree(plainFolder.replace("<", ""), treeOf(ALL.map((_, index) => Buffer.from(`x${index}`)))),
);

const CANARY = () => {
  window.hits = 0;
  window.hit = () => {
    window.hits += 1;
  };
};

function withHostilePage(options, body) {
  return withPage(hostilePage, { initScripts: [CANARY], ...options }, body);
}

test("no script of the data runs, not even when everything is hovered, focused and clicked", async () => {
  await withHostilePage({}, async (page, { seen }) => {
    await page.evaluate(() => {
      document.addEventListener("click", (event) => event.preventDefault());
      for (const element of document.querySelectorAll(".dash *")) {
        for (const name of ["mouseover", "focus", "click", "load", "error"]) {
          element.dispatchEvent(new window.Event(name, { bubbles: true, cancelable: true }));
        }
      }
    });
    assert.equal(await page.evaluate(() => window.hits), 0);
    assert.equal(await page.title(), "Fathomix Summary");
    assert.deepEqual(seen.requests.length, 1, "nothing but the page itself was asked for");
  });
});

test("no element, attribute, comment or other node is made by data", async () => {
  let expected;
  let folderMarks;
  await withPage(plainPage, {}, async (page) => {
    expected = await inventory(page);
    folderMarks = await page.locator(".fname wbr").count();
    assert.deepEqual(await otherNodes(page), ["html"]);
  });
  await withPage(hostilePage, {}, async (page) => {
    const actual = await inventory(page);
    // The texts hold no slash or backslash but for these.
    const marks = Object.keys(actual).filter((kind) => kind.endsWith("wbr"));
    assert.equal(marks.length, 3);
    assert.equal(await page.locator(".fname wbr").count(), folderMarks + 2);
    marks.forEach((kind) => delete actual[kind] && delete expected[kind]);
    assert.deepEqual(actual, expected);
    assert.deepEqual(await otherNodes(page), ["html"]);
  });
});
