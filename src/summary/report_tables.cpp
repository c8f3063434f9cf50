#include "summary/report_tables.h"

#include <algorithm>
#include <string_view>

#include "core/paths.h"
#include "report/html_escape.h"
#include "summary/sorted_view.h"

namespace {

constexpr char SECTION_START[] = "<section class=\"card\" id=\"results\">\n"
                                 "<div class=\"card-head\">\n"
                                 "<div class=\"htext\"><h3>Results</h3></div>\n"
                                 "</div>\n"
                                 "<div class=\"card-body\">\n";

constexpr char SECTION_END[] = "</div>\n"
                               "</section>\n";

constexpr char ERRORED_TITLE[] = "<p class=\"compare-table-title\">Errored</p>\n";
constexpr char FAILED_TITLE[] = "<p class=\"compare-table-title\">Failed</p>\n";
constexpr char PASSED_TITLE[] = "<p class=\"compare-table-title\">Passed</p>\n";

constexpr char TABLE_START[] = "<div class=\"overflow-x\">\n"
                               "<table class=\"dt dt-numbered\"";

constexpr char ERRORED_HEADER[] = ">\n<thead>\n"
                                  "<tr><th>#</th><th>Test Case</th><th>Verdict</th>"
                                  "<th style=\"text-align:left\">Reason</th></tr>\n"
                                  "</thead>\n<tbody>\n";

constexpr char ANALYZED_HEADER[] =
    ">\n<thead>\n"
    "<tr><th>#</th><th>Test Case</th><th>Analysis Mode</th><th>Verdict</th>"
    "<th>Failed Checks</th></tr>\n"
    "</thead>\n<tbody>\n";

constexpr char TABLE_END[] = "</tbody>\n"
                             "</table></div>\n";

// Stands right behind the table's wrapper, where the pager script looks for it.
constexpr char PAGER[] = "<div class=\"dt-pager\">\n"
                         "<button type=\"button\" data-dt-prev>Prev</button>\n"
                         "<span class=\"dt-pager-status\"></span>\n"
                         "<button type=\"button\" data-dt-next>Next</button>\n"
                         "</div>\n";

constexpr char OTHER_FILES_START[] =
    "<section class=\"card\" id=\"other-files\">\n"
    "<div class=\"card-head\">\n"
    "<div class=\"htext\"><h3>Other Files</h3>"
    "<span class=\"sub\">scanned, but not a fathomix analyze report</span></div>\n"
    "</div>\n"
    "<div class=\"card-body\">\n"
    "<div class=\"overflow-x\"><table class=\"dt\"><tr><th>Path</th></tr>\n";

constexpr char OTHER_FILES_END[] = "</table></div>\n"
                                   "</div>\n"
                                   "</section>\n";

constexpr char NOTHING_TO_SHOW[] = "&mdash;";
constexpr char SIDE_NOTE_START[] = "<span style=\"color:var(--muted);font-size:0.85em\">";
constexpr char SIDE_NOTE_END[] = "</span>";

// Case matters here, although the walk finds a report with any case of the ending.
std::string_view display_name(std::string_view path)
{
    if (path.ends_with(".html")) {
        path.remove_suffix(5);
    } else if (path.ends_with(".htm")) {
        path.remove_suffix(4);
    }
    return path.substr(0, PATH_BUFFER_SIZE - 1);
}

bool append_row_start(TextBuffer& buffer, const ReportEntry& entry,
                      const ResultsLinkContext& context, std::uint64_t& row_counter)
{
    ++row_counter;
    return text_buffer_append(buffer, "<tr><td>") &&
           text_buffer_append_number(buffer, row_counter) &&
           text_buffer_append(buffer, "</td><td><a href=\"") &&
           append_link_target(buffer, entry, context) && text_buffer_append(buffer, "\">") &&
           html_append_escaped_path(buffer, display_name(entry.relative_path));
}

bool append_errored_row(TextBuffer& buffer, const ReportEntry& entry,
                        const ResultsLinkContext& context, std::uint64_t& row_counter)
{
    return append_row_start(buffer, entry, context, row_counter) &&
           text_buffer_append(buffer, "</a></td><td><span class=\"badge fail\">ERROR</span></td>"
                                      "<td style=\"text-align:left\">") &&
           (entry.error[0] != '\0' ? html_append_escaped(buffer, entry.error)
                                   : text_buffer_append(buffer, NOTHING_TO_SHOW)) &&
           text_buffer_append(buffer, "</td></tr>\n");
}

// Without a mode the sub-mode is not shown even if it is set.
bool append_mode_cell(TextBuffer& buffer, const ReportEntry& entry)
{
    if (entry.analysis_mode[0] == '\0') {
        return text_buffer_append(buffer, NOTHING_TO_SHOW);
    }
    return html_append_escaped(buffer, entry.analysis_mode) &&
           (entry.analysis_mode_sub[0] == '\0' ||
            (text_buffer_append(buffer, " ") && text_buffer_append(buffer, SIDE_NOTE_START) &&
             text_buffer_append(buffer, "&middot; ") &&
             html_append_escaped(buffer, entry.analysis_mode_sub) &&
             text_buffer_append(buffer, SIDE_NOTE_END)));
}

bool append_names(TextBuffer& buffer, const char (*names)[REPORT_TEXT_SIZE], std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i) {
        if ((i > 0 && !text_buffer_append(buffer, ", ")) ||
            !html_append_escaped(buffer, names[i])) {
            return false;
        }
    }
    return true;
}

bool append_checks_cell(TextBuffer& buffer, const ReportEntry& entry)
{
    const std::uint64_t failed = entry.failed_check_count;
    const std::uint64_t non_gating = entry.non_gating_check_count;
    if (failed == 0 && non_gating == 0) {
        return text_buffer_append(buffer, NOTHING_TO_SHOW);
    }
    if (!append_names(buffer, entry.failed_checks, failed)) {
        return false;
    }
    return non_gating == 0 || ((failed == 0 || text_buffer_append(buffer, "<br>")) &&
                               text_buffer_append(buffer, SIDE_NOTE_START) &&
                               text_buffer_append(buffer, "Not gating: ") &&
                               append_names(buffer, entry.non_gating_checks, non_gating) &&
                               text_buffer_append(buffer, SIDE_NOTE_END));
}

bool append_analyzed_row(TextBuffer& buffer, const ReportEntry& entry,
                         const ResultsLinkContext& context, std::uint64_t& row_counter)
{
    return append_row_start(buffer, entry, context, row_counter) &&
           text_buffer_append(buffer, "</a></td><td>") && append_mode_cell(buffer, entry) &&
           text_buffer_append(buffer, "</td><td>") &&
           text_buffer_append(buffer, entry.passed != 0
                                          ? "<span class=\"badge pass\">PASS</span>"
                                          : "<span class=\"badge fail\">FAIL</span>") &&
           text_buffer_append(buffer, "</td><td>") && append_checks_cell(buffer, entry) &&
           text_buffer_append(buffer, "</td></tr>\n");
}

// Opens a table of so many rows; the page size makes it one to be paged.
bool append_table_start(TextBuffer& buffer, std::uint64_t rows, const char* header)
{
    return text_buffer_append(buffer, TABLE_START) &&
           (rows <= TABLE_PAGE_SIZE ||
            text_buffer_appendf(buffer, " data-page-size=\"%d\"", int{TABLE_PAGE_SIZE})) &&
           text_buffer_append(buffer, header);
}

bool append_table_end(TextBuffer& buffer, std::uint64_t rows)
{
    return text_buffer_append(buffer, TABLE_END) &&
           (rows <= TABLE_PAGE_SIZE || text_buffer_append(buffer, PAGER));
}

bool append_errored_table(TextBuffer& buffer, const SortedView& view, std::uint64_t errored,
                          const ResultsLinkContext& context, std::uint64_t& row_counter)
{
    if (!append_table_start(buffer, errored, ERRORED_HEADER)) {
        return false;
    }
    for (std::uint64_t i = 0; i < view.length; ++i) {
        if (view.entries[i]->kind == ReportKind::RunError &&
            !append_errored_row(buffer, *view.entries[i], context, row_counter)) {
            return false;
        }
    }
    return append_table_end(buffer, errored);
}

bool append_tables(TextBuffer& buffer, const SortedView& view, const ResultsLinkContext& context,
                   std::uint64_t failed, std::uint64_t errored)
{
    std::uint64_t row_counter = 0;
    return text_buffer_append(buffer, SECTION_START) &&
           (errored == 0 || (text_buffer_append(buffer, ERRORED_TITLE) &&
                             append_errored_table(buffer, view, errored, context, row_counter))) &&
           (failed == 0 ||
            (text_buffer_append(buffer, FAILED_TITLE) &&
             append_report_table(buffer, view.entries, view.length, 0, context, row_counter))) &&
           text_buffer_append(buffer, PASSED_TITLE) &&
           append_report_table(buffer, view.entries, view.length, 1, context, row_counter) &&
           text_buffer_append(buffer, SECTION_END);
}

bool append_other_file_row(TextBuffer& buffer, const ReportEntry& entry)
{
    return text_buffer_append(buffer, "<tr><td>") &&
           html_append_escaped_path(buffer, entry.relative_path) &&
           (entry.kind != ReportKind::Unreadable ||
            text_buffer_append(buffer, " <small>(unreadable)</small>")) &&
           text_buffer_append(buffer, "</td></tr>\n");
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
    const std::uint64_t rows =
        static_cast<std::uint64_t>(std::count_if(view, view + view_length, is_wanted));
    if (!append_table_start(buffer, rows, ANALYZED_HEADER)) {
        return false;
    }
    for (std::uint64_t i = 0; i < view_length; ++i) {
        if (is_wanted(view[i]) && !append_analyzed_row(buffer, *view[i], context, row_counter)) {
            return false;
        }
    }
    return append_table_end(buffer, rows);
}

bool append_other_files_section(TextBuffer& buffer, const SummaryModel& model, std::uint64_t other)
{
    if (other == 0) {
        return true;
    }
    if (!text_buffer_append(buffer, OTHER_FILES_START)) {
        return false;
    }
    for (std::uint64_t i = 0; i < model.count; ++i) {
        if (!is_report(model.entries[i]) && !append_other_file_row(buffer, model.entries[i])) {
            return false;
        }
    }
    return text_buffer_append(buffer, OTHER_FILES_END);
}
