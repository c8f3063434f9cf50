// Measures how the page of many reports opens, and what a press on its pager costs:
//
//   node bench/pages.js RUNS BROWSER [BROWSER ...]
//
// FTHSUMMARY names the program that makes the pages. Writes a line of JSON for each figure:
// [measure, browser, value, ceiling or null]; the value is null where a browser did not get
// through, and the measure says why. A load is the time until the load event,
// against the same page with its tables not displayed, both loaded in turn. A press is
// measured in the page: the script, and the style and layout that the next frame needs.

import { writeFileSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

import { newFolder, pageOf } from "../tests/browser/support/program.js";
import { suite } from "../tests/browser/support/reports.js";

const SMALL = 20_000;
const LARGE = 100_000;
const CASES = [
  ["20,000 passed", { passed: SMALL }],
  ["20,000 failed", { failed: SMALL }],
];
// In Chromium alone; presses are measured on the first of them.
const LARGE_CASES = [
  ["100,000 passed", { passed: LARGE }],
  ["100,000 failed", { failed: LARGE }],
];

// The most that a load may cost against its floor: the median and the worst.
const CEILINGS = { chromium: [1.3, null], firefox: [1.5, null], webkit: [1.8, 3] };
const PRESS_CEILING_MS = 50;
const PRESSES = 15;
const PATIENCE_MS = 600_000;
const NO_PROXY = "http://127.0.0.1:9";
const TAB = {
  width: 1280,
  height: 900,
  colorScheme: "light",
  reducedMotion: "no-preference",
  scripting: true,
  storage: true,
  until: "load",
};

function median(values) {
  return [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];
}

function report(measure, browser, value, ceiling) {
  console.log(JSON.stringify([measure, browser, value, ceiling]));
}

function floorOf(path) {
  const html = readFileSync(path, "utf8");
  const copy = join(newFolder(), "floor.html");
  writeFileSync(copy, html.replace("</head>", "<style>table { display: none }</style>\n</head>"));
  return copy;
}

async function inTab(browser, path, body) {
  const tab = await browser.newTab(TAB, { errors: [], requests: [] });
  try {
    await tab.open(pathToFileURL(path).href, { until: "load" });
    return await body(tab);
  } finally {
    await tab.close();
  }
}

/** Milliseconds from the navigation to the load event. */
function loadTime(browser, path) {
  const expression = `new Promise((done) => {
    const { timing } = performance;
    const look = () => (timing.loadEventEnd ? done(timing.loadEventEnd - timing.navigationStart) : setTimeout(look));
    look();
  })`;
  return inTab(browser, path, (tab) => tab.evaluate(expression));
}

async function measureLoads(browser, name, what, path, runs) {
  const floor = floorOf(path);
  const times = { page: [], floor: [] };
  for (let run = 0; run <= runs; run += 1) {
    const [below, above] = [await loadTime(browser, floor), await loadTime(browser, path)];
    if (run > 0) {
      // The first pair only warms the page cache.
      times.floor.push(below);
      times.page.push(above);
    }
  }
  const [page, base] = [median(times.page), median(times.floor)];
  const [ceiling, worst] = CEILINGS[name];
  report(`load, ${what}, seconds`, name, page / 1000, null);
  report(`load, ${what}, against its floor`, name, page / base, ceiling);
  report(`load, ${what}, worst against its floor`, name, Math.max(...times.page) / base, worst);
}

/** Milliseconds that each of some presses takes, near the first page and near the last. */
function pressTimes(browser, path) {
  const expression = `(async () => {
    const next = document.querySelector("[data-dt-next]");
    const previous = document.querySelector("[data-dt-prev]");
    const frame = () => new Promise((done) => requestAnimationFrame(() => setTimeout(done)));
    const press = async (button, times) => {
      await frame();
      const start = performance.now();
      button.click();
      document.querySelector(".dt-pager").getBoundingClientRect();
      times.push(performance.now() - start);
    };
    const first = [];
    const last = [];
    for (const button of [next, previous]) {
      for (let count = 0; count < ${PRESSES}; count += 1) {
        await press(button, first);
      }
    }
    while (!next.disabled) {
      next.click();
    }
    for (const button of [previous, next]) {
      for (let count = 0; count < ${PRESSES}; count += 1) {
        await press(button, last);
      }
    }
    return { first, last };
  })()`;
  return inTab(browser, path, (tab) => tab.evaluate(expression));
}

async function measurePresses(browser, name, what, path) {
  const ceiling = name === "webkit" ? null : PRESS_CEILING_MS;
  for (const [place, times] of Object.entries(await pressTimes(browser, path))) {
    const measure = `press near the ${place} page, ${what}`;
    report(`${measure}, milliseconds`, name, median(times), null);
    report(`${measure}, worst of ${times.length}, milliseconds`, name, Math.max(...times), ceiling);
  }
}

const [runs, ...names] = process.argv.slice(2);
const made = (cases) => cases.map(([what, counts]) => [what, pageOf(suite(counts))]);
const [pages, largePages] = [made(CASES), made(LARGE_CASES)];
async function measureBrowser(name) {
  const { launch } = await import(`../tests/browser/support/${name}.js`);
  const browser = await launch({ proxy: NO_PROXY, patience: PATIENCE_MS, hasLayers: true });
  try {
    for (const [what, path] of name === "chromium" ? [...pages, ...largePages] : pages) {
      await measureLoads(browser, name, what, path, Number(runs));
    }
    await measurePresses(browser, name, ...largePages[0]);
  } finally {
    await browser.close();
  }
}

for (const name of names) {
  try {
    await measureBrowser(name);
  } catch (error) {
    // What it and the others have shown so far still counts.
    report(`it did not get through: ${error.message}`, name, null, null);
  }
}
