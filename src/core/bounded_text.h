// A text that grows at its end in an array of the caller's, such as a path.
//
// Made as {array, sizeof array, 0} it holds no text yet; the first append, be it of an
// empty text, puts the NUL there. From then on length is less than capacity and
// data[length] is NUL. Callers may read every field, and may set length back to an
// earlier one to append there anew.

#pragma once

#include <cstdint>
#include <string_view>

struct BoundedText
{
    char* data;             // not owned
    std::uint64_t capacity; // bytes at data, the terminating NUL counted
    std::uint64_t length;   // bytes of text, the terminating NUL not counted
};

// Appends the bytes of more, which must not lie in the array.
// False: they do not fit with a NUL behind them; nothing was changed.
[[nodiscard]] inline bool bounded_text_append(BoundedText& text, std::string_view more)
{
    if (text.length + more.size() >= text.capacity) {
        return false;
    }
    text.length += more.copy(text.data + text.length, more.size());
    text.data[text.length] = '\0';
    return true;
}
