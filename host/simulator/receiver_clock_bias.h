// The receiver clock: drift, random walk, steering, slews, jumps of codes and phases together and of codes
// alone.
#ifndef ORSOLVA_SIMULATOR_RECEIVER_CLOCK_BIAS_H
#define ORSOLVA_SIMULATOR_RECEIVER_CLOCK_BIAS_H

#include <cstdint>
#include <vector>

#include "host/simulator/active_faults.h"
#include "host/simulator/random_streams.h"
#include "host/simulator/scenario.h"

namespace orsolva_host {

struct ClockState {
  double bias_s = 0;       ///< of the codes: receiver time less true time
  double code_only_s = 0;  ///< part of it that the phases do not have
  double rate = 0;         ///< s/s, without jumps and random walk
};

class ReceiverClockBias {
 public:
  explicit ReceiverClockBias(const Scenario& scenario);

  /// Goes on to an epoch; epochs in order.
  /// @param time_s  of its tag, after the start of the span
  ClockState At(std::int64_t epoch, double time_s, const std::vector<ActiveFault>& faults);

 private:
  void WanderTo(std::int64_t epoch, double time_s);

  ReceiverModel receiver_;
  RandomStream random_;
  double wander_s_ = 0;  ///< random walk; with steering everything that is steered away
  double last_s_ = 0;
  bool begun_ = false;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_RECEIVER_CLOCK_BIAS_H
