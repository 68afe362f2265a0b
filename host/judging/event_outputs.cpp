#include "host/judging/event_outputs.h"

#include "host/judging/report_stream.h"

namespace orsolva_host {

EventOutputs::EventOutputs(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    if (path == "-") {
      tables_.emplace_back(EventForm::kCsv, WriteOut);
      continue;
    }
    files_.push_back(std::make_unique<WholeFile>(path));
    tables_.emplace_back(EventFormOf(path),
                         [file = files_.back().get()](std::string_view text) { file->Write(text); });
  }
}

void EventOutputs::Add(const analysis::Event& event) {
  for (EventTable& table : tables_) table.Add(event);
}

void EventOutputs::Finish() {
  for (const auto& file : files_) file->Commit();
}

}  // namespace orsolva_host
