#include "python/src/observation_columns.h"

#include <algorithm>
#include <cstdlib>

#include "python/src/errors.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;

constexpr std::int32_t kNotSeen = -1;
constexpr std::int32_t kNotWanted = -2;
constexpr std::size_t kLetters = 26;
constexpr std::size_t kNumbers = 256;
constexpr std::size_t kBands = 10;

struct FieldRow {
  const char* name;
  const char* column;
  double SignalObservation::*member;
};
constexpr FieldRow kFields[] = {
    {"pseudorange", "pseudorange_m", &SignalObservation::pseudorange_m},
    {"phase", "phase_cycles", &SignalObservation::phase_cycles},
    {"doppler", "doppler_hz", &SignalObservation::doppler_hz},
    {"snr", "snr_dbhz", &SignalObservation::snr_dbhz},
};

std::size_t IndexOf(char letter) { return static_cast<std::size_t>(std::clamp(letter - 'A', 0, 25)); }

bool IsSignal(const std::string& name) {
  const std::size_t band = name.size() == 3 ? 1 : 0;
  const auto upper = [](char c) { return c >= 'A' && c <= 'Z'; };
  return name.size() == band + 2 && name[band] >= '0' && name[band] <= '9' && upper(name[band + 1]) &&
         (band == 0 || upper(name[0]));
}

}  // namespace

bool Selection::Takes(std::int64_t time_ns) const {
  if (time_ns < start_ns || time_ns >= end_ns) return false;
  if (every_ns <= 0) return true;
  constexpr std::int64_t kTolerance_ns = 500'000;
  const std::int64_t rest = time_ns % every_ns;
  return std::min(std::abs(rest), every_ns - std::abs(rest)) <= kTolerance_ns;
}

ObservationColumns::ObservationColumns(const Selection& selection)
    : selection_(selection),
      satellite_places_(kLetters * kNumbers, kNotSeen),
      signal_places_(kLetters * kBands * kLetters, kNotSeen) {
  for (const std::string& name : selection.signals) {
    if (!IsSignal(name))
      throw ArgumentError("signals: found '" + name + "', expected names such as '1C' or 'G1C'");
  }
  for (const std::string& name : selection.fields) {
    const auto* row = std::find_if(std::begin(kFields), std::end(kFields),
                                   [&](const FieldRow& f) { return name == f.name; });
    if (row == std::end(kFields)) {
      throw ArgumentError("fields: found '" + name + "', expected pseudorange, phase, doppler or snr");
    }
    fields_.emplace_back(&rows_->Add(row->column, ColumnKind::kReal), row->member);
  }
  if (selection.flags) {
    loss_of_lock_ = &rows_->Add("loss_of_lock", ColumnKind::kFlags);
    strength_ = &rows_->Add("strength_digit", ColumnKind::kFlags);
  }
  for (std::size_t letter = 0; letter < takes_system_.size(); ++letter) {
    takes_system_[letter] =
        selection.systems.empty() || selection.systems.find(static_cast<char>(letter)) != std::string::npos;
  }
}

bool ObservationColumns::IsWanted(char system, SignalCode code) const {
  if (selection_.signals.empty()) return true;
  const std::string name = NameOf(code);
  return std::any_of(selection_.signals.begin(), selection_.signals.end(),
                     [&](const std::string& wanted) { return wanted == name || wanted == system + name; });
}

std::int32_t ObservationColumns::PlaceOf(SatelliteId id) {
  std::int32_t& place = satellite_places_[IndexOf(id.system) * kNumbers + id.number];
  if (place == kNotSeen) place = satellite_.WordPlace(NameOf(id));
  return place;
}

std::int32_t ObservationColumns::PlaceOf(char system, SignalCode code) {
  const auto band = static_cast<std::size_t>(std::clamp(code.band - '0', 0, 9));
  std::int32_t& place =
      signal_places_[(IndexOf(system) * kBands + band) * kLetters + IndexOf(code.attribute)];
  if (place == kNotSeen) place = IsWanted(system, code) ? signal_.WordPlace(NameOf(code)) : kNotWanted;
  return place;
}

void ObservationColumns::AddRow(std::int64_t time_ns, std::int32_t satellite, std::int32_t signal,
                                const Signal& values) {
  time_.AddTime(time_ns);
  satellite_.AddWord(satellite);
  signal_.AddWord(signal);
  for (const auto& [column, member] : fields_) column->AddReal(values.*member);
  if (loss_of_lock_ == nullptr) return;
  loss_of_lock_->AddFlags(values.loss_of_lock);
  strength_->AddFlags(values.strength_digit);
}

void ObservationColumns::Add(const ObservationEpoch& epoch) {
  std::int64_t satellites = 0;
  for (const SatelliteObservation& satellite : epoch.satellites) {
    if (!Takes(satellite.id.system)) continue;
    ++satellites;
    const std::int32_t name = PlaceOf(satellite.id);
    for (std::size_t i = 0; i < satellite.signal_count; ++i) {
      const Signal& values = epoch.signals[satellite.first_signal + i];
      const std::int32_t signal = PlaceOf(satellite.id.system, values.code);
      if (signal != kNotWanted) AddRow(epoch.time_ns, name, signal, values);
    }
  }
  epoch_time_.AddTime(epoch.time_ns);
  epoch_satellites_.AddWhole(satellites);
  epoch_events_.AddWhole(std::int64_t{epoch.events});
  epoch_clock_.AddReal(epoch.receiver_clock_offset_s);
}

}  // namespace orsolva_python
