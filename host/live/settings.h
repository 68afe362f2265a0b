// What a station is judged by, as plain data with defaults.
#ifndef ORSOLVA_LIVE_SETTINGS_H
#define ORSOLVA_LIVE_SETTINGS_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/live/alarms/limits.h"

namespace orsolva_host::live {

struct StationSettings {
  static constexpr double kHighestCutoff_deg = 90;
  static constexpr double kFastest = 100'000;
  std::string name;
  std::string source;                               ///< with secrets: never shown; StationState::source is
  std::string navigation;                           ///< second source, of ephemerides alone; empty: none
  std::string user, password;                       ///< of the station's caster alone; empty: see below
  std::string common_user, common_password;         ///< of every caster whose station and source have none
  std::string password_variable;                    ///< of the environment, that has the password; else empty
  std::optional<std::array<double, 3>> position_m;  ///< absent: of the stream, else computed
  double elevation_cutoff_deg = 10;
  Limits limits;
  /// Of a replay: a time within half a week of its beginning, GPS time. Absent: from the data.
  std::optional<std::int64_t> start_gps_ns;
  double speed = 0;            ///< of a replay against its own time; 0: as fast as it is judged
  std::string certificates;    ///< file of authorities for TLS; empty: those of the system
  std::string state_folder;    ///< where ephemerides are kept between starts; empty: nowhere
  std::string reports_folder;  ///< where the report of every hour is written; empty: nowhere
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SETTINGS_H
