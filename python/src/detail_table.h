// The detail of a run as a table with the columns of `orsolva qc --detail`.
#ifndef ORSOLVA_PYTHON_DETAIL_TABLE_H
#define ORSOLVA_PYTHON_DETAIL_TABLE_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/judging/epoch_selection.h"
#include "host/report/detail_csv.h"
#include "python/src/columns.h"

namespace orsolva_python {

/// Takes the rows of DetailCsv, so that values are the same to the digit, and keeps them as columns.
class DetailTable {
 public:
  /// @param selection  of the rows
  explicit DetailTable(const orsolva_host::DetailSelection& selection = {});

  /// The observer of the run.
  orsolva_host::DetailSink* Sink() { return &csv_; }
  /// After the run.
  std::shared_ptr<const Table> Result() const { return table_; }
  /// The rows so far; those that follow begin another table.
  std::shared_ptr<const Table> TakeRows();

 private:
  static std::shared_ptr<Table> EmptyTable();
  void Take(std::string_view piece);
  void TakeLine(std::string_view line);
  void AddCell(Column& column, std::string_view text) const;

  std::shared_ptr<Table> table_ = EmptyTable();
  orsolva_host::DetailCsv csv_;
  std::string rest_;  ///< of a line that the next piece ends
  bool heading_ = true;
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_DETAIL_TABLE_H
