// What a run over files says on standard error: progress, and a line per finished file.
#ifndef ORSOLVA_CLI_CONSOLE_H
#define ORSOLVA_CLI_CONSOLE_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/judging/judging_pool.h"
#include "host/report/error_groups.h"
#include "host/terminal/status_line.h"

namespace orsolva_host {

class Console {
 public:
  /// @param files  as results are given, must outlive the console @param read  those that they are read from
  Console(const std::vector<std::string>& files, const std::vector<std::string>& read, bool quiet,
          bool verbose);

  bool ShowsProgress() const { return status_.Visible(); }
  void ShowProgress(const PoolProgress& progress);
  void LogResult(std::size_t file, const FileOutcome& outcome);
  /// Wipes the progress and prints the errors of many files, those of one cause together.
  void Finish();

 private:
  const std::vector<std::string>& files_;
  bool quiet_;
  bool verbose_;
  StatusLine status_;
  std::vector<FailedFile> failed_;
  std::uint64_t bytes_of_ = 0;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

}  // namespace orsolva_host

#endif  // ORSOLVA_CLI_CONSOLE_H
