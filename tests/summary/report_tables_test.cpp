// The Results section: its tables, their order, their numbers and their pagers. What a
// row holds is tested in report_rows_test.cpp.

#include <algorithm>
#include <cstring>
#include <regex>
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
const std::string ERRORED_HEADER = R"(<thead>
<tr><th>#</th><th>Test Case</th><th>Verdict</th><th style="text-align:left">Reason</th></tr>
</thead>
)";
const std::string ANALYZED_HEADER = R"(<thead>
<tr><th>#</th><th>Test Case</th><th>Analysis Mode</th><th>Verdict</th><th>Failed Checks</th></tr>
</thead>
)";
const std::string PAGER = R"(<div class="dt-pager">
<button type="button" data-dt-prev>Prev</button>
<span class="dt-pager-status"></span>
<button type="button" data-dt-next>Next</button>
</div>
)";

std::string title(const std::string& text)
{
    return "<p class=\"compare-table-title\">" + text + "</p>\n";
}

// A table with this header and no rows.
std::string table(const std::string& header)
{
    return "<div class=\"overflow-x\">\n<table class=\"dt dt-numbered\">\n" + header +
           "<tbody>\n</tbody>\n</table></div>\n";
}

std::string paged_table(const std::string& header)
{
    return "<div class=\"overflow-x\">\n"
           "<table class=\"dt dt-numbered\" data-page-size=\"100\">\n" +
           header + "<tbody>\n</tbody>\n</table></div>\n" + PAGER;
}

// A section with its rows taken out.
std::string without_rows(const std::string& section)
{
    return std::regex_replace(section, std::regex("<tr><td>[^\n]*\n"), "");
}

using Lines = std::vector<std::string>;

// What one sees of the tables: each title, and the number and the link of each row.
Lines lines_of(const std::string& markup)
{
    Lines lines;
    for (const PageTable& found : read_tables(markup)) {
        lines.push_back(found.title);
        for (const PageRow& row : found.rows) {
            lines.push_back(row.cells.at(0) + " " + row.link);
        }
    }
    return lines;
}

// The titles of those tables that are paged.
Lines paged(const std::vector<ReportEntry>& entries)
{
    Lines titles;
    for (const PageTable& found : read_tables(results_section(entries))) {
        EXPECT_EQ(found.page_size, found.has_pager ? "100" : "");
        if (found.has_pager) {
            titles.push_back(found.title);
        }
    }
    return titles;
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
    return appended([&](TextBuffer& buffer) {
        return append_report_table(buffer, view.data(), view.size(), wanted, context, row_counter);
    });
}

} // namespace

TEST(ResultsSection, PassedReportsAloneAreSortedByPathAndNumberedWithoutOtherTables)
{
    const std::vector<ReportEntry> entries = {passed_report("b/x.html"), passed_report("a/y.html"),
                                              passed_report("c.html")};
    EXPECT_EQ(without_rows(results_section(entries)),
              SECTION_START + title("Passed") + table(ANALYZED_HEADER) + SECTION_END);
    EXPECT_EQ(lines_of(results_section(entries)),
              (Lines{"Passed", "1 a/y.html", "2 b/x.html", "3 c.html"}));
}

TEST(ResultsSection, TwoErroredOneFailedAndOnePassedAreNumberedFromTableToTable)
{
    const std::vector<ReportEntry> entries = {passed_report("a.html"), errored_report("d.html"),
                                              failed_report("c.html"), errored_report("b.html")};
    EXPECT_EQ(without_rows(results_section(entries)),
              SECTION_START + title("Errored") + table(ERRORED_HEADER) + title("Failed") +
                  table(ANALYZED_HEADER) + title("Passed") + table(ANALYZED_HEADER) + SECTION_END);
    EXPECT_EQ(
        lines_of(results_section(entries)),
        (Lines{"Errored", "1 b.html", "2 d.html", "Failed", "3 c.html", "Passed", "4 a.html"}));
}

TEST(ResultsSection, KeepsThePassedTitleAndAnEmptyTableWithoutPassedReports)
{
    const Lines empty = {"Passed"};
    EXPECT_EQ(lines_of(results_section({})), empty);
    EXPECT_EQ(lines_of(results_section({unreadable_file("a.html"), unrelated_file("b.html")})),
              empty);
    EXPECT_EQ(lines_of(results_section({failed_report("a.html")})),
              (Lines{"Failed", "1 a.html", "Passed"}));
    EXPECT_EQ(lines_of(results_section({errored_report("a.html")})),
              (Lines{"Errored", "1 a.html", "Passed"}));
}

TEST(ResultsSection, SortsByUnsignedBytesOfTheWholePathInEveryTable)
{
    const Lines sorted = {"",         " ",     "A",        "B",    "a",       "a b",
                          "a-b.html", "a.htm", "a.html",   "a/b",  "aa",      "b",
                          "\x7f",     "\x80",  "\xc3\xa4", "\xff", "\xff\x01"};
    Lines shuffled(sorted.rbegin(), sorted.rend());
    std::swap(shuffled[2], shuffled[9]);
    for (const MakeEntry make :
         {MakeEntry{errored_report}, MakeEntry{failed_report}, MakeEntry{passed_report}}) {
        const std::string section = results_section(entries_of(shuffled, make));
        EXPECT_EQ(linked_paths(read_tables(section)), sorted);
    }
}

TEST(ResultsSection, HundredRowsHaveNoPagerAndHundredAndOneHaveItBehindTheirTable)
{
    const Lines paths = numbered_paths("", 101);
    const Lines hundred(paths.begin(), paths.end() - 1);
    EXPECT_EQ(without_rows(results_section(entries_of(hundred, passed_report))),
              SECTION_START + title("Passed") + table(ANALYZED_HEADER) + SECTION_END);
    EXPECT_EQ(without_rows(results_section(entries_of(paths, passed_report))),
              SECTION_START + title("Passed") + paged_table(ANALYZED_HEADER) + SECTION_END);
    EXPECT_EQ(without_rows(results_section(entries_of(paths, errored_report))),
              SECTION_START + title("Errored") + paged_table(ERRORED_HEADER) + title("Passed") +
                  table(ANALYZED_HEADER) + SECTION_END);
    EXPECT_EQ(paged(entries_of(hundred, errored_report)), Lines());
    EXPECT_EQ(paged(entries_of(hundred, failed_report)), Lines());
    EXPECT_EQ(paged(entries_of(paths, failed_report)), Lines{"Failed"});
}

TEST(ResultsSection, Of150FailedAnd20PassedOnlyTheFailedTableIsPagedAndPassedStartAt151)
{
    const Lines failed = numbered_paths("f/", 150);
    const Lines passed = numbered_paths("a/", 20);
    const std::vector<ReportEntry> entries =
        together(entries_of(passed, passed_report), entries_of(failed, failed_report));
    EXPECT_EQ(paged(entries), Lines{"Failed"});
    const Lines rows = lines_of(results_section(entries));
    ASSERT_EQ(rows.size(), 172U);
    EXPECT_EQ(rows[150], "150 f/r150.html");
    EXPECT_EQ(rows[151], "Passed");
    EXPECT_EQ(rows[152], "151 a/r001.html");
    EXPECT_EQ(rows[171], "170 a/r020.html");
}

TEST(ResultsSection, AllThreeTablesMayBePaged)
{
    const Lines errored = numbered_paths("z/", 101);
    const Lines failed = numbered_paths("y/", 101);
    const Lines passed = numbered_paths("x/", 101);
    EXPECT_EQ(paged(together(entries_of(passed, passed_report),
                             together(entries_of(errored, errored_report),
                                      entries_of(failed, failed_report)))),
              (Lines{"Errored", "Failed", "Passed"}));
}

TEST(ReportTable, WithoutMatchesIsAHeaderAndAnEmptyBody)
{
    std::uint64_t counter = 7;
    EXPECT_EQ(report_table({}, 1, counter), table(ANALYZED_HEADER));
    EXPECT_EQ(report_table({failed_report("a"), errored_report("b")}, 1, counter),
              table(ANALYZED_HEADER));
    EXPECT_EQ(report_table({passed_report("a"), errored_report("b")}, 0, counter),
              table(ANALYZED_HEADER));
    EXPECT_EQ(counter, 7U);
}

TEST(ReportTable, KeepsTheOrderOfItsViewAndHandsTheCounterOn)
{
    std::uint64_t counter = 4294967294;
    const std::string rows =
        report_table({passed_report("c"), failed_report("b"), passed_report("a")}, 1, counter);
    EXPECT_EQ(lines_of(rows), (Lines{"", "4294967295 c", "4294967296 a"}));
    EXPECT_EQ(counter, 4294967296U);
}

TEST(ReportTable, CountsOnlyItsOwnRowsForThePageSize)
{
    const Lines paths = numbered_paths("", 101);
    std::vector<ReportEntry> entries = entries_of(paths, passed_report);
    entries[50] = failed_report("r051.html");
    std::uint64_t counter = 0;
    EXPECT_FALSE(read_tables(report_table(entries, 1, counter))[0].has_pager);
    entries[50] = passed_report("r051.html");
    EXPECT_TRUE(read_tables(report_table(entries, 1, counter))[0].has_pager);
}
