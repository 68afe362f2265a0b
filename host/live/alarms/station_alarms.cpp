#include "host/live/alarms/station_alarms.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/formats/rtcm/stream_clock.h"
#include "host/live/windows/minute_store.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host::live {
namespace {

constexpr double kFirstEpoch_s = 30;    ///< from the start to the first epoch
constexpr double kHold_s = 10;          ///< a lack of satellites lasts so long
constexpr double kRecording_s = 86400;  ///< no network holds epochs back for a day
constexpr double kQuiet_s = 60;         ///< without a burst, until it is over
constexpr Count kMinExpected = 600;
constexpr double kWell = 0.02;  ///< completeness above its limit that is good again
constexpr double kNine = 0.9;   ///< part of a limit below which a figure is good again
constexpr Hysteresis kTwoMinutes = {1, 1, 2};

std::int64_t Utc(std::int64_t gps_ns) {
  return gps_ns - rtcm::LeapSecondsAtGps(gps_ns / kSecond_ns) * kSecond_ns;
}

/// Of figures that come with every epoch.
Lasting For(double time_s, double interval_s) {
  constexpr double kMost_s = 1e9;  // 30 years
  constexpr double kPerSecond = 1e9;
  const double within_s = time_s < kMost_s ? time_s : kMost_s;
  return {std::llround(within_s * kPerSecond), std::llround(interval_s * kPerSecond)};
}

std::string SubjectOf(const SignalKey& key) { return std::string(1, key.system) + " " + key.signal; }

/// Multipath and noise of a code grow with the length of its chips: those of GLONASS C/A (0.511 MHz, GLONASS
/// ICD, L1, L2, edition 5.1) are twice as long as those of GPS C/A (1.023 MHz, IS-GPS-200), for which and for
/// shorter ones the limits are made.
double MultipathLimit(const SignalKey& key, const Limits& limits) {
  const bool long_chips = key.system == 'R' && (key.signal == "1C" || key.signal == "2C");
  return (long_chips ? 2 : 1) * limits.multipath_m;
}

/// "9.0 dB below", to be followed by what it departs from.
std::string Departure(double level_db) {
  if (std::abs(level_db) < 0.05) return "at";
  return fmt::format("{:.1f} dB {}", std::abs(level_db), level_db < 0 ? "below" : "above");
}

}  // namespace

double StationAlarms::GapLimit(double interval_s) const {
  return std::max(limits_.gap_s, limits_.gap_intervals * interval_s);
}

void StationAlarms::Silence(double silent_s, double interval_s, bool any_epoch, const std::string& problem,
                            std::int64_t now_ns) {
  const double limit_s = any_epoch ? GapLimit(interval_s) : std::max(kFirstEpoch_s, GapLimit(interval_s));
  if (!(silent_s > limit_s)) return;
  alarms_.Update(AlarmKind::kDataGap, "", Standing::kBad, {1, 1, 3}, Utc(now_ns), [&] {
    Finding finding;
    finding.seen =
        fmt::format("no complete epoch for {:.0f} s{}", silent_s, any_epoch ? "" : ", none since the start");
    if (!problem.empty()) finding.seen += ": " + problem;
    finding.advice = problem.empty()
                         ? "Connected, but no epoch comes: check that the receiver tracks and that "
                           "it sends observation messages (MSM4 or MSM7)."
                         : "Check power and network of the station, then the caster and the account.";
    return finding;
  });
}

void StationAlarms::EpochCame(std::int64_t now_ns) {
  alarms_.Update(AlarmKind::kDataGap, "", Standing::kGood, {1, 1, 3}, Utc(now_ns), [] {
    return Finding{Severity::kBad, "epochs come again", ""};
  });
}

void StationAlarms::Satellites(const EpochCounter::Presence& all,
                               const std::map<char, EpochCounter::Presence>& by_system, double interval_s,
                               std::int64_t now_ns) {
  std::vector<std::string> subjects;
  const auto update = [&](const std::string& subject, const EpochCounter::Presence& present) {
    if (present.expected < kMinSatellites) return;
    subjects.push_back(subject);
    const double ratio = static_cast<double>(present.observed) / present.expected;
    const double limit = 1 - limits_.few_ratio;
    alarms_.Update(
        AlarmKind::kSatellitesFew, subject, Below(ratio, limit, limit + (1 - limit) / 3),
        For(kHold_s, interval_s), Utc(now_ns), [&] {
          return Finding{
              Severity::kBad,
              fmt::format("{} of {} satellites{} observed that are above the cut-off", present.observed,
                          present.expected, subject.empty() ? "" : " of " + NameOfSystem(subject[0])),
              "Check what hides the sky, the receiver's elevation mask and the systems it is set to; "
              "if strength fell too, antenna and cable."};
        });
  };
  update("", all);
  for (const auto& [system, present] : by_system) update(std::string(1, system), present);
  alarms_.Keep(AlarmKind::kSatellitesFew, subjects, Utc(now_ns));
}

void StationAlarms::Strengths(const std::vector<BandDeparture>& bands, double interval_s,
                              std::int64_t now_ns) {
  const auto down = [this](const BandDeparture& band) { return band.median_db < -limits_.snr_drop_db; };
  const bool all = std::all_of(bands.begin(), bands.end(), down);
  std::vector<std::string> subjects;
  for (const BandDeparture& band : bands) {
    subjects.push_back(band.band);
    alarms_.Update(
        AlarmKind::kSnrDrop, band.band, Below(band.median_db, -limits_.snr_drop_db, -limits_.snr_drop_db / 2),
        For(limits_.snr_drop_s, interval_s), Utc(now_ns), [&] {
          Finding finding;
          finding.seen = fmt::format("{} is {} its usual strength on {} satellites{}", band.band,
                                     Departure(band.median_db), band.satellites,
                                     all && bands.size() > 1 ? ", and so are all bands" : "");
          finding.advice = all && bands.size() > 1
                               ? "All bands fell: check antenna, connectors, cable and their power."
                               : "One band fell and others did not: interference on it is likely. "
                                 "Look for a new transmitter near the antenna.";
          return finding;
        });
  }
  alarms_.Keep(AlarmKind::kSnrDrop, subjects, Utc(now_ns));
}

void StationAlarms::Slips(int slipped, int tracked, double interval_s, std::int64_t now_ns) {
  const bool burst = tracked >= kMinSatellites && slipped > limits_.burst_ratio * tracked;
  const int good = std::max(1, static_cast<int>(std::ceil(kQuiet_s / interval_s)));
  alarms_.Update(
      AlarmKind::kSlipBurst, "", burst ? Standing::kBad : Standing::kGood, {1, 1, good}, Utc(now_ns), [&] {
        return Finding{Severity::kBad,
                       burst ? fmt::format("{} of {} satellites slipped in one epoch", slipped, tracked)
                             : "no burst of slips for a minute",
                       "All satellites at once are the receiver, its clock or the antenna: look for "
                       "vibration, a loose connector, power, or interference."};
      });
}

void StationAlarms::Latency(std::optional<double> median_s, std::int64_t now_ns) {
  if (!median_s) return;
  const bool bad = *median_s > limits_.latency_bad_s;
  alarms_.Update(
      AlarmKind::kLatency, "", Above(*median_s, limits_.latency_warning_s, kNine * limits_.latency_warning_s),
      kTwoMinutes, Utc(now_ns), [&] {
        return Finding{
            bad ? Severity::kBad : Severity::kWarning,
            fmt::format("epochs came {:.1f} s after their time (median of a minute)", *median_s),
            *median_s > kRecording_s
                ? "So late they may be those of a recording: give the time of its first epoch with --start."
                : "If other streams are as late, this host's clock is wrong: synchronise it. Else "
                  "check the network of the station and the load of the caster."};
      });
}

void StationAlarms::Frames(Count frames, Count crc_errors, std::int64_t now_ns) {
  const Count all = frames + crc_errors;
  if (all == 0) return;
  const double ratio = static_cast<double>(crc_errors) / static_cast<double>(all);
  alarms_.Update(AlarmKind::kCrcErrors, "", Above(ratio, limits_.crc_ratio, limits_.crc_ratio / 2),
                 kTwoMinutes, Utc(now_ns), [&] {
                   return Finding{
                       Severity::kWarning,
                       fmt::format("{} of {} frames in a minute had a wrong CRC", crc_errors, all),
                       "Bytes are lost or changed on the way: check a serial line's speed and flow "
                       "control, and whether two programs write to one stream."};
                 });
}

void StationAlarms::HourOfSignal(const SignalKey& key, const SignalSums& sums, std::int64_t now_ns) {
  const std::string subject = SubjectOf(key);
  if (const auto ratio = sums.Completeness(); ratio && sums.expected >= kMinExpected) {
    const double good = std::min(1.0, limits_.completeness + kWell);
    alarms_.Update(AlarmKind::kCompleteness, subject, Below(*ratio, limits_.completeness, good), kTwoMinutes,
                   Utc(now_ns), [&] {
                     return Finding{
                         Severity::kWarning,
                         fmt::format("{:.1f} % of the expected observations of {} in the last hour",
                                     100 * *ratio, subject),
                         "Compare with the other signals: one alone points to the receiver's settings "
                         "or interference, all of them to gaps or to what hides the sky."};
                   });
  }
  if (const auto rms_m = sums.MultipathM()) {
    const double limit_m = MultipathLimit(key, limits_);
    alarms_.Update(AlarmKind::kMultipath, subject, Above(*rms_m, limit_m, kNine * limit_m), kTwoMinutes,
                   Utc(now_ns), [&] {
                     return Finding{
                         Severity::kWarning,
                         fmt::format("multipath of {} is {:.2f} m in the last hour", subject, *rms_m),
                         "Look for something new that reflects near the antenna, water or snow on it, "
                         "and whether it is still level."};
                   });
  }
}

void StationAlarms::Hour(const WindowSums& hour, std::size_t minutes, std::int64_t now_ns) {
  if (minutes < kMinMinutes) return;
  std::vector<std::string> subjects;
  for (const auto& [key, sums] : hour.signals) {
    subjects.push_back(SubjectOf(key));
    HourOfSignal(key, sums, now_ns);
  }
  alarms_.Keep(AlarmKind::kCompleteness, subjects, Utc(now_ns));
  alarms_.Keep(AlarmKind::kMultipath, subjects, Utc(now_ns));
}

void StationAlarms::Ephemerides(const std::map<char, double>& age_s, std::int64_t now_ns) {
  std::vector<std::string> subjects;
  for (const auto& [system, age] : age_s) {
    subjects.emplace_back(1, system);
    const double limit_s = system == 'R' ? limits_.glonass_ephemeris_age_s : limits_.ephemeris_age_s;
    alarms_.Update(
        AlarmKind::kEphemerisOld, std::string(1, system), Above(age, limit_s, limit_s), {1, 1, 1},
        Utc(now_ns), [&, system = system, age = age] {
          return Finding{
              Severity::kWarning,
              fmt::format("no ephemeris of {} for {:.0f} min", NameOfSystem(system), age / 60),
              "Let the receiver send ephemerides (1019, 1020, 1041, 1042, 1044, 1045, 1046), or give a "
              "stream of them with --nav."};
        });
  }
  alarms_.Keep(AlarmKind::kEphemerisOld, subjects, Utc(now_ns));
}

void StationAlarms::Messages(const MessageWatch& watch, std::int64_t now_ns) {
  std::vector<MessageWatch::Missing> missing = watch.Announced(now_ns);
  const auto required = watch.Required(limits_.required_messages, now_ns);
  missing.insert(missing.end(), required.begin(), required.end());
  std::vector<std::string> subjects;
  for (const MessageWatch::Missing& one : missing) {
    subjects.push_back(one.subject);
    alarms_.Update(AlarmKind::kMessagesMissing, one.subject, Standing::kBad, {1, 1, 1}, Utc(now_ns), [&] {
      return Finding{
          Severity::kWarning,
          fmt::format("no message {} for {:.0f} s; {:.0f} s are allowed", one.subject, one.age_s,
                      one.allowed_s),
          "Check which messages the receiver is set to send; after a change of its settings or its "
          "firmware some may be gone."};
    });
  }
  for (const Alarm& alarm : alarms_.Raised()) {
    const bool still = std::find(subjects.begin(), subjects.end(), alarm.subject) != subjects.end();
    if (alarm.kind != kAlarmKinds[static_cast<std::size_t>(AlarmKind::kMessagesMissing)] || still) continue;
    alarms_.Update(AlarmKind::kMessagesMissing, alarm.subject, Standing::kGood, {1, 1, 1}, Utc(now_ns), [] {
      return Finding{Severity::kWarning, "it comes again", ""};
    });
  }
}

void StationAlarms::Distance(std::optional<double> distance_m, std::int64_t now_ns) {
  if (!distance_m) return;
  alarms_.Update(AlarmKind::kPositionMoved, "computed",
                 Above(*distance_m, limits_.moved_m, kNine * limits_.moved_m), kTwoMinutes, Utc(now_ns), [&] {
                   return Finding{
                       Severity::kBad,
                       fmt::format("positions from codes are {:.1f} m from that of the stream", *distance_m),
                       "Every rover is off by as much: check the coordinates that the base is set to, "
                       "and whether the antenna was moved."};
                 });
}

void StationAlarms::PositionChanged(double distance_m, std::int64_t now_ns) {
  changed_ns_[{AlarmKind::kPositionMoved, "stated"}] = now_ns;
  alarms_.Update(AlarmKind::kPositionMoved, "stated", Standing::kBad, {1, 1, 1}, Utc(now_ns), [&] {
    return Finding{
        Severity::kBad, fmt::format("the position that the stream states changed by {:.3f} m", distance_m),
        "If nobody set new coordinates, the receiver may survey itself in at every start: fix them."};
  });
}

void StationAlarms::IdentityChanged(const std::string& what, const std::string& before,
                                    const std::string& after, std::int64_t now_ns) {
  changed_ns_[{AlarmKind::kIdentityChanged, what}] = now_ns;
  alarms_.Update(AlarmKind::kIdentityChanged, what, Standing::kBad, {1, 1, 1}, Utc(now_ns), [&] {
    return Finding{Severity::kWarning, fmt::format("{} changed from \"{}\" to \"{}\"", what, before, after),
                   "If the equipment was exchanged, bring the station's description up to date; else check "
                   "that the mount point carries the right station."};
  });
}

void StationAlarms::AgeChanges(std::int64_t now_ns) {
  for (auto place = changed_ns_.begin(); place != changed_ns_.end();) {
    if (now_ns - place->second < kHour_ns) {
      ++place;
      continue;
    }
    alarms_.Update(place->first.first, place->first.second, Standing::kGood, {1, 1, 1}, Utc(now_ns), [] {
      return Finding{Severity::kWarning, "unchanged for an hour", ""};
    });
    place = changed_ns_.erase(place);
  }
}

}  // namespace orsolva_host::live
