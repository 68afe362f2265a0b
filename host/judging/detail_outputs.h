// The files of a run that are made from its detail: the table and the page.
#ifndef ORSOLVA_JUDGING_DETAIL_OUTPUTS_H
#define ORSOLVA_JUDGING_DETAIL_OUTPUTS_H

#include <memory>
#include <string>
#include <vector>

#include "host/judging/epoch_selection.h"
#include "host/output/whole_file.h"
#include "host/report/detail_collector.h"
#include "host/report/detail_csv.h"
#include "host/report/report.h"
#include "host/report/series_collector.h"

namespace orsolva_host {

/// Empty for everything.
DetailFilter FilterOf(const DetailSelection& selection);

class DetailOutputs {
 public:
  /// @param tables, pages  files; all of a kind get the same content
  /// @param selection  of the rows of the tables; pages hold everything
  /// @param index  the page over all inputs that the page leads back to; empty: none
  /// @throws WriteError when a file cannot be opened
  DetailOutputs(const std::vector<std::string>& tables, const std::vector<std::string>& pages,
                const DetailSelection& selection = {}, const std::string& index = {});

  /// The observer of the run; null when no file is asked for.
  DetailSink* Sink() { return sinks_.Empty() ? nullptr : &sinks_; }

  /// What the page needs of figures over time; null without a page.
  SeriesSink* Series() { return series_.get(); }

  /// Writes the rest; the files appear only now. @throws WriteError
  void Finish(const Report& report);

 private:
  std::vector<std::unique_ptr<WholeFile>> table_files_;
  std::unique_ptr<DetailCsv> table_;
  std::vector<std::unique_ptr<WholeFile>> page_files_;
  std::string index_link_;
  std::unique_ptr<DetailCollector> collector_;
  std::unique_ptr<SeriesCollector> series_;
  DetailFanOut sinks_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_DETAIL_OUTPUTS_H
