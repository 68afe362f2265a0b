#include "host/rinex/decimal.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace orsolva_host {
namespace {

// Up to here powers of ten are exact doubles.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestExactPower = 22;
// Ten times this plus nine is still below 2^53, where every integer is a double.
constexpr std::uint64_t kMantissaRoom = 900719925474098ULL;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// A number as it is scanned: sign, digits as one integer, power of ten.
struct Scan {
  bool negative = false;
  bool exact = true;  ///< the mantissa holds every digit
  std::uint64_t mantissa = 0;
  int power = 0;
};

/// Scans sign, digits and point. @return where it stopped, or null without any digit
const char* ScanMantissa(const char* p, const char* end, Scan& scan) {
  if (p < end && (*p == '-' || *p == '+')) scan.negative = *p++ == '-';
  bool point = false;
  bool any = false;
  for (; p < end; ++p) {
    if (IsDigit(*p)) {
      any = true;
      if (scan.mantissa > kMantissaRoom) {
        scan.exact = false;
        continue;
      }
      scan.mantissa = scan.mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
      if (point) --scan.power;
    } else if (*p == '.' && !point) {
      point = true;
    } else {
      break;
    }
  }
  return any ? p : nullptr;
}

/// Scans the exponent that must fill the rest.
bool ScanExponent(const char* p, const char* end, Scan& scan) {
  if (p == end) return true;
  if (*p != 'e' && *p != 'E' && *p != 'd' && *p != 'D') return false;
  ++p;
  bool negative = false;
  if (p < end && (*p == '-' || *p == '+')) negative = *p++ == '-';
  if (p == end || end - p > 4) return false;
  int exponent = 0;
  for (; p < end; ++p) {
    if (!IsDigit(*p)) return false;
    exponent = exponent * 10 + (*p - '0');
  }
  scan.power += negative ? -exponent : exponent;
  return true;
}

/// The slow way, for more digits or powers than doubles hold exactly.
bool ParseLong(std::string_view text, double& value) {
  char buffer[64];
  if (text.size() > sizeof buffer) return false;
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  std::size_t length = 0;
  for (const char c : text) buffer[length++] = (c == 'd' || c == 'D') ? 'e' : c;
  double parsed = 0;
  const auto [stop, error] = std::from_chars(buffer, buffer + length, parsed);
  if (stop != buffer + length) return false;
  if (error == std::errc::result_out_of_range) {
    // Too small counts as zero; too large is no usable number.
    const std::string_view seen(buffer, length);
    if (seen.find("e-") == std::string_view::npos && seen.find("E-") == std::string_view::npos) return false;
    parsed = 0;
  } else if (error != std::errc()) {
    return false;
  }
  value = parsed;
  return true;
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

FieldState ParseDecimal(std::string_view field, double& value) {
  value = 0;
  const std::string_view text = Trimmed(field);
  if (text.empty()) return FieldState::kBlank;
  Scan scan;
  const char* const end = text.data() + text.size();
  const char* const stop = ScanMantissa(text.data(), end, scan);
  if (!stop || !ScanExponent(stop, end, scan)) return FieldState::kBad;
  if (scan.exact && scan.power >= -kLargestExactPower && scan.power <= kLargestExactPower) {
    // One rounding of two exact operands is the correctly rounded result.
    const double mantissa = static_cast<double>(scan.mantissa);
    const double size =
        scan.power < 0 ? mantissa / kPowersOfTen[-scan.power] : mantissa * kPowersOfTen[scan.power];
    value = scan.negative ? -size : size;
    return FieldState::kNumber;
  }
  return ParseLong(text, value) ? FieldState::kNumber : FieldState::kBad;
}

FieldState ParseInteger(std::string_view field, std::int64_t& value) {
  value = 0;
  const std::string_view text = Trimmed(field);
  if (text.empty()) return FieldState::kBlank;
  std::size_t i = 0;
  const bool negative = text[0] == '-';
  if (negative || text[0] == '+') ++i;
  if (i == text.size() || text.size() - i > 18) return FieldState::kBad;
  std::int64_t number = 0;
  for (; i < text.size(); ++i) {
    if (!IsDigit(text[i])) return FieldState::kBad;
    number = number * 10 + (text[i] - '0');
  }
  value = negative ? -number : number;
  return FieldState::kNumber;
}

}  // namespace orsolva_host
