#include "support/naive_decoders.h"

namespace {

// The length of the reference that text, which begins with "&", begins with, or 0.
std::size_t reference_at(std::string_view text, char& character)
{
    const std::size_t end = text.substr(0, 6).find(';');
    if (end == std::string_view::npos) {
        return 0;
    }
    const std::string_view name = text.substr(1, end - 1);
    if (name == "lt") {
        character = '<';
    } else if (name == "gt") {
        character = '>';
    } else if (name == "amp") {
        character = '&';
    } else if (name == "#39") {
        character = '\'';
    } else if (name == "quot") {
        character = '"';
    } else {
        return 0;
    }
    return end + 1;
}

int digit_value(char digit)
{
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

// The length of the escape that text, which begins with a backslash, begins with, or 0.
std::size_t escape_at(std::string_view text, char& character)
{
    if (text.size() < 2) {
        return 0;
    }
    switch (text[1]) {
    case 't':
        character = '\t';
        return 2;
    case 'n':
        character = '\n';
        return 2;
    case 'r':
        character = '\r';
        return 2;
    case '"':
    case '\\':
        character = text[1];
        return 2;
    default:
        break;
    }
    if (text[1] != 'u' || text.size() < 6 || text[2] != '0' || text[3] != '0') {
        return 0;
    }
    const int high = digit_value(text[4]);
    const int low = digit_value(text[5]);
    character = static_cast<char>(high * 16 + low);
    const bool has_short_form = character == '\t' || character == '\n' || character == '\r';
    return (high == 0 || high == 1) && low >= 0 && !has_short_form ? 6 : 0;
}

} // namespace

std::size_t naive_decode_html(std::string_view text, char* decoded)
{
    std::size_t length = 0;
    while (!text.empty()) {
        char character = text[0];
        const std::size_t reference = character == '&' ? reference_at(text, character) : 0;
        decoded[length++] = character;
        text.remove_prefix(reference > 0 ? reference : 1);
    }
    return length;
}

bool is_escaped_html(std::string_view text)
{
    for (std::size_t at = 0; at < text.size(); ++at) {
        char character = text[at];
        if (character == '<' || character == '>' || character == '"' || character == '\'' ||
            (character == '&' && reference_at(text.substr(at), character) == 0)) {
            return false;
        }
    }
    return true;
}

bool is_same_but_for_breaks(std::string_view path, std::string_view text)
{
    for (const char byte : text) {
        if (!path.starts_with(byte)) {
            return false;
        }
        path.remove_prefix(1);
        if (byte == '/' || byte == '\\') {
            if (!path.starts_with("<wbr>")) {
                return false;
            }
            path.remove_prefix(5);
        }
    }
    return path.empty();
}

bool naive_decode_json(std::string_view text, char* decoded, std::size_t& length)
{
    length = 0;
    while (!text.empty()) {
        char character = text[0];
        std::size_t taken = 1;
        if (character == '\\') {
            taken = escape_at(text, character);
        } else if (character == '"' || (character >= 0 && character < 0x20)) {
            return false;
        }
        if (taken == 0) {
            return false;
        }
        decoded[length++] = character;
        text.remove_prefix(taken);
    }
    return true;
}
