// Runs every test file in one process, so that all of them share one browser, the one that
// FTHSUMMARY_BROWSER names (support/browser.js).

import { readdirSync } from "node:fs";

const files = readdirSync(new URL(".", import.meta.url)).filter((name) => name.endsWith("_test.js"));
for (const file of files.sort()) {
  await import(`./${file}`);
}
