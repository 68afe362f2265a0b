// Navigation records with the container the library takes.
#ifndef ORSOLVA_TESTS_SUPPORT_NAVIGATION_SET_H
#define ORSOLVA_TESTS_SUPPORT_NAVIGATION_SET_H

#include <cstdint>
#include <vector>

#include "orsolva/records.h"

namespace orsolva_test {

struct NavigationSet {
  std::vector<GpsEph_gbt> Gps, Qzss;
  std::vector<GloEph_gbt> Glonass;
  std::vector<BdsEph_gbt> Bds;
  std::vector<GalEph_gbt> Galileo;

  NavBodyData_QC_gbt Body() const {
    NavBodyData_QC_gbt body{};
    body.gps_num = static_cast<std::int32_t>(Gps.size());
    body.glo_num = static_cast<std::int32_t>(Glonass.size());
    body.bds_num = static_cast<std::int32_t>(Bds.size());
    body.gal_num = static_cast<std::int32_t>(Galileo.size());
    body.qzs_num = static_cast<std::int32_t>(Qzss.size());
    body.gps_eph = Gps.empty() ? nullptr : Gps.data();
    body.glo_eph = Glonass.empty() ? nullptr : Glonass.data();
    body.bds_eph = Bds.empty() ? nullptr : Bds.data();
    body.gal_eph = Galileo.empty() ? nullptr : Galileo.data();
    body.qzs_eph = Qzss.empty() ? nullptr : Qzss.data();
    return body;
  }
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_NAVIGATION_SET_H
