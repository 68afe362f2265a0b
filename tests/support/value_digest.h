// A digest of every member of plain data, whatever its type: numbers, texts, optionals, lists and aggregates
// of them, so that a member that is added takes part without being named here.
#ifndef ORSOLVA_TESTS_SUPPORT_VALUE_DIGEST_H
#define ORSOLVA_TESTS_SUPPORT_VALUE_DIGEST_H

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <ranges>
#include <type_traits>

#include "tests/support/digest.h"

namespace orsolva_test {

namespace value_digest {

/// Stands for a member of any type where an aggregate is initialised.
struct AnyMember {
  template <class T>
  operator T() const;  // NOLINT: implicit on purpose; never defined
};

/// The number of members: the most initialisers that an aggregate takes.
template <class T, class... Initialisers>
constexpr int MemberCount() {
  if constexpr (requires { T{Initialisers{}..., AnyMember{}}; }) {
    return MemberCount<T, Initialisers..., AnyMember>();
  } else {
    return sizeof...(Initialisers);
  }
}

template <class T>
inline constexpr bool kIsOptional = false;
template <class T>
inline constexpr bool kIsOptional<std::optional<T>> = true;

// One line per number of members: structured bindings take their number from the text of the program.
// clang-format off
template <class T, class Take>
void ForEachMember(const T& object, Take take) {
  constexpr int count = MemberCount<T>();
  const auto all = [&](const auto&... members) { (take(members), ...); };
  static_assert(count >= 1 && count <= 20, "one more line below");
  if constexpr (count == 1) { const auto& [a] = object; all(a); }
  if constexpr (count == 2) { const auto& [a, b] = object; all(a, b); }
  if constexpr (count == 3) { const auto& [a, b, c] = object; all(a, b, c); }
  if constexpr (count == 4) { const auto& [a, b, c, d] = object; all(a, b, c, d); }
  if constexpr (count == 5) { const auto& [a, b, c, d, e] = object; all(a, b, c, d, e); }
  if constexpr (count == 6) { const auto& [a, b, c, d, e, f] = object; all(a, b, c, d, e, f); }
  if constexpr (count == 7) { const auto& [a, b, c, d, e, f, g] = object; all(a, b, c, d, e, f, g); }
  if constexpr (count == 8) { const auto& [a, b, c, d, e, f, g, h] = object; all(a, b, c, d, e, f, g, h); }
  if constexpr (count == 9) { const auto& [a, b, c, d, e, f, g, h, i] = object; all(a, b, c, d, e, f, g, h, i); }
  if constexpr (count == 10) { const auto& [a, b, c, d, e, f, g, h, i, j] = object; all(a, b, c, d, e, f, g, h, i, j); }
  if constexpr (count == 11) { const auto& [a, b, c, d, e, f, g, h, i, j, k] = object; all(a, b, c, d, e, f, g, h, i, j, k); }
  if constexpr (count == 12) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l] = object; all(a, b, c, d, e, f, g, h, i, j, k, l); }
  if constexpr (count == 13) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m] = object; all(a, b, c, d, e, f, g, h, i, j, k, l, m); }
  if constexpr (count == 14) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n] = object; all(a, b, c, d, e, f, g, h, i, j, k, l, m, n); }
  if constexpr (count == 15) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o] = object; all(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o); }
  if constexpr (count == 16) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p] = object; all(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p); }
  if constexpr (count == 17) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q] = object; all(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q); }
  if constexpr (count == 18) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r] = object; all(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r); }
  if constexpr (count == 19) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s] = object; all(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s); }
  if constexpr (count == 20) { const auto& [a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t] = object; all(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t); }
}
// clang-format on

}  // namespace value_digest

/// All NaNs count as one: compilers choose their sign and payload.
template <class T>
std::uint64_t DigestOf(const T& value, std::uint64_t digest = kEmptyDigest) {
  if constexpr (std::is_floating_point_v<T>) {
    const T one = std::isnan(value) ? std::numeric_limits<T>::quiet_NaN() : value;
    return Digest(&one, sizeof one, digest);
  } else if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>) {
    return Digest(&value, sizeof value, digest);
  } else if constexpr (value_digest::kIsOptional<T>) {
    digest = DigestOf(value.has_value(), digest);
    return value ? DigestOf(*value, digest) : digest;
  } else if constexpr (std::ranges::sized_range<const T>) {
    digest = DigestOf(static_cast<std::uint64_t>(std::ranges::size(value)), digest);
    for (const auto& element : value) digest = DigestOf(element, digest);
    return digest;
  } else {
    value_digest::ForEachMember(value, [&](const auto& member) { digest = DigestOf(member, digest); });
    return digest;
  }
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_VALUE_DIGEST_H
