#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "scan/file_list.h"
#include "support/call_faults.h"

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

TEST(FileList, FreeLeavesItEmptyAndReadyToBeFilledAgain)
{
    List list;
    file_list_free(list);
    expect_empty(list);
    fill(list, 65);
    file_list_free(list);
    expect_empty(list);
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
    const Row rows[] = {{1, 64},    {63, 64},   {64, 64},   {65, 128},   {128, 128},
                        {129, 256}, {256, 256}, {257, 512}, {1025, 2048}};
    List list;
    for (const Row& row : rows) {
        fill(list, row.count);
        expect_numbered(list, row.count, row.capacity);
    }
}

TEST(FileList, AllocatesOneCopyAPathAndTheArrayOnlyWhenItGrows)
{
    List list;
    fill(list, 64);
    std::vector<std::size_t> sizes;
    const Interception note(malloc_call, [&](const auto& next, std::size_t size) {
        sizes.push_back(size);
        return next(size);
    });
    const std::uint64_t arrays = realloc_call.made;
    ASSERT_TRUE(file_list_append(list, std::string(23, 'p')));
    EXPECT_EQ(realloc_call.made, arrays + 1);
    ASSERT_TRUE(file_list_append(list, ""));
    EXPECT_EQ(realloc_call.made, arrays + 1);
    EXPECT_EQ(sizes, std::vector<std::size_t>({24, 1}));
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

TEST(FileList, OwnsCopiesOfExactlyTheBytesOfTheViews)
{
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    std::string changing = "a/r.html";
    List list;
    for (const std::string_view path :
         {std::string_view(changing), std::string_view(changing),
          std::string_view(changing).substr(2, 3), std::string_view(), std::string_view(bytes)}) {
        ASSERT_TRUE(file_list_append(list, path));
    }
    changing.assign("changed!");
    EXPECT_STREQ(list.paths[0], "a/r.html");
    EXPECT_STREQ(list.paths[1], "a/r.html");
    EXPECT_NE(list.paths[0], list.paths[1]);
    EXPECT_STREQ(list.paths[2], "r.h");
    EXPECT_STREQ(list.paths[3], "");
    EXPECT_EQ(list.paths[4], bytes);
}

TEST(FileList, WithoutMemoryKeepsWhatItHolds)
{
    struct Row
    {
        std::uint64_t count;      // paths before
        std::uint64_t allocation; // that fails, and all later ones
    };
    // The first array, its first copy, a larger array, a copy after that, any other copy.
    for (const Row& row : {Row{0, 1}, Row{0, 2}, Row{64, 1}, Row{64, 2}, Row{70, 1}}) {
        List list;
        fill(list, row.count);
        {
            const AllocationFault fault(row.allocation);
            EXPECT_FALSE(file_list_append(list, "lost.html"));
            EXPECT_FALSE(file_list_append(list, "lost.html"));
            EXPECT_EQ(fault.failures(), 2U);
        }
        EXPECT_EQ(list.count, row.count);
        fill(list, row.count + 1);
        expect_numbered(list, row.count + 1, row.count < 64 ? 64 : 128);
    }
}
