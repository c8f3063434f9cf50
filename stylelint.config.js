// The palette and the listed values of the page's stylesheet are fixed to the
// letter, so the rules about notation follow it instead of the other way round.

// Colours outside the palette blocks are taken through custom properties. The
// white text on the verdict tile is the one exception; a border may be transparent.
const SYSTEM_AND_NAMED_COLOURS = /(^|[\s,(])(black|white|red|green|blue|gr[ae]y|silver|orange|yellow|canvas|canvastext|linktext|buttontext|buttonface)($|[\s,)])/i;

const NO_LITERAL_COLOURS = {
  "/^(?!--)/": [
    /#(?!fff$)[0-9a-f]/i,
    /rgba?\((?!255,255,255,0\.75\))/i,
    /(hsl|hwb|lab|lch|oklab|oklch|color|color-mix)a?\(/i,
    SYSTEM_AND_NAMED_COLOURS,
  ],
  "/^(?!--|border)/": [/\btransparent\b/i],
};

export default {
  extends: "stylelint-config-standard",
  reportDescriptionlessDisables: true,
  reportInvalidScopeDisables: true,
  reportNeedlessDisables: true,
  rules: {
    "declaration-property-value-disallowed-list": [
      NO_LITERAL_COLOURS,
      { message: "Take colours through the palette's custom properties" },
    ],
    "selector-max-id": 0,
    "max-nesting-depth": 0,

    // The palette writes rgba(20, 30, 40, 0.06), with commas and a number for alpha.
    "alpha-value-notation": "number",
    "color-function-alias-notation": "with-alpha",
    "color-function-notation": "legacy",

    // The palette writes #ffffff, the verdict tile #fff.
    "color-hex-length": null,

    // Media queries are written (max-width: 720px), as older browsers read them.
    "media-feature-range-notation": "prefix",

    // Names of fonts keep their case.
    "value-keyword-case": [
      "lower",
      { ignoreKeywords: ["BlinkMacSystemFont", "Menlo"], camelCaseSvgKeywords: true },
    ],

    // The rule compares by the last part of a selector alone, so it also flags
    // components that share no element, such as ".tile .v" after ".kpi.verdict .v".
    "no-descending-specificity": null,

    // !important has two uses: no motion for those who asked, every row on paper.
    "declaration-no-important": null,
  },
  overrides: [
    {
      // Its two lines are fixed to the letter.
      files: "src/summary/errored_grid_styles.css",
      rules: { "at-rule-empty-line-before": null },
    },
  ],
};
