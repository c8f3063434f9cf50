// Measures how the page of many reports opens, and what a press on its pager costs:
//
//   node bench/pages.js RUNS BROWSER [BROWSER ...]
//
// FTHSUMMARY names the program that makes the pages. Writes a line of JSON for each figure:
// [measure, browser, value, ceiling or null]. A load is the time until the load event,
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
const LARGE_CASE = ["100,000 passed", { passed: LARGE }];

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

/** Milliseconds that each of some presses on Next and on Prev takes. */
function pressTimes(browser, path) {
  const expression = `(async () => {
    const times = [];
    const frame = () => new Promise((done) => requestAnimationFrame(() => setTimeout(done)));
    for (const button of ["[data-dt-next]", "[data-dt-prev]"]) {
      for (let press = 0; press < ${PRESSES}; press += 1) {
        await frame();
        const start = performance.now();
        document.querySelector(button).click();
        document.querySelector(".dt-pager").getBoundingClientRect();
        times.push(performance.now() - start);
      }
    }
    return times;
  })()`;
  return inTab(browser, path, (tab) => tab.evaluate(expression));
}

async function measurePresses(browser, name, what, path) {
  const ceiling = name === "chromium" ? PRESS_CEILING_MS : null;
  report(`press, ${what}, milliseconds`, name, median(await pressTimes(browser, path)), ceiling);
}

const [runs, ...names] = process.argv.slice(2);
const pages = [...CASES, LARGE_CASE].map(([what, counts]) => [what, pageOf(suite(counts))]);
const [largeName, largePage] = pages.at(-1);
for (const name of names) {
  const { launch } = await import(`../tests/browser/support/${name}.js`);
  const browser = await launch({ proxy: NO_PROXY, patience: PATIENCE_MS });
  try {
    for (const [what, path] of name === "chromium" ? pages : pages.slice(0, -1)) {
      await measureLoads(browser, name, what, path, Number(runs));
    }
    await measurePresses(browser, name, largeName, largePage);
  } finally {
    await browser.close();
  }
}
