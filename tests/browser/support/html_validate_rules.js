// The rules of html-validate for the summary page: all that it recommends, apart from
// what the page's markup settles otherwise.

export const HTML_VALIDATE_CONFIG = {
  root: true,
  extends: ["html-validate:recommended"],
  rules: {
    // The doctype is written in lower case, which every parser takes.
    "doctype-style": "off",
    // A column of the table of errored reports and the notes in cells are styled in place.
    "no-inline-style": "off",
    // The table of other files has no body group; parsers add it.
    "prefer-tbody": "off",
  },
};

// File names are copied into links as they are, line feeds and control bytes included.
export const FOR_HOSTILE_NAMES = { "attribute-allowed-values": "off" };
