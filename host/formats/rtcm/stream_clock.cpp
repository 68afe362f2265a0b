#include "host/formats/rtcm/stream_clock.h"

#include <chrono>
#include <cstdlib>

#include "host/observation/observation_epoch.h"
#include "toolkit/leap_seconds.h"

namespace orsolva_host::rtcm {
namespace {

using std::chrono::day;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;

constexpr std::int64_t kSecond = kNanosecondsPerSecond;
constexpr std::int64_t kMillisecond = kSecond / 1000;
constexpr std::int64_t kDay = kDay_s * kSecond;
constexpr std::int64_t kWeek = kWeek_s * kSecond;
constexpr int kGpsWeeks = 1024;
constexpr int kEraBegins = 2048;                 // 2019-04-07
constexpr int kModifiedJulianDayOf1970 = 40587;  // 1970-01-01
constexpr int kAgreeingDates = 3;
constexpr std::int64_t kAroundWeekEnd = 6 * 3600 * kSecond;

constexpr std::int64_t DaysOf(int y, int m, int d) {
  return sys_days(year(y) / month(static_cast<unsigned>(m)) / day(static_cast<unsigned>(d)))
      .time_since_epoch()
      .count();
}

static_assert(kGpsBegins_s == DaysOf(1980, 1, 6) * kDay_s);
constexpr std::int64_t kEarliest = DaysOf(2006, 1, 1) * kDay;  // before the first ephemeris messages
constexpr std::int64_t kLatest = DaysOf(2100, 1, 1) * kDay;

std::int64_t FloorDivide(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

/// The time nearest to `near` that leaves the rest `phase` divided by the period.
std::int64_t Nearest(std::int64_t near, std::int64_t phase, std::int64_t period) {
  return phase + FloorDivide(near - phase + period / 2, period) * period;
}

std::int64_t WeekTime(int week, std::int64_t second_of_week) {
  return (kGpsBegins_s + week * kWeek_s + second_of_week) * kSecond;
}

}  // namespace

int LeapSecondsAtUtc(std::int64_t utc_s) {
  for (const gnssqctoolkit::LeapSecondRow& row : gnssqctoolkit::kLeapSeconds) {
    if (row.year == 0) break;
    if (utc_s >= DaysOf(row.year, row.month, row.day) * kDay_s) return row.seconds;
  }
  return 0;
}

int LeapSecondsAtGps(std::int64_t gps_s) {
  for (const gnssqctoolkit::LeapSecondRow& row : gnssqctoolkit::kLeapSeconds) {
    if (row.year == 0) break;
    if (gps_s >= DaysOf(row.year, row.month, row.day) * kDay_s + row.seconds) return row.seconds;
  }
  return 0;
}

std::int64_t GpsMilliseconds(std::int64_t time_ns) {
  return (time_ns - kGpsBegins_s * kSecond) % kWeek / kMillisecond;
}

std::int64_t BdsMilliseconds(std::int64_t time_ns) {
  return GpsMilliseconds(time_ns - kBdsBehindGps_s * kSecond);
}

GlonassFields GlonassMilliseconds(std::int64_t time_ns) {
  const auto midnight = [](std::int64_t moscow_day) {
    const std::int64_t utc_s = moscow_day * kDay_s - kMoscowAheadOfUtc_s;
    return (utc_s + LeapSecondsAtUtc(utc_s)) * kSecond;
  };
  std::int64_t today = FloorDivide(time_ns + kMoscowAheadOfUtc_s * kSecond, kDay);
  if (time_ns < midnight(today)) --today;
  const std::int64_t since_sunday = today + 4;  // 1970-01-01 was a Thursday
  return {static_cast<int>(since_sunday % 7), (time_ns - midnight(today)) / kMillisecond};
}

int StreamClock::LeapAtUtc(std::int64_t utc_s) const {
  return announced_leap_ && utc_s >= announced_from_utc_s_ ? *announced_leap_ : LeapSecondsAtUtc(utc_s);
}

bool StreamClock::UseWeakDate() {
  if (!latest_ns_) latest_ns_ = weak_ns_;
  return Known();
}

bool StreamClock::Suggest(std::int64_t time_ns, Strength strength) {
  if (time_ns < kEarliest || time_ns > kLatest) return false;
  if (!latest_ns_) {
    if (strength == Strength::kFull) latest_ns_ = time_ns;
    if (!weak_ns_ || strength > weak_strength_) {
      weak_ns_ = time_ns;
      weak_strength_ = strength;
    }
    return true;
  }
  const std::int64_t weeks = FloorDivide(time_ns - *latest_ns_ + kWeek / 2, kWeek);
  // The week is that of transmission and the second that of the reference time, which around the end of a
  // week lie in different ones.
  const std::int64_t of_week = (time_ns - kGpsBegins_s * kSecond) % kWeek;
  const bool near_end = of_week < kAroundWeekEnd || of_week > kWeek - kAroundWeekEnd;
  if (weeks == 0 || (near_end && std::abs(weeks) == 1)) {
    disagreements_ = 0;
    // A file of ephemerides alone: nothing else moves the clock.
    if (!epochs_seen_ && weeks == 0 && time_ns > *latest_ns_) latest_ns_ = time_ns;
    return true;
  }
  ++wrong_weeks_;
  disagreements_ = weeks == other_weeks_ ? disagreements_ + 1 : 1;
  other_weeks_ = weeks;
  if (disagreements_ >= kAgreeingDates) {
    latest_ns_ = time_ns;
    disagreements_ = 0;
  }
  return true;
}

bool StreamClock::TakeGpsWeek(int week, std::int64_t second_of_week) {
  if (second_of_week >= kWeek_s) return false;
  const std::int64_t in_era = WeekTime(week, second_of_week) + kEraBegins * kWeek;
  const std::int64_t period = kGpsWeeks * kWeek;
  return Suggest(latest_ns_ ? Nearest(*latest_ns_, in_era, period) : in_era, Strength::kWeek1024);
}

bool StreamClock::TakeGalileoWeek(int week, std::int64_t second_of_week) {
  return second_of_week < kWeek_s &&
         Suggest(WeekTime(week + kGalileoWeekOffset, second_of_week), Strength::kFull);
}

bool StreamClock::TakeBdsWeek(int week, std::int64_t second_of_week) {
  return second_of_week < kWeek_s &&
         Suggest(WeekTime(week + kBdsWeekOffset, second_of_week + kBdsBehindGps_s), Strength::kFull);
}

bool StreamClock::TakeGlonassDate(int four_years, int day, std::int64_t second_of_day) {
  if (four_years < 1 || day < 1 || day > 1461 || second_of_day > kDay_s) return false;
  const std::int64_t days = DaysOf(1996, 1, 1) + std::int64_t{1461} * (four_years - 1) + day - 1;
  const std::int64_t utc_s = days * kDay_s + second_of_day - kMoscowAheadOfUtc_s;
  return Suggest((utc_s + LeapAtUtc(utc_s)) * kSecond, Strength::kGlonass);
}

bool StreamClock::TakeUtc(int modified_julian_day, std::int64_t second_of_day) {
  if (second_of_day > kDay_s) return false;
  const std::int64_t utc_s = (modified_julian_day - kModifiedJulianDayOf1970) * kDay_s + second_of_day;
  return Suggest((utc_s + LeapAtUtc(utc_s)) * kSecond, Strength::kFull);
}

bool StreamClock::TakeLeapSeconds(int seconds) {
  if (!latest_ns_) return true;
  const std::int64_t gps_s = *latest_ns_ / kSecond;
  const int known = LeapSecondsAtGps(gps_s);
  // Those of the table are history; a stream can only know of later ones.
  if (seconds < known || seconds > known + 2) return false;
  if (seconds != known && announced_leap_ != seconds) {
    announced_leap_ = seconds;
    announced_from_utc_s_ = announced_before_ ? gps_s - seconds : 0;
  }
  announced_before_ = true;
  return true;
}

std::optional<std::int64_t> StreamClock::Advance(std::int64_t time_ns) {
  latest_ns_ = time_ns;
  epochs_seen_ = true;
  return time_ns;
}

std::optional<std::int64_t> StreamClock::GpsEpoch(std::int64_t milliseconds) {
  if (!latest_ns_ || milliseconds < 0 || milliseconds >= kWeek_s * 1000) return std::nullopt;
  return Advance(Nearest(*latest_ns_, kGpsBegins_s * kSecond + milliseconds * kMillisecond, kWeek));
}

std::optional<std::int64_t> StreamClock::BdsEpoch(std::int64_t milliseconds) {
  if (!latest_ns_ || milliseconds < 0 || milliseconds >= kWeek_s * 1000) return std::nullopt;
  const std::int64_t begins = (kGpsBegins_s + kBdsBehindGps_s) * kSecond;
  return Advance(Nearest(*latest_ns_, begins + milliseconds * kMillisecond, kWeek));
}

/// The latest known time as Moscow time.
std::int64_t StreamClock::MoscowNow() const {
  const std::int64_t gps_s = FloorDivide(*latest_ns_, kSecond);
  std::int64_t leap = LeapSecondsAtGps(gps_s);
  if (announced_leap_ && gps_s - *announced_leap_ >= announced_from_utc_s_) leap = *announced_leap_;
  return *latest_ns_ + (kMoscowAheadOfUtc_s - leap) * kSecond;
}

/// The time at which so many milliseconds of a Moscow day have passed, or, where the stream counts that way,
/// at which the time of day is this.
std::int64_t StreamClock::GlonassOfDay(std::int64_t day, std::int64_t milliseconds) const {
  const std::int64_t midnight_s = day * kDay_s - kMoscowAheadOfUtc_s;
  const std::int64_t passed = midnight_s * kSecond + milliseconds * kMillisecond;
  const std::int64_t by_passed = passed + LeapAtUtc(midnight_s) * kSecond;
  const std::int64_t by_clock = passed + LeapAtUtc(FloorDivide(passed, kSecond)) * kSecond;
  if (time_of_day_) return by_clock;
  return by_passed != *latest_ns_ && by_clock == *latest_ns_ ? by_clock : by_passed;
}

std::int64_t StreamClock::NearestGlonassEpoch(std::int64_t milliseconds) const {
  const std::int64_t today = FloorDivide(MoscowNow(), kDay);
  std::int64_t best = GlonassOfDay(today, milliseconds);
  for (const std::int64_t day : {today - 1, today + 1}) {
    const std::int64_t other = GlonassOfDay(day, milliseconds);
    if (std::llabs(other - *latest_ns_) < std::llabs(best - *latest_ns_)) best = other;
  }
  return best;
}

std::optional<std::int64_t> StreamClock::GlonassEpoch(int day_of_week, std::int64_t milliseconds) {
  constexpr std::int64_t kLongestDay_ms = (kDay_s + 1) * 1000;
  constexpr std::int64_t kSameEpochs = 60 * kSecond;
  if (!latest_ns_ || milliseconds < 0 || milliseconds >= kLongestDay_ms || day_of_week > 7)
    return std::nullopt;
  const std::int64_t by_time_of_day = NearestGlonassEpoch(milliseconds);
  std::int64_t chosen = by_time_of_day;
  if (day_of_week != 7) {
    const std::int64_t today = FloorDivide(MoscowNow(), kDay);
    const std::int64_t day = Nearest(today, day_of_week + 3, 7);  // 1970-01-04 was a Sunday
    chosen = GlonassOfDay(day, milliseconds);
    if (chosen != by_time_of_day && std::llabs(by_time_of_day - *latest_ns_) <= kSameEpochs) {
      ++wrong_days_;
      chosen = by_time_of_day;
    }
  }
  const std::int64_t midnight_s = FloorDivide(MoscowNow(), kDay) * kDay_s - kMoscowAheadOfUtc_s;
  const std::int64_t passed = (midnight_s + LeapAtUtc(midnight_s)) * kSecond + milliseconds * kMillisecond;
  if (chosen == *latest_ns_ && chosen - passed == kSecond) time_of_day_ = true;
  return Advance(chosen);
}

std::int64_t StreamClock::NearestGps(std::int64_t second_of_week) const {
  return Nearest(*latest_ns_, (kGpsBegins_s + second_of_week) * kSecond, kWeek);
}

std::int64_t StreamClock::NearestBds(std::int64_t second_of_week) const {
  return Nearest(*latest_ns_, (kGpsBegins_s + kBdsBehindGps_s + second_of_week) * kSecond, kWeek);
}

std::int64_t StreamClock::NearestGlonass(std::int64_t second_of_day) const {
  const std::int64_t moscow = Nearest(MoscowNow(), second_of_day * kSecond, kDay);
  const std::int64_t utc_s = moscow / kSecond - kMoscowAheadOfUtc_s;
  return (utc_s + LeapAtUtc(utc_s)) * kSecond;
}

}  // namespace orsolva_host::rtcm
