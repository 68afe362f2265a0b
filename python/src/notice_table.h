// Notices of a reader or of a report as a table.
#ifndef ORSOLVA_PYTHON_NOTICE_TABLE_H
#define ORSOLVA_PYTHON_NOTICE_TABLE_H

#include <cstdint>
#include <optional>

#include "python/src/columns.h"

namespace orsolva_python {

/// @param notices  those of `Diagnostics` or of a `Report`
template <typename Notices>
Table NoticeTableOf(const Notices& notices) {
  Table table;
  Column& files = table.Add("file", ColumnKind::kName);
  Column& lines = table.Add("line", ColumnKind::kWhole);
  Column& texts = table.Add("text", ColumnKind::kText);
  Column& counts = table.Add("count", ColumnKind::kWhole);
  Column& recovered = table.Add("recovered", ColumnKind::kYesNo);
  for (const auto& notice : notices) {
    files.AddText(notice.file);
    lines.AddWhole(notice.line > 0 ? std::optional<double>(notice.line) : std::nullopt);
    texts.AddText(notice.text);
    counts.AddWhole(std::int64_t{notice.count});
    recovered.AddYesNo(notice.recovered);
  }
  return table;
}

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_NOTICE_TABLE_H
