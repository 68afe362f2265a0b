// Looks at every epoch while the run goes on: an observer that lists the cycle slips of one satellite. Then
// asks what the run was set to.
//
// Observer and facts are no part of the shared library: this program links the static archive,
// Orsolva::static.
#include <orsolva/detail.h>
#include <orsolva/run_facts.h>
#include <orsolva/session.hpp>

#include <cstdio>
#include <vector>

#include "small_sky.h"

namespace {

constexpr int kSlipEpoch = 200;
constexpr double kSlipCycles = 7.0;

// [observer]
class SlipList : public orsolva::QcDetailObserver {
 public:
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail&) override { ++satellite_epochs_; }
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override {
    if (detail.ionosphere_slip != orsolva::IonosphereSlipReason::kRate) return;
    std::printf("G%02d: geometry-free step of %.3f m, threshold %.3f m\n", detail.satellite.prn,
                detail.geometry_free_step_m, detail.geometry_free_threshold_m);
  }
  int SatelliteEpochs() const { return satellite_epochs_; }

 private:
  int satellite_epochs_ = 0;
};
// [observer]

/// Two hours, with a cycle slip of the first satellite in view from one epoch on.
std::vector<ObsEpoch_QC_gbt> EpochsWithASlip() {
  std::vector<ObsEpoch_QC_gbt> epochs(240);
  for (int i = 0; i < 240; ++i) small_sky_epoch(i, &epochs[i]);
  const int slipping = epochs[kSlipEpoch].sats[0].prn;
  for (int i = kSlipEpoch; i < 240; ++i) {
    for (Satellite_gbt& satellite : epochs[i].sats) {
      if (satellite.prn == slipping) satellite.signals[0].phase += kSlipCycles;
    }
  }
  return epochs;
}

}  // namespace

int main() {
  std::vector<GpsEph_gbt> records(SMALL_SKY_RECORDS);
  small_sky_navigation(records.data());
  orsolva::Navigation navigation;
  navigation.gps = records;
  orsolva::Config config;
  config.interval_s = SMALL_SKY_INTERVAL_S;
  config.position_m = {small_sky_station_m[0], small_sky_station_m[1], small_sky_station_m[2]};

  // [set]
  SlipList slips;
  orsolva::Session session;
  if (!session.Start(config, navigation)) return 1;
  orsolva::SetDetailObserver(session.Handle(), &slips);  // after Start, before the batches to be observed
  if (!session.Feed(EpochsWithASlip())) return 1;
  // [set]
  std::printf("%d satellite-epochs observed\n", slips.SatelliteEpochs());
  // [facts]
  const orsolva::RunFacts facts = orsolva::FactsOf(session.Handle());
  std::printf("multipath averaged over %d epochs of %.0f s\n", facts.averaging_window_epochs,
              facts.interval_s);
  // [facts]
  return 0;
}
