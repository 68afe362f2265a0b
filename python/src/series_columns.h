// The figures over time of a run as a table with the columns of `orsolva qc --series`.
#ifndef ORSOLVA_PYTHON_SERIES_COLUMNS_H
#define ORSOLVA_PYTHON_SERIES_COLUMNS_H

#include <memory>
#include <vector>

#include "host/report/series_sink.h"
#include "python/src/columns.h"

namespace orsolva_python {

class SeriesColumns : public orsolva_host::SeriesSink {
 public:
  SeriesColumns();

  void Add(const orsolva_host::analysis::SeriesRow& row) override;
  /// After the run.
  std::shared_ptr<const Table> Result() const { return table_; }

 private:
  std::shared_ptr<Table> table_ = std::make_shared<Table>();
  Column& time_ = table_->Add("time", ColumnKind::kTime);
  Column& system_ = table_->Add("system", ColumnKind::kName);
  Column& satellite_ = table_->Add("satellite", ColumnKind::kName);
  Column& signal_ = table_->Add("signal", ColumnKind::kName);
  std::vector<Column*> numbers_;
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_SERIES_COLUMNS_H
