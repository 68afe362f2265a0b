// GNSS time: one instant as calendar date, as week and seconds of week, and as seconds since 1970.
//
// All three forms are in the time scale of the values they are built from. GPS time is the working scale; BDS
// time is reached by a shift of 14 s, UTC by the leap-second table. Differences are always taken on the
// absolute form.
#ifndef ORSOLVA_TOOLKIT_TIME_H
#define ORSOLVA_TOOLKIT_TIME_H

#include <cstddef>
#include <cstdint>

namespace gnssqctoolkit {

/// Whole seconds since 1970-01-01 00:00:00 and a fraction of a second.
struct AbsoluteTime {
  std::int64_t Seconds = 0;
  double Fraction = 0.0;
};

/// An instant in its three forms. Every constructor fills all of them.
class GNSSTime {
 public:
  GNSSTime() = default;  ///< all members zero
  /// From the calendar; stores the six values as they are and derives the rest.
  GNSSTime(std::int32_t year, std::int32_t month, std::int32_t day, std::int32_t hour, std::int32_t minute,
           double second);
  /// From GPS week and seconds of week; whole weeks in `seconds_of_week` are carried, truncating toward zero.
  /// Not-a-number or absurd seconds (beyond 1e15) and a week that leaves its 32 bits give the zero time.
  GNSSTime(std::int32_t week, double seconds_of_week);
  /// From an absolute time; the stored absolute time is the one recomputed from the calendar.
  explicit GNSSTime(const AbsoluteTime& absolute);
  GNSSTime(const GNSSTime&) = default;
  GNSSTime& operator=(const GNSSTime&) = default;
  virtual ~GNSSTime() = default;

  std::int32_t Year() const { return year_; }
  std::int32_t Month() const { return month_; }
  std::int32_t Day() const { return day_; }
  std::int32_t Hour() const { return hour_; }
  std::int32_t Minute() const { return minute_; }
  double Second() const { return second_; }
  std::int32_t DayOfYear() const { return day_of_year_; }
  std::int32_t Week() const { return week_; }
  double SecondsOfWeek() const { return seconds_of_week_; }
  const AbsoluteTime& Absolute() const { return absolute_; }

 private:
  void CalendarToWeek();
  void WeekToCalendar();
  void CalendarToAbsolute();

  std::int32_t year_ = 0, month_ = 0, day_ = 0, hour_ = 0, minute_ = 0;
  double second_ = 0.0;
  std::int32_t day_of_year_ = 0;
  std::int32_t week_ = 0;
  double seconds_of_week_ = 0.0;
  AbsoluteTime absolute_;
};

/// a - b in seconds: the difference of the whole seconds plus that of the fractions. The one difference of
/// times in the library.
// Inline, as everything done per epoch calls it.
inline double TimeDifference(const AbsoluteTime& a, const AbsoluteTime& b) {
  std::int64_t whole = 0;
  if (__builtin_sub_overflow(a.Seconds, b.Seconds, &whole)) {
    return (static_cast<double>(a.Seconds) - static_cast<double>(b.Seconds)) + (a.Fraction - b.Fraction);
  }
  return static_cast<double>(whole) + (a.Fraction - b.Fraction);
}
double TimeDifference(const GNSSTime& a, const GNSSTime& b);

/// The instant `dt` seconds before t. The fraction is normalised by whole seconds; exactly 1.0 stays.
GNSSTime SubtractSeconds(const GNSSTime& t, double dt);
/// The absolute form of SubtractSeconds(GNSSTime(t), dt), bit for bit, without building calendars.
AbsoluteTime SubtractSeconds(const AbsoluteTime& t, double dt);

/// GNSSTime(t).Absolute(), bit for bit, without building the calendar.
AbsoluteTime ThroughCalendar(const AbsoluteTime& t);

/// Whole seconds between which an instant has a calendar form: later than the first, earlier than the second.
inline constexpr std::int64_t kCalendarBegin = std::int64_t{-1461} * 86400;
inline constexpr std::int64_t kCalendarEnd = std::int64_t{47482} * 86400;  // 2100-01-01

/// t + dt with the floor of the new fraction moved into the whole seconds.
AbsoluteTime AbsoluteTimeAdd(const AbsoluteTime& t, double dt);

/// BDS week and seconds of week as an instant in BDS time (no shift to GPS time).
GNSSTime BdsWeekToTime(std::int32_t week, double seconds_of_week);

/// GPS time to UTC.
/// @param leap_seconds  the caller's current count, used after the newest table row; 0 when none
AbsoluteTime GpsToUtc(const AbsoluteTime& t, int leap_seconds);

/// Writes "year/month/day hour:minute:second", zero-padded, cut to `size` bytes with the final zero.
/// @param decimals  digits after the point of the seconds, held within 0 to 15
void TimeText(const GNSSTime& t, int decimals, char* buffer, std::size_t size);

}  // namespace gnssqctoolkit

#endif  // ORSOLVA_TOOLKIT_TIME_H
