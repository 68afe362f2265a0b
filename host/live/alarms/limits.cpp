#include "host/live/alarms/limits.h"

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
