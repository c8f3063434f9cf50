// The content security policy of docs/ci.md, on a real web server, in a real browser:
// the page works under it and nothing is blocked.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import fs from "node:fs";
import net from "node:net";
import path from "node:path";
import process from "node:process";
import { setTimeout as sleep } from "node:timers/promises";
import { after, before, test } from "node:test";
import { chromium } from "playwright-core";
import {
  EXAMPLES,
  SOURCE,
  copyReport,
  fencedBlocks,
  read,
  run,
  summarise,
  temporaryFolder,
  writeRecipe,
} from "./support.js";

const NGINX = process.env.FTHSUMMARY_NGINX;
const POLICY_TOOL = path.join(SOURCE, "docs/content-policy");
const RECIPE = fencedBlocks("docs/ci.md").find(({ file }) => file === "fthsummary.nginx").text;
const POLICY = RECIPE.match(/Content-Security-Policy "(default-src [^"]*)"/)[1];
const JENKINS_RECIPE = "/var/lib/jenkins/init.groovy.d/fthsummary.groovy";
const JENKINS_POLICY = fencedBlocks("docs/ci.md")
  .find(({ file }) => file === JENKINS_RECIPE)
  .text.match(/^System\.setProperty\('hudson\.model\.DirectoryBrowserSupport\.CSP',\n {4}"([^"$\\]*)"\)\n$/)[1];
// What Jenkins sends by itself; older versions without allow-same-origin.
const JENKINS_DEFAULT = "sandbox allow-same-origin; default-src 'none'; img-src 'self'; style-src 'self';";

let browser;
before(async () => {
  assert.ok(NGINX, "FTHSUMMARY_NGINX is not set: run tools/test packaging");
  browser = await chromium.launch({
    executablePath: "/usr/bin/chromium",
    args: [
      "--no-sandbox",
      "--disable-gpu",
      "--disable-quic",
      "--no-first-run",
      "--disable-background-networking",
      "--disable-component-update",
      "--disable-sync",
    ],
  });
});
after(() => browser?.close());

function freePort() {
  return new Promise((resolve) => {
    const server = net.createServer().listen(0, "127.0.0.1", () => {
      const { port } = server.address();
      server.close(() => resolve(port));
    });
  });
}

function accepts(port) {
  return new Promise((resolve) => {
    const socket = net.connect(port, "127.0.0.1");
    socket.on("connect", () => resolve(true)).on("error", () => resolve(false));
    socket.on("connect", () => socket.destroy());
  });
}

async function waitForServer(port, log) {
  for (let attempt = 0; attempt < 200; attempt += 1) {
    if (await accepts(port)) {
      return;
    }
    await sleep(50);
  }
  throw new Error(`the web server does not answer:\n${read(log)}`);
}

// Serves folder/reports as the recipe says, with the policy in place of its own.
async function serve(t, folder, policy) {
  const port = await freePort();
  writeRecipe("fthsummary.nginx", folder, {
    mode: 0o644,
    edit: (text) =>
      text
        .replace("127.0.0.1:8080", `127.0.0.1:${port}`)
        .replace("/srv/reports", `${folder}/reports`)
        .replace(POLICY, policy),
  });
  const scratch = ["client_body", "proxy", "fastcgi", "uwsgi", "scgi"].map(
    (name) => `${name}_temp_path ${folder}/${name};`,
  );
  const user = process.getuid() === 0 ? "user root;" : "";
  fs.writeFileSync(
    `${folder}/nginx.conf`,
    `${user} daemon off; pid ${folder}/pid; error_log ${folder}/log; events {}
     http { access_log off; types { text/html html htm; } ${scratch.join(" ")}
            include ${folder}/fthsummary.nginx; }`,
  );
  const server = spawn(NGINX, ["-e", `${folder}/log`, "-p", folder, "-c", `${folder}/nginx.conf`]);
  t.after(() => server.kill());
  await waitForServer(port, `${folder}/log`);
  return `http://127.0.0.1:${port}/`;
}

// Opens the page; `blocked` collects what the policy stops, by its directive.
async function open(t, url) {
  const context = await browser.newContext({ colorScheme: "light" });
  t.after(() => context.close());
  const page = await context.newPage();
  const blocked = [];
  const errors = [];
  await page.exposeFunction("noteBlocked", (directive) => blocked.push(directive));
  await page.addInitScript(() => {
    /* global document, window */
    document.addEventListener("securitypolicyviolation", (event) =>
      window.noteBlocked(event.effectiveDirective),
    );
  });
  page.on("console", (message) => errors.push(message.text()));
  page.on("pageerror", (error) => errors.push(String(error)));
  const response = await page.goto(url, { waitUntil: "networkidle" });
  return { page, blocked, errors, headers: response.headers() };
}

function makeReports(t, fill) {
  const folder = temporaryFolder(t);
  fs.mkdirSync(`${folder}/reports`);
  const status = fill(`${folder}/reports`);
  summarise(`${folder}/reports`, `${folder}/reports`, { status });
  return folder;
}

const bundled = (t) =>
  makeReports(t, (reports) => {
    fs.cpSync(EXAMPLES, reports, { recursive: true });
    return 1;
  });

const manyPassed = (t) =>
  makeReports(t, (reports) => {
    copyReport(t, "PASS", `${reports}/000.html`);
    for (let i = 1; i < 150; i += 1) {
      fs.copyFileSync(`${reports}/000.html`, `${reports}/${i}.html`);
    }
    return 0;
  });

const style = (page, selector, property) =>
  page.locator(selector).first().evaluate(
    (element, name) => window.getComputedStyle(element).getPropertyValue(name),
    property,
  );

test("the policy in the document is the one of today's page", (t) => {
  const page = path.join(bundled(t), "reports/index.html");
  const hint = "run tools/update/content-policy";
  assert.equal(run(POLICY_TOOL, [page]).stdout, `${POLICY}\n`, hint);
  assert.match(POLICY, /^default-src 'none'; /);
  assert.doesNotMatch(POLICY, /unsafe-inline|unsafe-eval|\*|https?:/);
});

test("the policy of a page with fewer parts allows nothing that the document's does not", (t) => {
  const page = path.join(manyPassed(t), "reports/index.html");
  const allowed = new Set(POLICY.split(/[ ;]+/));
  for (const word of run(POLICY_TOOL, [page]).stdout.trim().split(/[ ;]+/)) {
    assert.ok(allowed.has(word), word);
  }
});

test("docs/content-policy refuses a file that is no page", (t) => {
  const file = path.join(temporaryFolder(t), "x.html");
  fs.writeFileSync(file, "<p>no page</p>\n");
  assert.match(run(POLICY_TOOL, [file], { status: 1 }).stderr, /no summary page/);
});

test("the page of the bundled reports works under the policy, nothing is blocked", async (t) => {
  const url = await serve(t, bundled(t), POLICY);
  const { page, blocked, errors, headers } = await open(t, url);
  assert.equal(page.url(), `${url}index.html`);
  assert.equal(headers["content-security-policy"], POLICY);

  assert.equal(await style(page, "body", "background-color"), "rgb(238, 241, 244)");
  assert.equal(await style(page, "th[style]", "text-align"), "left");
  assert.equal(await style(page, "span[style]", "color"), "rgb(139, 150, 161)");
  await page.click("#themeToggle");
  assert.equal(await style(page, "body", "background-color"), "rgb(14, 19, 24)");
  await page.reload({ waitUntil: "networkidle" });
  assert.equal(await style(page, "body", "background-color"), "rgb(14, 19, 24)");
  assert.deepEqual({ blocked, errors }, { blocked: [], errors: [] });
});

test("the pager works under the policy, nothing is blocked", async (t) => {
  const { page, blocked, errors } = await open(t, await serve(t, manyPassed(t), POLICY));
  assert.equal(await page.textContent(".dt-pager-status"), "Page 1 of 2");
  assert.equal(await page.locator("tbody tr:visible").count(), 100);
  await page.click("[data-dt-next]");
  assert.equal(await page.textContent(".dt-pager-status"), "Page 2 of 2");
  assert.equal(await page.locator("tbody tr:visible").count(), 50);
  assert.deepEqual({ blocked, errors }, { blocked: [], errors: [] });
});

test("a link on the page opens its report, which is served in a sandbox", async (t) => {
  const { page } = await open(t, await serve(t, bundled(t), POLICY));
  const [response] = await Promise.all([
    page.waitForResponse((each) => each.request().isNavigationRequest()),
    page.locator("tbody a").first().click(),
  ]);
  assert.equal(response.status(), 200);
  assert.equal(response.headers()["content-security-policy"], "sandbox allow-scripts");
});

test("the policy for Jenkins adds the page's hashes to Jenkins' own policy, and no more", () => {
  const parsed = (policy) =>
    Object.fromEntries(policy.split(/; ?/).filter(Boolean).map((part) => {
      const [directive, ...words] = part.split(" ");
      return [directive, words];
    }));
  const own = parsed(POLICY);
  assert.deepEqual(parsed(JENKINS_POLICY), {
    ...parsed(JENKINS_DEFAULT),
    sandbox: ["allow-scripts"],
    "script-src": own["script-src"],
    "style-src": ["'self'", ...own["style-src"]],
    "style-src-attr": own["style-src-attr"],
  });
});

test("the page works under the policy for Jenkins, nothing is blocked", async (t) => {
  const { page, blocked, errors } = await open(t, await serve(t, bundled(t), JENKINS_POLICY));
  assert.equal(await style(page, "th[style]", "text-align"), "left");
  await page.click("#themeToggle");
  assert.equal(await style(page, "body", "background-color"), "rgb(14, 19, 24)");
  await page.reload({ waitUntil: "networkidle" });
  assert.equal(await style(page, "body", "background-color"), "rgb(238, 241, 244)");
  assert.deepEqual({ blocked, errors }, { blocked: [], errors: [] });

  const many = await open(t, await serve(t, manyPassed(t), JENKINS_POLICY));
  await many.page.click("[data-dt-next]");
  assert.equal(await many.page.textContent(".dt-pager-status"), "Page 2 of 2");
  assert.deepEqual({ blocked: many.blocked, errors: many.errors }, { blocked: [], errors: [] });
});

for (const policy of [JENKINS_DEFAULT, JENKINS_DEFAULT.replace(" allow-same-origin", "")]) {
  test(`under "${policy}" the page is as the document says`, async (t) => {
    const { page } = await open(t, await serve(t, manyPassed(t), policy));
    assert.equal(await style(page, "body", "background-color"), "rgba(0, 0, 0, 0)");
    assert.equal(await style(page, "td", "border-bottom-width"), "0px");
    // The button's icon fills the window; all else is below it.
    const icon = await page.locator("svg").first().boundingBox();
    const size = page.viewportSize();
    assert.ok(icon.width > size.width * 0.9 && icon.height > size.height * 0.9, JSON.stringify(icon));
    assert.equal(await style(page, "svg", "fill"), "none");
    assert.equal(await style(page, "svg", "stroke"), "none");
    assert.ok((await page.locator("table").first().boundingBox()).y > icon.y + icon.height);
    assert.equal(await page.locator("tbody tr:visible").count(), 150);
    await page.click("#themeToggle");
    assert.equal(await style(page, "body", "background-color"), "rgba(0, 0, 0, 0)");
    const [response] = await Promise.all([
      page.waitForResponse((each) => each.request().isNavigationRequest()),
      page.locator("tbody a").first().click(),
    ]);
    assert.equal(response.status(), 200);
  });
}

// Each hash of the policy with the directive that it is of.
const HASHES = POLICY.split("; ").flatMap((part) => {
  const [directive, ...words] = part.split(" ");
  return words.filter((word) => word.startsWith("'sha256-")).map((hash) => ({ directive, hash }));
});
const without = ({ hash }) => POLICY.replace(hash, `'sha256-${"A".repeat(43)}='`);

// What a hash allowed is blocked when it is spoilt, so the tests above can fail.
for (const [index, each] of HASHES.entries()) {
  test(`the browser blocks what hash ${index + 1} of ${HASHES.length} allows, ${each.directive}`, async (t) => {
    const { page, blocked } = await open(t, await serve(t, bundled(t), without(each)));
    await page.waitForTimeout(100);
    assert.ok(blocked.length > 0);
    const others = blocked.filter((directive) => !directive.startsWith(each.directive));
    assert.deepEqual(others, []);
  });
}

test("with the theme script blocked, the button does nothing", async (t) => {
  const { page } = await open(t, await serve(t, bundled(t), without(HASHES[0])));
  await page.click("#themeToggle");
  assert.equal(await style(page, "body", "background-color"), "rgb(238, 241, 244)");
});

test("the page holds two scripts and asks for nothing from elsewhere", (t) => {
  const page = read(bundled(t), "reports/index.html");
  assert.equal(page.match(/<script>/g).length, 2);
  assert.doesNotMatch(page, /<link|<img|<iframe|<script /);
});
