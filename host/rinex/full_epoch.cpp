#include "host/rinex/full_epoch.h"

#include <algorithm>
#include <cmath>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/rinex/version2_codes.h"

namespace orsolva_host {
namespace {

int PlaceOf(std::vector<SignalCode>& codes, SignalCode code) {
  const auto known = std::find(codes.begin(), codes.end(), code);
  if (known != codes.end()) return static_cast<int>(known - codes.begin());
  codes.push_back(code);
  return static_cast<int>(codes.size()) - 1;
}

/// The signal of a type of RINEX 3 or 4. Old names of BDS signals give the current ones.
SignalCode CodeOf(char letter, const std::string& type, double version) {
  if (letter == 'C') {
    const std::string_view current =
        SignalName(kBds, SignalNumber(kBds, std::string_view(type).substr(1), version));
    if (!current.empty()) return {current[0], current[1]};
  }
  return {type[1], type[2]};
}

/// The signal of a type of RINEX 2, as far as the header determines it; empty if there is none.
std::string_view SignalOf2(const std::vector<std::string>& types, char letter, const std::string& type) {
  const bool lettered = type.size() == 2 && std::any_of(types.begin(), types.end(), [&](const auto& other) {
                          return BandOfLettered(other) == type[1] - '0';
                        });
  const auto listed = [&](std::string_view signal) {
    return std::any_of(types.begin(), types.end(), [&](const std::string& other) {
      return (other[0] == 'C' || other[0] == 'P') && SignalsOfVersion2(letter, other, false).first == signal;
    });
  };
  const Version2Signals signals = SignalsOfVersion2(letter, type, lettered);
  const bool other = !signals.second.empty() && !listed(signals.first) && listed(signals.second);
  return other ? signals.second : signals.first;
}

void Store(char kind, double value, SignalObservation& signal) {
  if (kind == 'C') signal.pseudorange_m = value;
  if (kind == 'L') signal.phase_cycles = value;
  if (kind == 'D') signal.doppler_hz = value;
  if (kind == 'S') signal.snr_dbhz = value;
}

bool HasValue(const SignalObservation& signal) {
  return !std::isnan(signal.pseudorange_m) || !std::isnan(signal.phase_cycles) ||
         !std::isnan(signal.doppler_hz) || !std::isnan(signal.snr_dbhz);
}

void StoreMarks(const Cell& cell, SignalObservation& signal) {
  if (cell.loss_of_lock >= '1' && cell.loss_of_lock <= '7') {
    signal.loss_of_lock = static_cast<std::uint8_t>(cell.loss_of_lock - '0');
  }
  if (cell.strength >= '1' && cell.strength <= '9') {
    signal.strength_digit = static_cast<std::uint8_t>(cell.strength - '0');
  }
}

}  // namespace

double ScaleOf(const ObservationHeader& header, char letter, const std::string& type) {
  double factor = 1;
  for (const ScaleFactor& scale : header.scale_factors) {
    const bool all = scale.types.empty();
    const bool named = std::find(scale.types.begin(), scale.types.end(), type) != scale.types.end();
    const bool system = scale.system == letter || scale.system == '*';
    if (system && (all || named)) factor = scale.factor;
  }
  return factor;
}

void FullEpoch::Plan(const ObservationHeader& header) {
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    SystemCells& system = systems_[static_cast<std::size_t>(letter - 'A')];
    system = {};
    for (const std::string& type : header.TypesOf(letter)) {
      system.cells.push_back(MeaningOf(header, letter, type, system));
    }
  }
}

FullEpoch::CellMeaning FullEpoch::MeaningOf(const ObservationHeader& header, char letter,
                                            const std::string& type, SystemCells& system) {
  CellMeaning meaning;
  meaning.scale = ScaleOf(header, letter, type);
  if (header.version < 3) {
    const std::string_view name = SignalOf2(header.TypesOf(letter), letter, type);
    if (name.empty()) return meaning;
    meaning.kind = type[0] == 'P' ? 'C' : type[0];
    meaning.signal = PlaceOf(system.codes, {name[0], name[1]});
  } else if (type.size() == 3 && std::string_view("CLDS").find(type[0]) != std::string_view::npos) {
    meaning.kind = type[0];
    meaning.signal = PlaceOf(system.codes, CodeOf(letter, type, header.version));
  }
  return meaning;
}

void FullEpoch::Assign(char letter, std::size_t cell, SignalCode code) {
  SystemCells& system = systems_[static_cast<std::size_t>(letter - 'A')];
  system.cells[cell].signal = PlaceOf(system.codes, code);
}

void FullEpoch::TakeEvent(int flag) {
  constexpr std::uint32_t kOfFlag[] = {kAntennaMoves, kNewSite, 0, kExternalEvent, kSlipRecordsListed};
  if (flag >= 2 && flag <= 6) events_ |= kOfFlag[flag - 2];
}

void FullEpoch::Fill(const EpochBlock& block, const Time_gbt& time, ObservationEpoch& epoch) {
  epoch.Clear();
  epoch.time_ns = time.time * kNanosecondsPerSecond + std::llround(time.sec * 1e9);
  epoch.events = events_ | (block.flag == 1 ? kPowerFailure : 0);
  events_ = 0;
  epoch.receiver_clock_offset_s = block.clock_offset_s;
  seen_.reset();
  for (const SatelliteRow& row : block.satellites) {
    const auto letter = static_cast<std::size_t>(row.letter - 'A');
    const std::size_t bit = letter * 100 + static_cast<std::size_t>(row.number);
    if (seen_[bit]) continue;
    seen_[bit] = true;
    FillSatellite(systems_[letter], block, row, epoch);
  }
}

void FullEpoch::FillSatellite(const SystemCells& system, const EpochBlock& block, const SatelliteRow& row,
                              ObservationEpoch& epoch) {
  SatelliteObservation satellite;
  satellite.id = {row.letter, static_cast<std::uint8_t>(row.number)};
  satellite.first_signal = epoch.signals.size();
  epoch.signals.resize(satellite.first_signal + system.codes.size());
  SignalObservation* const signals = epoch.signals.data() + satellite.first_signal;
  const std::size_t cells = std::min(row.cells, system.cells.size());
  for (std::size_t i = 0; i < cells; ++i) {
    const CellMeaning& meaning = system.cells[i];
    const Cell& cell = block.cells[row.first_cell + i];
    if (meaning.signal < 0 || !cell.present || cell.value == 0) continue;
    SignalObservation& signal = signals[meaning.signal];
    Store(meaning.kind, meaning.scale == 1 ? cell.value : cell.value / meaning.scale, signal);
    if (meaning.kind == 'L') StoreMarks(cell, signal);
  }
  for (std::size_t i = 0; i < system.codes.size(); ++i) {
    if (!HasValue(signals[i])) continue;
    SignalObservation& kept = signals[satellite.signal_count++];
    if (&kept != &signals[i]) kept = signals[i];
    kept.code = system.codes[i];
  }
  epoch.signals.resize(satellite.first_signal + satellite.signal_count);
  if (satellite.signal_count > 0) epoch.satellites.push_back(satellite);
}

}  // namespace orsolva_host
