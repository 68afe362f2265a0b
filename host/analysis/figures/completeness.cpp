#include "host/analysis/figures/completeness.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/figures/result_rows.h"
#include "host/analysis/figures/transmitted_signals.h"

namespace orsolva_host::analysis {
namespace {

void AddTo(CompletenessFigures& sum, Count expected, Count observed) {
  sum.expected = sum.expected.value_or(0) + expected;
  sum.observed = sum.observed.value_or(0) + observed;
  if (*sum.expected > 0) sum.ratio = static_cast<double>(*sum.observed) / static_cast<double>(*sum.expected);
}

/// To the signal, and to the sums over its satellite, its system, and the signal in its system.
void AddToRows(AnalysisResult& result, SatelliteId id, SignalCode code,
               const std::array<Count, Visibility::kLevels>& expected,
               const std::array<Count, Visibility::kLevels>& observed) {
  SignalFigures& signal = SatelliteSignalRow(result, id, code);
  SignalFigures& shared = SystemSignalRow(result, id.system, code);
  SatelliteFigures& satellite = SatelliteRow(result, id);
  SystemFigures& system = SystemRow(result, id.system);
  for (CompletenessFigures* sum : {&signal.horizon, &shared.horizon, &satellite.horizon, &system.horizon})
    AddTo(*sum, expected[Visibility::kHorizon], observed[Visibility::kHorizon]);
  for (CompletenessFigures* sum : {&signal.cutoff, &shared.cutoff, &satellite.cutoff, &system.cutoff})
    AddTo(*sum, expected[Visibility::kCutoff], observed[Visibility::kCutoff]);
}

bool Contains(const std::vector<SignalCode>& codes, SignalCode code) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

}  // namespace

void Completeness::Add(const ObservationEpoch& epoch, const SignalRoster& roster, const Sky& sky,
                       bool nominal, std::size_t kind) {
  signals_.resize(roster.Signals().size());
  std::vector<LevelCounts>& of_kind = of_kinds_[kind];
  of_kind.resize(signals_.size());
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) {
    const SatelliteObservation& satellite = epoch.satellites[i];
    const bool above_horizon = sky.IsHealthyAbove(i, Visibility::kHorizon);
    const bool above_cutoff = sky.IsHealthyAbove(i, Visibility::kCutoff);
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      const SignalObservation& o = epoch.signals[satellite.first_signal + k];
      if (std::isnan(o.pseudorange_m) || std::isnan(o.phase_cycles)) continue;
      const std::size_t listed = roster.SignalAt(satellite.first_signal + k);
      of_kind[listed][Visibility::kHorizon] += above_horizon;
      of_kind[listed][Visibility::kCutoff] += above_cutoff;
      if (!nominal) continue;
      Signal& signal = signals_[listed];
      signal.seen = true;
      signal.observed[Visibility::kHorizon] += above_horizon;
      signal.observed[Visibility::kCutoff] += above_cutoff;
    }
  }
}

void Completeness::Recount(const Span::Kinds& kinds) {
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    for (std::size_t level = 0; level < Visibility::kLevels; ++level) {
      double observed = 0;
      for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
        if (kinds[kind].epochs == 0 || i >= of_kinds_[kind].size()) continue;
        const double part =
            static_cast<double>(kinds[kind].nominal) / static_cast<double>(kinds[kind].epochs);
        observed += static_cast<double>(of_kinds_[kind][i][level]) * part;
      }
      signals_[i].observed[level] = static_cast<Count>(std::llround(observed));
    }
  }
}

std::vector<std::vector<SignalCode>> Completeness::SeenOfSatellites(const SignalRoster& roster) const {
  std::vector<std::vector<SignalCode>> seen(roster.Satellites().size());
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    if (signals_[i].seen) seen[roster.Signals()[i].satellite].push_back(roster.Signals()[i].code);
  }
  return seen;
}

Completeness Completeness::Between(const Completeness& earlier, const Completeness& later) const {
  Completeness part = *this;
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    for (std::size_t level = 0; level < Visibility::kLevels; ++level) {
      const Count from = i < earlier.signals_.size() ? earlier.signals_[i].observed[level] : 0;
      const Count to = i < later.signals_.size() ? later.signals_[i].observed[level] : 0;
      part.signals_[i].observed[level] = to > from ? to - from : 0;
    }
  }
  return part;
}

void Completeness::FillIn(const SignalRoster& roster, const Sky& sky,
                          const std::vector<ExpectedEpochs::Counts>& counts, AnalysisResult& result) const {
  Expected expected_of;
  for (std::size_t s = 0; s < roster.Satellites().size(); ++s) expected_of.push_back(sky.CountsOf(s, counts));
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    const ListedSignal& signal = roster.Signals()[i];
    const ExpectedEpochs::Counts* expected = expected_of[signal.satellite];
    if (!signals_[i].seen || expected == nullptr) continue;
    LevelCounts observed = signals_[i].observed;
    // Recounting rounds the two apart from each other.
    for (std::size_t k = 0; k < observed.size(); ++k)
      observed[k] = std::min(observed[k], expected->healthy[k]);
    AddToRows(result, roster.Satellites()[signal.satellite], signal.code, expected->healthy, observed);
  }
  const std::vector<std::vector<SignalCode>> seen = SeenOfSatellites(roster);
  for (const SharedSignal& shared : roster.SharedSignals())
    FillInLacking(roster, expected_of, shared, seen, result);
}

/// Satellites that must transmit a signal and were never observed with it.
void Completeness::FillInLacking(const SignalRoster& roster, const Expected& expected_of,
                                 const SharedSignal& shared, const std::vector<std::vector<SignalCode>>& seen,
                                 AnalysisResult& result) {
  std::vector<std::size_t> lacking;
  std::size_t transmitting = 0;
  for (std::size_t s = 0; s < seen.size(); ++s) {
    const SatelliteId id = roster.Satellites()[s];
    if (id.system != shared.system || !MustTransmit(id.system, seen[s], shared.code)) continue;
    ++transmitting;
    if (!Contains(seen[s], shared.code)) lacking.push_back(s);
  }
  if (lacking.size() == transmitting) return;
  for (const std::size_t s : lacking) {
    const SatelliteId id = roster.Satellites()[s];
    SatelliteRow(result, id).lacking.push_back(shared.code);
    const ExpectedEpochs::Counts* expected = expected_of[s];
    if (expected != nullptr && kTrackedOn * lacking.size() <= transmitting)
      AddToRows(result, id, shared.code, expected->healthy, {});
  }
}

}  // namespace orsolva_host::analysis
