// Observation messages before MSM: GPS 1001 to 1004, GLONASS 1009 to 1012, as transmitted (RTCM 10403.3,
// sections 3.5.1 and 3.5.4).
#ifndef ORSOLVA_FORMATS_RTCM_LEGACY_H
#define ORSOLVA_FORMATS_RTCM_LEGACY_H

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/formats/rtcm/fields.h"

namespace orsolva_host::rtcm {

/// Places in the values of a header and of a satellite.
namespace legacy {
enum Header : std::uint8_t {
  kMessage,
  kStation,
  kTime,  ///< ms of the week, GLONASS of the day
  kMore,
  kCount,
  kSmoothing,
  kSmoothingInterval,
  kHeaderTerms
};
enum Satellite : std::uint8_t {
  kSatellite,
  kCode1,
  kChannel,  ///< GLONASS, plus 7
  kRange1,
  kPhase1,  ///< less the range of L1
  kLock1,
  kAmbiguity,  ///< whole light-milliseconds of the range, GLONASS two of them
  kStrength1,
  kCode2,
  kRange2,  ///< less the range of L1
  kPhase2,  ///< less the range of L1
  kLock2,
  kStrength2,
  kSatelliteTerms
};
}  // namespace legacy

constexpr std::int64_t kInvalidPhase20 = -524288;  ///< DF012, DF018, DF042, DF048
constexpr std::int64_t kInvalidRange14 = -8192;    ///< DF017, DF047

struct LegacyMessage {
  int message = 0;
  std::array<std::int64_t, legacy::kHeaderTerms> header = {};
  std::vector<std::array<std::int64_t, legacy::kSatelliteTerms>> satellites;
};

/// The rows of a satellite; empty when the type is none of these messages.
std::span<const FieldRow> LegacyHeaderRows(int message);
std::span<const FieldRow> LegacySatelliteRows(int message);

/// Whether messages of this type hold the whole ranges of L1 (1002, 1004, 1010, 1012).
bool HasAmbiguity(int message);

/// @return absent when the message is of another type or too short
std::optional<LegacyMessage> ReadLegacy(std::string_view message);
/// The number of satellites in the header is made from the list. @pre at most 31
std::string WriteLegacy(const LegacyMessage& message);

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_LEGACY_H
