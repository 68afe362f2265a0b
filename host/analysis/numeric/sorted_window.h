// The last N values in sorted order, for running medians and quantiles, with insertion instead of sorting.
#ifndef ORSOLVA_ANALYSIS_NUMERIC_SORTED_WINDOW_H
#define ORSOLVA_ANALYSIS_NUMERIC_SORTED_WINDOW_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace orsolva_host::analysis {

/// A few values in ascending order, followed by infinities. Where a value goes is as good as random: branches
/// that ask for it would be guessed wrong time and again, which costs more than running over all places.
template <int N>
class SortedList {
 public:
  SortedList() { Clear(); }

  /// Values that are not finite are left out.
  void Insert(double value) {
    if (!std::isfinite(value) || count_ == N) return;
    int i = count_++;
    for (; i > 0 && values_[i - 1] > value; --i) values_[i] = values_[i - 1];
    values_[i] = value;
  }
  /// Puts a value in the place of another that is in the list. Neither may be NaN.
  void Replace(double old, double value) {
    if constexpr (N > kFew) return Shift(PlaceOf(old), PlaceOf(value), value);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    std::array<double, N + 1> left;  // after the first place the values without the old one
    left[0] = -kInfinity;
    for (int i = 0; i + 1 < N; ++i) left[i + 1] = values_[i] < old ? values_[i] : values_[i + 1];
    left[N] = values_[N - 1] < old ? values_[N - 1] : kInfinity;
    for (int i = 0; i < N; ++i) {
      const double least = value < left[i + 1] ? value : left[i + 1];
      values_[i] = left[i] < least ? least : left[i];
    }
  }
  void Remove(double value) {
    Replace(value, std::numeric_limits<double>::infinity());
    --count_;
  }
  void Clear() {
    values_.fill(std::numeric_limits<double>::infinity());
    count_ = 0;
  }
  int Count() const { return count_; }
  double operator[](int i) const { return values_[i]; }

 private:
  static constexpr int kFew = 32;

  /// @param from, to  how many values are less than the one that goes, and the one that comes
  void Shift(int from, int to, double value) {
    double* const v = values_.data();
    if (to > from) {
      std::copy(v + from + 1, v + to, v + from);
      v[to - 1] = value;
    } else {
      std::copy_backward(v + to, v + from, v + from + 1);
      v[to] = value;
    }
  }
  /// How many values are less, which is where the first of its like is.
  int PlaceOf(double value) const {
    static_assert(N <= kFew || (N & (N - 1)) == 0);
    int place = 0;
    for (int half = N / 2; half > 0; half /= 2) {
      place += half & -static_cast<int>(values_[place + half - 1] < value);
    }
    return place + static_cast<int>(values_[place] < value);
  }

  std::array<double, N> values_;
  int count_ = 0;
};

/// The finite ones of the last N values pushed.
template <int N>
class SortedWindow {
 public:
  SortedWindow() { Clear(); }

  void Clear() {
    history_.fill(std::numeric_limits<double>::quiet_NaN());
    sorted_.Clear();
    next_ = 0;
  }
  void Push(double value) {
    const double oldest = history_[next_];
    const bool leaves = std::isfinite(oldest), comes = std::isfinite(value);
    history_[next_] = comes ? value : std::numeric_limits<double>::quiet_NaN();
    if (leaves && comes) {
      sorted_.Replace(oldest, value);
    } else if (leaves) {
      sorted_.Remove(oldest);
    } else {
      sorted_.Insert(value);
    }
    next_ = next_ + 1 == N ? 0 : next_ + 1;
  }
  /// Takes a value out; its place in the window stays. @param ago  pushes since that of the value, below N
  void Forget(int ago) {
    double& value = history_[(next_ - 1 - ago + N) % N];
    if (std::isfinite(value)) sorted_.Remove(value);
    value = std::numeric_limits<double>::quiet_NaN();
  }
  const SortedList<N>& Sorted() const { return sorted_; }
  int Count() const { return sorted_.Count(); }

 private:
  std::array<double, N> history_;
  SortedList<N> sorted_;
  int next_ = 0;
};

/// Median of a sorted list, the mean of the middle two where their number is even; NaN where it is empty.
template <int N>
double Median(const SortedList<N>& list) {
  if (list.Count() == 0) return std::numeric_limits<double>::quiet_NaN();
  const int half = list.Count() / 2;
  return list.Count() % 2 == 1 ? list[half] : list[half - 1] * 0.5 + list[half] * 0.5;
}

/// Two sorted lists as one: its quantile with linear interpolation between ranks (0 the least, 1 the greatest
/// value). The work grows with the shorter list, which shall be b.
/// @return NaN when both are empty
template <int N, int M>
double MergedQuantile(const SortedList<N>& a, const SortedList<M>& b, double part) {
  const int count = a.Count() + b.Count();
  if (count == 0) return std::numeric_limits<double>::quiet_NaN();
  const double rank = (count - 1) * part;
  const int low = static_cast<int>(rank);
  // The `low` least values are the first i of a and the first j of b.
  int j = std::max(0, low - a.Count());
  while (j < b.Count() && low > j && b[j] < a[low - j - 1]) ++j;
  int i = low - j;
  const auto take = [&] { return j == b.Count() || (i < a.Count() && a[i] <= b[j]) ? a[i++] : b[j++]; };
  const double lower = take();
  const double fraction = rank - low;
  return fraction > 0 && low + 1 < count ? lower * (1 - fraction) + take() * fraction : lower;
}

template <int N, int M>
double MergedMedian(const SortedList<N>& a, const SortedList<M>& b) {
  return MergedQuantile(a, b, 0.5);
}

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_NUMERIC_SORTED_WINDOW_H
