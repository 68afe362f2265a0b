// White noise for tests: the same numbers everywhere.
#ifndef ORSOLVA_TESTS_ANALYSIS_NORMAL_NOISE_H
#define ORSOLVA_TESTS_ANALYSIS_NORMAL_NOISE_H

#include <cmath>
#include <cstdint>
#include <random>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {

/// Standard normal values (Box and Muller 1958).
class NormalNoise {
 public:
  explicit NormalNoise(std::uint64_t seed) : bits_(seed) {}
  double operator()() {
    const double u = (static_cast<double>(bits_() >> 11) + 1) * 0x1p-53;
    const double angle = 2 * kPi * static_cast<double>(bits_() >> 11) * 0x1p-53;
    return std::sqrt(-2 * std::log(u)) * std::cos(angle);
  }

 private:
  std::mt19937_64 bits_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_TESTS_ANALYSIS_NORMAL_NOISE_H
