// Cyclic redundancy checks without reflection and with the initial value 0.
//
// The remainder is linear: with a, then b, CRC(ab) = CRC(a) x^(8 |b|) + CRC(b) modulo the polynomial. So that
// of a part of a stream follows from those of everything before the part and before its end.
#ifndef ORSOLVA_FORMATS_STREAMS_CRC_H
#define ORSOLVA_FORMATS_STREAMS_CRC_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace orsolva_host {

/// @tparam kDegree  8 to 31 bits
/// @tparam kPolynomial  without its highest term
template <int kDegree, std::uint32_t kPolynomial>
class Crc {
 public:
  static constexpr std::size_t kMaxPartBytes = 65535;

  static std::uint32_t Of(std::string_view bytes) {
    std::uint32_t crc = 0;
    for (const char c : bytes) crc = Extended(crc, c);
    return crc;
  }

  /// Appends the CRC of everything so far after each byte. @pre sums is not empty
  static void Sum(std::string_view bytes, std::vector<std::uint32_t>& sums) {
    std::uint32_t crc = sums.back();
    for (const char c : bytes) sums.push_back(crc = Extended(crc, c));
  }

  /// @param before, until  CRC of everything before a part and before its end @pre at most kMaxPartBytes
  static std::uint32_t OfPart(std::uint32_t before, std::uint32_t until, std::size_t bytes) {
    return until ^ Product(Product(before, kShort[bytes % 256]), kLong[bytes / 256]);
  }

 private:
  using Table = std::array<std::uint32_t, 256>;

  static constexpr std::uint32_t kMask = (1U << kDegree) - 1;

  static constexpr std::uint32_t TimesX(std::uint32_t value) {
    return (value << 1 & kMask) ^ ((value >> (kDegree - 1) & 1) != 0 ? kPolynomial : 0);
  }
  static constexpr std::uint32_t TimesByte(std::uint32_t value) {
    for (int bit = 0; bit < 8; ++bit) value = TimesX(value);
    return value;
  }
  static constexpr std::uint32_t Product(std::uint32_t a, std::uint32_t b) {
    std::uint32_t product = 0;
    for (int bit = kDegree - 1; bit >= 0; --bit) product = TimesX(product) ^ ((b >> bit & 1) != 0 ? a : 0);
    return product;
  }
  static constexpr Table RemaindersOfBytes() {
    Table table = {};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) table[byte] = TimesByte(byte << (kDegree - 8));
    return table;
  }
  /// What 0, 1, 2 ... zero bytes, or as many times 256 of them, multiply the remainder before them with.
  static constexpr Table PowersOf(std::uint32_t factor) {
    Table table = {};
    table[0] = 1;
    for (std::size_t i = 1; i < table.size(); ++i) table[i] = Product(table[i - 1], factor);
    return table;
  }
  static std::uint32_t Extended(std::uint32_t crc, char c) {
    return (crc << 8 & kMask) ^ kBytes[(crc >> (kDegree - 8) ^ static_cast<unsigned char>(c)) & 0xFF];
  }

  static constexpr Table kBytes = RemaindersOfBytes();
  static constexpr Table kShort = PowersOf(TimesByte(1));
  static constexpr Table kLong = PowersOf(TimesByte(kShort[255]));
};

}  // namespace orsolva_host

#endif  // ORSOLVA_FORMATS_STREAMS_CRC_H
