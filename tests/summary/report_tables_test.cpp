#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/report_tables.h"

namespace {

const std::string SECTION_START = R"(<section class="card" id="results">
<div class="card-head">
<div class="htext"><h3>Results</h3></div>
</div>
<div class="card-body">
)";
const std::string SECTION_END = "</div>\n</section>\n";

const std::string ERRORED_START = R"(<p class="compare-table-title">Errored</p>
<div class="overflow-x">
<table class="dt dt-numbered">
<thead>
<tr><th>#</th><th>Test Case</th><th>Verdict</th><th style="text-align:left">Reason</th></tr>
</thead>
<tbody>
)";
const std::string ANALYZED_START = R"(<div class="overflow-x">
<table class="dt dt-numbered">
<thead>
<tr><th>#</th><th>Test Case</th><th>Analysis Mode</th><th>Verdict</th><th>Failed Checks</th></tr>
</thead>
<tbody>
)";
const std::string FAILED_TITLE = "<p class=\"compare-table-title\">Failed</p>\n";
const std::string PASSED_TITLE = "<p class=\"compare-table-title\">Passed</p>\n";
const std::string TABLE_END = "</tbody>\n</table></div>\n";
const std::string PAGER = R"(<div class="dt-pager">
<button type="button" data-dt-prev>Prev</button>
<span class="dt-pager-status"></span>
<button type="button" data-dt-next>Next</button>
</div>
)";

// A row of a report without modes or checks, linked by its bare path.
std::string passed_row(int number, const std::string& href, const std::string& name)
{
    return "<tr><td>" + std::to_string(number) + "</td><td><a href=\"" + href + "\">" + name +
           "</a></td><td>&mdash;</td><td><span class=\"badge pass\">PASS</span></td>"
           "<td>&mdash;</td></tr>\n";
}

std::string failed_row(int number, const std::string& href, const std::string& name)
{
    return "<tr><td>" + std::to_string(number) + "</td><td><a href=\"" + href + "\">" + name +
           "</a></td><td>&mdash;</td><td><span class=\"badge fail\">FAIL</span></td>"
           "<td>&mdash;</td></tr>\n";
}

std::string errored_row(int number, const std::string& href, const std::string& name)
{
    return "<tr><td>" + std::to_string(number) + "</td><td><a href=\"" + href + "\">" + name +
           "</a></td><td><span class=\"badge fail\">ERROR</span></td>"
           "<td style=\"text-align:left\">&mdash;</td></tr>\n";
}

using MakeEntry = ReportEntry (*)(const char*);

ReportEntry errored_without_reason(const char* path)
{
    return errored_report(path);
}

void add_entries(std::vector<ReportEntry>& entries, const std::vector<std::string>& paths,
                 MakeEntry make)
{
    for (const std::string& path : paths) {
        entries.push_back(make(path.c_str()));
    }
}

// The three tables of a section, each from its title on; empty where absent.
struct Tables
{
    std::string errored;
    std::string failed;
    std::string passed;
};

Tables tables_of(const std::vector<ReportEntry>& entries)
{
    const std::string section = results_section(entries);
    const std::size_t passed = section.find(PASSED_TITLE);
    const std::size_t failed = std::min(section.find(FAILED_TITLE), passed);
    const std::size_t errored =
        std::min(section.find("<p class=\"compare-table-title\">Errored"), failed);
    EXPECT_TRUE(section.starts_with(SECTION_START));
    EXPECT_TRUE(section.ends_with(SECTION_END));
    EXPECT_EQ(errored, SECTION_START.size());
    if (passed == section.npos) {
        ADD_FAILURE() << "no Passed table";
        return {};
    }
    return {section.substr(errored, failed - errored), section.substr(failed, passed - failed),
            section.substr(passed, section.size() - SECTION_END.size() - passed)};
}

bool is_paged(const std::string& table)
{
    const bool has_size =
        count_of("<table class=\"dt dt-numbered\" data-page-size=\"100\">\n<thead>", table) == 1;
    const bool has_pager = table.ends_with(TABLE_END + PAGER);
    EXPECT_EQ(has_size, has_pager);
    EXPECT_EQ(count_of("data-page-size", table), has_size ? 1 : 0);
    EXPECT_EQ(count_of("dt-pager\"", table), has_pager ? 1 : 0);
    if (!has_pager) {
        EXPECT_TRUE(table.empty() || table.ends_with(TABLE_END));
    }
    return has_size;
}

// What append_report_table makes of a view of these entries, links bare.
std::string report_table(const std::vector<ReportEntry>& entries, std::uint8_t wanted,
                         std::uint64_t& row_counter)
{
    std::vector<const ReportEntry*> view;
    for (const ReportEntry& entry : entries) {
        view.push_back(&entry);
    }
    ResultsLinkContext context;
    std::memset(&context, 0xAA, sizeof context);
    context.links_relative = false;
    AppendedText table;
    EXPECT_TRUE(append_report_table(table.buffer, view.empty() ? nullptr : view.data(), view.size(),
                                    wanted, context, row_counter));
    return table.text();
}

} // namespace

TEST(ResultsSection, PassedReportsAloneAreSortedByPathAndNumberedInOneTable)
{
    EXPECT_EQ(results_section(
                  {passed_report("b/x.html"), passed_report("a/y.html"), passed_report("c.html")}),
              SECTION_START + PASSED_TITLE + ANALYZED_START +
                  passed_row(1, "a/y.html", "a/<wbr>y") + passed_row(2, "b/x.html", "b/<wbr>x") +
                  passed_row(3, "c.html", "c") + TABLE_END + SECTION_END);
}

TEST(ResultsSection, TwoErroredOneFailedAndOnePassedAreNumberedFromTableToTable)
{
    EXPECT_EQ(results_section({passed_report("a.html"), errored_report("d.html"),
                               failed_report("c.html"), errored_report("b.html")}),
              SECTION_START + ERRORED_START + errored_row(1, "b.html", "b") +
                  errored_row(2, "d.html", "d") + TABLE_END + FAILED_TITLE + ANALYZED_START +
                  failed_row(3, "c.html", "c") + TABLE_END + PASSED_TITLE + ANALYZED_START +
                  passed_row(4, "a.html", "a") + TABLE_END + SECTION_END);
}

TEST(ResultsSection, NoReportsStillGiveThePassedTitleAndAnEmptyTable)
{
    const std::string empty =
        SECTION_START + PASSED_TITLE + ANALYZED_START + TABLE_END + SECTION_END;
    EXPECT_EQ(results_section({}), empty);
    EXPECT_EQ(results_section({unreadable_file("a.html"), unrelated_file("b.html")}), empty);
}

TEST(ResultsSection, OnlyFailedReportsKeepTheEmptyPassedTable)
{
    EXPECT_EQ(results_section({failed_report("a.html")}),
              SECTION_START + FAILED_TITLE + ANALYZED_START + failed_row(1, "a.html", "a") +
                  TABLE_END + PASSED_TITLE + ANALYZED_START + TABLE_END + SECTION_END);
}

TEST(ResultsSection, OnlyErroredReportsKeepTheEmptyPassedTable)
{
    EXPECT_EQ(results_section({errored_report("a.html")}),
              SECTION_START + ERRORED_START + errored_row(1, "a.html", "a") + TABLE_END +
                  PASSED_TITLE + ANALYZED_START + TABLE_END + SECTION_END);
}

TEST(ResultsSection, OtherFilesStandInNoneOfItsTables)
{
    EXPECT_EQ(results_section(
                  {unreadable_file("a.html"), passed_report("b.html"), unrelated_file("c.html")}),
              results_section({passed_report("b.html")}));
}

TEST(ResultsSection, AppendsBehindWhatTheBufferHolds)
{
    AppendedText section;
    ASSERT_TRUE(text_buffer_append(section.buffer, "before"));
    ASSERT_TRUE(append_results_section(section.buffer, model_of({}, "no such folder"),
                                       "summary.html", 0, 0, 0));
    EXPECT_EQ(section.text(), "before" + results_section({}));
}

TEST(ResultsSection, PagesATableFrom101RowsOnWhicheverTableItIs)
{
    for (const int rows : {99, 100, 101}) {
        const std::vector<std::string> paths = numbered_paths("", rows);
        for (const MakeEntry make : {&errored_without_reason, &failed_report, &passed_report}) {
            std::vector<ReportEntry> entries;
            add_entries(entries, paths, make);
            const Tables tables = tables_of(entries);
            EXPECT_EQ(is_paged(tables.errored), rows > 100 && make == &errored_without_reason);
            EXPECT_EQ(is_paged(tables.failed), rows > 100 && make == &failed_report);
            EXPECT_EQ(is_paged(tables.passed), rows > 100 && make == &passed_report);
            EXPECT_EQ(linked_paths(tables.errored + tables.failed + tables.passed), paths);
        }
    }
}

TEST(ResultsSection, HundredPassedReportsHaveNoPagerAndHundredAndOneHaveIt)
{
    const std::vector<std::string> paths = numbered_paths("", 101);
    std::string rows;
    std::vector<ReportEntry> entries;
    for (int i = 1; i <= 100; ++i) {
        const std::string& path = paths[static_cast<std::size_t>(i - 1)];
        entries.push_back(passed_report(path.c_str()));
        rows += passed_row(i, path, path.substr(0, 4));
    }
    EXPECT_EQ(results_section(entries),
              SECTION_START + PASSED_TITLE + ANALYZED_START + rows + TABLE_END + SECTION_END);
    entries.push_back(passed_report(paths[100].c_str()));
    rows += passed_row(101, "r101.html", "r101");
    const std::string paged_start =
        "<div class=\"overflow-x\">\n<table class=\"dt dt-numbered\" data-page-size=\"100\">\n" +
        ANALYZED_START.substr(ANALYZED_START.find("<thead>"));
    EXPECT_EQ(results_section(entries),
              SECTION_START + PASSED_TITLE + paged_start + rows + TABLE_END + PAGER + SECTION_END);
}

TEST(ResultsSection, HundredAndOneErroredReportsGetThePageSizeInTheErroredHeader)
{
    const std::vector<std::string> paths = numbered_paths("", 101);
    std::vector<ReportEntry> entries;
    add_entries(entries, paths, errored_without_reason);
    const Tables tables = tables_of(entries);
    EXPECT_TRUE(tables.errored.starts_with(R"(<p class="compare-table-title">Errored</p>
<div class="overflow-x">
<table class="dt dt-numbered" data-page-size="100">
<thead>
<tr><th>#</th><th>Test Case</th><th>Verdict</th><th style="text-align:left">Reason</th></tr>
</thead>
<tbody>
<tr><td>1</td><td><a href="r001.html">r001</a>)"));
    EXPECT_TRUE(
        tables.errored.ends_with(errored_row(101, "r101.html", "r101") + TABLE_END + PAGER));
}

TEST(ResultsSection, Of150FailedAnd20PassedOnlyTheFailedTableIsPagedAndPassedStartAt151)
{
    const std::vector<std::string> failed = numbered_paths("f/", 150);
    const std::vector<std::string> passed = numbered_paths("a/", 20);
    std::vector<ReportEntry> entries;
    add_entries(entries, passed, passed_report);
    add_entries(entries, failed, failed_report);
    const Tables tables = tables_of(entries);
    EXPECT_TRUE(is_paged(tables.failed));
    EXPECT_FALSE(is_paged(tables.passed));
    EXPECT_EQ(linked_paths(tables.failed), failed);
    EXPECT_EQ(linked_paths(tables.passed), passed);
    EXPECT_TRUE(tables.passed.starts_with(PASSED_TITLE + ANALYZED_START +
                                          passed_row(151, "a/r001.html", "a/<wbr>r001")));
    EXPECT_TRUE(tables.passed.ends_with(passed_row(170, "a/r020.html", "a/<wbr>r020") + TABLE_END));
}

TEST(ResultsSection, AllThreeTablesMayBePagedAndNumberingRunsOn)
{
    const std::vector<std::string> errored = numbered_paths("z/", 101);
    const std::vector<std::string> failed = numbered_paths("y/", 102);
    const std::vector<std::string> passed = numbered_paths("x/", 103);
    std::vector<ReportEntry> entries;
    add_entries(entries, passed, passed_report);
    add_entries(entries, errored, errored_without_reason);
    add_entries(entries, failed, failed_report);
    const Tables tables = tables_of(entries);
    EXPECT_TRUE(is_paged(tables.errored));
    EXPECT_TRUE(is_paged(tables.failed));
    EXPECT_TRUE(is_paged(tables.passed));
    const std::string all = tables.errored + tables.failed + tables.passed;
    for (int number = 1; number <= 306; ++number) {
        EXPECT_EQ(count_of("<tr><td>" + std::to_string(number) + "</td>", all), 1);
    }
    EXPECT_EQ(count_of("<tr><td>", all), 306);
    EXPECT_EQ(count_of("<tr><td>101</td><td><a href=\"z/r101.html\">", tables.errored), 1);
    EXPECT_EQ(count_of("<tr><td>102</td><td><a href=\"y/r001.html\">", tables.failed), 1);
    EXPECT_EQ(count_of("<tr><td>204</td><td><a href=\"x/r001.html\">", tables.passed), 1);
}

TEST(ResultsSection, RowsOfTheOtherTablesDoNotMakeATablePaged)
{
    std::vector<ReportEntry> entries;
    const std::vector<std::string> paths = numbered_paths("", 100);
    add_entries(entries, paths, errored_without_reason);
    add_entries(entries, paths, failed_report);
    add_entries(entries, paths, passed_report);
    const Tables tables = tables_of(entries);
    EXPECT_FALSE(is_paged(tables.errored));
    EXPECT_FALSE(is_paged(tables.failed));
    EXPECT_FALSE(is_paged(tables.passed));
}

TEST(ReportTable, EmptyViewGivesHeaderAndEmptyBody)
{
    for (const bool passed : {false, true}) {
        const std::uint8_t wanted = passed ? 1 : 0;
        std::uint64_t counter = 7;
        EXPECT_EQ(report_table({}, wanted, counter), ANALYZED_START + TABLE_END);
        EXPECT_EQ(counter, 7U);
    }
}

TEST(ReportTable, ViewWithoutMatchesGivesHeaderAndEmptyBody)
{
    std::uint64_t counter = 7;
    EXPECT_EQ(report_table({failed_report("a"), errored_report("b")}, 1, counter),
              ANALYZED_START + TABLE_END);
    EXPECT_EQ(report_table({passed_report("a"), errored_report("b")}, 0, counter),
              ANALYZED_START + TABLE_END);
    EXPECT_EQ(counter, 7U);
}

TEST(ReportTable, TakesRowNumbersFromTheCounterAndHandsItOn)
{
    std::uint64_t counter = 41;
    const std::vector<ReportEntry> entries = {passed_report("a.html"), failed_report("b.html"),
                                              passed_report("c.html")};
    EXPECT_EQ(report_table(entries, 1, counter), ANALYZED_START + passed_row(42, "a.html", "a") +
                                                     passed_row(43, "c.html", "c") + TABLE_END);
    EXPECT_EQ(counter, 43U);
    EXPECT_EQ(report_table(entries, 0, counter),
              ANALYZED_START + failed_row(44, "b.html", "b") + TABLE_END);
    EXPECT_EQ(counter, 44U);
}

TEST(ReportTable, CountsRowsPastThe32BitLimit)
{
    std::uint64_t counter = 4294967295;
    EXPECT_EQ(count_of("<tr><td>4294967296</td>", report_table({passed_report("a")}, 1, counter)),
              1);
}

TEST(ReportTable, KeepsTheOrderOfItsView)
{
    std::uint64_t counter = 0;
    EXPECT_EQ(linked_paths(report_table(
                  {passed_report("c"), passed_report("a"), passed_report("b")}, 1, counter)),
              (std::vector<std::string>{"c", "a", "b"}));
}

TEST(ReportTable, LeavesOutErroredRunsWhateverTheirPassedFlag)
{
    ReportEntry flagged = errored_report("a");
    flagged.passed = 1;
    std::uint64_t counter = 0;
    EXPECT_EQ(report_table({flagged}, 1, counter), ANALYZED_START + TABLE_END);
    EXPECT_EQ(report_table({errored_report("b")}, 0, counter), ANALYZED_START + TABLE_END);
}

TEST(ReportTable, SelectsByEqualPassedFlagAndBadgesByNonZero)
{
    ReportEntry entry = passed_report("a.html");
    entry.passed = 2;
    std::uint64_t counter = 0;
    EXPECT_EQ(report_table({entry}, 1, counter), ANALYZED_START + TABLE_END);
    EXPECT_EQ(report_table({entry}, 0, counter), ANALYZED_START + TABLE_END);
    EXPECT_EQ(report_table({entry}, 2, counter),
              ANALYZED_START + passed_row(1, "a.html", "a") + TABLE_END);
}

TEST(ReportTable, CountsOnlyItsOwnRowsForThePageSize)
{
    const std::vector<std::string> paths = numbered_paths("", 101);
    std::vector<ReportEntry> entries;
    add_entries(entries, paths, passed_report);
    entries[50] = failed_report("r051.html");
    std::uint64_t counter = 0;
    EXPECT_FALSE(is_paged(report_table(entries, 1, counter)));
    EXPECT_FALSE(is_paged(report_table(entries, 0, counter)));
    entries[50] = passed_report("r051.html");
    EXPECT_TRUE(is_paged(report_table(entries, 1, counter)));
}

TEST(ReportTable, PageSizeIsHundred)
{
    EXPECT_EQ(TABLE_PAGE_SIZE, 100U);
}
