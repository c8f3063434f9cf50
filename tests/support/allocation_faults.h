// Makes chosen allocations of the code under test fail.
//
// The test programs are linked with --wrap for malloc and realloc, so the calls
// that our own objects make go through here; the C and C++ libraries' own calls
// do not.

#pragma once

#include <cstdint>

// While it lives, the allocation with this number (1 is the next one) and, if
// wanted, all later ones return null with errno ENOMEM. One at a time.
class AllocationFault
{
public:
    enum class Length
    {
        Once,
        FromThenOn
    };

    explicit AllocationFault(std::uint64_t number, Length length = Length::FromThenOn);
    ~AllocationFault();
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    // Allocations that have failed so far.
    std::uint64_t failures() const;
};

// Allocations made by our own objects since the test program started.
std::uint64_t allocation_count();
