// A link made from a file name that begins like "javascript:" would run that name
// as a script. No such link is ever followed, by whichever button or key.
(function () {
  "use strict";

  // By hand: older browsers have no Element.closest.
  function enclosingLink(node) {
    while (node && !(node.nodeName.toLowerCase() === "a" && node.hasAttribute("href"))) {
      node = node.parentNode;
    }
    return node;
  }

  function stopScriptLink(event) {
    var link = enclosingLink(event.target);
    if (link && link.protocol === "javascript:") {
      event.preventDefault();
    }
  }

  document.addEventListener("click", stopScriptLink, true);
  document.addEventListener("auxclick", stopScriptLink, true);
})();

// Prev/Next paging of the tables that carry a page size. Each keeps its own page.
(function () {
  "use strict";

  var DEFAULT_PAGE_SIZE = 100;
  var ROWS_TOGETHER = 1000;
  var TEXT_NODE = 3;

  function hasClass(element, name) {
    return element.classList.contains(name);
  }

  function findPager(table) {
    var wrapper = table.parentElement;
    while (wrapper && !hasClass(wrapper, "overflow-x")) {
      wrapper = wrapper.parentElement;
    }
    var next = wrapper && wrapper.nextElementSibling;
    return next && hasClass(next, "dt-pager") ? next : null;
  }

  // A browser visits every node beside a row that it shows or hides. So the line breaks
  // between the rows go, and no body holds too many rows.
  function regroup(rows) {
    var body;
    var group;
    var count;

    function place(row) {
      var gap = row.nextSibling;
      if (row.parentNode !== body) {
        body = row.parentNode;
        group = body;
        count = 0;
      }
      if (gap && gap.nodeType === TEXT_NODE) {
        body.removeChild(gap);
      }
      if (count === ROWS_TOGETHER) {
        group = body.parentNode.insertBefore(document.createElement("tbody"), group.nextSibling);
        count = 0;
      }
      if (group !== body) {
        group.appendChild(row);
      }
      count += 1;
    }

    Array.prototype.forEach.call(rows, place);
  }

  function pageTable(table) {
    var pager = findPager(table);
    if (!pager) {
      return;
    }
    var previousButton = pager.querySelector("[data-dt-prev]");
    var nextButton = pager.querySelector("[data-dt-next]");
    var status = pager.querySelector(".dt-pager-status");

    var pageSize = parseInt(table.getAttribute("data-page-size"), 10) || DEFAULT_PAGE_SIZE;
    var rows = table.querySelectorAll("tbody tr");
    var pageCount = Math.max(1, Math.ceil(rows.length / pageSize));
    var currentPage = 0;

    function setHidden(begin, end, hidden) {
      for (var i = begin; i < Math.min(end, rows.length); i += 1) {
        rows[i].hidden = hidden;
      }
    }

    // Touches only the rows of the page that leaves and of the page that comes, so
    // a click costs the same in a table of any length.
    function showPage(page) {
      setHidden(currentPage * pageSize, (currentPage + 1) * pageSize, true);
      setHidden(page * pageSize, (page + 1) * pageSize, false);
      currentPage = page;
      previousButton.disabled = page === 0;
      nextButton.disabled = page === pageCount - 1;
      status.textContent = "Page " + (page + 1) + " of " + pageCount;
    }

    regroup(rows);
    setHidden(0, rows.length, true);
    showPage(0);

    // Last, so that no button works in a table that could not be paged.
    previousButton.addEventListener("click", function () {
      if (currentPage > 0) {
        showPage(currentPage - 1);
      }
    });
    nextButton.addEventListener("click", function () {
      if (currentPage < pageCount - 1) {
        showPage(currentPage + 1);
      }
    });
  }

  function showRow(row) {
    row.hidden = false;
  }

  // A table that cannot be paged keeps all its rows, and the others page as ever. What
  // went wrong is thrown again on its own, for the console.
  function tryToPageTable(table) {
    try {
      pageTable(table);
    } catch (error) {
      Array.prototype.forEach.call(table.querySelectorAll("tbody tr"), showRow);
      window.setTimeout(function () {
        throw error;
      });
    }
  }

  Array.prototype.forEach.call(document.querySelectorAll("table[data-page-size]"), tryToPageTable);

  // Takes away the styles by which the rows wait.
  function endWaiting(style) {
    var rules = style.sheet ? style.sheet.cssRules : [];
    for (var i = rules.length - 1; i >= 0; i -= 1) {
      if (rules[i].media && rules[i].media.mediaText.indexOf("scripting: enabled") >= 0) {
        style.sheet.deleteRule(i);
      }
    }
  }

  Array.prototype.forEach.call(document.querySelectorAll("style"), endWaiting);
})();
