// Takes the figures over time of an analysis as they are complete, by one thread at a time, which need not be
// that of the run's caller; none follows once the run has ended.
#ifndef ORSOLVA_REPORT_SERIES_SINK_H
#define ORSOLVA_REPORT_SERIES_SINK_H

#include <vector>

#include "host/analysis/series_row.h"

namespace orsolva_host {

class SeriesSink {
 public:
  virtual ~SeriesSink() = default;
  virtual void Add(const analysis::SeriesRow& row) = 0;
};

/// Hands rows on to several sinks, in their order.
class SeriesFanOut : public SeriesSink {
 public:
  void Add(SeriesSink* sink) { sinks_.push_back(sink); }
  bool Empty() const { return sinks_.empty(); }
  void Add(const analysis::SeriesRow& row) override {
    for (SeriesSink* sink : sinks_) sink->Add(row);
  }

 private:
  std::vector<SeriesSink*> sinks_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_SERIES_SINK_H
