// How a target says that something does not hold.

#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the program with what as its message, by which libFuzzer keeps the input and
// a replay fails.
inline void require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}
