#include "host/analysis/numeric/sorted_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace orsolva_host::analysis {
namespace {

double Value(int i) { return std::fmod(i * 7919.0, 101.0) - 50 + (i % 5 == 0 ? 0.25 : 0); }

/// Quantile by sorting everything.
double Expected(std::vector<double> all, double part) {
  std::sort(all.begin(), all.end());
  const double rank = (static_cast<double>(all.size()) - 1) * part;
  const auto low = static_cast<std::size_t>(rank);
  const double fraction = rank - static_cast<double>(low);
  if (fraction == 0 || low + 1 == all.size()) return all[low];
  return all[low] * (1 - fraction) + all[low + 1] * fraction;
}

TEST(SortedWindow, QuantilesEqualThoseOfSortingTheLastValues) {
  SortedWindow<20> window;
  SortedList<4> near;
  for (int i = 0; i < 4; ++i) near.Insert(Value(1000 + i));
  std::vector<double> history;
  for (int i = 0; i < 300; ++i) {
    window.Push(Value(i));
    history.push_back(Value(i));
    std::vector<double> all(history.end() - std::min<std::ptrdiff_t>(20, i + 1), history.end());
    for (int k = 0; k < 4; ++k) all.push_back(Value(1000 + k));
    for (const double part : {0.0, 0.5, 0.8, 1.0}) {
      ASSERT_EQ(MergedQuantile(window.Sorted(), near, part), Expected(all, part)) << i << ' ' << part;
    }
  }
}

/// Pushes values with ties, ends and gaps, and holds every place against sorting.
template <int N>
void ExpectSorted() {
  SortedWindow<N> window;
  std::vector<double> last;
  for (int i = 0; i < 40 * N; ++i) {
    double value = i % 3 == 0 ? std::fmod(i * 7919.0, 11.0) : Value(i * i);
    if (i % 17 == 0) value = i % 2 == 0 ? 1e9 + i : -1e9 - i;  // beyond all others
    if (i % 29 == 0) value = std::nan("");
    window.Push(value);
    last.push_back(value);
    if (last.size() > N) last.erase(last.begin());
    std::vector<double> sorted;
    std::copy_if(last.begin(), last.end(), std::back_inserter(sorted), [](double v) { return v == v; });
    std::sort(sorted.begin(), sorted.end());
    ASSERT_EQ(window.Count(), static_cast<int>(sorted.size()));
    for (int k = 0; k < window.Count(); ++k)
      ASSERT_EQ(window.Sorted()[k], sorted[static_cast<std::size_t>(k)]) << N << ' ' << i << ' ' << k;
  }
}

TEST(SortedWindow, EveryPlaceEqualsThatOfSortingInShortAndLongWindows) {
  ExpectSorted<9>();
  ExpectSorted<18>();
  ExpectSorted<64>();
}

TEST(SortedWindow, ValuesThatAreNotFiniteTakeAPlaceAndCountForNothing) {
  SortedWindow<3> window;
  window.Push(1);
  window.Push(2);
  window.Push(std::nan(""));
  EXPECT_EQ(window.Count(), 2);
  window.Push(std::nan(""));
  EXPECT_EQ(window.Count(), 1);
  EXPECT_EQ(Median(window.Sorted()), 2);
}

TEST(SortedWindow, QuantilesOfListsOfAllLengthsWithTiesEqualThoseOfSorting) {
  for (int first = 0; first <= 6; ++first) {
    for (int second = first == 0 ? 1 : 0; second <= 5; ++second) {
      for (int variant = 0; variant < 20; ++variant) {
        SortedList<6> a;
        SortedList<5> b;
        std::vector<double> all;
        for (int i = 0; i < first + second; ++i) {
          all.push_back(std::fmod((i + 3) * (variant + 5) * 7919.0, 7.0));
          if (i < first) {
            a.Insert(all.back());
          } else {
            b.Insert(all.back());
          }
        }
        for (const double part : {0.0, 0.3, 0.5, 0.8, 1.0})
          ASSERT_EQ(MergedQuantile(a, b, part), Expected(all, part)) << first << ' ' << second << ' ' << part;
      }
    }
  }
}

TEST(SortedWindow, MedianIsTheMiddleOrTheMeanOfTheMiddleTwo) {
  SortedWindow<4> window;
  EXPECT_TRUE(std::isnan(Median(window.Sorted())));
  for (const double value : {5.0, 1.0, 4.0}) window.Push(value);
  EXPECT_EQ(Median(window.Sorted()), 4);
  window.Push(3);
  EXPECT_EQ(Median(window.Sorted()), 3.5);
}

TEST(SortedWindow, WithoutValuesThereIsNoQuantile) {
  EXPECT_TRUE(std::isnan(MergedMedian(SortedWindow<3>().Sorted(), SortedList<2>())));
}

}  // namespace
}  // namespace orsolva_host::analysis
