// How many bytes a block of elements has, and what the C library and the kernel are told
// about large blocks. The latter are only hints: where they are unknown or refused,
// everything works the same, more slowly.

#pragma once

#include <cstddef>
#include <cstdint>

// Bytes of count elements of element_size bytes each; SIZE_MAX, which malloc and realloc
// never give, when the machine's addresses cannot tell so many bytes apart.
[[nodiscard]] std::size_t block_size(std::uint64_t count, std::size_t element_size);

// Makes the allocator keep released memory for the blocks to come, for the rest of
// the run. A block for each file, one after another, otherwise goes back to the
// kernel each time when it is large, which clears every page of the next one anew.
void keep_released_memory();

// Asks the kernel to give the size bytes at block, none of them used yet, in large
// pages: one page fault for what would be some hundred. The process may be
// charged for the rest of a large page that it never touches.
void prefer_large_pages(void* block, std::size_t size);
