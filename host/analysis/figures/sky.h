// What is in the sky over the antenna while the stream goes on, observed or not.
//
//   highest         of a satellite's elevations at epochs with a code or phase
//   has_record      a broadcast record or precise orbit was there for at least one epoch at which it was
//                   observed
//   never observed  satellites with an orbit that were above the cut-off in at least one nominal epoch and of
//                   which the stream holds nothing; unhealthy ones are marked. Systems that the stream holds
//                   nothing of are left out.
#ifndef ORSOLVA_ANALYSIS_FIGURES_SKY_H
#define ORSOLVA_ANALYSIS_FIGURES_SKY_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/expected_epochs.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/visibility.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

class Sky {
 public:
  /// @param orbits  must outlive this
  Sky(BroadcastStore& orbits, double cutoff_deg) : orbits_(&orbits), visibility_(orbits, cutoff_deg) {}

  /// @param roster   has taken the epoch
  /// @param station  null where its position is not known
  /// @param steps    nominal epochs since the one before, see ExpectedEpochs
  void Add(const ObservationEpoch& epoch, const SignalRoster& roster, const Station* station,
           std::int64_t steps);
  /// The nominal epochs between two of the stream that are lost, the last of them at a time.
  void AddLost(std::int64_t last_ns, const Station* station, std::int64_t count) {
    if (station != nullptr) expected_.Add(last_ns, count, *station, visibility_);
  }
  /// Puts the expected epochs of the same time at another interval in place.
  void Replace(std::vector<ExpectedEpochs::Counts> counts) { expected_.Replace(std::move(counts)); }
  /// To go through the time again with.
  Visibility TheVisibility() const { return visibility_; }

  /// Of a satellite of the epoch taken last; NaN where it is not known.
  double ElevationDegrees(std::size_t place) const { return elevations_deg_[place]; }
  /// Whether a satellite of the epoch taken last was counted as expected in it.
  bool IsExpected(std::size_t place, Visibility::Level level) const {
    return IsSatelliteExpected(satellite_at_[place], level);
  }
  /// Whether it was healthy and above, in an epoch off the grid, too.
  bool IsHealthyAbove(std::size_t place, Visibility::Level level) const;
  /// Whether a satellite of the roster was counted as expected, which the epoch need not hold.
  bool IsSatelliteExpected(std::size_t satellite, Visibility::Level level) const;

  /// Counts of a satellite of the roster; null where there is no orbit of it.
  const ExpectedEpochs::Counts* CountsOf(std::size_t satellite) const {
    return CountsOf(satellite, AllCounts());
  }
  /// Of the satellite among all counts of another time.
  const ExpectedEpochs::Counts* CountsOf(std::size_t satellite,
                                         const std::vector<ExpectedEpochs::Counts>& all) const;
  const std::vector<ExpectedEpochs::Counts>& AllCounts() const { return expected_.Satellites(); }

  void FillIn(const SignalRoster& roster, AnalysisResult& result) const;

 private:
  struct Satellite {
    SatelliteRecords* records = nullptr;
    std::optional<std::size_t> number;  ///< in the visibility
    bool observed = false;
    bool covered = false;
    double highest_deg = kAbsent;
  };
  void FillInNeverObserved(const SignalRoster& roster, AnalysisResult& result) const;

  BroadcastStore* orbits_;
  Visibility visibility_;
  ExpectedEpochs expected_;
  std::vector<Satellite> satellites_;  ///< of the roster
  std::vector<std::size_t> satellite_at_;
  std::vector<double> elevations_deg_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_SKY_H
