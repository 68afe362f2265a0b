#include "navigation/orbits/orbit_speed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "navigation/ephemerides/ephemeris.h"
#include "tests/support/exact_sky.h"
#include "tests/support/random_records.h"

namespace gnssqctoolkit {
namespace {

using orsolva_test::BdsRecord;
using orsolva_test::DistanceTo;
using orsolva_test::Draw;
using orsolva_test::GalileoRecord;
using orsolva_test::GlonassRecord;
using orsolva_test::GpsRecord;
using orsolva_test::kSkyTime;
using orsolva_test::Scatter;

/// Looks at pairs of times within the ages the library selects by.
void HoldsTheLimit(const Ephemeris& records, const SatelliteId& satellite, double age, std::mt19937& random) {
  constexpr double kRange = 3e8;
  BoundedMotion motion;
  ASSERT_TRUE(records.Motion(satellite, {kSkyTime, 0.0}, kRange, motion));
  EXPECT_GT(motion.Before, 0.9 * age);
  EXPECT_GT(motion.After, 0.9 * age);
  for (int k = 0; k < 20; ++k) {
    const AbsoluteTime t = AbsoluteTimeAdd({kSkyTime, 0.0}, Draw(random, -0.95 * age, 0.95 * age));
    const double dt = Draw(random, 0.1, 60.0);
    SatelliteState first, then;
    ASSERT_TRUE(records.SatellitePosition(satellite, t, kRange, first));
    ASSERT_TRUE(records.SatellitePosition(satellite, AbsoluteTimeAdd(t, dt), kRange, then));
    EXPECT_LE(DistanceTo(first.Position, then.Position), motion.SpeedLimit * dt + 1e-3);
  }
}

TEST(SpeedLimit, HoldsForEveryOrdinaryKeplerOrbit) {
  std::mt19937 random(1);
  for (int k = 0; k < 500; ++k) {
    Ephemeris records;
    GpsEph_gbt gps = GpsRecord(3);
    GalEph_gbt galileo = GalileoRecord(4);
    BdsEph_gbt bds = BdsRecord(20), geostationary = BdsRecord(2);
    Scatter(random, gps);
    Scatter(random, galileo);
    Scatter(random, bds);
    Scatter(random, geostationary);
    geostationary.orbit_type = 1;
    records.Gps().Add(gps);
    records.Galileo().Add(galileo);
    records.Bds().Add(bds);
    records.Bds().Add(geostationary);
    HoldsTheLimit(records, {kGps, 3}, 7200.0, random);
    HoldsTheLimit(records, {kGalileo, 4}, 21600.0, random);
    HoldsTheLimit(records, {kBds, 20}, 21600.0, random);
    HoldsTheLimit(records, {kBds, 2}, 21600.0, random);
  }
}

TEST(SpeedLimit, HoldsForEveryOrdinaryStateVector) {
  std::mt19937 random(2);
  for (int k = 0; k < 500; ++k) {
    GloEph_gbt record = GlonassRecord(5);
    Scatter(random, record);
    Ephemeris records;
    records.Glonass().Add(record);
    HoldsTheLimit(records, {kGlonass, 5}, 1800.0, random);
  }
}

TEST(SpeedLimit, IsOfTheOrderOfTheSpeed) {
  const GpsEph_gbt gps = GpsRecord(3);
  const double limit =
      KeplerSpeedLimit({3.986005e14, 7.2921151467e-5, false}, {kSkyTime, 0.0}, ClockOf(gps), ElementsOf(gps));
  EXPECT_GT(limit, 3000.0);
  EXPECT_LT(limit, 7000.0);
}

// One element out of the ordinary at a time.
TEST(SpeedLimit, IsInfiniteForWhatIsNoNavigationSatellite) {
  const auto limit = [](const GpsEph_gbt& r) {
    return KeplerSpeedLimit({3.986005e14, 7.2921151467e-5, false}, {kSkyTime, 0.0}, ClockOf(r),
                            ElementsOf(r));
  };
  for (const double absurd : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
    for (double GpsEph_gbt::*member :
         {&GpsEph_gbt::sqrtA, &GpsEph_gbt::e, &GpsEph_gbt::M0, &GpsEph_gbt::omg, &GpsEph_gbt::OMG0,
          &GpsEph_gbt::i0, &GpsEph_gbt::deln, &GpsEph_gbt::OMGd, &GpsEph_gbt::idot, &GpsEph_gbt::cuc,
          &GpsEph_gbt::cus, &GpsEph_gbt::cic, &GpsEph_gbt::cis, &GpsEph_gbt::crc, &GpsEph_gbt::crs,
          &GpsEph_gbt::toes, &GpsEph_gbt::af0, &GpsEph_gbt::af1, &GpsEph_gbt::af2}) {
      GpsEph_gbt record = GpsRecord(3);
      ASSERT_TRUE(std::isfinite(limit(record)));
      record.*member = absurd;
      EXPECT_TRUE(std::isinf(limit(record)));
    }
    for (double GloEph_gbt::*member : {&GloEph_gbt::x, &GloEph_gbt::vy, &GloEph_gbt::az,
                                       &GloEph_gbt::clock_bias, &GloEph_gbt::clock_rate}) {
      GloEph_gbt record = GlonassRecord(3);
      ASSERT_TRUE(std::isfinite(GlonassSpeedLimit(record)));
      record.*member = absurd;
      EXPECT_TRUE(std::isinf(GlonassSpeedLimit(record)));
    }
  }
  GpsEph_gbt old_clock = GpsRecord(3);
  old_clock.toc.time -= 100000;
  EXPECT_TRUE(std::isinf(limit(old_clock)));
}

TEST(Motion, EndsWhereAnotherRecordMayBeChosen) {
  Ephemeris records;
  for (const int hour : {-2, 0, 2}) {
    GpsEph_gbt record = GpsRecord(3);
    record.toes += 3600.0 * hour;
    record.toc.time += 3600 * hour;
    records.Gps().Add(record);
  }
  BoundedMotion motion;
  ASSERT_TRUE(records.Motion({kGps, 3}, {kSkyTime + 600, 0.0}, 3e8, motion));
  EXPECT_NEAR(motion.Before, 4200.0, 1e-3);
  EXPECT_NEAR(motion.After, 3000.0, 1e-3);
  EXPECT_FALSE(records.Motion({kGps, 4}, {kSkyTime + 600, 0.0}, 3e8, motion));
  EXPECT_FALSE(records.Motion({kGps, 3}, {kSkyTime + 80000, 0.0}, 3e8, motion));
}

}  // namespace
}  // namespace gnssqctoolkit
