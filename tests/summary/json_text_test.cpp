// Strings and arrays of strings of the JSON summary.

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "summary/json_summary.h"
#include "summary/page_model.h"
#include "support/call_faults.h"

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

TEST(JsonAppendEscaped, WritesControlBytesWithFourLowerCaseHexadecimalDigits)
{
    EXPECT_EQ(escaped_json("\x01\x08\x0b\x0c\x0e\x0f\x10\x1a\x1b\x1f"),
              R"(\u0001\u0008\u000b\u000c\u000e\u000f\u0010\u001a\u001b\u001f)");
}

TEST(JsonAppendEscaped, AppendsBehindWhatTheBufferHolds)
{
    AppendedText result;
    ASSERT_TRUE(text_buffer_append(result.buffer, "before "));
    ASSERT_TRUE(json_append_escaped(result.buffer, "\"after\""));
    EXPECT_EQ(result.text(), "before \\\"after\\\"");
    EXPECT_EQ(result.buffer.data[result.buffer.length], '\0');
}

TEST(JsonAppendEscaped, NeverLeavesHalfAnEscapeBehindWhenMemoryRunsOut)
{
    for (const std::string_view text : {"\t", "\n", "\r", "\"", "\\", "\x01", "\x1f"}) {
        AppendedText result;
        ASSERT_TRUE(text_buffer_append(result.buffer, std::string(254, 'x')));
        const AllocationFault fault(1);
        EXPECT_FALSE(json_append_escaped(result.buffer, text));
        EXPECT_EQ(fault.failures(), 1U);
        EXPECT_EQ(result.buffer.length, 254U);
        EXPECT_EQ(result.buffer.data[254], '\0');
    }
}

TEST(JsonAppendStringArray, WritesNoNamesAsTwoBrackets)
{
    EXPECT_EQ(string_array({}), "[]");
}

TEST(JsonAppendStringArray, WritesOneNameInQuotes)
{
    EXPECT_EQ(string_array({"Check A"}), "[\"Check A\"]");
    EXPECT_EQ(string_array({""}), "[\"\"]");
}

TEST(JsonAppendStringArray, WritesTwoNamesWithACommaAndABlankBetweenThem)
{
    EXPECT_EQ(string_array({"Check \"A\"", "B\\"}), R"(["Check \"A\"", "B\\"])");
}

TEST(JsonAppendStringArray, WritesSixteenNamesOnOneLine)
{
    EXPECT_EQ(
        string_array(
            {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p"}),
        R"(["a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p"])");
}

TEST(JsonAppendStringArray, UsesTheCountUnchanged)
{
    const char slots[18][REPORT_TEXT_SIZE] = {"1",  "2",  "3",  "4",  "5",  "6",  "7",  "8",  "9",
                                              "10", "11", "12", "13", "14", "15", "16", "17", "18"};
    AppendedText result;
    ASSERT_TRUE(json_append_string_array(result.buffer, slots, 18));
    EXPECT_EQ(
        result.text(),
        R"(["1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "13", "14", "15", )"
        R"("16", "17", "18"])");
}
