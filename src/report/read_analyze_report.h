// The scraper that turns one report file into a ReportEntry. It looks for a
// handful of exact byte sequences and never parses HTML, so whatever a file
// holds, it ends as one of the four kinds.

#pragma once

#include "core/read_ahead.h"
#include "report/report_entry.h"

// Reads the file at full_path and fills every field of entry that a consumer may
// read; what entry held before does not matter. relative_path is stored as it is,
// not copied, and must outlive the entry. A file that cannot be read gives
// ReportKind::Unreadable. Where ahead is not null, it reads the file, which must be the
// next one of those that it was given.
void read_analyze_report(const char* full_path, const char* relative_path, ReportEntry& entry,
                         ReadAhead* ahead = nullptr);

// The same for a document that is already in memory: a NUL-terminated text, of
// which nothing is kept. Never gives ReportKind::Unreadable.
void scrape_analyze_report(const char* document, const char* relative_path, ReportEntry& entry);
