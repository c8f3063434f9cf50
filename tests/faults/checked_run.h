// One run of the whole program under faults, and everything that has to hold of it.

#pragma once

#include <cstdint>
#include <vector>

#include "faults/watched_run.h"
#include "faults/world.h"

// What a run without faults does. Making it fails the test unless that run is right.
struct Reference
{
    explicit Reference(const World& world);

    std::uint64_t count(Call call) const;

    std::vector<CallRecord> trace;
    Listings listings;
};

// Runs the program under these faults and fails the test unless a call failed, all is as
// forecast and nothing is leaked. Returns the calls that failed.
std::vector<CallRecord> check_run(const World& world, const Reference& reference,
                                  const std::vector<Fault>& faults);
