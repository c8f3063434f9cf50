// Limits that a child sets on itself before it becomes the program, for
// ProcessOptions::before_exec.

#pragma once

#include <algorithm>

#include <sys/resource.h>
#include <unistd.h>

// Descriptors for a tree as deep as paths allow: one for each of 2,047 folders.
inline constexpr rlim_t DEEP_DESCRIPTORS = 4096;

inline constexpr rlim_t SMALL_STACK = rlim_t{256} * 1024; // bytes

using LimitedResource = decltype(RLIMIT_NOFILE);

inline rlimit limits_of(LimitedResource resource)
{
    rlimit limits = {};
    getrlimit(resource, &limits);
    return limits;
}

// Whether limit may set this one: only root may go beyond the hard limit.
inline bool may_set_limit(LimitedResource resource, rlim_t soft)
{
    return geteuid() == 0 || soft <= limits_of(resource).rlim_max;
}

// Sets the soft limit, and raises the hard one where it is lower. A child that may not
// do so ends with a status that no test expects.
inline void limit(LimitedResource resource, rlim_t soft)
{
    rlimit limits = limits_of(resource);
    limits.rlim_cur = soft;
    limits.rlim_max = std::max(limits.rlim_max, soft);
    if (setrlimit(resource, &limits) != 0) {
        _exit(126);
    }
}
