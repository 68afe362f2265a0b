// The epoch line of RINEX 3 and 4: "> 2020 06 25 00 00 30.0000000  0 43", and in compact files the
// satellites from column 42 on.
#ifndef ORSOLVA_RINEX_EPOCH_LINE_H
#define ORSOLVA_RINEX_EPOCH_LINE_H

#include <string_view>

#include "interface/records.h"

namespace orsolva_host {

struct EpochLine {
  Time_gbt time = {};
  bool time_given = false;
  int flag = 0;
  int count = 0;  ///< satellites, or lines of an event
};

/// @return false when the line is no epoch line; an event may lack its time
bool ParseEpochLine(std::string_view line, EpochLine& epoch);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_EPOCH_LINE_H
