// The forms of tables that are written row by row.
#ifndef ORSOLVA_REPORT_TABLE_FORM_H
#define ORSOLVA_REPORT_TABLE_FORM_H

#include <string_view>

namespace orsolva_host {

enum class TableForm { kCsv, kJsonLines };

/// By the ending of a file: .jsonl, or .jsonl.gz, is JSON lines; any other is CSV.
inline TableForm TableFormOf(std::string_view path) {
  const auto ends_with = [&path](std::string_view ending) {
    return path.size() >= ending.size() && path.substr(path.size() - ending.size()) == ending;
  };
  if (ends_with(".gz")) path.remove_suffix(3);
  return ends_with(".jsonl") ? TableForm::kJsonLines : TableForm::kCsv;
}

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_TABLE_FORM_H
