// How the report reader finds the verdict, what it makes of its word, and the
// error text of an errored run.

#include <string>

#include <gtest/gtest.h>

#include "report/read_analyze_report.h"
#include "report/scraped_report.h"

using namespace std::string_literals;

namespace {

const std::string LABEL = "<div class=\"k\">Overall Verdict</div>";
const std::string VALUE = "<div class=\"v\">";
const std::string PARAGRAPH = "<p class=\"run-error\">";

void expect_verdict(const std::string& document, bool passed)
{
    SCOPED_TRACE(document);
    const ReadReport report = scrape(document);
    EXPECT_EQ(report.kind, ReportKind::Analyzed);
    EXPECT_EQ(report.passed, passed);
}

// The error text of a report that shows ERROR and then the rest.
std::string error_of(const std::string& rest)
{
    const ReadReport report = scrape(verdict("ERROR") + rest);
    EXPECT_EQ(report.kind, ReportKind::RunError);
    return report.error;
}

} // namespace

TEST(ReportVerdict, AWordThatOnlyBeginsWithPassIsAPass)
{
    expect_verdict(verdict("PASSED"), true);
    expect_verdict(verdict("PASS with remarks"), true);
    expect_verdict(verdict("PASSERROR"), true);
}

TEST(ReportVerdict, PassNotInUpperCaseIsAFail)
{
    expect_verdict(verdict("Pass"), false);
    expect_verdict(verdict("pass"), false);
    expect_verdict(verdict("PASs"), false);
}

TEST(ReportVerdict, AnyOtherWordIsAFail)
{
    for (const char* word : {"", " PASS", "\nPASS", "PAS", "BYPASS", "N/A", "Error", "error",
                             "ERRO", " ERROR", "FAILERROR", "<b>PASS</b>"}) {
        expect_verdict(verdict(word), false);
    }
}

TEST(ReportVerdict, AWordThatBeginsWithErrorIsARunError)
{
    for (const char* word : {"ERROR", "ERRORS", "ERROR: no input", "ERRORPASS"}) {
        SCOPED_TRACE(word);
        EXPECT_EQ(scrape(verdict(word)), empty_report(ReportKind::RunError));
    }
}

TEST(ReportVerdict, ALabelWithoutAnyValueAfterItIsAFailAndTabsAndModeAreStillRead)
{
    const ReadReport report =
        scrape(LABEL + "\n" + bar(gating_tab("Level")) + "<div class=\"k\">Sample Rate</div>\n");
    EXPECT_EQ(report.kind, ReportKind::Analyzed);
    EXPECT_FALSE(report.passed);
    EXPECT_EQ(report.failed_checks, Names({"Level"}));

    // The mode figure has a value tag of its own, so it has to stand before.
    const ReadReport moded =
        scrape(mode_figure("Loopback", "stereo") + bar(gating_tab("Level")) + LABEL);
    EXPECT_EQ(moded.kind, ReportKind::Analyzed);
    EXPECT_FALSE(moded.passed);
    EXPECT_EQ(moded.analysis_mode, "Loopback");
    EXPECT_EQ(moded.analysis_mode_sub, "stereo");
    EXPECT_EQ(moded.failed_checks, Names({"Level"}));
}

TEST(ReportVerdict, ThePresenceOfTheLabelAloneMakesAnAnalyzeReport)
{
    EXPECT_EQ(scrape(LABEL), empty_report(ReportKind::Analyzed));
    EXPECT_EQ(scrape("x" + LABEL + "x"), empty_report(ReportKind::Analyzed));
}

TEST(ReportVerdict, ALabelAfterTheBeginningOfAnotherIsFound)
{
    expect_verdict("<div class=\"k\">Overall " + verdict("PASS"), true);
    expect_verdict("<" + verdict("PASS"), true);
    expect_verdict("<div class=\"k\"><div class=\"k\">Overall Verdict</div" + verdict("PASS"),
                   true);
}

TEST(ReportVerdict, TheFirstValueAfterTheLabelCounts)
{
    expect_verdict(LABEL + VALUE + "PASS</div>" + VALUE + "FAIL</div>", true);
    expect_verdict(LABEL + VALUE + "FAIL</div>" + VALUE + "PASS</div>", false);
    expect_verdict(LABEL + "\n" + mode_figure("PASSIVE", "") + VALUE + "FAIL</div>", true);
}

TEST(ReportVerdict, AValueBeforeTheLabelDoesNotCount)
{
    expect_verdict(VALUE + "PASS</div>\n" + verdict("FAIL"), false);
    expect_verdict(VALUE + "PASS</div>\n" + LABEL, false);
    expect_verdict(VALUE + "ERROR</div>\n" + verdict("PASS"), true);
}

TEST(ReportVerdict, TheFirstLabelCounts)
{
    expect_verdict(verdict("FAIL") + verdict("PASS"), false);
    expect_verdict(verdict("PASS") + verdict("ERROR"), true);
    expect_verdict(LABEL + verdict("PASS"), true);
    expect_verdict("Once " + verdict("FAIL") + verdict("PASS"), false);
}

TEST(ReportVerdict, ALabelThatBeginsBeforeTheDocumentIsNone)
{
    const std::string report = verdict("PASS");
    for (std::size_t cut = 1; cut <= report.size(); ++cut) {
        ReportEntry entry = old_entry();
        scrape_analyze_report(report.c_str() + cut, RELATIVE_PATH, entry);
        EXPECT_EQ(visible_fields(entry), empty_report(ReportKind::NotAnalyzeReport)) << cut;
    }
}

TEST(RunErrorText, IsReadWhereverTheParagraphStands)
{
    EXPECT_EQ(error_of(run_error("no input")), "no input");
    const ReadReport before = scrape(run_error("no input") + verdict("ERROR"));
    EXPECT_EQ(before.kind, ReportKind::RunError);
    EXPECT_EQ(before.error, "no input");
}

TEST(RunErrorText, IsDecodedInOnePassAndNeverInTwo)
{
    EXPECT_EQ(error_of(run_error("a &amp;lt; b")), "a &lt; b");
}

TEST(RunErrorText, IsEmptyWithoutAParagraph)
{
    EXPECT_EQ(error_of(""), "");
    EXPECT_EQ(error_of("<p class=\"run-error\" >no input</p>"), "");
    EXPECT_EQ(error_of("<p class='run-error'>no input</p>"), "");
    EXPECT_EQ(error_of("<P class=\"run-error\">no input</P>"), "");
    EXPECT_EQ(error_of("<p class=\"run-error\"</p>"), "");
}

TEST(RunErrorText, IsEmptyWithoutTheEndOfTheParagraph)
{
    EXPECT_EQ(error_of(PARAGRAPH + "no input"), "");
    EXPECT_EQ(error_of(PARAGRAPH + "no input</p"), "");
    EXPECT_EQ(error_of(PARAGRAPH + "no input</P>"), "");
    EXPECT_EQ(error_of(PARAGRAPH + "no input\0</p>"s), "");
    EXPECT_EQ(error_of(PARAGRAPH), "");
}

TEST(RunErrorText, EndsAtTheFirstEndOfAParagraphAfterItsStart)
{
    EXPECT_EQ(error_of("<p>before</p>\n" + run_error("no input") + "<p>after</p>\n"), "no input");
    EXPECT_EQ(error_of(PARAGRAPH + "one</p>two</p>"), "one");
    EXPECT_EQ(error_of("</p>" + PARAGRAPH + "one"), "");
}

TEST(RunErrorText, OfSevenHundredPlainBytesIsCutToItsFirst639)
{
    const std::string text = "begin" + std::string(695, 'e');
    EXPECT_EQ(error_of(run_error(text)), "begin" + std::string(634, 'e'));
}

TEST(RunErrorText, IsCutOnlyFrom640BytesOn)
{
    const std::string most = std::string(638, 'e') + "Z";
    EXPECT_EQ(error_of(run_error(most.substr(1))), most.substr(1));
    EXPECT_EQ(error_of(run_error(most)), most);
    EXPECT_EQ(error_of(run_error(most + "!")), most);
}

TEST(RunErrorText, IsCutByTheBytesThatReferencesStandFor)
{
    EXPECT_EQ(error_of(run_error(repeated("&lt;", 700))), std::string(639, '<'));
    const std::string text = std::string(638, 'e') + "&quot;";
    EXPECT_EQ(error_of(run_error(text + "x")), std::string(638, 'e') + "\"");
    EXPECT_EQ(error_of(run_error("e" + text)), std::string(639, 'e'));
}

TEST(RunErrorText, IsNotReadFromAReportThatShowsAnotherVerdict)
{
    for (const char* word : {"PASS", "FAIL", "Error"}) {
        const ReadReport report = scrape(verdict(word) + run_error("no input"));
        EXPECT_EQ(report.kind, ReportKind::Analyzed);
        EXPECT_EQ(report.error, "");
    }
}
