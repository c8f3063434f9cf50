// What the tests of the report reader share: report fragments as analyze writes
// them, and reading into an entry whose memory held something else before.

#pragma once

#include <string>
#include <string_view>

#include "report/entry_comparison.h"
#include "report/report_entry.h"

inline constexpr char RELATIVE_PATH[] = "runs/a.html";

// The entry for a document in memory, or for a file. The test fails if the reader
// writes beside the entry or leaves an unsound one. The document is handed over in
// a block that ends with its NUL, so that a sanitizer sees any read beyond it.
ReportEntry scrape(std::string_view document);
ReportEntry read_report(const std::string& full_path);

// The test fails unless what holds for every entry holds.
void expect_sound(const ReportEntry& entry);

// The test fails unless the entry is of this kind and everything else in it empty.
void expect_empty(const ReportEntry& entry, ReportKind kind);

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
