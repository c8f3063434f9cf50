// A growable byte string in which each output file is assembled before it is
// written in one go.
//
// Invariants, between calls:
//   - data is null and capacity 0 (the empty state), or data is an owned heap
//     block of capacity bytes with length + 1 <= capacity and data[length] NUL;
//   - capacity is 0 or 256 times a power of two;
//   - an append that returns false leaves length and the text, its NUL included, as
//     they were. Data and capacity are as they were, too, with one exception: when a
//     formatted text could be measured, but not written, the block may have grown
//     and moved.
//
// A text that is appended must not lie in the buffer's own block, which may move.
//
// Lifecycle: text_buffer_init, any number of appends, text_buffer_free. A freed
// buffer is empty and may be appended to again. Callers may read data and
// length; only the functions below may change or release them.

#pragma once

#include <cstdint>
#include <string_view>

// Bytes of the first block that a buffer allocates, its NUL included.
inline constexpr std::uint64_t TEXT_BUFFER_FIRST_CAPACITY = 256;

struct TextBuffer
{
    char* data;             // owned; null while nothing has been allocated
    std::uint64_t length;   // bytes of text, the terminating NUL not counted
    std::uint64_t capacity; // bytes allocated, the terminating NUL counted
};

// Makes the buffer empty; allocates nothing and releases nothing.
void text_buffer_init(TextBuffer& buffer);

// Releases the block and leaves the buffer empty. Harmless on an empty buffer.
void text_buffer_free(TextBuffer& buffer);

// Appends the bytes of text. An empty text still allocates the first block, so
// that data is a valid empty string afterwards.
// False: the block could not grow; nothing was appended.
[[nodiscard]] bool text_buffer_append(TextBuffer& buffer, std::string_view text);

// Appends the low byte of c, whatever it is.
// False: the block could not grow; nothing was appended.
[[nodiscard]] bool text_buffer_append_char(TextBuffer& buffer, int c);

// Appends number in decimal digits, without sign or leading zeroes.
// False: the block could not grow; nothing was appended.
[[nodiscard]] bool text_buffer_append_number(TextBuffer& buffer, std::uint64_t number);

// Appends text formatted as printf formats it (C standard, fprintf).
// False: the block could not grow or the C library rejected the format or a
// value; nothing was appended.
[[nodiscard]] __attribute__((format(printf, 2, 3))) bool
text_buffer_appendf(TextBuffer& buffer, const char* format, ...);
