// What the C library and the kernel are told about large blocks. Only hints: where
// they are unknown or refused, everything works the same, more slowly.

#pragma once

#include <cstddef>

// Makes the allocator keep released memory for the blocks to come, for the rest of
// the run. A block for each file, one after another, otherwise goes back to the
// kernel each time when it is large, which clears every page of the next one anew.
void keep_released_memory();

// Asks the kernel to give the size bytes at block, none of them used yet, in large
// pages: one page fault for what would be some hundred. The process may be
// charged for the rest of a large page that it never touches.
void prefer_large_pages(void* block, std::size_t size);
