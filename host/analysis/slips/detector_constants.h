// Thresholds and noise figures of the slip detector, each written once.
#ifndef ORSOLVA_ANALYSIS_SLIPS_DETECTOR_CONSTANTS_H
#define ORSOLVA_ANALYSIS_SLIPS_DETECTOR_CONSTANTS_H

namespace orsolva_host::analysis {

// Windows, in steps of a satellite.
constexpr int kLead = 4;          // epochs of latency: a step is decided when so many later epochs are known
constexpr int kTrail = 20;        // steps before a step that its scales look back on
constexpr int kMedianTrail = 16;  // steps before a step that its median rates look back on
constexpr int kRing = 32;         // epochs kept, a power of two above kTrail + kLead + 2

constexpr double kGapFactor = 1.5;  // of the interval, beyond which epochs are missing
constexpr int kSkySamples = 64;     // changes of the ionosphere of all satellites that are kept

constexpr double kLongestGap_s = 600;  // a longer hole begins a new arc, untested
constexpr double kUsualInterval_s =
    30;  // interval at which the figures below were found; others scale with its root

// An interval above this is none, or is cut: nanoseconds of a multiple of it must fit a whole number.
constexpr double kMaxInterval_s = 1e6;

// Phase noise with multipath: sqrt(a^2 + (b / sin e)^2), m.
constexpr double kPhaseNoiseA_m = 0.0020;
constexpr double kPhaseNoiseB_m = 0.0010;
constexpr double kUnknownSinElevation = 0.42261826174069944;  // 25 degrees
constexpr double kMinSinElevation = 0.08;

// Noise gain of the predictors: variance of a test element in units of the phase variance.
constexpr double kGainOfMedian = 2.3;
constexpr double kGainOfNeighbours = 5.0;
constexpr double kGainOfOneNeighbour = 6.0;
constexpr double kGainOfNothing = 2.0;
constexpr double kGainOfCubic = 4.2;
constexpr double kGainOfExtrapolation = 42.0;

// Least scales per step at 30 s, m.
constexpr double kRangeFloor_m = 0.003;
constexpr double kIonosphereFloor_m = 0.002;
constexpr double kTroposphereDoubt = 0.02;  // of the change of a standard troposphere over the step
constexpr double kZenithTroposphere_m = 2.4;
constexpr double kWithoutModelFactor =
    1.1;  // on the range scale where the range is predicted from neighbours
constexpr double kWithoutModelFloor_m = 0.008;

// Decision, in nats (natural units of log-likelihood) unless they say chi2.
constexpr double kScreenChi2 = 14;  // of a step that becomes a candidate; 2 more for each further signal
constexpr double kScreenChi2Flagged = 10;  // where the receiver flags loss of lock
constexpr double kFitChi2 = 40;            // largest that is still believed for a repaired step
constexpr double kSlipPrior = 8;
constexpr double kFlaggedSlipPrior = 4;
constexpr double kGapSlipPrior = 1.5;
constexpr double kFurtherBandPrior = 1;
constexpr double kHalfCyclePrior = 5;
constexpr double kSizePrior = 0.25;       // times the mean of ln|cycles|
constexpr double kBlindSlipPrior = 4;     // a slip on all bands where the range is not modelled
constexpr double kBlindOneBandPrior = 1;  // of one band, which has no other way to show
constexpr double kMinGain = 1.5;          // over "no slip"
constexpr double kMinStormGain = 4;       // of an equal slip on all bands in a storm
constexpr double kSureMargin = 3;
constexpr double kSureGapMargin = 5;
constexpr double kSureStormMargin = 7;  // where equal parts rest on a few centimetres

// Explanations that are no slip.
constexpr double kSatelliteClockPrior = 9;
constexpr double kSteadyClockPrior = 14;    // of clocks that do not jump by decimetres
constexpr double kSatelliteClock_m = 0.15;  // over 30 s
constexpr double kLargeClockPrior = 17;
constexpr double kLargeClock_m = 3;
constexpr double kIonospherePrior = 8;
constexpr double kQuietIonospherePrior = 14;  // where the ionosphere has been predicted well
constexpr double kQuietIonosphere_m = 0.015;  // s_I over 30 s below which it has
constexpr double kIonosphere_m = 0.30;        // over 30 s, at 1575.42 MHz
constexpr double kReportedChi2 = 30;          // a disturbance that is no slip is an event above this
constexpr double kQuietInterval_s = 5;        // below, clocks do not move by decimetres within a step

/// Carriers of SBAS are steered from the ground, each on its own: between epochs seconds apart they wander by
/// cycles, and nothing separates that from a slip.
constexpr bool IsTestable(char system, double interval_s) {
  return system != 'S' || interval_s < kQuietInterval_s;
}

/// Masers and rubidium clocks of Galileo, BDS and QZSS: none jumped on the days seen, where each satellite of
/// GPS and GLONASS did once or twice.
constexpr bool IsSteadyClock(char system) { return system == 'E' || system == 'C' || system == 'J'; }

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_SLIPS_DETECTOR_CONSTANTS_H
