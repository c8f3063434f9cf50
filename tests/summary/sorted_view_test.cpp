#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/sorted_view.h"
#include "support/call_faults.h"

namespace {

using Paths = std::vector<std::string>;

Paths sorted_by_view(const Paths& paths)
{
    const std::vector<ReportEntry> entries = entries_of(paths, passed_report);
    const SummaryModel model = model_of(entries);
    SortedView view;
    sorted_view_init(view);
    EXPECT_TRUE(sorted_view_fill(view, model, entries.size()));
    Paths sorted;
    for (std::uint64_t i = 0; i < view.length; ++i) {
        sorted.emplace_back(view.entries[i]->relative_path);
    }
    sorted_view_free(view);
    EXPECT_EQ(view.entries, nullptr);
    EXPECT_EQ(view.length, 0U);
    return sorted;
}

} // namespace

TEST(SortedView, OfNoneOneOrEqualPathsHoldsThemAll)
{
    EXPECT_EQ(sorted_by_view({}), Paths());
    EXPECT_EQ(sorted_by_view({"a.html"}), Paths({"a.html"}));
    EXPECT_EQ(sorted_by_view({"a", "a", "a"}), Paths({"a", "a", "a"}));
}

// An order that puts one of two equals first makes a sort of many leave its array.
TEST(SortedView, OfAThousandEqualPathsHoldsEachEntryOnce)
{
    const Paths paths(1000, "folder/report.html");
    const std::vector<ReportEntry> entries = entries_of(paths, passed_report);
    const SummaryModel model = model_of(entries);
    SortedView view;
    sorted_view_init(view);
    ASSERT_TRUE(sorted_view_fill(view, model, entries.size()));
    std::vector<const ReportEntry*> held(view.entries, view.entries + view.length);
    std::sort(held.begin(), held.end());
    std::vector<const ReportEntry*> expected;
    for (const ReportEntry& entry : entries) {
        expected.push_back(&entry);
    }
    EXPECT_EQ(held, expected);
    sorted_view_free(view);
}

TEST(SortedView, TellsPathsApartBehindTheirFirstDistinctBytes)
{
    EXPECT_EQ(sorted_by_view({"s/12345678b", "s/12345678a", "s/1234567", "s/12345678"}),
              Paths({"s/1234567", "s/12345678", "s/12345678a", "s/12345678b"}));
    EXPECT_EQ(sorted_by_view({"x", "s/12345678b", "s/12345678a", "s/12345678"}),
              Paths({"s/12345678", "s/12345678a", "s/12345678b", "x"}));
}

TEST(SortedView, LeavesOtherFilesOut)
{
    const Paths paths = {"d", "c", "b", "a"};
    std::vector<ReportEntry> entries = entries_of(paths, passed_report);
    entries[0].kind = ReportKind::Unreadable;
    entries[1].kind = ReportKind::RunError;
    entries[2].kind = ReportKind::NotAnalyzeReport;
    const SummaryModel model = model_of(entries);
    SortedView view;
    sorted_view_init(view);
    ASSERT_TRUE(sorted_view_fill(view, model, 2));
    ASSERT_EQ(view.length, 2U);
    EXPECT_EQ(view.entries[0], &entries[3]);
    EXPECT_EQ(view.entries[1], &entries[1]);
    sorted_view_free(view);
}

TEST(SortedView, SortsRandomPathsAsAPlainSortDoes)
{
    std::mt19937_64 random(7);
    for (int round = 0; round < 300; ++round) {
        Paths paths(random() % 60);
        const std::string stem(random() % 12, 's');
        for (std::string& path : paths) {
            path = stem;
            for (std::uint64_t length = random() % 14; length > 0; --length) {
                path += "\x01/ab\x80\xff"[random() % 6];
            }
            // Long runs alike, so that the first bytes alone do not decide.
            path += std::string(random() % 3 == 0 ? 10 : 0, 'r');
            path += "ab"[random() % 2];
        }
        Paths expected = paths;
        std::sort(expected.begin(), expected.end());
        ASSERT_EQ(sorted_by_view(paths), expected) << "round " << round;
    }
}

TEST(SortedView, StaysEmptyWhenEitherAllocationFails)
{
    const Paths paths = {"b", "a"};
    const std::vector<ReportEntry> entries = entries_of(paths, passed_report);
    const SummaryModel model = model_of(entries);
    for (const std::uint64_t number : {1U, 2U}) {
        SortedView view;
        sorted_view_init(view);
        const AllocationFault fault(number, Length::Once);
        EXPECT_FALSE(sorted_view_fill(view, model, 2));
        EXPECT_EQ(fault.failures(), 1U);
        EXPECT_EQ(view.entries, nullptr);
        EXPECT_EQ(view.length, 0U);
    }
}

TEST(CompareEntriesByPath, HasTheSignOfTheComparisonOfUnsignedBytes)
{
    const Paths ascending = {"",   "\x01", " ",  "A", "Z",    "a",    "a.html",
                             "a/", "a/b",  "ab", "b", "\x7f", "\x80", "\xff"};
    const std::vector<ReportEntry> entries = entries_of(ascending, passed_report);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        for (std::size_t k = 0; k < entries.size(); ++k) {
            const int order = compare_entries_by_path(entries[i], entries[k]);
            EXPECT_EQ(order < 0, i < k) << i << " and " << k;
            EXPECT_EQ(order > 0, i > k) << i << " and " << k;
        }
    }
}
