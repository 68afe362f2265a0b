// Whether a sanitizer is in this build, and what tests repeat less where one is.
//
// A sanitizer makes a test several times longer. It looks for memory errors, undefined behaviour and races,
// which the same code shows with fewer cases; what shares and counts of many cases prove is proved in the
// ordinary build.
#ifndef ORSOLVA_TESTS_SUPPORT_SANITIZED_H
#define ORSOLVA_TESTS_SUPPORT_SANITIZED_H

#include <cstddef>

namespace orsolva_test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool kSanitized = false;
#endif

/// Whether this build runs a case of a list: with a sanitizer every nth from the first on, without one all.
constexpr bool RunsHere(std::size_t index, std::size_t nth) { return !kSanitized || index % nth == 0; }

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_SANITIZED_H
