#include <climits>
#include <cstdint>
#include <map>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/mman.h>

#include "core/memory.h"
#include "support/intercepted_calls.h"

namespace {

// What the kernel was asked for.
struct Advice
{
    std::uintptr_t start;
    std::size_t size; // bytes
    int advice;

    bool operator==(const Advice&) const = default;
};

constexpr std::uintptr_t LARGE_PAGE = std::uintptr_t{2} << 20U;

// An address that begins a large page. Nothing lies there: the hint alone is of interest.
constexpr std::uintptr_t ALIGNED = 1000 * LARGE_PAGE;

std::vector<Advice> advices_for(std::uintptr_t block, std::size_t size)
{
    std::vector<Advice> advices;
    const Interception take_advice(
        madvise_call, [&](const auto&, void* start, std::size_t bytes, int advice) {
            advices.push_back({reinterpret_cast<std::uintptr_t>(start), bytes, advice});
            return 0;
        });
    prefer_large_pages(reinterpret_cast<void*>(block), size);
    return advices;
}

TEST(BlockSize, IsTheProductAsLongAsItFits)
{
    EXPECT_EQ(block_size(3, 40), 120U);
    EXPECT_EQ(block_size(SIZE_MAX / 8, 8), SIZE_MAX - 7);
    EXPECT_EQ(block_size(SIZE_MAX, 1), SIZE_MAX);
}

TEST(BlockSize, OfMoreThanAddressesCanTellApartIsWhatIsNeverGiven)
{
    for (const std::uint64_t count : {UINT64_MAX, UINT64_MAX / 8 + 1, SIZE_MAX / 8 + UINT64_C(1)}) {
        EXPECT_EQ(block_size(count, 8), SIZE_MAX);
    }
}

TEST(KeepReleasedMemory, SetsNoLimitToWhatIsKept)
{
    std::map<int, int> malloc_options; // the settings cannot be read back
    const Interception take_option(mallopt_call, [&](const auto&, int option, int value) {
        malloc_options[option] = value;
        return 1;
    });
    keep_released_memory();
    const std::map<int, int> expected = {{M_MMAP_THRESHOLD, INT_MAX}, {M_TRIM_THRESHOLD, INT_MAX}};
    EXPECT_EQ(malloc_options, expected);
}

TEST(PreferLargePages, AsksForTheWholeLargePagesInsideTheBlock)
{
    const std::vector<Advice> expected = {{ALIGNED + LARGE_PAGE, 3 * LARGE_PAGE, MADV_HUGEPAGE}};
    EXPECT_EQ(advices_for(ALIGNED + 1, 4 * LARGE_PAGE), expected);
    EXPECT_EQ(advices_for(ALIGNED + LARGE_PAGE - 1, 4 * LARGE_PAGE - 1), expected);
}

TEST(PreferLargePages, OfAnAlignedBlockAsksForAllOfIt)
{
    for (const std::size_t pages : {1U, 2U, 1000U}) {
        const std::vector<Advice> expected = {{ALIGNED, pages * LARGE_PAGE, MADV_HUGEPAGE}};
        EXPECT_EQ(advices_for(ALIGNED, pages * LARGE_PAGE), expected);
    }
}

TEST(PreferLargePages, OfABlockThatHoldsNoWholeLargePageAsksForNothing)
{
    const std::vector<Advice> nothing;
    EXPECT_EQ(advices_for(ALIGNED, 0), nothing);
    EXPECT_EQ(advices_for(ALIGNED, LARGE_PAGE - 1), nothing);
    EXPECT_EQ(advices_for(ALIGNED + 1, LARGE_PAGE), nothing);
    EXPECT_EQ(advices_for(ALIGNED + 1, 2 * LARGE_PAGE - 2), nothing);
}

} // namespace
