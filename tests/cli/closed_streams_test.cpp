// The built program with some or all of its standard streams closed, full or broken.
// The files that it opens get the numbers of closed streams, and no message may land in
// them.

#include <csignal>
#include <filesystem>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/built_program.h"
#include "cli/expected_texts.h"
#include "cli/sample_reports.h"

namespace {

using Arguments = std::vector<std::string>;

// Ways to keep the program from a stream; for ProcessOptions::before_exec.
void close_stream(int stream)
{
    close(stream);
}

void fill_stream(int stream)
{
    dup2(open("/dev/full", O_RDWR | O_CLOEXEC), stream);
}

// A pipe that nobody reads. The program itself has to deal with the signal, whatever the
// test inherited.
void break_stream(int stream)
{
    std::signal(SIGPIPE, SIG_DFL);
    int ends[2] = {};
    if (pipe(ends) != 0) {
        _exit(126);
    }
    dup2(ends[1], stream);
    close(ends[0]);
    close(ends[1]);
}

// Which streams are spoilt: bit 0 for standard input, bit 1 for standard output, bit 2
// for standard error.
bool is_spoilt(unsigned streams, int stream)
{
    return (streams >> static_cast<unsigned>(stream) & 1U) != 0;
}

// The one thing in a page that differs from run to run.
std::string without_time(const std::string& page)
{
    static const std::regex TIME("generated [-0-9]+ [:0-9]+ UTC");
    return std::regex_replace(page, TIME, "generated");
}

class ClosedStreams : public testing::Test
{
protected:
    void SetUp() override
    {
        temp.write("in/a.html", FULL_FAILED_REPORT);
        temp.write("in/sub/b.html", errored_report("no input"));
        temp.write("in/other.html", OTHER_PAGE);
        temp.make_folder("folder.json");
    }

    // Everything below the temporary folder, folders with a text of their own.
    std::map<std::string, std::string> contents() const
    {
        std::map<std::string, std::string> all;
        for (const std::string& name : temp.names()) {
            const bool is_folder = std::filesystem::is_directory(temp.path(name));
            all[name] = is_folder ? "(folder)" : without_time(temp.read(name));
        }
        return all;
    }

    // The run does and says the same whichever streams are spoilt, as far as anybody
    // can hear it.
    void expect_the_same(const Arguments& arguments, int status, const std::string& output,
                         const std::string& errors)
    {
        expect_run(run_in(temp, arguments), status, output, errors);
        const auto expected = contents();
        for (void (*spoil)(int) : {close_stream, fill_stream, break_stream}) {
            for (unsigned streams = 1; streams <= 7; ++streams) {
                if (is_spoilt(streams, STDIN_FILENO) && spoil != close_stream) {
                    continue; // nothing reads it
                }
                SCOPED_TRACE(streams);
                for (const char* output_file : {"s.html", "s.json", "folder.html"}) {
                    std::filesystem::remove(temp.path(output_file));
                }
                const auto spoil_all = [spoil, streams] {
                    for (const int stream : {0, 1, 2}) {
                        if (is_spoilt(streams, stream)) {
                            spoil(stream);
                        }
                    }
                };
                expect_run(
                    run_fthsummary(arguments, {.folder = temp.path(), .before_exec = spoil_all}),
                    status, is_spoilt(streams, STDOUT_FILENO) ? "" : output,
                    is_spoilt(streams, STDERR_FILENO) ? "" : errors);
                EXPECT_EQ(contents(), expected);
            }
        }
    }

    TempFolder temp;
};

} // namespace

TEST_F(ClosedStreams, ChangeNothingInACompleteRun)
{
    expect_the_same({"--input", "in", "-o", "s.html", "--json"}, 1,
                    wrote_with_json("s.html", "s.json", {.failed = 1, .errored = 1}), "");
    EXPECT_TRUE(temp.exists("s.json"));
}

TEST_F(ClosedStreams, ChangeNothingWhenNothingFails)
{
    temp.write("good/r.html", passed_report());
    expect_the_same({"--input", "good", "-o", "s.html"}, 0, wrote("s.html", {.passed = 1}), "");
}

TEST_F(ClosedStreams, KeepTheMessageOfAFailureOutOfEveryFile)
{
    expect_the_same({"--input", "none", "-o", "s.html"}, 1, "", input_message("none"));
    expect_the_same({"--input", "in", "-o", "in/a.html/x/s.html"}, 1, "",
                    folder_message("in/a.html/x/s.html"));
    expect_the_same({"--input", "in", "-o", "folder.html", "--json"}, 1, "",
                    write_message("folder.json"));
}

TEST_F(ClosedStreams, LeaveTheStatusOfAnAnswerAndOfARejection)
{
    expect_the_same({"--version"}, 0, std::string(VERSION_LINE), "");
    expect_the_same({"--help"}, 0, std::string(USAGE), "");
    expect_the_same({"--input", "in", "-o", "s.html", "-h"}, 0, std::string(USAGE), "");
    EXPECT_FALSE(temp.exists("s.html"));
    expect_the_same({"--bogus"}, 1, "", unrecognized_message("--bogus"));
    expect_the_same({}, 1, "", missing_options_message());
}
