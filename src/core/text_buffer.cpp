#include "core/text_buffer.h"

#include <array>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "core/memory.h"

namespace {

// Makes room for extra more bytes of text and the NUL. Every append grows by this
// one rule, so a capacity never depends on how a text was cut into appends.
bool grow(TextBuffer& buffer, std::uint64_t extra)
{
    const std::uint64_t needed = buffer.length + extra + 1;
    if (needed <= buffer.capacity) {
        return true;
    }
    std::uint64_t capacity = buffer.capacity == 0 ? TEXT_BUFFER_FIRST_CAPACITY : buffer.capacity;
    while (capacity < needed) {
        capacity *= 2;
    }
    void* block = std::realloc(buffer.data, block_size(capacity, 1));
    if (block == nullptr) {
        return false;
    }
    buffer.data = static_cast<char*>(block);
    buffer.capacity = capacity;
    return true;
}

// Formats a text of the given length into the room behind the text.
// False: the C library did not do again what it did when it measured the text.
__attribute__((format(printf, 3, 0))) bool format_at_end(TextBuffer& buffer, int length,
                                                         const char* format, va_list values)
{
    const std::size_t text_length = static_cast<std::size_t>(length);
    char* end = buffer.data + buffer.length;
    if (std::vsnprintf(end, text_length + 1, format, values) != length) {
        *end = '\0';
        return false;
    }
    buffer.length += text_length;
    return true;
}

} // namespace

void text_buffer_init(TextBuffer& buffer)
{
    buffer = {nullptr, 0, 0};
}

void text_buffer_free(TextBuffer& buffer)
{
    std::free(buffer.data);
    text_buffer_init(buffer);
}

bool text_buffer_append(TextBuffer& buffer, std::string_view text)
{
    if (!grow(buffer, text.size())) {
        return false;
    }
    buffer.length += text.copy(buffer.data + buffer.length, text.size());
    buffer.data[buffer.length] = '\0';
    return true;
}

bool text_buffer_append_char(TextBuffer& buffer, int c)
{
    const char byte = static_cast<char>(static_cast<unsigned char>(c));
    return text_buffer_append(buffer, {&byte, 1});
}

bool text_buffer_append_number(TextBuffer& buffer, std::uint64_t number)
{
    std::array<char, 20> digits; // UINT64_MAX has 20
    const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return text_buffer_append(buffer, {digits.data(), end});
}

bool text_buffer_appendf(TextBuffer& buffer, const char* format, ...)
{
    va_list values;
    va_start(values, format);
    va_list measured;
    va_copy(measured, values);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it does not see through va_copy
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    const bool fits = length >= 0 && grow(buffer, static_cast<std::uint64_t>(length));
    const bool appended = fits && format_at_end(buffer, length, format, values);
    va_end(values);
    return appended;
}
