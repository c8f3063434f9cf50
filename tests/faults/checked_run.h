// One run under faults and everything that has to hold of it.

#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "faults/watched_run.h"
#include "faults/world.h"

// A kind of failure, and the fewest calls that can fail so in a run of each scene, in
// their order; 0 where there is no such call.
struct FaultKind
{
    Call call;
    Answer answer;
    std::array<std::uint64_t, 6> floors;
};
const std::vector<FaultKind>& fault_kinds();

// What a run without faults does. Making it fails the test unless that run is right.
struct Reference
{
    explicit Reference(const World& world);

    std::uint64_t count(Call call) const;

    std::vector<CallRecord> trace;
    Listings listings;
};

// Runs the program under these faults and fails the test unless all is as forecast, every
// fault struck where the reference has that call, and nothing is leaked. Returns how many
// of the calls failed.
std::size_t check_run(const World& world, const Reference& reference,
                      const std::vector<Fault>& faults);
