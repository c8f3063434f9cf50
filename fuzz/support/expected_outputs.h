// What the page and the JSON of some entries hold, checked with readers of their own.

#pragma once

#include <span>
#include <string_view>

#include "report/report_entry.h"

struct ExpectedOutputs
{
    std::string_view input_dir;
    std::span<const ReportEntry> entries;
    // Canonical, or null when one of the two is not known.
    const char* scanned_directory;
    const char* output_folder;
    std::string_view generated; // the time as the page shows it
};

// Fails on the first thing in the page that is not what the entries make due.
void judge_page(std::string_view page, const ExpectedOutputs& expected);

void judge_json(std::string_view document, const ExpectedOutputs& expected);
