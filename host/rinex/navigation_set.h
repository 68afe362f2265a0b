// Broadcast navigation records of a run, by system.
#ifndef ORSOLVA_RINEX_NAVIGATION_SET_H
#define ORSOLVA_RINEX_NAVIGATION_SET_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "orsolva/records.h"

namespace orsolva_host {

/// A Galileo record and the message it came from.
struct GalileoRecord {
  GalEph_gbt eph = {};
  std::int64_t data_sources = 0;  ///< RINEX bits: 0 and 2 I/NAV, 1 F/NAV
};

struct NavigationSet {
  std::vector<GpsEph_gbt> gps;
  std::vector<GloEph_gbt> glonass;
  std::vector<BdsEph_gbt> bds;
  std::vector<GalEph_gbt> galileo;
  std::vector<GpsEph_gbt> qzss;

  std::size_t Size() const { return gps.size() + glonass.size() + bds.size() + galileo.size() + qzss.size(); }

  /// The set as a boundary record. Valid as long as this set is not changed.
  NavBodyData_QC_gbt Body() const;
};

/// Galileo records with one message type preferred: an F/NAV record is omitted when the satellite has an
/// I/NAV record within four hours, because their clocks differ by a group delay and a change between them
/// looks like a jump. Of records with equal reference times the first of the better type is kept.
std::vector<GalEph_gbt> PreferInav(const std::vector<GalileoRecord>& records);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_NAVIGATION_SET_H
