// How the report reader finds the analysis mode and the line under it.

#include <string>

#include <gtest/gtest.h>

#include "report/scraped_report.h"

using namespace std::string_literals;

namespace {

const std::string LABEL = "<div class=\"k\">Analysis Mode</div>";
const std::string VALUE = "<div class=\"v\">";
const std::string SUB = "<div class=\"kpi-sub\">";
const std::string CLOSE = "</div>";

void expect_modes(const std::string& figure, const std::string& mode, const std::string& sub_mode)
{
    SCOPED_TRACE(figure);
    const ReadReport report = scrape(verdict("FAIL") + bar(gating_tab("Level")) + figure);
    EXPECT_EQ(report.kind, ReportKind::Analyzed);
    EXPECT_EQ(report.analysis_mode, mode);
    EXPECT_EQ(report.analysis_mode_sub, sub_mode);
    EXPECT_EQ(report.failed_checks, Names({"Level"}));
}

// What the sub-mode is when this stands between the mode's "</div>" and the
// sub-mode's tag.
void expect_sub_mode_after(const std::string& gap, const std::string& sub_mode)
{
    expect_modes(LABEL + "\n" + VALUE + "mode" + CLOSE + gap + SUB + "sub" + CLOSE, "mode",
                 sub_mode);
}

} // namespace

TEST(ReportMode, IsEmptyWithoutAFigure)
{
    expect_modes("", "", "");
    expect_modes("<div class=\"k\">Sample Rate</div>\n<div class=\"v\">48</div>\n", "", "");
}

TEST(ReportMode, WithCarriageReturnLineEndingsIsNotFoundWhileVerdictAndTabsAreRead)
{
    const ReadReport report = scrape("<div class=\"k\">Overall Verdict</div>\r\n"
                                     "<div class=\"v\">PASS</div>\r\n"
                                     "<div class=\"k\">Analysis Mode</div>\r\n"
                                     "<div class=\"v\">Loopback</div>\r\n"
                                     "<div class=\"kpi-sub\">stereo</div>\r\n"
                                     "<nav class=\"nav-tabs\">\r\n"
                                     "<a data-fail data-nongating>Jitter</a>\r\n"
                                     "</nav>\r\n");
    EXPECT_EQ(report.kind, ReportKind::Analyzed);
    EXPECT_TRUE(report.passed);
    EXPECT_EQ(report.analysis_mode, "");
    EXPECT_EQ(report.analysis_mode_sub, "");
    EXPECT_EQ(report.non_gating_checks, Names({"Jitter"}));
}

TEST(ReportMode, AnIndentedValueIsNotRead)
{
    for (const char* gap : {" ", "  ", "\t", "\n", "\r\n", "x"}) {
        expect_modes(LABEL + "\n" + gap + VALUE + "mode" + CLOSE + "\n" + SUB + "sub" + CLOSE, "",
                     "");
    }
}

TEST(ReportMode, AValueOnTheLineOfTheLabelIsNotRead)
{
    expect_modes(LABEL + VALUE + "mode" + CLOSE, "", "");
    expect_modes(LABEL + " \n" + VALUE + "mode" + CLOSE, "", "");
}

TEST(ReportMode, WithoutTheEndOfTheModeBothAreEmpty)
{
    expect_modes(LABEL + "\n" + VALUE + "mode\n" + SUB + "sub</DIV>", "", "");
}

TEST(ReportMode, AnUnclosedModeRunsOnToTheNextClose)
{
    expect_modes(LABEL + "\n" + VALUE + "m\n<p>" + CLOSE, "m\n<p>", "");
    expect_modes(LABEL + "\n" + VALUE + "m" + SUB + "s" + CLOSE, "m<div class=\"kpi-sub\">s", "");
}

TEST(ReportMode, TheSubModeIsReadDirectlyAfterTheModeOrAfterOneLineFeed)
{
    expect_sub_mode_after("", "sub");
    expect_sub_mode_after("\n", "sub");
}

TEST(ReportMode, TheSubModeIsNotReadAfterAnythingElse)
{
    for (const char* gap : {"\n\n", "\r\n", "\r", " ", "\n ", " \n", "\t", "x", "\n\r", "</div>"}) {
        expect_sub_mode_after(gap, "");
    }
}

TEST(ReportMode, ItsTextsAreKeptAsTheyStand)
{
    expect_modes(mode_figure(" A &amp; B\n", "\t<b>&#39;</b> "), " A &amp; B\n", "\t<b>&#39;</b> ");
}

TEST(ReportMode, ItsTextsAreCutToTheirFirst39Bytes)
{
    const std::string mode = std::string(38, 'm') + "M";
    const std::string sub = std::string(38, 's') + "S";
    expect_modes(mode_figure(mode.substr(1), sub.substr(1)), mode.substr(1), sub.substr(1));
    expect_modes(mode_figure(mode, sub), mode, sub);
    expect_modes(mode_figure(mode + "!", sub + "!"), mode, sub);
    expect_modes(mode_figure(mode + std::string(5000, '!'), sub + std::string(5000, '!')), mode,
                 sub);
}

TEST(ReportMode, TheFirstFigureCountsEvenIfItIsBroken)
{
    expect_modes(mode_figure("one", "") + mode_figure("two", "sub"), "one", "");
    expect_modes(LABEL + "\n" + mode_figure("two", "sub"), "", "");
}

TEST(ReportMode, ALabelWithoutItsLineFeedIsNoFigureAndTheSearchGoesOn)
{
    expect_modes(LABEL + mode_figure("two", "sub"), "two", "sub");
    expect_modes(LABEL + "\r\n" + mode_figure("two", "sub"), "two", "sub");
}
