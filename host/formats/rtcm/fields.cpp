#include "host/formats/rtcm/fields.h"

namespace orsolva_host::rtcm {

void WriteField(BitWriter& bits, std::int64_t value, int width, FieldKind kind) {
  if (kind == FieldKind::kSignMagnitude) return bits.SignMagnitude(value, width);
  bits.Signed(value, width);
}

void ReadFields(BitReader& bits, std::span<const FieldRow> rows, std::span<std::int64_t> values) {
  for (const FieldRow& row : rows) values[row.term] = ReadField(bits, row.bits, row.kind);
}

void WriteFields(BitWriter& bits, std::span<const FieldRow> rows, std::span<const std::int64_t> values) {
  for (const FieldRow& row : rows) WriteField(bits, values[row.term], row.bits, row.kind);
}

}  // namespace orsolva_host::rtcm
