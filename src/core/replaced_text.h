// Appending text with some bytes replaced: the one engine below every escaper.

#pragma once

#include <array>
#include <string_view>

#include "core/text_buffer.h"

// What stands in for each byte value: a NUL-terminated text that is not owned and
// outlives the table's use, or null where the byte stands for itself.
using ByteReplacements = std::array<const char*, 256>;

// Makes text stand in for byte, in place of what the table said before.
constexpr void set_replacement(ByteReplacements& replacements, char byte, const char* text)
{
    replacements[static_cast<unsigned char>(byte)] = text;
}

// Appends text with each byte replaced as the table says. An empty text appends
// and allocates nothing.
// False: the buffer could not grow; it holds an unspecified part of the result.
[[nodiscard]] bool append_replaced_text(TextBuffer& buffer, std::string_view text,
                                        const ByteReplacements& replacements);
