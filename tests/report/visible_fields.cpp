#include "report/visible_fields.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

using Slots = char[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE];

template <std::size_t SIZE>
std::string text_in(const char (&field)[SIZE])
{
    return {field, strnlen(field, SIZE)};
}

Names names_in(const Slots& slots, std::uint64_t count)
{
    Names names;
    for (std::uint64_t i = 0; i < std::min(count, REPORT_MAX_CHECKS); ++i) {
        names.push_back(text_in(slots[i]));
    }
    return names;
}

bool are_within(const Names& names)
{
    return std::all_of(names.begin(), names.end(),
                       [](const std::string& name) { return name.size() < REPORT_TEXT_SIZE; });
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

ReadReport visible_fields(const ReportEntry& entry)
{
    return {entry.kind,
            entry.passed != 0,
            text_in(entry.analysis_mode),
            text_in(entry.analysis_mode_sub),
            names_in(entry.failed_checks, entry.failed_check_count),
            names_in(entry.non_gating_checks, entry.non_gating_check_count),
            text_in(entry.error)};
}

bool slots_untouched_from(const Slots& slots, std::uint64_t first)
{
    const std::string_view bytes(reinterpret_cast<const char*>(&slots), sizeof slots);
    const std::string_view rest =
        bytes.substr(std::min(first, REPORT_MAX_CHECKS) * REPORT_TEXT_SIZE);
    return rest.find_first_not_of(static_cast<char>(OLD_BYTE)) == std::string_view::npos;
}

std::string faults_of(const ReportEntry& entry)
{
    const ReadReport visible = visible_fields(entry);
    std::string faults;
    require(faults, static_cast<std::uint32_t>(entry.kind) <= 3, "kind is none");
    require(faults, entry.passed <= 1, "passed is neither 0 nor 1");
    require(faults, visible.analysis_mode.size() < REPORT_TEXT_SIZE, "mode does not end");
    require(faults, visible.analysis_mode_sub.size() < REPORT_TEXT_SIZE, "sub-mode does not end");
    require(faults, visible.error.size() < REPORT_ERROR_SIZE, "error does not end");
    require(faults, entry.failed_check_count <= REPORT_MAX_CHECKS, "too many failed checks");
    require(faults, entry.non_gating_check_count <= REPORT_MAX_CHECKS,
            "too many non-gating checks");
    require(faults, are_within(visible.failed_checks), "a failed check does not end");
    require(faults, are_within(visible.non_gating_checks), "a non-gating check does not end");
    require(faults, entry.passed == 0 || entry.failed_check_count == 0, "a pass has failed checks");
    require(faults, entry.kind == ReportKind::RunError || visible.error.empty(),
            "an error text without an error");
    // A pass was first read like a fail, so that its list of failed checks was in use.
    require(faults,
            entry.passed != 0 ||
                slots_untouched_from(entry.failed_checks, entry.failed_check_count),
            "unused slots of failed checks were written");
    require(faults, slots_untouched_from(entry.non_gating_checks, entry.non_gating_check_count),
            "unused slots of non-gating checks were written");
    if (entry.kind != ReportKind::Analyzed) {
        const ReadReport empty = {entry.kind, false, "", "", {}, {}, visible.error};
        require(faults, visible == empty, "not analyzed, but with a verdict, modes or checks");
    }
    return faults;
}
