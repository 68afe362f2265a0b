// The header of a RINEX observation file.
#ifndef ORSOLVA_RINEX_OBSERVATION_HEADER_H
#define ORSOLVA_RINEX_OBSERVATION_HEADER_H

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/rinex/diagnostics.h"
#include "host/rinex/line_reader.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// Observation types by system letter 'A' to 'Z', such as "C1C", in file order. The single list of RINEX 2
/// ("C1", "L2", ...) is repeated for every letter.
using ObservationTypes = std::array<std::vector<std::string>, 26>;

/// Divides the values of a system's observation types.
struct ScaleFactor {
  char system = 'G';
  double factor = 1;
  std::vector<std::string> types;  ///< empty: all types of the system
};

struct ObservationHeader {
  double version = 0;
  bool crinex = false;
  char system = 'M';
  std::string marker;
  std::string marker_number;
  std::string receiver, receiver_number, receiver_firmware;
  std::string antenna;  ///< type, with the radome from the 17th character on
  std::string antenna_number;
  std::optional<double> antenna_height_m;  ///< of its reference point above the marker
  std::string time_system;                 ///< of TIME OF FIRST OBS, such as "GPS"; empty when not given
  std::optional<Time_gbt> first_epoch, last_epoch;  ///< stated, in the time system of the file
  std::optional<std::array<double, 3>> position;    ///< approximate, ECEF, m; absent when zero or not given
  std::optional<double> interval_s;
  std::optional<int> leap_seconds;
  std::array<std::optional<int>, 100> glonass_channels;  ///< by slot number
  ObservationTypes types;
  std::vector<ScaleFactor> scale_factors;

  const std::vector<std::string>& TypesOf(char letter) const { return types[letter - 'A']; }
};

/// Seconds to be added to the calendar of the file for GPS time: 14 for BDS time, the leap seconds of the
/// header (0 without any) for GLONASS time, which is UTC.
std::int64_t SecondsToGpsTime(const ObservationHeader& header);
bool IsInGlonassTime(const ObservationHeader& header);

/// Parses header lines one by one, including those after an event in the body.
class HeaderParser {
 public:
  HeaderParser(std::string file, Diagnostics& diagnostics, ObservationHeader& header)
      : file_(std::move(file)), diagnostics_(diagnostics), header_(header) {}

  /// Reads the lines up to and including END OF HEADER.
  /// @throws FileError when the file is not a RINEX observation file of a supported version (2.00 and later)
  void ReadAll(LineReader& lines);

  /// Parses one line according to its label in columns 61 to 80. Unknown labels are ignored.
  void Take(std::string_view line, long number);
  /// Must be called before the lines of another header block: types listed in it replace the previous ones.
  void BeginBlock();

 private:
  void ReadVersion(LineReader& lines);
  void CheckVersion(std::string_view line, double version, long number);
  void TakeTypes(std::string_view line, long number);
  void TakeTypes2(std::string_view line, long number);
  void TakeScaleFactor(std::string_view line, long number);
  void TakeScaleFactor2(std::string_view line, long number);
  void TakeWavelengthFactor(std::string_view line, long number);
  void TakePosition(std::string_view line, long number);
  void TakeHeight(std::string_view line);
  void TakeInterval(std::string_view line, long number);
  void TakeChannels(std::string_view line);
  void Notice(long number, const std::string& text) { diagnostics_.Add(file_, number, text); }

  std::string file_;
  Diagnostics& diagnostics_;
  ObservationHeader& header_;
  char types_system_ = 0;  ///< system of the type list that continues
  bool types2_begun_ = false;
  bool scale_begun_ = false;  ///< a line without a system continues the last scale factor
};

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_OBSERVATION_HEADER_H
