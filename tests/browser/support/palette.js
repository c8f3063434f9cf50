// The palette, written out a second time: a test that took it from the stylesheet
// would agree with any slip there.

/** Name, light value, dark value (undefined: the light one holds in both themes). */
export const PALETTE = [
  ["--bg", "#eef1f4", "#0e1318"],
  ["--surface", "#ffffff", "#161d24"],
  ["--surface-sunken", "#f4f6f8", "#10151a"],
  ["--ink", "#131a22", "#e7edf2"],
  ["--ink-soft", "#55636f", "#9aa8b3"],
  ["--muted", "#8b96a1", "#5c6b78"],
  ["--line", "#e1e6eb", "#232c35"],
  ["--line-strong", "#cbd3da", "#303b45"],
  ["--accent", "#0b7285", "#35b6c4"],
  ["--accent-ink", "#ffffff", "#051417"],
  ["--accent-soft", "#e1f3f4", "#12292c"],
  ["--logo-accent", "#2952cc", "#6f92f2"],
  ["--ref", "#FF7F0E"],
  ["--dut", "#1F77B4"],
  ["--pass", "#2E7D32", "#6fbf73"],
  ["--pass-soft", "#e6f2e6", "#142a17"],
  ["--pass-line", "#b9d8b8", "#2b4a2e"],
  ["--fail", "#C62828", "#e2857b"],
  ["--fail-soft", "#fbe8e6", "#2c1815"],
  ["--fail-line", "#edb6ae", "#55302a"],
  ["--gate", "#a5610f", "#e3a25c"],
  ["--gate-bg", "#f6e9d7", "#2a2114"],
  ["--gauge-mid", "#e8c93a", "#e8c93a"],
  ["--gauge-good", "#b08a10", "#d9b23c"],
  ["--gauge-poor-soft", "#e8a29c", "#7a453f"],
  ["--gauge-fair-soft", "#e8c896", "#7a5f3a"],
  ["--gauge-mid-soft", "#e8dc96", "#7a7040"],
  ["--gauge-good-soft", "#a8cfa0", "#4a6b4a"],
  ["--ref-trace", "var(--ref)"],
  ["--dut-trace", "var(--dut)"],
  [
    "--shadow",
    "0 1px 2px rgba(20, 30, 40, 0.06), 0 6px 20px -8px rgba(20, 30, 40, 0.12)",
    "0 1px 2px rgba(0,0,0,0.4), 0 8px 24px -10px rgba(0,0,0,0.5)",
  ],
];

export const FONTS = [
  [
    "--font-display",
    '"Avenir Next", "SF Pro Rounded", "Segoe UI Semibold", ui-rounded, -apple-system, sans-serif',
  ],
  ["--font-body", '-apple-system, BlinkMacSystemFont, "Segoe UI", system-ui, sans-serif'],
  ["--font-data", 'ui-monospace, "SF Mono", "Cascadia Mono", Menlo, monospace'],
];

export const LIGHT_BLOCK = [...PALETTE, ...FONTS].map(([name, light]) => [name, light]);
export const DARK_BLOCK = PALETTE.filter(([, , dark]) => dark).map(([name, , dark]) => [name, dark]);

// As the browser gives the shadows back.
const SHADOWS = {
  light:
    "rgba(20, 30, 40, 0.06) 0px 1px 2px 0px, rgba(20, 30, 40, 0.12) 0px 6px 20px -8px",
  dark: "rgba(0, 0, 0, 0.4) 0px 1px 2px 0px, rgba(0, 0, 0, 0.5) 0px 8px 24px -10px",
};

function rgb(hex) {
  const [red, green, blue] = [1, 3, 5].map((at) => parseInt(hex.slice(at, at + 2), 16));
  return `rgb(${red}, ${green}, ${blue})`;
}

/** The value in a theme ("light" or "dark") as a browser computes it, for example rgb(0, 0, 0). */
export function inTheme(name, theme) {
  if (name === "--shadow") {
    return SHADOWS[theme];
  }
  const font = FONTS.find(([fontName]) => fontName === name);
  if (font) {
    return font[1];
  }
  const [, light, dark] = PALETTE.find(([colour]) => colour === name);
  return rgb(theme === "dark" ? (dark ?? light) : light);
}
