#include "results/distinct_times.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orsolva {
namespace {

/// A total order also when a fraction is not a number.
bool Before(const Time_gbt& a, const Time_gbt& b) {
  if (a.time != b.time) return a.time < b.time;
  const bool a_is_nan = std::isnan(a.sec);
  const bool b_is_nan = std::isnan(b.sec);
  if (a_is_nan || b_is_nan) return !a_is_nan && b_is_nan;
  return a.sec < b.sec;
}

std::vector<Time_gbt> MergeSorted(const std::vector<Time_gbt>& merged, const TimeList& list) {
  std::vector<Time_gbt> sorted(list.begin(), list.end());
  if (!std::is_sorted(sorted.begin(), sorted.end(), Before)) std::sort(sorted.begin(), sorted.end(), Before);
  std::vector<Time_gbt> both(merged.size() + sorted.size());
  std::merge(merged.begin(), merged.end(), sorted.begin(), sorted.end(), both.begin(), Before);
  return both;
}

}  // namespace

std::uint64_t CountDistinctTimes(const TimeList* const* lists, int count) {
  std::vector<Time_gbt> merged;
  for (int i = 0; i < count; ++i) {
    if (lists[i] != nullptr && lists[i]->Size() > 0) merged = MergeSorted(merged, *lists[i]);
  }
  std::uint64_t distinct = 0;
  const Time_gbt* last = nullptr;
  for (const Time_gbt& t : merged) {
    if (last != nullptr && !TimeLess(*last, t)) continue;
    last = &t;
    ++distinct;
  }
  return distinct;
}

}  // namespace orsolva
