// What is written to a terminal, and when. Whole runs: terminal_test.cpp.

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include "cli/progress_line.h"
#include "support/call_faults.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string drawn(const std::string& text)
{
    return "\r" + text + "\x1b[J\r";
}

class ProgressLineTest : public testing::Test
{
protected:
    ProgressLineTest()
    {
        setenv("TERM", "xterm", 1);
        progress_line_init(line);
        progress_line_begin(line, Stage::Listing, 0);
    }

    void advance(long age, std::uint64_t done)
    {
        now = BEGAN + age;
        progress_line_advance(line, done);
    }

    static constexpr long BEGAN = 12'345;
    long now = BEGAN; // milliseconds
    pid_t foreground = getpgrp();
    int ready = 1; // terminals, as poll says
    short events = POLLOUT;
    std::vector<std::string> written;
    std::vector<long> times; // when it was
    ProgressLine line = {};

private:
    Interception<int, int> isatty_{isatty_call, [](const auto&, int) { return 1; }};
    Interception<pid_t, int> tcgetpgrp_{tcgetpgrp_call,
                                        [this](const auto&, int) { return foreground; }};
    Interception<int, pollfd*, nfds_t, int> poll_{
        poll_call, [this](const auto&, pollfd* terminal, nfds_t, int) {
            terminal->revents = events;
            return ready;
        }};
    Interception<int, clockid_t, timespec*> clock_{clock_gettime_call,
                                                   [this](const auto&, clockid_t, timespec* time) {
                                                       *time = {now / 1000, now % 1000 * 1'000'000};
                                                       return 0;
                                                   }};
    Interception<ssize_t, int, const void*, std::size_t> write_{
        write_call, [this](const auto&, int, const void* bytes, std::size_t count) {
            written.emplace_back(static_cast<const char*>(bytes), count);
            times.push_back(now);
            return static_cast<ssize_t>(count);
        }};
};

} // namespace

TEST_F(ProgressLineTest, IsDrawnWhenMoreThanASecondHasGoneBy)
{
    advance(1010, 5); // the clock may have lagged behind by 10 ms when the run began
    EXPECT_THAT(written, IsEmpty());
    advance(1011, 6);
    progress_line_erase(line);
    progress_line_erase(line);
    EXPECT_THAT(written, ElementsAre(drawn("listing: 6 files"), "\r\x1b[J"));
}

TEST_F(ProgressLineTest, IsDrawnAtEachStageAndOftenButAtMostTenTimesASecond)
{
    for (long age = 0; age < 5000; ++age) {
        advance(age, 1);
        if (age == 1000 || age == 2000 || age == 2001) {
            progress_line_begin(line, age < 2001 ? Stage::Reading : Stage::Writing, 9);
            EXPECT_EQ(times.empty() ? 0 : times.back(), age == 1000 ? 0 : BEGAN + age);
        }
    }
    ASSERT_GT(times.size(), 15U);
    for (std::size_t i = 10; i < times.size(); ++i) {
        EXPECT_GE(times[i] - times[i - 10], 1000);
    }
}

TEST_F(ProgressLineTest, GuessesTheTimeThatIsLeftByWhatTheStageHasTaken)
{
    advance(6000, 0);
    progress_line_begin(line, Stage::Reading, 100);
    advance(10'000, 20);
    EXPECT_EQ(written.back(), drawn("reading: 20 of 100 (20 %), about 16 s left"));
}

TEST_F(ProgressLineTest, IsNotDrawnWhereTheBeginningIsNotKnown)
{
    const CallFault fault(clock_gettime_call, 1, -1, EINVAL);
    progress_line_init(line);
    advance(2000, 1);
    EXPECT_THAT(written, IsEmpty());
}

TEST_F(ProgressLineTest, StaysOutOfWhatIsTypedWhereItIsInTheBackground)
{
    foreground = getpgrp() + 1;
    const std::uint64_t asked = tcgetpgrp_call.made;
    advance(2000, 1);
    advance(2001, 1);
    EXPECT_THAT(written, IsEmpty());
    EXPECT_EQ(tcgetpgrp_call.made - asked, 1U) << "as often as it would be drawn";
    foreground = -1; // the terminal is another session's
    advance(3000, 2);
    foreground = getpgrp() + 1;
    progress_line_erase(line);
    EXPECT_THAT(written, ElementsAre(drawn("listing: 2 files")));
}

TEST_F(ProgressLineTest, IsNotDrawnWhereTheTerminalWouldNotTakeItAtOnce)
{
    const std::pair<int, short> answers[] = {{0, 0}, {1, POLLHUP}, {-1, POLLOUT}};
    for (const auto& [answer, told] : answers) {
        ready = answer;
        events = told;
        advance(now - BEGAN + 2000, 1);
        EXPECT_THAT(written, IsEmpty()) << answer;
    }
}

TEST_F(ProgressLineTest, IsDrawnAnewAfterTheTerminalRefusedItAndWholeWhereItTookAPart)
{
    const CallFault fault(write_call, 1, -1, EAGAIN);
    advance(2000, 1);
    advance(2200, 2);
    EXPECT_THAT(written, IsEmpty());
    const ShortTransfers limit(20);
    advance(2201, 3);
    EXPECT_THAT(written, ElementsAre(drawn("listing: 3 files").substr(0, 20), "\r"));
}
