#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "core/append_all.h"
#include "support/call_faults.h"

namespace {

// A piece of a caller's own that writes down that it was asked for.
struct Watched
{
    bool succeeds;
    std::string& log;
    char name;
};

bool append_part(TextBuffer&, const Watched& piece)
{
    piece.log += piece.name;
    return piece.succeeds;
}

template <typename Part>
concept IsPiece =
    std::is_same_v<decltype(append_part(std::declval<TextBuffer&>(), std::declval<Part>())), bool>;

class AppendAll : public ::testing::Test
{
protected:
    AppendAll()
    {
        text_buffer_init(buffer);
    }

    ~AppendAll() override
    {
        text_buffer_free(buffer);
    }

    TextBuffer buffer;
};

TEST_F(AppendAll, AppendsTextsAndNumbersFromLeftToRight)
{
    const std::uint64_t largest = UINT64_MAX;
    const char field[8] = "field";
    const std::string_view view = "view";
    EXPECT_TRUE(append_all(buffer, "<", std::uint64_t{0}, "|", largest, "|", field, "|", view, ""));
    EXPECT_STREQ(buffer.data, "<0|18446744073709551615|field|view");
}

TEST_F(AppendAll, OfNothingIsTrueAndAllocatesNothing)
{
    EXPECT_TRUE(append_all(buffer));
    EXPECT_EQ(buffer.data, nullptr);
}

TEST_F(AppendAll, StopsAtTheFirstPieceThatCannotBeAppended)
{
    std::string log;
    EXPECT_FALSE(append_all(buffer, Watched{true, log, 'a'}, Watched{true, log, 'b'},
                            Watched{false, log, 'c'}, Watched{true, log, 'd'}));
    EXPECT_EQ(log, "abc");
}

TEST_F(AppendAll, KeepsThePiecesBeforeTheOneThatFindsNoMemory)
{
    const std::string long_text(1000, 'x');
    const AllocationFault second(2, AllocationFault::Length::Once);
    EXPECT_FALSE(append_all(buffer, "kept", long_text, "not tried"));
    EXPECT_STREQ(buffer.data, "kept");
}

TEST_F(AppendAll, FillsABoundedTextTheSameWay)
{
    std::array<char, 6> bytes;
    BoundedText path = {bytes.data(), bytes.size(), 0};
    EXPECT_FALSE(append_all(path, "ab", "/", "toolong", "c"));
    EXPECT_STREQ(path.data, "ab/");
    EXPECT_TRUE(append_all(path, "d", "e"));
    EXPECT_STREQ(path.data, "ab/de");
}

TEST_F(AppendAll, TakesNoCharacterForANumber)
{
    EXPECT_FALSE(IsPiece<char>);
    EXPECT_FALSE(IsPiece<bool>);
    EXPECT_FALSE(IsPiece<unsigned char>);
    EXPECT_TRUE(IsPiece<std::uint64_t>);
    EXPECT_TRUE(IsPiece<const char*>);
}

} // namespace
