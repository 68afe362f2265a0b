#include "host/simulator/receiver_clock_bias.h"

#include <algorithm>
#include <cmath>

#include "host/simulator/portable_math.h"

namespace orsolva_host {
namespace {

constexpr std::uint64_t kClockStream = 404;
constexpr double kNanosecond_s = 1e-9;
constexpr double kMillisecond_s = 1e-3;

/// Seconds of slewing until a time.
double SlewedFor(const Fault& fault, double time_s) {
  const double since = std::max(0.0, time_s - fault.at_s);
  return fault.duration_s > 0 ? std::min(since, fault.duration_s) : since;
}

}  // namespace

ReceiverClockBias::ReceiverClockBias(const Scenario& scenario)
    : receiver_(scenario.receiver), random_(RandomStream(scenario.seed).Of(kClockStream)) {
  if (receiver_.clock_steering_s > 0) wander_s_ = receiver_.clock_bias_s;
}

void ReceiverClockBias::WanderTo(std::int64_t epoch, double time_s) {
  const double step = begun_ ? time_s - last_s_ : 0;
  begun_ = true;
  last_s_ = time_s;
  if (step <= 0) return;
  if (receiver_.clock_walk > 0) {
    wander_s_ += receiver_.clock_walk * std::sqrt(step) * random_.Normal(static_cast<std::uint64_t>(epoch));
  }
  if (receiver_.clock_steering_s > 0) {
    wander_s_ = (wander_s_ + receiver_.clock_drift * step) * Exponential(-step / receiver_.clock_steering_s);
  }
}

ClockState ReceiverClockBias::At(std::int64_t epoch, double time_s, const std::vector<ActiveFault>& faults) {
  WanderTo(epoch, time_s);
  ClockState clock;
  const bool steered = receiver_.clock_steering_s > 0;
  clock.bias_s = steered ? wander_s_ : receiver_.clock_bias_s + receiver_.clock_drift * time_s;
  if (!steered && receiver_.clock_walk > 0) clock.bias_s += wander_s_;
  clock.rate = receiver_.clock_drift - (steered ? wander_s_ / receiver_.clock_steering_s : 0);
  for (const ActiveFault& active : faults) {
    const Fault& fault = active.fault;
    if (fault.kind == FaultKind::kClockJump && epoch >= active.first)
      clock.bias_s += fault.size * kMillisecond_s;
    if (fault.kind == FaultKind::kClockSlew && epoch >= active.first) {
      clock.bias_s += fault.size * kNanosecond_s * SlewedFor(fault, time_s);
      if (active.At(epoch)) clock.rate += fault.size * kNanosecond_s;
    }
    if (fault.kind == FaultKind::kCodeClockJump && active.At(epoch)) {
      clock.code_only_s += fault.size * kMillisecond_s;
    }
  }
  if (receiver_.millisecond_jumps) {
    clock.bias_s -= kMillisecond_s * std::nearbyint(clock.bias_s / kMillisecond_s);
  }
  clock.bias_s += clock.code_only_s;
  return clock;
}

}  // namespace orsolva_host
