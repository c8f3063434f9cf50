#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "cli/command_line.h"
#include "cli/expected_texts.h"

namespace {

struct Parsed
{
    CommandLineOutcome outcome = CommandLineOutcome::Run;
    CommandLine options = {};
    std::string output;
    std::string errors;
};

// What the record holds before must not matter, so it starts with values that
// would pass for a complete command line.
Parsed parse_array(int argc, const char* const* argv)
{
    Parsed parsed;
    parsed.options = {"stale input", "stale page", true};
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    parsed.outcome = parse_command_line(argc, argv, parsed.options);
    parsed.errors = testing::internal::GetCapturedStderr();
    parsed.output = testing::internal::GetCapturedStdout();
    return parsed;
}

Parsed parse(const std::vector<const char*>& words)
{
    std::vector<const char*> argv = {"fthsummary"};
    argv.insert(argv.end(), words.begin(), words.end());
    argv.push_back(nullptr);
    return parse_array(static_cast<int>(argv.size() - 1), argv.data());
}

void expect_rejected(const Parsed& parsed, const std::string& message)
{
    EXPECT_EQ(parsed.outcome, CommandLineOutcome::Rejected);
    EXPECT_EQ(parsed.output, "");
    EXPECT_EQ(parsed.errors, message);
}

void expect_answered(const Parsed& parsed, std::string_view answer)
{
    EXPECT_EQ(parsed.outcome, CommandLineOutcome::Answered);
    EXPECT_EQ(parsed.output, answer);
    EXPECT_EQ(parsed.errors, "");
}

void expect_run(const Parsed& parsed, std::string_view input, std::string_view page, bool json)
{
    ASSERT_EQ(parsed.outcome, CommandLineOutcome::Run);
    EXPECT_EQ(parsed.output, "");
    EXPECT_EQ(parsed.errors, "");
    EXPECT_EQ(parsed.options.input_dir, input);
    EXPECT_EQ(parsed.options.page_path, page);
    EXPECT_EQ(parsed.options.wants_json, json);
}

} // namespace

TEST(CommandLine, NoArgumentsAreRejectedWithTheMissingOptionsMessage)
{
    expect_rejected(parse({}), missing_options_message());
    const char* const argv[] = {nullptr};
    expect_rejected(parse_array(0, argv), missing_options_message());
}

TEST(CommandLine, TheProgramsOwnNameIsNotLookedAt)
{
    const char* const argv[] = {"--version", nullptr};
    expect_rejected(parse_array(1, argv), missing_options_message());
}

TEST(CommandLine, ArgumentsBeyondTheCountAreNotLookedAt)
{
    const char* const argv[] = {"fthsummary", "--input", "d", "-o", "s.html", "--json", nullptr};
    expect_run(parse_array(5, argv), "d", "s.html", false);
    expect_rejected(parse_array(4, argv), unrecognized_message("-o"));
}

TEST(CommandLine, BothOptionsStartARunInEitherOrder)
{
    expect_run(parse({"--input", "d", "-o", "s.html"}), "d", "s.html", false);
    expect_run(parse({"-o", "s.html", "--input", "d"}), "d", "s.html", false);
}

TEST(CommandLine, JsonIsTakenAtEveryPlaceAndAlsoTwice)
{
    expect_run(parse({"--json", "--input", "d", "-o", "s.html"}), "d", "s.html", true);
    expect_run(parse({"--input", "d", "--json", "-o", "s.html"}), "d", "s.html", true);
    expect_run(parse({"--input", "d", "-o", "s.html", "--json"}), "d", "s.html", true);
    expect_run(parse({"--json", "--input", "d", "-o", "s.html", "--json"}), "d", "s.html", true);
}

TEST(CommandLine, TheOptionsPointAtTheArgumentsThemselves)
{
    const char input[] = "d//./x/";
    const char page[] = "out\\s.html";
    const Parsed parsed = parse({"--input", input, "-o", page});
    EXPECT_EQ(static_cast<const void*>(parsed.options.input_dir), static_cast<const void*>(input));
    EXPECT_EQ(static_cast<const void*>(parsed.options.page_path), static_cast<const void*>(page));
}

TEST(CommandLine, AnOptionGivenTwiceKeepsItsLastValue)
{
    expect_run(parse({"--input", "a", "--input", "b", "-o", "s.html"}), "b", "s.html", false);
    expect_run(parse({"-o", "1.html", "--input", "a", "-o", "2.html"}), "a", "2.html", false);
}

TEST(CommandLine, AValueIsTakenWhateverItIs)
{
    expect_run(parse({"--input", "--json", "-o", "--help"}), "--json", "--help", false);
    expect_run(parse({"--input", "--version", "-o", "-h"}), "--version", "-h", false);
    expect_run(parse({"--input", "-o", "-o", "--input"}), "-o", "--input", false);
    expect_run(parse({"--input", "", "-o", ""}), "", "", false);
    expect_run(parse({"--input", "--input", "-o", "-o"}), "--input", "-o", false);
}

TEST(CommandLine, AnOptionAsTheLastArgumentIsUnrecognized)
{
    expect_rejected(parse({"--input"}), unrecognized_message("--input"));
    expect_rejected(parse({"-o", "s.html", "--input"}), unrecognized_message("--input"));
    expect_rejected(parse({"-o"}), unrecognized_message("-o"));
    expect_rejected(parse({"--input", "dir", "-o"}), unrecognized_message("-o"));
    expect_rejected(parse({"--input", "-o", "s.html"}), unrecognized_message("s.html"));
}

TEST(CommandLine, AMissingInputOrPageIsRejectedAfterTheLastArgument)
{
    expect_rejected(parse({"--input", "d"}), missing_options_message());
    expect_rejected(parse({"-o", "s.html"}), missing_options_message());
    expect_rejected(parse({"--json"}), missing_options_message());
    expect_rejected(parse({"--input", "d", "--json"}), missing_options_message());
}

TEST(CommandLine, ABadArgumentEndsBeforeALaterVersionOrHelp)
{
    for (const char* later : {"--version", "--help", "-h"}) {
        expect_rejected(parse({"--bogus", later}), unrecognized_message("--bogus"));
    }
}

TEST(CommandLine, VersionAndHelpAnswerWhateverStandsBehindThem)
{
    expect_answered(parse({"--version", "--bogus"}), VERSION_LINE);
    expect_answered(parse({"--version", "--input"}), VERSION_LINE);
    expect_answered(parse({"--help"}), USAGE);
    expect_answered(parse({"-h"}), USAGE);
    expect_answered(parse({"--input", "d", "-o", "s.html", "--help"}), USAGE);
    expect_answered(parse({"--help", "--version"}), USAGE);
    expect_answered(parse({"--version", "--help"}), VERSION_LINE);
}

TEST(CommandLine, ComparisonsAreExact)
{
    for (const char* word :
         {"--Input", "--INPUT",  "-O",     "--JSON",    "--Version", "-H",        "--Help",
          "--inpu",  "--inputs", "--jso",  "--json ",   " --json",   "--vers",    "--versions",
          "--hel",   "-help",    "-input", "--input=d", "-os.html",  "-o=s.html", "--json=1",
          "-",       "--",       "-v",     "-j",        "-oh",       ""}) {
        SCOPED_TRACE(word);
        expect_rejected(parse({word, "d"}), unrecognized_message(word));
        expect_rejected(parse({"--input", "d", "-o", "s.html", word}), unrecognized_message(word));
    }
}

TEST(CommandLine, TheUnrecognizedArgumentIsShownByteForByte)
{
    const char* const hostile = "%s%n\x01\x7f\xff'\n\\";
    expect_rejected(parse({hostile}), unrecognized_message(hostile));
    const std::string longest(100000, 'x');
    expect_rejected(parse({longest.c_str()}), unrecognized_message(longest));
}
