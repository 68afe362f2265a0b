#include "host/formats/rtcm/lock_time.h"

#include <algorithm>

namespace orsolva_host::rtcm {
namespace {

/// From this indicator on one step is `step` seconds and the time is step * indicator - less.
struct Segment {
  int first;
  int step_s;
  int less_s;
};

// RTCM 10403.3, table 3.4-2 (from the public descriptions of DF013).
constexpr Segment kSegments[] = {{0, 1, 0},    {24, 2, 24},    {48, 4, 120},
                                 {72, 8, 408}, {96, 16, 1176}, {120, 32, 3096}};
constexpr int kLast7Bits = 127;
constexpr int kLast4Bits = 15;
constexpr int kLast10Bits = 704;

std::int64_t From7Bits(int indicator) {
  if (indicator >= kLast7Bits) return 937'000;
  const Segment* segment = &kSegments[0];
  for (const Segment& row : kSegments) {
    if (indicator >= row.first) segment = &row;
  }
  return std::int64_t{1000} * (segment->step_s * indicator - segment->less_s);
}

// RTCM 10403.3, table 3.5-74 (DF402): 0, 32, 64, ... 524288 ms.
std::int64_t From4Bits(int indicator) { return indicator == 0 ? 0 : std::int64_t{1} << (indicator + 4); }

// RTCM 10403.3, table 3.5-75 (DF407): 64 steps of 1 ms, then 32 steps each of 2, 4, ... 2^20 ms.
std::int64_t From10Bits(int indicator) {
  if (indicator < 64) return indicator;
  const int doubling = indicator / 32 - 1;
  return (std::int64_t{indicator} - 32 * doubling) << doubling;
}

}  // namespace

LockTime LockTimeOf7Bits(int indicator) {
  if (indicator >= kLast7Bits) return {From7Bits(kLast7Bits)};
  return {From7Bits(indicator), From7Bits(indicator + 1)};
}

LockTime LockTimeOf4Bits(int indicator) {
  if (indicator >= kLast4Bits) return {From4Bits(kLast4Bits)};
  return {From4Bits(indicator), From4Bits(indicator + 1)};
}

LockTime LockTimeOf10Bits(int indicator) {
  if (indicator >= kLast10Bits) return {From10Bits(kLast10Bits)};
  return {From10Bits(indicator), From10Bits(indicator + 1)};
}

int Indicator4Bits(std::int64_t milliseconds) {
  int indicator = 0;
  while (indicator < kLast4Bits && From4Bits(indicator + 1) <= milliseconds) ++indicator;
  return indicator;
}

int Indicator10Bits(std::int64_t milliseconds) {
  if (milliseconds < 64) return static_cast<int>(milliseconds);
  int doubling = 1;
  while (milliseconds >> doubling >= 64) ++doubling;
  const std::int64_t steps = milliseconds >> doubling;  // 32 to 63
  return static_cast<int>(std::min<std::int64_t>(steps + 32 * doubling, kLast10Bits));
}

}  // namespace orsolva_host::rtcm
