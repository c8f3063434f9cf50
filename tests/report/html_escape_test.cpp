#include <cstring>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "report/document_generator.h"
#include "report/html_entities.h"
#include "report/html_escape.h"
#include "report/scraped_report.h"
#include "support/allocation_faults.h"

namespace {

using Escaper = bool (*)(TextBuffer&, std::string_view);

// A TextBuffer that is released when the test is done with it.
struct Buffer
{
    TextBuffer text;

    Buffer()
    {
        text_buffer_init(text);
    }
    ~Buffer()
    {
        text_buffer_free(text);
    }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    std::string content() const
    {
        return text.data == nullptr ? "" : std::string(text.data, text.length);
    }
};

std::string escaped_by(Escaper escaper, std::string_view text)
{
    Buffer buffer;
    EXPECT_TRUE(escaper(buffer.text, text));
    if (!text.empty()) {
        EXPECT_EQ(buffer.text.data[buffer.text.length], '\0');
    }
    return buffer.content();
}

std::string escaped(std::string_view text)
{
    return escaped_by(html_append_escaped, text);
}

std::string escaped_path(std::string_view text)
{
    return escaped_by(html_append_escaped_path, text);
}

std::uint64_t capacity_after(Escaper escaper, const std::string& text)
{
    Buffer buffer;
    EXPECT_TRUE(escaper(buffer.text, text));
    return buffer.text.capacity;
}

// What one byte becomes.
std::string expected_for(char byte, bool path)
{
    switch (byte) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return std::string(1, byte) + (path && (byte == '/' || byte == '\\') ? "<wbr>" : "");
    }
}

void expect_valid(const TextBuffer& buffer)
{
    if (buffer.data == nullptr) {
        EXPECT_EQ(buffer.length, 0U);
        EXPECT_EQ(buffer.capacity, 0U);
    } else {
        ASSERT_LE(buffer.length + 1, buffer.capacity);
        EXPECT_EQ(buffer.data[buffer.length], '\0');
    }
}

// Fails each growth that appending text takes in turn, and only that one, until
// none is left to fail. whole is the escaped text. Returns how many there were.
std::uint64_t count_survived_failures(Escaper escaper, const std::string& text,
                                      const std::string& whole)
{
    constexpr std::uint64_t ENOUGH = 20;
    for (std::uint64_t step = 1; step <= ENOUGH; ++step) {
        SCOPED_TRACE(step);
        Buffer buffer;
        const AllocationFault fault(step, AllocationFault::Length::Once);
        const bool appended = escaper(buffer.text, text);
        EXPECT_EQ(appended, fault.failures() == 0);
        expect_valid(buffer.text);
        EXPECT_EQ(buffer.content(), whole.substr(0, buffer.text.length));
        if (appended) {
            EXPECT_EQ(buffer.content(), whole);
            return step - 1;
        }
        EXPECT_LT(buffer.text.length, whole.size());
        text_buffer_free(buffer.text);
        EXPECT_TRUE(escaper(buffer.text, text));
        EXPECT_EQ(buffer.content(), whole);
    }
    ADD_FAILURE() << "never appended";
    return ENOUGH;
}

} // namespace

TEST(HtmlAppendEscaped, ReplacesTheFiveCharactersByTheirReferences)
{
    EXPECT_EQ(escaped("a<b>&c"), "a&lt;b&gt;&amp;c");
    EXPECT_EQ(escaped("\"'"), "&quot;&#39;");
}

TEST(HtmlAppendEscaped, EscapesTextThatIsEscapedAlreadyAgain)
{
    EXPECT_EQ(escaped("&lt;"), "&amp;lt;");
    EXPECT_EQ(escaped("&amp;#39;"), "&amp;amp;#39;");
}

TEST(HtmlAppendEscaped, LeavesBytesFrom0x80To0xffTabsAndLineFeedsUnchanged)
{
    std::string text = "\t\n\r";
    for (int byte = 0x80; byte <= 0xff; ++byte) {
        text += static_cast<char>(byte);
    }
    EXPECT_EQ(escaped(text), text);
    EXPECT_EQ(escaped("caf\xc3\xa9 \xe2\x82\xac"), "caf\xc3\xa9 \xe2\x82\xac");
}

TEST(HtmlAppendEscaped, MakesOfEveryByteWhatItShould)
{
    for (int byte = 0x01; byte <= 0xff; ++byte) {
        SCOPED_TRACE(byte);
        const char character = static_cast<char>(byte);
        EXPECT_EQ(escaped(std::string(1, character)), expected_for(character, false));
        EXPECT_EQ(escaped(std::string("x") + character + "y"),
                  "x" + expected_for(character, false) + "y");
    }
}

TEST(HtmlAppendEscaped, PutsNoBreakMarkAfterSeparators)
{
    EXPECT_EQ(escaped("runs/2024\\a.html"), "runs/2024\\a.html");
}

TEST(HtmlAppendEscaped, AnEmptyTextAppendsNothingAndAllocatesNothing)
{
    for (const Escaper escaper : {html_append_escaped, html_append_escaped_path}) {
        Buffer buffer;
        const std::uint64_t before = allocation_count();
        EXPECT_TRUE(escaper(buffer.text, ""));
        EXPECT_EQ(allocation_count(), before);
        EXPECT_EQ(buffer.text.data, nullptr);
        EXPECT_EQ(buffer.text.length, 0U);
        EXPECT_EQ(buffer.text.capacity, 0U);
    }
}

TEST(HtmlAppendEscaped, AnEmptyTextSucceedsAlsoWhereNothingCanBeAllocated)
{
    for (const Escaper escaper : {html_append_escaped, html_append_escaped_path}) {
        Buffer buffer;
        const AllocationFault fault(1);
        EXPECT_TRUE(escaper(buffer.text, ""));
        EXPECT_EQ(fault.failures(), 0U);
    }
}

TEST(HtmlAppendEscaped, AppendsBehindWhatTheBufferHolds)
{
    Buffer buffer;
    ASSERT_TRUE(text_buffer_append(buffer.text, "<td>"));
    ASSERT_TRUE(html_append_escaped(buffer.text, "a&b"));
    ASSERT_TRUE(html_append_escaped(buffer.text, ""));
    ASSERT_TRUE(html_append_escaped_path(buffer.text, "/<"));
    EXPECT_EQ(buffer.content(), "<td>a&amp;b/<wbr>&lt;");
}

TEST(HtmlAppendEscaped, ReadsNoFurtherThanTheTextGoes)
{
    const std::string text = "a<b>c";
    EXPECT_EQ(escaped(std::string_view(text).substr(0, 2)), "a&lt;");
}

TEST(HtmlAppendEscapedPath, MarksTheBreaksOfAPath)
{
    EXPECT_EQ(escaped_path("runs/2024/a.html"), "runs/<wbr>2024/<wbr>a.html");
    EXPECT_EQ(escaped_path("dir/"), "dir/<wbr>");
}

TEST(HtmlAppendEscapedPath, TreatsABackslashLikeASlash)
{
    EXPECT_EQ(escaped_path("runs\\2024\\a.html"), "runs\\<wbr>2024\\<wbr>a.html");
    EXPECT_EQ(escaped_path("\\"), "\\<wbr>");
}

TEST(HtmlAppendEscapedPath, MarksLeadingTrailingAndDoubledSeparators)
{
    EXPECT_EQ(escaped_path("//a/\\b/"), "/<wbr>/<wbr>a/<wbr>\\<wbr>b/<wbr>");
}

TEST(HtmlAppendEscapedPath, EscapesTheFiveCharactersAndNotItsOwnMarks)
{
    EXPECT_EQ(escaped_path("a&b/<c>"), "a&amp;b/<wbr>&lt;c&gt;");
    EXPECT_EQ(escaped_path("/<wbr>"), "/<wbr>&lt;wbr&gt;");
    EXPECT_EQ(escaped_path("\"'"), "&quot;&#39;");
}

TEST(HtmlAppendEscapedPath, MakesOfEveryByteWhatItShould)
{
    for (int byte = 0x01; byte <= 0xff; ++byte) {
        SCOPED_TRACE(byte);
        const char character = static_cast<char>(byte);
        EXPECT_EQ(escaped_path(std::string(1, character)), expected_for(character, true));
        EXPECT_EQ(escaped_path(std::string("x") + character + "y"),
                  "x" + expected_for(character, true) + "y");
    }
}

TEST(HtmlEscapeGrowth, OfPlainBytesIsByTheirNumber)
{
    for (const Escaper escaper : {html_append_escaped, html_append_escaped_path}) {
        EXPECT_EQ(capacity_after(escaper, "x"), 256U);
        EXPECT_EQ(capacity_after(escaper, std::string(255, 'x')), 256U);
        EXPECT_EQ(capacity_after(escaper, std::string(256, 'x')), 512U);
        EXPECT_EQ(capacity_after(escaper, std::string(511, 'x')), 512U);
        EXPECT_EQ(capacity_after(escaper, std::string(512, 'x')), 1024U);
        EXPECT_EQ(capacity_after(escaper, std::string(1000, 'x')), 1024U);
    }
}

TEST(HtmlEscapeGrowth, OfReferencesIsByTheLengthOfTheReference)
{
    for (const Escaper escaper : {html_append_escaped, html_append_escaped_path}) {
        EXPECT_EQ(capacity_after(escaper, std::string(251, 'x') + "<"), 256U);
        EXPECT_EQ(capacity_after(escaper, std::string(252, 'x') + "<"), 512U);
        EXPECT_EQ(capacity_after(escaper, std::string(250, 'x') + "&"), 256U);
        EXPECT_EQ(capacity_after(escaper, std::string(251, 'x') + "&"), 512U);
        EXPECT_EQ(capacity_after(escaper, std::string(249, 'x') + "\""), 256U);
        EXPECT_EQ(capacity_after(escaper, std::string(250, 'x') + "\""), 512U);
    }
}

TEST(HtmlEscapeGrowth, OfASeparatorWithItsMarkIsBySixBytes)
{
    EXPECT_EQ(capacity_after(html_append_escaped_path, std::string(249, 'x') + "/"), 256U);
    EXPECT_EQ(capacity_after(html_append_escaped_path, std::string(250, 'x') + "/"), 512U);
    EXPECT_EQ(capacity_after(html_append_escaped_path, std::string(250, 'x') + "\\"), 512U);
    EXPECT_EQ(capacity_after(html_append_escaped, std::string(250, 'x') + "/"), 256U);
}

TEST(HtmlEscapeFailure, OfAnyGrowthOverPlainBytesLeavesAValidBuffer)
{
    const std::string text(3000, 'x');
    EXPECT_GE(count_survived_failures(html_append_escaped, text, text), 1U);
    EXPECT_GE(count_survived_failures(html_append_escaped_path, text, text), 1U);
}

// Over 2048 bytes in small pieces take blocks of 256, 512, 1024, 2048 and 4096.
TEST(HtmlEscapeFailure, OfAnyGrowthOverReferencesLeavesAValidBuffer)
{
    const std::string text = repeated("a<&\"", 200);
    const std::string whole = repeated("a&lt;&amp;&quot;", 200);
    EXPECT_EQ(count_survived_failures(html_append_escaped, text, whole), 5U);
    EXPECT_EQ(count_survived_failures(html_append_escaped_path, text, whole), 5U);
}

TEST(HtmlEscapeFailure, OfAnyGrowthOverSeparatorsLeavesAValidBuffer)
{
    const std::string text = repeated("/ab\\", 250);
    const std::string whole = repeated("/<wbr>ab\\<wbr>", 250);
    EXPECT_EQ(count_survived_failures(html_append_escaped_path, text, whole), 5U);
}

TEST(HtmlEscapeFailure, KeepsWhatTheBufferHeldBefore)
{
    for (const char* last : {"x", "<", "&", "\"", "'", ">"}) {
        Buffer buffer;
        const std::string before = std::string(251, 'b') + "end.";
        ASSERT_TRUE(text_buffer_append(buffer.text, before));
        ASSERT_EQ(buffer.text.capacity, 256U);
        const AllocationFault fault(1);
        EXPECT_FALSE(html_append_escaped(buffer.text, last));
        EXPECT_EQ(buffer.content(), before);
        EXPECT_EQ(buffer.text.capacity, 256U);
        EXPECT_EQ(fault.failures(), 1U);
    }
}

TEST(HtmlEscapeFailure, AtTheBreakMarkIsAFailureOfTheWholeText)
{
    Buffer buffer;
    const std::string before(250, 'b');
    ASSERT_TRUE(text_buffer_append(buffer.text, before));
    const AllocationFault fault(1);
    EXPECT_FALSE(html_append_escaped_path(buffer.text, "/"));
    EXPECT_EQ(fault.failures(), 1U);
    expect_valid(buffer.text);
    EXPECT_EQ(buffer.content(), (before + "/<wbr>").substr(0, buffer.text.length));
    EXPECT_GE(buffer.text.length, before.size());
}

TEST(HtmlEscape, DecodedAgainAnyTextComesBackUnchanged)
{
    constexpr std::string_view telling = "&<>\"';#aglmpqtou39";
    Random random(1);
    for (int number = 0; number < 20000; ++number) {
        std::string text;
        for (std::uint64_t length = random_below(random, 60); length > 0; --length) {
            const bool tells = random_below(random, 3) != 0;
            const std::uint64_t choice = random_below(random, tells ? telling.size() : 255);
            text +=
                tells ? telling[static_cast<std::size_t>(choice)] : static_cast<char>(choice + 1);
        }
        const std::string escaped_text = escaped(text);
        std::string decoded(text.size() + 1, '?');
        html_copy_decoded(decoded.data(), escaped_text.data(),
                          escaped_text.data() + escaped_text.size(), text.size());
        ASSERT_EQ(decoded.substr(0, text.size()), text) << printable(text);
        ASSERT_EQ(decoded[text.size()], '\0');
    }
}
