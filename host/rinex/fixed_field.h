// The fields of observation values (F14.3), read eight characters at a time.
#ifndef ORSOLVA_RINEX_FIXED_FIELD_H
#define ORSOLVA_RINEX_FIXED_FIELD_H

#include <bit>
#include <cstdint>
#include <cstring>

namespace orsolva_host {

constexpr std::size_t kValueWidth = 14;
constexpr std::size_t kCellWidth = 16;

namespace fixed_field {

inline std::uint64_t EightCharacters(const char* p) {
  std::uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

constexpr std::uint64_t kEach = 0x0101010101010101ULL;
constexpr std::uint64_t kEightBlanks = 0x20 * kEach;

/// Whether every character is a digit '0' to '9'.
inline bool AllDigits(std::uint64_t word) {
  constexpr std::uint64_t kHighHalves = 0xF0 * kEach;
  const std::uint64_t above_nine = word + 0x06 * kEach;  // carries into the high half from ':' on
  return (word & kHighHalves) == 0x30 * kEach && (above_nine & kHighHalves) == 0x30 * kEach;
}

/// The number written by eight digits, the first character in the lowest byte: pairs, fours, then all eight.
inline std::uint64_t EightDigits(std::uint64_t word) {
  word = (word & 0x0F * kEach) * (10 * 256 + 1) >> 8;
  word = (word & 0x00FF00FF00FF00FFULL) * (100 * 65536 + 1) >> 16;
  return (word & 0x0000FFFF0000FFFFULL) * (10000 * 4294967296ULL + 1) >> 32;
}

inline bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

}  // namespace fixed_field

/// Whether the 14 characters are all blank.
inline bool IsBlankValue(const char* p) {
  using namespace fixed_field;
  return EightCharacters(p) == kEightBlanks && EightCharacters(p + 6) == kEightBlanks;
}

/// Reads 14 characters: blanks, an optional minus, digits up to column 10, a point and three digits. The
/// result is the double nearest to the decimal. @return false when the field has another form
inline bool ParseValueFast(const char* p, double& value) {
  using namespace fixed_field;
  static_assert(std::endian::native == std::endian::little, "the characters are taken in this order");
  if (p[10] != '.' || !IsDigit(p[8]) || !IsDigit(p[9]) || !IsDigit(p[11]) || !IsDigit(p[12]) ||
      !IsDigit(p[13])) {
    return false;
  }
  std::uint64_t word = EightCharacters(p);
  // Blanks may only lead. The lowest nonblank byte ends them.
  const std::uint64_t others = word ^ kEightBlanks;
  const int blanks = others == 0 ? 8 : std::countr_zero(others) / 8;
  bool negative = false;
  if (blanks > 0) {
    const std::uint64_t lead = blanks == 8 ? ~0ULL : (1ULL << (8 * blanks)) - 1;
    word = (word & ~lead) | ((0x30 * kEach) & lead);
  }
  if (blanks < 8 && p[blanks] == '-') {
    negative = true;
    const std::uint64_t byte = 0xFFULL << (8 * blanks);
    word = (word & ~byte) | ((0x30 * kEach) & byte);
  }
  if (!AllDigits(word)) return false;
  const auto digit = [p](int i) { return static_cast<std::uint64_t>(p[i] - '0'); };
  const std::uint64_t rest = ((digit(8) * 10 + digit(9)) * 10 + digit(11)) * 100 + digit(12) * 10 + digit(13);
  // Thirteen digits are exact in a double, and one division of exact numbers is rounded correctly.
  const double thousandths = static_cast<double>(EightDigits(word) * 100000 + rest);
  value = (negative ? -thousandths : thousandths) / 1000;
  return true;
}

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_FIXED_FIELD_H
