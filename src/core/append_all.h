// Pieces in a row: append_all(buffer, "<td>", row, "</td>").
//
// There is one append_part for each kind of piece that a text is made of, false when it
// could not be appended. Other components add kinds of their own, such as Escaped.

#pragma once

#include <cstdint>
#include <string_view>

#include "core/bounded_text.h"
#include "core/text_buffer.h"

[[nodiscard]] inline bool append_part(TextBuffer& buffer, std::string_view text)
{
    return text_buffer_append(buffer, text);
}

[[nodiscard]] inline bool append_part(TextBuffer& buffer, std::uint64_t number)
{
    return text_buffer_append_number(buffer, number);
}

// A character would be appended as the number of its code.
bool append_part(TextBuffer& buffer, char character) = delete;

[[nodiscard]] inline bool append_part(BoundedText& text, std::string_view more)
{
    return bounded_text_append(text, more);
}

// Appends the parts from left to right to text, which is a TextBuffer or a BoundedText.
// False: one could not be appended; those before it stay, those behind it were not tried.
template <typename Text, typename... Parts>
[[nodiscard]] bool append_all(Text& text, const Parts&... parts)
{
    return (append_part(text, parts) && ...);
}
