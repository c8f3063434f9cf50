#include <cstdint>
#include <type_traits>

#include <gtest/gtest.h>

#include "report/report_entry.h"

TEST(ReportEntry, HoldsItsTextsAndListsInTheirSizes)
{
    EXPECT_EQ(sizeof(ReportEntry::kind), 4U);
    EXPECT_EQ(sizeof(ReportEntry::passed), 1U);
    EXPECT_EQ(sizeof(ReportEntry::analysis_mode), 40U);
    EXPECT_EQ(sizeof(ReportEntry::analysis_mode_sub), 40U);
    EXPECT_EQ(sizeof(ReportEntry::failed_checks), 16U * 40U);
    EXPECT_EQ(sizeof(ReportEntry::failed_check_count), 8U);
    EXPECT_EQ(sizeof(ReportEntry::non_gating_checks), 16U * 40U);
    EXPECT_EQ(sizeof(ReportEntry::non_gating_check_count), 8U);
    EXPECT_EQ(sizeof(ReportEntry::error), 640U);
}

TEST(ReportEntry, IsAPlainRecord)
{
    EXPECT_TRUE(std::is_trivial_v<ReportEntry>);
    EXPECT_TRUE(std::is_standard_layout_v<ReportEntry>);
}

TEST(ReportEntry, KindsHaveTheirNumbers)
{
    EXPECT_EQ(static_cast<std::uint32_t>(ReportKind::Analyzed), 0U);
    EXPECT_EQ(static_cast<std::uint32_t>(ReportKind::NotAnalyzeReport), 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(ReportKind::Unreadable), 2U);
    EXPECT_EQ(static_cast<std::uint32_t>(ReportKind::RunError), 3U);
}
