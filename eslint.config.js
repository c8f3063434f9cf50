import js from "@eslint/js";

// Beyond the recommended rules: what keeps small scripts plain.
const STRICT_RULES = {
  "consistent-return": "error",
  curly: "error",
  eqeqeq: "error",
  "no-eval": "error",
  "no-implicit-globals": "error",
  "no-implied-eval": "error",
  "no-shadow": "error",
  "no-use-before-define": "error",
};

// The page's scripts run as they are in whatever browser opens the page: plain
// scripts in the language that every browser reads, silent, without globals.
const PAGE_SCRIPTS = {
  files: ["src/summary/*.js"],
  languageOptions: {
    ecmaVersion: 5,
    sourceType: "script",
    globals: { window: "readonly", document: "readonly" },
  },
  rules: {
    complexity: ["error", 8],
    "max-depth": ["error", 3],
    "max-lines-per-function": ["error", { max: 80, skipComments: true }],
    "no-alert": "error",
    "no-console": "error",
    radix: "error",
    strict: ["error", "function"],
    // This language version cannot leave the parameter of a catch clause out.
    "no-unused-vars": ["error", { caughtErrors: "none" }],
  },
};

// The browser tests run in Node; the functions that they hand to the browser run
// in the page.
const BROWSER_TESTS = {
  files: ["tests/browser/**/*.js", "tests/browser/**/*.mjs", "bench/*.js"],
  languageOptions: {
    globals: Object.fromEntries(
      [
        ...["AbortSignal", "Buffer", "URL", "clearTimeout", "console", "fetch", "performance", "process", "setTimeout"],
        ...["document", "getComputedStyle", "localStorage", "location", "matchMedia", "window"],
        ...["MutationObserver", "Node", "NodeFilter", "requestAnimationFrame"],
        ...["CSSMediaRule", "CSSStyleRule"],
      ].map((name) => [name, "readonly"]),
    ),
  },
};

export default [
  { ignores: ["build/"] },
  { linterOptions: { reportUnusedDisableDirectives: "error" } },
  js.configs.recommended,
  { rules: STRICT_RULES },
  PAGE_SCRIPTS,
  BROWSER_TESTS,
];
