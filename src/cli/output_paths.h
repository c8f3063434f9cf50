// Where the output goes: the folders above the page, and the JSON file beside it.

#pragma once

#include <cstdint>
#include <string_view>

// Creates the missing folders above page_path, level by level; "/" and "\" both
// end a level here. path_buffer is scratch space of LONG_PATH_BUFFER_SIZE bytes.
// False: page_path has PATH_BUFFER_SIZE characters or more, or a folder cannot be
// created; the folders above that one stay.
[[nodiscard]] bool create_page_folders(std::string_view page_path, char* path_buffer);

// Writes the JSON path and its NUL to path_buffer (LONG_PATH_BUFFER_SIZE bytes):
// page_path with a final ".html", ".HTML", ".htm" or ".HTM" replaced by ".json",
// or with ".json" appended. page_path must have fewer than PATH_BUFFER_SIZE
// characters.
void make_json_path(std::string_view page_path, char* path_buffer);
