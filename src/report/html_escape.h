// The two escapers through which every scanned text reaches the page.

#pragma once

#include <string_view>

#include "core/append_all.h"

// Appends text with the five characters of html_entities replaced by their
// references, fit for element content and for attribute values in either kind of
// quotes (HTML standard, "Attribute value states" of the tokenizer). Every other byte,
// control characters and bytes above 0x7F included, is appended unchanged. An empty text
// appends nothing and allocates nothing.
// False: the buffer could not grow; it stays valid and holds an unspecified part
// of the escaped text, so the document is to be abandoned.
[[nodiscard]] bool html_append_escaped(TextBuffer& buffer, std::string_view text);

// The same, with a line-break opportunity "<wbr>" after each "/" and "\": for
// visible paths only, never for attribute values.
// False: as html_append_escaped.
[[nodiscard]] bool html_append_escaped_path(TextBuffer& buffer, std::string_view text);

// Both as pieces for append_all. False: as html_append_escaped.
struct Escaped
{
    std::string_view text;
};

struct EscapedPath
{
    std::string_view path;
};

[[nodiscard]] inline bool append_part(TextBuffer& buffer, Escaped piece)
{
    return html_append_escaped(buffer, piece.text);
}

[[nodiscard]] inline bool append_part(TextBuffer& buffer, EscapedPath piece)
{
    return html_append_escaped_path(buffer, piece.path);
}
