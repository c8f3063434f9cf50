// The five HTML character references that reports use, one table for decoding
// (here) and escaping (html_escape.h), so that what one writes the other reads.

#pragma once

#include <array>
#include <cstdint>
#include <string_view>

struct HtmlEntity
{
    std::string_view reference; // with its "&" and ";"; a NUL follows it
    char character;             // what it stands for
};

inline constexpr std::array<HtmlEntity, 5> html_entities = {{
    {"&amp;", '&'},
    {"&lt;", '<'},
    {"&gt;", '>'},
    {"&quot;", '"'},
    {"&#39;", '\''},
}};

// Copies the bytes from start up to, not including, end to destination, each
// reference of html_entities replaced by its character, and adds a NUL. At most
// limit bytes are written before the NUL, so destination must hold limit + 1;
// what does not fit is dropped. One pass: what a reference yields is not read
// again. Any other "&" is copied as it stands. An empty span (start not before
// end) gives an empty string.
void html_copy_decoded(char* destination, const char* start, const char* end, std::uint64_t limit);
