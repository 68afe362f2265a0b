// The files of a run that list its events.
#ifndef ORSOLVA_JUDGING_EVENT_OUTPUTS_H
#define ORSOLVA_JUDGING_EVENT_OUTPUTS_H

#include <memory>
#include <string>
#include <vector>

#include "host/output/whole_file.h"
#include "host/report/event_table.h"

namespace orsolva_host {

class EventOutputs : public EventSink {
 public:
  /// @param paths  files, each in the form of its ending; "-" is standard output
  /// @throws WriteError when a file cannot be opened
  explicit EventOutputs(const std::vector<std::string>& paths);

  bool Empty() const { return tables_.empty(); }
  /// @throws WriteError
  void Add(const analysis::Event& event) override;
  /// The files appear only now. @throws WriteError
  void Finish();

 private:
  std::vector<std::unique_ptr<WholeFile>> files_;
  std::vector<EventTable> tables_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_EVENT_OUTPUTS_H
