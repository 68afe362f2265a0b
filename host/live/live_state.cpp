#include "host/live/live_state.h"

#include <cmath>

namespace orsolva_host::live {
namespace {

/// Below it an RMS says little; the analysis has the same least number.
constexpr Count kMinMultipathValues = 50;
constexpr double kMilli = 1e-3;
constexpr double kSquareMicro = 1e-6;

std::optional<double> MeanDbhz(std::int64_t milli_db, Count values) {
  if (values == 0) return std::nullopt;
  return static_cast<double>(milli_db) * kMilli / static_cast<double>(values);
}

}  // namespace

const std::vector<std::string> kAlarmKinds = {"data_gap",       "latency",          "slip_burst",
                                              "snr_drop",       "completeness",     "multipath",
                                              "satellites_few", "ephemeris_old",    "messages_missing",
                                              "position_moved", "identity_changed", "crc_errors"};

SignalSums& SignalSums::operator+=(const SignalSums& other) {
  expected += other.expected;
  observed += other.observed;
  snr_values += other.snr_values;
  snr_milli_db += other.snr_milli_db;
  snr_low_values += other.snr_low_values;
  snr_low_milli_db += other.snr_low_milli_db;
  multipath_values += other.multipath_values;
  multipath_square_um2 += other.multipath_square_um2;
  slips += other.slips;
  jumps += other.jumps;
  lock_losses += other.lock_losses;
  return *this;
}

std::optional<double> SignalSums::Completeness() const {
  if (expected == 0) return std::nullopt;
  return static_cast<double>(observed) / static_cast<double>(expected);
}

std::optional<double> SignalSums::SnrDbhz() const { return MeanDbhz(snr_milli_db, snr_values); }

std::optional<double> SignalSums::SnrLowDbhz() const { return MeanDbhz(snr_low_milli_db, snr_low_values); }

std::optional<double> SignalSums::SnrHighDbhz() const {
  return MeanDbhz(snr_milli_db - snr_low_milli_db, snr_values - snr_low_values);
}

std::optional<double> SignalSums::MultipathM() const {
  if (multipath_values < kMinMultipathValues) return std::nullopt;
  return std::sqrt(static_cast<double>(multipath_square_um2) * kSquareMicro /
                   static_cast<double>(multipath_values));
}

WindowSums& WindowSums::operator+=(const WindowSums& other) {
  epochs_expected += other.epochs_expected;
  epochs_present += other.epochs_present;
  messages += other.messages;
  crc_errors += other.crc_errors;
  slip_events += other.slip_events;
  satellite_epochs += other.satellite_epochs;
  for (const auto& [key, sums] : other.signals) signals[key] += sums;
  return *this;
}

const char* NameOf(Severity severity) { return severity == Severity::kBad ? "bad" : "warning"; }

const char* NameOf(LiveEvent::State state) {
  if (state == LiveEvent::State::kNote) return "note";
  return state == LiveEvent::State::kRaised ? "raised" : "cleared";
}

const char* NameOf(StreamPhase phase) {
  constexpr const char* kNames[] = {"connecting", "waiting", "waiting for navigation", "judging", "ended"};
  return kNames[static_cast<std::size_t>(phase)];
}

}  // namespace orsolva_host::live
