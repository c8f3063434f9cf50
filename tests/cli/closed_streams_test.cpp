// The built program with some or all of its standard streams closed. The files that it
// opens then get the numbers of those streams, and no message may land in them.

#include <csignal>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/expected_texts.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"

namespace {

using Arguments = std::vector<std::string>;

// Which streams are closed: bit 0 for standard input, bit 1 for standard output, bit 2
// for standard error.
constexpr unsigned ALL_CLOSED = 7;

bool is_closed(unsigned streams, int stream)
{
    return (streams >> static_cast<unsigned>(stream) & 1U) != 0;
}

// The one thing in a page that differs from run to run.
std::string without_time(std::string page)
{
    const std::string mark = "<span>summary generated ";
    const std::size_t at = page.find(mark);
    return at == page.npos ? page : page.erase(at + mark.size(), 23);
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

    ProcessResult run(const Arguments& arguments, unsigned streams) const
    {
        return run_fthsummary(arguments, {.folder = temp.path(), .before_exec = [streams] {
                                              for (const int stream : {0, 1, 2}) {
                                                  if (is_closed(streams, stream)) {
                                                      close(stream);
                                                  }
                                              }
                                          }});
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

    // The run does and says the same whichever streams are closed, as far as anybody
    // can hear it.
    void expect_the_same_with_closed_streams(const Arguments& arguments, int status,
                                             const std::string& output, const std::string& errors)
    {
        expect_run(run(arguments, 0), status, output, errors);
        const auto expected = contents();
        for (unsigned streams = 1; streams <= ALL_CLOSED; ++streams) {
            SCOPED_TRACE(streams);
            for (const char* output_file : {"s.html", "s.json", "folder.html"}) {
                std::filesystem::remove(temp.path(output_file));
            }
            expect_run(run(arguments, streams), status, is_closed(streams, 1) ? "" : output,
                       is_closed(streams, 2) ? "" : errors);
            EXPECT_EQ(contents(), expected);
        }
    }

    TempFolder temp;
};

} // namespace

TEST_F(ClosedStreams, ChangeNothingInACompleteRun)
{
    expect_the_same_with_closed_streams(
        {"--input", "in", "-o", "s.html", "--json"}, 1,
        "wrote s.html (2 fathomix reports: 0 passed, 1 failed, 1 errored) + json\n"
        "wrote s.json\n",
        "");
    EXPECT_TRUE(temp.exists("s.json"));
}

TEST_F(ClosedStreams, ChangeNothingWhenNothingFails)
{
    temp.write("good/r.html", passed_report());
    expect_the_same_with_closed_streams({"--input", "good", "-o", "s.html"}, 0,
                                        "wrote s.html (1 fathomix reports: 1 passed, 0 failed)\n",
                                        "");
}

TEST_F(ClosedStreams, KeepTheMessageOfAFailureOutOfEveryFile)
{
    expect_the_same_with_closed_streams({"--input", "none", "-o", "s.html"}, 1, "",
                                        input_message("none"));
    expect_the_same_with_closed_streams({"--input", "in", "-o", "in/a.html/x/s.html"}, 1, "",
                                        folder_message("in/a.html/x/s.html"));
    expect_the_same_with_closed_streams({"--input", "in", "-o", "folder.json", "--json"}, 1, "",
                                        write_message("folder.json"));
    expect_the_same_with_closed_streams({"--input", "in", "-o", "folder.html", "--json"}, 1, "",
                                        write_message("folder.json"));
}

TEST_F(ClosedStreams, LeaveTheStatusOfAnAnswerAndOfARejection)
{
    expect_the_same_with_closed_streams({"--version"}, 0, std::string(VERSION_LINE), "");
    expect_the_same_with_closed_streams({"--help"}, 0, std::string(USAGE), "");
    expect_the_same_with_closed_streams({"--bogus"}, 1, "", unrecognized_message("--bogus"));
    expect_the_same_with_closed_streams({}, 1, "", missing_options_message());
}

namespace {

void fill_standard_error()
{
    dup2(open("/dev/full", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
}

void break_standard_error()
{
    std::signal(SIGPIPE, SIG_DFL);
    int ends[2] = {};
    if (pipe(ends) != 0) {
        _exit(126);
    }
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    close(ends[1]);
}

} // namespace

TEST_F(ClosedStreams, AFailureKeepsItsStatusWhenStandardErrorIsFullOrItsReaderIsGone)
{
    for (void (*spoil)() : {fill_standard_error, break_standard_error}) {
        const ProcessOptions options = {.folder = temp.path(), .before_exec = spoil};
        for (const Arguments& arguments :
             {Arguments{}, Arguments{"--bogus"}, Arguments{"--input", "none", "-o", "s.html"},
              Arguments{"--input", "in", "-o", "in/a.html/x/s.html"},
              Arguments{"--input", "in", "-o", "folder.html", "--json"}}) {
            expect_run(run_fthsummary(arguments, options), 1, "", "");
        }
        expect_run(run_fthsummary({"--version"}, options), 0, VERSION_LINE, "");
    }
    expect_whole_page(temp.read("folder.html"));
}
