// The fixed texts of every page. Their sources are the files beside this one
// (page_styles.css, theme_toggle.html, theme_script.js, pager_script.js), which
// the build turns into constants byte for byte.
//
// Each function appends one complete fragment. False: the buffer could not grow;
// nothing was appended.

#pragma once

#include "core/text_buffer.h"

// The style element of every page.
[[nodiscard]] bool append_page_styles(TextBuffer& buffer);

// The button that switches between light and dark, with its two icons.
[[nodiscard]] bool append_theme_toggle(TextBuffer& buffer);

// The script element that makes the button work and remembers the choice.
[[nodiscard]] bool append_theme_script(TextBuffer& buffer);

// The script that pages tables with data-page-size and stops links that would run one.
[[nodiscard]] bool append_pager_script(TextBuffer& buffer);
