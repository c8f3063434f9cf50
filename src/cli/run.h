// One run from a valid command line to the exit status: walk, read, tally, write.

#pragma once

#include "cli/command_line.h"
#include "core/read_ahead.h"
#include "report/report_entry.h"

// Does the whole job and prints its closing lines or its one error message.
// Returns the exit status: 1 when a report failed or errored, a file could not be read,
// or the page or the JSON file could not be written; else 0.
[[nodiscard]] int run_summary(const CommandLine& options);

// Reads the file at input_dir, "/" and relative_path into entry. A path that takes more
// than LONG_PATH_BUFFER_SIZE bytes with its NUL leaves an entry of kind Unreadable. Ahead
// is as read_analyze_report takes it.
void read_entry(const char* input_dir, const char* relative_path, ReportEntry& entry,
                ReadAhead* ahead = nullptr);
