#include "qc/expected_epochs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <utility>

#include "qc/base/config.h"
#include "qc/base/epoch_time.h"
#include "tests/support/exact_sky.h"
#include "tests/support/sky.h"

namespace {

using namespace orsolva;
using gnssqctoolkit::Ephemeris;

constexpr double kMask = 10.0 * gnssqctoolkit::kRadiansPerDegree;

Time_gbt At(double seconds_of_week) {
  const double whole = std::floor(seconds_of_week);
  return {sky::kWeekStart + static_cast<std::int64_t>(whole), seconds_of_week - whole};
}

QcEleList Opened(const Ephemeris& ephemeris, int prn, const Time_gbt& first, const Time_gbt& last) {
  QcEleList list;
  list.SetStation(ephemeris, sky::kStation, kMask);
  list.OpenSatellite({1, prn}, first, last);
  return list;
}

/// The rule as it is worded: one nominal epoch after the other by repeated addition.
std::uint64_t Literal(const Time_gbt& last, const Time_gbt& current, double interval, QcEleList& elevations) {
  std::uint64_t count = 0;
  auto t = gnssqctoolkit::AbsoluteTimeAdd(ToAbsolute(last), interval);
  for (; TimeDifference(current, FromAbsolute(t)) > interval / 2.0; t = AbsoluteTimeAdd(t, interval)) {
    if (elevations.AboveCutoff(FromAbsolute(t))) ++count;
  }
  return count;
}

// No nominal epoch of these falls exactly on the edge of the coverage, where a rounding would decide.
TEST(NominalGap, CountsAsTheLiteralWalkDoes) {
  const Ephemeris whole_day = sky::Store(sky::Records(0.0, 86400.0));
  const Ephemeris with_gap = sky::Store(sky::Records(0.0, 86400.0, 36000.0));
  const double spans[][2] = {{100.0, 400.0}, {0.0, 86000.0}, {20000.25, 61234.5}, {5000.0, 40000.0}};
  std::uint64_t total = 0;
  for (const Ephemeris* ephemeris : {&whole_day, &with_gap}) {
    for (int prn = 1; prn <= 30; prn += 6) {
      for (const auto& span : spans) {
        for (const double interval : {1.0, 30.0, 0.73, 75.0, 900.0}) {
          // One batch over the gap, and one that starts at its end.
          for (const double batch_first : {span[0], span[1]}) {
            QcEleList list = Opened(*ephemeris, prn, At(batch_first), At(span[1]));
            const std::uint64_t counted =
                NominalGap(At(span[0]), At(span[1]), interval, list).CountAboveCutoff();
            EXPECT_EQ(counted, Literal(At(span[0]), At(span[1]), interval, list))
                << "prn " << prn << " from " << span[0] << " interval " << interval;
            total += counted;
          }
        }
      }
    }
  }
  EXPECT_GT(total, 100000U);
}

// Each record restarts its satellite, so that positions jump where the selected record changes.
TEST(NominalGap, CountsAsTheLiteralWalkDoesInEverySystem) {
  const Ephemeris records = orsolva_test::RecordsAround();
  const Time_gbt first{orsolva_test::kSkyTime - 20000, 0.5}, last{orsolva_test::kSkyTime + 20000, 0.0};
  std::uint64_t total = 0;
  for (const int system : {1, 2, 4, 8}) {
    for (int prn = 1; prn <= 40; prn += 3) {
      for (const double interval : {1.0, 30.0, 170.0}) {
        for (const Time_gbt& batch_first : {first, last}) {
          QcEleList list;
          list.SetStation(records, sky::kStation, kMask);
          list.OpenSatellite({static_cast<std::uint8_t>(system), prn}, batch_first, last);
          const std::uint64_t counted = NominalGap(first, last, interval, list).CountAboveCutoff();
          EXPECT_EQ(counted, Literal(first, last, interval, list)) << system << " " << prn << " " << interval;
          total += counted;
        }
      }
    }
  }
  EXPECT_GT(total, 100000U);
}

// Of whole seconds and others, with batches that begin between two seconds, through rise and set.
TEST(NominalGap, CountsShortGapsAsTheLiteralWalkDoes) {
  const Ephemeris whole_day = sky::Store(sky::Records(0.0, 86400.0));
  const Ephemeris with_gap = sky::Store(sky::Records(0.0, 86400.0, 36000.0));
  std::uint64_t total = 0, all = 0;
  for (const Ephemeris* ephemeris : {&whole_day, &with_gap}) {
    for (int prn = 1; prn <= 30; prn += 7) {
      for (const auto& [batch, fraction] : {std::pair{0.0, 0.0}, {0.5, 0.0}, {0.25, 0.0}, {0.25, 0.5}}) {
        QcEleList list = Opened(*ephemeris, prn, At(batch), At(86400.0));
        for (double from = 10.0; from < 80000.0; from += 231.0) {
          for (const double interval : {1.0, 7.0, 30.0, 0.5}) {
            const Time_gbt last = At(from + fraction), current = At(from + 230.5);
            const std::uint64_t counted = NominalGap(last, current, interval, list).CountAboveCutoff();
            ASSERT_EQ(counted, Literal(last, current, interval, list))
                << prn << " " << from << " " << interval;
            total += counted;
            all += static_cast<std::uint64_t>(230.0 / interval);
          }
        }
      }
    }
  }
  EXPECT_GT(total, all / 10);
  EXPECT_LT(total, all - all / 10);
}

TEST(NominalGap, IsEmptyBelowOneAndAHalfIntervals) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  for (int prn = 1; prn <= 30; ++prn) {
    QcEleList list = Opened(ephemeris, prn, At(0.0), At(1000.0));
    if (!list.AboveCutoff(At(30.0)) || !list.AboveCutoff(At(75.0))) continue;
    EXPECT_EQ(NominalGap(At(0.0), At(45.0), 30.0, list).CountAboveCutoff(), 0U);
    EXPECT_EQ(NominalGap(At(0.0), At(45.5), 30.0, list).CountAboveCutoff(), 1U);
    EXPECT_EQ(NominalGap(At(45.0), At(0.0), 30.0, list).CountAboveCutoff(), 0U);
    return;
  }
  FAIL() << "no satellite in view";
}

TEST(NominalGap, CountsNothingForAnIntervalThatIsNone) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  QcEleList list = Opened(ephemeris, 1, At(0.0), At(1000.0));
  for (const double interval : {0.0, -1.0, std::nan(""), HUGE_VAL, 1e308}) {
    EXPECT_EQ(NominalGap(At(0.0), At(1000.0), interval, list).CountAboveCutoff(), 0U);
  }
}

TEST(NominalGap, TinyIntervalsAndGapsOfCenturiesEnd) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  QcEleList list = Opened(ephemeris, 3, At(0.0), At(86400.0));
  for (const double interval : {1e-300, 1e-12, 1e-9, 1e-3, 1.0, 30.0, 3600.0}) {
    for (const double end : {30.0, 86400.0, 3.2e9, 1e11}) {
      for (const Time_gbt& from : {At(0.0), At(-3.2e9), Time_gbt{0, 0.0}}) {
        NominalGap(from, At(end), interval, list).CountAboveCutoff();
      }
    }
  }
  EXPECT_EQ(NominalGap({INT64_MIN, 0.0}, {INT64_MAX, 0.0}, 1.0, list).CountAboveCutoff(), 0U);
  EXPECT_EQ(NominalGap({0, 1e30}, {100, 1e30}, 1.0, list).CountAboveCutoff(), 0U);
}

TEST(NominalGap, ACenturyCountsTheCoveredDayOnly) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  QcEleList far = Opened(ephemeris, 3, At(3.21e9), At(3.21e9));
  QcEleList near = Opened(ephemeris, 3, At(-7300.0), At(-7300.0));
  const std::uint64_t century = NominalGap(At(-3.21e9), At(3.21e9), 30.0, far).CountAboveCutoff();
  EXPECT_EQ(century, Literal(At(-30000.0), At(120000.0), 30.0, near));
  EXPECT_GT(century, 100U);
}

TEST(NominalGap, OfAMillionMillionSecondsCountsNothing) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  QcEleList list = Opened(ephemeris, 3, At(4.9e11), At(4.9e11));
  EXPECT_GT(NominalGap(At(-5.0e11), At(4.9e11), 30.0, list).CountAboveCutoff(), 100U);
  QcEleList broken = Opened(ephemeris, 3, At(5.0e11), At(5.0e11));
  EXPECT_EQ(NominalGap(At(-5.0e11), At(5.0e11), 30.0, broken).CountAboveCutoff(), 0U);
}

class Expected : public testing::Test {
 protected:
  Ephemeris ephemeris_ = sky::Store(sky::Records(0.0, 86400.0));
  QcEleList list_ = Opened(ephemeris_, Visible(), At(0.0), At(600.0));
  ExpectedEpochs expected_;

  int Visible() {
    for (int prn = 1; prn <= 30; ++prn) {
      QcEleList list = Opened(ephemeris_, prn, At(0.0), At(600.0));
      bool all = true;
      for (int t = 0; t <= 600; t += 30) all = all && list.AboveCutoff(At(t));
      if (all) return prn;
    }
    return 0;
  }
};

TEST_F(Expected, TheFirstEpochCountsItselfAlone) {
  EXPECT_EQ(expected_.Advance(1, At(300.0), 1, true, 30.0, list_), 1U);
  EXPECT_EQ(expected_.Advance(2, At(300.0), 1, false, 30.0, list_), 0U);
}

TEST_F(Expected, MissingEpochsAreExpectedToo) {
  expected_.Advance(1, At(0.0), 1, true, 30.0, list_);
  EXPECT_EQ(expected_.Advance(1, At(30.0), 2, true, 30.0, list_), 1U);
  EXPECT_EQ(expected_.Advance(1, At(150.0), 3, true, 30.0, list_), 4U);
}

TEST_F(Expected, AnEpochBelowTheCutoffIsTheLastCountedOneToo) {
  expected_.Advance(1, At(0.0), 1, true, 30.0, list_);
  EXPECT_EQ(expected_.Advance(1, At(90.0), 2, false, 30.0, list_), 2U);
  EXPECT_EQ(expected_.Advance(1, At(120.0), 3, true, 30.0, list_), 1U);
}

TEST_F(Expected, ASatelliteListedTwiceInAnEpochIsCountedOnce) {
  expected_.Advance(1, At(0.0), 1, true, 30.0, list_);
  EXPECT_EQ(expected_.Advance(1, At(0.0), 1, true, 30.0, list_), 0U);
  EXPECT_EQ(expected_.Advance(1, At(30.0), 2, true, 30.0, list_), 1U);
}

}  // namespace
