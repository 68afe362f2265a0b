#include "host/formats/rtcm/phase_tracker.h"

#include <cmath>

#include "host/observation/physical_constants.h"

namespace orsolva_host::rtcm {
namespace {

constexpr double kRollOverNoise_cycles = 100;
constexpr double kLargestChange_m = 100;  // of phase less range between epochs without a jump
constexpr std::int64_t kMillisecond_ns = kNanosecondsPerSecond / 1000;

std::uint64_t KeyOf(const ReceivedSignal& signal) {
  std::uint64_t key = 0;
  for (const int part :
       {int{signal.satellite.system}, int{signal.satellite.number}, int{signal.observation.code.band},
        int{signal.observation.code.attribute}, static_cast<int>(signal.family)}) {
    key = key << 8 | static_cast<std::uint64_t>(part & 0xFF);
  }
  return key;
}

}  // namespace

void PhaseTracker::Take(std::int64_t time_ns, ReceivedSignal& signal) {
  SignalObservation& o = signal.observation;
  if (std::isnan(o.phase_cycles)) return;
  State& state = states_[KeyOf(signal)];
  const bool known = state.lock_from_ms >= 0;
  const double phase_less_range = o.phase_cycles - o.pseudorange_m * (signal.carrier_hz / kLightSpeed_m_s);
  const std::int64_t passed_ms = (time_ns - state.time_ns) / kMillisecond_ns;
  if (known && LockLost(state.lock_from_ms, signal.lock, passed_ms)) {
    o.loss_of_lock |= kLossOfLock;
    state.rolled_cycles = 0;
  } else if (known) {
    FollowRollOver(phase_less_range, signal, state);
  }
  o.phase_cycles += static_cast<double>(state.rolled_cycles);
  state.time_ns = time_ns;
  state.lock_from_ms = signal.lock.from_ms;
  state.phase_less_range_cycles = phase_less_range;
}

void PhaseTracker::FollowRollOver(double phase_less_range, ReceivedSignal& signal, State& state) {
  const double jump = phase_less_range - state.phase_less_range_cycles;
  if (std::isnan(jump)) return;
  const double rolls = std::round(jump / kRollOver_cycles);
  const bool rolled = rolls != 0 && std::fabs(jump - rolls * kRollOver_cycles) <= kRollOverNoise_cycles;
  if (rolled) {
    state.rolled_cycles -= static_cast<std::int64_t>(rolls * kRollOver_cycles);
    ++roll_overs_;
  } else if (std::fabs(jump) * kLightSpeed_m_s > kLargestChange_m * signal.carrier_hz) {
    signal.observation.loss_of_lock |= kLossOfLock;
    state.rolled_cycles = 0;
    ++unknown_jumps_;
  }
}

}  // namespace orsolva_host::rtcm
