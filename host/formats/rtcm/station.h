// What a stream says of its station: messages 1005 to 1008, 1033, 1230, and texts and times of 1013 and 1029.
#ifndef ORSOLVA_FORMATS_RTCM_STATION_H
#define ORSOLVA_FORMATS_RTCM_STATION_H

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/formats/rtcm/fields.h"

namespace orsolva_host::rtcm {

/// Code-phase biases of GLONASS (1230): to be added to the pseudoranges, m.
struct GlonassBiases {
  bool aligned = false;  ///< DF421: pseudoranges are corrected already
  std::optional<double> l1_ca, l1_p, l2_ca, l2_p;

  friend bool operator==(const GlonassBiases&, const GlonassBiases&) = default;
};

/// Everything known so far; texts are empty and values absent until a message gives them.
struct StationDescription {
  std::optional<int> id;                            ///< DF003
  std::optional<int> itrf_year;                     ///< DF021, since 1900 or 2000 as transmitted
  std::optional<std::array<double, 3>> position_m;  ///< antenna reference point, ECEF
  std::optional<double> antenna_height_m;           ///< 1006: of the reference point above the mark
  bool virtual_station = false;                     ///< DF141: no physical receiver
  std::string antenna;                              ///< IGS name with radome
  std::optional<int> antenna_setup;
  std::string antenna_serial;
  std::string receiver;
  std::string firmware;
  std::string receiver_serial;
  std::optional<GlonassBiases> glonass_biases;

  friend bool operator==(const StationDescription&, const StationDescription&) = default;
};

/// Message 1005 or 1006 as transmitted.
namespace position {
enum Position : std::uint8_t {
  kMessage,
  kStation,
  kItrfYear,
  kGps,
  kGlonass,
  kGalileo,
  kVirtual,
  kX,
  kOscillator,
  kReserved,
  kY,
  kQuarterCycle,
  kZ,
  kHeight,
  kPositionTerms
};
}  // namespace position

/// The rows of 1005 or 1006; empty for another message.
std::span<const FieldRow> PositionRows(int message);

/// Takes in a message 1005 to 1008, 1033 or 1230. A position of zeros is absent.
/// @return false when it is of another type or too short; the description is then unchanged
bool TakeStation(std::string_view message, StationDescription& station);

/// The messages that describe a station, for what is known of it.
std::string WritePosition(const StationDescription& station);   ///< 1006. @pre a position
std::string WriteEquipment(const StationDescription& station);  ///< 1033

/// A text for people, message 1029.
struct TextMessage {
  int modified_julian_day = 0;
  std::int64_t second_of_day = 0;  ///< UTC
  std::string text;                ///< UTF-8 as transmitted
};
std::optional<TextMessage> ReadText(std::string_view message);

/// The head of message 1013.
struct SystemParameters {
  int modified_julian_day = 0;
  std::int64_t second_of_day = 0;   ///< UTC
  std::optional<int> leap_seconds;  ///< GPS time minus UTC
};
std::optional<SystemParameters> ReadSystemParameters(std::string_view message);

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_STATION_H
