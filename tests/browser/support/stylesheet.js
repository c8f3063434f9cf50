// The page's stylesheet as the browser understood it.

/** The rules of the first style element: a list of {selector, media, declarations}, in order, keyframes left out. */
export function readRules(page, element = 0) {
  return page.evaluate((index) => {
    const rules = [];
    function collect(list, media) {
      for (const rule of list) {
        if (rule instanceof CSSMediaRule) {
          collect(rule.cssRules, [...media, rule.media.mediaText]);
        } else if (rule.style) {
          const declarations = [...rule.style].map((name) => [
            name,
            rule.style.getPropertyValue(name),
            rule.style.getPropertyPriority(name),
          ]);
          const text = rule.style.cssText;
          rules.push({ selector: rule.selectorText, media, declarations, text });
        }
      }
    }
    collect(document.styleSheets[index].cssRules, []);
    return rules;
  }, element);
}

/** The declarations of a rule as pairs of a property and a value, shorthands kept together. */
export function written(rule) {
  return rule.text
    .split(";")
    .map((part) => part.trim())
    .filter(Boolean)
    .map((part) => {
      const colon = part.indexOf(":");
      return [part.slice(0, colon).trim(), part.slice(colon + 1).trim()];
    });
}

/** The selectors of a rule, one by one. */
export function selectorsOf(rule) {
  return rule.selector.split(",").map((selector) => selector.trim());
}
