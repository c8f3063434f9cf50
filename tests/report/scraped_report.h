// What the tests of the report reader share: report fragments as analyze writes
// them, and reading into an entry whose memory held something else before.

#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "report/naive_scraper.h"
#include "report/report_entry.h"
#include "report/visible_fields.h"

inline constexpr char RELATIVE_PATH[] = "runs/a.html";

// What the reader makes of a document in memory, or of a file. The test fails if it
// leaves an unsound entry. The document is handed over in a block that ends with its
// NUL, so that a sanitizer sees any read beyond it.
ReadReport scrape(std::string_view document);
ReadReport read_report(const std::string& full_path);

// Of this kind, and everything else in it empty.
ReadReport empty_report(ReportKind kind);

// For messages of failed tests.
std::ostream& operator<<(std::ostream& out, const ReadReport& report);

std::string repeated(std::string_view text, std::uint64_t count);

// Lines of a report, each with its line feed.
std::string verdict(std::string_view word);
std::string run_error(std::string_view text);
std::string bar(std::string_view tabs);
std::string mode_figure(std::string_view mode, std::string_view sub_mode);
std::string passing_tab(std::string_view name);
std::string gating_tab(std::string_view name);
std::string non_gating_tab(std::string_view name);

// count tabs named prefix and a number from 1.
std::string gating_tabs(std::string_view prefix, int count);
std::string non_gating_tabs(std::string_view prefix, int count);

// "prefix1", "prefix2" and so on.
Names numbered(std::string_view prefix, int count);

Names together(Names first, const Names& second);
