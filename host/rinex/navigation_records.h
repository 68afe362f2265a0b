// One record of a navigation file: its numbers as read, and the library's records made from them.
#ifndef ORSOLVA_RINEX_NAVIGATION_RECORDS_H
#define ORSOLVA_RINEX_NAVIGATION_RECORDS_H

#include <array>
#include <cstdint>

#include "orsolva/records.h"

namespace orsolva_host {

/// The numbers of a record in the order of RINEX 3.05, tables A6 to A14: v[0] to v[2] are on the epoch
/// line, each line after it has four. A blank field is 0.
struct NavigationRecord {
  static constexpr std::size_t kMaxValues = 3 + 4 * 9;

  char letter = 'G';
  int number = 0;
  Time_gbt time = {};
  std::array<double, kMaxValues> v = {};
  int lines = 0;  ///< lines after the epoch line
  long line = 0;  ///< where the record begins
};

// Each of these returns false when an integer of the record is out of the range of its field.

/// GPS and QZSS.
bool ToGps(const NavigationRecord& record, GpsEph_gbt& eph);
/// Channel numbers above 127, which some files contain instead of negative ones, count down from 256.
bool ToGlonass(const NavigationRecord& record, GloEph_gbt& eph);
bool ToBds(const NavigationRecord& record, BdsEph_gbt& eph);
/// @param data_sources  RINEX bits, see GalileoRecord
bool ToGalileo(const NavigationRecord& record, GalEph_gbt& eph, std::int64_t& data_sources);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_NAVIGATION_RECORDS_H
