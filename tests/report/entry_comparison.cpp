#include "report/entry_comparison.h"

#include <algorithm>
#include <cstring>

#include "report/document_generator.h"

namespace {

Names names_in(const char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE], std::uint64_t count)
{
    Names names;
    for (std::uint64_t i = 0; i < std::min(count, REPORT_MAX_CHECKS); ++i) {
        names.emplace_back(slots[i], strnlen(slots[i], REPORT_TEXT_SIZE));
    }
    return names;
}

bool ends_within(const char* field, std::uint64_t size)
{
    return std::memchr(field, '\0', size) != nullptr;
}

bool slots_end(const char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE], std::uint64_t count)
{
    for (std::uint64_t i = 0; i < std::min(count, REPORT_MAX_CHECKS); ++i) {
        if (!ends_within(slots[i], REPORT_TEXT_SIZE)) {
            return false;
        }
    }
    return true;
}

std::string shown(const Names& names)
{
    std::string text = std::to_string(names.size());
    for (const std::string& name : names) {
        text += " [" + printable(name) + "]";
    }
    return text;
}

void add_difference(std::string& differences, const char* field, const std::string& read,
                    const std::string& naive)
{
    if (read != naive) {
        differences += std::string(field) + ": read " + read + ", naive " + naive + "\n";
    }
}

template <std::size_t SIZE>
bool holds(const char (&field)[SIZE], const std::string& text)
{
    return text.size() < SIZE && std::memcmp(field, text.c_str(), text.size() + 1) == 0;
}

bool hold(const char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE], std::uint64_t count,
          const Names& names)
{
    if (count != names.size() || count > REPORT_MAX_CHECKS) {
        return false;
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!holds(slots[i], names[i])) {
            return false;
        }
    }
    return true;
}

void require(std::string& faults, bool holds, const char* what)
{
    if (!holds) {
        faults += std::string(what) + "\n";
    }
}

} // namespace

ReportEntry old_entry()
{
    ReportEntry entry;
    std::memset(&entry, OLD_BYTE, sizeof entry);
    return entry;
}

Names failed_names(const ReportEntry& entry)
{
    return names_in(entry.failed_checks, entry.failed_check_count);
}

Names non_gating_names(const ReportEntry& entry)
{
    return names_in(entry.non_gating_checks, entry.non_gating_check_count);
}

bool slots_untouched_from(const char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE],
                          std::uint64_t first)
{
    static const std::string untouched(sizeof slots, static_cast<char>(OLD_BYTE));
    const std::uint64_t used = std::min(first, REPORT_MAX_CHECKS) * REPORT_TEXT_SIZE;
    return std::memcmp(&slots[0][0] + used, untouched.data(), sizeof slots - used) == 0;
}

std::string faults_of(const ReportEntry& entry)
{
    std::string faults;
    const bool analyzed = entry.kind == ReportKind::Analyzed;
    require(faults, static_cast<std::uint32_t>(entry.kind) <= 3, "kind is none");
    require(faults, entry.passed <= 1, "passed is neither 0 nor 1");
    require(faults, ends_within(entry.analysis_mode, REPORT_TEXT_SIZE), "mode does not end");
    require(faults, ends_within(entry.analysis_mode_sub, REPORT_TEXT_SIZE),
            "sub-mode does not end");
    require(faults, ends_within(entry.error, REPORT_ERROR_SIZE), "error does not end");
    require(faults, entry.failed_check_count <= 16, "too many failed checks");
    require(faults, entry.non_gating_check_count <= 16, "too many non-gating checks");
    require(faults, slots_end(entry.failed_checks, entry.failed_check_count),
            "a failed check does not end");
    require(faults, slots_end(entry.non_gating_checks, entry.non_gating_check_count),
            "a non-gating check does not end");
    require(faults, entry.passed == 0 || entry.failed_check_count == 0, "a pass has failed checks");
    require(faults, entry.kind == ReportKind::RunError || entry.error[0] == '\0',
            "an error text without an error");
    require(faults, analyzed || entry.passed == 0, "passed, but not analyzed");
    require(faults, analyzed || entry.analysis_mode[0] == '\0', "a mode, but not analyzed");
    require(faults, analyzed || entry.analysis_mode_sub[0] == '\0', "a sub-mode, but not analyzed");
    require(faults, analyzed || entry.failed_check_count == 0, "failed checks, but not analyzed");
    require(faults, analyzed || entry.non_gating_check_count == 0,
            "non-gating checks, but not analyzed");
    return faults;
}

std::string differences(const ReportEntry& read, const NaiveEntry& naive)
{
    std::string found;
    add_difference(found, "kind", std::to_string(static_cast<std::uint32_t>(read.kind)),
                   std::to_string(static_cast<std::uint32_t>(naive.kind)));
    add_difference(found, "passed", std::to_string(read.passed), naive.passed ? "1" : "0");
    add_difference(found, "analysis_mode", printable(read.analysis_mode),
                   printable(naive.analysis_mode));
    add_difference(found, "analysis_mode_sub", printable(read.analysis_mode_sub),
                   printable(naive.analysis_mode_sub));
    add_difference(found, "failed_check_count", std::to_string(read.failed_check_count),
                   std::to_string(naive.failed_checks.size()));
    add_difference(found, "non_gating_check_count", std::to_string(read.non_gating_check_count),
                   std::to_string(naive.non_gating_checks.size()));
    add_difference(found, "failed_checks", shown(failed_names(read)), shown(naive.failed_checks));
    add_difference(found, "non_gating_checks", shown(non_gating_names(read)),
                   shown(naive.non_gating_checks));
    add_difference(found, "error", printable(read.error), printable(naive.error));
    if (read.passed == 0 && !slots_untouched_from(read.failed_checks, read.failed_check_count)) {
        found += "unused slots of failed_checks were written\n";
    }
    if (!slots_untouched_from(read.non_gating_checks, read.non_gating_check_count)) {
        found += "unused slots of non_gating_checks were written\n";
    }
    return found;
}

bool agree(const ReportEntry& read, const NaiveEntry& naive)
{
    return read.kind == naive.kind && read.passed == (naive.passed ? 1 : 0) &&
           holds(read.analysis_mode, naive.analysis_mode) &&
           holds(read.analysis_mode_sub, naive.analysis_mode_sub) &&
           hold(read.failed_checks, read.failed_check_count, naive.failed_checks) &&
           hold(read.non_gating_checks, read.non_gating_check_count, naive.non_gating_checks) &&
           holds(read.error, naive.error) &&
           (read.passed != 0 ||
            slots_untouched_from(read.failed_checks, read.failed_check_count)) &&
           slots_untouched_from(read.non_gating_checks, read.non_gating_check_count);
}
