#pragma once

namespace bmr::test {

/// True under the address sanitizer, which keeps freed memory, maps more than can be searched, and locks no
/// pages.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif
#else
inline constexpr bool kSanitized = false;
#endif

}  // namespace bmr::test
