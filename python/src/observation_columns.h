// Epochs of observations as columns: a row per epoch, satellite and signal.
#ifndef ORSOLVA_PYTHON_OBSERVATION_COLUMNS_H
#define ORSOLVA_PYTHON_OBSERVATION_COLUMNS_H

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/observation/observation_epoch.h"
#include "python/src/columns.h"

namespace orsolva_python {

/// What is taken of a file.
struct Selection {
  std::string systems;               ///< letters; empty: all
  std::vector<std::string> signals;  ///< "1C" of every system or "G1C" of one; empty: all
  std::vector<std::string> fields;   ///< "pseudorange", "phase", "doppler", "snr"
  std::int64_t start_ns = std::numeric_limits<std::int64_t>::min();
  std::int64_t end_ns = std::numeric_limits<std::int64_t>::max();  ///< not one of the times taken
  std::int64_t every_ns = 0;  ///< whole multiples of it since 1970 are taken; 0: every epoch
  bool flags = false;

  /// @param time_ns  within half a millisecond of a multiple, as receiver clocks are
  bool Takes(std::int64_t time_ns) const;
};

class ObservationColumns {
 public:
  /// @throws ArgumentError when a signal or a field is none
  explicit ObservationColumns(const Selection& selection);

  /// @param epoch  must be one that the selection takes
  void Add(const orsolva_host::ObservationEpoch& epoch);
  std::size_t Epochs() const { return epochs_->Rows(); }

  std::shared_ptr<Table> Rows() const { return rows_; }
  /// A row per epoch.
  std::shared_ptr<Table> EpochTable() const { return epochs_; }

 private:
  using Signal = orsolva_host::SignalObservation;

  bool Takes(char system) const { return takes_system_[static_cast<unsigned char>(system) & 127]; }
  std::int32_t PlaceOf(orsolva_host::SatelliteId id);
  std::int32_t PlaceOf(char system, orsolva_host::SignalCode code);
  void AddRow(std::int64_t time_ns, std::int32_t satellite, std::int32_t signal, const Signal& values);
  bool IsWanted(char system, orsolva_host::SignalCode code) const;

  Selection selection_;
  std::shared_ptr<Table> rows_ = std::make_shared<Table>();
  std::shared_ptr<Table> epochs_ = std::make_shared<Table>();
  Column& time_ = rows_->Add("time", ColumnKind::kTime);
  Column& satellite_ = rows_->Add("satellite", ColumnKind::kName);
  Column& signal_ = rows_->Add("signal", ColumnKind::kName);
  std::vector<std::pair<Column*, double Signal::*>> fields_;
  Column* loss_of_lock_ = nullptr;
  Column* strength_ = nullptr;
  Column& epoch_time_ = epochs_->Add("time", ColumnKind::kTime);
  Column& epoch_satellites_ = epochs_->Add("satellites", ColumnKind::kWhole);
  Column& epoch_events_ = epochs_->Add("events", ColumnKind::kWhole);
  Column& epoch_clock_ = epochs_->Add("receiver_clock_offset_s", ColumnKind::kReal);
  std::array<bool, 128> takes_system_ = {};
  std::vector<std::int32_t> satellite_places_;  // by letter and number; -1 not yet seen
  std::vector<std::int32_t> signal_places_;  // by system, band and attribute; -1 not yet seen, -2 not wanted
};

}  // namespace orsolva_python

#endif  // ORSOLVA_PYTHON_OBSERVATION_COLUMNS_H
