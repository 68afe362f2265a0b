#include "host/judging/output_formats.h"

#include "host/report/csv_writer.h"
#include "host/report/json_writer.h"
#include "host/report/sum_writer.h"
#include "host/report/text_writer.h"

namespace orsolva_host {
namespace {

std::string TextFile(const Report& report, const TextStyle& style) { return WriteText(report, style); }
std::string JsonFile(const Report& report, const TextStyle&) { return WriteJson(report); }
std::string CsvFile(const Report& report, const TextStyle&) { return CsvHeading() + WriteCsvRows(report); }
std::string SumFile(const Report& report, const TextStyle&) { return WriteSum(report); }

}  // namespace

const OutputFormat kFormats[kFormatCount] = {
    // format, name, ending, in a folder by default, stream, writer
    {Format::kText, "text", ".txt", true, true, TextFile},
    {Format::kJson, "json", ".json", true, true, JsonFile},
    {Format::kCsv, "csv", ".csv", false, true, CsvFile},
    {Format::kSum, "sum", ".sum", true, true, SumFile},
    {Format::kHtml, "html", ".html", false, false, nullptr},
    {Format::kDetail, "detail", ".detail.csv", false, false, nullptr},
    {Format::kEvents, "events", ".events.csv", false, false, nullptr},
    {Format::kSeries, "series", ".series.csv", false, false, nullptr},
};

const OutputFormat& FormatRow(Format format) { return kFormats[static_cast<int>(format)]; }

const OutputFormat* FindFormat(std::string_view name) {
  for (const OutputFormat& row : kFormats) {
    if (name == row.name) return &row;
  }
  return nullptr;
}

std::string FormatNames(bool only_folder_defaults) {
  std::string names;
  for (const OutputFormat& row : kFormats) {
    if (only_folder_defaults && !row.folder_default) continue;
    names += (names.empty() ? "" : ",") + std::string(row.name);
  }
  return names;
}

}  // namespace orsolva_host
