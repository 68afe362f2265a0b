// One output that takes the reports of all files of a run, such as standard output.
#ifndef ORSOLVA_JUDGING_REPORT_STREAM_H
#define ORSOLVA_JUDGING_REPORT_STREAM_H

#include <memory>
#include <string>
#include <string_view>

#include "host/judging/output_formats.h"
#include "host/output/whole_file.h"
#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

/// Reports in one format, one after the other: JSON of one input is the report, of several an array of
/// reports and failures; CSV has one heading.
class ReportStream {
 public:
  /// @param path  "-" is standard output
  /// @param many  whether there is more than one input
  /// @throws WriteError
  ReportStream(Format format, const std::string& path, bool many, const TextStyle& style);

  /// @throws WriteError
  void Add(const Report& report);
  /// @throws WriteError
  void AddFailure(const std::string& file, const std::string& error);
  /// A file appears only now. @throws WriteError
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

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_REPORT_STREAM_H
