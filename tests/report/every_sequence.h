// Every document of up to so many fragments, judged by the naive scraper. Fragments
// are the byte sequences that the report reader looks for, and a few that it does
// not: what goes wrong when they meet in an order that nobody thought of is found
// here. Nothing here needs the test framework.

#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

// What the documents of a scope are: before, then the sequence, then after.
struct Scope
{
    std::string_view name;
    std::string_view before;
    std::span<const std::string_view> fragments;
    std::string_view after;
    int extra_length; // how many fragments longer than others its sequences may be
};

// The first of them has every fragment and nothing around; the others look into the
// pieces of a report that a short sequence does not reach.
extern const std::array<Scope, 5> SCOPES;

// What was judged. A plain record, so that processes can share it.
struct SequenceTally
{
    std::uint64_t documents;
    std::uint64_t passed, failed, errored, not_reports; // together: documents
    std::uint64_t modes, sub_modes, gating, non_gating, error_texts;
    std::uint64_t differences;    // documents of which the two readings differ
    char first_difference[16384]; // the first of them and its differences; or ""
};

// One of several that divide the documents of a scope among them.
struct Share
{
    unsigned index = 0;
    unsigned count = 1;
};

// Reads every document of sequences of 0 to length fragments both ways.
void judge_sequences(const Scope& scope, int length, Share share, SequenceTally& tally);

void add_tally(SequenceTally& sum, const SequenceTally& part);

// What must come out, worked out from the lengths alone.
std::uint64_t count_sequences(std::uint64_t fragments, int length);

// The same for the scope of all fragments: documents that hold no verdict label, and
// documents whose verdict is one certain word. There are as many of each word.
std::uint64_t count_not_reports(int length);
std::uint64_t count_with_verdict(int length);
