// How far exhaustive tests go in this build. An unoptimised or instrumented one is
// several times slower, so that such a test takes the smaller of two bounds in it;
// the machine's mood never decides.

#pragma once

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool IS_SANITIZED = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool IS_SANITIZED = true;
#else
inline constexpr bool IS_SANITIZED = false;
#endif
#else
inline constexpr bool IS_SANITIZED = false;
#endif

#if defined(__OPTIMIZE__)
inline constexpr bool IS_FAST_BUILD = !IS_SANITIZED;
#else
inline constexpr bool IS_FAST_BUILD = false;
#endif
