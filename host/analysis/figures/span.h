// Epochs of the whole stream: interval, expected, present, usable, lost, gaps.
//
// Nominal epochs: from the first epoch on, an epoch counts as the n-th nominal one after the nominal epoch
// before, n = (time between them) / interval rounded to an integer; with n = 0 it is an additional one off
// the grid and counts for nothing. The grid thus follows time tags that wander, and an epoch that comes a
// little early or late is never missing.
//   expected = nominal epochs from the first to the last epoch of the stream, both counted
//   present  = those with at least one observation; an epoch without any is lost
//   usable   = those with at least four satellites with code and phase on two bands
//   lost     = expected - present
// A gap is one or more nominal epochs in a row that are lost. The first kMaxGaps of them are listed, further
// ones counted.
//
// The interval is that of the whole stream (interval.h), known at the end: the steps are kept as runs of
// equal steps, two per gap, and counted when a result is read. After kMaxRuns the rest is counted as it
// comes, with the interval known by then.
//
// Other groups count as epochs come, with the interval known by then. Where a run would count otherwise with
// the interval found later, they are to recount: Stretches gives the nominal epochs again, and KindCounts how
// many epochs of each kind of step count.
#ifndef ORSOLVA_ANALYSIS_FIGURES_SPAN_H
#define ORSOLVA_ANALYSIS_FIGURES_SPAN_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/interval.h"
#include "host/analysis/figures/step_kinds.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

/// Steps from one nominal epoch to the next as they come, with the interval known by then.
class NominalSteps {
 public:
  /// @return n of the epoch (above), 1 for the first one
  std::int64_t Add(std::int64_t time_ns, std::int64_t interval_ns);

 private:
  std::optional<std::int64_t> nominal_ns_;  ///< time of the last nominal epoch
};

class Span {
 public:
  static constexpr std::size_t kMaxGaps = 10'000;
  static constexpr std::size_t kMaxRuns = 4 * kMaxGaps;

  /// @param hint_s  interval that a header states; 0: none
  explicit Span(double hint_s) : interval_(hint_s) {}

  /// Takes the next epoch, later than the one before.
  void Add(const ObservationEpoch& epoch);

  /// The interval of the stream's first epochs, which counts for NominalStep until the stream shows its own.
  void Begin(double interval_s);

  /// n of the epoch taken last, with the interval known by then.
  std::int64_t NominalStep() const { return nominal_step_; }
  /// Kind of the step to the epoch taken last, below StepKinds::kMost.
  std::size_t Kind() const { return kind_; }

  /// Nominal epochs in a row, evenly spread from the stretch before, or the last one alone.
  struct Stretch {
    std::int64_t last_ns = 0;
    std::int64_t steps = 0;
    Count present = 0;  ///< evenly spread, the last one among them
  };
  /// Epochs of a kind of step and how many of them are nominal ones.
  struct KindCounts {
    Count epochs = 0;
    Count nominal = 0;
  };
  using Kinds = std::array<KindCounts, StepKinds::kMost>;

  /// Whether what was counted as it came differs from what the interval known now gives.
  bool CountsOtherwise() const;
  /// Nothing taken from now on is in the runs; that before it can be recounted this once.
  bool OverflowsNow() const { return overflows_now_; }
  bool HasOverflown() const { return overflown_; }
  /// What the runs hold, with the interval known now.
  std::vector<Stretch> Stretches() const;
  Kinds CountsOfKinds() const;

  void FillIn(SpanFigures& figures) const;

 private:
  /// Epochs in a row at equal steps, alike in being present or not.
  struct Run {
    std::int64_t step_ns = 0;   ///< of the first
    std::int64_t first_ns = 0;  ///< time of the first of these epochs
    std::int64_t last_ns = 0;
    Count epochs = 0;
    Count usable = 0;
    bool present = false;
    std::size_t kind = 0;
    Count steps = 0;    ///< nominal epochs as they were counted when they came
    Count nominal = 0;  ///< epochs that counted then
  };
  class Counting;
  template <typename Take>
  void GoThrough(const Take& take) const;
  void FindNominalStep(std::int64_t time_ns);
  bool GoesOn(const Run& run, std::int64_t step_ns, bool present) const;

  Interval interval_;
  NominalSteps steps_;
  std::int64_t first_interval_ns_ = 0;
  std::int64_t nominal_step_ = 0;
  StepKinds kinds_;
  std::size_t kind_ = 0;
  Count steps_seen_ = 0;
  std::optional<std::int64_t> last_ns_;
  std::vector<Run> runs_;
  bool overflown_ = false, overflows_now_ = false;
  Count later_nominal_ = 0, later_present_ = 0, later_usable_ = 0, later_gaps_ = 0;  ///< after kMaxRuns
  bool last_was_present_ = false;
};

/// Whether an epoch holds any value at all.
bool HasObservation(const ObservationEpoch& epoch);
/// Whether at least four satellites have code and phase on two bands.
bool IsUsable(const ObservationEpoch& epoch);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_SPAN_H
