#include "host/report/detail_csv.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>
#include <utility>

#include "host/report/detail_reasons.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_host {
namespace {

using orsolva::PairEpochDetail;
using orsolva::SatelliteEpochDetail;

constexpr double kDegreesPerRadian = 57.295779513082320877;
constexpr std::size_t kPieceBytes = 1 << 18;

bool Before(const Time_gbt& a, const Time_gbt& b) {
  return std::tie(a.time, a.sec) < std::tie(b.time, b.sec);
}

bool Same(const Time_gbt& a, const Time_gbt& b) { return a.time == b.time && a.sec == b.sec; }

void Append(std::string& text, bool given, double value, int decimals) {
  text += ',';
  if (given && std::isfinite(value)) fmt::format_to(std::back_inserter(text), "{:.{}f}", value, decimals);
}

void Append(std::string& text, std::string_view word) {
  text += ',';
  text += word;
}

char LetterOf(int system) {
  const int slot = SystemSlotOfCode(system);
  return slot < 0 ? '?' : kSystemTable[slot].letter;
}

bool SaysSomething(const PairEpochDetail& pair) {
  return pair.has_multipath || pair.has_geometry_free_step || pair.has_difference ||
         pair.geometry_slip != orsolva::GeometrySlipReason::kNone;
}

}  // namespace

const char* const kDetailCsvHeader =
    "time_gpst,satellite,signal,elevation_deg,azimuth_deg,above_cutoff,snr_dbhz,partner,mp_residual_m,"
    "restart,"
    "geometry_free_step_m,geometry_free_threshold_m,geometry_free_slip,phase_excess_m,phase_threshold_m,"
    "phase_slip";

DetailCsv::DetailCsv(std::function<void(std::string_view)> write, DetailFilter filter)
    : write_(std::move(write)), filter_(std::move(filter)) {}

void DetailCsv::Begin(const Time_gbt&, double) {
  text_ = kDetailCsvHeader;
  text_ += '\n';
}

void DetailCsv::OnSatelliteEpoch(const SatelliteEpochDetail& detail) {
  arranged_ = false;
  epochs_.push_back({detail.time, detail.number, detail.satellite, detail.elevation_rad, detail.azimuth_rad,
                     detail.above_cutoff, signals_.size(), detail.signal_count});
  for (int i = 0; i < detail.signal_count; ++i) {
    signals_.push_back({detail.signals[i].code, detail.signals[i].snr});
  }
}

void DetailCsv::OnPairEpoch(const PairEpochDetail& detail) {
  Arrange();
  if (!pairs_.empty() && !Same(pairs_.back().time, detail.time)) WriteEpoch();
  if (pairs_.empty()) WriteEpochsBefore(detail.time);
  pairs_.push_back(detail);
}

void DetailCsv::EndBatch() {
  Arrange();
  const bool one_epoch = !epochs_.empty() && Same(epochs_.front().time, epochs_.back().time);
  // A lone first epoch: its pairs come with the next batch.
  if (one_epoch && next_ == 0 && pairs_.empty()) return;
  if (!pairs_.empty()) WriteEpoch();
  while (next_ < epochs_.size()) WriteEpoch();
  epochs_.clear();
  signals_.clear();
  next_ = 0;
  Pass();
  Complain();
}

void DetailCsv::Finish(const total_code_qc_result&) {
  Arrange();
  while (next_ < epochs_.size()) WriteEpoch();
  Pass();
  Complain();
}

void DetailCsv::Arrange() {
  if (arranged_) return;
  arranged_ = true;
  std::stable_sort(epochs_.begin() + static_cast<std::ptrdiff_t>(next_), epochs_.end(),
                   [](const SatelliteEpoch& a, const SatelliteEpoch& b) { return Before(a.time, b.time); });
}

void DetailCsv::WriteEpochsBefore(const Time_gbt& time) {
  while (next_ < epochs_.size() && Before(epochs_[next_].time, time)) WriteEpoch();
}

/// The satellites at next_ that share a time, with the pairs at hand.
void DetailCsv::WriteEpoch() {
  if (next_ >= epochs_.size()) {
    pairs_.clear();
    return;
  }
  const Time_gbt time = epochs_[next_].time;
  time_text_ = TimeText(time);
  std::stable_sort(pairs_.begin(), pairs_.end(), [](const PairEpochDetail& a, const PairEpochDetail& b) {
    return std::tie(a.number, a.code, a.partner) < std::tie(b.number, b.code, b.partner);
  });
  int last_number = 0;
  for (; next_ < epochs_.size() && Same(epochs_[next_].time, time); ++next_) {
    const int number = epochs_[next_].number;
    const bool again = number == last_number;
    last_number = number;
    const auto first = std::partition_point(pairs_.begin(), pairs_.end(),
                                            [number](const PairEpochDetail& p) { return p.number < number; });
    const auto end = std::partition_point(first, pairs_.end(),
                                          [number](const PairEpochDetail& p) { return p.number == number; });
    // Of a satellite listed twice the first listing has the pairs.
    WriteSatellite(epochs_[next_], static_cast<std::size_t>(first - pairs_.begin()),
                   static_cast<std::size_t>((again ? first : end) - pairs_.begin()));
  }
  pairs_.clear();
  if (text_.size() > kPieceBytes) Pass();
}

void DetailCsv::WriteSatellite(const SatelliteEpoch& epoch, std::size_t first_pair, std::size_t end_pair) {
  for (int i = 0; i < epoch.signal_count; ++i) {
    const SignalValue& signal = signals_[epoch.first_signal + static_cast<std::size_t>(i)];
    if (!IsWanted(epoch, signal)) continue;
    bool paired = false;
    for (std::size_t k = first_pair; k < end_pair; ++k) {
      const PairEpochDetail& pair = pairs_[k];
      if (pair.code != signal.code || !SaysSomething(pair)) continue;
      paired = true;
      WriteLead(epoch, signal);
      WritePair(pair);
    }
    if (paired) continue;
    WriteLead(epoch, signal);
    text_ += ",,,,,,,,,\n";
  }
}

bool DetailCsv::IsWanted(const SatelliteEpoch& epoch, const SignalValue& signal) const {
  const orsolva::DetailSatellite& satellite = epoch.satellite;
  return !filter_ || filter_(LetterOf(satellite.sys), satellite.prn,
                             SignalName(satellite.sys, static_cast<int>(signal.code)));
}

void DetailCsv::WriteLead(const SatelliteEpoch& epoch, const SignalValue& signal) {
  const int system = epoch.satellite.sys;
  text_ += time_text_;
  Append(text_, SatelliteName(LetterOf(system), epoch.satellite.prn));
  Append(text_, SignalName(system, static_cast<int>(signal.code)));
  Append(text_, true, epoch.elevation_rad * kDegreesPerRadian, 3);
  Append(text_, true, epoch.azimuth_rad * kDegreesPerRadian, 3);
  Append(text_, epoch.above_cutoff ? "1" : "0");
  Append(text_, signal.snr_dbhz > 0, signal.snr_dbhz, 3);
}

void DetailCsv::WritePair(const PairEpochDetail& pair) {
  Append(text_, SignalName(pair.satellite.sys, static_cast<int>(pair.partner)));
  Append(text_, pair.has_multipath, pair.residual_m, 4);
  Append(text_, RestartText(pair.restart));
  Append(text_, pair.has_geometry_free_step, pair.geometry_free_step_m, 4);
  Append(text_, pair.has_geometry_free_step, pair.geometry_free_threshold_m, 4);
  Append(text_, IonosphereSlipText(pair.ionosphere_slip));
  const bool tested = pair.geometry_threshold_m > 0;
  Append(text_, tested, pair.excess_m, 4);
  Append(text_, tested, pair.geometry_threshold_m, 4);
  Append(text_, GeometrySlipText(pair.geometry_slip));
  text_ += '\n';
}

void DetailCsv::Pass() {
  if (!text_.empty() && failure_ == nullptr) {
    try {
      write_(text_);
    } catch (...) {
      failure_ = std::current_exception();
    }
  }
  text_.clear();
}

void DetailCsv::Complain() {
  if (failure_ != nullptr) std::rethrow_exception(failure_);
}

}  // namespace orsolva_host
