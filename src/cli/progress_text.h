// What the progress line says, in as many columns as there are:
//
//   listing: 12,345 files
//   reading: 3,120 of 20,000 (15 %), about 40 s left
//   writing
//
// A piece that has no room is left out whole: a number that is cut would tell another one.

#pragma once

#include <cstdint>

#include "core/bounded_text.h"

enum class Stage
{
    Listing,
    Reading,
    Writing
};

// Where a run is.
struct RunPosition
{
    Stage stage;
    std::uint64_t done;      // files that are listed, or read
    std::uint64_t total;     // files to read; used by Reading alone, and then not 0
    std::uint64_t stage_age; // milliseconds since the stage began
};

// Appends the text to text, which may be empty; one byte takes one column. Nothing is
// appended where there is no room for the stage's name. The time left is a guess from
// what the stage has taken so far: none is made in its first second, nor one of days.
void append_progress_text(BoundedText& text, const RunPosition& position);
