// Whether the tests run under AddressSanitizer (the CI's sanitizer build, ten times slower),
// where the volume tests take only a share of their random inputs.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define VELQUOR_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELQUOR_TEST_SANITIZED 1
#endif
#endif

namespace velquor::test {

#if defined(VELQUOR_TEST_SANITIZED)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

// `full` inputs in a plain build, `sanitized` under AddressSanitizer.
constexpr std::size_t Volume(std::size_t full, std::size_t sanitized) {
  return kSanitized ? sanitized : full;
}

}  // namespace velquor::test
