// Epoch lines.
//
// RINEX 3 and 4: "> 2020 06 25 00 00 30.0000000  0 43", in CRINEX files with the satellites from column 42
// on. RINEX 2: " 21 12 21  0  0 30.0000000  0 26G07G08..." with the satellites from column 33 on.
#ifndef ORSOLVA_RINEX_EPOCH_LINE_H
#define ORSOLVA_RINEX_EPOCH_LINE_H

#include <limits>
#include <string_view>

#include "orsolva/records.h"

namespace orsolva_host {

struct EpochLine {
  Time_gbt time = {};
  bool time_given = false;
  int flag = 0;
  int count = 0;                                                     ///< satellites, or lines of an event
  double clock_offset_s = std::numeric_limits<double>::quiet_NaN();  ///< of the receiver; NaN: not given
};

/// Of RINEX 3 and 4. @return false when the line is not an epoch line; an event may lack its time
bool ParseEpochLine(std::string_view line, EpochLine& epoch);

/// Of RINEX 2, where years 80 to 99 are in the 20th century.
/// @return false when the line is not an epoch line; an event may lack its time
bool ParseEpochLine2(std::string_view line, EpochLine& epoch);

/// The receiver clock offset in a field of an epoch line (plain files). @return NaN when there is none
double ParseClockOffset(std::string_view field);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_EPOCH_LINE_H
