#include "navigation/ephemerides/ephemeris.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/exact_sky.h"
#include "tests/support/state_law.h"

namespace gnssqctoolkit {
namespace {

using namespace orsolva_test;

AbsoluteTime At(double seconds) { return AbsoluteTimeAdd({kSkyTime, 0.0}, seconds); }

TEST(Ephemeris, FindsTheStoreOfEachSystem) {
  Ephemeris ephemeris;
  EphemerisChoice choice;
  const SatelliteId satellites[5] = {{kGps, 3}, {kGlonass, 3}, {kBds, 20}, {kGalileo, 3}, {kQzss, 3}};
  for (const SatelliteId& s : satellites) EXPECT_FALSE(ephemeris.Select(s, At(0.0), kDefaultMaxAges, choice));
  ephemeris.Gps().Add(GpsRecord(3));
  ephemeris.Glonass().Add(GlonassRecord(3));
  ephemeris.Bds().Add(BdsRecord(20));
  ephemeris.Galileo().Add(GalileoRecord(3));
  ephemeris.Qzss().Add(GpsRecord(3));
  for (const SatelliteId& s : satellites) {
    ASSERT_TRUE(ephemeris.Select(s, At(5.0), kDefaultMaxAges, choice));
    EXPECT_EQ(choice.Satellite.system, s.system);
    SatelliteState chosen, direct;
    EXPECT_TRUE(ephemeris.SatellitePosition(choice, At(5.0), 2.2e7, chosen));
    EXPECT_TRUE(ephemeris.SatellitePosition(s, At(5.0), 2.2e7, direct));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(chosen.Position[i], direct.Position[i]);
    EXPECT_EQ(chosen.Clock, direct.Clock);
  }
  for (std::uint8_t system : {0, 32, 64, 3})
    EXPECT_FALSE(ephemeris.Select({system, 3}, At(0.0), kDefaultMaxAges, choice));
}

TEST(Ephemeris, LeavesAnEmptyChoiceAndAClearedStateWithoutARecord) {
  Ephemeris ephemeris;
  EphemerisChoice choice;
  choice.Record = &ephemeris;
  choice.Reference = {5, 0.0};
  EXPECT_FALSE(ephemeris.Select({kGps, 3}, At(0.0), kDefaultMaxAges, choice));
  EXPECT_EQ(choice.Record, nullptr);
  EXPECT_EQ(choice.Reference.Seconds, 0);
  SatelliteState state;
  state.Health = 0;
  EXPECT_FALSE(ephemeris.SatellitePosition(choice, At(0.0), 2.2e7, state));
  EXPECT_EQ(state.Health, -1);
}

TEST(Ephemeris, GivesReferencesInTheScaleOfTheRecord) {
  ExactSky sky;
  EphemerisChoice choice;
  ASSERT_TRUE(sky.Records.Select({kGps, 3}, At(0.0), kDefaultMaxAges, choice));
  EXPECT_EQ(choice.Reference.Seconds, kSkyTime);
  ASSERT_TRUE(sky.Records.Select({kBds, 20}, At(0.0), kDefaultMaxAges, choice));
  EXPECT_EQ(choice.Reference.Seconds, kSkyTime);
  ASSERT_TRUE(sky.Records.Select({kGlonass, 3}, At(0.0), kDefaultMaxAges, choice));
  EXPECT_EQ(choice.Reference.Seconds, kSkyTime - 18);
}

TEST(Ephemeris, SelectsGlonassInUtc) {
  Ephemeris ephemeris;
  ephemeris.Glonass().Add(GlonassRecord(3));
  EphemerisChoice choice;
  EXPECT_TRUE(ephemeris.Select({kGlonass, 3}, At(1800.0), kDefaultMaxAges, choice));
  EXPECT_FALSE(ephemeris.Select({kGlonass, 3}, At(1800.5), kDefaultMaxAges, choice));
  EXPECT_TRUE(ephemeris.Select({kGlonass, 3}, At(-1800.0), kDefaultMaxAges, choice));
  EXPECT_FALSE(ephemeris.Select({kGlonass, 3}, At(-1800.5), kDefaultMaxAges, choice));
}

TEST(Ephemeris, SwitchesBetweenDefaultAgesAndThoseOfThePass) {
  Ephemeris e;
  const auto expect = [&e](double gps, double glonass, double bds, double galileo, double qzss) {
    EXPECT_EQ(e.Gps().MaxAge(), gps);
    EXPECT_EQ(e.Glonass().MaxAge(), glonass);
    EXPECT_EQ(e.Bds().MaxAge(), bds);
    EXPECT_EQ(e.Galileo().MaxAge(), galileo);
    EXPECT_EQ(e.Qzss().MaxAge(), qzss);
  };
  expect(7200, 1800, 21600, 21600, 7200);
  EXPECT_EQ(kDefaultMaxAges.Gps, e.Gps().MaxAge());
  EXPECT_EQ(kDefaultMaxAges.Glonass, e.Glonass().MaxAge());
  EXPECT_EQ(kDefaultMaxAges.Bds, e.Bds().MaxAge());
  EXPECT_EQ(kDefaultMaxAges.Galileo, e.Galileo().MaxAge());
}

TEST(Ephemeris, SelectsWithinTheAgesItIsGiven) {
  Ephemeris e;
  e.Galileo().Add(GalileoRecord(3));
  e.Bds().Add(BdsRecord(20));
  EphemerisChoice choice;
  for (const SatelliteId& s : {SatelliteId{kGalileo, 3}, SatelliteId{kBds, 20}}) {
    EXPECT_TRUE(e.Select(s, At(7000.0), kPassMaxAges, choice));
    EXPECT_FALSE(e.Select(s, At(7300.0), kPassMaxAges, choice));
    EXPECT_EQ(choice.Record, nullptr);
    EXPECT_TRUE(e.Select(s, At(7300.0), kDefaultMaxAges, choice));
    EXPECT_FALSE(e.Select(s, At(21700.0), kDefaultMaxAges, choice));
    EXPECT_TRUE(e.Select(s, At(21700.0), {0.0, 0.0, 30000.0, 30000.0}, choice));
  }
}

TEST(Ephemeris, KnowsTheChannelOfTheFirstRecordOfASlot) {
  Ephemeris e;
  GloEph_gbt r = GlonassRecord(7);
  r.frequency_channel = 5;
  e.Glonass().Add(r);
  r.toe.time += 1800;
  r.frequency_channel = -3;
  e.Glonass().Add(r);
  EXPECT_EQ(e.GlonassChannels()[6], -999);
  e.UpdateGlonassChannels();
  EXPECT_EQ(e.GlonassChannels()[6], 5);
  EXPECT_EQ(e.GlonassChannels()[5], -999);
}

// Steps over a day in both directions: never a moment with a record outside what is reported.
TEST(Ephemeris, ReportsCoverageNeverTooNarrow) {
  Ephemeris e;
  for (int hour : {-3, 0, 9}) {
    GpsEph_gbt g = GpsRecord(3);
    g.toes += 3600.0 * hour, g.toc.time += 3600 * hour;
    e.Gps().Add(g);
    BdsEph_gbt b = BdsRecord(20);
    b.toes += 3600.0 * hour, b.toc.time += 3600 * hour;
    e.Bds().Add(b);
    GloEph_gbt r = GlonassRecord(3);
    r.toe.time += 3600 * hour;
    e.Glonass().Add(r);
  }
  // Too wide by the leap seconds at most.
  const auto covered_near = [&e](const SatelliteId& s, const AbsoluteTime& t) {
    EphemerisChoice choice;
    for (double off : {0.0, 20.0, -20.0}) {
      if (e.Select(s, AbsoluteTimeAdd(t, off), kDefaultMaxAges, choice)) return true;
    }
    return false;
  };
  for (const SatelliteId& s : {SatelliteId{kGps, 3}, SatelliteId{kBds, 20}, SatelliteId{kGlonass, 3}}) {
    EphemerisChoice choice;
    AbsoluteTime at;
    for (double t = -50000.0; t < 50000.0; t += 97.3) {
      const bool selected = e.Select(s, At(t), kDefaultMaxAges, choice);
      const bool after = e.CoveredAtOrAfter(s, At(t), at);
      if (selected) {
        ASSERT_TRUE(after);
        EXPECT_LE(TimeDifference(at, At(t)), 1e-6);
      }
      if (after) {
        EXPECT_GE(TimeDifference(at, At(t)), 0.0);
        for (double skipped = t; skipped < TimeDifference(at, At(0.0)) - 1.0; skipped += 300.0) {
          EXPECT_FALSE(e.Select(s, At(skipped), kDefaultMaxAges, choice));
        }
        EXPECT_TRUE(covered_near(s, at));
      }
      const bool before = e.CoveredAtOrBefore(s, At(t), at);
      if (selected) {
        ASSERT_TRUE(before);
        EXPECT_GE(TimeDifference(at, At(t)), -1e-6);
      }
      if (before) {
        EXPECT_TRUE(covered_near(s, at));
      }
    }
    EXPECT_FALSE(e.CoveredAtOrAfter(s, At(60000.0), at));
    EXPECT_FALSE(e.CoveredAtOrBefore(s, At(-60000.0), at));
  }
}

TEST(Ephemeris, CoversTheMaximumAgeInForce) {
  Ephemeris e;
  e.Galileo().Add(GalileoRecord(3));
  AbsoluteTime at;
  ASSERT_TRUE(e.CoveredAtOrAfter({kGalileo, 3}, At(-86400.0), at));
  EXPECT_NEAR(TimeDifference(at, At(-21600.0)), 0.0, 2e-6);
  e.Galileo().SetMaxAge(7200.0);
  ASSERT_TRUE(e.CoveredAtOrAfter({kGalileo, 3}, At(-86400.0), at));
  EXPECT_NEAR(TimeDifference(at, At(-7200.0)), 0.0, 2e-6);
  ASSERT_TRUE(e.CoveredAtOrBefore({kGalileo, 3}, At(86400.0), at));
  EXPECT_NEAR(TimeDifference(at, At(7200.0)), 0.0, 2e-6);
  EXPECT_FALSE(e.CoveredAtOrAfter({kGalileo, 4}, At(0.0), at));
  EXPECT_FALSE(e.CoveredAtOrAfter({kSbas, 4}, At(0.0), at));
}

// A week beyond the calendar collapses to zero in BDS time, as every time beyond it does.
TEST(Ephemeris, ABdsRecordBeyondTheCalendarCoversTheTimesBeyondItOnly) {
  Ephemeris e;
  BdsEph_gbt far = BdsRecord(20);
  far.week = 100000;
  e.Bds().Add(far);
  const SatelliteId satellite{kBds, 20};
  EphemerisChoice choice;
  AbsoluteTime at;
  EXPECT_FALSE(e.Select(satellite, At(0.0), kDefaultMaxAges, choice));
  ASSERT_TRUE(e.CoveredAtOrAfter(satellite, At(0.0), at));
  EXPECT_NEAR(TimeDifference(at, {kCalendarEnd, 0.0}), 0.0, 200.0);
  ASSERT_TRUE(e.CoveredAtOrBefore(satellite, At(0.0), at));
  EXPECT_LE(TimeDifference(at, {86400, 200.0}), 0.0) << "the record itself is read as the first day of 1970";
  for (const AbsoluteTime& beyond :
       {AbsoluteTime{kCalendarEnd, 200.0}, AbsoluteTime{kCalendarBegin, -200.0}}) {
    EXPECT_TRUE(e.Select(satellite, beyond, kDefaultMaxAges, choice));
    ASSERT_TRUE(e.CoveredAtOrAfter(satellite, beyond, at));
    EXPECT_EQ(TimeDifference(at, beyond), 0.0);
  }
}

// Else a batch of a far time would look for the satellite at one sample after the other.
TEST(Ephemeris, ARecordWithoutAFiniteTimeCoversNothing) {
  for (const double fraction :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    Ephemeris e;
    GloEph_gbt endless = GlonassRecord(3);
    endless.toe.sec = fraction;
    e.Glonass().Add(endless);
    EphemerisChoice choice;
    AbsoluteTime at;
    for (const AbsoluteTime& t : {At(0.0), AbsoluteTime{std::int64_t{1} << 62, 0.0}}) {
      EXPECT_FALSE(e.Select({kGlonass, 3}, t, kDefaultMaxAges, choice)) << fraction;
      EXPECT_FALSE(e.CoveredAtOrAfter({kGlonass, 3}, t, at)) << fraction;
      EXPECT_FALSE(e.CoveredAtOrBefore({kGlonass, 3}, t, at)) << fraction;
    }
  }
}

TEST(Ephemeris, ABdsSatelliteStandsStillBeyondTheCalendar) {
  const SatelliteId bds{kBds, 20};
  EXPECT_EQ(Ephemeris::StandsStillFor(bds, At(0.0), +1), 0.0);
  EXPECT_EQ(Ephemeris::StandsStillFor(bds, {kCalendarEnd, 200.0}, +1),
            std::numeric_limits<double>::infinity());
  EXPECT_EQ(Ephemeris::StandsStillFor(bds, {kCalendarEnd, 200.0}, -1), 100.0);
  EXPECT_EQ(Ephemeris::StandsStillFor(bds, {kCalendarBegin, -200.0}, +1), 100.0);
  EXPECT_EQ(Ephemeris::StandsStillFor(bds, {kCalendarBegin, -200.0}, -1),
            std::numeric_limits<double>::infinity());
  EXPECT_EQ(Ephemeris::StandsStillFor({kGps, 20}, {kCalendarEnd, 200.0}, +1), 0.0);
}

// Seconds of `at` less `s`, where the difference of the integers may overflow.
long double After(const AbsoluteTime& at, std::int64_t s) {
  return static_cast<long double>(at.Seconds) + static_cast<long double>(at.Fraction) -
         static_cast<long double>(s);
}

TEST(Ephemeris, GivesFiniteStatesAndOrderedSpansForAbsurdTimes) {
  ExactSky sky;
  GloEph_gbt far = GlonassRecord(3);
  far.toe = {std::numeric_limits<std::int64_t>::max(), 0.5};
  sky.Records.Glonass().Add(far);
  far.toe = {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<double>::quiet_NaN()};
  sky.Records.Glonass().Add(far);
  EphemerisChoice choice;
  AbsoluteTime at;
  SatelliteState state;
  for (std::int64_t s : {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(),
                         std::int64_t{0}}) {
    for (std::uint8_t system : {1, 2, 4, 8}) {
      const SatelliteId satellite{system, system == 4 ? 20 : 3};
      const bool chosen = sky.Records.Select(satellite, {s, 0.0}, kDefaultMaxAges, choice);
      EXPECT_EQ(chosen, choice.Record != nullptr) << s << " " << int{system};
      const bool formed = sky.Records.SatellitePosition(satellite, {s, 0.0}, 2.2e7, state);
      EXPECT_TRUE(IsFiniteOrCleared(formed, state)) << s << " " << int{system};
      // The bounds are rounded outward.
      if (sky.Records.CoveredAtOrAfter(satellite, {s, 0.0}, at)) {
        EXPECT_GT(After(at, s), -1.0L) << s;
      }
      if (sky.Records.CoveredAtOrBefore(satellite, {s, 0.0}, at)) {
        EXPECT_LT(After(at, s), 1.0L) << s;
      }
    }
  }
}

TEST(Ephemeris, DropsEveryRecordOnRelease) {
  ExactSky sky;
  sky.Records.Release();
  EphemerisChoice choice;
  for (std::uint8_t system : {1, 2, 4, 8})
    EXPECT_FALSE(sky.Records.Select({system, 20}, At(0.0), kDefaultMaxAges, choice));
}

}  // namespace
}  // namespace gnssqctoolkit
