// One row per file: the table at the end of a run over many files.
#ifndef ORSOLVA_REPORT_NETWORK_H
#define ORSOLVA_REPORT_NETWORK_H

#include <optional>
#include <string>
#include <vector>

#include "host/report/figure_tables.h"
#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

struct NetworkRow {
  std::string file;
  std::string page;  ///< file of its HTML report; empty without one
  std::string marker;
  bool judged = true;
  std::string error;    ///< why the file could not be judged, or not to its end; empty when it was
  std::string grade;    ///< by the profile; empty without one
  Verdict verdict;      ///< empty without a report
  std::string notable;  ///< of the verdict, what makes nothing worse
  std::optional<Time_gbt> first_epoch;
  std::optional<Time_gbt> last_epoch;
  double duration_h = 0;
  double interval_s = 0;
  Count epochs = 0;
  std::optional<std::int64_t> lost_epochs;
  Headline headline;
  LibraryHeadline library_headline;
  long notices = 0;
};

NetworkRow RowOf(const Report& report);
NetworkRow FailedRow(const std::string& file, const std::string& error);

/// "ERROR", the grade by the profile, or without one that of the verdict.
std::string StateOf(const NetworkRow& row);
/// The error in one line, without the file's name, which has a column of its own.
std::string ErrorOf(const NetworkRow& row);

/// Worst first: files that could not be judged, then by grade, then by completeness from the lowest; equal
/// rows by name.
void SortWorstFirst(std::vector<NetworkRow>& rows);

/// The files of a run in a few figures.
struct NetworkSummary {
  Count files = 0;
  Count errors = 0;  ///< files that could not be judged, or not to their end
  Count failed = 0;  ///< graded "fail" or "poor", or not judged
  Count fair = 0;
  Count good = 0;
  std::optional<double> median_completeness;  ///< of the files that have one; the mean of the middle two
  std::optional<double> least_completeness;
  std::optional<Time_gbt> first_epoch;  ///< of all files
  double duration_h = 0;                ///< of all files together
};
NetworkSummary SummaryOf(const std::vector<NetworkRow>& rows);

std::string NetworkText(const std::vector<NetworkRow>& rows, const TextStyle& style);
std::string NetworkCsv(const std::vector<NetworkRow>& rows, const FigureTables& tables = AllFigures());

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_NETWORK_H
