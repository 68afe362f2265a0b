#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "host/simulator/antenna_path.h"
#include "host/simulator/fault_kinds.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/simulation_work.h"
#include "orsolva/run_facts.h"

namespace orsolva_host {

void Simulation::Work::BeginTruth() {
  truth.position_m = scenario.receiver.position_m;
  truth.header_position_m = truth.position_m;
  for (const Fault& fault : scenario.faults) {
    if (fault.kind != FaultKind::kHeaderOffset) continue;
    for (std::size_t i = 0; i < 3; ++i) truth.header_position_m[i] += fault.size * start.east[i];
  }
  truth.cutoff_deg = scenario.truth_cutoff_deg;
  truth.interval_s = scenario.interval_s;
  truth.mean_window = orsolva::AveragingWindow(scenario.interval_s);
  day_start_s_ = static_cast<double>(scenario.start.time % 86400);
}

void Simulation::Work::BeginSatellites() {
  for (const SkySatellite& satellite : sky.Satellites()) {
    SatelliteWork work(scenario, satellite.system, satellite.number, work_.size());
    SatelliteTruth t;
    t.system = satellite.system;
    t.number = satellite.number;
    t.healthy = satellite.healthy;
    for (const std::string& name : SignalsOf(scenario, satellite.system, satellite.number)) {
      work.signals.emplace_back(scenario, satellite.system, satellite.number, satellite.channel, name,
                                static_cast<std::size_t>(truth.mean_window));
      t.signals.emplace_back();
      t.signals.back().name = name;
      t.signals.back().number = work.signals.back().Number();
    }
    work_.push_back(std::move(work));
    truth.satellites.push_back(std::move(t));
  }
}

void Simulation::Work::BeginFaults() {
  faults_ =
      ResolveFaults(scenario, grid, [this](const FaultTarget& target, double seconds, double above_deg) {
        return Visible(target, seconds, above_deg);
      });
  const auto slips = std::stable_partition(faults_.begin(), faults_.end(), [](const ActiveFault& active) {
    return active.fault.kind != FaultKind::kSlip;
  });
  slips_.assign(slips, faults_.end());
  faults_.erase(slips, faults_.end());
  for (ActiveFault& active : faults_) Assign(active);
  for (ActiveFault& active : slips_) Assign(active);
}

/// Hands a fault to the satellites and signals that it affects.
void Simulation::Work::Assign(ActiveFault& active) {
  for (std::size_t i = 0; i < work_.size(); ++i) {
    if (!active.Meets(truth.satellites[i].system, truth.satellites[i].number)) continue;
    work_[i].AddFault(&active);
    for (std::size_t j = 0; j < work_[i].signals.size(); ++j) {
      const bool meets = MeetsSignals(active.fault.kind) && active.Meets(truth.satellites[i].signals[j].name);
      if (meets) work_[i].signals[j].AddFault(&active);
    }
  }
}

/// The satellites and signals of a target above an elevation limit; one entry per signal.
std::vector<FaultTarget> Simulation::Work::Visible(const FaultTarget& target, double seconds,
                                                   double above_deg) const {
  std::vector<FaultTarget> all;
  const Site from = SiteOnPath(start, scenario.receiver.path, seconds);
  for (std::size_t i = 0; i < work_.size(); ++i) {
    const SatelliteTruth& s = truth.satellites[i];
    if ((target.system != 0 && target.system != s.system) ||
        (target.satellite != 0 && target.satellite != s.number)) {
      continue;
    }
    double travel = kFirstTravel_s;
    if (LineOfSightTo(i, seconds, travel, from).direction.elevation_rad <= above_deg * kRadian) continue;
    for (const SignalTruth& signal : s.signals) {
      if (!target.signal.empty() && target.signal != signal.name) continue;
      all.push_back({s.system, s.number, signal.name});
    }
  }
  return all;
}

}  // namespace orsolva_host
