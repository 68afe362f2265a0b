#include "host/formats/rtcm/stream_clock.h"

#include <gtest/gtest.h>

#include "tests/formats/rtcm/frames.h"

namespace {

using orsolva_host::rtcm::GlonassMilliseconds;
using orsolva_host::rtcm::StreamClock;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;

constexpr int kUnknownDay = 7;
constexpr std::int64_t kWeek_ms = 604'800'000;
constexpr std::int64_t kDay_ms = 86'400'000;
/// 2017-01-01 00:00:00 UTC, the end of the last leap second, as GPS time: 18 s ahead.
constexpr std::int64_t kLeap = (1483228800LL + 18) * kSecond;
/// Milliseconds of the Moscow day 2017-01-01 at the beginning of the leap second, 02:59:60.
constexpr std::int64_t kLeapSecond_ms = 3 * 3600 * 1000;

TEST(StreamClock, IsSetByTheFirstFullDate) {
  StreamClock clock;
  EXPECT_FALSE(clock.Known());
  EXPECT_FALSE(clock.GpsEpoch(1000));
  EXPECT_TRUE(clock.TakeGpsWeek(2300 % 1024, 0));
  EXPECT_FALSE(clock.Known());
  EXPECT_TRUE(clock.TakeGalileoWeek(2300 - 1024, 3600));
  EXPECT_EQ(clock.Latest(), GpsTime(2300, 3600));
}

TEST(StreamClock, WeekOfGpsAloneIsOneFrom2019On) {
  StreamClock clock;
  EXPECT_TRUE(clock.TakeGpsWeek(2300 % 1024, 600));
  EXPECT_TRUE(clock.UseWeakDate());
  EXPECT_EQ(clock.Latest(), GpsTime(2300, 600));
}

TEST(StreamClock, DateOfGlonassDecidesTheRoundOfGpsWeeks) {
  StreamClock clock;
  EXPECT_TRUE(clock.TakeGpsWeek(1950 % 1024, 302400));
  // 2017-05-24, day 510 of the sixth four years, 12:00 Moscow time.
  EXPECT_TRUE(clock.TakeGlonassDate(6, 366 + 144, 12 * 3600));
  EXPECT_TRUE(clock.UseWeakDate());
  EXPECT_EQ(clock.Latest(), GpsTime(1950, 3 * 86400 + 9 * 3600 + 18));
}

TEST(StreamClock, ImpossibleDatesAreRefused) {
  StreamClock clock;
  EXPECT_FALSE(clock.TakeGalileoWeek(0, 0));          // 1999
  EXPECT_FALSE(clock.TakeGlonassDate(0, 10, 0));      // not given
  EXPECT_FALSE(clock.TakeGlonassDate(6, 1462, 0));    // no such day
  EXPECT_FALSE(clock.TakeGlonassDate(2, 946, 0));     // 2002, as one satellite sent in 2018
  EXPECT_FALSE(clock.TakeGalileoWeek(1276, 604800));  // no such second
  EXPECT_FALSE(clock.TakeUtc(15020, 0));              // 1900
  EXPECT_FALSE(clock.Known());
}

TEST(StreamClock, GpsAndGalileoWeeksEnd) {
  StreamClock clock(GpsTime(2300, 604790));
  EXPECT_EQ(clock.GpsEpoch(kWeek_ms - 1000), GpsTime(2300, 604799));
  EXPECT_EQ(clock.GpsEpoch(0), GpsTime(2301, 0));
  EXPECT_EQ(clock.GpsEpoch(1000), GpsTime(2301, 1));
  EXPECT_EQ(clock.GpsEpoch(kWeek_ms - 1000), GpsTime(2300, 604799));  // a late message
  EXPECT_FALSE(clock.GpsEpoch(kWeek_ms));
}

TEST(StreamClock, BdsWeekEnds14SecondsAfterTheGpsWeek) {
  StreamClock clock(GpsTime(2301, 10));
  EXPECT_EQ(clock.BdsEpoch(kWeek_ms - 1000), GpsTime(2301, 13));
  EXPECT_EQ(clock.BdsEpoch(0), GpsTime(2301, 14));
  EXPECT_FALSE(clock.BdsEpoch(kWeek_ms));
}

TEST(StreamClock, RoundOf1024GpsWeeksEnds) {
  StreamClock clock(GpsTime(2047, 604799));
  EXPECT_EQ(clock.GpsEpoch(0), GpsTime(2048, 0));
  EXPECT_TRUE(clock.TakeGpsWeek(0, 7200));
  EXPECT_EQ(clock.WrongWeeks(), 0u);
  EXPECT_EQ(clock.NearestGps(7200), GpsTime(2048, 7200));
}

TEST(StreamClock, ReferenceTimeOfTheNextWeekIsTheNearest) {
  // Transmitted at the end of week 2300 with that week, for the beginning of the next.
  StreamClock clock(GpsTime(2300, 604000));
  EXPECT_TRUE(clock.TakeGpsWeek(2300 % 1024, 0));
  EXPECT_EQ(clock.NearestGps(0), GpsTime(2301, 0));
  EXPECT_EQ(clock.NearestBds(0), GpsTime(2301, 14));
  EXPECT_EQ(clock.WrongWeeks(), 0u);
  EXPECT_EQ(clock.Latest(), GpsTime(2300, 604000));
}

TEST(StreamClock, GlonassDayEndsAtMidnightOfMoscow) {
  const std::int64_t midnight = GpsTime(2300, 2 * 86400 - 3 * 3600 + 18);
  StreamClock clock(midnight - 2 * kSecond);
  EXPECT_EQ(clock.GlonassEpoch(kUnknownDay, kDay_ms - 1000), midnight - kSecond);
  EXPECT_EQ(clock.GlonassEpoch(kUnknownDay, 0), midnight);
  EXPECT_EQ(clock.GlonassEpoch(2, 1000), midnight + kSecond);  // a Tuesday
  EXPECT_FALSE(clock.GlonassEpoch(kUnknownDay, kDay_ms + 1000));
}

TEST(StreamClock, DayOfWeekFindsTheDayAfterAGapOfDays) {
  const std::int64_t midnight = GpsTime(2300, 2 * 86400 - 3 * 3600 + 18);  // of a Tuesday
  StreamClock clock(midnight);
  EXPECT_EQ(clock.GlonassEpoch(5, 7'200'000), midnight + (3 * 86400 + 7200) * kSecond);
}

TEST(StreamClock, DayOfWeekOfTheDayBeforeAtMidnightIsCountedAndNotFollowed) {
  const std::int64_t midnight = GpsTime(2300, 2 * 86400 - 3 * 3600 + 18);
  StreamClock clock(midnight - kSecond);
  EXPECT_EQ(clock.GlonassEpoch(1, 0), midnight);  // still Monday
  EXPECT_EQ(clock.WrongDays(), 1u);
}

TEST(StreamClock, GlonassRunsThroughALeapSecond) {
  StreamClock clock(kLeap - 2 * kSecond);
  EXPECT_EQ(clock.GlonassEpoch(0, kLeapSecond_ms - 1000), kLeap - 2 * kSecond);  // 02:59:59
  EXPECT_EQ(clock.GlonassEpoch(0, kLeapSecond_ms), kLeap - kSecond);             // 02:59:60
  EXPECT_EQ(clock.GlonassEpoch(0, kLeapSecond_ms + 1000), kLeap);                // 03:00:00
  // The day has a second more, and the next one begins at 0 again.
  StreamClock evening(kLeap + (21 * 3600 - 2) * kSecond);
  EXPECT_EQ(evening.GlonassEpoch(0, kDay_ms), kLeap + (21 * 3600 - 1) * kSecond);
  EXPECT_EQ(evening.GlonassEpoch(1, 0), kLeap + 21 * 3600 * kSecond);
}

TEST(StreamClock, TimeOfDayAfterALeapSecondIsFollowedWhereOtherSystemsShowIt) {
  StreamClock clock(kLeap + 100 * kSecond);
  ASSERT_TRUE(clock.GpsEpoch((kLeap / kSecond + 100 - 315964800) % 604800 * 1000));
  EXPECT_EQ(clock.GlonassEpoch(0, kLeapSecond_ms + 100'000), kLeap + 100 * kSecond);
  EXPECT_EQ(clock.GlonassEpoch(0, kLeapSecond_ms + 101'000), kLeap + 101 * kSecond);
}

TEST(StreamClock, GlonassFieldsAreThoseThatAreReadAgain) {
  for (const std::int64_t offset : {-90000, -10801, -3, -2, -1, 0, 1, 75599, 75600, 90000}) {
    const std::int64_t time = kLeap + offset * kSecond;
    const auto fields = GlonassMilliseconds(time);
    StreamClock clock(time - 5 * kSecond);
    EXPECT_EQ(clock.GlonassEpoch(fields.day_of_week, fields.milliseconds), time) << offset;
  }
}

TEST(StreamClock, AnnouncedLeapSecondTakesThePlaceOfTheTable) {
  StreamClock clock(GpsTime(2600, 0));
  EXPECT_EQ(clock.GlonassEpoch(kUnknownDay, 3 * 3600 * 1000 - 18000), GpsTime(2600, 0));
  EXPECT_FALSE(clock.TakeLeapSeconds(17));  // less than history
  EXPECT_TRUE(clock.TakeLeapSeconds(19));
  EXPECT_EQ(clock.GlonassEpoch(kUnknownDay, 3 * 3600 * 1000 - 18000), GpsTime(2600, 1));
  StreamClock running(GpsTime(2600, 0));
  EXPECT_TRUE(running.TakeLeapSeconds(18));
  EXPECT_TRUE(running.TakeLeapSeconds(19));  // the leap second has just been
  EXPECT_EQ(running.NearestGlonass(3 * 3600 - 900), GpsTime(2600, 18 - 900));
  EXPECT_EQ(running.NearestGlonass(3 * 3600 + 900), GpsTime(2600, 19 + 900));
}

TEST(StreamClock, ReferenceTimeOfGlonassIsOnTheNearestDay) {
  const std::int64_t midnight = GpsTime(2300, 2 * 86400 - 3 * 3600 + 18);
  StreamClock clock(midnight - 600 * kSecond);
  EXPECT_EQ(clock.NearestGlonass(900), midnight + 900 * kSecond);
  EXPECT_EQ(clock.NearestGlonass(85500), midnight - 900 * kSecond);
}

TEST(StreamClock, OneWrongWeekIsCountedThreeThatAgreeSetTheClock) {
  StreamClock clock(GpsTime(2300, 100));
  ASSERT_TRUE(clock.GpsEpoch(100'000));
  EXPECT_TRUE(clock.TakeGalileoWeek(2310 - 1024, 100));
  EXPECT_TRUE(clock.TakeGalileoWeek(2300 - 1024, 100));
  EXPECT_TRUE(clock.TakeGalileoWeek(2310 - 1024, 100));
  EXPECT_TRUE(clock.TakeGalileoWeek(2310 - 1024, 100));
  EXPECT_EQ(clock.Latest(), GpsTime(2300, 100));
  EXPECT_TRUE(clock.TakeGalileoWeek(2310 - 1024, 100));
  EXPECT_EQ(clock.Latest(), GpsTime(2310, 100));
  EXPECT_EQ(clock.WrongWeeks(), 4u);
}

TEST(StreamClock, GapOfMoreThanHalfAWeekIsBridgedByWeeks) {
  StreamClock clock(GpsTime(2300, 302400));
  ASSERT_TRUE(clock.GpsEpoch(302'400'000));
  for (int ephemeris = 0; ephemeris < 3; ++ephemeris) EXPECT_TRUE(clock.TakeGalileoWeek(2301 - 1024, 129600));
  EXPECT_EQ(clock.GpsEpoch(130'000'000), GpsTime(2301, 130000));
}

TEST(StreamClock, UtcOfTextsIsADate) {
  StreamClock clock;
  EXPECT_TRUE(clock.TakeUtc(58116, 72662));  // 2017-12-29 20:11:02 UTC
  EXPECT_EQ(clock.Latest(), (1514578262LL + 18) * kSecond);
}

}  // namespace
