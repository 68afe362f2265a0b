#include "host/rinex/time_scales.h"

#include "host/rinex/civil_time.h"
#include "toolkit/leap_seconds.h"

namespace orsolva_host {

int LeapSecondsAt(const Time_gbt& utc) {
  constexpr std::int64_t kDay_s = 86400;
  for (const gnssqctoolkit::LeapSecondRow& row : gnssqctoolkit::kLeapSeconds) {
    if (row.year == 0) break;
    if (utc.time >= DaysFromCivil(row.year, row.month, row.day) * kDay_s) return row.seconds;
  }
  return 0;
}

}  // namespace orsolva_host
