// One signal of one satellite as tracked by a receiver: acquisition, ambiguity, errors, values and truth.
#ifndef ORSOLVA_SIMULATOR_SIGNAL_TRACK_H
#define ORSOLVA_SIMULATOR_SIGNAL_TRACK_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/observation/observation_epoch.h"
#include "host/simulator/active_faults.h"
#include "host/simulator/random_streams.h"
#include "host/simulator/scenario.h"
#include "host/simulator/truth.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// What all signals of a satellite have in common at an epoch.
struct EpochGeometry {
  std::int64_t epoch = 0;
  double time_s = 0;  ///< of the tag, after the start of the span
  double elevation_rad = 0;
  double sine = 0;  ///< of the elevation
  double cosine_squared = 0;
  double range_m = 0;         ///< with clocks and troposphere
  double code_only_m = 0;     ///< part of it that the phases do not have
  double range_rate_m_s = 0;  ///< with clocks and troposphere; when Doppler is observed
  double tec_rate = 0;        ///< TECU/s; likewise
  double slant_tec = 0;
  bool trackable = false;     ///< above the receiver's cut-off
  bool above_cutoff = false;  ///< above the truth cut-off
  bool above30 = false;
  bool delivered = true;
};

/// Mean of the last values, at most `window`.
class MovingMean {
 public:
  explicit MovingMean(std::size_t window) : values_(window) {}
  void Clear() { count_ = next_ = 0; }
  /// @return the value minus the mean of the window that includes it
  double Residual(double value);

 private:
  std::vector<double> values_;
  std::size_t count_ = 0, next_ = 0;
};

/// Standard deviations of one observation, m.
struct NoiseDeviations {
  double code_m = 0, phase_m = 0;
};

/// What was added to an observation.
struct DrawnErrors {
  double noise_m = 0, multipath_m = 0, jump_m = 0, phase_m = 0;
  double snr_dbhz = 0;  ///< as observed
};

class SignalTrack {
 public:
  SignalTrack(const Scenario& scenario, char system, int satellite, int channel, const std::string& name,
              std::size_t mean_window);

  void AddFault(ActiveFault* fault) { faults_.push_back(fault); }
  int Number() const { return number_; }

  /// Advances the signal to an epoch. @return whether it is tracked then, with its values in `out`
  bool Update(const EpochGeometry& geometry, SignalObservation& out, SignalTruth& truth,
              std::vector<InjectedFault>& log);

 private:
  enum class Wait { kStart, kRise, kOutage };

  bool Track(const EpochGeometry& geometry, SignalTruth& truth, std::vector<InjectedFault>& log);
  bool Blocked(std::int64_t epoch, std::vector<InjectedFault>& log);
  double AcquiredFrom(double time_s) const;
  void BeginArc(double time_s, SignalTruth& truth);
  void ApplySlips(const EpochGeometry& geometry, bool held, std::vector<InjectedFault>& log);
  void LogSlip(double size, bool seen, std::vector<InjectedFault>& log);
  std::uint8_t Flags(const EpochGeometry& geometry, bool new_arc, SignalTruth& truth,
                     std::vector<InjectedFault>& log);
  double SumOf(FaultKind kind, std::int64_t epoch, std::vector<InjectedFault>& log);
  void Measure(const EpochGeometry& geometry, SignalObservation& out, SignalTruth& truth,
               std::vector<InjectedFault>& log);
  double Snr(const EpochGeometry& geometry, double drop_db) const;
  NoiseDeviations NoiseOf(const EpochGeometry& geometry, double snr_dbhz) const;
  double Multipath(const EpochGeometry& geometry) const;
  double Scintillation(const EpochGeometry& geometry, std::vector<InjectedFault>& log);
  void CountErrors(const EpochGeometry& geometry, const DrawnErrors& errors, SignalTruth& truth);

  const Scenario* scenario_;
  std::string name_;
  int number_;
  double wavelength_m_;
  double chip_m_;
  double metres_per_tecu_;
  double snr_offset_db_;
  double delay_s_ = 0;
  RandomStream arcs_stream_, code_stream_, phase_stream_, snr_stream_, flag_stream_, doppler_stream_;
  RandomStream carrier_stream_;  ///< of all signals of this carrier of the satellite
  double multipath_rate_, multipath_phase_;

  std::vector<ActiveFault*> faults_;
  Wait wait_ = Wait::kStart;
  bool tracked_ = false;
  bool acquiring_ = false;
  double acquired_from_s_ = 0;
  double outage_end_s_ = 0;
  double ambiguity_cycles_ = 0;
  double last_jump_m_ = 0;
  double half_cycle_until_s_ = 0;
  bool half_cycle_off_ = false;     ///< the phase is half a cycle too high until the ambiguity is resolved
  std::size_t slips_from_ = 0;      ///< slips of this epoch in the log from here on
  std::uint8_t waiting_flags_ = 0;  ///< raised in epochs that were not delivered
  MovingMean mean_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SIGNAL_TRACK_H
