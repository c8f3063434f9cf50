// What the parts of the page look like, as a browser computes it at a root font size
// of 16 pixels. A value that begins with "--" stands for that entry of the palette.

const BOX = {
  "background-color": "--surface",
  "border-top-color": "--line",
  "border-top-style": "solid",
  "border-top-width": "1px",
  "border-bottom-color": "--line",
  "border-bottom-style": "solid",
  "border-bottom-width": "1px",
  "border-left-color": "--line",
  "border-left-width": "1px",
  "border-right-color": "--line",
  "border-right-width": "1px",
};

const CELL = {
  padding: "8px 9.6px",
  "border-bottom-color": "--line",
  "border-bottom-style": "solid",
  "border-bottom-width": "1px",
  "font-variant-numeric": "tabular-nums",
};

/** Holds on every page, in both themes and at every width. */
export const LAYOUT = [
  ["body", { "background-color": "--bg", margin: "0px", "box-sizing": "border-box" }],
  [
    ".dash",
    {
      color: "--ink",
      "font-family": "--font-body",
      "max-width": "1180px",
      "margin-top": "0px",
      "margin-bottom": "0px",
      padding: "28.8px 25.6px 80px",
      "box-sizing": "border-box",
    },
  ],
  [
    ".topbar",
    {
      display: "flex",
      "flex-direction": "row",
      "flex-wrap": "wrap",
      "align-items": "center",
      "justify-content": "space-between",
      gap: "16px",
      "margin-bottom": "20.8px",
    },
  ],
  [".topbar .brand", { display: "flex", "flex-direction": "row", gap: "9.6px" }],
  [
    ".topbar .glyph",
    {
      width: "30px",
      height: "30px",
      "border-radius": "8px",
      "background-color": "--logo-accent",
    },
  ],
  [".topbar .glyph svg", { width: "18px", height: "18px" }],
  [
    ".topbar .name",
    {
      "font-family": "--font-display",
      "font-size": "17px",
      "font-weight": "700",
      "letter-spacing": "-0.17px",
    },
  ],
  [
    ".topbar .meta",
    {
      color: "--muted",
      "font-family": "--font-data",
      "font-size": "11.5px",
      "line-height": "17.25px",
      "text-align": "right",
    },
  ],
  [".topbar .meta b", { color: "--ink-soft", "font-weight": "600" }],
  [".topbar .right", { display: "flex", "flex-direction": "row", gap: "12.8px" }],
  [
    ".theme-toggle",
    {
      ...BOX,
      width: "30px",
      height: "30px",
      padding: "0px",
      "border-radius": "8px",
      color: "--ink-soft",
    },
  ],
  [".theme-toggle .ti-sun", { width: "16px", height: "16px", stroke: "--ink-soft" }],
  [".theme-toggle .ti-moon", { width: "16px", height: "16px", stroke: "--ink-soft" }],
  [
    ".signal-row",
    {
      ...BOX,
      display: "flex",
      "flex-wrap": "wrap",
      gap: "25.6px",
      "margin-bottom": "22.4px",
      padding: "15.2px 20.8px",
      "border-radius": "12px",
      "box-shadow": "--shadow",
    },
  ],
  [
    ".signal-id.single",
    { "border-left-width": "3px", "border-left-style": "solid", "border-left-color": "--accent" },
  ],
  [
    ".signal-id .tag",
    {
      color: "--accent",
      "font-family": "--font-display",
      "font-size": "9.5px",
      "font-weight": "700",
      "letter-spacing": "0.57px",
      "text-transform": "uppercase",
    },
  ],
  [
    ".signal-id .fname",
    {
      "font-family": "--font-data",
      "font-size": "15px",
      "font-weight": "600",
      "line-height": "21px",
      "overflow-wrap": "anywhere",
    },
  ],
  [".kpi-grid", { display: "grid", gap: "12.8px", "margin-bottom": "25.6px" }],
  [
    ".kpi",
    { ...BOX, padding: "14.4px 16px", "border-radius": "10px", "box-shadow": "--shadow" },
  ],
  [
    ".kpi .k",
    {
      color: "--muted",
      "font-family": "--font-display",
      "font-size": "10.5px",
      "font-weight": "600",
      "letter-spacing": "0.315px",
      "margin-bottom": "6.4px",
      "text-transform": "uppercase",
    },
  ],
  [
    ".kpi .v",
    {
      color: "--ink",
      "font-family": "--font-display",
      "font-size": "22px",
      "font-weight": "700",
    },
  ],
  [
    ".kpi.verdict",
    {
      display: "flex",
      "flex-direction": "column",
      "justify-content": "center",
      padding: "14.4px 16px",
      "border-radius": "10px",
      "border-top-width": "1px",
    },
  ],
  [".kpi.verdict .k", { color: "rgba(255, 255, 255, 0.75)" }],
  [".kpi.verdict .v", { color: "rgb(255, 255, 255)", "font-size": "28px", "font-weight": "700" }],
  [
    ".card",
    {
      ...BOX,
      "border-radius": "12px",
      "box-shadow": "--shadow",
      "margin-bottom": "17.6px",
      overflow: "hidden",
      "scroll-margin-top": "16px",
    },
  ],
  [
    ".card-head",
    {
      display: "flex",
      "flex-direction": "row",
      padding: "15.2px 19.2px",
      "border-bottom-color": "--line",
      "border-bottom-style": "solid",
      "border-bottom-width": "1px",
    },
  ],
  [
    ".card-head h3",
    {
      "font-family": "--font-display",
      "font-size": "15px",
      "font-weight": "700",
      margin: "0px",
    },
  ],
  [".card-body", { padding: "17.6px 19.2px 20.8px" }],
  [
    ".compare-table-title",
    {
      color: "--muted",
      "font-family": "--font-display",
      "font-size": "9.5px",
      "font-weight": "600",
      "letter-spacing": "0.38px",
      margin: "0px 0px 8px",
      "text-transform": "uppercase",
    },
  ],
  [
    "table.dt",
    {
      "border-collapse": "collapse",
      "font-family": "--font-data",
      "font-size": "11.5px",
      "margin-top": "14.4px",
    },
  ],
  [
    "table.dt th",
    {
      ...CELL,
      color: "--muted",
      "font-family": "--font-display",
      "font-size": "9.5px",
      "font-weight": "700",
      "letter-spacing": "0.475px",
      "text-align": "left",
      "text-transform": "uppercase",
    },
  ],
  [".overflow-x", { "overflow-x": "auto" }],
  [
    "footer",
    {
      ...BOX,
      color: "--muted",
      "border-radius": "10px",
      "font-family": "--font-data",
      "font-size": "10.5px",
      "margin-top": "25.6px",
      padding: "16px 19.2px 13.6px",
    },
  ],
  [
    "footer .footer-row-top",
    {
      display: "flex",
      "flex-wrap": "wrap",
      "justify-content": "space-between",
      gap: "6.4px 22.4px",
    },
  ],
  ["footer b", { color: "--ink-soft", "font-weight": "700" }],
];

const BADGE = {
  "border-radius": "999px",
  display: "inline-flex",
  "font-family": "--font-display",
  "font-size": "10.5px",
  "font-weight": "700",
  gap: "3.675px",
  padding: "4.8px 10.4px",
};

/** Holds on a page with errored, failed and passed reports and other files, one table paged. */
export const FULL_PAGE_LAYOUT = [
  [".kpi.verdict", { "background-color": "--fail", "border-top-color": "--fail" }],
  [
    ".card-head .sub",
    { color: "--muted", "font-family": "--font-body", "font-size": "11.5px" },
  ],
  [".badge.fail", { ...BADGE, color: "--fail", "background-color": "--fail-soft" }],
  [".badge.pass", { ...BADGE, color: "--pass", "background-color": "--pass-soft" }],
  ["table.dt-numbered td:nth-child(1)", { ...CELL, color: "--muted", "text-align": "left" }],
  ["table.dt-numbered th:nth-child(1)", { color: "--muted", "text-align": "left" }],
  ["table.dt-numbered th:nth-child(2)", { "text-align": "left" }],
  ["table.dt-numbered th:nth-child(3)", { "text-align": "left" }],
  ["table[data-page-size] th:nth-child(4)", { ...CELL, "text-align": "right" }],
  ["table[data-page-size] th:nth-child(5)", { ...CELL, "text-align": "right" }],
  ["table.dt-numbered td:nth-child(2)", { ...CELL, "text-align": "left" }],
  ["table.dt-numbered td:nth-child(3)", { ...CELL, "text-align": "left" }],
  ["table[data-page-size] td:nth-child(4)", { ...CELL, "text-align": "right" }],
  ["table[data-page-size] td:nth-child(5)", { ...CELL, "text-align": "right" }],
  ["table[data-page-size] td:nth-child(1)", { color: "--muted", "text-align": "left" }],
  ["table.dt a", { color: "--accent" }],
  [
    "#other-files tr:last-child td",
    { "text-align": "left", "border-bottom-style": "none", "border-bottom-width": "0px" },
  ],
  ["#other-files tr:nth-child(2) td", { ...CELL, "text-align": "left" }],
  [
    "table[data-page-size] tbody tr:last-child td",
    { "border-bottom-style": "none", "border-bottom-width": "0px" },
  ],
  [
    ".dt-pager",
    {
      display: "flex",
      "align-items": "center",
      "justify-content": "center",
      "font-family": "--font-display",
      gap: "12px",
      padding: "12px 0px 2.4px",
    },
  ],
  [
    ".dt-pager [data-dt-next]",
    {
      ...BOX,
      color: "--ink-soft",
      "border-radius": "8px",
      "font-family": "--font-display",
      "font-size": "11px",
      "font-weight": "600",
      opacity: "1",
      padding: "6.4px 14.4px",
    },
  ],
  [".dt-pager [data-dt-prev]", { cursor: "default", opacity: "0.4" }],
  [
    ".dt-pager-status",
    { color: "--muted", "font-size": "11px", "font-variant-numeric": "tabular-nums" },
  ],
];

/** The round dot that leads a badge. */
export const DOTS = [
  [".badge.fail", { width: "6px", height: "6px", "background-color": "--fail" }],
  [".badge.pass", { width: "6px", height: "6px", "background-color": "--pass" }],
];

/** Holds on a page whose suite passed. */
export const PASSED_PAGE_LAYOUT = [
  [
    ".kpi.verdict.ok",
    {
      "background-color": "--pass",
      "border-top-color": "--pass",
      "border-left-color": "--pass",
      "border-bottom-color": "--pass",
      "border-right-color": "--pass",
    },
  ],
];
