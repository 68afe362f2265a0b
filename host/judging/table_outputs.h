// The files of a run that list its events, or its figures over time, row by row.
#ifndef ORSOLVA_JUDGING_TABLE_OUTPUTS_H
#define ORSOLVA_JUDGING_TABLE_OUTPUTS_H

#include <memory>
#include <string>
#include <vector>

#include "host/judging/report_stream.h"
#include "host/output/whole_file.h"
#include "host/report/event_table.h"
#include "host/report/series_table.h"

namespace orsolva_host {

template <typename Table, typename Sink, typename Row>
class TableOutputs : public Sink {
 public:
  /// @param paths  files, each in the form of its ending; "-" is standard output
  /// @throws WriteError when a file cannot be opened
  explicit TableOutputs(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
      if (path == "-") {
        tables_.emplace_back(TableForm::kCsv, WriteOut);
        continue;
      }
      files_.push_back(std::make_unique<WholeFile>(path));
      tables_.emplace_back(TableFormOf(path),
                           [file = files_.back().get()](std::string_view text) { file->Write(text); });
    }
  }

  bool Empty() const { return tables_.empty(); }
  /// @throws WriteError
  void Add(const Row& row) override {
    for (Table& table : tables_) table.Add(row);
  }
  /// The files appear only now. @throws WriteError
  void Finish() {
    for (const auto& file : files_) file->Commit();
  }

 private:
  std::vector<std::unique_ptr<WholeFile>> files_;
  std::vector<Table> tables_;
};

using EventOutputs = TableOutputs<EventTable, EventSink, analysis::Event>;
using SeriesOutputs = TableOutputs<SeriesTable, SeriesSink, analysis::SeriesRow>;

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_TABLE_OUTPUTS_H
