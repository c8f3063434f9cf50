// The light/dark switch. The reader's choice is kept in localStorage; without one
// the page follows the system's colour scheme.
(function () {
  "use strict";

  var STORAGE_KEY = "fathomix-report-theme";
  var DARK_SCHEME = "(prefers-color-scheme: dark)";

  var root = document.documentElement;
  var button = document.getElementById("themeToggle");
  var sun = button.querySelector(".ti-sun");
  var moon = button.querySelector(".ti-moon");

  function isTheme(value) {
    return value === "dark" || value === "light";
  }

  // Some browsers refuse storage to pages opened from disk, by throwing. Such a
  // store counts as empty and the button still switches the open page.
  function storedTheme() {
    try {
      return window.localStorage.getItem(STORAGE_KEY);
    } catch (error) {
      return null;
    }
  }

  function storeTheme(theme) {
    try {
      window.localStorage.setItem(STORAGE_KEY, theme);
    } catch (error) {
      // The choice then lasts as long as the page is open.
    }
  }

  function systemPrefersDark() {
    return Boolean(window.matchMedia) && window.matchMedia(DARK_SCHEME).matches;
  }

  function effectiveTheme() {
    var chosen = root.getAttribute("data-theme");
    if (isTheme(chosen)) {
      return chosen;
    }
    return systemPrefersDark() ? "dark" : "light";
  }

  // The icon and the label name the theme that a click leads to.
  function updateButton() {
    var dark = effectiveTheme() === "dark";
    sun.style.display = dark ? "block" : "none";
    moon.style.display = dark ? "none" : "block";
    button.setAttribute("aria-label", dark ? "Switch to light theme" : "Switch to dark theme");
  }

  function switchTheme() {
    var next = effectiveTheme() === "dark" ? "light" : "dark";
    root.setAttribute("data-theme", next);
    storeTheme(next);
    updateButton();
  }

  // Any stored value, even one that was ignored at load, counts as a choice here.
  // It is asked for anew each time: another page may have stored one meanwhile.
  function onSystemChange() {
    if (storedTheme() === null) {
      updateButton();
    }
  }

  // Older browsers know the other name alone, and stand-ins of matchMedia neither.
  function followSystem(query) {
    if (query.addEventListener) {
      query.addEventListener("change", onSystemChange);
    } else if (query.addListener) {
      query.addListener(onSystemChange);
    }
  }

  var stored = storedTheme();
  if (isTheme(stored)) {
    root.setAttribute("data-theme", stored);
  }
  updateButton();

  button.addEventListener("click", switchTheme);
  if (window.matchMedia) {
    followSystem(window.matchMedia(DARK_SCHEME));
  }
})();
