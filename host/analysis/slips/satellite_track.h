// The last epochs of one satellite as the detector keeps them.
//
// Notation: X phase in metres less the modelled range and receiver clock, repaired for slips found and
// carried over holes by the satellite's other signals; Q code in metres less the same; mu = (1575.42 MHz /
// f)^2; a step i leads from epoch i - 1 to epoch i. Epochs and steps are numbered from the beginning of the
// arc and live in rings of kRing.
#ifndef ORSOLVA_ANALYSIS_SLIPS_SATELLITE_TRACK_H
#define ORSOLVA_ANALYSIS_SLIPS_SATELLITE_TRACK_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "host/analysis/numeric/sorted_window.h"
#include "host/analysis/slips/detector_constants.h"
#include "host/analysis/slips/event.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

/// Signals of one satellite that are tested together; RINEX names at most 31 for any system.
constexpr int kMaxSignals = 32;
constexpr std::int64_t kNeverSettled = -kRing;

inline std::uint32_t RingBit(std::int64_t i) { return std::uint32_t{1} << (i & (kRing - 1)); }
inline std::size_t RingSlot(std::int64_t i) { return static_cast<std::size_t>(i & (kRing - 1)); }

struct SignalTrack {
  SignalCode code;
  double frequency_hz = 0;
  double wavelength_m = 0;
  double mu = 1;
  std::array<double, kRing> phase_m = {};  ///< X
  std::array<double, kRing> code_m = {};   ///< Q, NaN where absent
  std::uint32_t real = 0;                  ///< epochs with a phase of the file
  std::uint32_t known = 0;                 ///< epochs with X, real or carried
  std::uint32_t lost_lock = 0;             ///< epochs with the flags of SignalObservation::loss_of_lock
  std::uint32_t half_cycle = 0;
  std::uint32_t broken = 0;        ///< steps in which it slipped
  double last_phase_m = kAbsent;   ///< as observed, at the newest epoch; NaN where absent there
  double repaired_m = 0;           ///< taken off every phase to come
  double carried_variance_m2 = 0;  ///< of X at the last decided epoch, while it is carried
  double away_s = 0;               ///< how long it has been carried
  bool unstable = false;           ///< left out
  int steady_steps = 0;            ///< in which it went with the others while left out

  bool IsReal(std::int64_t i) const { return (real & RingBit(i)) != 0; }
  bool IsKnown(std::int64_t i) const { return (known & RingBit(i)) != 0; }
  double X(std::int64_t i) const { return phase_m[RingSlot(i)]; }
};

struct StepState {
  std::int64_t time_ns = 0;
  std::int64_t epoch = 0;  ///< number in the stream
  double dt_s = 0;
  double sin_elevation = kUnknownSinElevation;  ///< not below kMinSinElevation
  double elevation_rad = kAbsent;
  bool modelled = false;     ///< the range of both ends is known
  bool clock_known = false;  ///< the receiver clock of the step is known
  bool gap = false;
  bool broken = false;     ///< nothing is predicted over it
  bool lone_band = false;  ///< one band where the satellite has two: the ionosphere is taken from other steps
  bool settled = false;    ///< explained by something that is no slip
  bool weak = false;       ///< one cycle on all signals at once would not be reported: Decision::IsWeak
  double range_rate = kAbsent;       ///< u: range left after the model, m/s
  double ionosphere_rate = kAbsent;  ///< v: m/s at 1575.42 MHz
  double common_m = kAbsent;         ///< common part of unmodelled satellites in the stencil of the cubic
  double wide_common_m = kAbsent;    ///< and in the wide stencil
  // What holds for predicting the step, settled when it is decided, provisional for later ones.
  double range_median = kAbsent;
  double ionosphere_median = kAbsent;
  bool range_by_neighbours = false;  ///< the mean of both neighbours predicts better than the median
  bool ionosphere_by_neighbours = false;
  double range_scale_m = 0;  ///< s_rho
  double ionosphere_scale_m = 0;
  double troposphere_change_m = 0;
  double shift_doubt_m = 0;  ///< of a moving antenna
  double chi2 = kAbsent;

  bool HasGeometry() const { return modelled && clock_known; }
};

/// Absolute prediction errors of one quantity by both predictors.
struct ErrorWindows {
  SortedWindow<kTrail - 2> by_median;
  SortedWindow<kTrail - 2> by_neighbours;
};

struct SatelliteTrack {
  SatelliteId satellite;
  std::vector<SignalTrack> signals;    ///< by descending frequency
  std::vector<SignalCode> distrusted;  ///< unstable ones; outlives arcs
  std::array<StepState, kRing> steps;
  std::int64_t first = 0;               ///< epoch at which the arc begins
  std::int64_t next = 0;                ///< number that the next epoch gets; the newest known is next - 1
  std::int64_t decide = 1;              ///< the oldest step that is not decided
  std::int64_t two_band_step = -kRing;  ///< the last step with signals of two bands
  double model_sum_m = 0;               ///< of modelled range and clock changes since the arc began
  double origin_m = 0;                  ///< code with which the arc began
  SortedWindow<kMedianTrail> range_rates;
  SortedWindow<kMedianTrail> ionosphere_rates;
  ErrorWindows range_errors;
  ErrorWindows ionosphere_errors;
  std::int64_t settled_step = kNeverSettled;  ///< whose medians and scales hold for the next ones too
  double usual_range_scale_m = kAbsent;       ///< of errors seen last; outlives arcs
  double usual_ionosphere_scale_m = kAbsent;
  double budget = 0;                                   ///< searches that may still be made, see decision.h
  std::vector<std::pair<std::int64_t, Event>> events;  ///< found, not given out yet, by step

  StepState& At(std::int64_t i) { return steps[RingSlot(i)]; }
  const StepState& At(std::int64_t i) const { return steps[RingSlot(i)]; }
  bool Has(std::int64_t i) const { return i >= first && i < next && i > next - kRing; }
  /// Rates of a step; NaN where the arc has none.
  double RangeRate(std::int64_t i) const { return i > first && Has(i) ? At(i).range_rate : kAbsent; }
  double IonosphereRate(std::int64_t i) const {
    return i > first && Has(i) ? At(i).ionosphere_rate : kAbsent;
  }
};

/// Phase noise with multipath at the elevation of a step, m.
double PhaseNoise(const StepState& step);

/// Begins a new arc: everything but the usual scales and the unstable signals is forgotten.
void BeginArc(SatelliteTrack& track);

/// Takes cycles off a signal from an epoch on, for the epochs known and those to come.
void Repair(SatelliteTrack& track, std::int64_t from, std::size_t signal, double metres);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_SATELLITE_TRACK_H
