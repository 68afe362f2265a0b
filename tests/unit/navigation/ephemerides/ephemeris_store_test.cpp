#include "navigation/ephemerides/ephemeris_store.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

#include "tests/support/exact_sky.h"
#include "tests/support/trace_recorder.h"
#include "tests/unit/navigation/gps_at.h"

namespace gnssqctoolkit {
namespace {

using orsolva_test::BdsRecord;
using orsolva_test::GalileoRecord;
using orsolva_test::GlonassRecord;
using orsolva_test::GpsRecord;
using orsolva_test::kSkyTime;

template <class Store>
int Count(const Store& store, std::uint8_t system, int prn) {
  return store.Satellite({system, prn})->Count();
}

TEST(SystemEphemeris, DropsNumbersOutsideItsRangeSilently) {
  orsolva_test::TraceRecorder trace;
  SystemEphemerisGPS gps;
  SystemEphemerisGLONASS glonass;
  SystemEphemerisGALILEO galileo;
  SystemEphemerisBDS bds;
  for (std::int32_t prn : {0, -1, 36, std::numeric_limits<std::int32_t>::max()}) gps.Add(GpsRecord(prn));
  gps.Add(GpsRecord(35));
  glonass.Add(GlonassRecord(33));
  glonass.Add(GlonassRecord(32));
  galileo.Add(GalileoRecord(38));
  galileo.Add(GalileoRecord(37));
  bds.Add(BdsRecord(65));
  bds.Add(BdsRecord(64));
  for (int prn = 1; prn < 35; ++prn) EXPECT_EQ(Count(gps, kGps, prn), 0);
  EXPECT_EQ(Count(gps, kGps, 35), 1);
  EXPECT_EQ(gps.Satellite({kGps, 36}), nullptr);
  EXPECT_EQ(Count(glonass, kGlonass, 32), 1);
  EXPECT_EQ(glonass.Satellite({kGlonass, 33}), nullptr);
  EXPECT_EQ(Count(galileo, kGalileo, 37), 1);
  EXPECT_EQ(galileo.Satellite({kGalileo, 38}), nullptr);
  EXPECT_EQ(Count(bds, kBds, 64), 1);
  EXPECT_EQ(bds.Satellite({kBds, 65}), nullptr);
  EXPECT_TRUE(trace.Texts.empty());
}

TEST(SystemEphemeris, StoresARecordLoadedTwiceOnce) {
  SystemEphemerisGPS gps;
  gps.Add(GpsAt(3, 0.0));
  gps.Add(GpsAt(3, 0.0, 99));  // only the clock time distinguishes records
  EXPECT_EQ(Count(gps, kGps, 3), 1);
  EXPECT_EQ(gps.Satellite({kGps, 3})->At(0)->iode, 1);
  GpsEph_gbt close = GpsAt(3, 0.0);
  close.toc.sec = 0.9e-12;
  gps.Add(close);
  EXPECT_EQ(Count(gps, kGps, 3), 1);
  close.toc.sec = 2e-12;
  gps.Add(close);
  EXPECT_EQ(Count(gps, kGps, 3), 2);

  SystemEphemerisGLONASS glonass;
  glonass.Add(GlonassRecord(3));
  glonass.Add(GlonassRecord(3));
  EXPECT_EQ(Count(glonass, kGlonass, 3), 1);
}

TEST(SystemEphemeris, EvictsTheFirstForThe169thRecord) {
  SystemEphemerisGPS gps;
  for (int i = 0; i < 168; ++i) gps.Add(GpsAt(3, 100.0 * i, i));
  EXPECT_EQ(gps.Satellite({kGps, 3})->At(0)->iode, 0);
  gps.Add(GpsAt(3, 100.0 * 168, 168));
  EXPECT_EQ(Count(gps, kGps, 3), 168);
  EXPECT_EQ(gps.Satellite({kGps, 3})->At(0)->iode, 1);
  EXPECT_EQ(gps.Satellite({kGps, 3})->At(167)->iode, 168);
  // The references moved along with their records.
  EXPECT_EQ(gps.Select({kGps, 3}, At(16800.0)).iode, 168);
  EXPECT_EQ(gps.Select({kGps, 3}, At(0.0)).iode, 1);
}

TEST(SystemEphemeris, SelectsToTheMaximumAgeAndNotBeyond) {
  SystemEphemerisGPS gps;
  gps.Add(GpsAt(3, 0.0));
  EXPECT_EQ(gps.Select({kGps, 3}, At(7200.0)).prn, 3);
  EXPECT_EQ(gps.Select({kGps, 3}, At(7200.001)).prn, 0);
  EXPECT_EQ(gps.Select({kGps, 3}, At(-7200.0)).prn, 3);
  EXPECT_EQ(gps.Select({kGps, 3}, At(-7200.001)).prn, 0);
}

TEST(SystemEphemeris, HasTheDefaultAgesOfItsSystem) {
  SystemEphemerisGLONASS glonass;
  glonass.Add(GlonassRecord(3));
  const AbsoluteTime utc = At(-18.0);
  EXPECT_EQ(glonass.Select({kGlonass, 3}, AbsoluteTimeAdd(utc, 1800.0)).prn, 3);
  EXPECT_EQ(glonass.Select({kGlonass, 3}, AbsoluteTimeAdd(utc, 1800.1)).prn, 0);
  SystemEphemerisGALILEO galileo;
  galileo.Add(GalileoRecord(3));
  EXPECT_EQ(galileo.Select({kGalileo, 3}, At(21600.0)).prn, 3);
  EXPECT_EQ(galileo.Select({kGalileo, 3}, At(21600.1)).prn, 0);
  SystemEphemerisBDS bds;
  bds.Add(BdsRecord(20));
  EXPECT_EQ(bds.Select({kBds, 20}, At(21600.0 + 14.0)).prn, 20);
  EXPECT_EQ(bds.Select({kBds, 20}, At(21600.1 + 14.0)).prn, 0);
}

TEST(SystemEphemeris, TakesAgesOfUpToADayElseTheDefault) {
  SystemEphemerisGPS gps;
  gps.SetMaxAge(86400.0);
  EXPECT_EQ(gps.MaxAge(), 86400.0);
  for (double refused : {0.0, -5.0, 86400.1, kNaN}) {
    gps.SetMaxAge(60.0);
    EXPECT_EQ(gps.MaxAge(), 60.0);
    gps.SetMaxAge(refused);
    EXPECT_EQ(gps.MaxAge(), 7200.0);
  }
  gps.Add(GpsAt(3, 0.0));
  gps.SetMaxAge(60.0);
  EXPECT_EQ(gps.Select({kGps, 3}, At(61.0)).prn, 0);
}

TEST(SystemEphemeris, PrefersTheLaterStoredOfTwoEquallyNear) {
  SystemEphemerisGPS gps;
  gps.Add(GpsAt(3, 3600.0, 5));
  gps.Add(GpsAt(3, -3600.0, 6));
  EXPECT_EQ(gps.Select({kGps, 3}, At(0.0)).iode, 6);
  EXPECT_EQ(gps.Select({kGps, 3}, At(1.0)).iode, 5);
}

TEST(SystemEphemeris, SelectsTheNearestWhateverTheOrder) {
  SystemEphemerisGPS gps;
  for (int hour : {4, 0, 2, 6}) gps.Add(GpsAt(3, 3600.0 * hour, hour));
  for (int hour : {0, 2, 4, 6}) EXPECT_EQ(gps.Select({kGps, 3}, At(3600.0 * hour + 600.0)).iode, hour);
}

TEST(SystemEphemeris, SelectsTheSameWhateverWasAskedBefore) {
  SystemEphemerisGPS asked;
  std::mt19937 random(5);
  for (int i = 0; i < 40; ++i) asked.Add(GpsAt(3, static_cast<double>(random() % 40000), i));
  asked.Add(GpsAt(3, 20000.5, 40));
  double seconds = 0.0;
  for (int k = 0; k < 20000; ++k) {
    // Mostly small steps, as epochs make them, and now and then a leap.
    seconds = k % 97 == 0 ? static_cast<double>(random() % 60000) - 10000.0 : seconds + 0.5 * (random() % 41);
    const SystemEphemerisGPS fresh = asked;
    fresh.Select({kGps, 3}, At(-1e7));  // what the copy remembers is of no use
    ASSERT_EQ(asked.Select({kGps, 3}, At(seconds)).iode, fresh.Select({kGps, 3}, At(seconds)).iode)
        << seconds;
  }
}

TEST(SystemEphemeris, SelectsByAgeAloneWhereFractionsSwallowSeconds) {
  SystemEphemerisGPS gps;
  for (int i = 0; i < 4; ++i) gps.Add(GpsAt(3, 5000.0 * i, i));
  std::mt19937 random(6);
  for (int k = 0; k < 2000; ++k) {
    const AbsoluteTime swallowed = {kSkyTime + static_cast<std::int64_t>(random() % 40000), 1e16};
    const AbsoluteTime t = k % 2 == 0 ? swallowed : AbsoluteTime{kSkyTime - 10000000000000000, 1e16};
    const SystemEphemerisGPS fresh = gps;
    fresh.Select({kGps, 3}, At(-1e7));
    ASSERT_EQ(gps.Select({kGps, 3}, t).iode, fresh.Select({kGps, 3}, t).iode);
  }
}

TEST(SystemEphemeris, GivesTheFirstRecordOfARequestedIssueWithinTheAge) {
  SystemEphemerisGPS gps;
  gps.Add(GpsAt(3, -9000.0, 7));  // of that issue, but too old
  gps.Add(GpsAt(3, 6000.0, 7));
  gps.Add(GpsAt(3, 0.0, 7));
  gps.Add(GpsAt(3, 100.0, 8));
  const GpsEph_gbt found = gps.Select({kGps, 3}, At(0.0), 7);
  EXPECT_EQ(found.toc.time, kSkyTime + 6000);
  EXPECT_EQ(gps.Select({kGps, 3}, At(0.0), 9).prn, 0);
}

TEST(SystemEphemeris, ReportsARequestedIssueEvenWhenItIsFound) {
  orsolva_test::TraceRecorder trace;
  SystemEphemerisGPS gps;
  gps.Add(GpsAt(3, 0.0, 7));
  EXPECT_EQ(gps.Select({kGps, 3}, At(0.0)).prn, 3);
  EXPECT_TRUE(trace.Texts.empty());
  EXPECT_EQ(gps.Select({kGps, 3}, At(1.5), 7).prn, 3);
  ASSERT_EQ(trace.Texts.size(), 1u);
  EXPECT_EQ(trace.Texts[0], "no broadcast ephemeris: time=12:00:01.500 sat sys=1 prn3 iode=7\n");
  EXPECT_EQ(trace.Levels[0], 2);
}

TEST(SystemEphemeris, WordsAMissingRecordBySystem) {
  orsolva_test::TraceRecorder trace;
  SystemEphemerisGPS().Select({kGps, 9}, At(0.25));
  SystemEphemerisGLONASS().Select({kGlonass, 9}, At(0.25));
  SystemEphemerisGALILEO().Select({kGalileo, 9}, At(0.25));
  SystemEphemerisBDS().Select({kBds, 29}, At(0.25));
  SystemEphemerisGPS(kQzss).Select({kQzss, 2}, At(0.25));
  ASSERT_EQ(trace.Texts.size(), 5u);
  EXPECT_EQ(trace.Texts[0], "no broadcast ephemeris: time=12:00:00.250 sat sys=1 prn9 iode=-1\n");
  EXPECT_EQ(trace.Texts[1], "no broadcast ephemeris: time=12:00:00.250 sat sys=2,prn=9\n");
  EXPECT_EQ(trace.Texts[2], "no broadcast ephemeris: time=12:00:00.250 sat sys=8,prn=9 iode= -1\n");
  EXPECT_EQ(trace.Texts[3], "no broadcast ephemeris: time=12:00:00.250 sat sys=4,prn=29 iode= -1\n");
  EXPECT_EQ(trace.Texts[4], "no broadcast ephemeris: time=12:00:00.250 sat sys=16 prn2 iode=-1\n");
  for (int level : trace.Levels) EXPECT_EQ(level, 2);
}

TEST(SystemEphemeris, HasNothingForAnotherSystem) {
  orsolva_test::TraceRecorder trace;
  SystemEphemerisGPS gps;
  gps.Add(GpsAt(3, 0.0));
  EXPECT_EQ(gps.Select({kGalileo, 3}, At(0.0)).prn, 0);
  SatelliteState state;
  EXPECT_EQ(gps.SatellitePosition({kGalileo, 3}, At(0.0), 2e7, state), 0);
  EXPECT_TRUE(trace.Texts.empty());
}

TEST(SystemEphemeris, ShiftsTheTimeToBdsTimeOnce) {
  SystemEphemerisBDS bds;
  BdsEph_gbt at_zero = BdsRecord(20), at_14 = BdsRecord(20), at_28 = BdsRecord(20);
  at_14.toes -= 14.0, at_14.toc.time -= 14, at_14.iode = 14;
  at_28.toes -= 28.0, at_28.toc.time -= 28, at_28.iode = 28;
  at_zero.iode = 1;
  for (const BdsEph_gbt& r : {at_zero, at_28, at_14}) bds.Add(r);
  AbsoluteTime reference;
  const BdsEph_gbt* found = bds.Find({kBds, 20}, At(0.0), -1, reference);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->iode, 14);
  EXPECT_EQ(TimeDifference(SubtractSeconds(At(0.0), 14.0), reference), 0.0);
}

TEST(SystemEphemeris, ReadsTheReferenceFromWeekAndSecondsNotFromTheClockTime) {
  SystemEphemerisGPS gps;
  GpsEph_gbt r = GpsAt(3, 0.0);
  r.toes += 20000.0;
  gps.Add(r);
  EXPECT_EQ(gps.Select({kGps, 3}, At(0.0)).prn, 0);
  EXPECT_EQ(gps.Select({kGps, 3}, At(20000.0)).prn, 3);
}

TEST(SystemEphemeris, SelectsNothingByATimeThatIsNotANumber) {
  SystemEphemerisGPS gps;
  gps.Add(GpsAt(3, 0.0));
  EXPECT_EQ(gps.Select({kGps, 3}, {kSkyTime, kNaN}).prn, 0);
  EXPECT_EQ(gps.Select({kGps, 3}, {kSkyTime, kNaN}, 1).prn, 0);
  SystemEphemerisGLONASS glonass;
  GloEph_gbt r = GlonassRecord(3);
  r.toe.sec = kNaN;
  glonass.Add(r);
  EXPECT_EQ(glonass.Select({kGlonass, 3}, At(0.0)).prn, 0);
}

TEST(SystemEphemeris, DoesNotLookAtTheHealth) {
  SystemEphemerisGPS gps;
  GpsEph_gbt r = GpsAt(3, 0.0);
  r.svh = 63;
  gps.Add(r);
  SatelliteState state;
  ASSERT_EQ(gps.SatellitePosition({kGps, 3}, At(10.0), 2.2e7, state), 1);
  EXPECT_EQ(state.Health, 63);
  EXPECT_EQ(state.Variance, 4.0);  // accuracy 2 m
}

TEST(GlonassAccuracyVariance, SquaresTheTable) {
  EXPECT_EQ(GlonassAccuracyVariance(0), 1.0);
  EXPECT_EQ(GlonassAccuracyVariance(2), 6.25);
  EXPECT_EQ(GlonassAccuracyVariance(4), 25.0);
  EXPECT_EQ(GlonassAccuracyVariance(14), 512.0 * 512.0);
  EXPECT_EQ(GlonassAccuracyVariance(15), 9999.99 * 9999.99);
  EXPECT_EQ(GlonassAccuracyVariance(-1), 9999.99 * 9999.99);
}

TEST(Tgd, IsOfTheFirstStoredRecord) {
  SystemEphemerisBDS bds;
  BdsEph_gbt r = BdsRecord(20);
  r.tgd1 = 1e-9, r.tgd2 = 2e-9;
  bds.Add(r);
  r.toc.time += 3600, r.tgd1 = 5e-9;
  bds.Add(r);
  EXPECT_EQ(bds.Tgd({kBds, 20}, 1), 1e-9);
  EXPECT_EQ(bds.Tgd({kBds, 20}, 2), 2e-9);
  EXPECT_EQ(bds.Tgd({kBds, 20}, 3), 0.0);
  EXPECT_EQ(bds.Tgd({kBds, 21}, 1), 0.0);
  EXPECT_EQ(bds.Tgd({kGps, 20}, 1), 0.0);
  EXPECT_EQ(bds.Tgd({kBds, 65}, 1), 0.0);
  EXPECT_EQ(bds.Tgd({kBds, 0}, 1), 0.0);
}

}  // namespace
}  // namespace gnssqctoolkit
