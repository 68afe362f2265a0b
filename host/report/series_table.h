// Figures over time as a table: CSV, or one JSON object per line. docs/user/series.md describes the columns.
#ifndef ORSOLVA_REPORT_SERIES_TABLE_H
#define ORSOLVA_REPORT_SERIES_TABLE_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/report/series_sink.h"
#include "host/report/table_form.h"

namespace orsolva_host {

/// What a row is about; texts are empty where it is about more.
struct SeriesNames {
  std::string system, satellite, signal;
};
SeriesNames NamesOf(const analysis::SeriesRow& row);

/// A column of numbers.
struct SeriesNumber {
  const char* name;
  int digits;                                 ///< decimals in CSV and JSON; 0: whole numbers
  double (*get)(const analysis::SeriesRow&);  ///< NaN where absent
};
const std::vector<SeriesNumber>& SeriesNumbers();

/// The first line of the table as CSV, with its line feed.
std::string SeriesCsvHeading();

/// One row as a line. Absent values are empty in CSV and null in JSON.
std::string SeriesLine(const analysis::SeriesRow& row, TableForm form);

class SeriesTable : public SeriesSink {
 public:
  /// @param write  takes pieces of the table in order
  SeriesTable(TableForm form, std::function<void(std::string_view)> write);

  void Add(const analysis::SeriesRow& row) override { write_(SeriesLine(row, form_)); }

 private:
  TableForm form_;
  std::function<void(std::string_view)> write_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_SERIES_TABLE_H
