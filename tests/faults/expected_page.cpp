#include <algorithm>

#include "faults/expected_outputs.h"
#include "support/temp_folder.h"

namespace {

std::string fixed_text(const std::string& name)
{
    return read_file(FTHSUMMARY_SOURCE_FOLDER "/src/summary/" + name);
}

std::string head_start()
{
    return R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Fathomix Summary</title>
<style>
)" + fixed_text("page_styles.css") +
           "</style>\n";
}

constexpr char ERRORED_STYLES[] =
    R"(<style>
.kpi-grid.with-errored { grid-template-columns: repeat(4, minmax(120px, 1fr)) minmax(200px, 1.4fr); }
@media (max-width: 720px) { .kpi-grid.with-errored { grid-template-columns: repeat(auto-fit, minmax(150px, 1fr)); } }
</style>
)";

std::string body_start()
{
    return R"(</head>
<body>
<div class="dash">
<div class="topbar">
<div class="brand">
<span class="glyph"><svg viewBox="0 0 24 24" fill="none" xmlns="http://www.w3.org/2000/svg"><circle cx="10" cy="10" r="6.3" stroke="white" stroke-width="1.7"/><path d="M4.6,10 L6.4,10 L7.8,6.5 L9.6,13.5 L11.2,7 L12.6,12 L14.4,12" stroke="white" stroke-width="1.8" stroke-linecap="round" stroke-linejoin="round" fill="none"/><line x1="14.46" y1="14.46" x2="19.6" y2="19.6" stroke="white" stroke-width="2.2" stroke-linecap="round"/></svg></span>
<span class="name">Fathomix Summary</span>
</div>
<div class="right">
<div class="meta"><b>v0.7.1-beta</b></div>
)" + fixed_text("theme_toggle.html") +
           R"(</div>
</div>
<div class="signal-row">
<div class="signal-id single">
<span class="tag">Directory</span>
<span class="fname">)";
}

std::string scripts()
{
    return "</div>\n<script>\n" + fixed_text("theme_script.js") + "</script>\n<script>\n" +
           fixed_text("pager_script.js") + "</script>\n</body>\n</html>\n";
}

std::string tile(const std::string& label, const std::string& value, const std::string& marks = "")
{
    return "<div class=\"kpi" + marks + "\">\n<div class=\"k\">" + label +
           "</div>\n<div class=\"v\">" + value + "</div>\n</div>\n";
}

std::string grid(const Counts& counts)
{
    const bool passes = counts.failed + counts.errored + counts.other == 0;
    return std::string("<div class=\"kpi-grid") + (counts.errored > 0 ? " with-errored" : "") +
           "\">\n" +
           tile("Total Reports", std::to_string(counts.passed + counts.failed + counts.errored)) +
           tile("Passed", std::to_string(counts.passed)) +
           tile("Failed", std::to_string(counts.failed)) +
           (counts.errored > 0 ? tile("Errored", std::to_string(counts.errored)) : "") +
           tile("Suite Verdict", passes ? "PASS" : "FAIL", passes ? " verdict ok" : " verdict") +
           "</div>\n";
}

std::string joined(const std::vector<std::string>& names)
{
    std::string result;
    for (const std::string& name : names) {
        result += (result.empty() ? "" : ", ") + html_text(name);
    }
    return result;
}

std::string muted(const std::string& text)
{
    return "<span style=\"color:var(--muted);font-size:0.85em\">" + text + "</span>";
}

std::string checks_cell(const KnownFile& file)
{
    std::string cell = joined(file.failed_checks);
    if (!file.non_gating_checks.empty()) {
        cell +=
            (cell.empty() ? "" : "<br>") + muted("Not gating: " + joined(file.non_gating_checks));
    }
    return cell.empty() ? "&mdash;" : cell;
}

std::string mode_cell(const KnownFile& file)
{
    if (file.mode.empty()) {
        return "&mdash;";
    }
    return html_text(file.mode) +
           (file.sub_mode.empty() ? "" : " " + muted("&middot; " + html_text(file.sub_mode)));
}

std::string verdict_cells(const KnownFile& file)
{
    switch (file.verdict) {
    case Verdict::Error:
        return "<span class=\"badge fail\">ERROR</span></td><td style=\"text-align:left\">" +
               (file.error.empty() ? "&mdash;" : html_text(file.error));
    case Verdict::Pass:
        return mode_cell(file) + "</td><td><span class=\"badge pass\">PASS</span></td><td>" +
               checks_cell(file);
    default:
        return mode_cell(file) + "</td><td><span class=\"badge fail\">FAIL</span></td><td>" +
               checks_cell(file);
    }
}

// Every report's path here ends in ".html".
std::string row(std::size_t number, const ListedFile& listed, const std::string& link_prefix)
{
    return "<tr><td>" + std::to_string(number) + "</td><td><a href=\"" +
           html_text(link_prefix + listed.path) + "\">" +
           html_text(listed.path.substr(0, listed.path.size() - 5), "<wbr>") + "</a></td><td>" +
           verdict_cells(listed.file) + "</td></tr>\n";
}

std::string header(Verdict verdict)
{
    return verdict == Verdict::Error
               ? "<tr><th>#</th><th>Test Case</th><th>Verdict</th>"
                 "<th style=\"text-align:left\">Reason</th></tr>\n"
               : "<tr><th>#</th><th>Test Case</th><th>Analysis Mode</th><th>Verdict</th>"
                 "<th>Failed Checks</th></tr>\n";
}

std::string table(const std::string& title, Verdict verdict, const std::vector<ListedFile>& sorted,
                  const std::string& link_prefix, std::size_t& number)
{
    const std::size_t before = number;
    std::string rows;
    for (const ListedFile& listed : sorted) {
        if (listed.file.verdict == verdict) {
            rows += row(++number, listed, link_prefix);
        }
    }
    const bool paged = number - before > 100;
    return "<p class=\"compare-table-title\">" + title +
           "</p>\n<div class=\"overflow-x\">\n<table class=\"dt dt-numbered\"" +
           (paged ? " data-page-size=\"100\"" : "") + ">\n<thead>\n" + header(verdict) +
           "</thead>\n<tbody>\n" + rows + "</tbody>\n</table></div>\n" +
           (paged ? "<div class=\"dt-pager\">\n"
                    "<button type=\"button\" data-dt-prev>Prev</button>\n"
                    "<span class=\"dt-pager-status\"></span>\n"
                    "<button type=\"button\" data-dt-next>Next</button>\n"
                    "</div>\n"
                  : "");
}

std::string results(const std::vector<ListedFile>& files, const std::string& link_prefix)
{
    std::vector<ListedFile> sorted = files;
    std::sort(sorted.begin(), sorted.end(), [](const ListedFile& first, const ListedFile& second) {
        return first.path < second.path;
    });
    const Counts counts = counts_of(files);
    std::size_t number = 0;
    std::string text = "<section class=\"card\" id=\"results\">\n<div class=\"card-head\">\n"
                       "<div class=\"htext\"><h3>Results</h3></div>\n</div>\n"
                       "<div class=\"card-body\">\n";
    if (counts.errored > 0) {
        text += table("Errored", Verdict::Error, sorted, link_prefix, number);
    }
    if (counts.failed > 0) {
        text += table("Failed", Verdict::Fail, sorted, link_prefix, number);
    }
    return text + table("Passed", Verdict::Pass, sorted, link_prefix, number) +
           "</div>\n</section>\n";
}

std::string other_files(const std::vector<ListedFile>& files)
{
    std::string rows;
    for (const ListedFile& listed : files) {
        if (listed.file.verdict == Verdict::Other || listed.file.verdict == Verdict::Unreadable) {
            rows +=
                "<tr><td>" + html_text(listed.path, "<wbr>") +
                (listed.file.verdict == Verdict::Unreadable ? " <small>(unreadable)</small>" : "") +
                "</td></tr>\n";
        }
    }
    return rows.empty()
               ? ""
               : "<section class=\"card\" id=\"other-files\">\n<div class=\"card-head\">\n"
                 "<div class=\"htext\"><h3>Other Files</h3>"
                 "<span class=\"sub\">scanned, but not a fathomix analyze report</span></div>\n"
                 "</div>\n<div class=\"card-body\">\n"
                 "<div class=\"overflow-x\"><table class=\"dt\"><tr><th>Path</th></tr>\n" +
                     rows + "</table></div>\n</div>\n</section>\n";
}

} // namespace

std::string page_of(const std::string& input, const std::vector<ListedFile>& files,
                    const std::string& link_prefix, const std::string& time)
{
    static const std::string HEAD = head_start();
    static const std::string BODY = body_start();
    static const std::string END = scripts();
    const Counts counts = counts_of(files);
    return HEAD + (counts.errored > 0 ? ERRORED_STYLES : "") + BODY + html_text(input, "<wbr>") +
           "</span>\n</div>\n</div>\n" + grid(counts) + results(files, link_prefix) +
           other_files(files) +
           "<footer>\n<div class=\"footer-row-top\">\n"
           "<span><b>Fathomix Summary</b> v0.7.1-beta</span>\n<span>summary generated " +
           time + "</span>\n</div>\n</footer>\n" + END;
}
