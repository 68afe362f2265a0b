// Slant electron content of a disturbed ionosphere: a rate that changes at random, and the content it adds up
// to.
//
// The rate is the sum of two Gauss-Markov processes with memories of 300 s (five sixths of the deviation,
// squares added) and 60 s. The content forgets with a memory of an hour, so that it stays bounded. The
// absolute rate of a Gaussian process has its 95th percentile at 2.9 times its median: 1.7 and 4.9 TECU/min
// in a strong storm.
#ifndef ORSOLVA_SIMULATOR_TEC_RATE_H
#define ORSOLVA_SIMULATOR_TEC_RATE_H

#include <cstdint>

#include "host/simulator/random_streams.h"

namespace orsolva_host {

class TecRate {
 public:
  explicit TecRate(const RandomStream& random) : random_(random) {}

  /// Goes on to a time in steps of at most a second.
  /// @param median_tecu_min  median of the absolute rate from the last time on; 0: the content only decays
  void Advance(double time_s, double median_tecu_min);
  double Content() const { return content_; }  ///< TECU

 private:
  void Step(double step_s, double sigma_tecu_s);

  RandomStream random_;
  std::uint64_t index_ = 0;
  bool begun_ = false;
  double time_s_ = 0;
  double slow_ = 0, fast_ = 0;  ///< with standard deviation 1
  double content_ = 0;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_TEC_RATE_H
