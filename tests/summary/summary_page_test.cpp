#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/summary_page.h"
#include "support/temp_folder.h"

namespace {

std::string asset(const std::string& name)
{
    return read_file(FTHSUMMARY_SOURCE_FOLDER "/src/summary/" + name);
}

// Written from the folder in which in/ and out/ lie, so that no path of the
// machine gets into the page; its time is replaced.
std::string page_of(const SummaryModel& model)
{
    const TempFolder folder;
    folder.make_folder("in");
    folder.make_folder("out");
    const CurrentFolder current(folder.path());
    EXPECT_TRUE(write_summary_page("out/summary.html", model));
    return with_time_replaced(folder.read("out/summary.html"));
}

std::string page_of(const std::vector<ReportEntry>& entries)
{
    return page_of(model_of(entries, "in"));
}

const std::string HEAD = R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Fathomix Summary</title>
)";

const std::string ERRORED_STYLES = R"(<style>
.kpi-grid.with-errored { grid-template-columns: repeat(4, minmax(120px, 1fr)) minmax(200px, 1.4fr); }
@media (max-width: 720px) { .kpi-grid.with-errored { grid-template-columns: repeat(auto-fit, minmax(150px, 1fr)); } }
</style>
)";

const std::string TOP = R"(</head>
<body>
<div class="dash">
<div class="topbar">
<div class="brand">
<span class="glyph"><svg viewBox="0 0 24 24" fill="none" xmlns="http://www.w3.org/2000/svg"><circle cx="10" cy="10" r="6.3" stroke="white" stroke-width="1.7"/><path d="M4.6,10 L6.4,10 L7.8,6.5 L9.6,13.5 L11.2,7 L12.6,12 L14.4,12" stroke="white" stroke-width="1.8" stroke-linecap="round" stroke-linejoin="round" fill="none"/><line x1="14.46" y1="14.46" x2="19.6" y2="19.6" stroke="white" stroke-width="2.2" stroke-linecap="round"/></svg></span>
<span class="name">Fathomix Summary</span>
</div>
<div class="right">
<div class="meta"><b>v0.7.1-beta</b></div>
)";

const std::string BELOW_TOGGLE = R"(</div>
</div>
<div class="signal-row">
<div class="signal-id single">
<span class="tag">Directory</span>
<span class="fname">)";

const std::string FOOTER = R"(<footer>
<div class="footer-row-top">
<span><b>Fathomix Summary</b> v0.7.1-beta</span>
<span>summary generated TIME</span>
</div>
</footer>
</div>
)";

std::string styles()
{
    return "<style>\n" + asset("page_styles.css") + "</style>\n";
}

std::string scripts_and_end()
{
    return "<script>\n" + asset("theme_script.js") + "</script>\n<script>\n" +
           asset("pager_script.js") + "</script>\n</body>\n</html>\n";
}

std::string tile(const std::string& label, const std::string& value)
{
    return "<div class=\"kpi\">\n<div class=\"k\">" + label + "</div>\n<div class=\"v\">" + value +
           "</div>\n</div>\n";
}

const std::string VERDICT_FAIL = R"(<div class="kpi verdict">
<div class="k">Suite Verdict</div>
<div class="v">FAIL</div>
</div>
)";
const std::string VERDICT_PASS = R"(<div class="kpi verdict ok">
<div class="k">Suite Verdict</div>
<div class="v">PASS</div>
</div>
)";

} // namespace

TEST(SummaryPage, WithoutEntriesIsExactlyThisPage)
{
    EXPECT_EQ(page_of(std::vector<ReportEntry>()),
              HEAD + styles() + TOP + asset("theme_toggle.html") + BELOW_TOGGLE + R"(in</span>
</div>
</div>
<div class="kpi-grid">
<div class="kpi">
<div class="k">Total Reports</div>
<div class="v">0</div>
</div>
<div class="kpi">
<div class="k">Passed</div>
<div class="v">0</div>
</div>
<div class="kpi">
<div class="k">Failed</div>
<div class="v">0</div>
</div>
<div class="kpi verdict ok">
<div class="k">Suite Verdict</div>
<div class="v">PASS</div>
</div>
</div>
<section class="card" id="results">
<div class="card-head">
<div class="htext"><h3>Results</h3></div>
</div>
<div class="card-body">
<p class="compare-table-title">Passed</p>
<div class="overflow-x">
<table class="dt dt-numbered">
<thead>
<tr><th>#</th><th>Test Case</th><th>Analysis Mode</th><th>Verdict</th><th>Failed Checks</th></tr>
</thead>
<tbody>
</tbody>
</table></div>
</div>
</section>
)" + FOOTER + scripts_and_end());
}

TEST(SummaryPage, WithOneEntryOfEachKindIsExactlyThisPage)
{
    ReportEntry failed = failed_report("b/track02.html");
    set_modes(failed, "Mode X", "Variant 1");
    set_failed_checks(failed, {"Check A", "Level < -3 dB"});
    set_non_gating_checks(failed, {"Check C"});
    ReportEntry passed = passed_report("a/track01.htm");
    set_modes(passed, "Mode Y", "");
    const std::vector<ReportEntry> entries = {
        failed, unrelated_file("notes/readme.html"),
        errored_report("b/track03.html", "Input \"take 2.wav\" could not be opened"), passed,
        unreadable_file("a/gone.html")};
    EXPECT_EQ(page_of(model_of(entries, "./in/")), HEAD + styles() + ERRORED_STYLES + TOP +
                                                       asset("theme_toggle.html") + BELOW_TOGGLE +
                                                       R"(./<wbr>in/<wbr></span>
</div>
</div>
<div class="kpi-grid with-errored">
<div class="kpi">
<div class="k">Total Reports</div>
<div class="v">3</div>
</div>
<div class="kpi">
<div class="k">Passed</div>
<div class="v">1</div>
</div>
<div class="kpi">
<div class="k">Failed</div>
<div class="v">1</div>
</div>
<div class="kpi">
<div class="k">Errored</div>
<div class="v">1</div>
</div>
<div class="kpi verdict">
<div class="k">Suite Verdict</div>
<div class="v">FAIL</div>
</div>
</div>
<section class="card" id="results">
<div class="card-head">
<div class="htext"><h3>Results</h3></div>
</div>
<div class="card-body">
<p class="compare-table-title">Errored</p>
<div class="overflow-x">
<table class="dt dt-numbered">
<thead>
<tr><th>#</th><th>Test Case</th><th>Verdict</th><th style="text-align:left">Reason</th></tr>
</thead>
<tbody>
<tr><td>1</td><td><a href="../in/b/track03.html">b/<wbr>track03</a></td><td><span class="badge fail">ERROR</span></td><td style="text-align:left">Input &quot;take 2.wav&quot; could not be opened</td></tr>
</tbody>
</table></div>
<p class="compare-table-title">Failed</p>
<div class="overflow-x">
<table class="dt dt-numbered">
<thead>
<tr><th>#</th><th>Test Case</th><th>Analysis Mode</th><th>Verdict</th><th>Failed Checks</th></tr>
</thead>
<tbody>
<tr><td>2</td><td><a href="../in/b/track02.html">b/<wbr>track02</a></td><td>Mode X <span style="color:var(--muted);font-size:0.85em">&middot; Variant 1</span></td><td><span class="badge fail">FAIL</span></td><td>Check A, Level &lt; -3 dB<br><span style="color:var(--muted);font-size:0.85em">Not gating: Check C</span></td></tr>
</tbody>
</table></div>
<p class="compare-table-title">Passed</p>
<div class="overflow-x">
<table class="dt dt-numbered">
<thead>
<tr><th>#</th><th>Test Case</th><th>Analysis Mode</th><th>Verdict</th><th>Failed Checks</th></tr>
</thead>
<tbody>
<tr><td>3</td><td><a href="../in/a/track01.htm">a/<wbr>track01</a></td><td>Mode Y</td><td><span class="badge pass">PASS</span></td><td>&mdash;</td></tr>
</tbody>
</table></div>
</div>
</section>
<section class="card" id="other-files">
<div class="card-head">
<div class="htext"><h3>Other Files</h3><span class="sub">scanned, but not a fathomix analyze report</span></div>
</div>
<div class="card-body">
<div class="overflow-x"><table class="dt"><tr><th>Path</th></tr>
<tr><td>notes/<wbr>readme.html</td></tr>
<tr><td>a/<wbr>gone.html <small>(unreadable)</small></td></tr>
</table></div>
</div>
</section>
)" + FOOTER + scripts_and_end());
}

TEST(SummaryPage, NoEntriesShowZeroesWithoutErroredTileAndAPassingVerdict)
{
    const std::string page = page_of(std::vector<ReportEntry>());
    EXPECT_EQ(count_of("<div class=\"kpi-grid\">\n" + tile("Total Reports", "0") +
                           tile("Passed", "0") + tile("Failed", "0") + VERDICT_PASS + "</div>\n",
                       page),
              1);
    EXPECT_EQ(count_of("<div class=\"k\">Errored</div>", page), 0);
    EXPECT_EQ(count_of("<style>", page), 1);
    EXPECT_EQ(count_of(ERRORED_STYLES, page), 0);
    EXPECT_EQ(count_of("<p class=\"compare-table-title\">Passed</p>", page), 1);
    EXPECT_EQ(count_of("id=\"other-files\"", page), 0);
}

TEST(SummaryPage, ThreeUnrelatedFilesAloneFailTheSuite)
{
    const std::string page =
        page_of({unrelated_file("a.html"), unrelated_file("b.html"), unrelated_file("c.html")});
    EXPECT_EQ(count_of(tile("Total Reports", "0") + tile("Passed", "0") + tile("Failed", "0") +
                           VERDICT_FAIL,
                       page),
              1);
    EXPECT_EQ(count_of("<tr><td>a.html</td></tr>\n<tr><td>b.html</td></tr>\n"
                       "<tr><td>c.html</td></tr>\n",
                       page),
              1);
}

TEST(SummaryPage, TenPassedReportsBesideOneUnreadableFileFailTheSuite)
{
    std::vector<ReportEntry> entries = {unreadable_file("x.html")};
    const std::vector<std::string> paths = numbered_paths("", 10);
    for (const std::string& path : paths) {
        entries.push_back(passed_report(path.c_str()));
    }
    EXPECT_EQ(count_of(tile("Total Reports", "10") + tile("Passed", "10") + tile("Failed", "0") +
                           VERDICT_FAIL,
                       page_of(entries)),
              1);
}

TEST(SummaryPage, TenPassedReportsAlonePassTheSuite)
{
    std::vector<ReportEntry> entries;
    const std::vector<std::string> paths = numbered_paths("", 10);
    for (const std::string& path : paths) {
        entries.push_back(passed_report(path.c_str()));
    }
    EXPECT_EQ(count_of(tile("Total Reports", "10") + tile("Passed", "10") + tile("Failed", "0") +
                           VERDICT_PASS,
                       page_of(entries)),
              1);
}

TEST(SummaryPage, OneErroredRunAddsItsStylesItsTileAndFailsTheSuite)
{
    const std::string page = page_of({errored_report("a.html")});
    EXPECT_EQ(count_of("</style>\n" + ERRORED_STYLES + "</head>\n", page), 1);
    EXPECT_EQ(count_of("<style>", page), 2);
    EXPECT_EQ(count_of("<div class=\"kpi-grid with-errored\">\n" + tile("Total Reports", "1") +
                           tile("Passed", "0") + tile("Failed", "0") + tile("Errored", "1") +
                           VERDICT_FAIL + "</div>\n",
                       page),
              1);
}

TEST(SummaryPage, FailedReportsDoNotBringTheErroredStyles)
{
    const std::string page = page_of({failed_report("a.html"), unreadable_file("b.html")});
    EXPECT_EQ(count_of("<style>", page), 1);
    EXPECT_EQ(count_of(ERRORED_STYLES, page), 0);
    EXPECT_EQ(count_of("<div class=\"kpi-grid\">\n", page), 1);
    EXPECT_EQ(count_of("</style>\n</head>\n", page), 1);
}

TEST(SummaryPage, DirectoryIsShownEscapedWithABreakAfterEachSlash)
{
    EXPECT_EQ(count_of("<span class=\"fname\">a/<wbr>b&amp;c/<wbr></span>\n",
                       page_of(model_of({}, "a/b&c/"))),
              1);
    EXPECT_EQ(count_of("<span class=\"fname\">&lt;i&gt;&quot;&#39;\\<wbr></span>\n",
                       page_of(model_of({}, "<i>\"'\\"))),
              1);
    const std::string bytes = all_bytes();
    EXPECT_EQ(count_of("<span class=\"fname\">" + escaped_path(bytes) + "</span>\n",
                       page_of(model_of({}, bytes.c_str()))),
              1);
    EXPECT_EQ(count_of("<span class=\"fname\"></span>\n", page_of(model_of({}, ""))), 1);
}

TEST(SummaryPage, VersionStandsTwiceAndIsInsertedAsItIs)
{
    SummaryModel model = model_of({}, "in");
    model.version = "1.0 & <i>%s%n</i>\xff";
    const std::string page = page_of(model);
    EXPECT_EQ(count_of("<div class=\"meta\"><b>v1.0 & <i>%s%n</i>\xff</b></div>\n<button", page),
              1);
    EXPECT_EQ(count_of("<span><b>Fathomix Summary</b> v1.0 & <i>%s%n</i>\xff</span>\n", page), 1);
}

TEST(SummaryPage, LooksOnlyAtKindAndPassedForItsCounts)
{
    ReportEntry entry = unrelated_file("a.html");
    entry.passed = 1;
    entry.failed_check_count = 0xAAAAAAAAAAAAAAAA;
    entry.non_gating_check_count = 0xAAAAAAAAAAAAAAAA;
    entry.error[0] = 'E';
    entry.analysis_mode[0] = 'M';
    EXPECT_EQ(page_of({entry}), page_of({unrelated_file("a.html")}));
}

TEST(SummaryPage, ShowsTheFailedTableForFailedReportsOnly)
{
    const std::string title = "<p class=\"compare-table-title\">Failed</p>\n";
    EXPECT_EQ(count_of(title, page_of({passed_report("a.html")})), 0);
    EXPECT_EQ(count_of(title, page_of({errored_report("a.html")})), 0);
    EXPECT_EQ(count_of(title, page_of({failed_report("a.html")})), 1);
}

TEST(SummaryPage, HandsEachCountToTheTableItBelongsTo)
{
    const std::vector<std::string> paths = numbered_paths("", 306);
    std::vector<ReportEntry> entries;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const char* path = paths[i].c_str();
        entries.push_back(i < 1     ? errored_report(path)
                          : i < 102 ? failed_report(path)
                                    : passed_report(path));
    }
    const std::string page = page_of(entries);
    EXPECT_EQ(count_of(tile("Total Reports", "306") + tile("Passed", "204") +
                           tile("Failed", "101") + tile("Errored", "1"),
                       page),
              1);
    EXPECT_EQ(count_of("<table class=\"dt dt-numbered\" data-page-size=\"100\">", page), 2);
    EXPECT_EQ(count_of("<div class=\"dt-pager\">", page), 2);
    EXPECT_EQ(count_of("<tr><td>306</td><td><a href=\"../in/r306.html\">", page), 1);
}

TEST(SummaryPage, ReplacesALongerFileOfThatName)
{
    const TempFolder folder;
    folder.write("s.html", std::string(1000000, 'o'));
    ASSERT_TRUE(write_summary_page(folder.path("s.html").c_str(), model_of({}, "in")));
    EXPECT_EQ(with_time_replaced(folder.read("s.html")), page_of(std::vector<ReportEntry>()));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"s.html"});
}

TEST(SummaryPage, IsWrittenToThePathExactlyAsTyped)
{
    const TempFolder folder;
    const CurrentFolder current(folder.path());
    ASSERT_TRUE(write_summary_page("a\\b %s.html", model_of({}, "in")));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a\\b %s.html"});
}

TEST(SummaryPage, IsBuiltFromNothingEachTime)
{
    EXPECT_EQ(page_of({failed_report("a.html")}), page_of({failed_report("a.html")}));
    EXPECT_EQ(page_of(std::vector<ReportEntry>()), page_of(std::vector<ReportEntry>()));
}
