// Figures of windows of time: one detector and one set of sums run through the whole stream; what they had at
// every border is noted, and a window has the differences. No slip is lost at a border, and counts of windows
// add up to those of the whole.
//
//   borders       multiples of the length since 1980-01-06 00:00:00 GPST, where GPS time begins: days, hours
//                 and GPS weeks. An epoch at a border begins the window after it.
//   windows       from that of the first epoch to that of the last, those inside gaps included; the last one
//                 of kMaxWindows takes everything later
//   epochs        present: nominal epochs with an observation; missing: lost nominal epochs (span.h) at their
//                 nominal times; expected: both
//   completeness  completeness.h with the expected and observed epochs of the window. What is expected of a
//                 satellite is what it was observed with in the whole stream: a signal that is lost for a
//                 window is missing there.
//   strength      mean of the values of the window
//   multipath     RMS about the moving mean, of the values of the window; near a border those before it are
//                 held against what came before it (moving_scatter.h), so that squares are exact to the part
//                 of an arc within 315 s of a border
//   slips         at the end of their step
//   interruptions where the signal returns
//
// Figures that are no sums have no difference and are absent: percentiles, arcs, noise, ROTI.
#ifndef ORSOLVA_ANALYSIS_FIGURES_WINDOWS_H
#define ORSOLVA_ANALYSIS_FIGURES_WINDOWS_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/analysis/analysis_result.h"

namespace orsolva_host::analysis {

/// Where windows begin.
class WindowGrid {
 public:
  static constexpr std::size_t kMaxWindows = 1000;

  /// @param length_s  0: there are no windows
  explicit WindowGrid(double length_s);

  bool IsOn() const { return length_ns_ > 0; }
  std::int64_t NumberOf(std::int64_t time_ns) const;
  std::int64_t BeginOf(std::int64_t number) const;

 private:
  std::int64_t length_ns_;
};

/// Sums over the stream up to a time: what of a result is a sum, by system, signal and satellite.
struct StreamSums {
  std::vector<SystemFigures> systems;
  std::vector<SignalFigures> signals;
  std::vector<std::pair<SatelliteId, Count>> satellites;  ///< observed epochs

  StreamSums() = default;
  /// @param result  with the figures of groups that are sums
  explicit StreamSums(AnalysisResult&& result);
};

/// Adds to a window what later sums have more than earlier ones, but for completeness.
void AddDifference(const StreamSums& earlier, const StreamSums& later, WindowFigures& window);

/// Adds to the sums at a border what a step before it, decided after it, brought: its slips and
/// interruptions.
void AddLate(const StreamSums& before, const StreamSums& after, StreamSums& at_border);

/// Expected, present and missing epochs of the windows from those present and the gaps of the whole.
void FillInEpochs(const SpanFigures& whole, std::vector<WindowFigures>& windows);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_WINDOWS_H
