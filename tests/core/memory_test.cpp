#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/mman.h>

#include "core/memory.h"

namespace {

// What the allocator was told.
std::map<int, int> malloc_options;

constexpr std::size_t LARGE_PAGE = std::size_t{2} << 20U;

// A mapping of its own, whose flags are not those of a neighbour.
class Mapping
{
public:
    explicit Mapping(std::size_t size)
        : size_(size), block_(static_cast<char*>(mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                                      MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
    }

    ~Mapping()
    {
        munmap(block_, size_);
    }

    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    // Its first byte that begins a large page.
    char* aligned() const
    {
        const std::size_t rest = reinterpret_cast<std::uintptr_t>(block_) % LARGE_PAGE;
        return block_ + (LARGE_PAGE - rest);
    }

    // Bytes of it that the kernel was asked to give in large pages.
    std::size_t advised() const
    {
        std::ifstream regions("/proc/self/smaps");
        std::size_t bytes = 0;
        unsigned long start = 0;
        unsigned long end = 0;
        for (std::string line; std::getline(regions, line);) {
            unsigned long first = 0;
            unsigned long last = 0;
            if (std::sscanf(line.c_str(), "%lx-%lx ", &first, &last) == 2) {
                start = first;
                end = last;
            } else if (line.starts_with("VmFlags:") && line.find(" hg") != std::string::npos) {
                bytes += overlap(start, end);
            }
        }
        return bytes;
    }

private:
    std::size_t overlap(std::uintptr_t start, std::uintptr_t end) const
    {
        const std::uintptr_t own = reinterpret_cast<std::uintptr_t>(block_);
        const std::uintptr_t from = std::max(start, own);
        const std::uintptr_t to = std::min(end, own + size_);
        return from < to ? to - from : 0;
    }

    std::size_t size_;
    char* block_;
};

} // namespace

// Takes the C library's place, whose settings cannot be read back.
int mallopt(int option, int value) noexcept
{
    malloc_options[option] = value;
    return 1;
}

namespace {

TEST(KeepReleasedMemory, SetsNoLimitToWhatIsKept)
{
    keep_released_memory();
    const std::map<int, int> expected = {{M_MMAP_THRESHOLD, INT_MAX}, {M_TRIM_THRESHOLD, INT_MAX}};
    EXPECT_EQ(malloc_options, expected);
}

TEST(PreferLargePages, AsksForTheWholeLargePagesInsideTheBlock)
{
    const Mapping mapping(8 * LARGE_PAGE);
    char* const start = mapping.aligned();
    prefer_large_pages(start + 1, 4 * LARGE_PAGE);
    EXPECT_EQ(mapping.advised(), 3 * LARGE_PAGE);
}

TEST(PreferLargePages, OfAnAlignedBlockAsksForAllOfIt)
{
    const Mapping mapping(8 * LARGE_PAGE);
    prefer_large_pages(mapping.aligned(), 2 * LARGE_PAGE);
    EXPECT_EQ(mapping.advised(), 2 * LARGE_PAGE);
}

TEST(PreferLargePages, OfABlockThatHoldsNoWholeLargePageAsksForNothing)
{
    const Mapping mapping(8 * LARGE_PAGE);
    char* const start = mapping.aligned();
    prefer_large_pages(start, 0);
    prefer_large_pages(start, LARGE_PAGE - 1);
    prefer_large_pages(start + 1, LARGE_PAGE);
    prefer_large_pages(start + 1, 2 * LARGE_PAGE - 2);
    EXPECT_EQ(mapping.advised(), 0U);
}

} // namespace
