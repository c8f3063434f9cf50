// Whole runs on a terminal, with a clock that goes as the test wants it.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "cli/expected_texts.h"
#include "cli/run.h"
#include "cli/sample_reports.h"
#include "support/intercepted_calls.h"
#include "support/temp_folder.h"

namespace {

const std::string DRAWN_END = "\x1b[J\r";
const std::string ERASED = "\r\x1b[J";

class Terminal : public testing::Test
{
protected:
    Terminal()
    {
        for (const char* name : {"in/a.html", "in/b.html", "in/c.html", "in/d.html"}) {
            temp.write(name, passed_report());
        }
    }

    // Runs the program with standard output and standard error on a terminal, and gives
    // what that was sent.
    std::string shown(const CommandLine& options) const
    {
        const winsize size = {24, columns, 0, 0};
        int terminal = -1;
        std::fflush(nullptr);
        const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
        if (child == 0) {
            run(options);
        }
        std::string text;
        char c = 0;
        // Once more at the end: what comes with it, the system may tell after it.
        while (read(terminal, &c, 1) == 1 || read(terminal, &c, 1) == 1) {
            if (c == '\n') {
                text.pop_back(); // the carriage return that the terminal adds
            }
            text += c;
        }
        close(terminal);
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), text.find("error: ") == std::string::npos ? 0 : 1);
        return text;
    }

    TempFolder temp;
    unsigned short columns = 80;
    const char* type = "xterm"; // TERM; null: not set
    long tick = 2000;           // milliseconds between two looks at the clock
    std::function<void()> before_run = [] {};
    std::function<void(std::string_view)> after_draw = [](std::string_view) {};

private:
    [[noreturn]] void run(const CommandLine& options) const
    {
        long time = 0;
        const Interception clock(clock_gettime_call, [&](const auto&, clockid_t, timespec* now) {
            time += tick;
            *now = {time / 1000, time % 1000 * 1'000'000};
            return 0;
        });
        const Interception drawing(
            write_call, [this](const auto& next, int file, const void* bytes, std::size_t count) {
                const ssize_t written = next(file, bytes, count);
                after_draw({static_cast<const char*>(bytes), count});
                return written;
            });
        type != nullptr ? setenv("TERM", type, 1) : unsetenv("TERM");
        before_run();
        const bool is_there = chdir(temp.path().c_str()) == 0;
        const int status = is_there ? run_summary(options) : -1;
        std::fflush(nullptr);
        _exit(status);
    }
};

} // namespace

TEST_F(Terminal, ShowsNoLineBeforeEachKindOfEndButErasesIt)
{
    temp.make_folder("folder.json");
    const std::pair<CommandLine, std::string> ends[] = {
        {{"in", "s.html", false}, wrote("s.html", {.passed = 4})},
        {{"none", "s.html", false}, input_message("none")},
        {{"in", "in/a.html/x/s.html", false}, folder_message("in/a.html/x/s.html")},
        {{"in", "folder.json", false}, write_message("folder.json")},
        {{"in", "folder.html", true}, write_message("folder.json")},
    };
    for (const auto& [options, message] : ends) {
        tick = 2000;
        const std::string text = shown(options);
        EXPECT_TRUE(text.starts_with("\rlisting: 0 files" + DRAWN_END)) << text;
        EXPECT_TRUE(text.ends_with(DRAWN_END + ERASED + message)) << text;
        tick = 1; // the run is over within a second
        EXPECT_EQ(shown(options), message);
    }
}

TEST_F(Terminal, ShowsNothingWhereItsTypeIsNotKnown)
{
    for (const char* unknown : {"dumb", static_cast<const char*>(nullptr)}) {
        type = unknown;
        EXPECT_EQ(shown({"in", "s.html", false}), wrote("s.html", {.passed = 4}));
    }
}

TEST_F(Terminal, ShowsNothingWhereStandardErrorIsClosedOrAPipe)
{
    before_run = [] { close(STDERR_FILENO); };
    EXPECT_EQ(shown({"in", "s.html", false}), wrote("s.html", {.passed = 4}));
    int pipe_ends[2] = {};
    ASSERT_EQ(pipe(pipe_ends), 0);
    before_run = [&] { dup2(pipe_ends[1], STDERR_FILENO); };
    EXPECT_EQ(shown({"in", "s.html", false}), wrote("s.html", {.passed = 4}));
    close(pipe_ends[1]);
    char byte = 0;
    EXPECT_EQ(read(pipe_ends[0], &byte, 1), 0) << "begins with " << byte;
    close(pipe_ends[0]);
}

TEST_F(Terminal, IsNotWaitedForWhileItIsStopped)
{
    before_run = [] {
        alarm(60); // for a run that waits all the same
        stdout = std::freopen("/dev/null", "w", stdout);
        tcflow(STDERR_FILENO, TCOOFF);
    };
    EXPECT_EQ(shown({"in", "s.html", false}), "");
    EXPECT_TRUE(std::filesystem::exists(temp.path("s.html")));
}

TEST_F(Terminal, MayChangeItsWidthOnTheWay)
{
    columns = 0; // not told
    after_draw = [](std::string_view line) {
        for (const auto& [drawn, wide] : {std::pair("1 of 4", 20), std::pair("2 of 4", 22)}) {
            if (line.find(drawn) != std::string_view::npos) {
                const winsize size = {24, static_cast<unsigned short>(wide), 0, 0};
                ioctl(STDERR_FILENO, TIOCSWINSZ, &size);
            }
        }
    };
    const std::string text = shown({"in", "s.html", false});
    for (const std::string& lines :
         {"\rlisting: 4 files" + DRAWN_END, std::string("\rreading: 1 of 4 (25 %), about "),
          "\rreading: 2 of 4" + DRAWN_END + "\rreading: 3 of 4" + DRAWN_END + "\rwriting" +
              DRAWN_END}) {
        EXPECT_NE(text.find(lines), std::string::npos) << text;
    }
}
