// Reads a JSON document (RFC 8259) from its front and fails where it is not what is
// expected. White space may stand wherever JSON lets it.

#pragma once

#include <cstdint>
#include <string_view>

class JsonReader
{
public:
    explicit JsonReader(std::string_view document) : rest_(document) {}

    void punctuation(char expected);
    void string(std::string_view expected);
    void number(std::uint64_t expected);

    // A name and the colon behind it.
    void key(std::string_view expected);

    // Nothing but white space is left.
    void end();

private:
    void skip_white_space();

    std::string_view rest_;
};
