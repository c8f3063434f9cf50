#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/summary_model.h"

namespace {

void expect_tally(const std::vector<ReportEntry>& entries, std::uint64_t passed,
                  std::uint64_t failed, std::uint64_t errored, std::uint64_t other)
{
    const SummaryModel model = model_of(entries);
    const SummaryTally tally = tally_entries(model.entries, model.count);
    EXPECT_EQ(tally.passed, passed);
    EXPECT_EQ(tally.failed, failed);
    EXPECT_EQ(tally.errored, errored);
    EXPECT_EQ(tally.other, other);
}

ReportEntry entry_of_unknown_kind()
{
    ReportEntry entry = unrelated_file("a.html");
    entry.kind = static_cast<ReportKind>(4);
    return entry;
}

} // namespace

TEST(TallyEntries, IsAllZeroesForNoEntriesAtAll)
{
    expect_tally({}, 0, 0, 0, 0);
}

TEST(TallyEntries, CountsAMixtureInOnePass)
{
    expect_tally({errored_report("a"), passed_report("b"), unreadable_file("c"), failed_report("d"),
                  passed_report("e"), unrelated_file("f"), passed_report("g"), failed_report("h"),
                  unrelated_file("i"), errored_report("j"), entry_of_unknown_kind(),
                  passed_report("l"), unrelated_file("m")},
                 4, 2, 2, 5);
}

TEST(TallyEntries, CountsNoMoreEntriesThanItIsTold)
{
    const std::vector<ReportEntry> entries = {passed_report("a"), failed_report("b"),
                                              errored_report("c")};
    const SummaryTally two = tally_entries(entries.data(), 2);
    EXPECT_EQ(two.passed, 1U);
    EXPECT_EQ(two.failed, 1U);
    EXPECT_EQ(two.errored, 0U);
    EXPECT_EQ(two.other, 0U);
}

TEST(TotalReports, IsTheSumOfPassedFailedAndErroredWithoutOtherFiles)
{
    EXPECT_EQ(total_reports({0, 0, 0, 0}), 0U);
    EXPECT_EQ(total_reports({1, 0, 0, 0}), 1U);
    EXPECT_EQ(total_reports({0, 1, 0, 0}), 1U);
    EXPECT_EQ(total_reports({0, 0, 1, 0}), 1U);
    EXPECT_EQ(total_reports({0, 0, 0, 1}), 0U);
    EXPECT_EQ(total_reports({100, 20, 3, 4000}), 123U);
    EXPECT_EQ(total_reports({4294967296, 4294967296, 1, 0}), 8589934593U);
}

TEST(IsReport, HoldsForAnalyzedEntriesAndErroredRunsOnly)
{
    EXPECT_TRUE(is_report(passed_report("a")));
    EXPECT_TRUE(is_report(failed_report("a")));
    EXPECT_TRUE(is_report(errored_report("a")));
    EXPECT_FALSE(is_report(unreadable_file("a")));
    EXPECT_FALSE(is_report(unrelated_file("a")));
    EXPECT_FALSE(is_report(entry_of_unknown_kind()));
}
