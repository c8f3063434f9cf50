// What one scanned file turned out to be.
//
// A ReportEntry is a plain record of fixed size that owns nothing. After
// read_analyze_report has filled it:
//   - every text is NUL-terminated within its field; texts too long for it were
//     cut, perhaps inside a UTF-8 character;
//   - only the first failed_check_count slots of failed_checks and the first
//     non_gating_check_count slots of non_gating_checks hold names, the others
//     are uninitialised memory that nobody may read;
//   - names that came after either list was full were neither kept nor counted;
//   - failed_check_count is 0 when passed is 1;
//   - for every kind but Analyzed, passed is 0, both modes are empty and both
//     counts are 0;
//   - error is empty for every kind but RunError, and may be empty there too.

#pragma once

#include <cstdint>

// Bytes of a name or mode field, its NUL included.
inline constexpr std::uint64_t REPORT_TEXT_SIZE = 40;

// Names that each list of checks can hold.
inline constexpr std::uint64_t REPORT_MAX_CHECKS = 16;

// Bytes of the error field, its NUL included.
inline constexpr std::uint64_t REPORT_ERROR_SIZE = 640;

enum class ReportKind : std::uint32_t
{
    Analyzed = 0,         // a report with a verdict: PASS when passed is 1, else FAIL
    NotAnalyzeReport = 1, // read, but it shows no overall verdict: some other page
    Unreadable = 2,       // could not be read
    RunError = 3,         // a report of a run that itself ended in an error
};

struct ReportEntry
{
    const char* relative_path; // not owned: points into the FileList of the run
    ReportKind kind;
    std::uint8_t passed; // 0 or 1
    char analysis_mode[REPORT_TEXT_SIZE];
    char analysis_mode_sub[REPORT_TEXT_SIZE];                // the line below the mode
    char failed_checks[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE]; // these gate the verdict
    std::uint64_t failed_check_count;
    char non_gating_checks[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE]; // these do not
    std::uint64_t non_gating_check_count;
    char error[REPORT_ERROR_SIZE]; // character references decoded
};

// What an entry came to. Whoever tells all of them apart does it in a switch without
// default, so that the compiler finds the places to which a new one matters.
enum class Outcome
{
    Passed,
    Failed,
    Errored,    // the run that it reports on ended in an error
    NoReport,   // some other page, or an unknown kind
    Unreadable, // could not be read
};

[[nodiscard]] Outcome outcome_of(const ReportEntry& entry);
