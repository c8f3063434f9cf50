// The page's Results and Other Files sections: one row per scanned file.
//
// Every function that returns a bool gives false when memory runs out (the buffer
// cannot grow, or the sorted view cannot be allocated); the buffer then holds an
// unspecified part of the section and the page is to be abandoned.

#pragma once

#include <cstdint>

#include "core/text_buffer.h"
#include "summary/report_links.h"
#include "summary/summary_model.h"

// Rows that a table may have before it is paged: one more and it carries this
// number as data-page-size and is followed by a pager.
inline constexpr std::uint64_t TABLE_PAGE_SIZE = 100;

// Appends the Results section: the Errored and Failed tables where there are such
// reports, and always the Passed table. The counts must be those of the model's tally.
[[nodiscard]] bool append_results_section(TextBuffer& buffer, const SummaryModel& model,
                                          const char* output_path, std::uint64_t failed,
                                          std::uint64_t passed, std::uint64_t errored);

// Appends the Other Files section, or nothing at all when other is 0.
[[nodiscard]] bool append_other_files_section(TextBuffer& buffer, const SummaryModel& model,
                                              std::uint64_t other);

// Appends one table of the Analyzed entries in view (view_length references, in
// the order in which they are to stand) whose passed equals wanted_passed. Each
// row takes the next number from row_counter.
[[nodiscard]] bool append_report_table(TextBuffer& buffer, const ReportEntry* const* view,
                                       std::uint64_t view_length, std::uint8_t wanted_passed,
                                       const ResultsLinkContext& context,
                                       std::uint64_t& row_counter);
