// One report's row, and what rows and page are put together with.

#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "support/expected_outputs.h"
#include "support/page_reader.h"
#include "support/require.h"

inline constexpr std::string_view LEFT_ALIGNED = " style=\"text-align:left\"";

// A text that is put together; never longer than this.
struct Line
{
    std::array<char, 16384> bytes;
    std::size_t length = 0;

    void add(std::string_view text)
    {
        require(text.size() <= bytes.size() - length, "no line is that long");
        text.copy(bytes.data() + length, text.size());
        length += text.size();
    }

    std::string_view view() const
    {
        return {bytes.data(), length};
    }
};

inline void number_text(PageReader& page, std::uint64_t number)
{
    std::array<char, 20> digits;
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    page.text({digits.data(), end});
}

// Reads the row of an errored or analyzed report, with that number.
void judge_row(PageReader& page, const ReportEntry& entry, std::uint64_t number,
               const ExpectedOutputs& expected);
