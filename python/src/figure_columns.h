// Figures as columns of tables.
#ifndef ORSOLVA_PYTHON_FIGURE_COLUMNS_H
#define ORSOLVA_PYTHON_FIGURE_COLUMNS_H

#include <vector>

#include "host/report/figure_rows.h"
#include "python/src/columns.h"

namespace orsolva_python {

inline ColumnKind KindOf(orsolva_host::FigureKind kind) {
  if (kind == orsolva_host::FigureKind::kYesNo) return ColumnKind::kYesNo;
  return orsolva_host::IsCount(kind) ? ColumnKind::kWhole : ColumnKind::kReal;
}

/// A column for each row, one value of it for each owner.
template <typename Owner>
void AddFigureColumns(const std::vector<orsolva_host::FigureRow<Owner>>& rows,
                      const std::vector<const Owner*>& owners, Table& table) {
  for (const auto& row : rows) {
    const ColumnKind kind = KindOf(row.kind);
    Column& column = table.Add(row.key, kind);
    for (const Owner* owner : owners) {
      const std::optional<double> value = row.get(*owner);
      if (kind == ColumnKind::kWhole) column.AddWhole(value);
      if (kind == ColumnKind::kYesNo)
        column.AddYesNo(value ? std::optional<bool>(*value != 0) : std::nullopt);
      if (kind == ColumnKind::kReal) column.AddReal(value.value_or(std::nan("")));
    }
  }
}

template <typename Owner>
std::vector<const Owner*> Pointers(const std::vector<Owner>& list) {
  std::vector<const Owner*> pointers;
  for (const Owner& owner : list) pointers.push_back(&owner);
  return pointers;
}

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_FIGURE_COLUMNS_H
