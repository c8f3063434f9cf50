// What becomes of the names of failed checks in a report that passed.

#include <string>

#include <gtest/gtest.h>

#include "report/scraped_report.h"

namespace {

ReportEntry passed_report(const std::string& tabs)
{
    const ReportEntry entry = scrape(verdict("PASS") + bar(tabs));
    EXPECT_EQ(entry.kind, ReportKind::Analyzed);
    EXPECT_EQ(entry.passed, 1);
    EXPECT_EQ(entry.failed_check_count, 0U);
    return entry;
}

} // namespace

TEST(PassedReport, OfThreeGatingAndTwoNonGatingTabsHasFiveNonGatingNamesThoseTwoFirst)
{
    const ReportEntry entry =
        passed_report(gating_tab("g1") + non_gating_tab("n1") + gating_tab("g2") +
                      gating_tab("g3") + non_gating_tab("n2"));
    EXPECT_EQ(entry.non_gating_check_count, 5U);
    EXPECT_EQ(non_gating_names(entry), Names({"n1", "n2", "g1", "g2", "g3"}));
    EXPECT_TRUE(slots_untouched_from(entry.non_gating_checks, 5));
}

TEST(PassedReport, OfThreeGatingAndThenSixteenNonGatingNamesDropsTheThree)
{
    const ReportEntry entry = passed_report(gating_tabs("g", 3) + non_gating_tabs("n", 16));
    EXPECT_EQ(non_gating_names(entry), numbered("n", 16));
}

TEST(PassedReport, KeepsAsManyMovedNamesAsThereIsRoomFor)
{
    EXPECT_EQ(non_gating_names(passed_report(gating_tabs("g", 3) + non_gating_tabs("n", 15))),
              together(numbered("n", 15), {"g1"}));
    EXPECT_EQ(non_gating_names(passed_report(gating_tabs("g", 3) + non_gating_tabs("n", 13))),
              together(numbered("n", 13), numbered("g", 3)));
    EXPECT_EQ(non_gating_names(passed_report(gating_tabs("g", 3) + non_gating_tabs("n", 12))),
              together(numbered("n", 12), numbered("g", 3)));
    EXPECT_EQ(non_gating_names(passed_report(non_gating_tabs("n", 15) + gating_tabs("g", 16))),
              together(numbered("n", 15), {"g1"}));
}

TEST(PassedReport, OfSixteenGatingNamesOnlyMovesThemAll)
{
    EXPECT_EQ(non_gating_names(passed_report(gating_tabs("g", 16))), numbered("g", 16));
    EXPECT_EQ(non_gating_names(passed_report(gating_tabs("g", 17) + non_gating_tab("late"))),
              numbered("g", 16));
    EXPECT_EQ(non_gating_names(passed_report(non_gating_tab("n") + gating_tabs("g", 16))),
              together({"n"}, numbered("g", 15)));
}

TEST(PassedReport, WithoutFailingTabsHasNoNames)
{
    const ReportEntry entry = passed_report(passing_tab("a"));
    EXPECT_EQ(entry.non_gating_check_count, 0U);
    EXPECT_TRUE(slots_untouched_from(entry.non_gating_checks, 0));
}

TEST(PassedReport, WithNonGatingTabsOnlyKeepsThem)
{
    EXPECT_EQ(non_gating_names(passed_report(non_gating_tabs("n", 2))), numbered("n", 2));
}

TEST(PassedReport, MovesWholeNamesOf39BytesAndEmptyOnes)
{
    const std::string longest = std::string(38, 'n') + "Z";
    EXPECT_EQ(non_gating_names(passed_report(gating_tab(longest + "!") + gating_tab(""))),
              Names({longest, ""}));
}

TEST(PassedReport, OfAnyWordThatBeginsWithPassMovesItsNames)
{
    const ReportEntry entry = scrape(verdict("PASSED") + bar(gating_tab("Level")));
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_EQ(non_gating_names(entry), Names({"Level"}));
}

TEST(PassedReport, MovesItsNamesAlsoWhenTheModeFigureIsMissingOrBroken)
{
    for (
        const char* figure :
        {"", "<div class=\"k\">Analysis Mode</div>\n", "<div class=\"k\">Analysis Mode</div>\nx",
         "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">m",
         "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">m</div><div class=\"kpi-sub\">s"}) {
        const ReportEntry entry = scrape(verdict("PASS") + bar(gating_tab("Level")) + figure);
        EXPECT_EQ(entry.failed_check_count, 0U);
        EXPECT_EQ(non_gating_names(entry), Names({"Level"}));
    }
}

TEST(PassedReport, ReadsItsModeAsWell)
{
    const ReportEntry entry =
        scrape(verdict("PASS") + bar(gating_tab("Level")) + mode_figure("Loopback", "stereo"));
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
    EXPECT_STREQ(entry.analysis_mode_sub, "stereo");
}
