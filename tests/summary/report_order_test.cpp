// The order of the rows of the Results tables.

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/report_tables.h"
#include "summary/sorted_view.h"

TEST(ResultsOrder, SortsByUnsignedBytesInEveryTable)
{
    const std::vector<std::string> sorted = {
        "",     " ",  "A", "B",    "a",    "a b",      "a-b.html", "a.html",  "a/b",
        "a\\b", "aa", "b", "\x7f", "\x80", "\xc3\xa4", "\xff",     "\xff\x01"};
    std::vector<std::string> shuffled = sorted;
    std::reverse(shuffled.begin(), shuffled.end());
    std::swap(shuffled[2], shuffled[9]);
    std::vector<ReportEntry> errored;
    std::vector<ReportEntry> failed;
    std::vector<ReportEntry> passed;
    for (const std::string& path : shuffled) {
        errored.push_back(errored_report(path.c_str()));
        failed.push_back(failed_report(path.c_str()));
        passed.push_back(passed_report(path.c_str()));
    }
    EXPECT_EQ(linked_paths(results_section(errored)), sorted);
    EXPECT_EQ(linked_paths(results_section(failed)), sorted);
    EXPECT_EQ(linked_paths(results_section(passed)), sorted);
}

TEST(ResultsOrder, SortsByThePathWithItsEndingNotByTheShownName)
{
    EXPECT_EQ(linked_paths(results_section({passed_report("a.html"), passed_report("a-b.html"),
                                            passed_report("a.htm"), passed_report("a")})),
              (std::vector<std::string>{"a", "a-b.html", "a.htm", "a.html"}));
}

TEST(ResultsOrder, KeepsBothRowsOfIdenticalPaths)
{
    EXPECT_EQ(
        linked_paths(results_section({passed_report("b"), passed_report("a"), passed_report("b")})),
        (std::vector<std::string>{"a", "b", "b"}));
}

TEST(ResultsOrder, LeavesTheOrderOfTheModelAlone)
{
    const std::vector<ReportEntry> entries = {passed_report("b"), passed_report("a")};
    results_section(entries);
    EXPECT_STREQ(entries[0].relative_path, "b");
    EXPECT_STREQ(entries[1].relative_path, "a");
}

TEST(CompareEntriesByPath, HasTheSignOfTheComparisonOfUnsignedBytes)
{
    const std::vector<const char*> ascending = {"",   "\x01", " ",  "A", "Z",    "a",    "a.html",
                                                "a/", "a/b",  "ab", "b", "\x7f", "\x80", "\xff"};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        const ReportEntry first = passed_report(ascending[i]);
        for (std::size_t k = 0; k < ascending.size(); ++k) {
            const int order = compare_entries_by_path(first, passed_report(ascending[k]));
            EXPECT_EQ(order < 0, i < k) << i << " and " << k;
            EXPECT_EQ(order == 0, i == k) << i << " and " << k;
            EXPECT_EQ(order > 0, i > k) << i << " and " << k;
        }
    }
}

TEST(CompareEntriesByPath, LooksAtThePathAlone)
{
    const std::string copy = "a.html";
    ReportEntry other = errored_report(copy.c_str(), "reason");
    set_modes(other, "Mode X", "");
    EXPECT_EQ(compare_entries_by_path(passed_report("a.html"), other), 0);
}
