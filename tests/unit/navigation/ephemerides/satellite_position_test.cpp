#include "navigation/ephemerides/ephemeris_store.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "navigation/orbits/orbits.h"
#include "tests/support/exact_sky.h"
#include "tests/support/state_law.h"
#include "tests/support/trace_recorder.h"
#include "tests/unit/navigation/gps_at.h"
#include "toolkit/constants.h"

namespace gnssqctoolkit {
namespace {

using orsolva_test::BdsRecord;
using orsolva_test::GalileoRecord;
using orsolva_test::GlonassRecord;

TEST(SatellitePosition, FailsWithoutAPseudorangeBeforeAnyRecordIsRead) {
  orsolva_test::TraceRecorder trace;
  SystemEphemerisGPS gps;
  SatelliteState state;
  state.Health = 5;
  state.Clock = 7.0;
  for (double range : {0.0, 0.9e-12, -0.9e-12, kNaN, std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(gps.SatellitePosition({kGps, 3}, At(0.0), range, state), 0);
    EXPECT_EQ(state.Health, -1);
    EXPECT_EQ(state.Clock, 0.0);
  }
  EXPECT_TRUE(trace.Texts.empty());
  EXPECT_EQ(gps.SatellitePosition({kGps, 3}, At(0.0), 2.2e7, state), 0);
  EXPECT_EQ(trace.Texts.size(), 1u);
}

TEST(SatellitePosition, IsOfTheTransmissionTimeBySatelliteClock) {
  SystemEphemerisGPS gps;
  GpsEph_gbt r = GpsAt(3, 0.0);
  r.af0 = 0.5;  // half a second: 1.9 km of orbit
  gps.Add(r);
  SatelliteState state;
  const double range = 2.2e7;
  ASSERT_EQ(gps.SatellitePosition({kGps, 3}, At(100.0), range, state), 1);
  AbsoluteTime t = AbsoluteTimeAdd(At(100.0), -range / 299792458.0);
  t = AbsoluteTimeAdd(t, -BroadcastClock(t, At(0.0), r.af0, r.af1, r.af2));
  double position[3], clock;
  ASSERT_EQ(KeplerOrbit({3.986005e14, 7.2921151467e-5, false}, t, At(0.0), ClockOf(r), ElementsOf(r),
                        position, clock),
            1);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(state.Position[i], position[i]);
  EXPECT_EQ(state.Clock, clock);
}

TEST(SatellitePosition, TakesTheConstantsOfItsSystem) {
  SystemEphemerisGALILEO galileo;
  galileo.Add(GalileoRecord(3));
  SystemEphemerisBDS bds;
  BdsEph_gbt r = BdsRecord(20);
  r.af0 = 0.0, r.af1 = 0.0;
  bds.Add(r);
  SatelliteState state;
  double position[3], clock;
  GalEph_gbt g = GalileoRecord(3);
  const double range = 2.4e7;
  ASSERT_EQ(galileo.SatellitePosition({kGalileo, 3}, At(100.0), range, state), 1);
  AbsoluteTime t = AbsoluteTimeAdd(At(100.0), -range / 299792458.0);
  t = AbsoluteTimeAdd(t, -BroadcastClock(t, At(0.0), g.af0, g.af1, g.af2));
  KeplerOrbit({3.986004418e14, 7.2921151467e-5, false}, t, At(0.0), ClockOf(g), ElementsOf(g), position,
              clock);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(state.Position[i], position[i]);
  // BDS: transmission time 14 s earlier on its own scale.
  ASSERT_EQ(bds.SatellitePosition({kBds, 20}, At(100.0), range, state), 1);
  t = SubtractSeconds(AbsoluteTimeAdd(At(100.0), -range / 299792458.0), 14.0);
  KeplerOrbit({3.986004418e14, 7.292115e-5, false}, t, At(0.0), ClockOf(r), ElementsOf(r), position, clock);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(state.Position[i], position[i], 1e-6);
  EXPECT_EQ(state.Variance, 4.0);
}

TEST(SatellitePosition, OfBds15AlwaysFails) {
  SystemEphemerisBDS bds;
  SatelliteState state;
  for (std::uint8_t type : {0, 1, 2}) {
    bds.Release();
    BdsEph_gbt r = BdsRecord(15);
    r.orbit_type = type;
    bds.Add(r);
    EXPECT_EQ(bds.Select({kBds, 15}, At(0.0)).prn, 15);
    EXPECT_EQ(bds.SatellitePosition({kBds, 15}, At(0.0), 2.2e7, state), 0);
    EXPECT_EQ(state.Health, -1);
  }
}

TEST(SatellitePosition, OfABdsRecordMarkedGeoIsGeoWhateverTheNumber) {
  BdsEph_gbt r = BdsRecord(20);
  r.orbit_type = 1;
  SystemEphemerisBDS as_geo, as_not;
  as_geo.Add(r);
  r.orbit_type = 2;
  as_not.Add(r);
  SatelliteState geo, plain;
  ASSERT_EQ(as_geo.SatellitePosition({kBds, 20}, At(0.0), 2.2e7, geo), 1);
  ASSERT_EQ(as_not.SatellitePosition({kBds, 20}, At(0.0), 2.2e7, plain), 1);
  EXPECT_GT(orsolva_test::DistanceTo(geo.Position, plain.Position), 1e5);
  double position[3], clock;
  const AbsoluteTime t0 = AbsoluteTimeAdd(At(0.0), -2.2e7 / 299792458.0);
  const double bias = BroadcastClock(t0, {r.toc.time, r.toc.sec}, r.af0, r.af1, r.af2);
  const AbsoluteTime t = SubtractSeconds(AbsoluteTimeAdd(t0, -bias), 14.0);
  KeplerOrbit({3.986004418e14, 7.292115e-5, true}, t, At(0.0), ClockOf(r), ElementsOf(r), position, clock);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(geo.Position[i], position[i]);
}

TEST(SatellitePosition, OfGlonassIsInUtcWithAVarianceOf25) {
  SystemEphemerisGLONASS glonass;
  const GloEph_gbt r = GlonassRecord(3);  // reference 18 s of leap seconds before the sky's GPS time
  glonass.Add(r);
  SatelliteState state;
  const double range = 2.1e7;
  ASSERT_EQ(glonass.SatellitePosition({kGlonass, 3}, At(60.0), range, state), 1);
  const double travel = range / 299792458.0;
  double dt = 60.0 - travel;
  for (int i = 0; i < 2; ++i) dt -= r.clock_bias + r.clock_rate * dt;
  const double bias = r.clock_bias + r.clock_rate * dt;
  double position[3], clock;
  ASSERT_EQ(GlonassOrbit(AbsoluteTimeAdd({r.toe.time, r.toe.sec}, 60.0 - travel - bias), r, position, clock),
            1);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(state.Position[i], position[i], 1e-6);
  EXPECT_NEAR(state.Clock, clock, 1e-18);
  EXPECT_EQ(state.Variance, 25.0);
}

TEST(SatellitePosition, OfARecordThatIsNotANumberFails) {
  SystemEphemerisGPS gps;
  GpsEph_gbt r = GpsAt(3, 0.0);
  r.M0 = kNaN;
  gps.Add(r);
  r = GpsAt(4, 0.0);
  r.af0 = 1e300;
  gps.Add(r);
  r = GpsAt(5, 0.0);
  r.toes = kNaN;
  r.week = std::numeric_limits<std::int32_t>::max();
  gps.Add(r);
  SystemEphemerisGLONASS glonass;
  GloEph_gbt g = GlonassRecord(3);
  g.vy = kNaN;
  glonass.Add(g);
  SatelliteState state;
  for (int prn : {3, 4, 5}) {
    gps.SatellitePosition({kGps, prn}, At(0.0), 2.2e7, state);
    EXPECT_TRUE(std::isfinite(state.Position[0]) && std::isfinite(state.Clock)) << prn;
  }
  EXPECT_EQ(gps.SatellitePosition({kGps, 3}, At(0.0), 2.2e7, state), 0);
  EXPECT_EQ(glonass.SatellitePosition({kGlonass, 3}, At(0.0), 2.2e7, state), 0);
  EXPECT_EQ(state.Health, -1);
}

TEST(SatellitePosition, IsFiniteOrClearedForAbsurdPseudoranges) {
  orsolva_test::ExactSky sky;
  SatelliteState state;
  for (double range : {1e300, -1e300, 1e25, 1e18, -1e13, 1e-11}) {
    for (std::uint8_t system : {1, 2, 4, 8}) {
      const bool formed = sky.Records.SatellitePosition(SatelliteId{system, 20}, At(0.0), range, state);
      EXPECT_TRUE(orsolva_test::IsFiniteOrCleared(formed, state)) << range << " " << int{system};
    }
  }
}

}  // namespace
}  // namespace gnssqctoolkit
