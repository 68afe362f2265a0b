// Which week and which day the times of a stream belong to.
//
// Messages give times as milliseconds of a week or of a day, and ephemerides give weeks modulo some power of
// two. All of it is resolved here. Times are nanoseconds since 1970-01-01 on the GPS time scale.
#ifndef ORSOLVA_FORMATS_RTCM_STREAM_CLOCK_H
#define ORSOLVA_FORMATS_RTCM_STREAM_CLOCK_H

#include <cstdint>
#include <optional>

namespace orsolva_host::rtcm {

constexpr std::int64_t kDay_s = 86400;
constexpr std::int64_t kWeek_s = 7 * kDay_s;
constexpr std::int64_t kGpsBegins_s = 315964800;  ///< 1980-01-06
constexpr std::int64_t kBdsBehindGps_s = 14;
constexpr std::int64_t kMoscowAheadOfUtc_s = 3 * 3600;
constexpr int kGalileoWeekOffset = 1024;  ///< week 0 of GST is 1999-08-22
constexpr int kBdsWeekOffset = 1356;      ///< week 0 of BDT is 2006-01-01

/// GPS time minus UTC in seconds at a time of UTC, and at a time of GPS (seconds since 1970-01-01).
int LeapSecondsAtUtc(std::int64_t utc_s);
int LeapSecondsAtGps(std::int64_t gps_s);

// The fields of observation messages that give a time, for a writer.

std::int64_t GpsMilliseconds(std::int64_t time_ns);
std::int64_t BdsMilliseconds(std::int64_t time_ns);
struct GlonassFields {
  int day_of_week = 0;  ///< 0 is Sunday
  std::int64_t milliseconds = 0;
};
/// Milliseconds passed since midnight of Moscow time, also on the day of a leap second.
GlonassFields GlonassMilliseconds(std::int64_t time_ns);

/// The clock is set once: from outside (the start of a recording, the host's clock of a live stream), or from
/// the first date in the stream. From then on a time is the one nearest to the latest known time that fits
/// what the message gives, so that no boundary of a week or a day needs a rule of its own, and a wrong week
/// in an ephemeris costs nothing. Only gaps of more than half a week need the weeks of ephemerides again:
/// three in a row that agree on another week set the clock again.
///
/// Dates by strength: Galileo and BDS weeks and the dates of messages 1013 and 1029 are full dates. Those of
/// GLONASS ephemerides are too, but some satellites send a wrong number of the four years. GPS, QZSS and
/// NavIC weeks repeat after 1024: of themselves they are placed in the 1024 weeks from 2019-04-07 on.
class StreamClock {
 public:
  explicit StreamClock(std::optional<std::int64_t> near_ns = std::nullopt) : latest_ns_(near_ns) {}

  bool Known() const { return latest_ns_.has_value(); }
  std::optional<std::int64_t> Latest() const { return latest_ns_; }
  /// Sets the clock from a date of GLONASS, else from a week modulo 1024, if there was none better.
  /// @return Known()
  bool UseWeakDate();

  // What ephemerides and texts say of the date. False: impossible, and ignored.

  bool TakeGpsWeek(int week, std::int64_t second_of_week);  ///< GPS, QZSS, NavIC; modulo 1024
  bool TakeGalileoWeek(int week, std::int64_t second_of_week);
  bool TakeBdsWeek(int week, std::int64_t second_of_week);
  /// @param four_years  N4: 1 is 1996 to 1999 @param day  NT: 1 is 1 January of a leap year
  /// @param second_of_day  of Moscow time (UTC + 3 h)
  bool TakeGlonassDate(int four_years, int day, std::int64_t second_of_day);
  bool TakeUtc(int modified_julian_day, std::int64_t second_of_day);
  /// GPS time minus UTC as the stream announces it (message 1013). A value above the table's, for a leap
  /// second that is younger than the table, takes its place: wholly when it is the first announcement, from
  /// the latest known time on when an earlier one was another.
  bool TakeLeapSeconds(int seconds);

  // Times of observations; these move the clock. Absent: the clock is not known, or the field is impossible.

  /// GPS, Galileo, QZSS, NavIC, SBAS. @param milliseconds  of the week, below 604,800,000
  std::optional<std::int64_t> GpsEpoch(std::int64_t milliseconds);
  std::optional<std::int64_t> BdsEpoch(std::int64_t milliseconds);
  /// @param day_of_week  0 is Sunday, 7 is not known @param milliseconds  of the day of Moscow time
  ///
  /// On the day of a leap second, 03:00 Moscow time, the field runs to 86,400,999: milliseconds passed since
  /// midnight. Where the stream shows that its receiver gives the time of day instead (its other systems
  /// have the same epoch), that is followed. A day of week that disagrees with the latest known time while
  /// the time of day agrees is counted and not followed.
  std::optional<std::int64_t> GlonassEpoch(int day_of_week, std::int64_t milliseconds);

  // Reference times of ephemerides: the nearest to the latest known time. The clock must be known.

  std::int64_t NearestGps(std::int64_t second_of_week) const;
  std::int64_t NearestBds(std::int64_t second_of_week) const;
  std::int64_t NearestGlonass(std::int64_t second_of_day) const;

  std::uint64_t WrongDays() const { return wrong_days_; }    ///< days of week of GLONASS that disagreed
  std::uint64_t WrongWeeks() const { return wrong_weeks_; }  ///< dates that disagreed with the clock

 private:
  int LeapAtUtc(std::int64_t utc_s) const;
  enum class Strength { kWeek1024, kGlonass, kFull };

  bool Suggest(std::int64_t time_ns, Strength strength);
  std::int64_t MoscowNow() const;
  std::int64_t GlonassOfDay(std::int64_t day, std::int64_t milliseconds) const;
  std::int64_t NearestGlonassEpoch(std::int64_t milliseconds) const;
  std::optional<std::int64_t> Advance(std::int64_t time_ns);

  std::optional<std::int64_t> latest_ns_;
  std::optional<std::int64_t> weak_ns_;  ///< the strongest date short of a full one
  Strength weak_strength_ = Strength::kWeek1024;
  std::optional<int> announced_leap_;
  std::int64_t announced_from_utc_s_ = 0;
  bool announced_before_ = false;
  std::int64_t other_weeks_ = 0;  ///< offset of the dates that disagree in a row
  int disagreements_ = 0;
  std::uint64_t wrong_days_ = 0;
  std::uint64_t wrong_weeks_ = 0;
  bool epochs_seen_ = false;
  bool time_of_day_ = false;  ///< the receiver's GLONASS field is time of day on the day of a leap second
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_STREAM_CLOCK_H
