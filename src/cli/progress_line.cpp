#include "cli/progress_line.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "core/append_all.h"

namespace {

// The clock that is looked at for each file: it is read from memory on every machine,
// and lags behind by one tick of the kernel's, 10 ms at most.
constexpr clockid_t CLOCK = CLOCK_MONOTONIC_COARSE;
constexpr std::int64_t FIRST_DRAW = 1000 + 10; // a second, and one tick

// Leaves room, within ten times a second, for the two stages that may begin.
constexpr std::int64_t DRAW_INTERVAL = 200;

constexpr std::uint64_t USUAL_COLUMNS = 80; // where the terminal does not tell
constexpr std::uint64_t TEXT_SIZE = 128;    // bytes: more than any text takes, with its NUL

// Erases from the cursor to the end of the screen: below is what was wrapped of a line
// when the terminal became narrower.
constexpr std::string_view ERASE_REST = "\x1b[J";
constexpr std::string_view ERASED_LINE = "\r\x1b[J";

// A clock that cannot be read stands still.
void look_at_clock(ProgressLine& line)
{
    timespec now = {};
    if (clock_gettime(CLOCK, &now) == 0) {
        line.now = std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
    }
}

bool is_known_terminal()
{
    const char* type = std::getenv("TERM");
    return type != nullptr && std::strcmp(type, "dumb") != 0 && isatty(STDERR_FILENO) == 1;
}

// A program in the background would write across what its user is typing. A terminal
// that controls other processes than this one has no background for it.
bool is_in_foreground()
{
    const pid_t foreground = tcgetpgrp(STDERR_FILENO);
    return foreground < 0 || foreground == getpgrp();
}

// A terminal that was stopped, by Ctrl-S say, would hold the run up until it goes on.
bool takes_text()
{
    pollfd terminal = {STDERR_FILENO, POLLOUT, 0};
    return poll(&terminal, 1, 0) == 1 && (terminal.revents & POLLOUT) != 0;
}

std::uint64_t terminal_columns()
{
    winsize size = {};
    const bool is_told = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return is_told ? size.ws_col : USUAL_COLUMNS;
}

// In one call, so that nobody sees half a line. What the terminal does not take is lost.
void write_to_terminal(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = write(STDERR_FILENO, text.data(), text.size());
        if (count <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

// The cursor is left at the line's beginning, where it stays if the terminal becomes
// narrower and wraps the line. The last column stays empty: some terminals go on to the
// next line as soon as it is written.
void draw(ProgressLine& line, std::uint64_t done)
{
    line.due = line.now + DRAW_INTERVAL;
    if (!is_in_foreground() || !takes_text()) {
        return;
    }
    const RunPosition position = {line.stage, done, line.total,
                                  static_cast<std::uint64_t>(line.now - line.stage_began)};
    char text_bytes[TEXT_SIZE] = "";
    BoundedText text = {text_bytes, std::min(terminal_columns(), TEXT_SIZE), 0};
    append_progress_text(text, position);
    char drawn_bytes[TEXT_SIZE + 8];
    BoundedText drawn = {drawn_bytes, sizeof drawn_bytes, 0};
    static_cast<void>(append_all(drawn, "\r", text.data, ERASE_REST, "\r")); // has room
    line.is_drawn = true;
    write_to_terminal(drawn.data);
}

} // namespace

void progress_line_init(ProgressLine& line)
{
    line = {};
    if (is_known_terminal()) {
        look_at_clock(line);
        line.due = line.now + FIRST_DRAW;
        line.is_wanted = line.now > 0;
    }
}

void progress_line_begin(ProgressLine& line, Stage stage, std::uint64_t total)
{
    line.stage = stage;
    line.total = total;
    if (!line.is_wanted) {
        return;
    }
    look_at_clock(line);
    line.stage_began = line.now;
    if (line.is_drawn || line.now > line.due) {
        draw(line, 0);
    }
}

void progress_line_advance(ProgressLine& line, std::uint64_t done)
{
    if (!line.is_wanted) {
        return;
    }
    look_at_clock(line);
    if (line.now > line.due) {
        draw(line, done);
    }
}

void progress_line_erase(ProgressLine& line)
{
    if (line.is_drawn && is_in_foreground()) {
        write_to_terminal(ERASED_LINE);
    }
    line.is_drawn = false;
}

Progress progress_line_listener(ProgressLine& line)
{
    const auto advance = [](void* listener, std::uint64_t done) {
        progress_line_advance(*static_cast<ProgressLine*>(listener), done);
    };
    return {advance, &line};
}
