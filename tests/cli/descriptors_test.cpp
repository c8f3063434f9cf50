// The built program with few file descriptors: it takes what it can open.

#include <algorithm>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/process_limits.h"
#include "cli/run.h"
#include "cli/sample_reports.h"
#include "support/deep_tree.h"

namespace {

constexpr int STANDARD_STREAMS = 3;

class Descriptors : public testing::Test
{
protected:
    // Runs with JSON and so many descriptors beside the standard streams.
    ProcessResult run_with(unsigned descriptors) const
    {
        return run_fthsummary({"--input", "in", "-o", "out/s.html", "--json"},
                              {.folder = temp.path(), .before_exec = [descriptors] {
                                   // What the test itself was started with takes none of them.
                                   close_range(STANDARD_STREAMS, ~0U, 0);
                                   limit(RLIMIT_NOFILE, rlim_t{STANDARD_STREAMS} + descriptors);
                               }});
    }

    static std::string wrote_passed(unsigned passed)
    {
        return wrote_with_json("out/s.html", "out/s.json", {.passed = passed});
    }

    TempFolder temp;
};

} // namespace

// Each level of the descent holds its listing open, and nothing else stays open. What
// cannot be opened counts as unreadable folders do: skipped without a word.
TEST_F(Descriptors, EachCarriesTheWalkOneLevelFurther)
{
    constexpr unsigned LEVELS = 10;
    for (unsigned level = 0; level < LEVELS; ++level) {
        temp.write("in/" + repeated("d/", static_cast<int>(level)) + "r.html", passed_report());
    }
    for (unsigned descriptors = 1; descriptors <= LEVELS + 2; ++descriptors) {
        SCOPED_TRACE(descriptors);
        expect_run(run_with(descriptors), 0, wrote_passed(std::min(descriptors, LEVELS)), "");
        expect_whole_page(temp.read("out/s.html"));
    }
}

// Each folder's listing is closed before the next one's is opened.
TEST_F(Descriptors, SixtyFourAreEnoughForAWideTreeAndSoAreTwo)
{
    for (int i = 0; i < 100; ++i) {
        temp.write("in/f" + std::to_string(i) + "/r.html", passed_report());
    }
    expect_run(run_with(64 - STANDARD_STREAMS), 0, wrote_passed(100), "");
    expect_run(run_with(2), 0, wrote_passed(100), "");
    expect_run(run_with(1), 0, wrote_passed(0), "");
}

// A program that needs the loader cannot be started without any, so this calls the run
// itself.
TEST_F(Descriptors, WithoutAnyTheInputIsReportedAndNothingIsWritten)
{
    temp.write("in/r.html", passed_report());
    temp.write("errors", "");
    temp.chmod("", 0777);
    const int errors = open(temp.path("errors").c_str(), O_WRONLY | O_CLOEXEC);
    const std::string input = temp.path("in");
    const std::string page = temp.path("s.html");
    const int status = run_unprivileged([&] {
        dup2(errors, STDERR_FILENO);
        limit(RLIMIT_NOFILE, STANDARD_STREAMS);
        return run_summary({input.c_str(), page.c_str(), true});
    });
    close(errors);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(temp.read("errors"), input_message(input));
    EXPECT_FALSE(temp.exists("s.html"));
}
