// What both writers are given, and the one tally that page, JSON and closing line
// share.

#pragma once

#include <cstdint>

#include "report/report_entry.h"

// Borrowed, read-only view of a finished reading run.
struct SummaryModel
{
    const char* input_dir;      // the scanned directory exactly as the user typed it
    const ReportEntry* entries; // one per scanned file, in the order of the walk; null when none
    std::uint64_t count;        // number of entries
    const char* version;        // the program's version text
};

// How many entries there are of each outcome.
struct SummaryTally
{
    std::uint64_t passed;
    std::uint64_t failed;
    std::uint64_t errored;
    std::uint64_t other; // NoReport and Unreadable: scanned, but no readable report
};

// Counts in one pass.
SummaryTally tally_entries(const ReportEntry* entries, std::uint64_t count);

// Reports in all: passed, failed and errored. Other files are no reports.
std::uint64_t total_reports(const SummaryTally& tally);

// Whether an entry is a report (it has a verdict or an error) rather than one of
// the other files.
bool is_report(const ReportEntry& entry);
