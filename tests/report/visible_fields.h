// Looking at an entry as far as a consumer may, and judging the rest of it. Nothing here
// needs the test framework.

#pragma once

#include <cstdint>
#include <string>

#include "report/naive_scraper.h"
#include "report/report_entry.h"

// The byte that fills an entry before it is read into: a field that the reader ought to
// set and does not is then seen, and so is one that it ought to leave.
inline constexpr unsigned char OLD_BYTE = 0xaa;

// An entry with every byte OLD_BYTE.
ReportEntry old_entry();

// Texts and lists are taken up to the end of their fields at most.
ReadReport visible_fields(const ReportEntry& entry);

// Whether every byte of the slots from this one on is OLD_BYTE.
bool slots_untouched_from(const char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE],
                          std::uint64_t first);

// What does not hold of an entry that was read into an old_entry and ought to hold of
// every one, a line each: texts end within their fields, counts fit, unused slots are
// untouched, and the kinds other than Analyzed carry nothing of one.
std::string faults_of(const ReportEntry& entry);
