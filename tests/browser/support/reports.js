// Reports as the analyzer writes them, as far as the program reads them.

function report(title, verdict, lines) {
  return [
    "<!doctype html>",
    '<meta charset="utf-8">',
    `<title>${title}</title>`,
    '<div class="k">Overall Verdict</div>',
    `<div class="v">${verdict}</div>`,
    ...lines,
    "",
  ].join("\n");
}

function modeLines(mode, subMode) {
  return [
    '<div class="k">Analysis Mode</div>',
    `<div class="v">${mode}</div>`,
    `<div class="kpi-sub">${subMode}</div>`,
  ];
}

function tabLines(failed, nonGating) {
  return [
    '<nav class="nav-tabs">',
    ...failed.map((name) => `<a href="#x" data-fail>${name}</a>`),
    ...nonGating.map((name) => `<a href="#x" data-fail data-nongating>${name}</a>`),
    "</nav>",
  ];
}

/** A report with a mode, a sub-mode and checks. */
export function analyzed(verdict, { title = "Report", mode, subMode, failed, nonGating } = {}) {
  return report(title, verdict, [
    ...modeLines(mode ?? "Stereo", subMode ?? "48 kHz"),
    ...tabLines(failed ?? [], nonGating ?? []),
  ]);
}

export const PASSED = analyzed("PASS", { nonGating: ["Crest factor"] });
export const FAILED = analyzed("FAIL", { failed: ["Noise floor", "THD+N"], nonGating: ["Dither"] });

/** A report of a run that ended in an error; the text is written as it is. */
export function errored(text) {
  return report("Errored run", "ERROR", [`<p class="run-error">${text}</p>`]);
}

export const OTHER_PAGE = "<!doctype html>\n<title>Release notes</title>\n";

function numbered(prefix, count, content) {
  return Array.from({ length: count }, (_, index) => [
    `${prefix}/case-${String(index + 1).padStart(5, "0")}.html`,
    content,
  ]);
}

/** The files of a suite with so many reports and other files of each kind. */
export function suite({ passed = 0, failed = 0, errors = 0, other = 0 }) {
  return [
    ...numbered("passed", passed, PASSED),
    ...numbered("failed", failed, FAILED),
    ...numbered("errored", errors, errored("The device was not found.")),
    ...numbered("other", other, OTHER_PAGE),
  ];
}
