// Where the output goes: the folders above the page, and the JSON file beside it.

#pragma once

#include <string_view>

#include "core/bounded_text.h"

// Creates the missing folders above page_path, level by level; "/" and "\" both
// end a level here.
// False: page_path has PATH_BUFFER_SIZE characters or more, or a folder cannot be
// created; the folders above that one stay.
[[nodiscard]] bool create_page_folders(std::string_view page_path);

// Appends to json_path, which holds no text yet, the path of the JSON file: page_path
// with a final ".html", ".HTML", ".htm" or ".HTM" replaced by ".json", or with ".json"
// appended.
// False: it does not fit; LONG_PATH_BUFFER_SIZE bytes are enough for every page that
// create_page_folders takes.
[[nodiscard]] bool append_json_path(BoundedText& json_path, std::string_view page_path);
