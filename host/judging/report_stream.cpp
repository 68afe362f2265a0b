#include "host/judging/report_stream.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host/output/byte_sink.h"
#include "host/report/csv_writer.h"
#include "host/report/json_writer.h"
#include "host/report/sum_writer.h"

namespace orsolva_host {

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
  Write(format_ == Format::kCsv ? WriteCsvRows(report) : FormatRow(format_).write(report, style_));
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
    if (errno == EPIPE) throw ClosedPipe();
    throw WriteError(std::string("the report could not be written to standard output: ") +
                     std::strerror(errno));
  }
}

}  // namespace orsolva_host
