#include "host/analysis/figures/slip_sums.h"

#include <cmath>
#include <map>
#include <utility>

#include "host/analysis/figures/result_rows.h"

namespace orsolva_host::analysis {
namespace {

bool IsHalf(double cycles) { return cycles != std::nearbyint(cycles); }

/// Adds a slip of a kind; @param half  whether some size is no whole number
void AddSlip(EventKind kind, bool half, bool sure, SlipCounts& counts) {
  if (kind == EventKind::kJump) {
    ++counts.unknown_size;
  } else if (half) {
    ++counts.half_cycles;
  } else {
    ++(sure ? counts.sure : counts.unsure);
  }
}

SlipFigures FiguresOf(const SlipCounts& counts) {
  SlipFigures figures;
  if (!counts.Any()) return figures;
  figures.sure = counts.sure;
  figures.unsure = counts.unsure;
  figures.half_cycles = counts.half_cycles;
  figures.unknown_size = counts.unknown_size;
  figures.tested_steps = counts.tested;
  figures.untested_steps = counts.untested;
  figures.weakly_tested_steps = counts.weak;
  figures.loss_of_lock_flags = counts.flags;
  figures.loss_of_lock_with_slip = counts.flags_with_slip;
  const Count slips = counts.sure + counts.unsure + counts.half_cycles + counts.unknown_size;
  const auto tested = static_cast<double>(counts.tested);
  if (slips == 0 && counts.tested > 0) figures.observations_without_slip = counts.tested;
  if (counts.tested < SlipSums::kMinTestedSteps) return figures;
  figures.slips_per_1000 = 1000 * static_cast<double>(slips) / tested;
  if (slips > 0) figures.observations_per_slip = tested / static_cast<double>(slips);
  return figures;
}

template <typename Row>
void Fill(Row& row, const std::array<SlipCounts, 2>& counts) {
  row.slips = FiguresOf(counts[1]);
  row.slips_below_cutoff = FiguresOf(counts[0]);
}

void AddBoth(const std::array<SlipCounts, 2>& counts, std::array<SlipCounts, 2>& sum) {
  for (std::size_t up = 0; up < 2; ++up) sum[up].Add(counts[up]);
}

}  // namespace

void SlipCounts::Add(const SlipCounts& other) {
  sure += other.sure;
  unsure += other.unsure;
  half_cycles += other.half_cycles;
  unknown_size += other.unknown_size;
  tested += other.tested;
  untested += other.untested;
  weak += other.weak;
  flags += other.flags;
  flags_with_slip += other.flags_with_slip;
}

void SlipSums::AddEpoch(const ObservationEpoch& epoch) {
  for (const SatelliteObservation& satellite : epoch.satellites) {
    if (IsTestable(satellite.id.system, interval_s_)) continue;
    Satellite& state = satellites_[satellite.id];
    bool any = false;
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      const SignalObservation& o = epoch.signals[satellite.first_signal + k];
      if (std::isnan(o.phase_cycles)) continue;
      ++state.SignalOf(o.code).counts[1].untested;
      any = true;
    }
    state.counts[1].untested += any;
  }
}

/// Adds the steps of a run, in which every phase was tested.
void SlipSums::Satellite::EndRun() {
  quiet.running = false;
  if (quiet.steps == 0) return;
  for (SignalMask left = quiet.present; left != 0;)
    signals[quiet.number[TakeFirst(left)]].counts[quiet.up].tested += quiet.steps;
  counts[quiet.up].tested += quiet.steps;
}

void SlipSums::AddStep(const StepOutcome& outcome) {
  Satellite& satellite = satellites_[outcome.track->satellite];
  if (satellite.quiet.Extends(outcome)) return;
  satellite.EndRun();
  if (outcome.rearranged) Arrange(satellite.signals, outcome);
  const SignalMask slipped = outcome.flagged & (outcome.repaired | outcome.broken);
  const SignalMask steps = outcome.Present() & ~outcome.begins;
  for (SignalMask left = steps; left != 0;) {
    const std::size_t j = TakeFirst(left);
    SlipCounts& counts = satellite.signals[outcome.number[j]].counts[outcome.up];
    ++(Has(outcome.tested, j) ? counts.tested : counts.untested);
    counts.weak += Has(outcome.weak, j);
    counts.flags += Has(outcome.flagged, j);
    counts.flags_with_slip += Has(slipped, j);
  }
  satellite.quiet.Begin(outcome);
  if (steps == 0) return;
  SlipCounts& counts = satellite.counts[outcome.up];
  ++(outcome.tested != 0 ? counts.tested : counts.untested);
  counts.weak += outcome.weak != 0;
  counts.flags += (outcome.flagged & steps) != 0;
  counts.flags_with_slip += slipped != 0;
}

SlipSums::Signal& SlipSums::Satellite::SignalOf(SignalCode code) {
  for (Signal& signal : signals) {
    if (signal.code == code) return signal;
  }
  signals.emplace_back();
  signals.back().code = code;
  return signals.back();
}

void SlipSums::AddEvent(const Event& event) {
  const bool up = IsUp(event.elevation_deg, cutoff_deg_);
  if (event.kind == EventKind::kSatelliteClock && up) ++satellites_[event.satellite].clock_events;
  if (event.kind != EventKind::kSlip && event.kind != EventKind::kHalfCycle && event.kind != EventKind::kJump)
    return;
  Satellite& satellite = satellites_[event.satellite];
  bool half = false;
  for (std::size_t k = 0; k < event.signals.size(); ++k) {
    const bool half_here = k < event.sizes.size() && IsHalf(event.sizes[k]);
    half = half || half_here;
    AddSlip(event.kind, half_here, event.sure, satellite.SignalOf(event.signals[k]).counts[up]);
  }
  AddSlip(event.kind, half, event.sure, satellite.counts[up]);
}

void SlipSums::FillIn(AnalysisResult& result) const {
  std::map<char, std::array<SlipCounts, 2>> systems;
  std::map<std::pair<char, std::string>, std::array<SlipCounts, 2>> signals;
  satellites_.ForEach([&](SatelliteId id, const Satellite& live) {
    Satellite satellite = live;
    satellite.EndRun();
    SatelliteFigures& row = SatelliteRow(result, id);
    Fill(row, satellite.counts);
    if (satellite.counts[1].tested > 0) row.satellite_clock_events = satellite.clock_events;
    AddBoth(satellite.counts, systems[id.system]);
    for (const Signal& signal : satellite.signals) {
      Fill(SatelliteSignalRow(result, id, signal.code), signal.counts);
      AddBoth(signal.counts, signals[{id.system, NameOf(signal.code)}]);
    }
  });
  for (const auto& [system, counts] : systems) Fill(SystemRow(result, system), counts);
  for (const auto& [key, counts] : signals)
    Fill(SystemSignalRow(result, key.first, {key.second[0], key.second[1]}), counts);
}

}  // namespace orsolva_host::analysis
