// The receiver clock: offset from codes, changes from phases.
//
//   mean_offset_s     mean of the clock that each position solution has (position.h), receiver less GPS time
//                     (of another system where GPS is absent); delays of the receiver's codes are in it
//   drift_s_per_s     sum of the phase-derived changes (receiver_clock.h) without resets / sum of their times
//   allan_deviation   sqrt(mean of (y_k+1 - y_k)^2 / 2) over pairs of successive steps, y = change / interval
//                     (Allan 1966, Proc. IEEE 54(2); Riley 2008, NIST SP 1065, eq. 8); steps that are not one
//                     interval long, hold a reset or are not known break the chain. At ten intervals: the
//                     same of means over ten steps in a row. Below a few 1e-12 at 30 s (1e-10 at 1 s) it is
//                     the noise of phases and satellite clocks. At least ten pairs.
//   resets            events clock_reset_ms; code_clock_jumps and restarts: code_clock_jump, receiver_restart
//   steered           no reset or jump, and at least 99 % of the offsets within 1 us of the first (steered,
//                     or run by an atomic standard); over at least five minutes and ten offsets
#ifndef ORSOLVA_ANALYSIS_FIGURES_RECEIVER_CLOCK_FIGURES_H
#define ORSOLVA_ANALYSIS_FIGURES_RECEIVER_CLOCK_FIGURES_H

#include <optional>

#include "host/analysis/analysis_result.h"
#include "host/analysis/slips/detector_observer.h"

namespace orsolva_host::analysis {

/// Allan variance of frequencies that come one after another.
class AllanSum {
 public:
  /// @param steps  that are averaged to one frequency
  explicit AllanSum(int steps) : steps_(steps) {}
  void Add(double frequency);
  /// What comes next does not follow what came before.
  void Break();
  /// Absent with fewer than ten pairs.
  std::optional<double> Deviation() const;

 private:
  int steps_;
  int gathered_ = 0;
  double sum_ = 0;
  std::optional<double> last_;
  double squares_ = 0;
  Count pairs_ = 0;
};

class ReceiverClockSums {
 public:
  void Start(double interval_s) { interval_s_ = interval_s; }
  /// @param clock_m  of the solution of an epoch; NaN for none
  void AddOffset(std::int64_t time_ns, double clock_m);
  void AddStep(std::int64_t time_ns, const ReceiverStep& step);
  void AddEvent(const Event& event);

  void FillIn(ReceiverClockFigures& figures) const;

 private:
  double interval_s_ = 0;
  double offset_sum_s_ = 0;
  double first_offset_s_ = 0;
  std::int64_t first_offset_ns_ = 0, last_offset_ns_ = 0;
  Count offsets_ = 0, near_offsets_ = 0;
  double change_sum_s_ = 0, time_sum_s_ = 0;
  std::optional<std::int64_t> last_ns_;
  AllanSum at_interval_{1}, at_ten_{10};
  Count steps_ = 0;
  Count resets_ = 0, code_jumps_ = 0, restarts_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_RECEIVER_CLOCK_FIGURES_H
