#include "core/bounded_text.h"

#include <cstring>

bool bounded_text_append(BoundedText& text, std::string_view more)
{
    if (text.length + more.size() >= text.capacity) {
        return false;
    }
    // An empty view may hold a null pointer, which memcpy does not take.
    if (!more.empty()) {
        std::memcpy(text.data + text.length, more.data(), more.size());
    }
    text.length += more.size();
    text.data[text.length] = '\0';
    return true;
}
