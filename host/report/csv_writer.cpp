#include "host/report/csv_writer.h"

#include <fmt/format.h>

#include <iterator>

#include "host/report/figure_list.h"

namespace orsolva_host {

std::string CsvHeading() { return "satellite,signal,figure,unit,value,file\n"; }

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

std::string WriteCsvRows(const Report& report, const FigureTables& tables) {
  std::string text;
  const std::string file = CsvField(report.run.observation_file);
  fmt::format_to(std::back_inserter(text), ",,verdict,text,{},{}\n",
                 CsvField(report.verdict.grade + " - " + report.verdict.text), file);
  for (const FigureValue& f : ListFigures(report, tables)) {
    if (report.figures == FigureChoice::kAnalysis && f.source == FigureSource::kLibrary) continue;
    if (report.figures == FigureChoice::kLibrary && f.source == FigureSource::kAnalysis) continue;
    // The shortest text that reads back as the same number.
    const std::string value = f.value ? fmt::format("{}", *f.value) : std::string();
    fmt::format_to(std::back_inserter(text), "{},{},{},{},{},{}\n", f.subject, f.signal, f.key, f.unit, value,
                   file);
  }
  return text;
}

}  // namespace orsolva_host
