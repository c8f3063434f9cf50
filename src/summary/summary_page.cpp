#include "summary/summary_page.h"

#include <ctime>

#include "core/files.h"
#include "report/html_escape.h"
#include "summary/page_fragments.h"
#include "summary/report_tables.h"

namespace {

constexpr char HEAD_START[] =
    "<!doctype html>\n"
    "<html lang=\"en\">\n"
    "<head>\n"
    "<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    "<title>Fathomix Summary</title>\n";

// The shared stylesheet lays the grid of counts out for four tiles; this block
// comes after it and so wins, for the grid that holds the Errored tile as well.
constexpr char ERRORED_GRID_STYLES[] =
    "<style>\n"
    ".kpi-grid.with-errored { grid-template-columns: repeat(4, minmax(120px, 1fr)) "
    "minmax(200px, 1.4fr); }\n"
    "@media (max-width: 720px) { .kpi-grid.with-errored { grid-template-columns: "
    "repeat(auto-fit, minmax(150px, 1fr)); } }\n"
    "</style>\n";

constexpr char BODY_START[] = "</head>\n"
                              "<body>\n"
                              "<div class=\"dash\">\n";

// Up to the version text: a magnifying glass that holds a small trace, and the name.
constexpr char TOPBAR_START[] =
    "<div class=\"topbar\">\n"
    "<div class=\"brand\">\n"
    "<span class=\"glyph\"><svg viewBox=\"0 0 24 24\" fill=\"none\" "
    "xmlns=\"http://www.w3.org/2000/svg\">"
    "<circle cx=\"10\" cy=\"10\" r=\"6.3\" stroke=\"white\" stroke-width=\"1.7\"/>"
    "<path d=\"M4.6,10 L6.4,10 L7.8,6.5 L9.6,13.5 L11.2,7 L12.6,12 L14.4,12\" "
    "stroke=\"white\" stroke-width=\"1.8\" stroke-linecap=\"round\" "
    "stroke-linejoin=\"round\" fill=\"none\"/>"
    "<line x1=\"14.46\" y1=\"14.46\" x2=\"19.6\" y2=\"19.6\" stroke=\"white\" "
    "stroke-width=\"2.2\" stroke-linecap=\"round\"/></svg></span>\n"
    "<span class=\"name\">Fathomix Summary</span>\n"
    "</div>\n"
    "<div class=\"right\">\n"
    "<div class=\"meta\">";

constexpr char TOPBAR_END[] = "</div>\n"
                              "</div>\n";

constexpr char DIRECTORY_START[] = "<div class=\"signal-row\">\n"
                                   "<div class=\"signal-id single\">\n"
                                   "<span class=\"tag\">Directory</span>\n"
                                   "<span class=\"fname\">";

constexpr char DIRECTORY_END[] = "</span>\n"
                                 "</div>\n"
                                 "</div>\n";

constexpr char DASH_END[] = "</div>\n";

constexpr char BODY_END[] = "</body>\n"
                            "</html>\n";

bool append_head(TextBuffer& buffer, const SummaryTally& tally)
{
    return text_buffer_append(buffer, HEAD_START) && append_page_styles(buffer) &&
           (tally.errored == 0 || text_buffer_append(buffer, ERRORED_GRID_STYLES));
}

bool append_topbar(TextBuffer& buffer, const SummaryModel& model)
{
    return text_buffer_append(buffer, TOPBAR_START) &&
           text_buffer_appendf(buffer, "<b>v%s</b></div>\n", model.version) &&
           append_theme_toggle(buffer) && text_buffer_append(buffer, TOPBAR_END);
}

bool append_directory_row(TextBuffer& buffer, const SummaryModel& model)
{
    return text_buffer_append(buffer, DIRECTORY_START) &&
           html_append_escaped_path(buffer, model.input_dir) &&
           text_buffer_append(buffer, DIRECTORY_END);
}

bool append_page(TextBuffer& buffer, const SummaryModel& model, const char* output_path)
{
    const SummaryTally tally = tally_entries(model.entries, model.count);
    return append_head(buffer, tally) && text_buffer_append(buffer, BODY_START) &&
           append_topbar(buffer, model) && append_directory_row(buffer, model) &&
           append_kpi_grid(buffer, total_reports(tally), tally.passed, tally.failed, tally.errored,
                           tally.other) &&
           append_results_section(buffer, model, output_path, tally.failed, tally.passed,
                                  tally.errored) &&
           append_other_files_section(buffer, model, tally.other) &&
           append_page_footer(buffer, model) && text_buffer_append(buffer, DASH_END) &&
           append_theme_script(buffer) && append_pager_script(buffer) &&
           text_buffer_append(buffer, BODY_END);
}

bool append_kpi_tile(TextBuffer& buffer, const char* label, std::uint64_t value)
{
    return text_buffer_appendf(buffer,
                               "<div class=\"kpi\">\n"
                               "<div class=\"k\">%s</div>\n"
                               "<div class=\"v\">%zu</div>\n"
                               "</div>\n",
                               label, std::size_t{value});
}

// Stricter than the exit status on purpose: a page that is no report fails the
// suite, too, although it does not count among the reports.
bool append_verdict_tile(TextBuffer& buffer, bool fails)
{
    return text_buffer_appendf(buffer,
                               "<div class=\"kpi verdict%s\">\n"
                               "<div class=\"k\">Suite Verdict</div>\n"
                               "<div class=\"v\">%s</div>\n"
                               "</div>\n",
                               fails ? "" : " ok", fails ? "FAIL" : "PASS");
}

} // namespace

bool write_summary_page(const char* output_path, const SummaryModel& model)
{
    TextBuffer page;
    text_buffer_init(page);
    const bool written = append_page(page, model, output_path) &&
                         write_whole_file(output_path, page.data, page.length);
    text_buffer_free(page);
    return written;
}

bool append_kpi_grid(TextBuffer& buffer, std::uint64_t total, std::uint64_t passed,
                     std::uint64_t failed, std::uint64_t errored, std::uint64_t other)
{
    const bool has_errors = errored > 0;
    return text_buffer_append(buffer, has_errors ? "<div class=\"kpi-grid with-errored\">\n"
                                                 : "<div class=\"kpi-grid\">\n") &&
           append_kpi_tile(buffer, "Total Reports", total) &&
           append_kpi_tile(buffer, "Passed", passed) && append_kpi_tile(buffer, "Failed", failed) &&
           (!has_errors || append_kpi_tile(buffer, "Errored", errored)) &&
           append_verdict_tile(buffer, failed + errored + other != 0) &&
           text_buffer_append(buffer, "</div>\n");
}

bool append_page_footer(TextBuffer& buffer, const SummaryModel& model)
{
    char generated[GENERATED_TIME_SIZE];
    format_generated_time(generated, sizeof generated);
    return text_buffer_append(buffer, "<footer>\n<div class=\"footer-row-top\">\n") &&
           text_buffer_appendf(buffer, "<span><b>Fathomix Summary</b> v%s</span>\n",
                               model.version) &&
           text_buffer_appendf(buffer,
                               "<span>summary generated %s</span>\n"
                               "</div>\n"
                               "</footer>\n",
                               generated);
}

void format_generated_time(char* destination, std::size_t size)
{
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
    const bool formatted = gmtime_r(&now, &parts) != nullptr &&
                           std::strftime(destination, size, "%Y-%m-%d %H:%M:%S UTC", &parts) != 0;
    // strftime leaves unspecified bytes behind when the text does not fit.
    if (!formatted && size > 0) {
        destination[0] = '\0';
    }
}
