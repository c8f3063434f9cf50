// What becomes of the names of failed checks in a report that passed.

#include <string>

#include <gtest/gtest.h>

#include "report/scraped_report.h"

namespace {

// The non-gating names of a passed report with these tabs.
Names names_of(const std::string& tabs)
{
    const ReadReport report = scrape(verdict("PASS") + bar(tabs));
    EXPECT_EQ(report.kind, ReportKind::Analyzed);
    EXPECT_TRUE(report.passed);
    EXPECT_EQ(report.failed_checks, Names());
    return report.non_gating_checks;
}

} // namespace

TEST(PassedReport, OfThreeGatingAndTwoNonGatingTabsHasFiveNonGatingNamesThoseTwoFirst)
{
    EXPECT_EQ(names_of(gating_tab("g1") + non_gating_tab("n1") + gating_tab("g2") +
                       gating_tab("g3") + non_gating_tab("n2")),
              Names({"n1", "n2", "g1", "g2", "g3"}));
}

TEST(PassedReport, OfThreeGatingAndThenSixteenNonGatingNamesDropsTheThree)
{
    EXPECT_EQ(names_of(gating_tabs("g", 3) + non_gating_tabs("n", 16)), numbered("n", 16));
}

TEST(PassedReport, KeepsAsManyMovedNamesAsThereIsRoomFor)
{
    EXPECT_EQ(names_of(gating_tabs("g", 3) + non_gating_tabs("n", 15)),
              together(numbered("n", 15), {"g1"}));
    EXPECT_EQ(names_of(gating_tabs("g", 3) + non_gating_tabs("n", 13)),
              together(numbered("n", 13), numbered("g", 3)));
    EXPECT_EQ(names_of(non_gating_tabs("n", 15) + gating_tabs("g", 16)),
              together(numbered("n", 15), {"g1"}));
}

TEST(PassedReport, OfSixteenGatingNamesOnlyMovesThemAll)
{
    EXPECT_EQ(names_of(gating_tabs("g", 16)), numbered("g", 16));
    EXPECT_EQ(names_of(gating_tabs("g", 17) + non_gating_tab("late")), numbered("g", 16));
    EXPECT_EQ(names_of(non_gating_tab("n") + gating_tabs("g", 16)),
              together({"n"}, numbered("g", 15)));
}

TEST(PassedReport, MovesWholeNamesOf39BytesAndEmptyOnes)
{
    const std::string longest = std::string(38, 'n') + "Z";
    EXPECT_EQ(names_of(gating_tab(longest + "!") + gating_tab("")), Names({longest, ""}));
}

TEST(PassedReport, MovesItsNamesAlsoWhenTheModeFigureIsBroken)
{
    const ReadReport report = scrape(verdict("PASS") + bar(gating_tab("Level")) +
                                     "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">m");
    EXPECT_EQ(report, (ReadReport{ReportKind::Analyzed, true, "", "", {}, {"Level"}, ""}));
}
