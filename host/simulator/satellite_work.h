// What the simulation keeps of a satellite from epoch to epoch.
#ifndef ORSOLVA_SIMULATOR_SATELLITE_WORK_H
#define ORSOLVA_SIMULATOR_SATELLITE_WORK_H

#include <cstdint>
#include <vector>

#include "host/simulator/active_faults.h"
#include "host/simulator/signal_track.h"
#include "host/simulator/tec_rate.h"

namespace orsolva_host {

inline constexpr double kFirstTravel_s = 0.075;

struct SatelliteWork {
  /// @param number  of the satellite among all of the scenario
  SatelliteWork(const Scenario& scenario, char system, int satellite, std::uint64_t number);

  /// Keeps the fault if it affects the satellite as a whole.
  void AddFault(ActiveFault* fault);

  /// Content of storms with waves, TECU.
  double WaveTec(std::int64_t epoch, double time_s, double span_s) const;
  /// That of random rates; times in order.
  double RandomTec(std::int64_t epoch, double time_s);
  /// Metres that glitches of the satellite clock add to codes and phases.
  double Glitch(std::int64_t epoch) const;
  void MarkGlitchesSeen(std::int64_t epoch, std::vector<InjectedFault>& log) const;

  std::vector<SignalTrack> signals;
  std::vector<std::int64_t> slips;  ///< epochs
  double travel_s = kFirstTravel_s;
  double travel_rate = 0;
  double travel_time_s = -1e9;  ///< time of its computation
  double next_evaluation_s = -1e9;

 private:
  std::vector<ActiveFault*> storms_, rates_, glitches_;
  TecRate tec_rate_;
  double storm_phase_ = 0;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SATELLITE_WORK_H
