// What a text buffer holds after the C library could not format a text into it.

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "core/text_buffer.h"
#include "faults/watched_run.h"

namespace {

// Appends a number of 18 digits, at the given one of the two formattings of which the C
// library fails: the first measures the text, the second writes it.
void expect_unformatted(TextBuffer& buffer, std::uint64_t failing)
{
    WatchedRun watched("", false, {{Call::Vsnprintf, Answer::Refuse, failing, false}}, false);
    watched.start();
    const bool appended = text_buffer_appendf(buffer, "%ld", 123456789012345678L);
    watched.stop();
    EXPECT_FALSE(appended);
    EXPECT_EQ(watched.failed().size(), 1U);
}

void expect_text(const TextBuffer& buffer, const std::string& text)
{
    ASSERT_EQ(buffer.length, text.size());
    EXPECT_EQ(std::string(buffer.data, buffer.length), text);
    EXPECT_EQ(buffer.data[buffer.length], '\0');
}

class FormattingFault : public testing::Test
{
protected:
    FormattingFault()
    {
        text_buffer_init(buffer);
    }
    ~FormattingFault() override
    {
        text_buffer_free(buffer);
    }

    TextBuffer buffer;
};

} // namespace

TEST_F(FormattingFault, ATextThatIsNotMeasuredChangesNothing)
{
    const std::string text(250, 'x');
    ASSERT_TRUE(text_buffer_append(buffer, text));
    const char* const data = buffer.data;
    expect_unformatted(buffer, 1);
    EXPECT_EQ(buffer.data, data);
    EXPECT_EQ(buffer.capacity, 256U);
    expect_text(buffer, text);
}

TEST_F(FormattingFault, ATextThatIsMeasuredButNotWrittenChangesNothingWhereItFits)
{
    ASSERT_TRUE(text_buffer_append(buffer, "kept"));
    const char* const data = buffer.data;
    expect_unformatted(buffer, 2);
    EXPECT_EQ(buffer.data, data);
    EXPECT_EQ(buffer.capacity, 256U);
    expect_text(buffer, "kept");
}

TEST_F(FormattingFault, ATextThatIsMeasuredButNotWrittenLeavesTheTextInALargerBlock)
{
    const std::string text(250, 'x');
    ASSERT_TRUE(text_buffer_append(buffer, text));
    expect_unformatted(buffer, 2);
    EXPECT_EQ(buffer.capacity, 512U);
    expect_text(buffer, text);
    ASSERT_TRUE(text_buffer_append(buffer, "!"));
    expect_text(buffer, text + "!");
}
