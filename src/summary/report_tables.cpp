#include "summary/report_tables.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "core/append_all.h"
#include "core/paths.h"
#include "report/html_escape.h"
#include "summary/sorted_view.h"

namespace {

constexpr char SECTION_START[] = R"(<section class="card" id="results">
<div class="card-head">
<div class="htext"><h3>Results</h3></div>
</div>
<div class="card-body">
)";

constexpr char TABLE_START[] = R"(<div class="overflow-x">
<table class="dt dt-numbered")";

constexpr char ERRORED_HEADER[] = R"(>
<thead>
<tr><th>#</th><th>Test Case</th><th>Verdict</th><th style="text-align:left">Reason</th></tr>
</thead>
<tbody>
)";

constexpr char ANALYZED_HEADER[] = R"(>
<thead>
<tr><th>#</th><th>Test Case</th><th>Analysis Mode</th><th>Verdict</th><th>Failed Checks</th></tr>
</thead>
<tbody>
)";

// Stands right behind the table's wrapper, where the pager script looks for it.
constexpr char PAGER[] = R"(<div class="dt-pager">
<button type="button" data-dt-prev>Prev</button>
<span class="dt-pager-status"></span>
<button type="button" data-dt-next>Next</button>
</div>
)";

constexpr char OTHER_FILES_START[] = R"(<section class="card" id="other-files">
<div class="card-head">
<div class="htext"><h3>Other Files</h3><span class="sub">scanned, but not a fathomix analyze report</span></div>
</div>
<div class="card-body">
<div class="overflow-x"><table class="dt"><tr><th>Path</th></tr>
)";

constexpr char NOTHING_TO_SHOW[] = "&mdash;";
constexpr char SIDE_NOTE_START[] = R"(<span style="color:var(--muted);font-size:0.85em">)";

// Case matters here, although the walk finds a report with any case of the ending.
std::string_view display_name(std::string_view path)
{
    return without_ending(path, {".html", ".htm"}).substr(0, PATH_BUFFER_SIZE - 1);
}

// What all rows of the page share, in whichever table they stand.
struct RowContext
{
    const ResultsLinkContext& links;
    std::uint64_t& last_number; // of the row before
};

bool append_row_start(TextBuffer& buffer, const ReportEntry& entry, RowContext rows)
{
    return append_all(buffer, "<tr><td>", ++rows.last_number, R"(</td><td><a href=")") &&
           append_link_target(buffer, entry, rows.links) &&
           append_all(buffer, R"(">)", EscapedPath{display_name(entry.relative_path)},
                      "</a></td><td>");
}

bool append_errored_row(TextBuffer& buffer, const ReportEntry& entry, RowContext rows)
{
    return append_row_start(buffer, entry, rows) &&
           append_all(buffer, R"(<span class="badge fail">ERROR</span></td>)",
                      R"(<td style="text-align:left">)", Escaped{entry.error},
                      entry.error[0] == '\0' ? NOTHING_TO_SHOW : "", "</td></tr>\n");
}

// Without a mode the sub-mode is not shown even if it is set.
bool append_mode_cell(TextBuffer& buffer, const ReportEntry& entry)
{
    if (entry.analysis_mode[0] == '\0') {
        return text_buffer_append(buffer, NOTHING_TO_SHOW);
    }
    if (entry.analysis_mode_sub[0] == '\0') {
        return html_append_escaped(buffer, entry.analysis_mode);
    }
    return append_all(buffer, Escaped{entry.analysis_mode}, " ", SIDE_NOTE_START, "&middot; ",
                      Escaped{entry.analysis_mode_sub}, "</span>");
}

struct Names
{
    const char (*slots)[REPORT_TEXT_SIZE];
    std::uint64_t count;
};

bool append_part(TextBuffer& buffer, Names names)
{
    bool complete = true;
    for (std::uint64_t i = 0; complete && i < names.count; ++i) {
        complete = append_all(buffer, i > 0 ? ", " : "", Escaped{names.slots[i]});
    }
    return complete;
}

bool append_checks_cell(TextBuffer& buffer, const ReportEntry& entry)
{
    const Names failed = {entry.failed_checks, entry.failed_check_count};
    const Names non_gating = {entry.non_gating_checks, entry.non_gating_check_count};
    if (failed.count == 0 && non_gating.count == 0) {
        return text_buffer_append(buffer, NOTHING_TO_SHOW);
    }
    if (non_gating.count == 0) {
        return append_part(buffer, failed);
    }
    return append_all(buffer, failed, failed.count > 0 ? "<br>" : "", SIDE_NOTE_START,
                      "Not gating: ", non_gating, "</span>");
}

bool append_analyzed_row(TextBuffer& buffer, const ReportEntry& entry, RowContext rows)
{
    const char* badge = outcome_of(entry) == Outcome::Passed
                            ? R"(<span class="badge pass">PASS</span>)"
                            : R"(<span class="badge fail">FAIL</span>)";
    return append_row_start(buffer, entry, rows) && append_mode_cell(buffer, entry) &&
           append_all(buffer, "</td><td>", badge, "</td><td>") &&
           append_checks_cell(buffer, entry) && text_buffer_append(buffer, "</td></tr>\n");
}

// Appends a table of the row_count reports that belong to it.
template <typename Belongs, typename AppendRow>
bool append_table(TextBuffer& buffer, const char* header,
                  std::span<const ReportEntry* const> reports, std::uint64_t row_count,
                  Belongs belongs, AppendRow append_row, RowContext rows)
{
    const bool is_paged = row_count > TABLE_PAGE_SIZE;
    return text_buffer_append(buffer, TABLE_START) &&
           (!is_paged || append_all(buffer, R"( data-page-size=")", TABLE_PAGE_SIZE, R"(")")) &&
           text_buffer_append(buffer, header) &&
           std::all_of(reports.begin(), reports.end(),
                       [&](const ReportEntry* report) {
                           return !belongs(report) || append_row(buffer, *report, rows);
                       }) &&
           append_all(buffer, "</tbody>\n</table></div>\n", is_paged ? PAGER : "");
}

bool append_title(TextBuffer& buffer, std::string_view title)
{
    return append_all(buffer, R"(<p class="compare-table-title">)", title, "</p>\n");
}

bool append_tables(TextBuffer& buffer, const SortedView& view, const ResultsLinkContext& links,
                   std::uint64_t failed, std::uint64_t errored)
{
    const auto is_errored = [](const ReportEntry* report) {
        return outcome_of(*report) == Outcome::Errored;
    };
    std::uint64_t row_counter = 0;
    return text_buffer_append(buffer, SECTION_START) &&
           (errored == 0 ||
            (append_title(buffer, "Errored") &&
             append_table(buffer, ERRORED_HEADER, {view.entries, view.entries + view.length},
                          errored, is_errored, append_errored_row, {links, row_counter}))) &&
           (failed == 0 ||
            (append_title(buffer, "Failed") &&
             append_report_table(buffer, view.entries, view.length, 0, links, row_counter))) &&
           append_title(buffer, "Passed") &&
           append_report_table(buffer, view.entries, view.length, 1, links, row_counter) &&
           text_buffer_append(buffer, "</div>\n</section>\n");
}

bool append_other_file_row(TextBuffer& buffer, const ReportEntry& entry)
{
    const bool is_unreadable = outcome_of(entry) == Outcome::Unreadable;
    return append_all(buffer, "<tr><td>", EscapedPath{entry.relative_path},
                      is_unreadable ? " <small>(unreadable)</small>" : "", "</td></tr>\n");
}

} // namespace

bool append_results_section(TextBuffer& buffer, const SummaryModel& model, const char* output_path,
                            std::uint64_t failed, std::uint64_t passed, std::uint64_t errored)
{
    SortedView view;
    sorted_view_init(view);
    if (!sorted_view_fill(view, model, passed + failed + errored)) {
        return false;
    }
    ResultsLinkContext context;
    make_results_link_context(model.input_dir, output_path, context);
    const bool complete = append_tables(buffer, view, context, failed, errored);
    sorted_view_free(view);
    return complete;
}

bool append_report_table(TextBuffer& buffer, const ReportEntry* const* view,
                         std::uint64_t view_length, std::uint8_t wanted_passed,
                         const ResultsLinkContext& context, std::uint64_t& row_counter)
{
    const auto is_wanted = [&](const ReportEntry* entry) {
        return entry->kind == ReportKind::Analyzed && entry->passed == wanted_passed;
    };
    const auto rows = std::count_if(view, view + view_length, is_wanted);
    return append_table(buffer, ANALYZED_HEADER, {view, view + view_length},
                        static_cast<std::uint64_t>(rows), is_wanted, append_analyzed_row,
                        {context, row_counter});
}

bool append_other_files_section(TextBuffer& buffer, const SummaryModel& model, std::uint64_t other)
{
    const auto append_row = [&](const ReportEntry& entry) {
        return is_report(entry) || append_other_file_row(buffer, entry);
    };
    return other == 0 || (text_buffer_append(buffer, OTHER_FILES_START) &&
                          std::all_of(model.entries, model.entries + model.count, append_row) &&
                          text_buffer_append(buffer, "</table></div>\n</div>\n</section>\n"));
}
