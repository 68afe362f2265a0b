// Observers of a run: notified of every epoch, satellite and pair.
#ifndef ORSOLVA_REPORT_DETAIL_SINK_H
#define ORSOLVA_REPORT_DETAIL_SINK_H

#include <algorithm>
#include <vector>

#include "orsolva/detail.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// An observer that is also notified of the begin and end of a run and of its batches.
///
/// Within a batch the library first reports satellite by satellite, then the pairs epoch by epoch. A run's
/// first batch of a single epoch has its pairs reported with the next batch.
class DetailSink : public orsolva::QcDetailObserver {
 public:
  /// Before the first batch.
  /// @param first  first epoch of the run
  virtual void Begin(const Time_gbt& first, double interval_s) = 0;
  /// After every batch.
  virtual void EndBatch() = 0;
  /// After the last batch, with the results of the run.
  virtual void Finish(const total_code_qc_result& codes) = 0;
};

/// Passes everything on to several sinks, in their order. The caller keeps ownership.
class DetailFanOut : public DetailSink {
 public:
  void Add(DetailSink* sink) { sinks_.push_back(sink); }
  bool Empty() const { return sinks_.empty(); }

  void Begin(const Time_gbt& first, double interval_s) override {
    for (DetailSink* sink : sinks_) sink->Begin(first, interval_s);
  }
  void EndBatch() override {
    for (DetailSink* sink : sinks_) sink->EndBatch();
  }
  void Finish(const total_code_qc_result& codes) override {
    for (DetailSink* sink : sinks_) sink->Finish(codes);
  }
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail& detail) override {
    for (DetailSink* sink : sinks_) sink->OnSatelliteEpoch(detail);
  }
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override {
    for (DetailSink* sink : sinks_) sink->OnPairEpoch(detail);
  }
  bool LooksAtDirections() const override {
    return std::any_of(sinks_.begin(), sinks_.end(),
                       [](const DetailSink* s) { return s->LooksAtDirections(); });
  }

 private:
  std::vector<DetailSink*> sinks_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_DETAIL_SINK_H
