// How fast a stream may come.
#ifndef ORSOLVA_LIVE_SOURCES_BYTE_BUDGET_H
#define ORSOLVA_LIVE_SOURCES_BYTE_BUDGET_H

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace orsolva_host::live {

/// 256 KiB per second, and 4 MiB at once after a pause. A station at 50 Hz sends 90 kB per second; what sends
/// more, garbage as a rule, waits in its connection, so that it costs the other stations no processor time.
class ByteBudget {
 public:
  using Clock = std::chrono::steady_clock;

  void Spend(std::size_t bytes, Clock::time_point now) {
    owed_ = Owed(now) + static_cast<double>(bytes);
    last_ = now;
  }

  /// How long to wait before more is read, at most half a second: then alarms are looked after, and it is
  /// asked again.
  std::chrono::milliseconds Wait(Clock::time_point now) const {
    const double wait_s = std::clamp((Owed(now) - kAtOnce) / kPerSecond, 0.0, kLongest_s);
    return std::chrono::milliseconds(static_cast<long>(wait_s * 1000));
  }

 private:
  static constexpr double kPerSecond = 256 * 1024;
  static constexpr double kAtOnce = 16 * kPerSecond;
  static constexpr double kLongest_s = 0.5;

  double Owed(Clock::time_point now) const {
    return std::max(0.0, owed_ - std::chrono::duration<double>(now - last_).count() * kPerSecond);
  }

  double owed_ = 0;
  Clock::time_point last_ = Clock::now();
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_BYTE_BUDGET_H
