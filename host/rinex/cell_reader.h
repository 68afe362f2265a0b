// Cells of plain files: a value in 14 columns and two flags.
#ifndef ORSOLVA_RINEX_CELL_READER_H
#define ORSOLVA_RINEX_CELL_READER_H

#include <string_view>

#include "host/rinex/decimal.h"
#include "host/rinex/fixed_field.h"
#include "host/rinex/observation_body.h"

namespace orsolva_host {

/// Reads the cell that begins at a column; it is absent if the line ends before it.
/// @return false when the value is not a number
inline bool ReadCell(std::string_view line, std::size_t column, Cell& cell) {
  cell = Cell();
  if (column >= line.size()) return true;
  const char* const p = line.data() + column;
  const std::size_t width = line.size() - column;
  if (width > kValueWidth) cell.loss_of_lock = p[kValueWidth];
  if (width > kValueWidth + 1) cell.strength = p[kValueWidth + 1];
  if (width >= kValueWidth) {
    if (ParseValueFast(p, cell.value)) return cell.present = true;
    if (IsBlankValue(p)) return true;
  }
  const FieldState state = ParseDecimal(line.substr(column, kValueWidth), cell.value);
  cell.present = state == FieldState::kNumber;
  return state != FieldState::kBad;
}

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_CELL_READER_H
