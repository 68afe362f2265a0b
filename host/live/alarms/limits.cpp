#include "host/live/alarms/limits.h"

#include <fmt/format.h>

namespace orsolva_host::live {
namespace {

/// docs.centipede-rtk.org, "connect a base": MSM4 or MSM7 of GPS, GLONASS, Galileo and BDS at 1 Hz, the
/// position of the antenna, ephemerides every minute, at all times.
Limits Centipede() {
  Limits limits;
  limits.required_messages = {"1005|1006", "1074|1077", "1084|1087", "1094|1097", "1124|1127"};
  limits.ephemeris_age_s = 900;
  limits.glonass_ephemeris_age_s = 900;
  return limits;
}

/// EUREF Permanent Network, monitoring of real-time streams (epncb.oma.be): latency below 3 s is good, from
/// 5 s on bad. Completeness: guidelines for EPN stations ask for at least 95 % of the observations.
/// Multipath: docs/internals/live.md, where from.
Limits EpnRealtime() {
  Limits limits;
  limits.completeness = 0.95;
  limits.multipath_m = 0.75;
  limits.required_messages = {"1005|1006", "1074|1075|1076|1077"};
  return limits;
}

}  // namespace

const std::vector<LimitField>& LimitFields() {
  constexpr double kDay_s = 86400;
  static const std::vector<LimitField> fields = {
      {"gap_s", &Limits::gap_s, 0.1, kDay_s, "s"},
      {"gap_intervals", &Limits::gap_intervals, 1, 1000, "intervals"},
      {"latency_warning_s", &Limits::latency_warning_s, 0.1, 3600, "s"},
      {"latency_bad_s", &Limits::latency_bad_s, 0.1, 3600, "s"},
      {"burst_ratio", &Limits::burst_ratio, 0.01, 1, ""},
      {"snr_drop_db", &Limits::snr_drop_db, 0.1, 60, "dB"},
      {"snr_drop_s", &Limits::snr_drop_s, 1, 3600, "s"},
      {"completeness", &Limits::completeness, 0, 1, ""},
      {"multipath_m", &Limits::multipath_m, 0.01, 100, "m"},
      {"few_ratio", &Limits::few_ratio, 0.01, 1, ""},
      {"ephemeris_age_s", &Limits::ephemeris_age_s, 60, kDay_s, "s"},
      {"glonass_ephemeris_age_s", &Limits::glonass_ephemeris_age_s, 60, kDay_s, "s"},
      {"moved_m", &Limits::moved_m, 0.1, 100'000, "m"},
      {"crc_ratio", &Limits::crc_ratio, 1e-6, 1, ""}};
  return fields;
}

std::string WrongWithLimits(const Limits& limits) {
  if (limits.latency_warning_s <= limits.latency_bad_s) return {};
  return fmt::format("latency_warning_s is {:g}, expected at most latency_bad_s, which is {:g}",
                     limits.latency_warning_s, limits.latency_bad_s);
}

const std::vector<LimitsProfile>& LimitsProfiles() {
  static const std::vector<LimitsProfile> profiles = {
      {"default", "Defaults of this program.", {}},
      {"centipede", "What the Centipede-RTK network asks of a base station; the rest are defaults.",
       Centipede()},
      {"epn-realtime", "Limits of the EUREF Permanent Network for real-time streams; the rest are defaults.",
       EpnRealtime()}};
  return profiles;
}

const LimitsProfile* FindLimits(const std::string& name) {
  for (const LimitsProfile& profile : LimitsProfiles()) {
    if (name == profile.name) return &profile;
  }
  return nullptr;
}

}  // namespace orsolva_host::live
