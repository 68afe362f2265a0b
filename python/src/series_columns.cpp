#include "python/src/series_columns.h"

#include <cmath>
#include <optional>

#include "host/report/series_table.h"

namespace orsolva_python {

using namespace orsolva_host;

SeriesColumns::SeriesColumns() {
  for (const SeriesNumber& number : SeriesNumbers()) {
    const bool whole = number.digits == 0;
    numbers_.push_back(&table_->Add(number.name, whole ? ColumnKind::kWhole : ColumnKind::kReal));
  }
}

void SeriesColumns::Add(const analysis::SeriesRow& row) {
  const SeriesNames names = NamesOf(row);
  time_.AddTime(row.time_ns);
  system_.AddTextOrNull(names.system);
  satellite_.AddTextOrNull(names.satellite);
  signal_.AddTextOrNull(names.signal);
  for (std::size_t i = 0; i < numbers_.size(); ++i) {
    const double value = SeriesNumbers()[i].get(row);
    if (numbers_[i]->Kind() == ColumnKind::kReal) {
      numbers_[i]->AddReal(value);
    } else {
      numbers_[i]->AddWhole(std::isnan(value) ? std::nullopt : std::optional<double>(value));
    }
  }
}

}  // namespace orsolva_python
