#include "host/judging/output_plan.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>

#include "host/output/byte_sink.h"
#include "host/report/csv_writer.h"
#include "host/report/json_writer.h"
#include "host/report/sum_writer.h"
#include "host/report/text_writer.h"
#include "host/rinex/file_names.h"

namespace orsolva_host {
namespace {

bool DropEnding(std::string& name, const std::string& ending) {
  if (name.size() <= ending.size()) return false;
  for (std::size_t i = 0; i < ending.size(); ++i) {
    const char c = name[name.size() - ending.size() + i];
    if (std::tolower(static_cast<unsigned char>(c)) != ending[i]) return false;
  }
  name.resize(name.size() - ending.size());
  return true;
}

}  // namespace

const char* EndingOf(Format format) {
  switch (format) {
    case Format::kJson:
      return ".json";
    case Format::kCsv:
      return ".csv";
    case Format::kSum:
      return ".sum";
    default:
      return ".txt";
  }
}

std::string WriteAs(Format format, const Report& report, const TextStyle& style) {
  switch (format) {
    case Format::kJson:
      return WriteJson(report);
    case Format::kCsv:
      return CsvHeading() + WriteCsvRows(report);
    case Format::kSum:
      return WriteSum(report);
    default:
      return WriteText(report, style);
  }
}

ReportStream::ReportStream(Format format, const std::string& path, bool many, const TextStyle& style)
    : format_(format), many_(many), style_(style) {
  if (path != "-") {
    file_ = std::make_unique<WholeFile>(path);
    style_ = TextStyle();
  }
  if (format_ == Format::kCsv) Write(CsvHeading());
}

void ReportStream::Write(std::string_view text) {
  if (file_) {
    file_->Write(text);
  } else {
    WriteOut(text);
  }
}

void ReportStream::Separate() {
  if (many_ && format_ == Format::kJson) Write(any_ ? ",\n" : "[\n");
  if (many_ && format_ == Format::kText && any_) Write("\n");
  any_ = true;
}

void ReportStream::Add(const Report& report) {
  Separate();
  Write(format_ == Format::kCsv ? WriteCsvRows(report) : WriteAs(format_, report, style_));
}

void ReportStream::AddFailure(const std::string& file, const std::string& error) {
  if (format_ == Format::kSum) Write(WriteSumFailure(file, error));
  if (format_ == Format::kJson && many_) {
    Separate();
    Write(WriteJsonFailure(file, error));
  }
}

void ReportStream::Finish() {
  if (many_ && format_ == Format::kJson) Write(any_ ? "]\n" : "[]\n");
  if (file_) file_->Commit();
}

void WriteOut(std::string_view text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) {
    throw WriteError(std::string("the report could not be written to standard output: ") +
                     std::strerror(errno));
  }
}

std::vector<std::string> OutputStems(const std::vector<std::string>& inputs) {
  std::set<std::string> taken;
  if (inputs.size() > 1) taken = {"network", "index"};
  std::vector<std::string> stems;
  for (const std::string& input : inputs) {
    std::string name = std::filesystem::path(input).filename().string();
    if (input == "-" || name.empty()) name = "stdin";
    name.resize(WithoutCompressionSuffix(name).size());
    for (const char* ending : {".crx", ".rnx"}) {
      if (DropEnding(name, ending)) break;
    }
    std::string stem = name;
    for (int i = 2; !taken.insert(stem).second; ++i) stem = name + "-" + std::to_string(i);
    stems.push_back(stem);
  }
  return stems;
}

}  // namespace orsolva_host
