// A second reader of reports, which the report reader is compared with on documents that
// nobody wrote an expectation for. It copies where the reader points, has neither fields
// nor limits until the end, and shares no line with it.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "report/report_entry.h"

using Names = std::vector<std::string>;

// What a consumer may read of an entry.
struct ReadReport
{
    ReportKind kind = ReportKind::NotAnalyzeReport;
    bool passed = false;
    std::string analysis_mode;
    std::string analysis_mode_sub;
    Names failed_checks;
    Names non_gating_checks;
    std::string error;

    bool operator==(const ReadReport&) const = default;
};

// What a file of these bytes ought to be read as.
ReadReport naive_scrape(std::string_view file);

// text with the five references replaced by their characters, in one pass.
std::string naive_decoded(std::string text);
