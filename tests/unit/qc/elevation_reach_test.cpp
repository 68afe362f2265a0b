#include "qc/elevation_reach.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "qc/elevations.h"
#include "qc/expected_epochs.h"
#include "tests/support/exact_sky.h"
#include "tests/support/random_records.h"
#include "tests/unit/qc/literal_elevations.h"

namespace {

using namespace orsolva;
using gnssqctoolkit::SatelliteId;
using orsolva_test::Draw;
using orsolva_test::kSkyTime;
using orsolva_test::LiteralElevations;

enum class Kind { kNominal, kScattered, kDamaged };

void MakeStationary(std::mt19937& random, BdsEph_gbt& record) {
  record.sqrtA = 6493.4;  // 42,164 km
  record.i0 = record.prn == 2 ? Draw(random, 0.0, 0.03) : Draw(random, 0.5, 1.0);
  record.e = Draw(random, 0.0, 0.01);
}

template <class Record>
void Change(std::mt19937& random, Kind kind, Record& record) {
  if (kind != Kind::kNominal) orsolva_test::Scatter(random, record);
  if (kind == Kind::kDamaged) orsolva_test::Damage(random, record);
}

/// Satellites in medium, inclined and geostationary orbits, each with a few records some hours apart at most,
/// and a station anywhere.
struct RandomSky {
  explicit RandomSky(unsigned seed) : Random(seed) {
    const auto kind = static_cast<Kind>(seed % 3);
    for (int k = 0; k < 1 + static_cast<int>(seed % 4); ++k) {
      Add(kind, Records.Gps(), orsolva_test::GpsRecord(3));
      Add(kind, Records.Galileo(), orsolva_test::GalileoRecord(4));
      for (const int prn : {2, 8, 20}) Add(kind, Records.Bds(), orsolva_test::BdsRecord(prn));
      GloEph_gbt glonass = orsolva_test::GlonassRecord(5);
      glonass.toe.time += 900 * (static_cast<int>(Random() % 25) - 12);
      Change(Random, kind, glonass);
      Records.Glonass().Add(glonass);
    }
    const double latitude = Draw(Random, -1.57, 1.57), longitude = Draw(Random, -3.14, 3.14);
    Station[0] = 6.37e6 * std::cos(latitude) * std::cos(longitude);
    Station[1] = 6.37e6 * std::cos(latitude) * std::sin(longitude);
    Station[2] = 6.35e6 * std::sin(latitude);
    constexpr double kMasks[] = {1e-4, 0.1, 0.17453292519943295, 0.5, 1.0};
    Mask = kMasks[Random() % 5];
  }

  template <class Store, class Record>
  void Add(Kind kind, Store& store, Record record) {
    const int shift = 600 * (static_cast<int>(Random() % 73) - 36);
    record.toc.time += shift;
    record.toes += shift;
    if constexpr (std::is_same_v<Record, BdsEph_gbt>) {
      if (record.prn != 20) MakeStationary(Random, record);
    }
    Change(Random, kind, record);
    store.Add(record);
  }

  std::mt19937 Random;
  gnssqctoolkit::Ephemeris Records;
  double Station[3];
  double Mask;
  const std::vector<SatelliteId> Satellites = {{1, 3}, {8, 4}, {4, 2}, {4, 8}, {4, 20}, {2, 5}};
};

Time_gbt After(const Time_gbt& t, double seconds) {
  return FromAbsolute(gnssqctoolkit::AbsoluteTimeAdd(ToAbsolute(t), seconds));
}

BoundedElevation Ordinary() {
  BoundedElevation computed;
  computed.Time = {kSkyTime, 0.0};
  computed.ElevationRad = 1.0;
  computed.DistanceM = 2.2e7;
  computed.SpeedLimit = 5500.0;
  computed.BeforeS = computed.AfterS = 3600.0;
  return computed;
}

TEST(ElevationReach, ElevationsAreOnTheSideItDecides) {
  std::uint64_t decided = 0, asked = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    RandomSky sky(seed);
    const StationView view(sky.Records, sky.Station);
    for (const SatelliteId& satellite : sky.Satellites) {
      for (int k = 0; k < 10; ++k) {
        BoundedElevation computed;
        if (!view.Bounded(satellite, After({kSkyTime, 0.0}, Draw(sky.Random, -2e4, 2e4)), computed)) continue;
        ElevationReach reach;
        reach.Take(computed);
        for (int i = 0; i < 10; ++i) {
          const Time_gbt t = After(computed.Time, std::pow(Draw(sky.Random, -10.0, 10.0), 3));
          const double limit = Draw(sky.Random, -1.5, 1.5), clear = Draw(sky.Random, 0.0, 0.1);
          const double around = Draw(sky.Random, 0.0, 100.0);
          const CutoffSide side = reach.SideAt(t, limit, clear, around);
          ++asked;
          if (side == CutoffSide::kUnknown) continue;
          ++decided;
          for (const double off : {-around, 0.0, around}) {
            double elevation = 0.0;
            ASSERT_TRUE(view.Elevation(satellite, After(t, off), elevation)) << seed;
            EXPECT_GT(side == CutoffSide::kAbove ? elevation - limit : limit - elevation, clear) << seed;
          }
        }
      }
    }
  }
  EXPECT_GT(decided, asked / 5);
  EXPECT_LT(decided, asked * 4 / 5);
}

TEST(ElevationReach, DecidesTheSameForAsLongAsItSays) {
  ElevationReach reach;
  reach.Take(Ordinary());
  for (const double since : {-900.0, -61.0, 0.0, 61.0, 900.0}) {
    const Time_gbt t = After({kSkyTime, 0.0}, since);
    const double same_for = reach.SameSideFor(t, 0.3, 0.01, 61.0);
    EXPECT_GT(same_for, 600.0);
    EXPECT_EQ(reach.SideAt(After(t, same_for), 0.3, 0.01, 61.0), CutoffSide::kAbove);
    EXPECT_EQ(reach.SideAt(After(t, same_for + 0.1), 0.3, 0.01, 61.0), CutoffSide::kUnknown);
  }
  EXPECT_EQ(reach.SameSideFor({kSkyTime, 0.0}, 0.99, 0.02, 0.0), 0.0);
}

TEST(ElevationReach, DecidesNothingWhereTheElevationIsNotBounded) {
  const Time_gbt t{kSkyTime, 0.0};
  ElevationReach reach;
  EXPECT_EQ(reach.SideAt(t, 0.3, 0.0, 0.0), CutoffSide::kUnknown);
  reach.Take(Ordinary());
  EXPECT_EQ(reach.SideAt(t, 0.3, 0.0, 0.0), CutoffSide::kAbove);
  EXPECT_EQ(reach.SideAt(t, 1.5, 0.0, 0.0), CutoffSide::kBelow);
  EXPECT_EQ(reach.SideAt(t, 1.0, 0.0, 0.0), CutoffSide::kUnknown);
  EXPECT_EQ(reach.SideAt({t.time + 3595, 0.0}, 0.3, 0.0, 0.0), CutoffSide::kUnknown);
  EXPECT_EQ(reach.SideAt({t.time - 1000000, 1e6}, 0.3, 0.0, 0.0), CutoffSide::kUnknown);
  EXPECT_EQ(reach.SideAt(t, std::nan(""), 0.0, 0.0), CutoffSide::kUnknown);
  reach.Clear();
  EXPECT_EQ(reach.SideAt(t, 0.3, 0.0, 0.0), CutoffSide::kUnknown);
  for (double BoundedElevation::*member :
       {&BoundedElevation::ElevationRad, &BoundedElevation::DistanceM, &BoundedElevation::SpeedLimit,
        &BoundedElevation::BeforeS, &BoundedElevation::AfterS}) {
    BoundedElevation computed = Ordinary();
    computed.*member = std::numeric_limits<double>::quiet_NaN();
    reach.Take(computed);
    EXPECT_EQ(reach.SideAt(t, 0.3, 0.0, 0.0), CutoffSide::kUnknown);
  }
}

/// Epochs in order with holes between them, now and then one out of order.
std::vector<Time_gbt> EpochsWithHoles(std::mt19937& random, const Time_gbt& first) {
  std::vector<Time_gbt> epochs;
  const bool whole = random() % 3 != 0;
  double at = Draw(random, -100.0, 100.0);
  for (int k = 0; k < 150; ++k) {
    const double step = random() % 40 == 0 ? Draw(random, -3000.0, 9000.0) : Draw(random, 1.0, 250.0);
    at += whole ? std::floor(step) : step;
    if (whole) at = std::floor(at);
    epochs.push_back(After(first, at));
  }
  return epochs;
}

TEST(SkippedElevations, LeaveEveryFlagAsItIs) {
  std::uint64_t found = 0, above = 0, all = 0;
  for (unsigned seed = 0; seed < 120; ++seed) {
    RandomSky sky(seed);
    for (const SatelliteId& satellite : sky.Satellites) {
      const Time_gbt first = After({kSkyTime, 0.0}, std::floor(Draw(sky.Random, -20000.0, 0.0)));
      const std::vector<Time_gbt> epochs = EpochsWithHoles(sky.Random, first);
      const Time_gbt last = After(first, Draw(sky.Random, 0.0, 25000.0));
      const LiteralElevations literal(sky.Records, satellite, sky.Station, sky.Mask, first, last);
      for (const bool flags_only : {false, true}) {
        QcEleList list;
        list.SetStation(sky.Records, sky.Station, sky.Mask);
        list.AskForFlagsOnly(flags_only);
        list.OpenSatellite(satellite, first, last);
        for (const Time_gbt& t : epochs) {
          ElevationFlags expected, flags;
          const bool exists = literal.Flags(t, expected);
          ASSERT_EQ(list.EpochElevationFlags(t, flags), exists) << seed;
          ASSERT_EQ(flags.AboveCutoff, expected.AboveCutoff) << seed;
          ASSERT_EQ(flags.Above30, expected.Above30) << seed;
          ASSERT_EQ(list.AboveCutoff(t), literal.AboveCutoff(t)) << seed;
          if (exists && flags_only) {
            EXPECT_TRUE(std::isnan(flags.ElevationRad));
          } else if (exists) {
            EXPECT_EQ(flags.ElevationRad, expected.ElevationRad);
          }
          found += exists ? 1 : 0;
          above += flags.AboveCutoff ? 1 : 0;
          ++all;
        }
      }
    }
  }
  EXPECT_GT(found, all / 5);
  EXPECT_GT(above, found / 20);
  EXPECT_LT(above, found);
}

std::uint64_t Walked(const Time_gbt& last, const Time_gbt& current, double interval,
                     const LiteralElevations& literal) {
  std::uint64_t count = 0;
  auto t = gnssqctoolkit::AbsoluteTimeAdd(ToAbsolute(last), interval);
  for (; TimeDifference(current, FromAbsolute(t)) > interval / 2.0; t = AbsoluteTimeAdd(t, interval)) {
    if (literal.AboveCutoff(FromAbsolute(t))) ++count;
  }
  return count;
}

// Gaps of up to 256 intervals: in longer ones orbits that are none may cross the cut-off twice between
// checks.
TEST(SkippedElevations, LeaveEveryExpectedEpochAsItIs) {
  std::uint64_t total = 0, all = 0;
  for (unsigned seed = 0; seed < 60; ++seed) {
    RandomSky sky(seed);
    for (const SatelliteId& satellite : sky.Satellites) {
      const Time_gbt first = After({kSkyTime, 0.0}, std::floor(Draw(sky.Random, -20000.0, 0.0)));
      const std::vector<Time_gbt> epochs = EpochsWithHoles(sky.Random, first);
      const Time_gbt last = After(first, Draw(sky.Random, 0.0, 25000.0));
      const LiteralElevations literal(sky.Records, satellite, sky.Station, sky.Mask, first, last);
      for (const bool flags_only : {false, true}) {
        QcEleList list;
        list.SetStation(sky.Records, sky.Station, sky.Mask);
        list.AskForFlagsOnly(flags_only);
        list.OpenSatellite(satellite, first, last);
        const double interval = std::vector<double>{1.0, 5.0, 30.0, 0.97}[sky.Random() % 4];
        for (std::size_t k = 1; k < epochs.size(); ++k) {
          ElevationFlags flags;
          list.EpochElevationFlags(epochs[k], flags);
          const double gap_s = TimeDifference(epochs[k], epochs[k - 1]);
          if (!(gap_s <= NominalGap::kLiteralSteps * interval)) continue;
          const std::uint64_t walked = Walked(epochs[k - 1], epochs[k], interval, literal);
          ASSERT_EQ(NominalGap(epochs[k - 1], epochs[k], interval, list).CountAboveCutoff(), walked)
              << seed << " " << interval;
          total += walked;
          all += static_cast<std::uint64_t>(std::fmax(0.0, gap_s) / interval);
        }
      }
    }
  }
  EXPECT_GT(total, all / 50);
  EXPECT_LT(total, all / 2);
}

}  // namespace
