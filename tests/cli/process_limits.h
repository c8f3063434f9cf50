// Limits that a child sets on itself before it becomes the program, for
// ProcessOptions::before_exec.

#pragma once

#include <algorithm>

#include <sys/resource.h>
#include <unistd.h>

// Sets the soft limit, and raises the hard one where it is lower. A child that may not
// do so ends with a status that no test expects.
template <typename Resource>
void limit(Resource resource, rlim_t soft)
{
    rlimit limits = {};
    if (getrlimit(resource, &limits) != 0) {
        _exit(126);
    }
    limits.rlim_cur = soft;
    limits.rlim_max = std::max(limits.rlim_max, soft);
    if (setrlimit(resource, &limits) != 0) {
        _exit(126);
    }
}
