// Observed against expected epochs of every signal, from the horizon (0 degrees) and from the cut-off up.
//
//   expected  nominal epochs at which the satellite is at or above the elevation and is healthy, from the
//             first to the last epoch of the stream, gaps included (expected_epochs.h)
//   observed  those of them with both code and phase of the signal; its strength is not required
//   ratio     observed / expected
//
// Of a satellite those signals are expected that it was observed with at least once (code and phase), and
// those that it must transmit because of them (transmitted_signals.h), if at most one in kTrackedOn
// satellites that must transmit them was not observed with them: what a receiver does not track at all, or
// only on the satellites that its firmware knows, is not missing. Either way SatelliteFigures::lacking lists
// such signals. What this cannot see: a signal never observed on a satellite whose other signals do not imply
// it. Satellites never observed at all are listed apart (sky.h) and not in these sums.
//
// Satellites, systems and the signals of systems are sums over the signals of satellites. Without orbits or a
// position all are absent.
#ifndef ORSOLVA_ANALYSIS_FIGURES_COMPLETENESS_H
#define ORSOLVA_ANALYSIS_FIGURES_COMPLETENESS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/sky.h"
#include "host/analysis/figures/span.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

class Completeness {
 public:
  static constexpr std::size_t kTrackedOn = 10;

  /// @param sky      has taken the epoch
  /// @param nominal  whether the epoch is a nominal one, as far as is known by then
  /// @param kind     of the step to it, by which Recount sorts it later
  void Add(const ObservationEpoch& epoch, const SignalRoster& roster, const Sky& sky, bool nominal,
           std::size_t kind);
  /// Counts again with the nominal epochs of each kind of step; of a kind of which not all are, a signal has
  /// the same part. What comes later adds to that.
  void Recount(const Span::Kinds& kinds);
  void FillIn(const SignalRoster& roster, const Sky& sky, AnalysisResult& result) const {
    FillIn(roster, sky, sky.AllCounts(), result);
  }
  /// The same of a part of the stream. @param expected  in that part
  void FillIn(const SignalRoster& roster, const Sky& sky, const std::vector<ExpectedEpochs::Counts>& expected,
              AnalysisResult& result) const;
  /// What was observed between two earlier states of this, with all that it knows of the whole stream.
  Completeness Between(const Completeness& earlier, const Completeness& later) const;

 private:
  using LevelCounts = std::array<Count, Visibility::kLevels>;
  struct Signal {
    bool seen = false;
    LevelCounts observed = {};  ///< at nominal epochs, as they came
  };
  /// The signals that a satellite was observed with.
  std::vector<std::vector<SignalCode>> SeenOfSatellites(const SignalRoster& roster) const;
  /// Counts of the satellites of the roster; null where there is no orbit.
  using Expected = std::vector<const ExpectedEpochs::Counts*>;
  static void FillInLacking(const SignalRoster& roster, const Expected& expected, const SharedSignal& shared,
                            const std::vector<std::vector<SignalCode>>& seen, AnalysisResult& result);

  std::vector<Signal> signals_;  ///< of the roster
  std::array<std::vector<LevelCounts>, StepKinds::kMost>
      of_kinds_;  ///< observed at all epochs by kind of step, of signals
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_COMPLETENESS_H
