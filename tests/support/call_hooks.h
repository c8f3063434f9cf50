// Lets a test change the world between two calls of the code under test, as another
// program might at any moment.
//
// Hooks sit in the wrapped file calls and in readdir (see file_faults.h and
// unknown_entry_types.h), so only calls that our own objects make are seen.

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "support/file_faults.h"

// While it lives, runs what it is given once: just before the file call of this kind
// with this number (1 is the next one). One at a time.
class BeforeFileCall
{
public:
    BeforeFileCall(FileCall call, std::uint64_t number, std::function<void()> change);
    ~BeforeFileCall();
    BeforeFileCall(const BeforeFileCall&) = delete;
    BeforeFileCall& operator=(const BeforeFileCall&) = delete;

    // Whether the call was made.
    bool happened() const;
};

// While it lives, runs what it is given once: when a listing has given the entry of
// this name, or has come to its end for an empty name. One at a time.
class AfterListing
{
public:
    AfterListing(std::string name, std::function<void()> change);
    ~AfterListing();
    AfterListing(const AfterListing&) = delete;
    AfterListing& operator=(const AfterListing&) = delete;

    // Whether the entry was given.
    bool happened() const;
};

// For the wrapped calls alone.
void before_file_call(FileCall call);
void after_listing_call(std::string_view name);
