#include "host/cli/detail_outputs.h"

#include "host/report/html_writer.h"

namespace orsolva_host {

DetailOutputs::DetailOutputs(const std::string& detail_file, const std::string& html_file) {
  if (!detail_file.empty()) {
    table_file_ = std::make_unique<WholeFile>(detail_file);
    table_ = std::make_unique<DetailCsv>([this](std::string_view text) { table_file_->Write(text); });
    sinks_.Add(table_.get());
  }
  if (!html_file.empty()) {
    page_file_ = std::make_unique<WholeFile>(html_file);
    collector_ = std::make_unique<DetailCollector>();
    sinks_.Add(collector_.get());
  }
}

void DetailOutputs::Finish(const Report& report) {
  if (table_file_) table_file_->Commit();
  if (page_file_) {
    page_file_->Write(WriteHtml(report, *collector_));
    page_file_->Commit();
  }
}

}  // namespace orsolva_host
