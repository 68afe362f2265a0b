#include "qc/base/epoch_time.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace orsolva {
namespace {

constexpr int kDetectionEpochs = 600;   // epochs looked at for the interval
constexpr double kSmallestStep = 1e-6;  // s, anything below is a repeated epoch
constexpr int kTimeGrowthStep = 100;

/// The value that occurs most often in an ascending range, the first on a tie; 0.0 in an empty one.
double MostFrequent(const double* first, const double* last) {
  double best = 0.0;
  std::ptrdiff_t best_count = 0;
  while (first != last) {
    const double* next = std::upper_bound(first, last, *first);
    if (next - first > best_count) {
      best = *first;
      best_count = next - first;
    }
    first = next;
  }
  return best;
}

}  // namespace

bool TimeGreater(const Time_gbt& a, const Time_gbt& b) {
  return a.time > b.time || (a.time == b.time && a.sec > b.sec);
}

bool TimeGreaterOrEqual(const Time_gbt& a, const Time_gbt& b) { return TimeGreater(a, b) || TimeEqual(a, b); }

bool TimeLess(const Time_gbt& a, const Time_gbt& b) { return !TimeGreaterOrEqual(a, b); }

TimeList& TimeList::operator=(const TimeList& other) {
  if (this != &other) CopyFrom(other);
  return *this;
}

bool TimeList::Append(const Time_gbt& t) {
  const Time_gbt copy = t;  // the time may lie in this very array
  if (count_ >= capacity_) {
    if (capacity_ > std::numeric_limits<int>::max() - kTimeGrowthStep) return false;
    if (!items_.Reserve(capacity_ + kTimeGrowthStep, count_)) return false;
    capacity_ += kTimeGrowthStep;
  }
  items_.Data()[count_++] = copy;
  return true;
}

Time_gbt TimeList::Get(int i) const { return i >= 0 && i < count_ ? items_.Data()[i] : Time_gbt{0, 0.0}; }

void TimeList::Clear() {
  items_.Release();
  count_ = 0;
  capacity_ = 0;
}

void TimeList::CopyFrom(const TimeList& other) {
  Clear();
  for (const Time_gbt& t : other) Push(t);
}

bool DetectInterval(const ObsEpoch_QC_gbt* epochs, std::int32_t epoch_num, double& interval) {
  if (epochs == nullptr || epoch_num < 2) return false;
  const int looked_at = std::min<std::int32_t>(epoch_num, kDetectionEpochs);
  std::array<double, kDetectionEpochs> steps;
  int count = 0;
  for (int i = 1; i < looked_at; ++i) {
    const double d = std::fabs(TimeDifference(epochs[i].time, epochs[i - 1].time));
    if (std::isfinite(d) && !(d < kSmallestStep)) steps[count++] = d;
  }
  std::sort(steps.begin(), steps.begin() + count);
  const double most_frequent = MostFrequent(steps.data(), steps.data() + count);
  if (!(most_frequent > kSmallestStep)) return false;
  interval = most_frequent;
  return true;
}

}  // namespace orsolva
