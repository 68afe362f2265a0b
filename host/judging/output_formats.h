// The formats of reports: one table that flags, files, completions and documentation follow.
#ifndef ORSOLVA_JUDGING_OUTPUT_FORMATS_H
#define ORSOLVA_JUDGING_OUTPUT_FORMATS_H

#include <string>
#include <string_view>

#include "host/report/report.h"
#include "host/report/text_layout.h"

namespace orsolva_host {

enum class Format { kText, kJson, kCsv, kSum, kHtml, kDetail, kEvents, kSeries };

struct OutputFormat {
  Format format;
  const char* name;     ///< as a caller names it; the command has a flag --NAME
  const char* ending;   ///< of the files below a folder
  bool folder_default;  ///< written into a folder when no formats are named
  /// Whether reports of several files can follow each other in one output, such as standard output.
  bool stream;
  /// One report as a file of its own; null for formats that are made from the detail of a run.
  std::string (*write)(const Report& report, const TextStyle& style);
};

constexpr int kFormatCount = 8;
extern const OutputFormat kFormats[kFormatCount];  ///< in the order of Format

const OutputFormat& FormatRow(Format format);
/// nullptr when there is none of the name.
const OutputFormat* FindFormat(std::string_view name);
/// The names between commas; only the formats of a folder by default, or all.
std::string FormatNames(bool only_folder_defaults = false);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_OUTPUT_FORMATS_H
