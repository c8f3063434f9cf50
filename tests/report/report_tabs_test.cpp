// How the report reader collects the names of failed checks from the tab bar.

#include <string>

#include <gtest/gtest.h>

#include "report/scraped_report.h"

using namespace std::string_literals;

namespace {

const std::string BAR = "<nav class=\"nav-tabs\">";

ReadReport failed_report(const std::string& bar_text)
{
    const ReadReport report = scrape(verdict("FAIL") + bar_text);
    EXPECT_EQ(report.kind, ReportKind::Analyzed);
    EXPECT_FALSE(report.passed);
    return report;
}

void expect_names(const std::string& bar_text, const Names& gating, const Names& non_gating)
{
    SCOPED_TRACE(bar_text);
    const ReadReport report = failed_report(bar_text);
    EXPECT_EQ(report.failed_checks, gating);
    EXPECT_EQ(report.non_gating_checks, non_gating);
}

// The tab is followed by another one, which shows whether the scan went on.
void expect_first_name(const std::string& tab, const std::string& name)
{
    expect_names(bar(tab + gating_tab("Last")), {name, "Last"}, {});
}

void expect_passed_over(const std::string& tab)
{
    expect_names(bar(tab + gating_tab("Last")), {"Last"}, {});
}

} // namespace

TEST(ReportTabs, FailedChecksAreListedInReportOrderEachInItsList)
{
    expect_names(bar(passing_tab("a") + gating_tab("b") + non_gating_tab("c") + gating_tab("d") +
                     passing_tab("e") + non_gating_tab("f")),
                 {"b", "d"}, {"c", "f"});
}

TEST(ReportTabs, AReportWithoutABarHasNoNames)
{
    expect_names(gating_tab("Level"), {}, {});
    expect_names("<nav class=\"nav-tab\">" + gating_tab("Level") + "</nav>", {}, {});
    expect_names("<nav class='nav-tabs'>" + gating_tab("Level") + "</nav>", {}, {});
    expect_names("<nav class=\"nav-tabs\" >" + gating_tab("Level") + "</nav>", {}, {});
    expect_names("<nav class=\"nav-tabs\"" + gating_tab("Level") + "</nav>", {}, {});
    expect_names("<NAV class=\"nav-tabs\">" + gating_tab("Level") + "</nav>", {}, {});
}

TEST(ReportTabs, ABarWithoutItsEndYieldsNoNamesAtAll)
{
    const std::string figure = mode_figure("Loopback", "stereo");
    for (const std::string& end : {""s, "</nav"s, "</NAV>"s, "\0</nav>"s}) {
        const ReadReport report = failed_report(figure + BAR + gating_tab("Level") + end);
        EXPECT_EQ(report,
                  (ReadReport{ReportKind::Analyzed, false, "Loopback", "stereo", {}, {}, ""}));
    }
    expect_names("</nav>" + BAR + gating_tab("Level"), {}, {});
}

TEST(ReportTabs, ATabWhoseTagNeverClosesHasNoNameWhateverStandsBefore)
{
    expect_names(BAR + "</a><a data-fail</nav>", {}, {});
    expect_names(BAR + gating_tab("Level") + "<a data-fail</nav>", {"Level"}, {});
}

TEST(ReportTabs, TheBarEndsAtTheFirstEndAfterItsStart)
{
    expect_names("<nav></nav>" + BAR + gating_tab("in") + "</nav>" + gating_tab("out") + "</nav>",
                 {"in"}, {});
}

TEST(ReportTabs, OnlyTheFirstBarCounts)
{
    expect_names(bar(gating_tab("one")) + bar(gating_tab("two")), {"one"}, {});
    expect_names(bar("") + bar(gating_tab("two")), {}, {});
}

TEST(ReportTabs, TextBeforeTheOpeningTagMarksNoTab)
{
    expect_passed_over(" data-fail data-nongating <a x>no</a> data-fail ");
    expect_names(bar(" data-nongating " + gating_tab("Level")), {"Level"}, {});
}

TEST(ReportTabs, ATagOfExactlyADataFailIsAFailingGatingTab)
{
    expect_first_name("<a data-fail>Level</a>", "Level");
}

TEST(ReportTabs, AnEmptyNameCounts)
{
    expect_first_name("<a data-fail></a>", "");
    expect_names(bar("<a data-fail data-nongating></a><a data-fail data-nongating></a>"), {},
                 {"", ""});
}

TEST(ReportTabs, ATabOrLineFeedAfterTheAIsNoTabAndTheScanMovesOn)
{
    expect_passed_over("<a\tdata-fail data-fail>no</a>\n");
    expect_passed_over("<a\ndata-fail data-fail>no</a>\n");
    expect_passed_over("<a\rx data-fail>no</a>\n");
}

TEST(ReportTabs, ACapitalAIsNoTabAndTheScanMovesOn)
{
    expect_passed_over("<A data-fail>no</A>\n");
    expect_passed_over("<A data-fail>no</a>\n");
}

TEST(ReportTabs, ANameWithAReferenceKeepsIt)
{
    expect_first_name("<a data-fail>A &amp; B</a>", "A &amp; B");
    expect_first_name("<a data-fail>&lt;&gt;&quot;&#39;</a>", "&lt;&gt;&quot;&#39;");
}

TEST(ReportTabs, ANameIsCutToItsFirst39Bytes)
{
    const std::string most = std::string(38, 'n') + "Z";
    for (const char* attributes : {"data-fail", "data-fail data-nongating"}) {
        const std::string tag = "<a "s + attributes + ">";
        const ReadReport report =
            failed_report(bar(tag + most.substr(1) + "</a>" + tag + most + "</a>" + tag + most +
                              "!</a>" + tag + std::string(5000, 'x') + "</a>"));
        const Names names = together(report.failed_checks, report.non_gating_checks);
        EXPECT_EQ(names, Names({most.substr(1), most, most, std::string(39, 'x')}));
    }
}

TEST(ReportTabs, DataFailCountsAnywhereInTheOpeningTag)
{
    expect_first_name("<a href=\"#x\" data-fail class=\"y\">A</a>", "A");
    expect_first_name("<a  data-fail>A</a>", "A");
    expect_first_name("<a data-fail=\"1\">A</a>", "A");
    expect_first_name("<a data-failed>A</a>", "A");
    expect_first_name("<a title=\"no data-fail\">A</a>", "A");
}

TEST(ReportTabs, DataFailNeedsItsLeadingSpaceAndItsExactBytes)
{
    for (const char* attribute :
         {"data-fai", "xdata-fail", "x-data-fail", "x\tdata-fail", "DATA-FAIL", "data-Fail",
          "data_fail", "data- fail", "\ndata-fail", "title=\"data-fail\""}) {
        expect_passed_over("<a "s + attribute + ">no</a>\n");
    }
}

TEST(ReportTabs, AnOpeningTagTooShortForDataFailIsNotFailing)
{
    expect_passed_over("<a >no</a>\n");
    expect_passed_over("<a dat>no</a>\n");
    expect_passed_over("<a data-fa>no data-fail</a>\n");
}

TEST(ReportTabs, TheFirstClosingAngleEndsTheTagEvenInsideQuotes)
{
    expect_passed_over("<a title=\"a>b\" data-fail>no</a>\n");
    expect_first_name("<a data-fail title=\"a>b\">A</a>", "b\">A");
    expect_names(bar("<a data-fail title=\"a>b\" data-nongating>A</a>"), {"b\" data-nongating>A"},
                 {});
}

TEST(ReportTabs, DataNonGatingBeforeDataFailMakesANonGatingFailureAllTheSame)
{
    expect_names(bar("<a data-nongating data-fail>A</a><a data-fail data-nongating>B</a>"
                     "<a data-fail href=\"#c\" data-nongating>C</a>"),
                 {}, {"A", "B", "C"});
}

TEST(ReportTabs, DataNonGatingAloneIsNoFailure)
{
    expect_passed_over("<a data-nongating>no</a>\n");
}

TEST(ReportTabs, ANameThatIsNotClosedBeforeTheEndOfTheBarIsNotRead)
{
    for (const char* rest : {"", "A", "A</a", "A</", "A<"}) {
        expect_names(BAR + "<a data-fail>" + rest + "</nav></a>", {}, {});
    }
}

TEST(ReportTabs, AnUnclosedTabTakesInTheNextOne)
{
    expect_names(bar("<a data-fail>A<a data-fail>B</a><a data-fail>C</a>"),
                 {"A<a data-fail>B", "C"}, {});
    expect_names(bar("<a x>A<a data-fail>B</a><a data-fail>C</a>"), {"C"}, {});
    expect_names(bar("<a x <a data-fail>B</a>"), {"B"}, {});
}

TEST(ReportTabs, FifteenSixteenAndSeventeenGatingNamesGiveAtMostSixteen)
{
    expect_names(bar(gating_tabs("g", 15)), numbered("g", 15), {});
    expect_names(bar(gating_tabs("g", 16)), numbered("g", 16), {});
    expect_names(bar(gating_tabs("g", 17)), numbered("g", 16), {});
}

TEST(ReportTabs, FifteenSixteenAndSeventeenNonGatingNamesGiveAtMostSixteen)
{
    expect_names(bar(non_gating_tabs("n", 15)), {}, numbered("n", 15));
    expect_names(bar(non_gating_tabs("n", 16)), {}, numbered("n", 16));
    expect_names(bar(non_gating_tabs("n", 17)), {}, numbered("n", 16));
}

TEST(ReportTabs, TwentyGatingTabsKeepTheFirstSixteenAndANonGatingTabAfterThemIsNotRecorded)
{
    expect_names(bar(gating_tabs("g", 20) + non_gating_tab("late")), numbered("g", 16), {});
}

TEST(ReportTabs, WithFifteenNamesInAListTheScanGoesOn)
{
    expect_names(bar(gating_tabs("g", 15) + non_gating_tab("late")), numbered("g", 15), {"late"});
    expect_names(bar(non_gating_tabs("n", 15) + gating_tab("late")), {"late"}, numbered("n", 15));
    expect_names(bar(gating_tabs("g", 15) + non_gating_tabs("n", 15)), numbered("g", 15),
                 numbered("n", 15));
}
