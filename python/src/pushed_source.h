// Epochs that a caller pushes, as a source for judging on another thread.
#ifndef ORSOLVA_PYTHON_PUSHED_SOURCE_H
#define ORSOLVA_PYTHON_PUSHED_SOURCE_H

#include <optional>
#include <string>
#include <utility>

#include "host/judging/epoch_queue.h"
#include "host/judging/epoch_source.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_python {

class PushedSource : public orsolva_host::EpochSource {
 public:
  PushedSource(std::string name, orsolva_host::ObservationHeader header)
      : name_(std::move(name)), header_(std::move(header)) {}

  const std::string& Name() const override { return name_; }
  const orsolva_host::ObservationHeader& Header() const override { return header_; }
  bool Next(ObsEpoch_QC_gbt& epoch, orsolva_host::ObservationEpoch& full) override;
  const std::optional<orsolva_host::FileError>& Failure() const override { return failure_; }

  orsolva_host::EpochQueue& Queue() { return queue_; }
  /// What was found in the epochs taken so far; of the thread that judges.
  orsolva_host::Diagnostics& Notices() { return diagnostics_; }

 private:
  static constexpr std::size_t kBlocks = 8;

  std::string name_;
  orsolva_host::ObservationHeader header_;
  orsolva_host::Diagnostics diagnostics_;
  orsolva_host::EpochQueue queue_{kBlocks};
  std::optional<orsolva_host::FileError> failure_;  ///< never: arrays do not end early
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_PUSHED_SOURCE_H
