// What the calls that the test program is linked with have in common. Which names the
// compilers give a call depends on what they optimise and check, so there are several for
// some; interception_test.cpp sees to it that none is missing.

#pragma once

#include <cstdint>
#include <string_view>

#include "faults/watched_run.h"

// Where the calls by this name are counted.
std::uint64_t& hits_of(const char* name);

// The run that is being watched, or null; counts a call if there is one.
WatchedRun* watched(std::uint64_t& hits);

// Whether the call is to be refused; errno is error then.
bool refuses(WatchedRun* run, Call call, int error, std::string_view subject = {},
             std::uint64_t number = 0);
