// Limits of alarms, and the profiles that set them.
#ifndef ORSOLVA_LIVE_ALARMS_LIMITS_H
#define ORSOLVA_LIVE_ALARMS_LIMITS_H

#include <string>
#include <vector>

namespace orsolva_host::live {

struct Limits {
  // data_gap: the longer of both
  double gap_s = 5;
  double gap_intervals = 3;
  // latency: median over a minute
  double latency_warning_s = 3;
  double latency_bad_s = 5;
  double burst_ratio = 0.3;       ///< slip_burst: part of the satellites that slip in one epoch
  double snr_drop_db = 3;         ///< snr_drop: median of a band below the usual
  double snr_drop_s = 10;         ///< for so long
  double completeness = 0.9;      ///< of a signal in the last hour, 0 to 1
  double multipath_m = 1;         ///< RMS of a signal in the last hour; twice that of GLONASS C/A
  double few_ratio = 0.3;         ///< satellites_few: part of those expected that is missing
  double ephemeris_age_s = 7200;  ///< ephemeris_old: since one of the system came
  double glonass_ephemeris_age_s = 1800;
  double moved_m = 5;       ///< computed position against that of the stream
  double crc_ratio = 0.01;  ///< crc_errors: part of the frames of a minute
  /// messages_missing: of each entry one type must come, "1074|1077".
  std::vector<std::string> required_messages;
};

/// A number of Limits as it is written in a file of stations, with the values that make sense.
struct LimitField {
  const char* key;
  double Limits::*value;
  double least, most;  ///< both allowed
  const char* unit;    ///< empty: none
};

const std::vector<LimitField>& LimitFields();

/// What contradicts itself in limits that each are in their range; empty when nothing does.
std::string WrongWithLimits(const Limits& limits);

/// A named set of limits.
struct LimitsProfile {
  const char* name;
  const char* source;  ///< where its limits come from, a sentence
  Limits limits;
};

/// "default", "centipede" and "epn-realtime".
const std::vector<LimitsProfile>& LimitsProfiles();
/// Null when there is none of the name.
const LimitsProfile* FindLimits(const std::string& name);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_ALARMS_LIMITS_H
