// The files of a run that are made from its detail: the table and the page.
#ifndef ORSOLVA_CLI_DETAIL_OUTPUTS_H
#define ORSOLVA_CLI_DETAIL_OUTPUTS_H

#include <memory>
#include <string>

#include "host/report/detail_collector.h"
#include "host/report/detail_csv.h"
#include "host/report/report.h"
#include "host/output/whole_file.h"

namespace orsolva_host {

class DetailOutputs {
 public:
  /// @param detail_file, html_file  empty for none
  /// @throws WriteError when a file cannot be opened
  DetailOutputs(const std::string& detail_file, const std::string& html_file);

  /// What the run shall report to; null when nothing is asked for.
  DetailSink* Sink() { return sinks_.Empty() ? nullptr : &sinks_; }

  /// Writes what is left; only then the files are there. @throws WriteError
  void Finish(const Report& report);

 private:
  std::unique_ptr<WholeFile> table_file_;
  std::unique_ptr<DetailCsv> table_;
  std::unique_ptr<WholeFile> page_file_;
  std::unique_ptr<DetailCollector> collector_;
  DetailFanOut sinks_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_DETAIL_OUTPUTS_H
