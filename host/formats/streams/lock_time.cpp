#include "host/formats/streams/lock_time.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kMillisecond_ns = kNanosecondsPerSecond / 1000;

std::uint32_t KeyOf(SatelliteId satellite, SignalCode code) {
  std::uint32_t key = 0;
  for (const int part : {int{satellite.system}, int{satellite.number}, int{code.band}, int{code.attribute}}) {
    key = key << 8 | static_cast<std::uint32_t>(part & 0xFF);
  }
  return key;
}

}  // namespace

bool LockLost(std::int64_t before_ms, LockTime now, std::int64_t passed_ms) {
  return now.below_ms <= before_ms || now.below_ms <= passed_ms;
}

bool LockTracker::Lost(std::int64_t time_ns, SatelliteId satellite, SignalCode code, LockTime lock,
                       bool half_cycle_subtracted) {
  const auto [place, is_new] = states_.try_emplace(KeyOf(satellite, code));
  State& state = place->second;
  const bool lost =
      !is_new && (LockLost(state.lock_from_ms, lock, (time_ns - state.time_ns) / kMillisecond_ns) ||
                  half_cycle_subtracted != state.half_cycle_subtracted);
  state = {time_ns, lock.from_ms, half_cycle_subtracted};
  return lost;
}

}  // namespace orsolva_host
