// Appending text with some bytes replaced: the one engine below every escaper.

#pragma once

#include <array>
#include <string_view>

#include "core/text_buffer.h"

// What stands in for each byte value; an empty text where the byte stands for
// itself. The texts are not owned and outlive the table's use.
using ByteReplacements = std::array<std::string_view, 256>;

// Makes text stand in for byte, in place of what the table said before.
constexpr void set_replacement(ByteReplacements& replacements, char byte, std::string_view text)
{
    replacements[static_cast<unsigned char>(byte)] = text;
}

// Appends text with each byte replaced as the table says. An empty text appends
// and allocates nothing.
// False: the buffer could not grow; it holds an unspecified part of the result.
[[nodiscard]] bool append_replaced_text(TextBuffer& buffer, std::string_view text,
                                        const ByteReplacements& replacements);
