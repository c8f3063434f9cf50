// Memory that nobody may touch, where AddressSanitizer is there to see it; else nothing.

#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define FUZZ_HAS_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FUZZ_HAS_ASAN 1
#endif
#endif

#ifdef FUZZ_HAS_ASAN
#include <sanitizer/asan_interface.h>
#endif

inline void poison([[maybe_unused]] const void* start, [[maybe_unused]] std::size_t size)
{
#ifdef FUZZ_HAS_ASAN
    __asan_poison_memory_region(start, size);
#endif
}

inline void unpoison([[maybe_unused]] const void* start, [[maybe_unused]] std::size_t size)
{
#ifdef FUZZ_HAS_ASAN
    __asan_unpoison_memory_region(start, size);
#endif
}
