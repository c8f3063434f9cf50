// The links from the page to the reports.

#pragma once

#include <string_view>

#include "core/paths.h"
#include "core/text_buffer.h"
#include "report/report_entry.h"

// Where links start and end, resolved once per page.
struct ResultsLinkContext
{
    bool links_relative; // both paths below are valid; else a link is the bare relative_path
    char scanned_directory[PATH_BUFFER_SIZE]; // canonical
    char output_folder[PATH_BUFFER_SIZE];     // canonical
};

// Fills the context from the directory as typed and the page's path as typed. A
// path that cannot be resolved clears links_relative; that is not an error.
void make_results_link_context(const char* input_dir, std::string_view output_path,
                               ResultsLinkContext& context);

// Appends the text of the report's link, fit for an attribute value: the way from
// the output folder to the report, or, where that cannot be told, its bare
// relative_path.
// False: the buffer could not grow; the page is to be abandoned.
[[nodiscard]] bool append_link_target(TextBuffer& buffer, const ReportEntry& entry,
                                      const ResultsLinkContext& context);
