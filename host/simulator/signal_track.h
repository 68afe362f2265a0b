// One signal of one satellite as tracked by a receiver: acquisition, ambiguity, errors, values and truth.
#ifndef ORSOLVA_SIMULATOR_SIGNAL_TRACK_H
#define ORSOLVA_SIMULATOR_SIGNAL_TRACK_H

#include <cstdint>
#include <string>
#include <vector>

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
  double range_m = 0;  ///< with clocks and troposphere
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

class SignalTrack {
 public:
  SignalTrack(const Scenario& scenario, char system, int satellite, int channel, const std::string& name,
              std::size_t mean_window);

  void AddFault(ActiveFault* fault) { faults_.push_back(fault); }
  int Number() const { return number_; }

  /// Advances the signal to an epoch. @return whether it is tracked then, with its values in `out`
  bool Update(const EpochGeometry& geometry, Signal_QC_gbt& out, SignalTruth& truth,
              std::vector<InjectedFault>& log);

 private:
  enum class Wait { kStart, kRise, kOutage };

  bool Track(const EpochGeometry& geometry, SignalTruth& truth, std::vector<InjectedFault>& log);
  bool Blocked(std::int64_t epoch, std::vector<InjectedFault>& log);
  double AcquiredFrom(double time_s) const;
  void BeginArc(SignalTruth& truth);
  void ApplySlips(std::int64_t epoch, bool held, std::vector<InjectedFault>& log);
  double SumOf(FaultKind kind, std::int64_t epoch, std::vector<InjectedFault>& log);
  void Measure(const EpochGeometry& geometry, Signal_QC_gbt& out, SignalTruth& truth,
               std::vector<InjectedFault>& log);

  const Scenario* scenario_;
  std::string name_;
  int number_;
  double wavelength_m_;
  double metres_per_tecu_;
  double snr_offset_db_;
  double delay_s_ = 0;
  RandomStream arcs_stream_, code_stream_, phase_stream_, snr_stream_;
  double multipath_rate_, multipath_phase_;

  std::vector<ActiveFault*> faults_;
  Wait wait_ = Wait::kStart;
  bool tracked_ = false;
  bool acquiring_ = false;
  double acquired_from_s_ = 0;
  double outage_end_s_ = 0;
  double ambiguity_cycles_ = 0;
  double last_jump_m_ = 0;
  MovingMean mean_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SIGNAL_TRACK_H
