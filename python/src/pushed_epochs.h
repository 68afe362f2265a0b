// Rows of a caller's arrays as epochs: checked as a whole before anything is taken.
#ifndef ORSOLVA_PYTHON_PUSHED_EPOCHS_H
#define ORSOLVA_PYTHON_PUSHED_EPOCHS_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/observation/observation_epoch.h"

namespace orsolva_python {

/// Names of rows: places in a list of words.
struct NamesOfRows {
  std::vector<std::int32_t> places;
  std::vector<std::string> words;
};

/// Arrays of one value per row. Those that may be missing are empty then.
struct PushedRows {
  std::span<const std::int64_t> time_ns;
  NamesOfRows satellites;
  NamesOfRows signals;
  std::span<const double> pseudorange_m, phase_cycles, doppler_hz, snr_dbhz;
  std::span<const std::uint8_t> loss_of_lock;
};

/// Joins rows to epochs, however they are split in calls: the last epoch stays open until a later one begins.
class PushedEpochs {
 public:
  /// Rows in order of time; those of an epoch and satellite follow each other, each signal once. NaN and 0
  /// are missing values, and a row without any value is passed over.
  /// @return the epochs that are complete
  /// @throws ArgumentError that names the row; nothing has been taken then
  std::vector<orsolva_host::ObservationEpoch> Add(const PushedRows& rows);
  /// How many epochs have begun, the open one included.
  std::uint64_t Begun() const { return complete_ + (open_ ? 1 : 0); }
  /// The epoch that is still open.
  std::optional<orsolva_host::ObservationEpoch> Last() { return std::move(open_); }

 private:
  std::optional<orsolva_host::ObservationEpoch> open_;
  std::uint64_t complete_ = 0;
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_PUSHED_EPOCHS_H
