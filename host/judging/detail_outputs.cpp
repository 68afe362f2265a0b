#include "host/judging/detail_outputs.h"

#include "host/report/html_writer.h"
#include "host/report/network_html.h"

namespace orsolva_host {

DetailFilter FilterOf(const DetailSelection& selection) {
  if (selection.IsEverything()) return {};
  return [selection](char letter, int number, std::string_view signal) {
    return signal.size() == 2 && selection.Has(letter, number, {signal[0], signal[1]});
  };
}

DetailOutputs::DetailOutputs(const std::vector<std::string>& tables, const std::vector<std::string>& pages,
                             const DetailSelection& selection, const std::string& index) {
  for (const std::string& path : tables) table_files_.push_back(std::make_unique<WholeFile>(path));
  for (const std::string& path : pages) page_files_.push_back(std::make_unique<WholeFile>(path));
  if (!tables.empty()) {
    const auto write = [this](std::string_view text) {
      for (const auto& file : table_files_) file->Write(text);
    };
    table_ = std::make_unique<DetailCsv>(write, FilterOf(selection));
    sinks_.Add(table_.get());
  }
  if (!pages.empty()) {
    if (!index.empty()) index_link_ = LinkTo(index, pages.front());
    collector_ = std::make_unique<DetailCollector>();
    series_ = std::make_unique<SeriesCollector>();
    sinks_.Add(collector_.get());
  }
}

void DetailOutputs::Finish(const Report& report) {
  for (const auto& file : table_files_) file->Commit();
  if (page_files_.empty()) return;
  const std::string page = WriteHtml(report, *collector_, *series_, index_link_);
  for (const auto& file : page_files_) {
    file->Write(page);
    file->Commit();
  }
}

}  // namespace orsolva_host
