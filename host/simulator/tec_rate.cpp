#include "host/simulator/tec_rate.h"

#include <algorithm>
#include <cmath>

#include "host/simulator/portable_math.h"

namespace orsolva_host {
namespace {

constexpr double kSlowMemory_s = 300, kFastMemory_s = 60;
constexpr double kSlowPart = 0.9805806756909202,
                 kFastPart = 0.19611613513818404;  // 5 : 1, squares add up to 1
constexpr double kContentMemory_s = 3600;
constexpr double kMedianOfNormal = 0.6744897501960817;  // of the absolute value, in standard deviations
constexpr double kLongestStep_s = 1;
/// Where a satellite was not looked at for longer, the process begins again.
constexpr double kLongestPause_s = 600;

/// The decay of the content takes a part of the rate away: variance of rate less content over memory, for a
/// content driven by the rate, is memory_c / (memory_c + memory) of that of the rate.
double Kept(double memory_s) { return kContentMemory_s / (kContentMemory_s + memory_s); }

double NextOf(double value, double memory_s, double step_s, double normal) {
  const double keep = Exponential(-step_s / memory_s);
  return keep * value + std::sqrt(1 - keep * keep) * normal;
}

}  // namespace

void TecRate::Advance(double time_s, double median_tecu_min) {
  if (!begun_ || time_s - time_s_ > kLongestPause_s) {
    begun_ = true;
    time_s_ = time_s;
    slow_ = random_.Normal(index_++);
    fast_ = random_.Normal(index_++);
    return;
  }
  const double loss =
      kSlowPart * kSlowPart * Kept(kSlowMemory_s) + kFastPart * kFastPart * Kept(kFastMemory_s);
  const double sigma = median_tecu_min / 60 / kMedianOfNormal / std::sqrt(loss);
  while (time_s_ < time_s) {
    const double step = std::min(time_s - time_s_, kLongestStep_s);
    Step(step, sigma);
    time_s_ = time_s - time_s_ > kLongestStep_s ? time_s_ + step : time_s;
  }
}

void TecRate::Step(double step_s, double sigma_tecu_s) {
  slow_ = NextOf(slow_, kSlowMemory_s, step_s, random_.Normal(index_++));
  fast_ = NextOf(fast_, kFastMemory_s, step_s, random_.Normal(index_++));
  const double rate = sigma_tecu_s * (kSlowPart * slow_ + kFastPart * fast_);
  content_ = content_ * Exponential(-step_s / kContentMemory_s) + rate * step_s;
}

}  // namespace orsolva_host
