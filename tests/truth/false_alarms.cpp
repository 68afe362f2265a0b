#include "tests/truth/slip_trial.h"

namespace orsolva_test {
namespace {

using orsolva::GeometrySlipReason;
using orsolva::IonosphereSlipReason;
using orsolva::PairEpochDetail;

/// What the pairs of one satellite and band say in one epoch.
struct BandAlarms {
  bool tested = false, geometry_free = false, geometry = false, new_record = false;
};

/// Counts satellite-epochs by band.
class AlarmTally {
 public:
  void CountEpoch(const std::vector<PairEpochDetail>& epoch) {
    for (const PairEpochDetail& d : epoch) {
      if (d.satellite.prn != prn_ || d.satellite.sys != system_) CloseSatellite();
      system_ = d.satellite.sys;
      prn_ = d.satellite.prn;
      AddPair(d);
    }
    CloseSatellite();
  }

  std::map<std::string, FalseAlarms> ByBand() const {
    std::map<std::string, FalseAlarms> all;
    for (std::size_t i = 0; i < labels_.size(); ++i) all[labels_[i]] = tallies_[i];
    return all;
  }

 private:
  void AddPair(const PairEpochDetail& d) {
    if (!d.counting || !d.has_difference) return;
    BandAlarms& band = open_[BandIndex(d.satellite.sys, static_cast<int>(d.code))];
    band.tested = true;
    if (d.ionosphere_slip != IonosphereSlipReason::kNone) band.geometry_free = true;
    if (d.geometry_slip == GeometrySlipReason::kNewEphemeris) band.new_record = true;
    if (d.geometry_slip == GeometrySlipReason::kThreshold) band.geometry = true;
  }

  void CloseSatellite() {
    for (std::size_t i = 0; i < open_.size(); ++i) {
      if (!open_[i].tested) continue;
      ++tallies_[i].epochs;
      if (open_[i].geometry_free) ++tallies_[i].geometry_free;
      if (open_[i].geometry) ++tallies_[i].geometry;
      if (open_[i].new_record) ++tallies_[i].new_record;
      open_[i] = {};
    }
  }

  std::size_t BandIndex(int system, int code) {
    const auto known = index_.find({system, code});
    if (known != index_.end()) return known->second;
    const std::string label = BandLabel(system, code);
    std::size_t i = 0;
    while (i < labels_.size() && labels_[i] != label) ++i;
    if (i == labels_.size()) {
      labels_.push_back(label);
      tallies_.emplace_back();
      open_.emplace_back();
    }
    index_[{system, code}] = i;
    return i;
  }

  int system_ = 0, prn_ = 0;
  std::vector<std::string> labels_;
  std::vector<FalseAlarms> tallies_;
  std::vector<BandAlarms> open_;
  std::map<std::pair<int, int>, std::size_t> index_;
};

}  // namespace

void FalseAlarms::Add(const FalseAlarms& other) {
  epochs += other.epochs;
  geometry_free += other.geometry_free;
  geometry += other.geometry;
  new_record += other.new_record;
}

std::map<std::string, FalseAlarms> RunWithoutSlips(const orsolva_host::Scenario& scenario, Proof& proof) {
  AlarmTally tally;
  SlipRuleChecker checker(scenario, proof);
  ByEpoch epochs([&](const std::vector<PairEpochDetail>& epoch) {
    tally.CountEpoch(epoch);
    checker.CheckEpoch(epoch);
  });
  const ObservedRun run(scenario, [&epochs](const PairEpochDetail& d) { epochs.Add(d); });
  epochs.Finish();
  proof.Check(run.Good(), "a batch was refused");
  return tally.ByBand();
}

}  // namespace orsolva_test
