#include <array>
#include <string>

#include <gtest/gtest.h>

#include "core/bounded_text.h"

namespace {

// An array of eight bytes, so of seven and the NUL, between bytes to be left alone.
class BoundedTextTest : public ::testing::Test
{
protected:
    std::string bytes = std::string(10, '#');
    BoundedText text = {bytes.data() + 1, 8, 0};
};

TEST_F(BoundedTextTest, GrowsAtItsEndAndKeepsItsNul)
{
    EXPECT_TRUE(bounded_text_append(text, "ab"));
    EXPECT_EQ(bytes, std::string("#ab\0######", 10));
    EXPECT_TRUE(bounded_text_append(text, "cde"));
    EXPECT_EQ(bytes, std::string("#abcde\0###", 10));
    EXPECT_EQ(text.length, 5U);
}

TEST_F(BoundedTextTest, TakesWhatLeavesRoomForTheNulAndNoMore)
{
    EXPECT_TRUE(bounded_text_append(text, "abcd"));
    EXPECT_FALSE(bounded_text_append(text, "efgh"));
    EXPECT_EQ(bytes, std::string("#abcd\0####", 10));
    EXPECT_EQ(text.length, 4U);
    EXPECT_TRUE(bounded_text_append(text, "efg"));
    EXPECT_EQ(bytes, std::string("#abcdefg\0#", 10));
    EXPECT_TRUE(bounded_text_append(text, ""));
    EXPECT_FALSE(bounded_text_append(text, "h"));
    EXPECT_EQ(bytes, std::string("#abcdefg\0#", 10));
}

TEST_F(BoundedTextTest, AnEmptyTextPutsTheNulThere)
{
    EXPECT_TRUE(bounded_text_append(text, {}));
    EXPECT_EQ(bytes, std::string("#\0########", 10));
    EXPECT_EQ(text.length, 0U);
}

TEST_F(BoundedTextTest, GoesOnFromAnEarlierLength)
{
    EXPECT_TRUE(bounded_text_append(text, "abcd"));
    text.length = 1;
    EXPECT_TRUE(bounded_text_append(text, "x"));
    EXPECT_STREQ(text.data, "ax");
}

TEST_F(BoundedTextTest, AnArrayOfNoBytesTakesNothing)
{
    text.capacity = 0;
    EXPECT_FALSE(bounded_text_append(text, ""));
    EXPECT_FALSE(bounded_text_append(text, "a"));
    EXPECT_EQ(bytes, "##########");
}

} // namespace
