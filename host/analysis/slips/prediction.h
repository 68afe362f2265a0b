// What the range left after the model and the ionosphere do in a step, and the test vector of the step.
//
// Per signal: r = dX - rho + mu I ~ N(0, C), C = s_rho^2 1 1' + s_I^2 mu mu' + diag(gain s_phi^2 + carried),
// with rho and I predicted from other steps. A slip of z cycles adds lambda z. The classic geometry-free,
// time-differenced phase and within-band tests are directions of this one (Blewitt 1990; Banville and Langley
// 2013).
#ifndef ORSOLVA_ANALYSIS_SLIPS_PREDICTION_H
#define ORSOLVA_ANALYSIS_SLIPS_PREDICTION_H

#include <array>
#include <cstdint>

#include "host/analysis/slips/satellite_track.h"

namespace orsolva_host::analysis {

/// Rates of a step fitted to the signals that are really there at both ends.
/// @param interval_s  nominal interval; a longer step is a gap and gives no rates
void FitRates(SatelliteTrack& track, std::int64_t step);

struct Prediction {
  double range_m = 0;
  double ionosphere_m = 0;
  double range_factor = 1;       ///< on s_rho; NaN: the range is not predicted at all
  double ionosphere_factor = 1;  ///< on s_I
  double noise_gain = 1;         ///< of the phase variance
};

Prediction Predict(const SatelliteTrack& track, std::int64_t step);

/// What the steps around make of the range of a step that is not modelled, m/s; NaN where they are not known.
/// The cubic through two on both sides leaves under 1 mm of an orbit in 30 s, but makes 1.39 times as much of
/// a clock that wanders; the wide one, a cubic fitted to three on both sides, leaves under 4 mm and
/// makes 1.22 times as much (Savitzky and Golay 1964, Anal. Chem. 36:1627, without the middle point).
double CubicRangeRate(const SatelliteTrack& track, std::int64_t step);
double WideRangeRate(const SatelliteTrack& track, std::int64_t step);

struct UnmodelledRange {
  double rate = 0;      ///< m/s
  double common_m = 0;  ///< of all satellites in the same stencil; NaN: not known
};
/// By the wide stencil, or where it is not complete the narrow one.
UnmodelledRange RangeFromNeighbours(const SatelliteTrack& track, std::int64_t step);

double MeanOfNeighbours(double before, double after);

/// r and C of a step over the signals that can be tested.
struct StepTest {
  int count = 0;
  std::array<std::uint8_t, kMaxSignals> signal;  ///< place in the track
  std::array<double, kMaxSignals> r;
  std::array<double, kMaxSignals> mu;
  std::array<double, kMaxSignals> noise_m2;  ///< diagonal of C
  double range_m2 = 0;                       ///< s_rho^2
  double ionosphere_m2 = 0;                  ///< s_I^2
  std::uint32_t returning = 0;               ///< bits by place in this test: carried until the epoch before
  bool free_range = false;                   ///< nothing predicts the range: r is what is not common to all
  double predicted_range_m = 0;
  double predicted_ionosphere_m = 0;
};

/// @param interval_s  nominal interval of the stream
void MakeTest(const SatelliteTrack& track, std::int64_t step, double interval_s, StepTest& test);

using SignalMetres = std::array<double, kMaxSignals>;  ///< by place in the track

/// Makes r of a test again as if metres had been taken off the signals' phases.
/// @param from  epoch from which on they are taken off
void TakePhases(const SatelliteTrack& track, std::int64_t step, std::int64_t from, const SignalMetres& metres,
                StepTest& test);

/// r' C^-1 r by Woodbury's identity of rank two; 0 for no signal.
/// @param r  instead of the test's own
/// @param more_range_m2, more_ionosphere_m2  added to the variances of range and ionosphere
double Chi2(const StepTest& test, const std::array<double, kMaxSignals>& r, double more_range_m2 = 0,
            double more_ionosphere_m2 = 0);
inline double Chi2(const StepTest& test) { return Chi2(test, test.r); }

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_PREDICTION_H
