#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "report/html_entities.h"
#include "report/html_escape.h"
#include "support/call_faults.h"

namespace {

using Escaper = bool (*)(TextBuffer&, std::string_view);

// What the escaper appends to what an otherwise empty buffer holds.
std::string escaped_by(Escaper escaper, std::string_view text, std::string_view held = "")
{
    TextBuffer buffer;
    text_buffer_init(buffer);
    EXPECT_TRUE(text_buffer_append(buffer, held));
    EXPECT_TRUE(escaper(buffer, text));
    const std::string content(buffer.data, buffer.length);
    text_buffer_free(buffer);
    return content;
}

std::string escaped(std::string_view text)
{
    return escaped_by(html_append_escaped, text);
}

std::string escaped_path(std::string_view text)
{
    return escaped_by(html_append_escaped_path, text);
}

std::string every_byte_but(std::string_view left_out)
{
    std::string bytes;
    for (int byte = 0x01; byte <= 0xff; ++byte) {
        if (left_out.find(static_cast<char>(byte)) == std::string_view::npos) {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
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

TEST(HtmlAppendEscaped, LeavesHighBytesTabsLineFeedsAndAllOthersUnchanged)
{
    const std::string text = every_byte_but("&<>\"'");
    EXPECT_EQ(escaped(text), text);
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
    EXPECT_EQ(escaped_path("//a/\\b/"), "/<wbr>/<wbr>a/<wbr>\\<wbr>b/<wbr>");
}

TEST(HtmlAppendEscapedPath, EscapesTheFiveCharactersAndNotItsOwnMarks)
{
    EXPECT_EQ(escaped_path("a&b/<c>\"'"), "a&amp;b/<wbr>&lt;c&gt;&quot;&#39;");
    EXPECT_EQ(escaped_path("/<wbr>"), "/<wbr>&lt;wbr&gt;");
}

TEST(HtmlAppendEscapedPath, LeavesEveryOtherByteUnchanged)
{
    const std::string text = every_byte_but("&<>\"'/\\");
    EXPECT_EQ(escaped_path(text), text);
}

TEST(HtmlEscape, AppendsBehindWhatTheBufferHolds)
{
    EXPECT_EQ(escaped_by(html_append_escaped, "a&b", "<td>"), "<td>a&amp;b");
    EXPECT_EQ(escaped_by(html_append_escaped_path, "/<", "<td>"), "<td>/<wbr>&lt;");
}

TEST(HtmlEscape, AnEmptyTextAppendsNothingAndAllocatesNothing)
{
    for (const Escaper escaper : {html_append_escaped, html_append_escaped_path}) {
        TextBuffer buffer;
        text_buffer_init(buffer);
        const AllocationFault fault(1);
        EXPECT_TRUE(escaper(buffer, ""));
        EXPECT_EQ(fault.failures(), 0U);
        EXPECT_EQ(buffer.data, nullptr);
    }
}

// Its first 256 bytes of room are nearly full, so that no reference fits any more.
TEST(HtmlEscape, GivesFalseAndAppendsNoPartOfAReferenceWhenMemoryRunsOut)
{
    for (const Escaper escaper : {html_append_escaped, html_append_escaped_path}) {
        for (const char* text : {"&", "<", ">", "\"", "'"}) {
            TextBuffer buffer;
            text_buffer_init(buffer);
            const std::string before(253, 'b');
            ASSERT_TRUE(text_buffer_append(buffer, before));
            const AllocationFault fault(1);
            EXPECT_FALSE(escaper(buffer, text));
            EXPECT_EQ(std::string_view(buffer.data, buffer.length), before);
            text_buffer_free(buffer);
        }
    }
}

TEST(HtmlEscape, DecodedAgainAnyTextComesBackUnchanged)
{
    const std::string text = "&amp;&lt;b&#39;" + every_byte_but("") + "&&quot;;&";
    const std::string escaped_text = escaped(text);
    std::string decoded(text.size() + 1, '?');
    const char* start = escaped_text.data();
    html_copy_decoded(decoded.data(), start, start + escaped_text.size(), text.size());
    EXPECT_EQ(decoded, text + '\0');
}
