// The walk that finds the files which may be reports: every entry below a folder
// that is not a folder itself and whose name ends in ".html" or ".htm", A to Z
// and a to z being the same.
//
// Order: depth first, as the directory listing returns the entries; a folder's
// files stand where the folder is met. Symbolic links are followed, to files and
// to folders, and loops are not detected: they end where a path grows longer than
// PATH_BUFFER_SIZE - 1 characters or the system refuses to follow more links.
// Hidden entries count like any other.
//
// Entries that cannot be examined (a dangling link) or whose path grows too long and
// folders that cannot be opened are skipped; that fails nothing. Where listings can be
// believed (listing_types.h), a plain file of a folder in which another entry could be
// examined is listed without a question of its own.

#pragma once

#include "core/progress.h"
#include "scan/file_list.h"

// Walks input_dir (as the user typed it) and appends each report's path, relative
// to input_dir with "/" between components, to the list. page_path may be null;
// if it names an existing file, every name of that file below input_dir is
// skipped, a hard link excepted. progress, where it is not null, is told after each entry
// how many files are listed.
// False: input_dir cannot be opened as a directory, or memory ran out; the list
// keeps what was appended and is the caller's to free.
[[nodiscard]] bool scan_reports(const char* input_dir, const char* page_path, FileList& list,
                                const Progress* progress = nullptr);

// The walk below one folder, whose entries are listed as prefix, "/" and their
// name (the name alone when prefix is empty). canonical_page is the page's
// canonical path, or null when nothing is to be skipped. A folder that cannot be
// opened lists nothing and gives true.
// False: memory ran out; the list keeps what was appended.
[[nodiscard]] bool scan_directory(const char* folder, const char* prefix,
                                  const char* canonical_page, FileList& list,
                                  const Progress* progress = nullptr);
