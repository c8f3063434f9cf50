// Which elements and attributes a page consists of, whatever texts it shows.

/**
 * How often each kind of element occurs: its ancestors, its name and its attributes.
 * The targets of links are left out; they are data.
 */
export function inventory(page) {
  return page.evaluate(() => {
    const counts = {};
    for (const element of document.querySelectorAll("*")) {
      const attributes = [...element.attributes]
        .map(({ name, value }) => (name === "href" ? name : `${name}=${value}`))
        .sort();
      const path = [];
      for (let part = element; part; part = part.parentElement) {
        path.unshift(part.localName);
      }
      const kind = [path.join(">"), ...attributes].join(" ");
      counts[kind] = (counts[kind] ?? 0) + 1;
    }
    return counts;
  });
}

/** Everything in the document that is neither an element nor a text. */
export function otherNodes(page) {
  return page.evaluate(() => {
    const found = [];
    const walker = document.createTreeWalker(document, NodeFilter.SHOW_ALL);
    while (walker.nextNode()) {
      const { nodeType, nodeName } = walker.currentNode;
      if (nodeType !== Node.ELEMENT_NODE && nodeType !== Node.TEXT_NODE) {
        found.push(nodeName);
      }
    }
    return found;
  });
}
