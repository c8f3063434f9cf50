// Documents of some 12 MB made so that a search which starts over again and again
// would never come to an end. What counts is the right result; the time limit of
// every test does the rest.

#include <string>

#include <gtest/gtest.h>

#include "report/scraped_report.h"
#include "support/temp_folder.h"

namespace {

constexpr std::uint64_t MILLION = 1000000;

} // namespace

TEST(ReportSize, AMillionTabsThatAreNearlyFailingAreAllPassedOver)
{
    const ReadReport report =
        scrape(verdict("FAIL") + bar(repeated("<a data-fai></a>", MILLION) + gating_tab("Level")) +
               mode_figure("Loopback", "stereo"));
    EXPECT_EQ(report.failed_checks, Names({"Level"}));
    EXPECT_EQ(report.non_gating_checks, Names());
    EXPECT_EQ(report.analysis_mode, "Loopback");
}

TEST(ReportSize, FourMillionTabsWithoutAClosingAngleAreOne)
{
    const ReadReport report =
        scrape(verdict("FAIL") + "<nav class=\"nav-tabs\">" + repeated("<a ", 4 * MILLION) +
               "</nav>" + mode_figure("Loopback", ""));
    EXPECT_EQ(report.failed_checks, Names());
    EXPECT_EQ(report.analysis_mode, "Loopback");
}

TEST(ReportSize, BarsThatNeverEndYieldNoNames)
{
    const ReadReport report =
        scrape(verdict("FAIL") + repeated("<nav class=\"nav-tabs\">", MILLION / 2) +
               gating_tab("Level") + mode_figure("Loopback", ""));
    EXPECT_EQ(report.failed_checks, Names());
    EXPECT_EQ(report.analysis_mode, "Loopback");
}

TEST(ReportSize, ARepeatedPrefixOfTheVerdictLabelIsNone)
{
    const std::string prefixes = repeated("<div class=\"k\">Overall Verdict</div", MILLION / 3);
    EXPECT_EQ(scrape(prefixes), empty_report(ReportKind::NotAnalyzeReport));
    EXPECT_EQ(scrape(prefixes + verdict("PASS")).passed, 1);
}

TEST(ReportSize, ARepeatedPrefixOfTheModeLabelIsNone)
{
    const ReadReport report =
        scrape(verdict("FAIL") + repeated("<div class=\"k\">Analysis Mode</div>", MILLION / 3) +
               mode_figure("Loopback", "stereo"));
    EXPECT_EQ(report.analysis_mode, "Loopback");
    EXPECT_EQ(report.analysis_mode_sub, "stereo");
}

TEST(ReportSize, ErrorParagraphsThatNeverEndGiveNoErrorText)
{
    const ReadReport report =
        scrape(verdict("ERROR") + repeated("<p class=\"run-error\">", MILLION / 2));
    EXPECT_EQ(report.kind, ReportKind::RunError);
    EXPECT_EQ(report.error, "");
}

TEST(ReportSize, AFileOfTwelveMillionBytesIsReadToItsEnd)
{
    const TempFolder folder;
    folder.write("a.html", std::string(12 * MILLION, ' ') + verdict("FAIL") +
                               mode_figure("Loopback", "stereo") + bar(gating_tab("Level")));
    const ReadReport report = read_report(folder.path("a.html"));
    EXPECT_EQ(report.kind, ReportKind::Analyzed);
    EXPECT_EQ(report.analysis_mode, "Loopback");
    EXPECT_EQ(report.failed_checks, Names({"Level"}));
}
