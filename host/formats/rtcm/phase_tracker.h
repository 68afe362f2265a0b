// Loss of lock and roll-over of phases, from one epoch of a signal to the next.
#ifndef ORSOLVA_FORMATS_RTCM_PHASE_TRACKER_H
#define ORSOLVA_FORMATS_RTCM_PHASE_TRACKER_H

#include <cstdint>
#include <unordered_map>

#include "host/formats/rtcm/received_signal.h"

namespace orsolva_host::rtcm {

/// Keeps apart three things that make a transmitted phase jump:
///
/// - Lost lock, as the receiver says: the lock time is below the one before, or below the time passed since
///   then. Sets kLossOfLock. It says nothing of whether cycles were lost; finding slips is not done here.
/// - A half-cycle ambiguity (DF420) sets kHalfCycle, and nothing else.
/// - Roll-over: phases are sent less a range, in a field that holds 262 m (legacy) or 1171 m (MSM) to
///   either side; where ionosphere has driven them apart the sender adds 1500 cycles (DF012). With lock
///   unbroken a jump of phase less range by 1500 cycles, up to 100 more or less for noise of the code, is
///   taken back: phases continue as if there had been no limit.
///
/// That MSM rolls over by 1500 cycles too could not be verified. A jump by any other amount above 100 m with
/// lock unbroken (a receiver that set its phases to its ranges again) cannot be taken back, because the
/// number of cycles is not known: it is marked with kLossOfLock and counted.
class PhaseTracker {
 public:
  /// Marks the signal of an epoch, and corrects its phase. Does nothing without a phase.
  void Take(std::int64_t time_ns, ReceivedSignal& signal);

  std::uint64_t RollOvers() const { return roll_overs_; }
  std::uint64_t UnknownJumps() const { return unknown_jumps_; }

 private:
  struct State {
    std::int64_t time_ns = 0;
    std::int64_t lock_from_ms = -1;      ///< -1: no phase so far
    double phase_less_range_cycles = 0;  ///< as transmitted; NaN without a range
    std::int64_t rolled_cycles = 0;      ///< to be added
  };

  void FollowRollOver(double phase_less_range, ReceivedSignal& signal, State& state);

  std::unordered_map<std::uint64_t, State> states_;  ///< by satellite, signal and family
  std::uint64_t roll_overs_ = 0;
  std::uint64_t unknown_jumps_ = 0;
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_PHASE_TRACKER_H
