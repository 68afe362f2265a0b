// Epochs that a caller pushes, as a source for judging on another thread.
#ifndef ORSOLVA_PYTHON_PUSHED_SOURCE_H
#define ORSOLVA_PYTHON_PUSHED_SOURCE_H

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/judging/epoch_queue.h"
#include "host/judging/epoch_source.h"
#include "host/judging/shared_navigation.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_python {

class PushedSource : public orsolva_host::EpochSource {
 public:
  PushedSource(std::string name, orsolva_host::ObservationHeader header)
      : name_(std::move(name)), header_(std::move(header)) {}

  const std::string& Name() const override { return name_; }
  const orsolva_host::ObservationHeader& Header() const override { return header_; }
  std::vector<std::shared_ptr<const orsolva_host::ReadNavigation>> NewNavigation() override {
    return std::exchange(fresh_, {});
  }
  /// Records that count from an epoch on. @param epoch  its number, that of no epoch that was put
  void AddNavigation(std::uint64_t epoch, std::shared_ptr<const orsolva_host::ReadNavigation> records);
  bool Next(ObsEpoch_QC_gbt& epoch, orsolva_host::ObservationEpoch& full) override;
  const std::optional<orsolva_host::FileError>& Failure() const override { return failure_; }

  orsolva_host::EpochQueue& Queue() { return queue_; }
  /// What was found in the epochs taken so far; of the thread that judges.
  orsolva_host::Diagnostics& Notices() { return diagnostics_; }

 private:
  void TakeRecords();

  static constexpr std::size_t kBlocks = 8;
  struct Records {
    std::uint64_t epoch = 0;
    std::shared_ptr<const orsolva_host::ReadNavigation> records;
  };

  std::string name_;
  orsolva_host::ObservationHeader header_;
  orsolva_host::Diagnostics diagnostics_;
  orsolva_host::EpochQueue queue_{kBlocks};
  std::mutex mutex_;
  std::deque<Records> waiting_;  ///< by epoch
  std::uint64_t taken_ = 0;      ///< epochs; of the thread that judges, and so is the next
  std::vector<std::shared_ptr<const orsolva_host::ReadNavigation>> fresh_;
  std::optional<orsolva_host::FileError> failure_;  ///< never: arrays do not end early
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_PUSHED_SOURCE_H
