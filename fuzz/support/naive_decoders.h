// What a browser and a JSON reader make of an escaped text, and whether it is escaped
// the way it ought to be. Nothing here uses the code under test.

#pragma once

#include <cstddef>
#include <string_view>

// Writes text with the five references of the page's texts replaced by their characters
// to decoded, which has room for as many bytes as text has; the length is returned.
std::size_t naive_decode_html(std::string_view text, char* decoded);

// Whether text holds none of < > " ' and each & begins one of the five references.
bool is_escaped_html(std::string_view text);

// Whether path is text with "<wbr>" behind each "/" and "\", and nowhere else.
bool is_same_but_for_breaks(std::string_view path, std::string_view text);

// Reads the inside of a JSON string to decoded, which has room for as many bytes as text
// has. Bytes from 0x80 on stand for themselves.
// False: text is none, or escapes a byte that needs no escape or in another form than
// \t \n \r \" \\ and, for the other control characters, "\u" and lower-case digits.
bool naive_decode_json(std::string_view text, char* decoded, std::size_t& length);
