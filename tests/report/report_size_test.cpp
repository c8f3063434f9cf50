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
    const ReportEntry entry =
        scrape(verdict("FAIL") + bar(repeated("<a data-fai></a>", MILLION) + gating_tab("Level")) +
               mode_figure("Loopback", "stereo"));
    EXPECT_EQ(failed_names(entry), Names({"Level"}));
    EXPECT_EQ(entry.non_gating_check_count, 0U);
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
}

TEST(ReportSize, AMillionNearlyFailingTabsWithoutACloseAreOneUnclosedTab)
{
    const ReportEntry entry = scrape(verdict("FAIL") + bar(repeated("<a data-fai>", MILLION)) +
                                     mode_figure("Loopback", "stereo"));
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_EQ(entry.non_gating_check_count, 0U);
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
    EXPECT_STREQ(entry.analysis_mode_sub, "stereo");
}

TEST(ReportSize, AMillionUnclosedTabsTakeInTheFirstFailingOneAfterThem)
{
    const ReportEntry entry = scrape(verdict("FAIL") + bar(repeated("<a x>padding", MILLION) +
                                                           gating_tab("in") + gating_tab("Level")));
    EXPECT_EQ(failed_names(entry), Names({"Level"}));
}

TEST(ReportSize, FourMillionTabsWithoutAClosingAngleAreOne)
{
    const ReportEntry entry =
        scrape(verdict("FAIL") + "<nav class=\"nav-tabs\">" + repeated("<a ", 4 * MILLION) +
               "</nav>" + mode_figure("Loopback", ""));
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
}

TEST(ReportSize, TwelveMillionOpenAnglesInABarHoldNoTab)
{
    const ReportEntry entry =
        scrape(verdict("PASS") + bar(std::string(12 * MILLION, '<') + gating_tab("Level")));
    EXPECT_EQ(non_gating_names(entry), Names({"Level"}));
}

TEST(ReportSize, AnOpeningTagOfTwelveMillionBytesIsSearchedToItsEnd)
{
    const ReportEntry entry =
        scrape(verdict("FAIL") +
               bar("<a" + repeated(" data-fai", MILLION) + " data-fail" +
                   repeated(" data-nongatin", MILLION / 4) + " data-nongating>Level</a>"));
    EXPECT_EQ(non_gating_names(entry), Names({"Level"}));
}

TEST(ReportSize, BarsThatNeverEndYieldNoNames)
{
    const ReportEntry entry =
        scrape(verdict("FAIL") + repeated("<nav class=\"nav-tabs\">", MILLION / 2) +
               gating_tab("Level") + mode_figure("Loopback", ""));
    EXPECT_EQ(entry.failed_check_count, 0U);
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
}

TEST(ReportSize, ARepeatedPrefixOfTheVerdictLabelIsNone)
{
    const std::string prefixes = repeated("<div class=\"k\">Overall Verdict</div", MILLION / 3);
    expect_empty(scrape(prefixes), ReportKind::NotAnalyzeReport);
    EXPECT_EQ(scrape(prefixes + verdict("PASS")).passed, 1);
}

TEST(ReportSize, ARepeatedPrefixOfTheValueTagIsNone)
{
    const std::string prefixes = repeated("<div class=\"v\"", MILLION);
    EXPECT_EQ(scrape("<div class=\"k\">Overall Verdict</div>" + prefixes).passed, 0);
    EXPECT_EQ(scrape("<div class=\"k\">Overall Verdict</div>" + prefixes + "<div class=\"v\">PASS")
                  .passed,
              1);
}

TEST(ReportSize, ARepeatedPrefixOfTheModeLabelIsNone)
{
    const ReportEntry entry =
        scrape(verdict("FAIL") + repeated("<div class=\"k\">Analysis Mode</div>", MILLION / 3) +
               mode_figure("Loopback", "stereo"));
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
    EXPECT_STREQ(entry.analysis_mode_sub, "stereo");
}

TEST(ReportSize, AModeOfTwelveMillionBytesIsCut)
{
    const std::string text = repeated("</div", 12 * MILLION / 5);
    const ReportEntry entry = scrape(verdict("FAIL") + mode_figure(text, text));
    EXPECT_EQ(std::string(entry.analysis_mode), text.substr(0, 39));
    EXPECT_EQ(std::string(entry.analysis_mode_sub), text.substr(0, 39));
}

TEST(ReportSize, ErrorParagraphsThatNeverEndGiveNoErrorText)
{
    const ReportEntry entry =
        scrape(verdict("ERROR") + repeated("<p class=\"run-error\">", MILLION / 2));
    EXPECT_EQ(entry.kind, ReportKind::RunError);
    EXPECT_STREQ(entry.error, "");
}

TEST(ReportSize, AnErrorTextOfTwelveMillionAmpersandsIsCut)
{
    const ReportEntry entry = scrape(verdict("ERROR") + run_error(std::string(12 * MILLION, '&')));
    EXPECT_EQ(entry.error, std::string(639, '&'));
}

TEST(ReportSize, AFileOfTwelveMillionBytesIsReadToItsEnd)
{
    const TempFolder folder;
    folder.write("a.html", std::string(12 * MILLION, ' ') + verdict("FAIL") +
                               mode_figure("Loopback", "stereo") + bar(gating_tab("Level")));
    const ReportEntry entry = read_report(folder.path("a.html"));
    EXPECT_EQ(entry.kind, ReportKind::Analyzed);
    EXPECT_STREQ(entry.analysis_mode, "Loopback");
    EXPECT_EQ(failed_names(entry), Names({"Level"}));
}
