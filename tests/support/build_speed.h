// Whether AddressSanitizer watches this build, which then takes several times the time
// and the memory.

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
