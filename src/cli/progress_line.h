// The line on the terminal that tells where a long run is; progress_text.h shows it.
//
// It stands on standard error, rewritten in place, and only if that is a terminal of a
// known type (TERM is set, and not to "dumb") in whose foreground this program is. It is
// drawn first when the run has taken more than a second, then at most ten times a
// second: every DRAW_INTERVAL and at the beginning of a stage. It is never wider than the
// terminal is at that moment. Whoever prints anything else erases it first.
//
// What the terminal refuses, or would not take at once, is not drawn; nothing else comes of it.
// Where no line is wanted, no call asks the system anything after progress_line_init.

#pragma once

#include <cstdint>

#include "cli/progress_text.h"
#include "core/progress.h"

// Times are in milliseconds of the clock that progress_line.cpp looks at.
struct ProgressLine
{
    bool is_wanted;
    bool is_drawn;
    Stage stage;
    std::uint64_t total;
    std::int64_t now; // the last look at the clock
    std::int64_t stage_began;
    std::int64_t due; // nothing is drawn until this is over
};

// The run begins. Asks what standard error is, once.
void progress_line_init(ProgressLine& line);

// A stage begins, of so many files; total counts in Stage::Reading alone.
void progress_line_begin(ProgressLine& line, Stage stage, std::uint64_t total);

// So many files of the stage are done. Looks at the clock, which costs no system call.
void progress_line_advance(ProgressLine& line, std::uint64_t done);

// Something else is about to be printed, or the run ends.
void progress_line_erase(ProgressLine& line);

// What advances the line. The line must stay where it is while the result is in use.
Progress progress_line_listener(ProgressLine& line);
