#include <gtest/gtest.h>

#include "report/report_entry.h"

namespace {

Outcome outcome(ReportKind kind, std::uint8_t passed)
{
    ReportEntry entry = {};
    entry.kind = kind;
    entry.passed = passed;
    return outcome_of(entry);
}

TEST(OutcomeOf, AnAnalyzedReportPassedOrFailedByItsFlag)
{
    EXPECT_EQ(outcome(ReportKind::Analyzed, 1), Outcome::Passed);
    EXPECT_EQ(outcome(ReportKind::Analyzed, 255), Outcome::Passed);
    EXPECT_EQ(outcome(ReportKind::Analyzed, 0), Outcome::Failed);
}

TEST(OutcomeOf, TheFlagOfNoOtherKindMatters)
{
    for (const std::uint8_t passed : {std::uint8_t{0}, std::uint8_t{1}}) {
        EXPECT_EQ(outcome(ReportKind::RunError, passed), Outcome::Errored);
        EXPECT_EQ(outcome(ReportKind::NotAnalyzeReport, passed), Outcome::NoReport);
        EXPECT_EQ(outcome(ReportKind::Unreadable, passed), Outcome::Unreadable);
    }
}

TEST(OutcomeOf, AnUnknownKindIsNoReport)
{
    EXPECT_EQ(outcome(static_cast<ReportKind>(4), 1), Outcome::NoReport);
    EXPECT_EQ(outcome(static_cast<ReportKind>(0xFFFFFFFF), 0), Outcome::NoReport);
}

} // namespace
