#include "python/src/pushed_epochs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "host/judging/settings.h"
#include "host/rinex/satellite_names.h"
#include "python/src/errors.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;

/// A distance in kilometres, or a strength as a ratio, would be judged without a word.
constexpr double kMinRange_m = 1e6;
constexpr double kMaxStrength_dbhz = 100;

[[noreturn]] void RefuseLength(const char* name, std::size_t found, std::size_t rows) {
  throw ArgumentError(fmt::format("{}: found {} values, expected one per row, {}", name, found, rows));
}

/// Of an array that may be missing.
void CheckLength(const char* name, std::size_t found, std::size_t rows) {
  if (found != rows && found != 0) RefuseLength(name, found, rows);
}

void CheckFinite(const char* name, std::span<const double> values) {
  for (std::size_t row = 0; row < values.size(); ++row) {
    if (std::isinf(values[row])) throw ArgumentError(fmt::format("{}: row {} is infinite", name, row));
  }
}

double LargestOf(std::span<const double> values) {
  double largest = 0;
  for (const double value : values) largest = std::fmax(largest, std::fabs(value));
  return largest;
}

void CheckUnits(const PushedRows& rows) {
  const double range = LargestOf(rows.pseudorange_m);
  if (range > 0 && range < kMinRange_m) {
    throw ArgumentError(fmt::format("pseudorange: the largest is {:g}, expected metres", range));
  }
  const double strength = LargestOf(rows.snr_dbhz);
  if (strength > kMaxStrength_dbhz) {
    throw ArgumentError(fmt::format("snr: the largest is {:g}, expected dB-Hz", strength));
  }
}

void CheckNames(const char* name, const NamesOfRows& names, std::size_t rows) {
  if (names.places.size() != rows) RefuseLength(name, names.places.size(), rows);
  const auto words = static_cast<std::int32_t>(names.words.size());
  for (std::size_t row = 0; row < rows; ++row) {
    if (names.places[row] < 0 || names.places[row] >= words)
      throw ArgumentError(fmt::format("{}: row {} has no name", name, row));
  }
}

SatelliteId SatelliteOf(const std::string& name) {
  char letter = 0;
  int number = 0;
  const bool good = name.size() == 3 && ParseSatellite(name, letter, number) &&
                    kAllSystems.find(letter) != std::string_view::npos && number >= 1;
  if (!good) throw ArgumentError(fmt::format("satellites: found '{}', expected names such as 'G05'", name));
  return {letter, static_cast<std::uint8_t>(number)};
}

SignalCode SignalOf(const std::string& name) {
  const bool good = name.size() == 2 && name[0] >= '0' && name[0] <= '9' && name[1] >= 'A' && name[1] <= 'Z';
  if (!good) throw ArgumentError(fmt::format("signals: found '{}', expected names such as '1C'", name));
  return {name[0], name[1]};
}

double ValueAt(std::span<const double> values, std::size_t row) {
  return values.empty() || values[row] == 0 ? kAbsent : values[row];
}

bool HasValue(const SignalObservation& signal) {
  return !(std::isnan(signal.pseudorange_m) && std::isnan(signal.phase_cycles) &&
           std::isnan(signal.doppler_hz) && std::isnan(signal.snr_dbhz));
}

/// The rows of one call on top of the epoch that was open.
class Joiner {
 public:
  Joiner(const PushedRows& rows, std::optional<ObservationEpoch> open) : rows_(rows), open_(std::move(open)) {
    for (const std::string& word : rows.satellites.words) satellites_.push_back(SatelliteOf(word));
    for (const std::string& word : rows.signals.words) signals_.push_back(SignalOf(word));
  }

  void Take(std::size_t row);
  std::vector<ObservationEpoch> complete;
  std::optional<ObservationEpoch> Open() { return std::move(open_); }

 private:
  void Begin(std::size_t row);
  void BeginSatellite(SatelliteId id, std::size_t row);

  const PushedRows& rows_;
  std::optional<ObservationEpoch> open_;
  std::vector<SatelliteId> satellites_;
  std::vector<SignalCode> signals_;
};

void Joiner::Begin(std::size_t row) {
  const std::int64_t time_ns = rows_.time_ns[row];
  if (open_ && time_ns == open_->time_ns) return;
  if (open_ && time_ns < open_->time_ns) {
    throw ArgumentError(
        fmt::format("time: row {} is before the row before it, expected rows in order of time", row));
  }
  if (open_) complete.push_back(std::move(*open_));
  open_.emplace();
  open_->time_ns = time_ns;
}

void Joiner::BeginSatellite(SatelliteId id, std::size_t row) {
  auto& list = open_->satellites;
  if (!list.empty() && list.back().id == id) return;
  const bool again =
      std::any_of(list.begin(), list.end(), [id](const auto& other) { return other.id == id; });
  if (again) {
    throw ArgumentError(fmt::format(
        "satellites: row {} is of {} again, expected the rows of a satellite and epoch to follow each other",
        row, NameOf(id)));
  }
  list.push_back({id, open_->signals.size(), 0});
}

void Joiner::Take(std::size_t row) {
  Begin(row);
  SignalObservation signal;
  signal.code = signals_[static_cast<std::size_t>(rows_.signals.places[row])];
  signal.pseudorange_m = ValueAt(rows_.pseudorange_m, row);
  signal.phase_cycles = ValueAt(rows_.phase_cycles, row);
  signal.doppler_hz = ValueAt(rows_.doppler_hz, row);
  signal.snr_dbhz = ValueAt(rows_.snr_dbhz, row);
  if (!rows_.loss_of_lock.empty()) signal.loss_of_lock = rows_.loss_of_lock[row];
  if (!HasValue(signal)) return;
  const SatelliteId id = satellites_[static_cast<std::size_t>(rows_.satellites.places[row])];
  BeginSatellite(id, row);
  SatelliteObservation& satellite = open_->satellites.back();
  for (std::size_t i = satellite.first_signal; i < open_->signals.size(); ++i) {
    if (open_->signals[i].code != signal.code) continue;
    throw ArgumentError(fmt::format("signals: row {} is {} of {} again in the same epoch", row,
                                    NameOf(signal.code), NameOf(id)));
  }
  open_->signals.push_back(signal);
  ++satellite.signal_count;
}

}  // namespace

std::vector<ObservationEpoch> PushedEpochs::Add(const PushedRows& rows) {
  const std::size_t count = rows.time_ns.size();
  CheckNames("satellites", rows.satellites, count);
  CheckNames("signals", rows.signals, count);
  CheckLength("pseudorange", rows.pseudorange_m.size(), count);
  CheckLength("phase", rows.phase_cycles.size(), count);
  CheckLength("doppler", rows.doppler_hz.size(), count);
  CheckLength("snr", rows.snr_dbhz.size(), count);
  CheckLength("loss_of_lock", rows.loss_of_lock.size(), count);
  CheckFinite("pseudorange", rows.pseudorange_m);
  CheckFinite("phase", rows.phase_cycles);
  CheckFinite("doppler", rows.doppler_hz);
  CheckFinite("snr", rows.snr_dbhz);
  CheckUnits(rows);
  Joiner joiner(rows, open_);
  for (std::size_t row = 0; row < count; ++row) joiner.Take(row);
  open_ = joiner.Open();
  complete_ += joiner.complete.size();
  return std::move(joiner.complete);
}

}  // namespace orsolva_python
