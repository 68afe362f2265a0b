#include "qc/navigation_loading.h"

#include "toolkit/satellite.h"

namespace orsolva {

namespace {

/// Health of every satellite number: 0 no record, 1 some record healthy, -1 all unhealthy.
class HealthScan {
 public:
  virtual ~HealthScan() = default;

  template <class Record>
  void Take(const Record* records, std::int32_t count, std::uint8_t system) {
    for (std::int32_t i = 0; records != nullptr && i < count; ++i) {
      const int number = gnssqctoolkit::QcSatelliteIndex({system, records[i].prn});
      if (number < 1 || states_[number - 1] == 1) continue;
      states_[number - 1] = records[i].svh == 0 ? 1 : -1;
    }
  }

  void Mark(std::uint8_t* sat_usable) const {
    for (int i = 0; i < gnssqctoolkit::kMaxSatellites; ++i) {
      if (states_[i] == -1) sat_usable[i] = kUnhealthySatellite;
    }
  }

 private:
  std::int8_t states_[gnssqctoolkit::kMaxSatellites] = {};
};

/// @return whether there was any record
template <class Store, class Record>
bool AddHealthy(Store& store, const Record* records, std::int32_t count) {
  if (records == nullptr || count < 1) return false;
  for (std::int32_t i = 0; i < count; ++i) {
    if (records[i].svh == 0) store.Add(records[i]);
  }
  return true;
}

}  // namespace

bool LoadNavigation(const NavBodyData_QC_gbt& nav, gnssqctoolkit::Ephemeris& ephemeris,
                    std::uint8_t* sat_usable) {
  bool any = AddHealthy(ephemeris.Gps(), nav.gps_eph, nav.gps_num);
  any |= AddHealthy(ephemeris.Glonass(), nav.glo_eph, nav.glo_num);
  any |= AddHealthy(ephemeris.Bds(), nav.bds_eph, nav.bds_num);
  any |= AddHealthy(ephemeris.Galileo(), nav.gal_eph, nav.gal_num);
  any |= AddHealthy(ephemeris.Qzss(), nav.qzs_eph, nav.qzs_num);
  ephemeris.UpdateGlonassChannels();

  HealthScan scan;
  scan.Take(nav.gps_eph, nav.gps_num, gnssqctoolkit::kGps);
  scan.Take(nav.glo_eph, nav.glo_num, gnssqctoolkit::kGlonass);
  scan.Take(nav.bds_eph, nav.bds_num, gnssqctoolkit::kBds);
  scan.Take(nav.gal_eph, nav.gal_num, gnssqctoolkit::kGalileo);
  scan.Take(nav.qzs_eph, nav.qzs_num, gnssqctoolkit::kQzss);
  scan.Mark(sat_usable);
  return any;
}

}  // namespace orsolva
