// Sums by minute of GPS time, and those of the last minute, hour and day.
//
// All sums are whole numbers, so that a longer window is exactly the sum of its minutes, in whatever order
// and however late they are added.
#ifndef ORSOLVA_LIVE_WINDOWS_MINUTE_STORE_H
#define ORSOLVA_LIVE_WINDOWS_MINUTE_STORE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "host/live/live_state.h"

namespace orsolva_host::live {

constexpr std::int64_t kSecond_ns = 1'000'000'000;
constexpr std::int64_t kMinute_ns = 60 * kSecond_ns;
constexpr std::int64_t kHour_ns = 60 * kMinute_ns;

/// The minute or hour of GPS time that a time lies in: GPS time began at a whole one of 1970's seconds.
constexpr std::int64_t BeginOfMinute(std::int64_t gps_ns) { return gps_ns - gps_ns % kMinute_ns; }
constexpr std::int64_t BeginOfHour(std::int64_t gps_ns) { return gps_ns - gps_ns % kHour_ns; }

class MinuteStore {
 public:
  static constexpr std::size_t kKept = 1440;

  /// Adds to the minute of a time. Minutes that have ended may be added to; what lies before the kept ones
  /// is left out. A time a day or more after the last minute empties the store first.
  void Add(std::int64_t gps_ns, const WindowSums& sums);
  /// Forgets all minutes and keeps the total: the time that follows may lie before them.
  void Restart();
  /// Minutes that end at or before a time are whole: they enter the windows.
  void CloseUntil(std::int64_t gps_ns);

  /// The whole minutes, oldest first.
  std::vector<std::shared_ptr<const Minute>> Whole() const;
  /// Of the last 1, 60 and 1440 whole minutes.
  std::array<Window, 3> Windows() const;
  /// Of the last hour alone.
  const WindowSums& Hour() const { return hour_; }
  std::size_t WholeMinutes() const { return whole_; }
  /// Everything that was ever added.
  const WindowSums& Total() const { return total_; }

 private:
  Minute& Writable(std::size_t place);
  void Grow(std::int64_t begin_gps_ns);
  void Close();

  std::deque<std::shared_ptr<Minute>> minutes_;  ///< the whole ones first, without holes
  std::size_t whole_ = 0;
  WindowSums hour_, day_, total_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_WINDOWS_MINUTE_STORE_H
