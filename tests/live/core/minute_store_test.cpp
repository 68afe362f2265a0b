#include "host/live/windows/minute_store.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace orsolva_host::live;

constexpr std::int64_t kBegin_ns = 1'600'000'020'000'000'000 / kHour_ns * kHour_ns;

WindowSums Some(std::mt19937& random) {
  const auto number = [&random] { return static_cast<Count>(random() % 1000); };
  WindowSums sums;
  sums.epochs_expected = number();
  sums.epochs_present = number();
  for (const char* signal : {"1C", "2W"}) {
    SignalSums& s = sums.signals[{'G', signal}];
    s.expected = number() + 1;
    s.observed = number();
    s.snr_values = number();
    s.snr_milli_db = static_cast<std::int64_t>(number());
    s.multipath_square_um2 = number();
    s.slips = number();
  }
  return sums;
}

TEST(MinuteStore, WindowsAreTheSumsOfTheirMinutesExactly) {
  std::mt19937 random(1);
  MinuteStore store;
  for (int minute = 0; minute < 1700; ++minute) {
    const std::int64_t begin_ns = kBegin_ns + minute * kMinute_ns;
    store.Add(begin_ns + 1, Some(random));
    if (minute > 3) store.Add(begin_ns - 3 * kMinute_ns, Some(random));  // late, to a whole minute
    store.CloseUntil(begin_ns);
    if (minute % 97 != 0 || minute < 2) continue;
    const auto minutes = store.Whole();
    const auto windows = store.Windows();
    const std::size_t lengths[] = {1, 60, 1440};
    for (std::size_t w = 0; w < 3; ++w) {
      WindowSums sum;
      for (std::size_t i = minutes.size() - std::min(minutes.size(), lengths[w]); i < minutes.size(); ++i)
        sum += minutes[i]->sums;
      EXPECT_EQ(windows[w].sums, sum) << minute << " " << lengths[w];
    }
  }
  EXPECT_EQ(store.Whole().size(), MinuteStore::kKept);
}

TEST(MinuteStore, APublishedMinuteDoesNotChange) {
  MinuteStore store;
  WindowSums one;
  one.epochs_present = 1;
  store.Add(kBegin_ns, one);
  store.CloseUntil(kBegin_ns + kMinute_ns);
  const auto published = store.Whole();
  store.Add(kBegin_ns, one);
  EXPECT_EQ(published.front()->sums.epochs_present, 1U);
  EXPECT_EQ(store.Whole().front()->sums.epochs_present, 2U);
}

TEST(MinuteStore, MinutesWithoutDataAreThere) {
  MinuteStore store;
  store.Add(kBegin_ns, {});
  store.Add(kBegin_ns + 5 * kMinute_ns, {});
  store.CloseUntil(kBegin_ns + 6 * kMinute_ns);
  EXPECT_EQ(store.Whole().size(), 6U);
}

TEST(MinuteStore, ADayWithoutDataEmptiesTheWindowsAndKeepsTheTotal) {
  MinuteStore store;
  WindowSums one;
  one.epochs_present = 1;
  store.Add(kBegin_ns, one);
  store.Add(kBegin_ns + 1441 * kMinute_ns, one);
  store.CloseUntil(kBegin_ns + 1442 * kMinute_ns);
  EXPECT_EQ(store.Windows()[2].sums.epochs_present, 1U);
  EXPECT_EQ(store.Total().epochs_present, 2U);
}

TEST(SignalSums, FiguresWithoutDataAreAbsent) {
  const SignalSums none;
  EXPECT_FALSE(none.Completeness());
  EXPECT_FALSE(none.SnrDbhz());
  EXPECT_FALSE(none.MultipathM());
}

TEST(SignalSums, MultipathIsTheRootOfTheMeanSquare) {
  SignalSums sums;
  sums.multipath_values = 100;
  sums.multipath_square_um2 = 100 * 90'000;  // 0.09 m^2 each
  EXPECT_DOUBLE_EQ(*sums.MultipathM(), 0.3);
}

}  // namespace
