// Entries made from an input: any that a reading run can leave, and nothing that it
// cannot.

#pragma once

#include <span>

#include "report/report_entry.h"
#include "support/input.h"

// More rows than a table may have before it is paged, and some.
inline constexpr std::size_t MOST_ENTRIES = 160;

// Takes a text: its length, and its short form. Cut at its first NUL, and to most bytes,
// which text has room for with a NUL. Its length is returned.
std::size_t take_text(Input& input, char* text, std::size_t most);

// Takes entries until the input is used up or no room is left; they stay valid until the
// next call. No two have the same path. What nobody may read (slots that do not count,
// bytes behind a text's NUL) holds no NUL, so that whoever reads it shows it.
std::span<const ReportEntry> take_entries(Input& input);
