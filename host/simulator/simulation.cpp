#include "host/simulator/simulation.h"

#include <algorithm>

#include "host/simulator/simulation_work.h"

namespace orsolva_host {

Simulation::Simulation(const Scenario& scenario)
    : work_(std::make_unique<Work>((CheckScenario(scenario), scenario))) {}
Simulation::~Simulation() = default;
Simulation::Simulation(Simulation&&) noexcept = default;
Simulation& Simulation::operator=(Simulation&&) noexcept = default;

const Scenario& Simulation::Settings() const { return work_->scenario; }
const NavigationSet& Simulation::Navigation() const { return work_->sky.Navigation(); }
const Sky& Simulation::sky() const { return work_->sky; }
bool Simulation::Next(ObsEpoch_QC_gbt& record) {
  const Delivery* next = work_->Next();
  if (next != nullptr) record = next->record;
  return next != nullptr;
}

bool Simulation::Next(ObsEpoch_QC_gbt& record, ObservationEpoch& epoch) {
  const Delivery* next = work_->Next();
  if (next == nullptr) return false;
  record = next->record;
  epoch = next->epoch;
  return true;
}

std::size_t Simulation::NextBatch(std::vector<ObsEpoch_QC_gbt>& batch, std::size_t most) {
  most = std::min(most, work_->MostLeft());
  batch.resize(most);
  std::size_t count = 0;
  while (count < most && Next(batch[count])) ++count;
  batch.resize(count);
  return count;
}

const std::vector<SatelliteMoment>& Simulation::Moments() const { return work_->moments; }
double Simulation::ClockBias() const { return work_->clock.bias_s; }
const std::array<double, 3>& Simulation::AntennaPosition() const { return work_->site.position_m; }
const Truth& Simulation::TruthSoFar() const { return work_->truth; }
std::uint64_t Simulation::NominalEpochs() const { return static_cast<std::uint64_t>(work_->grid.epochs); }
std::uint64_t Simulation::NominalEpochsDone() const { return static_cast<std::uint64_t>(work_->done); }

}  // namespace orsolva_host
