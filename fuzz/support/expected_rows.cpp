#include "support/expected_rows.h"

#include <algorithm>
#include <array>

#include "support/naive_paths.h"
#include "support/require.h"

namespace {

constexpr std::string_view DASH = "\xe2\x80\x94";
constexpr std::string_view SIDE_NOTE = " style=\"color:var(--muted);font-size:0.85em\"";

constexpr std::size_t LONG_PATH = 8192;

void judge_link_target(PageReader& page, std::string_view relative_path,
                       const ExpectedOutputs& expected)
{
    static std::array<char, NAIVE_LINK_SIZE> link;
    static Line joined;
    if (expected.output_folder != nullptr && expected.scanned_directory != nullptr) {
        joined.length = 0;
        joined.add(expected.scanned_directory);
        joined.add("/");
        joined.add(relative_path);
        const std::size_t length =
            joined.length < LONG_PATH
                ? naive_relative_link(expected.output_folder, joined.view(), link)
                : LONG_PATH;
        if (length < LONG_PATH) {
            page.open_link({link.data(), length});
            return;
        }
    }
    page.open_link(relative_path);
}

std::string_view shown_name(std::string_view path)
{
    const std::size_t dot = path.rfind('.');
    const std::string_view ending = dot == path.npos ? "" : path.substr(dot);
    const bool is_dropped = ending == ".html" || ending == ".htm";
    return path.substr(0, std::min<std::size_t>(is_dropped ? dot : path.size(), 4095));
}

void judge_mode_cell(PageReader& page, const ReportEntry& entry)
{
    const std::string_view mode = entry.analysis_mode;
    const std::string_view sub_mode = entry.analysis_mode_sub;
    page.open("td");
    if (mode.empty()) {
        page.text(DASH);
    } else if (sub_mode.empty()) {
        page.text(mode);
    } else {
        Line line;
        line.add(mode);
        line.add(" ");
        page.text(line.view());
        line.length = 0;
        line.add("\xc2\xb7 ");
        line.add(sub_mode);
        page.element("span", SIDE_NOTE, line.view());
    }
    page.close("td");
}

void add_names(Line& line, const char (&slots)[REPORT_MAX_CHECKS][REPORT_TEXT_SIZE],
               std::uint64_t names)
{
    for (std::uint64_t slot = 0; slot < names; ++slot) {
        line.add(slot > 0 ? ", " : "");
        line.add(slots[slot]);
    }
}

void judge_checks_cell(PageReader& page, const ReportEntry& entry)
{
    page.open("td");
    Line line;
    if (entry.failed_check_count == 0 && entry.non_gating_check_count == 0) {
        line.add(DASH);
    }
    add_names(line, entry.failed_checks, entry.failed_check_count);
    page.text(line.view());
    if (entry.non_gating_check_count > 0) {
        if (entry.failed_check_count > 0) {
            page.open("br");
        }
        line.length = 0;
        line.add("Not gating: ");
        add_names(line, entry.non_gating_checks, entry.non_gating_check_count);
        page.element("span", SIDE_NOTE, line.view());
    }
    page.close("td");
}

} // namespace

void judge_row(PageReader& page, const ReportEntry& entry, std::uint64_t number,
               const ExpectedOutputs& expected)
{
    page.open("tr");
    page.open("td");
    number_text(page, number);
    page.close("td");
    page.open("td");
    judge_link_target(page, entry.relative_path, expected);
    page.path(shown_name(entry.relative_path));
    page.close("a");
    page.close("td");
    const bool errored = entry.kind == ReportKind::RunError;
    const bool passed = entry.passed == 1;
    if (!errored) {
        judge_mode_cell(page, entry);
    }
    page.open("td");
    page.element("span", passed ? " class=\"badge pass\"" : " class=\"badge fail\"",
                 errored ? "ERROR" : (passed ? "PASS" : "FAIL"));
    page.close("td");
    if (errored) {
        const std::string_view error = entry.error;
        page.element("td", LEFT_ALIGNED, error.empty() ? DASH : error);
    } else {
        judge_checks_cell(page, entry);
    }
    page.close("tr");
}
