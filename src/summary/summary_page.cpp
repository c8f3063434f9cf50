#include "summary/summary_page.h"

#include <ctime>

#include "core/append_all.h"
#include "core/files.h"
#include "embedded/errored_grid_styles.h"
#include "report/html_escape.h"
#include "summary/page_fragments.h"
#include "summary/report_tables.h"

namespace {

constexpr char HEAD_START[] = R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Fathomix Summary</title>
)";

constexpr char BODY_START[] = R"(</head>
<body>
<div class="dash">
)";

// A magnifying glass that holds a small trace, on one line.
constexpr char GLYPH[] =
    R"(<svg viewBox="0 0 24 24" fill="none" xmlns="http://www.w3.org/2000/svg">)"
    R"(<circle cx="10" cy="10" r="6.3" stroke="white" stroke-width="1.7"/>)"
    R"(<path d="M4.6,10 L6.4,10 L7.8,6.5 L9.6,13.5 L11.2,7 L12.6,12 L14.4,12" stroke="white" )"
    R"(stroke-width="1.8" stroke-linecap="round" stroke-linejoin="round" fill="none"/>)"
    R"(<line x1="14.46" y1="14.46" x2="19.6" y2="19.6" stroke="white" stroke-width="2.2" )"
    R"(stroke-linecap="round"/></svg>)";

constexpr char TOPBAR_START[] = R"(<div class="topbar">
<div class="brand">
<span class="glyph">%s</span>
<span class="name">Fathomix Summary</span>
</div>
<div class="right">
<div class="meta"><b>v%s</b></div>
)";

constexpr char DIRECTORY_START[] = R"(<div class="signal-row">
<div class="signal-id single">
<span class="tag">Directory</span>
<span class="fname">)";

constexpr char KPI_TILE[] = R"(<div class="kpi">
<div class="k">%s</div>
<div class="v">%ju</div>
</div>
)";

constexpr char VERDICT_TILE[] = R"(<div class="kpi verdict%s">
<div class="k">Suite Verdict</div>
<div class="v">%s</div>
</div>
)";

constexpr char FOOTER[] = R"(<footer>
<div class="footer-row-top">
<span><b>Fathomix Summary</b> v%s</span>
<span>summary generated %s</span>
</div>
</footer>
)";

// The styles of every page lay the grid of counts out for four tiles; those behind them
// win, for the grid that holds the Errored tile as well.
bool append_head(TextBuffer& buffer, const SummaryTally& tally)
{
    return text_buffer_append(buffer, HEAD_START) && append_page_styles(buffer) &&
           (tally.errored == 0 || text_buffer_append(buffer, ERRORED_GRID_STYLES));
}

bool append_page(TextBuffer& buffer, const SummaryModel& model, const char* output_path)
{
    const SummaryTally tally = tally_entries(model.entries, model.count);
    return append_head(buffer, tally) && text_buffer_append(buffer, BODY_START) &&
           text_buffer_appendf(buffer, TOPBAR_START, GLYPH, model.version) &&
           append_theme_toggle(buffer) && text_buffer_append(buffer, "</div>\n</div>\n") &&
           append_all(buffer, DIRECTORY_START, EscapedPath{model.input_dir},
                      "</span>\n</div>\n</div>\n") &&
           append_kpi_grid(buffer, total_reports(tally), tally.passed, tally.failed, tally.errored,
                           tally.other) &&
           append_results_section(buffer, model, output_path, tally.failed, tally.passed,
                                  tally.errored) &&
           append_other_files_section(buffer, model, tally.other) &&
           append_page_footer(buffer, model) && text_buffer_append(buffer, "</div>\n") &&
           append_theme_script(buffer) && append_pager_script(buffer) &&
           text_buffer_append(buffer, "</body>\n</html>\n");
}

bool append_kpi_tile(TextBuffer& buffer, const char* label, std::uint64_t value)
{
    return text_buffer_appendf(buffer, KPI_TILE, label, std::uintmax_t{value});
}

// Stricter than the exit status on purpose: a page that is no report fails the
// suite, too, although it does not count among the reports.
bool append_verdict_tile(TextBuffer& buffer, bool fails)
{
    return text_buffer_appendf(buffer, VERDICT_TILE, fails ? "" : " ok", fails ? "FAIL" : "PASS");
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
    return append_all(buffer, R"(<div class="kpi-grid)", has_errors ? " with-errored" : "", R"(">)",
                      "\n") &&
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
    return text_buffer_appendf(buffer, FOOTER, model.version, generated);
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
