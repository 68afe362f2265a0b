// Ephemeris messages: integers as transmitted, and broadcast records made from them.
#ifndef ORSOLVA_FORMATS_RTCM_EPHEMERIS_H
#define ORSOLVA_FORMATS_RTCM_EPHEMERIS_H

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "host/formats/rtcm/ephemeris_fields.h"
#include "host/formats/rtcm/stream_clock.h"
#include "host/observation/broadcast_records.h"

namespace orsolva_host::rtcm {

/// The values of a message 1019, 1020, 1041, 1042, 1044, 1045 or 1046, by term.
struct EphemerisMessage {
  int message = 0;
  std::array<std::int64_t, term::kEphemerisTerms> values = {};

  /// In the unit of the field, angles in semicircles; 0 where the message has no such field.
  double Scaled(term::Ephemeris name) const;
};

/// @return absent when the message is of another type or too short
std::optional<EphemerisMessage> ReadEphemeris(std::string_view message);
std::string WriteEphemeris(const EphemerisMessage& ephemeris);

/// The satellite, as RINEX numbers it; absent when the number is none of the system.
std::optional<SatelliteId> SatelliteOf(const EphemerisMessage& ephemeris);

/// Gives the date of the message to the clock. @return false when it is impossible
bool TakeDate(const EphemerisMessage& ephemeris, StreamClock& clock);

inline bool IsStateVector(const EphemerisMessage& ephemeris) { return ephemeris.message == 1020; }

/// Records as readers of navigation files make them, from any message but 1020 and from 1020; reference times
/// are those nearest to the clock, which must be known. Angles become radians by the pi of IS-GPS-200
/// (20.3.3.4.3), 3.1415926535898, as in navigation files. Absent: an impossible satellite or reference time.
std::optional<KeplerRecord> KeplerOf(const EphemerisMessage& ephemeris, const StreamClock& clock);
std::optional<StateVectorRecord> StateVectorOf(const EphemerisMessage& ephemeris, const StreamClock& clock);

/// Messages from records, each value rounded to the step of its field. What a record does not hold (issues,
/// accuracy, group delays but those of BDS) is 0.
/// @param message  1019, 1041, 1042, 1044, 1045 or 1046, of the record's system
EphemerisMessage MessageOf(const KeplerRecord& record, int message);
/// @return 1020
EphemerisMessage MessageOf(const StateVectorRecord& record);

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_EPHEMERIS_H
