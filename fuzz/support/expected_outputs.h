// What the page and the JSON of some entries hold, judged by what readers that know
// nothing of the writers find there (tests/support/read_back.h). Names, order, numbers
// and links are looked at; labels and markup have their exact tests elsewhere.

#pragma once

#include <span>
#include <string>
#include <string_view>

#include "report/report_entry.h"

struct ExpectedOutputs
{
    std::string_view input_dir;
    std::span<const ReportEntry> entries;
    // Canonical, or null when one of the two is not known.
    const char* scanned_directory;
    const char* output_folder;
    std::string generated; // the time as the page shows it
};

// Each ends the program on the first thing that is not what the entries make due.
void judge_page(std::string_view page, const ExpectedOutputs& expected);
void judge_json(std::string_view document, const ExpectedOutputs& expected);
