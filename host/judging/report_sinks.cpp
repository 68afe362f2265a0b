#include "host/judging/report_sinks.h"

#include <algorithm>
#include <utility>

#include "host/judging/detail_outputs.h"
#include "host/judging/table_outputs.h"
#include "host/output/byte_sink.h"
#include "host/output/whole_file.h"

namespace orsolva_host {
namespace {

/// The files of one input.
class InputFilesWriter : public FileHooks {
 public:
  /// @throws WriteError
  InputFilesWriter(const OutputSettings& settings, const OutputNames& names, std::size_t input)
      : settings_(settings),
        names_(names),
        input_(input),
        detail_(names.TablesOf(input, Format::kDetail), names.PagesOf(input), settings.detail, names.Index()),
        events_(names.TablesOf(input, Format::kEvents)),
        series_table_(names.TablesOf(input, Format::kSeries)) {
    if (!series_table_.Empty()) series_.Add(&series_table_);
    if (SeriesSink* const page = detail_.Series()) series_.Add(page);
  }

  DetailSink* Detail() override { return detail_.Sink(); }
  EventSink* Events() override { return events_.Empty() ? nullptr : &events_; }
  SeriesSink* Series() override { return series_.Empty() ? nullptr : &series_; }

  void Finish(const Report& report) override {
    detail_.Finish(report);
    events_.Finish();
    series_table_.Finish();
    for (const OutputFormat& row : kFormats) {
      if (row.write == nullptr || !settings_.InFolder(row.format)) continue;
      WriteWholeFile(names_.InFolder(input_, row.format), row.write(report, TextStyle()));
    }
  }

 private:
  const OutputSettings& settings_;
  const OutputNames& names_;
  std::size_t input_;
  DetailOutputs detail_;
  EventOutputs events_;
  SeriesOutputs series_table_;
  SeriesFanOut series_;
};

}  // namespace

ReportSinks::ReportSinks(const OutputSettings& settings, std::vector<std::string> inputs)
    : settings_(settings),
      inputs_(std::move(inputs)),
      names_(settings_, inputs_),
      network_(settings_, names_.Many(), names_.Index()) {
  if (!settings.folder.empty()) MakeFolder(settings.folder);
  const auto open = [this](Format format, const std::string& path) {
    streams_.push_back(std::make_unique<ReportStream>(format, path, names_.Many(), settings_.style));
  };
  for (const OutputFormat& row : kFormats) {
    const std::string& path = settings.File(row.format);
    if (row.stream && !path.empty()) open(row.format, path);
  }
  const bool table_on_output = settings.File(Format::kEvents) == "-" || settings.File(Format::kSeries) == "-";
  const bool nothing_asked_for = streams_.empty() && settings.folder.empty() && !table_on_output;
  if (nothing_asked_for && !settings.quiet) open(Format::kText, "-");
}

std::unique_ptr<FileHooks> ReportSinks::HooksOf(std::size_t input) const {
  return std::make_unique<InputFilesWriter>(settings_, names_, input);
}

void ReportSinks::Add(std::size_t input, const FileOutcome& outcome) {
  if (outcome.stopped) return;
  if (!outcome.report) {
    for (const auto& stream : streams_) stream->AddFailure(inputs_[input], outcome.error);
    network_.Add(FailedRow(inputs_[input], outcome.error));
    return;
  }
  for (const auto& stream : streams_) stream->Add(*outcome.report);
  NetworkRow row = RowOf(*outcome.report);
  row.error = outcome.error;
  const std::vector<std::string> pages = names_.PagesOf(input);
  if (!pages.empty()) row.page = pages.front();
  network_.Add(std::move(row));
}

void ReportSinks::Finish() {
  for (const auto& stream : streams_) stream->Finish();
  network_.Write();
  const bool text_only = std::all_of(streams_.begin(), streams_.end(), [](const auto& stream) {
    return !stream->IsStandardOutput() || stream->Kind() == Format::kText;
  });
  if (!names_.Many() || settings_.quiet || !text_only || settings_.network == "-") return;
  WriteOut((streams_.empty() ? "" : "\n") + network_.Text());
}

}  // namespace orsolva_host
