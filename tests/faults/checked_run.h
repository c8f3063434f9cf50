// One run under faults and everything that has to hold of it.

#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "faults/watched_run.h"
#include "faults/world.h"

// A kind of failure, and how many calls can fail so in a run of each scene, in their
// order; 0 where there is no such call, or where it is left to the smaller scenes. They do
// not depend on the compiler.
struct FaultKind
{
    Call call;
    Answer answer;
    std::array<std::uint64_t, 6> calls;

    // Whether there may be more. What is asked about entries depends on the order in which
    // a folder lists them, and on whether it says what they are: a link before the first
    // report spares the question whether the folder can be searched.
    bool may_be_more() const
    {
        return call == Call::Stat;
    }
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
