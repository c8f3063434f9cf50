// The built program's command line, argument by argument.

#include <csignal>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/expected_texts.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"

namespace {

using Names = std::vector<std::string>;

// A folder in which each of the command lines below would find something to read
// and something to overwrite, if it went on to a run.
class Arguments : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.write("d/r.html", passed_report());
        temp.write("s.html", "older page");
        temp.write("s.json", "older json");
    }

    // No answer and no rejection reads or writes anything.
    void expect_ends_at_once(const Names& arguments, int status, std::string_view output,
                             std::string_view errors)
    {
        expect_run(run_in(temp, arguments), status, output, errors);
        EXPECT_EQ(temp.names(), (Names{"d", "d/r.html", "s.html", "s.json"}));
        EXPECT_EQ(temp.read("s.html"), "older page");
        EXPECT_EQ(temp.read("s.json"), "older json");
    }

    TempFolder temp;
};

constexpr std::string_view ONE_PASSED = " (1 fathomix reports: 1 passed, 0 failed)";

} // namespace

TEST_F(Arguments, WithoutArgumentsTheMissingOptionsAndTheUsageGoToStandardError)
{
    expect_ends_at_once({}, 1, "", missing_options_message());
}

TEST_F(Arguments, TheUsageIsTheseEightLines)
{
    expect_ends_at_once(
        {"--help"}, 0,
        "fthsummary -- pass/fail summary of fathomix analyze reports\n"
        "\n"
        "usage:\n"
        "  fthsummary --input <directory> -o <summary.html> [--json]\n"
        "\n"
        "  --input DIR  directory of fathomix analyze HTML reports (scanned recursively)\n"
        "  -o FILE      summary HTML file to write (missing folders are created)\n"
        "  --json       also write the summary as JSON, next to the HTML file\n",
        "");
}

TEST_F(Arguments, ShortHelpPrintsTheSameUsage)
{
    expect_ends_at_once({"-h"}, 0, USAGE, "");
}

TEST_F(Arguments, VersionPrintsOneLine)
{
    expect_ends_at_once({"--version"}, 0, "fthsummary v0.7.1-beta\n", "");
}

TEST_F(Arguments, InputAloneIsUnrecognized)
{
    expect_ends_at_once({"--input"}, 1, "", unrecognized_message("--input"));
}

TEST_F(Arguments, OutputAsTheLastArgumentIsUnrecognized)
{
    expect_ends_at_once({"--input", "d", "-o"}, 1, "", unrecognized_message("-o"));
    expect_ends_at_once({"-o"}, 1, "", unrecognized_message("-o"));
    expect_ends_at_once({"-o", "s.html", "--input", "d", "-o"}, 1, "", unrecognized_message("-o"));
}

TEST_F(Arguments, AMissingInputOrPageIsReportedWithTheUsage)
{
    expect_ends_at_once({"--input", "d"}, 1, "", missing_options_message());
    expect_ends_at_once({"-o", "s.html"}, 1, "", missing_options_message());
    expect_ends_at_once({"--json"}, 1, "", missing_options_message());
    expect_ends_at_once({"-o", "s.html", "--json"}, 1, "", missing_options_message());
}

TEST_F(Arguments, InputTakesTheOutputOptionAsItsValueAndThenThePageIsUnrecognized)
{
    expect_ends_at_once({"--input", "-o", "s.html"}, 1, "", unrecognized_message("s.html"));
}

TEST_F(Arguments, VersionBeforeABadArgumentAnswers)
{
    expect_ends_at_once({"--version", "--bogus"}, 0, VERSION_LINE, "");
}

TEST_F(Arguments, ABadArgumentBeforeVersionIsReported)
{
    expect_ends_at_once({"--bogus", "--version"}, 1, "", unrecognized_message("--bogus"));
}

TEST_F(Arguments, HelpAfterACompleteCommandLineWritesNothing)
{
    expect_ends_at_once({"--input", "d", "-o", "s.html", "--help"}, 0, USAGE, "");
    expect_ends_at_once({"--input", "d", "-o", "s.html", "--json", "-h"}, 0, USAGE, "");
    expect_ends_at_once({"--input", "d", "-o", "s.html", "--version"}, 0, VERSION_LINE, "");
}

TEST_F(Arguments, ABadArgumentAfterACompleteCommandLineWritesNothing)
{
    expect_ends_at_once({"--input", "d", "-o", "s.html", "extra"}, 1, "",
                        unrecognized_message("extra"));
    expect_ends_at_once({"--input", "d", "-o", "s.html", ""}, 1, "", unrecognized_message(""));
}

TEST_F(Arguments, CombinedAndAbbreviatedFormsAreUnrecognized)
{
    for (const char* word :
         {"--input=d", "-os.html", "--js", "--HELP", "-V", "--", "-", "--Json"}) {
        expect_ends_at_once({word, "--input", "d", "-o", "s.html"}, 1, "",
                            unrecognized_message(word));
    }
}

TEST_F(Arguments, TheUnrecognizedArgumentIsShownByteForByte)
{
    const std::string hostile = "%s %n%d \xff\xc3 '\t\n";
    expect_ends_at_once({hostile}, 1, "", unrecognized_message(hostile));
    const std::string longest(100000, '-');
    expect_ends_at_once({longest}, 1, "", unrecognized_message(longest));
}

TEST_F(Arguments, OfTwoInputsTheLastIsScanned)
{
    temp.write("b/one.html", failed_report());
    temp.write("b/two.html", failed_report());
    expect_run(run_in(temp, {"--input", "d", "--input", "b", "-o", "t.html"}), 1,
               "wrote t.html (2 fathomix reports: 0 passed, 2 failed)\n", "");
}

TEST_F(Arguments, OfTwoPagesTheLastIsWritten)
{
    expect_run(run_in(temp, {"-o", "a.html", "--input", "d", "-o", "b.html"}), 0,
               "wrote b.html" + std::string(ONE_PASSED) + "\n", "");
    EXPECT_FALSE(temp.exists("a.html"));
    EXPECT_TRUE(temp.exists("b.html"));
}

TEST_F(Arguments, ValuesThatBeginWithADashAreTaken)
{
    temp.write("-o/r.html", passed_report());
    expect_run(run_in(temp, {"--input", "-o", "-o", "--help", "--json"}), 0,
               "wrote --help" + std::string(ONE_PASSED) + " + json\nwrote --help.json\n", "");
    expect_whole_page(temp.read("--help"));
    EXPECT_TRUE(temp.exists("--help.json"));
}

TEST_F(Arguments, JsonGivenTwiceWritesOneJsonFile)
{
    expect_run(run_in(temp, {"--json", "--input", "d", "--json", "-o", "t.html"}), 0,
               "wrote t.html" + std::string(ONE_PASSED) + " + json\nwrote t.json\n", "");
    EXPECT_EQ(temp.names(), (Names{"d", "d/r.html", "s.html", "s.json", "t.html", "t.json"}));
}

TEST_F(Arguments, AnEmptyInputIsADirectoryThatDoesNotExist)
{
    expect_ends_at_once({"--input", "", "-o", "s.html"}, 1, "", input_message(""));
}

TEST_F(Arguments, AnEmptyPageCannotBeWritten)
{
    expect_ends_at_once({"--input", "d", "-o", ""}, 1, "", write_message(""));
    expect_ends_at_once({"--input", "d", "-o", "", "--json"}, 1, "", write_message(""));
}

TEST_F(Arguments, TheAnswersKeepTheirStatusWhenStandardOutputIsFullOrClosed)
{
    for (const char* word : {"--version", "--help", "-h"}) {
        const ProcessResult full = run_fthsummary(
            {word}, {.folder = temp.path(), .before_exec = [] {
                         dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
                     }});
        expect_run(full, 0, "", "");
        const ProcessResult closed = run_fthsummary(
            {word}, {.folder = temp.path(), .before_exec = [] { close(STDOUT_FILENO); }});
        expect_run(closed, 0, "", "");
    }
}

TEST_F(Arguments, ARejectionKeepsItsStatusWhenStandardErrorIsClosed)
{
    const ProcessResult result = run_fthsummary(
        {"--bogus"}, {.folder = temp.path(), .before_exec = [] { close(STDERR_FILENO); }});
    expect_run(result, 1, "", "");
}
