// What readers that know nothing of the writers find in a page and in a JSON summary.
//
// Both libraries take UTF-8 only, whereas names and texts are any bytes. So each byte
// that is no text is read as a character of its own, and given back as that byte.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

struct PageRow
{
    std::string link;               // where its first link leads; empty without one
    std::vector<std::string> cells; // as a reader sees them; a line break is "\n"

    bool operator==(const PageRow&) const = default;
};

struct PageTable
{
    std::string title;     // the paragraph or heading that comes before it
    std::string page_size; // empty when it is not to be paged
    bool has_pager;        // buttons follow it
    std::vector<PageRow> rows;

    bool operator==(const PageTable&) const = default;
};

// The tables of a page's body, or of a part of it that is well nested, their headers
// left out. Throws when there is a mistake in the markup, as the HTML standard has it.
std::vector<PageTable> read_tables(std::string_view markup);

// A whole document, its keys in order and bytes from 0x80 on as as_characters has them.
// Throws when it is no JSON.
nlohmann::ordered_json read_json(std::string_view document);

// text with each byte from 0x80 on as a character of its own, to be compared with a
// string of read_json.
std::string as_characters(std::string_view text);
