#include <cstddef>
#include <type_traits>

#include <gtest/gtest.h>

#include "report/report_entry.h"

namespace {

TEST(ReportEntry, HoldsItsFieldsInOrderAndInTheirSizes)
{
    EXPECT_EQ(offsetof(ReportEntry, relative_path), 0U);
    EXPECT_LT(offsetof(ReportEntry, relative_path), offsetof(ReportEntry, kind));
    EXPECT_LT(offsetof(ReportEntry, kind), offsetof(ReportEntry, passed));
    EXPECT_LT(offsetof(ReportEntry, passed), offsetof(ReportEntry, analysis_mode));
    EXPECT_LT(offsetof(ReportEntry, analysis_mode), offsetof(ReportEntry, analysis_mode_sub));
    EXPECT_LT(offsetof(ReportEntry, analysis_mode_sub), offsetof(ReportEntry, failed_checks));
    EXPECT_LT(offsetof(ReportEntry, failed_checks), offsetof(ReportEntry, failed_check_count));
    EXPECT_LT(offsetof(ReportEntry, failed_check_count), offsetof(ReportEntry, non_gating_checks));
    EXPECT_LT(offsetof(ReportEntry, non_gating_checks),
              offsetof(ReportEntry, non_gating_check_count));
    EXPECT_LT(offsetof(ReportEntry, non_gating_check_count), offsetof(ReportEntry, error));

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

} // namespace
