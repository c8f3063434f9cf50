#include "support/json_reader.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "support/naive_decoders.h"
#include "support/require.h"

void JsonReader::skip_white_space()
{
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\n\r"), rest_.size()));
}

void JsonReader::punctuation(char expected)
{
    skip_white_space();
    require(rest_.starts_with(expected), "the punctuation that is due");
    rest_.remove_prefix(1);
}

void JsonReader::string(std::string_view expected)
{
    static std::array<char, std::size_t{64} * 1024> decoded;
    punctuation('"');
    std::size_t end = 0;
    while (end < rest_.size() && rest_[end] != '"') {
        end += std::size_t{rest_[end] == '\\' ? 2U : 1U};
    }
    require(end < rest_.size(), "a string ends");
    require(end <= decoded.size(), "no string is that long");
    std::size_t length = 0;
    require(naive_decode_json(rest_.substr(0, end), decoded.data(), length), "a sound string");
    require(std::string_view(decoded.data(), length) == expected, "a string's value");
    rest_.remove_prefix(end + 1);
}

void JsonReader::number(std::uint64_t expected)
{
    skip_white_space();
    const std::size_t digits = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    require(digits > 0 && (digits == 1 || rest_[0] != '0'), "a number without leading zeroes");
    std::uint64_t value = 0;
    const auto result = std::from_chars(rest_.data(), rest_.data() + digits, value);
    require(result.ec == std::errc() && value == expected, "a number's value");
    rest_.remove_prefix(digits);
}

void JsonReader::key(std::string_view expected)
{
    string(expected);
    punctuation(':');
}

void JsonReader::end()
{
    skip_white_space();
    require(rest_.empty(), "nothing behind the document");
}
