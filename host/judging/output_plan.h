// Where the reports of a run go: streams and files, in which formats.
#ifndef ORSOLVA_JUDGING_OUTPUT_PLAN_H
#define ORSOLVA_JUDGING_OUTPUT_PLAN_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/output/whole_file.h"
#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

enum class Format { kText, kJson, kCsv, kSum };

/// ".txt", ".json", ".csv" or ".sum"
const char* EndingOf(Format format);

/// One report in a format, as a file of its own.
std::string WriteAs(Format format, const Report& report, const TextStyle& style);

/// One destination of all reports of a run, in one format: what joins several reports in a file is here.
///
/// JSON of one input is the report; of several, an array of reports and failures. CSV has one heading.
class ReportStream {
 public:
  /// @param path  "-" is standard output
  /// @throws WriteError
  ReportStream(Format format, const std::string& path, bool many, const TextStyle& style);

  /// @throws WriteError
  void Add(const Report& report);
  void AddFailure(const std::string& file, const std::string& error);
  /// Only then a file is there. @throws WriteError
  void Finish();

  bool IsStandardOutput() const { return file_ == nullptr; }
  Format Kind() const { return format_; }

 private:
  void Write(std::string_view text);
  void Separate();

  Format format_;
  bool many_;
  TextStyle style_;
  std::unique_ptr<WholeFile> file_;
  bool any_ = false;
};

/// Writes to standard output. @throws WriteError
void WriteOut(std::string_view text);

/// The names below a folder that the inputs' outputs get, without ending: the input's name less the suffix of
/// its compression and
/// ".rnx" or ".crx"; of equal names the later ones get "-2" and so on. Of several inputs none is called
/// "network" or "index", which are the names of the tables over all of them.
std::vector<std::string> OutputStems(const std::vector<std::string>& inputs);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_OUTPUT_PLAN_H
