// The files of a run that are made from its detail.
#ifndef ORSOLVA_CLI_DETAIL_OUTPUTS_H
#define ORSOLVA_CLI_DETAIL_OUTPUTS_H

#include <memory>
#include <string>

#include "host/report/detail_csv.h"
#include "host/report/whole_file.h"

namespace orsolva_host {

class DetailOutputs {
 public:
  /// @param detail_file  of the table; empty for none
  /// @throws WriteError when a file cannot be opened
  explicit DetailOutputs(const std::string& detail_file);

  /// What the run shall report to; null when nothing is asked for.
  DetailSink* Sink() { return sinks_.Empty() ? nullptr : &sinks_; }

  /// Writes what is left; only then the file is there. @throws WriteError
  void Finish();

 private:
  std::unique_ptr<WholeFile> table_file_;
  std::unique_ptr<DetailCsv> table_;
  DetailFanOut sinks_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_DETAIL_OUTPUTS_H
