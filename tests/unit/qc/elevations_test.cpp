#include "qc/elevations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "qc/base/config.h"
#include "qc/base/epoch_time.h"
#include "tests/support/exact_sky.h"
#include "tests/support/sky.h"
#include "tests/unit/qc/literal_elevations.h"

namespace {

using namespace orsolva;
using gnssqctoolkit::Ephemeris;
using orsolva_test::LiteralElevations;

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

void ExpectSameAsLiteral(QcEleList& list, const LiteralElevations& literal, const Time_gbt& t) {
  ElevationFlags flags;
  ElevationFlags expected;
  const bool found = literal.Flags(t, expected);
  ASSERT_EQ(list.EpochElevationFlags(t, flags), found);
  EXPECT_EQ(flags.AboveCutoff, expected.AboveCutoff);
  EXPECT_EQ(flags.Above30, expected.Above30);
  EXPECT_EQ(flags.ElevationRad, expected.ElevationRad);
}

// Records at a few random reference times leave random gaps; epochs come in order and out of order, some of
// them exactly on samples.
TEST(ElevationFlags, AreThoseOfTheLiteralRuleWhateverTheGapsInTheRecords) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> any(0.0, 86400.0);
  for (int round = 0; round < 60; ++round) {
    std::vector<GpsEph_gbt> records;
    const int prn = 1 + round % 30;
    for (int k = 0; k < 1 + round % 4; ++k) records.push_back(sky::Record(prn, std::floor(any(random))));
    const Ephemeris ephemeris = sky::Store(records);
    const Time_gbt first = At(any(random) / 2.0);
    const Time_gbt last = At(any(random));
    QcEleList list = Opened(ephemeris, prn, first, last);
    const LiteralElevations literal(ephemeris, {1, prn}, sky::kStation, kMask, first, last);
    for (int k = 0; k < 40; ++k) {
      ExpectSameAsLiteral(list, literal, At(any(random)));
      const auto on_sample = static_cast<std::int64_t>(any(random) / 60.0) * 60;
      ExpectSameAsLiteral(list, literal, {first.time + on_sample, first.sec});
    }
    for (int k = 0; k < 300; ++k) ExpectSameAsLiteral(list, literal, {first.time + 30 * k, first.sec});
  }
}

TEST(ElevationFlags, AreTrueAndFalseOverADay) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  int above = 0;
  int above_30 = 0;
  int found = 0;
  QcEleList list = Opened(ephemeris, 3, At(0.0), At(86400.0));
  for (int k = 0; k <= 2880; ++k) {
    ElevationFlags flags;
    if (list.EpochElevationFlags(At(30.0 * k), flags)) ++found;
    above += flags.AboveCutoff ? 1 : 0;
    above_30 += flags.Above30 ? 1 : 0;
    EXPECT_TRUE(flags.AboveCutoff || !flags.Above30);
  }
  EXPECT_EQ(found, 2881);
  EXPECT_GT(above_30, 100);
  EXPECT_GT(above, above_30);
  EXPECT_LT(above, 2000);
}

// Close to the limits the exact elevation decides, so the flags agree with it everywhere.
TEST(ElevationFlags, AgreeWithTheExactElevation) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  for (int prn = 1; prn <= 30; ++prn) {
    QcEleList list = Opened(ephemeris, prn, At(0.0), At(86400.0));
    for (int k = 0; k < 2880; k += 7) {
      ElevationFlags flags;
      double azimuth_elevation[2];
      ASSERT_TRUE(list.EpochElevationFlags(At(30.0 * k), flags));
      ASSERT_TRUE(list.ExactDirection(At(30.0 * k), azimuth_elevation));
      EXPECT_EQ(flags.AboveCutoff, azimuth_elevation[1] > kMask);
      EXPECT_EQ(flags.Above30, azimuth_elevation[1] > kElevationSplit);
    }
  }
}

TEST(ElevationFlags, FailWithBothFlagsClearWithoutABracket) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 7200.0));
  QcEleList list = Opened(ephemeris, 1, At(100.0), At(200.0));
  ElevationFlags flags;
  flags.AboveCutoff = flags.Above30 = true;
  EXPECT_FALSE(list.EpochElevationFlags(At(99.0), flags));
  EXPECT_FALSE(flags.AboveCutoff);
  EXPECT_FALSE(flags.Above30);
  EXPECT_TRUE(list.EpochElevationFlags(At(100.0), flags));
  EXPECT_TRUE(list.EpochElevationFlags(At(220.0), flags));
  EXPECT_FALSE(list.EpochElevationFlags(At(220.5), flags));
}

TEST(ElevationFlags, ABatchOfOneEpochHasTwoSamples) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 7200.0));
  QcEleList list = Opened(ephemeris, 1, At(100.0), At(100.0));
  ElevationFlags flags;
  EXPECT_TRUE(list.EpochElevationFlags(At(100.0), flags));
  EXPECT_TRUE(list.EpochElevationFlags(At(160.0), flags));
  EXPECT_FALSE(list.EpochElevationFlags(At(161.0), flags));
}

TEST(ElevationFlags, ASatelliteWithoutRecordsHasNone) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 7200.0));
  QcEleList list = Opened(ephemeris, 31, At(0.0), At(3600.0));
  ElevationFlags flags;
  EXPECT_FALSE(list.EpochElevationFlags(At(1800.0), flags));
}

TEST(ElevationFlags, OutsideTheSamplesTheCutoffComesFromTheExactElevation) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  QcEleList list = Opened(ephemeris, 3, At(0.0), At(60.0));
  int above = 0;
  for (int k = 0; k < 1440; ++k) {
    double azimuth_elevation[2];
    ASSERT_TRUE(list.ExactDirection(At(60.0 * k), azimuth_elevation));
    EXPECT_EQ(list.AboveCutoff(At(60.0 * k)), azimuth_elevation[1] > kMask);
    above += azimuth_elevation[1] > kMask ? 1 : 0;
  }
  EXPECT_GT(above, 0);
  EXPECT_LT(above, 1440);
}

// The batch covers the first hours, so that flags come from samples there and from exact elevations behind.
TEST(ElevationFlags, StayDownForAsLongAsTheMotionOfTheSatelliteTells) {
  const Ephemeris records = orsolva_test::RecordsAround();
  int spans = 0;
  double longest = 0.0;
  for (const int system : {1, 2, 4, 8}) {
    for (int prn = 1; prn <= 40; ++prn) {
      const Time_gbt first{orsolva_test::kSkyTime - 9000, 0.0};
      QcEleList list;
      list.SetStation(records, sky::kStation, kMask);
      list.OpenSatellite({static_cast<std::uint8_t>(system), prn}, first, {first.time + 9000, 0.0});
      for (int k = 0; k < 30; ++k) {
        const Time_gbt from{first.time + 613 * k, 0.0};
        const double below = list.BelowCutoffFor(from);
        if (below == 0.0) continue;
        ++spans;
        longest = std::fmax(longest, below);
        for (const double share : {0.0, 0.1, 0.37, 0.5, 0.73, 0.9, 1.0}) {
          const auto t = gnssqctoolkit::AbsoluteTimeAdd(ToAbsolute(from), share * below);
          EXPECT_FALSE(list.AboveCutoff(FromAbsolute(t))) << system << " " << prn << " " << 613 * k;
        }
      }
    }
  }
  EXPECT_GT(spans, 300);
  EXPECT_GT(longest, 1000.0);
}

TEST(ElevationFlags, AreNotKnownToStayDownForASatelliteThatIsUpOrHasNoRecords) {
  const Ephemeris records = orsolva_test::RecordsAround();
  const Time_gbt from{orsolva_test::kSkyTime, 0.0};
  for (int prn = 1; prn <= 32; ++prn) {
    QcEleList list;
    list.SetStation(records, sky::kStation, kMask);
    list.OpenSatellite({1, prn}, from, from);
    if (list.AboveCutoff(from) || prn > 30) {
      EXPECT_EQ(list.BelowCutoffFor(from), 0.0);
    }
  }
}

TEST(ElevationFlags, ASpanOfManyCenturiesEnds) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 86400.0));
  for (const std::int64_t end : {std::int64_t{4000000000}, std::int64_t{1} << 50, INT64_MAX}) {
    QcEleList list = Opened(ephemeris, 3, {0, 0.0}, {end, 0.0});
    ElevationFlags flags;
    EXPECT_FALSE(list.EpochElevationFlags({10, 0.0}, flags));
    EXPECT_TRUE(list.EpochElevationFlags(At(40000.0), flags));
    EXPECT_FALSE(list.EpochElevationFlags({end - 1000000, 0.0}, flags));
  }
  QcEleList list = Opened(ephemeris, 3, {INT64_MIN, 1e300}, {INT64_MAX, -1e300});
  ElevationFlags flags;
  EXPECT_FALSE(list.EpochElevationFlags(At(0.0), flags));
}

TEST(Direction, ASatelliteInsideTheEarthHasNone) {
  GpsEph_gbt record = sky::Record(1, 0.0);
  record.sqrtA = 1000.0;
  const Ephemeris ephemeris = sky::Store({record});
  double azimuth_elevation[2];
  EXPECT_FALSE(StationView(ephemeris, sky::kStation).Direction({1, 1}, At(0.0), azimuth_elevation));
}

}  // namespace
