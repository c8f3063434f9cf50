// A page in whatever browser runs the tests: what a reader can do and what is looked at.
// Each browser's own file gives the few actions that this is made of.

import { setTimeout as pause } from "node:timers/promises";
import { pathToFileURL } from "node:url";

const BETWEEN_LOOKS_MS = 5;

function call(run, parameters) {
  const source = typeof run === "string" ? run : `(${run})(...${JSON.stringify(parameters)})`;
  return source.replaceAll("\u2028", "\\u2028").replaceAll("\u2029", "\\u2029");
}

export class Page {
  /** Whether the mouse was brought into the page. */
  hasMouse = false;

  /** What the page did so far: seen.errors (console and dialogs as well) and seen.requests. */
  constructor(tab, seen, patience) {
    Object.assign(this, { tab, seen, patience });
  }

  /** Opens a file or a URL and waits for its load event or, until "start", for nothing. */
  open(target, { until = "load" } = {}) {
    const url = target.startsWith("/") ? pathToFileURL(target).href : target;
    return this.tab.open(url, { until });
  }

  reload() {
    return this.tab.reload();
  }

  /** Forgets the errors and requests so far: they were meant. */
  async forget() {
    await this.tab.collect?.();
    this.seen.errors.length = 0;
    this.seen.requests.length = 0;
  }

  /** Runs a function, or the text of an expression, in the page; gives what JSON can hold. */
  evaluate(run, ...parameters) {
    return this.tab.evaluate(call(run, parameters));
  }

  /** Waits until the function gives something true in the page, which may be a new one. */
  async until(run, ...parameters) {
    const end = Date.now() + this.patience;
    for (;;) {
      const value = await this.evaluate(run, ...parameters).catch((error) => {
        if (Date.now() > end) {
          throw error;
        }
      });
      if (value) {
        return value;
      }
      if (Date.now() > end) {
        throw new Error(`never came true: ${run}`);
      }
      await pause(BETWEEN_LOOKS_MS);
    }
  }

  /** Runs a function on the list of elements that match. */
  $$eval(selector, run, ...parameters) {
    const list = `[...document.querySelectorAll(${JSON.stringify(selector)})]`;
    return this.evaluate(`(${run})(${list}, ...${call(JSON.stringify(parameters))})`);
  }

  /** Runs a function on one of the elements that match, which must be there. */
  $eval(selector, run, index = 0) {
    return this.$$eval(
      selector,
      `(all) => {
        if (!all[${index}]) throw new Error("nothing matches " + ${JSON.stringify(selector)});
        return (${run})(all[${index}]);
      }`,
    );
  }

  count(selector) {
    return this.$$eval(selector, (all) => all.length);
  }

  /** How many of the elements that match take up room. */
  countVisible(selector) {
    return this.$$eval(selector, (all) => all.filter((e) => e.getClientRects().length > 0).length);
  }

  text(selector, index) {
    return this.$eval(selector, (element) => element.textContent, index);
  }

  attribute(selector, name) {
    return this.$eval(selector, `(element) => element.getAttribute(${JSON.stringify(name)})`);
  }

  /** Computed values of an element, or of its pseudo-element, by property name. */
  async computed(selector, names, pseudo) {
    const [values] = await this.computedAll([[selector, names]], pseudo);
    return values;
  }

  /** The same of several elements in one answer: a list of [selector, names] gives a list. */
  computedAll(wanted, pseudo = null) {
    return this.evaluate(
      (list, part) =>
        list.map(([selector, names]) => {
          const element = document.querySelector(selector);
          if (!element) {
            throw new Error(`nothing matches ${selector}`);
          }
          const style = getComputedStyle(element, part);
          return Object.fromEntries(names.map((name) => [name, style.getPropertyValue(name)]));
        }),
      wanted,
      pseudo,
    );
  }

  /** Left, top, width and height in the window. */
  box(selector, index) {
    return this.$eval(
      selector,
      (element) => {
        const { left, top, width, height } = element.getBoundingClientRect();
        return { left, top, width, height };
      },
      index,
    );
  }

  focus(selector, index) {
    return this.$eval(selector, (element) => element.focus(), index);
  }

  /** Scrolls to an element and gives a point in it at which nothing lies above it. */
  #pointIn(selector, index) {
    return this.$eval(
      selector,
      (element) => {
        element.scrollIntoView({ block: "nearest", inline: "nearest", behavior: "instant" });
        const [{ left, top, width, height }] = element.getClientRects();
        const point = [Math.floor(left + width / 2), Math.floor(top + height / 2)];
        const above = document.elementFromPoint(...point);
        if (!above || !(element.contains(above) || above.contains(element))) {
          throw new Error(`${element.outerHTML} is covered by ${above && above.outerHTML}`);
        }
        return point;
      },
      index,
    );
  }

  /** Presses a mouse button on an element: { index, button, count, modifiers }. */
  async click(selector, { index = 0, button = "left", count = 1, modifiers = [] } = {}) {
    const [x, y] = await this.#pointIn(selector, index);
    this.hasMouse = true;
    await this.tab.click(x, y, { button, count, modifiers });
  }

  async hover(selector) {
    await this.moveMouse(...(await this.#pointIn(selector, 0)));
  }

  moveMouse(x, y) {
    this.hasMouse = true;
    return this.tab.moveMouse(x, y);
  }

  /** Presses a key so many times: "Tab", "Shift+Tab", "Enter", "Space", "Control+Enter", ... */
  press(keys, times = 1) {
    return this.tab.press(keys.split("+"), times);
  }

  resize(width, height = 800) {
    return this.tab.resize({ width, height });
  }

  /** Changes colorScheme ("dark"), reducedMotion ("reduce") or media ("print", "screen"). */
  setMedia(changes) {
    return this.tab.setMedia(changes);
  }

  /** What the window shows, as a PNG. */
  screenshot() {
    return this.tab.screenshot();
  }

  /** The page as it is printed, as a PDF. */
  pdf() {
    return this.tab.pdf();
  }

  /** How many tabs and windows the test has open. */
  tabCount() {
    return this.tab.tabCount();
  }
}
