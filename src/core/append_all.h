// Pieces in a row: append_all(text, "<td>", row, "</td>") appends them from left to
// right and stops at the first that cannot be appended.
//
// There is one overload of append_part for each kind of piece that a text is made of;
// a room adds its own kinds as records of one field, such as Escaped.

#pragma once

#include <cstdint>
#include <string_view>

#include "core/bounded_text.h"
#include "core/text_buffer.h"

// Appends the bytes of text. False: as text_buffer_append.
[[nodiscard]] inline bool append_part(TextBuffer& buffer, std::string_view text)
{
    return text_buffer_append(buffer, text);
}

// Appends number in decimal digits. False: as text_buffer_append_number.
[[nodiscard]] inline bool append_part(TextBuffer& buffer, std::uint64_t number)
{
    return text_buffer_append_number(buffer, number);
}

// A character would be appended as the number of its code.
bool append_part(TextBuffer& buffer, char character) = delete;

// Appends the bytes of more. False: as bounded_text_append.
[[nodiscard]] inline bool append_part(BoundedText& text, std::string_view more)
{
    return bounded_text_append(text, more);
}

// Appends each of parts to text, which is a TextBuffer or a BoundedText.
// False: a part could not be appended; those before it stay, those behind it were not
// tried.
template <typename Text, typename... Parts>
[[nodiscard]] bool append_all(Text& text, const Parts&... parts)
{
    return (append_part(text, parts) && ...);
}
