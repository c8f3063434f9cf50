#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cwchar>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "core/text_buffer.h"
#include "support/call_faults.h"

namespace {

// A buffer that is released at the end of the test, whatever happens in it.
struct Buffer : TextBuffer
{
    Buffer()
    {
        text_buffer_init(*this);
    }
    ~Buffer()
    {
        text_buffer_free(*this);
    }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    std::string text() const
    {
        return std::string(data, length);
    }
};

void expect_empty(const TextBuffer& buffer)
{
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(buffer.length, 0U);
    EXPECT_EQ(buffer.capacity, 0U);
}

void expect_state(const Buffer& buffer, std::string_view text, std::uint64_t capacity)
{
    ASSERT_NE(buffer.data, nullptr);
    EXPECT_EQ(buffer.text(), text);
    EXPECT_EQ(buffer.data[buffer.length], '\0');
    EXPECT_EQ(buffer.capacity, capacity);
}

// One way to append count bytes, count being at least 1.
struct Appender
{
    const char* name;
    std::function<bool(TextBuffer&, std::size_t)> append;
};

std::uint64_t number_of_digits(std::size_t count)
{
    std::uint64_t number = 1;
    for (std::size_t i = 1; i < count; ++i) {
        number *= 10;
    }
    return number;
}

const std::vector<Appender>& appenders()
{
    static const std::vector<Appender> all = {
        {"append",
         [](TextBuffer& buffer, std::size_t count) {
             return text_buffer_append(buffer, std::string(count, 't'));
         }},
        {"append_char",
         [](TextBuffer& buffer, std::size_t count) {
             bool appended = true;
             for (std::size_t i = 0; i < count; ++i) {
                 appended = text_buffer_append_char(buffer, 'c') && appended;
             }
             return appended;
         }},
        {"append_number", // at most 20 digits
         [](TextBuffer& buffer, std::size_t count) {
             return text_buffer_append_number(buffer, number_of_digits(count));
         }},
        {"appendf",
         [](TextBuffer& buffer, std::size_t count) {
             return text_buffer_appendf(buffer, "%s", std::string(count, 'f').c_str());
         }},
    };
    return all;
}

} // namespace

TEST(TextBuffer, FreshBufferIsNullWithLengthAndCapacityZero)
{
    char block = 'x';
    TextBuffer buffer = {&block, 7, 9};
    const std::uint64_t before = allocation_count();
    text_buffer_init(buffer);
    expect_empty(buffer);
    EXPECT_EQ(allocation_count(), before);
    EXPECT_EQ(block, 'x');
}

TEST(TextBuffer, AFreedBufferIsEmptyAndMayBeAppendedToAgain)
{
    Buffer buffer;
    text_buffer_free(buffer);
    expect_empty(buffer);
    ASSERT_TRUE(text_buffer_append(buffer, std::string(1000, 'x')));
    text_buffer_free(buffer);
    expect_empty(buffer);
    ASSERT_TRUE(text_buffer_append(buffer, "again"));
    expect_state(buffer, "again", 256);
}

TEST(TextBuffer, AppendingAnEmptyTextAllocatesTheFirstBlockAndNoOther)
{
    const std::string full(255, 'x');
    for (const auto append_empty :
         {+[](TextBuffer& buffer) { return text_buffer_append(buffer, ""); },
          +[](TextBuffer& buffer) { return text_buffer_append(buffer, std::string_view()); },
          +[](TextBuffer& buffer) { return text_buffer_appendf(buffer, "%s", ""); }}) {
        Buffer buffer;
        ASSERT_TRUE(append_empty(buffer));
        expect_state(buffer, "", 256);
        ASSERT_TRUE(text_buffer_append(buffer, full));
        ASSERT_TRUE(append_empty(buffer));
        expect_state(buffer, full, 256);
    }
}

TEST(TextBuffer, OneAppendToAFreshBufferTakesTheFirstSufficientPowerOfTwoFrom256)
{
    struct Row
    {
        std::size_t length;
        std::uint64_t capacity;
    };
    const Row rows[] = {{1, 256},     {255, 256},   {256, 512},         {511, 512},
                        {512, 1024},  {1000, 1024}, {1023, 1024},       {1024, 2048},
                        {4095, 4096}, {4096, 8192}, {1048575, 1048576}, {1048576, 2097152}};
    for (const Row& row : rows) {
        const std::string text(row.length, 'x');
        Buffer appended;
        const std::uint64_t before = allocation_count();
        ASSERT_TRUE(text_buffer_append(appended, text));
        expect_state(appended, text, row.capacity);
        EXPECT_EQ(allocation_count(), before + 1);
    }
}

TEST(TextBuffer, WithLength250And256BytesFiveMoreFitAndSixGrowTo512)
{
    for (const Appender& appender : appenders()) {
        SCOPED_TRACE(appender.name);
        Buffer fits;
        ASSERT_TRUE(text_buffer_append(fits, std::string(250, 'x')));
        ASSERT_EQ(fits.capacity, 256U);
        const std::uint64_t before = allocation_count();
        ASSERT_TRUE(appender.append(fits, 5));
        EXPECT_EQ(fits.capacity, 256U);
        EXPECT_EQ(fits.length, 255U);
        EXPECT_EQ(fits.data[255], '\0');
        EXPECT_EQ(allocation_count(), before);

        Buffer grows;
        ASSERT_TRUE(text_buffer_append(grows, std::string(250, 'x')));
        ASSERT_TRUE(appender.append(grows, 6));
        EXPECT_EQ(grows.capacity, 512U);
        EXPECT_EQ(grows.length, 256U);
        EXPECT_EQ(grows.data[256], '\0');
        EXPECT_EQ(grows.text().substr(0, 250), std::string(250, 'x'));
    }
}

TEST(TextBuffer, AppendTakesExactlyTheBytesOfTheView)
{
    Buffer buffer;
    ASSERT_TRUE(text_buffer_append(buffer, std::string_view("abcdef", 3)));
    ASSERT_TRUE(text_buffer_append(buffer, std::string_view("\0\xff\x80\r\n", 5)));
    expect_state(buffer, std::string_view("abc\0\xff\x80\r\n", 8), 256);
}

TEST(TextBuffer, AppendCharStoresTheLowByteOnly)
{
    Buffer buffer;
    for (const int c : {0x141, 0, 0xff, -1, 0x100, INT_MIN + 'B', INT_MAX}) {
        ASSERT_TRUE(text_buffer_append_char(buffer, c));
    }
    expect_state(buffer, std::string_view("A\0\xff\xff\0B\xff", 7), 256);
}

TEST(TextBuffer, AppendNumberWritesPlainDecimalDigits)
{
    struct Row
    {
        std::uint64_t number;
        const char* digits;
    };
    const Row rows[] = {{0, "0"},
                        {9, "9"},
                        {10, "10"},
                        {1000000007, "1000000007"},
                        {9223372036854775808U, "9223372036854775808"},
                        {UINT64_MAX, "18446744073709551615"}};
    for (const Row& row : rows) {
        Buffer buffer;
        ASSERT_TRUE(text_buffer_append_number(buffer, row.number));
        expect_state(buffer, row.digits, 256);
    }
}

TEST(TextBuffer, AppendfFormatsAsTheCLibraryDoes)
{
    Buffer buffer;
    ASSERT_TRUE(text_buffer_append(buffer, "<"));
    ASSERT_TRUE(text_buffer_appendf(buffer, "%d|%5u|%-4s|%.2s|%c|%%|\\u%04x|%.1f|%*d>", -5, 42U,
                                    "ab", "xyz", 'q', 0x1fU, 2.25, 3, 7));
    expect_state(buffer, "<-5|   42|ab  |xy|q|%|\\u001f|2.2|  7>", 256);
}

TEST(TextBuffer, AppendfKeepsANulThatTheFormatYields)
{
    Buffer buffer;
    ASSERT_TRUE(text_buffer_appendf(buffer, "a%cb", 0));
    expect_state(buffer, std::string_view("a\0b", 3), 256);
}

TEST(TextBuffer, AppendfOfAValueTheFormatterRejectsChangesNothing)
{
    const auto no_byte_in_the_c_locale = static_cast<wint_t>(0x20ac);
    Buffer fresh;
    EXPECT_FALSE(text_buffer_appendf(fresh, "abc%lc", no_byte_in_the_c_locale));
    expect_empty(fresh);
}

namespace {

// Fails to format a long number, the text of which is first measured and then written.
// What fails half way leaves no NUL behind what it wrote.
bool append_while_formatting_fails(Buffer& buffer, std::uint64_t call)
{
    const Interception fail(format_call, [&call](const auto& next, char* text, std::size_t size,
                                                 const char* format, va_list values) {
        const bool fails = --call == 0;
        if (fails && text != nullptr) {
            std::fill_n(text, size, '?');
        }
        return fails ? -1 : next(text, size, format, values);
    });
    return text_buffer_appendf(buffer, "%lld", 123456789012345678LL);
}

} // namespace

TEST(TextBuffer, AFormattingThatFailsKeepsTheTextAndTheBlockUnlessItHadToGrow)
{
    struct Row
    {
        std::size_t length; // of the text before
        std::uint64_t call; // that fails
        std::uint64_t capacity;
    };
    for (const Row& row : {Row{4, 1, 256}, Row{4, 2, 256}, Row{250, 1, 256}, Row{250, 2, 512}}) {
        Buffer buffer;
        const std::string text(row.length, 'x');
        ASSERT_TRUE(text_buffer_append(buffer, text));
        const char* const data = buffer.data;
        EXPECT_FALSE(append_while_formatting_fails(buffer, row.call));
        expect_state(buffer, text, row.capacity);
        EXPECT_TRUE(buffer.data == data || row.capacity > 256);
        ASSERT_TRUE(text_buffer_append(buffer, "!"));
        expect_state(buffer, text + "!", row.capacity);
    }
}

TEST(TextBuffer, AFailedFirstAllocationLeavesTheBufferEmpty)
{
    for (const Appender& appender : appenders()) {
        SCOPED_TRACE(appender.name);
        Buffer buffer;
        {
            const AllocationFault fault(1);
            EXPECT_FALSE(appender.append(buffer, 1));
            EXPECT_EQ(fault.failures(), 1U);
            expect_empty(buffer);
            EXPECT_FALSE(text_buffer_append(buffer, ""));
            expect_empty(buffer);
        }
        ASSERT_TRUE(appender.append(buffer, 1));
        EXPECT_EQ(buffer.length, 1U);
        EXPECT_EQ(buffer.capacity, 256U);
    }
}

TEST(TextBuffer, AFailedReallocationLeavesDataLengthCapacityAndTextUnchanged)
{
    for (const Appender& appender : appenders()) {
        SCOPED_TRACE(appender.name);
        Buffer buffer;
        std::string text(250, 'x');
        ASSERT_TRUE(text_buffer_append(buffer, text));
        ASSERT_TRUE(text_buffer_append(buffer, "12345"));
        text += "12345";
        const char* const data = buffer.data;
        {
            const AllocationFault fault(1);
            EXPECT_FALSE(appender.append(buffer, 1));
            EXPECT_EQ(fault.failures(), 1U);
        }
        EXPECT_EQ(buffer.data, data);
        expect_state(buffer, text, 256);
        ASSERT_TRUE(appender.append(buffer, 1));
        EXPECT_EQ(buffer.length, 256U);
        EXPECT_EQ(buffer.capacity, 512U);
        EXPECT_EQ(buffer.text().substr(0, 255), text);
    }
}
