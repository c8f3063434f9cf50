// The built program's command line: what it answers, rejects and goes on with.
// command_line_test.cpp has the details.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
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

} // namespace

TEST_F(Arguments, WithoutAnyTheMissingOptionsAndTheUsageGoToStandardError)
{
    expect_ends_at_once({}, 1, "", missing_options_message());
}

TEST_F(Arguments, HelpPrintsTheUsage)
{
    expect_ends_at_once({"--help"}, 0, USAGE, "");
    expect_ends_at_once({"-h"}, 0, USAGE, "");
}

TEST_F(Arguments, VersionBeforeABadArgumentAnswers)
{
    expect_ends_at_once({"--version", "--bogus"}, 0, VERSION_LINE, "");
}

TEST_F(Arguments, ABadArgumentBeforeVersionIsReported)
{
    expect_ends_at_once({"--bogus", "--version"}, 1, "", unrecognized_message("--bogus"));
}

TEST_F(Arguments, AnOptionWithoutItsValueIsUnrecognized)
{
    expect_ends_at_once({"--input"}, 1, "", unrecognized_message("--input"));
    expect_ends_at_once({"--input", "d", "-o"}, 1, "", unrecognized_message("-o"));
}

TEST_F(Arguments, InputTakesTheOutputOptionAsItsValueAndThenThePageIsUnrecognized)
{
    expect_ends_at_once({"--input", "-o", "s.html"}, 1, "", unrecognized_message("s.html"));
}

TEST_F(Arguments, AMissingInputOrPageIsReportedWithTheUsage)
{
    expect_ends_at_once({"--input", "d", "--json"}, 1, "", missing_options_message());
    expect_ends_at_once({"-o", "s.html", "--json"}, 1, "", missing_options_message());
}

TEST_F(Arguments, HelpAfterACompleteCommandLineWritesNothing)
{
    expect_ends_at_once({"--input", "d", "-o", "s.html", "--help"}, 0, USAGE, "");
}

TEST_F(Arguments, OfTwoInputsTheLastIsScanned)
{
    temp.write("b/one.html", failed_report());
    temp.write("b/two.html", failed_report());
    expect_run(run_in(temp, {"--input", "d", "--input", "b", "-o", "t.html"}), 1,
               wrote("t.html", {.failed = 2}), "");
}

TEST_F(Arguments, ValuesThatBeginWithADashAreTaken)
{
    temp.write("-o/r.html", passed_report());
    expect_run(run_in(temp, {"--input", "-o", "-o", "--help", "--json"}), 0,
               wrote_with_json("--help", "--help.json", {.passed = 1}), "");
    expect_whole_page(temp.read("--help"));
}
