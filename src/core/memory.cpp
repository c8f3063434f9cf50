#include "core/memory.h"

#include <climits>
#include <cstdint>

#include <sys/mman.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

// The kernel's large page on the usual machines. A larger one there only means that
// the hint has no effect.
constexpr std::uintptr_t LARGE_PAGE_SIZE = std::uintptr_t{2} << 20U;

} // namespace

std::size_t block_size(std::uint64_t count, std::size_t element_size)
{
    std::size_t size = 0;
    return __builtin_mul_overflow(count, element_size, &size) ? SIZE_MAX : size;
}

void keep_released_memory()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, INT_MAX);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
#endif
}

void prefer_large_pages(void* block, std::size_t size)
{
#ifdef MADV_HUGEPAGE
    // Only whole large pages inside the block, so that its neighbours are not touched.
    const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t first = (start + LARGE_PAGE_SIZE - 1) / LARGE_PAGE_SIZE * LARGE_PAGE_SIZE;
    const std::uintptr_t end = (start + size) / LARGE_PAGE_SIZE * LARGE_PAGE_SIZE;
    if (first < end) {
        madvise(static_cast<char*>(block) + (first - start), end - first, MADV_HUGEPAGE);
    }
#else
    static_cast<void>(block);
    static_cast<void>(size);
#endif
}
