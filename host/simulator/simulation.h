// Turns a scenario into broadcast records and epochs of observations for the library.
//
//   Simulation simulation(scenario);
//   InitialQc(simulation.Navigation().Body(), &config, handle);
//   std::vector<ObsEpoch_QC_gbt> batch;
//   while (simulation.NextBatch(batch, 2880) > 0) GNSSQCPlus({int(batch.size()), batch.data()}, handle);
//   const Truth& truth = simulation.TruthSoFar();
//
// Every value is rounded to the digits of a RINEX file before it is delivered, so that files and records
// contain the same numbers. The same scenario gives the same bits, however the epochs are fetched. Memory
// does not grow with the number of epochs.
#ifndef ORSOLVA_SIMULATOR_SIMULATION_H
#define ORSOLVA_SIMULATOR_SIMULATION_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/observation/observation_epoch.h"
#include "host/rinex/navigation_set.h"
#include "host/simulator/scenario.h"
#include "host/simulator/sky.h"
#include "host/simulator/truth.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// True geometry of a satellite above the horizon at the last nominal epoch.
struct SatelliteMoment {
  char system = 'G';
  int number = 0;
  double elevation_rad = 0;
  double azimuth_rad = 0;
  double range_m = 0;            ///< with Earth rotation
  double satellite_clock_s = 0;  ///< with the relativistic term
  double troposphere_m = 0;
  double slant_tec = 0;  ///< TECU
  double glitch_m = 0;   ///< of the satellite clock, lengthens codes and phases
  int tracked_signals = 0;
};

class Simulation {
 public:
  /// @throws ScenarioError
  explicit Simulation(const Scenario& scenario);
  ~Simulation();
  Simulation(Simulation&&) noexcept;
  Simulation& operator=(Simulation&&) noexcept;

  const Scenario& Settings() const;
  const NavigationSet& Navigation() const;
  const Sky& sky() const;

  /// Returns the next epoch. @return false at the end of the span
  bool Next(ObsEpoch_QC_gbt& epoch);
  /// The same with everything that an observation file would hold.
  bool Next(ObsEpoch_QC_gbt& record, ObservationEpoch& epoch);
  /// Fills the batch with up to `most` epochs. @return their number; 0 at the end of the span
  std::size_t NextBatch(std::vector<ObsEpoch_QC_gbt>& batch, std::size_t most);

  /// Satellites above the horizon at the last nominal epoch.
  const std::vector<SatelliteMoment>& Moments() const;
  /// Receiver time less true time at the last nominal epoch, s, and the antenna's position.
  double ClockBias() const;
  const std::array<double, 3>& AntennaPosition() const;
  /// Truth of the epochs delivered so far; complete once the span has ended.
  const Truth& TruthSoFar() const;
  std::uint64_t NominalEpochs() const;
  std::uint64_t NominalEpochsDone() const;

 private:
  class Work;
  std::unique_ptr<Work> work_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SIMULATION_H
