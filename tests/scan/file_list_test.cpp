#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

#include "scan/file_list.h"
#include "support/allocation_faults.h"

namespace {

// A list that is released at the end of the test, whatever happens in it.
struct List : FileList
{
    List()
    {
        file_list_init(*this);
    }
    ~List()
    {
        file_list_free(*this);
    }
    List(const List&) = delete;
    List& operator=(const List&) = delete;
};

std::string numbered_path(std::uint64_t number)
{
    return "folder/report" + std::to_string(number) + ".html";
}

// Appends numbered paths until the list holds count.
void fill(FileList& list, std::uint64_t count)
{
    while (list.count < count) {
        ASSERT_TRUE(file_list_append(list, numbered_path(list.count)));
    }
}

void expect_numbered(const FileList& list, std::uint64_t count, std::uint64_t capacity)
{
    ASSERT_EQ(list.count, count);
    EXPECT_EQ(list.capacity, capacity);
    for (std::uint64_t i = 0; i < count; ++i) {
        ASSERT_EQ(list.paths[i], numbered_path(i));
    }
}

void expect_empty(const FileList& list)
{
    EXPECT_EQ(list.paths, nullptr);
    EXPECT_EQ(list.count, 0U);
    EXPECT_EQ(list.capacity, 0U);
}

} // namespace

TEST(FileList, InitMakesItEmptyAndAllocatesNothing)
{
    char* slot = nullptr;
    FileList list = {&slot, 3, 4};
    const std::uint64_t before = allocation_count();
    file_list_init(list);
    expect_empty(list);
    EXPECT_EQ(allocation_count(), before);
}

TEST(FileList, FreeLeavesItEmptyAndIsHarmlessOnAnEmptyList)
{
    FileList list;
    file_list_init(list);
    file_list_free(list);
    expect_empty(list);
    fill(list, 100);
    file_list_free(list);
    expect_empty(list);
    file_list_free(list);
    expect_empty(list);
}

TEST(FileList, AFreedListMayBeFilledAgain)
{
    List list;
    fill(list, 65);
    file_list_free(list);
    fill(list, 2);
    expect_numbered(list, 2, 64);
}

TEST(FileList, StartsWith64SlotsAndDoublesOnlyWhenFull)
{
    struct Row
    {
        std::uint64_t count;
        std::uint64_t capacity;
    };
    const Row rows[] = {{1, 64},    {2, 64},     {63, 64},     {64, 64},    {65, 128},
                        {127, 128}, {128, 128},  {129, 256},   {256, 256},  {257, 512},
                        {512, 512}, {513, 1024}, {1024, 1024}, {1025, 2048}};
    List list;
    for (const Row& row : rows) {
        fill(list, row.count);
        expect_numbered(list, row.count, row.capacity);
    }
}

// Blocks of 24 bytes are the largest of their class: one byte more would show.
TEST(FileList, ACopyTakesThePathsBytesAndItsNul)
{
    List list;
    ASSERT_TRUE(file_list_append(list, std::string(23, 'p')));
    void* const block = std::malloc(24);
    EXPECT_EQ(malloc_usable_size(list.paths[0]), malloc_usable_size(block));
    std::free(block);
}

TEST(FileList, AllocatesOneCopyAPathAndTheArrayOnlyWhenItGrows)
{
    List list;
    const std::uint64_t before = allocation_count();
    fill(list, 1);
    EXPECT_EQ(allocation_count(), before + 2);
    fill(list, 64);
    EXPECT_EQ(allocation_count(), before + 65);
    fill(list, 65);
    EXPECT_EQ(allocation_count(), before + 67);
}

TEST(FileList, StringsKeepTheirAddressWhileTheListGrows)
{
    List list;
    std::vector<const char*> addresses;
    for (std::uint64_t i = 0; i < 1000; ++i) {
        fill(list, i + 1);
        addresses.push_back(list.paths[i]);
    }
    for (std::uint64_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(list.paths[i], addresses[i]);
    }
}

TEST(FileList, OwnsCopiesOfTheTexts)
{
    List list;
    std::string path = "a/r.html";
    ASSERT_TRUE(file_list_append(list, path));
    ASSERT_TRUE(file_list_append(list, path));
    path.assign("changed!");
    EXPECT_STREQ(list.paths[0], "a/r.html");
    EXPECT_STREQ(list.paths[1], "a/r.html");
    EXPECT_NE(list.paths[0], list.paths[1]);
}

TEST(FileList, TakesExactlyTheBytesOfTheView)
{
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    const std::string long_path(4095, 'p');
    List list;
    ASSERT_TRUE(file_list_append(list, std::string_view("a/r.html").substr(2, 3)));
    ASSERT_TRUE(file_list_append(list, ""));
    ASSERT_TRUE(file_list_append(list, bytes));
    ASSERT_TRUE(file_list_append(list, long_path));
    EXPECT_STREQ(list.paths[0], "r.h");
    EXPECT_STREQ(list.paths[1], "");
    EXPECT_EQ(list.paths[2], bytes);
    EXPECT_EQ(list.paths[3], long_path);
}

TEST(FileList, WithoutMemoryForTheFirstArrayStaysEmpty)
{
    List list;
    {
        const AllocationFault fault(1, AllocationFault::Length::Once);
        EXPECT_FALSE(file_list_append(list, "lost.html"));
        EXPECT_EQ(fault.failures(), 1U);
    }
    expect_empty(list);
    fill(list, 1);
    expect_numbered(list, 1, 64);
}

TEST(FileList, WithoutMemoryForTheFirstCopyHoldsNothing)
{
    List list;
    {
        const AllocationFault fault(2);
        EXPECT_FALSE(file_list_append(list, "lost.html"));
        EXPECT_EQ(fault.failures(), 1U);
    }
    EXPECT_EQ(list.count, 0U);
    fill(list, 64);
    expect_numbered(list, 64, 64);
}

TEST(FileList, WithoutMemoryForALargerArrayKeepsTheOldOneAndItsContents)
{
    List list;
    fill(list, 64);
    char** const paths = list.paths;
    {
        const AllocationFault fault(1);
        EXPECT_FALSE(file_list_append(list, "lost.html"));
        EXPECT_FALSE(file_list_append(list, "lost.html"));
        EXPECT_EQ(fault.failures(), 2U);
    }
    EXPECT_EQ(list.paths, paths);
    expect_numbered(list, 64, 64);
    fill(list, 65);
    expect_numbered(list, 65, 128);
}

TEST(FileList, WithoutMemoryForACopyKeepsItsContents)
{
    List list;
    fill(list, 64);
    {
        const AllocationFault fault(2); // the array grows, the copy fails
        EXPECT_FALSE(file_list_append(list, "lost.html"));
    }
    EXPECT_EQ(list.count, 64U);
    fill(list, 70);
    {
        const AllocationFault fault(1);
        EXPECT_FALSE(file_list_append(list, "lost.html"));
    }
    expect_numbered(list, 70, 128);
    fill(list, 129);
    expect_numbered(list, 129, 256);
}
