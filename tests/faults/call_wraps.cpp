#include "faults/call_wraps.h"

#include <cerrno>

std::uint64_t& hits_of(const char* name)
{
    return name_hits()[name];
}

WatchedRun* watched(std::uint64_t& hits)
{
    WatchedRun* run = watched_run();
    if (run != nullptr) {
        ++hits;
    }
    return run;
}

bool refuses(WatchedRun* run, Call call, int error, std::string_view subject, std::uint64_t number)
{
    if (run == nullptr || !run->ask(call, subject, number)) {
        return false;
    }
    errno = error;
    return true;
}
