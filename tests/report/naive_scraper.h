// A second reading of analyze reports: the same results as scrape_analyze_report,
// reached by plain loops over strings and with nothing of the scraper's own code.
// It is slow and short, so that it can be checked by eye.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report/report_entry.h"

struct NaiveEntry
{
    ReportKind kind = ReportKind::NotAnalyzeReport;
    bool passed = false;
    std::string analysis_mode;
    std::string analysis_mode_sub;
    std::vector<std::string> failed_checks;
    std::vector<std::string> non_gating_checks;
    std::string error;

    // What the entry does not tell and the tests want to know.
    std::uint64_t moved_names = 0;   // gating names of a PASS that became non-gating
    std::uint64_t dropped_names = 0; // gating names of a PASS that found no room
};

// Reads the bytes of a report file; those from the first NUL on do not count.
NaiveEntry naive_scrape(const std::string& file);
