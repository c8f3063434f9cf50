#include <algorithm>
#include <array>

#include "support/expected_outputs.h"
#include "support/expected_rows.h"
#include "support/require.h"

namespace {

struct Counts
{
    std::uint64_t passed = 0;
    std::uint64_t failed = 0;
    std::uint64_t errored = 0;
    std::uint64_t other = 0;
};

Counts count(std::span<const ReportEntry> entries)
{
    Counts counts;
    for (const ReportEntry& entry : entries) {
        switch (entry.kind) {
        case ReportKind::Analyzed:
            ++(entry.passed == 1 ? counts.passed : counts.failed);
            break;
        case ReportKind::RunError:
            ++counts.errored;
            break;
        case ReportKind::NotAnalyzeReport:
        case ReportKind::Unreadable:
            ++counts.other;
            break;
        }
    }
    return counts;
}

void judge_tile(PageReader& page, std::string_view label, std::uint64_t number)
{
    page.open("div", " class=\"kpi\"");
    page.element("div", " class=\"k\"", label);
    page.open("div", " class=\"v\"");
    number_text(page, number);
    page.close("div");
    page.close("div");
}

void judge_grid(PageReader& page, const Counts& counts)
{
    const bool has_errors = counts.errored > 0;
    const bool fails = counts.failed > 0 || has_errors || counts.other > 0;
    page.open("div", has_errors ? " class=\"kpi-grid with-errored\"" : " class=\"kpi-grid\"");
    judge_tile(page, "Total Reports", counts.passed + counts.failed + counts.errored);
    judge_tile(page, "Passed", counts.passed);
    judge_tile(page, "Failed", counts.failed);
    if (has_errors) {
        judge_tile(page, "Errored", counts.errored);
    }
    page.open("div", fails ? " class=\"kpi verdict\"" : " class=\"kpi verdict ok\"");
    page.element("div", " class=\"k\"", "Suite Verdict");
    page.element("div", " class=\"v\"", fails ? "FAIL" : "PASS");
    page.close("div");
    page.close("div");
}

void judge_header(PageReader& page, bool errored)
{
    page.open("thead");
    page.open("tr");
    page.element("th", {}, "#");
    page.element("th", {}, "Test Case");
    if (!errored) {
        page.element("th", {}, "Analysis Mode");
    }
    page.element("th", {}, "Verdict");
    page.element("th", errored ? LEFT_ALIGNED : "", errored ? "Reason" : "Failed Checks");
    page.close("tr");
    page.close("thead");
}

void judge_pager(PageReader& page)
{
    page.open("div", " class=\"dt-pager\"");
    page.element("button", " type=\"button\" data-dt-prev", "Prev");
    page.element("span", " class=\"dt-pager-status\"", "");
    page.element("button", " type=\"button\" data-dt-next", "Next");
    page.close("div");
}

using Rows = std::span<const ReportEntry* const>;

// The rows' numbers go on from number, which is left at the last one.
void judge_table(PageReader& page, std::string_view title, Rows rows, std::uint64_t& number,
                 const ExpectedOutputs& expected)
{
    const bool is_paged = rows.size() > 100;
    page.element("p", " class=\"compare-table-title\"", title);
    page.open("div", " class=\"overflow-x\"");
    page.open("table", is_paged ? " class=\"dt dt-numbered\" data-page-size=\"100\""
                                : " class=\"dt dt-numbered\"");
    judge_header(page, title == "Errored");
    page.open("tbody");
    for (const ReportEntry* entry : rows) {
        judge_row(page, *entry, ++number, expected);
    }
    page.close("tbody");
    page.close("table");
    page.close("div");
    if (is_paged) {
        judge_pager(page);
    }
}

// Those entries that are wanted, in the order of their paths.
template <typename Wanted>
Rows sorted_rows(std::span<const ReportEntry> entries, std::span<const ReportEntry*> room,
                 Wanted wanted)
{
    std::size_t rows = 0;
    for (const ReportEntry& entry : entries) {
        if (wanted(entry)) {
            room[rows++] = &entry;
        }
    }
    std::sort(room.begin(), room.begin() + static_cast<std::ptrdiff_t>(rows),
              [](const ReportEntry* first, const ReportEntry* second) {
                  return std::string_view(first->relative_path) < second->relative_path;
              });
    return room.first(rows);
}

void open_section(PageReader& page, std::string_view id, std::string_view title,
                  std::string_view subtitle)
{
    page.open("section", id);
    page.open("div", " class=\"card-head\"");
    page.open("div", " class=\"htext\"");
    page.element("h3", {}, title);
    if (!subtitle.empty()) {
        page.element("span", " class=\"sub\"", subtitle);
    }
    page.close("div");
    page.close("div");
    page.open("div", " class=\"card-body\"");
}

void judge_results(PageReader& page, const Counts& counts, const ExpectedOutputs& expected)
{
    static std::array<const ReportEntry*, 1024> room;
    require(expected.entries.size() <= room.size(), "room for all rows");
    const auto is_analyzed = [](const ReportEntry& entry, int passed) {
        return entry.kind == ReportKind::Analyzed && entry.passed == passed;
    };
    std::uint64_t number = 0;
    open_section(page, " class=\"card\" id=\"results\"", "Results", "");
    if (counts.errored > 0) {
        const Rows rows = sorted_rows(expected.entries, room, [](const ReportEntry& entry) {
            return entry.kind == ReportKind::RunError;
        });
        judge_table(page, "Errored", rows, number, expected);
    }
    if (counts.failed > 0) {
        const Rows rows = sorted_rows(expected.entries, room, [&](const ReportEntry& entry) {
            return is_analyzed(entry, 0);
        });
        judge_table(page, "Failed", rows, number, expected);
    }
    const Rows rows = sorted_rows(expected.entries, room,
                                  [&](const ReportEntry& entry) { return is_analyzed(entry, 1); });
    judge_table(page, "Passed", rows, number, expected);
    page.close("div");
    page.close("section");
}

void judge_other_files(PageReader& page, std::span<const ReportEntry> entries)
{
    open_section(page, " class=\"card\" id=\"other-files\"", "Other Files",
                 "scanned, but not a fathomix analyze report");
    page.open("div", " class=\"overflow-x\"");
    page.open("table", " class=\"dt\"");
    page.open("tr");
    page.element("th", {}, "Path");
    page.close("tr");
    Line line;
    for (const ReportEntry& entry : entries) {
        if (entry.kind == ReportKind::Unreadable || entry.kind == ReportKind::NotAnalyzeReport) {
            const bool unreadable = entry.kind == ReportKind::Unreadable;
            line.length = 0;
            line.add(entry.relative_path);
            line.add(unreadable ? " " : "");
            page.open("tr");
            page.open("td");
            page.path(line.view());
            if (unreadable) {
                page.element("small", {}, "(unreadable)");
            }
            page.close("td");
            page.close("tr");
        }
    }
    page.close("table");
    page.close("div");
    page.close("div");
    page.close("section");
}

void judge_footer(PageReader& page, std::string_view generated)
{
    Line line;
    line.add("summary generated ");
    line.add(generated);
    page.open("footer");
    page.open("div", " class=\"footer-row-top\"");
    page.open("span");
    page.element("b", {}, "Fathomix Summary");
    page.text(" v0.7.1-beta");
    page.close("span");
    page.element("span", {}, line.view());
    page.close("div");
    page.close("footer");
}

} // namespace

void judge_page(std::string_view markup, const ExpectedOutputs& expected)
{
    const Counts counts = count(expected.entries);
    PageReader page(markup);
    page.skip_to("title");
    page.text("Fathomix Summary");
    page.close("title");
    page.skip_to("div", " class=\"meta\"");
    page.element("b", {}, "v0.7.1-beta");
    page.close("div");
    page.skip_to("span", " class=\"fname\"");
    page.path(expected.input_dir);
    page.close("span");
    page.close("div");
    page.close("div");
    judge_grid(page, counts);
    judge_results(page, counts, expected);
    if (counts.other > 0) {
        judge_other_files(page, expected.entries);
    }
    judge_footer(page, expected.generated);
    page.close("div");
    page.element_of_any_text("script");
    page.element_of_any_text("script");
    page.close("body");
    page.close("html");
    page.end();
}
