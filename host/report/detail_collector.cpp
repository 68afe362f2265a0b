#include "host/report/detail_collector.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

using orsolva::PairEpochDetail;
using orsolva::SatelliteEpochDetail;

constexpr double kDegreesPerRadian = 57.295779513082320877;
constexpr std::uint32_t kNoRow = 0xffffffff;
constexpr double kMaxEpochs = 4e9;
constexpr std::size_t kMaxEvents = 400'000;  // of every pair; a page shows those of one pair per signal
constexpr std::size_t kMaxArcs = 20'000;
constexpr double kBinDegrees = 5;
constexpr std::size_t kBytesPerRow = 8;
constexpr std::size_t kBytesPerSignalRow = 4;

/// The nearest whole number of units, held within +-kMaxValue.
std::int16_t Scaled(double value, double unit) {
  if (!std::isfinite(value)) return kNoValue;
  const double scaled = std::round(value / unit);
  return static_cast<std::int16_t>(std::clamp(scaled, -double{kMaxValue}, double{kMaxValue}));
}

std::uint16_t Hundredths(double value) {
  if (!(value > 0)) return 0;
  return static_cast<std::uint16_t>(std::clamp(std::round(value * 100), 1.0, 65535.0));
}

std::uint16_t AzimuthHundredths(double radians) {
  const double degrees = std::isfinite(radians) ? std::fmod(radians * kDegreesPerRadian, 360.0) : 0;
  const double positive = degrees < 0 ? degrees + 360 : degrees;
  return static_cast<std::uint16_t>(std::llround(positive * 100) % 36000);
}

void AddToBin(ElevationBins& bins, std::int16_t elevation, double value) {
  const int bin = static_cast<int>(elevation / (kBinDegrees * 100));
  ElevationBin& into = bins[static_cast<std::size_t>(std::clamp(bin, 0, kElevationBins - 1))];
  ++into.count;
  into.sum += value;
}

template <class Value>
void PutAt(std::vector<Value>& column, std::uint32_t row, Value missing, Value value) {
  if (row == kNoRow) return;
  if (column.size() <= row) column.resize(row + std::size_t{1}, missing);
  column[row] = value;
}

SignalColumn& SignalOf(SatelliteColumns& columns, std::uint32_t code) {
  const auto at = std::lower_bound(columns.signals.begin(), columns.signals.end(), code,
                                   [](const SignalColumn& s, std::uint32_t c) { return s.code < c; });
  if (at != columns.signals.end() && at->code == code) return *at;
  SignalColumn& signal = *columns.signals.emplace(at);
  signal.code = code;
  return signal;
}

PairColumn& PairOf(SatelliteColumns& columns, std::uint32_t code, std::uint32_t partner) {
  const auto key = std::make_tuple(code, partner);
  const auto at =
      std::lower_bound(columns.pairs.begin(), columns.pairs.end(), key,
                       [](const PairColumn& p, const std::tuple<std::uint32_t, std::uint32_t>& k) {
                         return std::make_tuple(p.code, p.partner) < k;
                       });
  if (at != columns.pairs.end() && at->code == code && at->partner == partner) return *at;
  PairColumn& pair = *columns.pairs.emplace(at);
  pair.code = code;
  pair.partner = partner;
  return pair;
}

template <class Value>
void KeepRows(const std::vector<std::uint32_t>& rows, std::vector<Value>& column) {
  std::size_t kept = 0;
  for (const std::uint32_t row : rows) {
    if (row >= column.size()) break;
    column[kept++] = column[row];
  }
  column.resize(kept);
}

double CompletenessIn(const code_qc_block& block, std::uint32_t code) {
  for (int i = 0; i < std::clamp(block.count, 0, ORSOLVA_MAX_CODES); ++i) {
    if (block.entries[i].code == code) return block.entries[i].completeness;
  }
  return 0;
}

bool HasHardEvent(const PairEpochDetail& detail) {
  return detail.ionosphere_slip != orsolva::IonosphereSlipReason::kNone ||
         detail.restart == orsolva::RestartReason::kJump;
}

std::uint64_t Key(const orsolva::DetailSatellite& satellite, std::uint32_t code) {
  return (std::uint64_t{satellite.sys} << 48U) | (static_cast<std::uint64_t>(satellite.prn & 0xffff) << 32U) |
         code;
}

}  // namespace

void DetailCollector::Begin(const Time_gbt& first, double interval_s) {
  first_ = first;
  interval_s_ = interval_s > 0 ? interval_s : 1;
}

bool DetailCollector::IndexOf(const Time_gbt& time, EpochIndex& index) const {
  const double intervals = std::round(Difference(time, first_) / interval_s_);
  if (!(intervals >= 0 && intervals < kMaxEpochs)) return false;
  index = static_cast<EpochIndex>(intervals);
  return true;
}

void DetailCollector::OnSatelliteEpoch(const SatelliteEpochDetail& detail) {
  ++satellite_epochs_;
  EpochIndex index = 0;
  if (!IndexOf(detail.time, index)) return;
  SatelliteColumns& columns = satellites_[detail.number];
  std::vector<Sample>& samples = tracks_[detail.number].samples;
  // A satellite listed twice, or epochs that round to one step, count once.
  if (!columns.arcs.empty() && index <= columns.arcs.back().last) return;
  columns.satellite = detail.satellite;
  const std::int16_t elevation = Scaled(detail.elevation_rad * kDegreesPerRadian, 0.01);
  const bool plotted = keep_ == Keep::kPage && index % stride_ == 0;
  const std::uint32_t row = plotted ? AddRow(columns, index, detail, elevation) : kNoRow;
  samples.push_back({index, elevation, row});
  AddArc(columns, index, detail.above_cutoff);
  if (keep_ == Keep::kPage) AddSignals(columns, detail, samples.back());
}

std::uint32_t DetailCollector::AddRow(SatelliteColumns& columns, EpochIndex index,
                                      const SatelliteEpochDetail& detail, std::int16_t elevation) {
  columns.epoch.push_back(index);
  columns.elevation.push_back(elevation);
  columns.azimuth.push_back(AzimuthHundredths(detail.azimuth_rad));
  return static_cast<std::uint32_t>(columns.epoch.size() - 1);
}

void DetailCollector::AddArc(SatelliteColumns& columns, EpochIndex index, bool above_cutoff) {
  if (!columns.arcs.empty() && index - columns.arcs.back().last <= least_gap_) {
    columns.arcs.back().last = index;
    columns.arcs.back().last_above = above_cutoff;
    return;
  }
  columns.arcs.push_back({index, index, above_cutoff, above_cutoff});
  if (++arcs_ > kMaxArcs) JoinArcs();
}

void DetailCollector::AddSignals(SatelliteColumns& columns, const SatelliteEpochDetail& detail,
                                 const Sample& sample) {
  for (int i = 0; i < detail.signal_count; ++i) {
    const Signal_QC_gbt& observed = detail.signals[i];
    SignalColumn& signal = SignalOf(columns, observed.code);
    const std::uint16_t snr = Hundredths(observed.snr);
    PutAt<std::uint16_t>(signal.snr, sample.row, 0, snr);
    if (snr == 0) continue;
    ++signal.values;
    AddToBin(signal.mean_snr, sample.elevation, observed.snr);
  }
}

const DetailCollector::Sample* DetailCollector::SampleAt(int number, EpochIndex index) {
  const auto found = tracks_.find(number);
  if (found == tracks_.end()) return nullptr;
  BatchTrack& track = found->second;
  while (track.cursor < track.samples.size() && track.samples[track.cursor].epoch < index) ++track.cursor;
  if (track.cursor >= track.samples.size() || track.samples[track.cursor].epoch != index) return nullptr;
  return &track.samples[track.cursor];
}

/// The place of a pair among the known ones. Nearly all calls of a run without a page end with a known pair.
std::vector<bool>::reference DetailCollector::Known(const PairEpochDetail& detail) {
  constexpr std::size_t kNumbers = 256, kCodes = 128;  // satellite and signal numbers stay below
  if (known_pairs_.empty()) known_pairs_.resize(kNumbers * kCodes * kCodes);
  const std::size_t number = static_cast<std::size_t>(detail.number) % kNumbers;
  return known_pairs_[(number * kCodes + detail.code % kCodes) * kCodes + detail.partner % kCodes];
}

void DetailCollector::OnPairEpoch(const PairEpochDetail& detail) {
  pairs_seen_ = true;
  if (keep_ == Keep::kFindings && !HasHardEvent(detail) && Known(detail)) return;
  EpochIndex index = 0;
  if (!IndexOf(detail.time, index)) return;
  const Sample* sample = SampleAt(detail.number, index);
  if (sample == nullptr) return;
  SatelliteColumns& columns = satellites_[detail.number];
  PairColumn& pair = ::orsolva_host::PairOf(columns, detail.code, detail.partner);
  AddEvents(columns, pair, detail, *sample);
  if (keep_ == Keep::kFindings) {
    Known(detail) = true;
    return;
  }
  const double time_s = Difference(detail.time, first_);
  if (detail.has_multipath && detail.counting) {
    ++pair.values;
    AddToBin(pair.squares, sample->elevation, detail.residual_m * detail.residual_m);
    PutAt(pair.residual, sample->row, kNoValue, Scaled(detail.residual_m, 1e-3));
  }
  if (detail.has_geometry_free_step && pair.has_phases && time_s > pair.last_phases_s) {
    const double minutes = (time_s - pair.last_phases_s) / 60;
    PutAt(pair.rate, sample->row, kNoValue, Scaled(detail.geometry_free_step_m / minutes, 1e-3));
  }
  if (detail.has_geometry_free_step || detail.has_multipath) {
    pair.has_phases = true;
    pair.last_phases_s = time_s;
  }
}

void DetailCollector::AddEvents(SatelliteColumns& columns, PairColumn& pair, const PairEpochDetail& detail,
                                const Sample& sample) {
  const auto add = [&](EventKind kind) { AddEvent(columns, pair, sample, kind); };
  if (detail.ionosphere_slip == orsolva::IonosphereSlipReason::kRate) add(EventKind::kIonosphericRate);
  if (detail.ionosphere_slip == orsolva::IonosphereSlipReason::kLongGap) add(EventKind::kLongGap);
  if (detail.geometry_slip == orsolva::GeometrySlipReason::kThreshold) add(EventKind::kGeometry);
  if (detail.geometry_slip == orsolva::GeometrySlipReason::kDataGap) add(EventKind::kDataGap);
  if (detail.geometry_slip == orsolva::GeometrySlipReason::kNewEphemeris) add(EventKind::kNewEphemeris);
  if (detail.restart == orsolva::RestartReason::kJump && detail.counting) add(EventKind::kJump);
  if (detail.restart == orsolva::RestartReason::kGap) add(EventKind::kRestartAfterGap);
}

void DetailCollector::AddEvent(SatelliteColumns& columns, PairColumn& pair, const Sample& sample,
                               EventKind kind) {
  if (keep_ == Keep::kFindings && !IsHard(kind)) return;
  ++pair.events[static_cast<std::size_t>(kind)];
  if (events_ >= kMaxEvents) {
    ++events_left_out_;
    return;
  }
  ++events_;
  columns.events.push_back(
      {sample.epoch, pair.code, pair.partner, static_cast<std::int16_t>(sample.elevation / 10), kind});
}

void DetailCollector::EndBatch() {
  bool lone_epoch = !pairs_seen_;  // so far
  EpochIndex only = 0;
  bool any = false;
  for (const auto& [number, track] : tracks_) {
    for (const Sample& sample : track.samples) {
      if (any && sample.epoch != only) lone_epoch = false;
      only = sample.epoch;
      any = true;
    }
  }
  // The pairs of a lone first epoch come with the next batch.
  if (any && lone_epoch) return;
  tracks_.clear();
  pairs_seen_ = false;
  while (PointBytes() > budget_bytes_ && stride_ < (1U << 30U)) Thin();
}

std::size_t DetailCollector::PointBytes() const {
  std::size_t bytes = 0;
  for (const auto& [number, columns] : satellites_) {
    bytes += columns.epoch.size() * (kBytesPerRow + kBytesPerSignalRow * columns.signals.size());
  }
  return bytes;
}

void DetailCollector::Thin() {
  stride_ *= 2;
  for (auto& [number, columns] : satellites_) {
    std::vector<std::uint32_t> rows;
    for (std::size_t i = 0; i < columns.epoch.size(); ++i) {
      if (columns.epoch[i] % stride_ == 0) rows.push_back(static_cast<std::uint32_t>(i));
    }
    KeepRows(rows, columns.epoch);
    KeepRows(rows, columns.elevation);
    KeepRows(rows, columns.azimuth);
    for (SignalColumn& signal : columns.signals) KeepRows(rows, signal.snr);
    for (PairColumn& pair : columns.pairs) {
      KeepRows(rows, pair.residual);
      KeepRows(rows, pair.rate);
    }
  }
}

/// Doubles the least gap until half the arcs fit.
void DetailCollector::JoinArcs() {
  while (arcs_ > kMaxArcs / 2 && least_gap_ < (1U << 30U)) {
    least_gap_ *= 2;
    arcs_ = 0;
    for (auto& [number, columns] : satellites_) {
      std::vector<Arc> joined;
      for (const Arc& arc : columns.arcs) {
        if (!joined.empty() && arc.first - joined.back().last <= least_gap_) {
          joined.back().last = arc.last;
          joined.back().last_above = arc.last_above;
        } else {
          joined.push_back(arc);
        }
      }
      columns.arcs = std::move(joined);
      arcs_ += columns.arcs.size();
    }
  }
}

// The results of a signal come from the pair whose partner is the most complete, the first of equals.
void DetailCollector::Finish(const total_code_qc_result& codes) {
  for (const auto& [number, columns] : satellites_) {
    const int slot = SystemSlotOfCode(columns.satellite.sys);
    const int place = columns.satellite.prn - 1;
    if (slot < 0 || place < 0 || place >= ORSOLVA_MAX_NUMBERS) continue;
    const code_qc_block& block = codes.sat[slot][place];
    std::map<std::uint32_t, double> best;
    for (const PairColumn& pair : columns.pairs) {
      const double completeness = CompletenessIn(block, pair.partner);
      const auto known = best.find(pair.code);
      if (known != best.end() && !(completeness > known->second)) continue;
      best[pair.code] = completeness;
      partners_[Key(columns.satellite, pair.code)] = pair.partner;
    }
  }
}

const PairColumn* DetailCollector::PairOf(const SatelliteColumns& satellite, std::uint32_t code) const {
  const auto partner = partners_.find(Key(satellite.satellite, code));
  if (partner == partners_.end()) return nullptr;
  for (const PairColumn& pair : satellite.pairs) {
    if (pair.code == code && pair.partner == partner->second) return &pair;
  }
  return nullptr;
}

}  // namespace orsolva_host
