// Figures as cells of the tables of the text report.
#ifndef ORSOLVA_REPORT_FIGURE_TEXT_H
#define ORSOLVA_REPORT_FIGURE_TEXT_H

#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

#include "host/report/figure_rows.h"

namespace orsolva_host {

inline std::string Fixed(const std::optional<double>& value, int decimals) {
  return value ? fmt::format("{:.{}f}", *value, decimals) : "-";
}

template <typename Number>
std::string Whole(const std::optional<Number>& count) {
  return count ? fmt::format("{}", *count) : "-";
}

/// A figure as people read it: ratios in percent.
inline std::string Shown(const std::optional<double>& value, FigureKind kind, int decimals) {
  return Fixed(kind == FigureKind::kRatio && value ? std::optional<double>(*value * 100) : value, decimals);
}

/// The cells of an owner's figures that have a column.
template <typename Owner>
void AddCells(const std::vector<FigureRow<Owner>>& rows, const Owner& owner,
              std::vector<std::string>& cells) {
  for (const FigureRow<Owner>& row : rows) {
    if (row.text.heading != nullptr) cells.push_back(Shown(row.get(owner), row.kind, row.text.decimals));
  }
}

/// The columns that AddCells fills.
template <typename Owner, typename Table>
void AddColumnsOf(const std::vector<FigureRow<Owner>>& rows, Table& table) {
  for (const FigureRow<Owner>& row : rows) {
    if (row.text.heading != nullptr) table.AddColumn(row.text.heading, row.text.width);
  }
}

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FIGURE_TEXT_H
