// How long to wait before the next attempt to connect.
#ifndef ORSOLVA_LIVE_SOURCES_BACK_OFF_H
#define ORSOLVA_LIVE_SOURCES_BACK_OFF_H

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>

namespace orsolva_host::live {

/// 1, 2, 4 s and so on to 60 s, each less up to half of it by chance, so that stations that lost a caster
/// together do not come back together. After data have come it begins again. What the other side refuses is
/// tried every 60 s at once.
class BackOff {
 public:
  explicit BackOff(std::uint64_t seed) : random_(seed) {}

  void Succeeded() { seconds_ = 1; }
  std::chrono::milliseconds Next(bool refused) {
    if (refused) seconds_ = kMost_s;
    const double wait_s = seconds_ * std::uniform_real_distribution<double>(0.5, 1)(random_);
    seconds_ = std::min(2 * seconds_, kMost_s);
    return std::chrono::milliseconds(static_cast<std::int64_t>(wait_s * 1000));
  }

 private:
  static constexpr double kMost_s = 60;
  double seconds_ = 1;
  std::mt19937_64 random_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_BACK_OFF_H
