// One run from a valid command line to the exit status: walk, read, tally, write.

#pragma once

#include "cli/command_line.h"
#include "core/read_ahead.h"
#include "report/report_entry.h"

// Does the whole job and prints its closing lines or its one error message.
// Returns the exit status: 0 when the run got to its end and every report passed and every
// file could be read; else 1.
[[nodiscard]] int run_summary(const CommandLine& options);

// Reads the file at input_dir, "/" and relative_path into entry. A path that takes more
// than LONG_PATH_BUFFER_SIZE bytes with its NUL leaves an entry of kind Unreadable. ahead
// is what read_analyze_report takes.
void read_entry(const char* input_dir, const char* relative_path, ReportEntry& entry,
                ReadAhead* ahead = nullptr);
