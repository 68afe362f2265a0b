// A digest of bytes, for telling whether two runs gave the same bits.
#ifndef ORSOLVA_TESTS_SUPPORT_DIGEST_H
#define ORSOLVA_TESTS_SUPPORT_DIGEST_H

#include <cstddef>
#include <cstdint>

namespace orsolva_test {

inline constexpr std::uint64_t kEmptyDigest = 14695981039346656037ull;

/// FNV-1a, 64 bits; `digest` is that of the bytes before.
inline std::uint64_t Digest(const void* data, std::size_t size, std::uint64_t digest = kEmptyDigest) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  for (std::size_t i = 0; i < size; ++i) digest = (digest ^ bytes[i]) * 1099511628211ull;
  return digest;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_DIGEST_H
