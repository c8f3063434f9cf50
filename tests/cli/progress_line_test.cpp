// What is written to a terminal, and when. Whole runs: terminal_test.cpp.

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "cli/progress_line.h"
#include "support/call_faults.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char ERASED[] = "\r\x1b[J";

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

    void advance(std::int64_t time, std::uint64_t done)
    {
        now = BEGAN + time;
        progress_line_advance(line, done);
    }

    void begin(std::int64_t time, Stage stage)
    {
        now = BEGAN + time;
        progress_line_begin(line, stage, 100);
    }

    static constexpr std::int64_t BEGAN = 12'345;
    std::int64_t now = BEGAN; // milliseconds
    pid_t foreground = getpgrp();
    unsigned short columns = 80;
    std::vector<std::string> written;
    std::vector<std::int64_t> times; // of what was written
    ProgressLine line = {};

private:
    Interception<int, int> isatty_{isatty_call, [](const auto&, int) { return 1; }};
    Interception<pid_t, int> tcgetpgrp_{tcgetpgrp_call,
                                        [this](const auto&, int) { return foreground; }};
    Interception<int, int, unsigned long, void*> ioctl_{
        ioctl_call, [this](const auto&, int, unsigned long, void* size) {
            *static_cast<winsize*>(size) = {24, columns, 0, 0};
            return 0;
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
    advance(1010, 5); // the clock may be 10 ms ahead
    EXPECT_THAT(written, IsEmpty());
    advance(1011, 6);
    EXPECT_THAT(written, ElementsAre(drawn("listing: 6 files")));
    progress_line_erase(line);
    progress_line_erase(line);
    EXPECT_THAT(written, ElementsAre(drawn("listing: 6 files"), ERASED));
}

TEST_F(ProgressLineTest, BeginsEachStageOfALongRunAtOnce)
{
    begin(1000, Stage::Reading);
    EXPECT_THAT(written, IsEmpty());
    begin(1011, Stage::Reading);
    begin(1011, Stage::Writing);
    EXPECT_THAT(written, ElementsAre(drawn("reading: 0 of 100 (0 %)"), drawn("writing")));
}

TEST_F(ProgressLineTest, CountsTheTimeThatIsLeftFromTheBeginningOfItsStage)
{
    begin(60'000, Stage::Reading);
    advance(64'000, 20);
    EXPECT_EQ(written.back(), drawn("reading: 20 of 100 (20 %), about 16 s left"));
}

TEST_F(ProgressLineTest, IsDrawnAtMostTenTimesASecondButOften)
{
    for (std::int64_t time = 0; time < 5000; ++time) {
        advance(time, 1);
        if (time == 2000 || time == 2001) {
            begin(time, time == 2000 ? Stage::Reading : Stage::Writing);
        }
    }
    ASSERT_GT(times.size(), 15U);
    for (std::size_t i = 10; i < times.size(); ++i) {
        EXPECT_GE(times[i] - times[i - 10], 1000);
    }
}

TEST_F(ProgressLineTest, FitsTheTerminalAsItIsWhenItIsDrawn)
{
    for (const auto& [width, text] :
         {std::pair<unsigned short, const char*>{0, "listing: 123,456,789 files"},
          {27, "listing: 123,456,789 files"},
          {26, "listing: 123,456,789"},
          {20, "listing files"},
          {1, ""}}) {
        columns = width;
        advance(now - BEGAN + 2000, 123'456'789);
        EXPECT_EQ(written.back(), drawn(text)) << width;
    }
}

TEST_F(ProgressLineTest, StaysOutOfWhatIsTypedWhereItIsInTheBackground)
{
    foreground = getpgrp() + 1;
    advance(2000, 1);
    EXPECT_THAT(written, IsEmpty());
    foreground = -1; // the terminal is another session's
    advance(3000, 2);
    EXPECT_THAT(written, ElementsAre(drawn("listing: 2 files")));
    foreground = getpgrp() + 1;
    progress_line_erase(line);
    EXPECT_EQ(written.size(), 1U);
}

TEST_F(ProgressLineTest, GoesOnWhereTheTerminalTookAPart)
{
    const ShortTransfers limit(4);
    advance(2000, 2);
    std::string all;
    for (const std::string& part : written) {
        all += part;
    }
    EXPECT_EQ(all, drawn("listing: 2 files"));
}

TEST_F(ProgressLineTest, IsDrawnAnewAfterTheTerminalRefusedIt)
{
    const CallFault fault(write_call, 1, -1, EAGAIN);
    advance(2000, 1);
    EXPECT_THAT(written, IsEmpty());
    advance(2001, 2);
    EXPECT_THAT(written, IsEmpty());
    advance(2201, 3);
    EXPECT_THAT(written, ElementsAre(drawn("listing: 3 files")));
}
