// Strings and arrays of strings of the JSON summary.

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "summary/json_summary.h"
#include "summary/page_model.h"

namespace {

std::string escaped_json(std::string_view text)
{
    return appended([&](TextBuffer& buffer) { return json_append_escaped(buffer, text); });
}

std::string string_array(const std::vector<std::string>& names)
{
    ReportEntry entry = failed_report("a.html");
    set_failed_checks(entry, names);
    return appended([&](TextBuffer& buffer) {
        return json_append_string_array(buffer, entry.failed_checks, entry.failed_check_count);
    });
}

} // namespace

TEST(JsonAppendEscaped, GivesEveryByteItsForm)
{
    for (int byte = 0x00; byte <= 0xff; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        std::string expected = text;
        if (byte == '\t') {
            expected = "\\t";
        } else if (byte == '\n') {
            expected = "\\n";
        } else if (byte == '\r') {
            expected = "\\r";
        } else if (byte == '"') {
            expected = "\\\"";
        } else if (byte == '\\') {
            expected = "\\\\";
        } else if (byte < 0x20) {
            expected =
                std::string("\\u00") + (byte < 0x10 ? '0' : '1') + "0123456789abcdef"[byte % 16];
        }
        EXPECT_EQ(escaped_json(text), expected) << "byte " << byte;
        EXPECT_EQ(escaped_json("<" + text + ">"), "<" + expected + ">") << "byte " << byte;
    }
}

TEST(JsonAppendStringArray, WritesNoneTwoAndSixteenNamesOnOneLine)
{
    EXPECT_EQ(string_array({}), "[]");
    EXPECT_EQ(string_array({"Check \"A\"", "B\\"}), R"(["Check \"A\"", "B\\"])");
    EXPECT_EQ(
        string_array(
            {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p"}),
        R"(["a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p"])");
}
