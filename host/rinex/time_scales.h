// Steps between time scales.
#ifndef ORSOLVA_RINEX_TIME_SCALES_H
#define ORSOLVA_RINEX_TIME_SCALES_H

#include "orsolva/records.h"

namespace orsolva_host {

constexpr int kBdsTimeBehindGps_s = 14;
constexpr int kTaiAheadOfGps_s = 19;

/// GPS time minus UTC at a time of UTC, s.
int LeapSecondsAt(const Time_gbt& utc);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_TIME_SCALES_H
