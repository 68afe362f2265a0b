// The groups of figures made of epochs as they are, fed together.
#ifndef ORSOLVA_ANALYSIS_FIGURES_EPOCH_GROUPS_H
#define ORSOLVA_ANALYSIS_FIGURES_EPOCH_GROUPS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/completeness.h"
#include "host/analysis/figures/observation_counts.h"
#include "host/analysis/figures/receiver_mask.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/sky.h"
#include "host/analysis/figures/span.h"
#include "host/analysis/figures/strength.h"
#include "host/analysis/figures/windows.h"

namespace orsolva_host::analysis {

class EpochGroups {
 public:
  /// @param stated_interval_s  such as a header states; 0: none
  EpochGroups(double stated_interval_s, double cutoff_deg, double window_s = 0)
      : cutoff_deg_(cutoff_deg), span_(stated_interval_s), grid_(window_s) {}

  /// Before the first epoch. @param orbits  may hold nothing; must outlive this
  void UseOrbits(BroadcastStore& orbits) { sky_.emplace(orbits, cutoff_deg_); }
  /// @param interval_s  of the stream's first epochs
  void Begin(double interval_s) { span_.Begin(interval_s); }

  /// @param station  null where its position is not known
  void AddEpoch(const ObservationEpoch& epoch, const Station* station);

  const SignalRoster& Roster() const { return roster_; }
  const Sky& TheSky() const { return *sky_; }
  /// Borders of windows passed so far.
  std::size_t Borders() const { return marks_.size(); }

  void FillIn(AnalysisResult& result) const;

 private:
  /// The sums at the border after a window.
  struct Mark {
    std::int64_t border_ns = 0;
    Count present = 0;
    StreamSums sums;
    Completeness completeness;
    std::vector<ExpectedEpochs::Counts> expected;
  };
  Mark MarkAt(std::int64_t border_ns) const;
  std::int64_t PassBorders(std::int64_t time_ns, const Station* station, std::int64_t steps);
  void Recount();
  void FillInCounted(AnalysisResult& result) const;
  void FillInCompleteness(const Mark& from, const Mark& to, WindowFigures& window) const;
  void FillInWindows(AnalysisResult& result) const;

  double cutoff_deg_;
  SignalRoster roster_;
  Span span_;
  ObservationCounts counts_;
  std::optional<Sky> sky_;
  std::optional<Station> station_;  ///< the last one known
  Completeness completeness_;
  ReceiverMask mask_;
  Strength strength_;
  WindowGrid grid_;
  std::int64_t window_ = 0;      ///< number of the one at hand
  std::int64_t nominal_ns_ = 0;  ///< the last nominal epoch
  bool begun_ = false;
  Count present_ = 0;
  std::vector<Mark> marks_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_EPOCH_GROUPS_H
