// Messages of fixed layout as tables of fields, read and written by the same rows.
#ifndef ORSOLVA_FORMATS_RTCM_FIELDS_H
#define ORSOLVA_FORMATS_RTCM_FIELDS_H

#include <cstdint>
#include <span>

#include "host/formats/rtcm/bits.h"

namespace orsolva_host::rtcm {

enum class FieldKind : std::uint8_t { kUnsigned, kSigned, kSignMagnitude };

/// One field of a message: what it is, its number in the standard (DF001 and following), and how it is coded.
struct FieldRow {
  std::uint8_t term;  ///< place of the value in the list of its message
  std::uint16_t data_field;
  std::uint8_t bits;
  FieldKind kind;
  double scale;  ///< unit of the last bit
};

/// GLONASS channels are sent plus this (DF040, DF419).
constexpr int kChannelOffset = 7;

/// 2^exponent.
constexpr double Power2(int exponent) {
  double value = 1;
  for (; exponent > 0; --exponent) value *= 2;
  for (; exponent < 0; ++exponent) value /= 2;
  return value;
}

inline std::int64_t ReadField(BitReader& bits, int width, FieldKind kind) {
  if (kind == FieldKind::kSigned) return bits.Signed(width);
  if (kind == FieldKind::kSignMagnitude) return bits.SignMagnitude(width);
  return static_cast<std::int64_t>(bits.Unsigned(width));
}
void WriteField(BitWriter& bits, std::int64_t value, int width, FieldKind kind);

/// Reads every row into values[row.term].
void ReadFields(BitReader& bits, std::span<const FieldRow> rows, std::span<std::int64_t> values);
void WriteFields(BitWriter& bits, std::span<const FieldRow> rows, std::span<const std::int64_t> values);

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_FIELDS_H
