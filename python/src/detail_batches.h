// The detail of a run as it grows: a table per batch.
#ifndef ORSOLVA_PYTHON_DETAIL_BATCHES_H
#define ORSOLVA_PYTHON_DETAIL_BATCHES_H

#include <memory>
#include <mutex>
#include <vector>

#include "host/report/detail_sink.h"
#include "python/src/detail_table.h"

namespace orsolva_python {

/// Observer of a run on one thread, whose tables another one takes.
class DetailBatches : public orsolva_host::DetailSink {
 public:
  /// @param selection  of the rows
  explicit DetailBatches(const orsolva_host::DetailSelection& selection) : rows_(selection) {}

  /// The tables that have become complete since the last call.
  std::vector<std::shared_ptr<const Table>> Take() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(ready_, {});
  }

  void Begin(const Time_gbt& first, double interval_s) override { rows_.Sink()->Begin(first, interval_s); }
  void EndBatch() override {
    rows_.Sink()->EndBatch();
    Keep();
  }
  void Finish(const total_code_qc_result& codes) override {
    rows_.Sink()->Finish(codes);
    Keep();
  }
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail& detail) override {
    rows_.Sink()->OnSatelliteEpoch(detail);
  }
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override { rows_.Sink()->OnPairEpoch(detail); }

 private:
  void Keep() {
    std::shared_ptr<const Table> rows = rows_.TakeRows();
    if (rows->Rows() == 0) return;
    const std::lock_guard<std::mutex> lock(mutex_);
    ready_.push_back(std::move(rows));
  }

  DetailTable rows_;
  std::mutex mutex_;
  std::vector<std::shared_ptr<const Table>> ready_;
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_DETAIL_BATCHES_H
