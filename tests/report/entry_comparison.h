// Judging what the report reader made of a document: its own rules, and the second
// reading. Nothing here needs the test framework.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "report/naive_scraper.h"
#include "report/report_entry.h"

using Names = std::vector<std::string>;

// The byte that fills an entry before it is read into: a field that the reader
// ought to set and does not is then seen, and so is one that it ought to leave.
inline constexpr unsigned char OLD_BYTE = 0xaa;

// An entry with every byte OLD_BYTE.
ReportEntry old_entry();

// The names that count, in order.
Names failed_names(const ReportEntry& entry);
Names non_gating_names(const ReportEntry& entry);

// Whether every byte of the slots from this one on is OLD_BYTE.
bool slots_untouched_from(const char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE],
                          std::uint64_t first);

// What does not hold of an entry and ought to hold of every one, a line each: texts
// end within their fields, counts fit, and the kinds other than Analyzed carry
// nothing of one. Empty for a sound entry.
std::string faults_of(const ReportEntry& entry);

// In which fields the two readings of a document differ, a line each; read was made in
// an old_entry. Empty when they agree.
std::string differences(const ReportEntry& read, const NaiveEntry& naive);

// Whether differences would be empty, told much faster and without it.
bool agree(const ReportEntry& read, const NaiveEntry& naive);
