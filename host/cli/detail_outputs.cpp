#include "host/cli/detail_outputs.h"

namespace orsolva_host {

DetailOutputs::DetailOutputs(const std::string& detail_file) {
  if (detail_file.empty()) return;
  table_file_ = std::make_unique<WholeFile>(detail_file);
  table_ = std::make_unique<DetailCsv>([this](std::string_view text) { table_file_->Write(text); });
  sinks_.Add(table_.get());
}

void DetailOutputs::Finish() {
  if (table_file_) table_file_->Commit();
}

}  // namespace orsolva_host
