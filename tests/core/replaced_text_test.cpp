#include <string>

#include <gtest/gtest.h>

#include "core/replaced_text.h"

namespace {

std::string replaced(std::string_view text, const ByteReplacements& replacements)
{
    TextBuffer buffer;
    text_buffer_init(buffer);
    EXPECT_TRUE(append_replaced_text(buffer, text, replacements));
    const std::string result(buffer.data == nullptr ? "" : buffer.data, buffer.length);
    text_buffer_free(buffer);
    return result;
}

TEST(ReplacedText, AnyByteMayBeReplacedNoneBesides)
{
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        ByteReplacements replacements = {};
        set_replacement(replacements, byte, "(it)");
        std::string text;
        std::string expected;
        for (int other = 0; other < 256; ++other) {
            text += static_cast<char>(other);
            expected += other == value ? "(it)" : std::string(1, static_cast<char>(other));
        }
        EXPECT_EQ(replaced(text, replacements), expected) << value;
    }
}

TEST(ReplacedText, TheLastReplacementOfAByteHolds)
{
    ByteReplacements replacements = {};
    set_replacement(replacements, 'a', "first");
    set_replacement(replacements, 'a', "second");
    EXPECT_EQ(replaced("cab", replacements), "csecondb");
}

} // namespace
