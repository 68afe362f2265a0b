// The inside of a simulation: what lasts from epoch to epoch, and how an epoch is made.
#ifndef ORSOLVA_SIMULATOR_SIMULATION_WORK_H
#define ORSOLVA_SIMULATOR_SIMULATION_WORK_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "host/observation/observation_epoch.h"
#include "host/simulator/active_faults.h"
#include "host/simulator/receiver_clock_bias.h"
#include "host/simulator/satellite_work.h"
#include "host/simulator/scenario.h"
#include "host/simulator/simulation.h"
#include "host/simulator/sky.h"
#include "host/simulator/surroundings.h"
#include "host/simulator/truth.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// An epoch as a record of the library and with everything that a file holds.
struct Delivery {
  ObsEpoch_QC_gbt record;
  ObservationEpoch epoch;
};

/// Geometry of a satellite at a true reception time.
struct LineOfSight {
  SkyState state;
  Direction direction;
  double range_m = 0;
};

class Simulation::Work {
 public:
  explicit Work(const Scenario& given)
      : scenario(given),
        grid(GridOf(given)),
        sky(scenario),
        start(MakeSite(given.receiver.position_m)),
        site(start),
        clock_(scenario) {
    BeginTruth();
    BeginSatellites();
    BeginFaults();
  }

  /// The next epoch; valid until the next call. @return nullptr at the end of the span
  const Delivery* Next();
  /// Upper bound of the epochs still to be delivered: each may come twice.
  std::size_t MostLeft() const {
    return 2 * (static_cast<std::size_t>(grid.epochs - done) + held_.size()) + waiting_.size();
  }

  Scenario scenario;
  EpochGrid grid;
  Sky sky;
  Site start;  ///< at rest
  Site site;   ///< at the epoch
  ClockState clock;
  Truth truth;
  std::vector<SatelliteMoment> moments;
  std::int64_t done = 0;

 private:
  void BeginTruth();
  void BeginSatellites();
  void BeginFaults();
  void Assign(ActiveFault& active);
  void LogOnce(ActiveFault& active);
  void LogEpochFaults();
  bool Has(FaultKind kind, std::int64_t epoch) const { return HasFault(faults_, kind, epoch); }
  bool Off(std::int64_t epoch) const;
  std::uint32_t EventsBefore(std::int64_t epoch) const;
  void LogClock(const Time_gbt& time, double time_s, double bias_s);
  void LogTrack(const Time_gbt& time, double time_s);
  void Make(Delivery& out);
  void SetTime(Delivery& out);
  void FinishLog(std::size_t from, const Time_gbt& time);
  void MakeSatellite(std::size_t index, double true_s, bool delivered, Delivery& out);
  SatelliteMoment MomentOf(std::size_t index, const LineOfSight& los);
  void AddRates(std::size_t index, double true_s, EpochGeometry& geometry) const;
  void Observe(std::size_t index, const EpochGeometry& geometry, Delivery& out);
  bool ObserveSignal(std::size_t index, std::size_t j, const EpochGeometry& geometry, Satellite_gbt& record,
                     ObservationEpoch& epoch);
  double Tec(const Direction& direction, double time_s) const;
  LineOfSight LineOfSightTo(std::size_t index, double true_s, double& travel_s, const Site& from) const;
  const Delivery* Deliver();
  std::vector<FaultTarget> Visible(const FaultTarget& target, double seconds, double above_deg) const;

  std::vector<SatelliteWork> work_;
  std::vector<ActiveFault> faults_;  ///< but for slips, which only their signals need to know
  std::vector<ActiveFault> slips_;
  ReceiverClockBias clock_;
  Delivery current_ = {};
  std::deque<Delivery> waiting_;  ///< duplicate and held epochs, delivered next
  std::deque<Delivery> held_;     ///< delivered after the next epoch
  bool powerless_ = false;
  double tag_s_ = 0;
  double bias_s_ = 0;
  double last_clock_log_s_ = -1e9;
  double last_track_log_s_ = -1e9;
  double day_start_s_ = 0;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SIMULATION_WORK_H
