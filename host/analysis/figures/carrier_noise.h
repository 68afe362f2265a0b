// Noise of the phase of each signal.
//
// All from third differences over four consecutive epochs, D = x_k - 3 x_(k-1) + 3 x_(k-2) - x_(k-3), which
// remove what is smooth and turn white noise s into sqrt(20) s; s = 1.4826 median |D| / sqrt(20). What x is
// depends on the data, and so does what the figure holds:
//
//   third difference
//     At 1 s and faster: the phase less what the phases of the epoch have in common, the median of D over the
//     first signals of the other satellites, at least kMinSatellites - 1. Holds tracking noise, the
//     satellite's own clock and what the median adds: 7 % with twelve satellites, 2 % with forty.
//   within the band
//     The difference of two phases of the satellite on one carrier, over sqrt 2. Holds tracking noise and
//     quick multipath, as the mean of both signals; signals whose phases are copies of each other have no
//     figure.
//   three bands
//     The combination of three phases free of geometry and ionosphere, over its own gain, given for signals
//     that make at least kMinShare of its variance if all are equally good. Holds tracking noise and quick
//     multipath, as a mean of the three. At longer intervals than 1 s it is taken where the band has no
//     second signal.
//
// A signal that none of them reaches has no figure: one or two bands at 30 s leave the ionosphere in.
// Population: from the cut-off up. Figures of fewer than kMinValues values are absent.
#ifndef ORSOLVA_ANALYSIS_FIGURES_CARRIER_NOISE_H
#define ORSOLVA_ANALYSIS_FIGURES_CARRIER_NOISE_H

#include <array>
#include <cstdint>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/log_histogram.h"
#include "host/analysis/figures/per_satellite.h"
#include "host/analysis/figures/step_outcome.h"

namespace orsolva_host::analysis {

class CarrierNoise {
 public:
  static constexpr Count kMinValues = 100;
  static constexpr std::size_t kMinSatellites = 8;
  static constexpr double kMinShare = 0.2;

  void SetInterval(double interval_s);
  void AddStep(const StepOutcome& outcome);

  void FillIn(AnalysisResult& result) const;

 private:
  using Sizes = LogHistogram<-17, 3>;  // of D as one phase's noise, m

  enum Method : std::size_t { kNone, kThreeBands, kWithinBand, kThirdDifference, kMethods };

  struct Signal {
    SignalCode code;
    Method method = kNone;
    Sizes sizes;

    void Add(Method by, double size_m);
  };
  /// Third differences of up to three signals and their weights, of squares that add up to 1.
  struct Combination {
    Method method = kNone;
    std::array<std::size_t, 3> place = {};
    std::array<double, 3> weight = {};
  };
  struct Satellite {
    std::vector<Signal> signals;            ///< by number
    std::array<SignalMask, 3> smooth = {};  ///< signals that went on over the last even steps, newest first
    SignalMask ready = 0;  ///< signals with a third difference that the combinations are made of
    std::array<Combination, kMaxSignals> combinations;
  };
  /// A third difference that waits for those of other satellites.
  struct Waiting {
    Signal* signal;
    double metres;
    double first_metres;  ///< of its satellite's first signal
    bool up;
  };

  SignalMask Ready(const StepOutcome& outcome, Satellite& satellite) const;
  static void AddCombinations(const StepOutcome& outcome, SignalMask ready, Satellite& satellite);
  static void Combine(const SatelliteTrack& track, Satellite& satellite);
  static Combination WithinBand(const SatelliteTrack& track, std::size_t place, SignalMask ready);
  static Combination OfThreeBands(const SatelliteTrack& track, std::size_t place, SignalMask ready);
  void Wait(const StepOutcome& outcome, SignalMask ready, Satellite& satellite);
  void TakeOffCommonPart();
  double MedianWithout(double value) const;

  double interval_s_ = 0;
  bool fast_ = false;
  PerSatellite<Satellite> satellites_;
  std::int64_t epoch_ = -1;  ///< of those that wait
  std::vector<Waiting> waiting_;
  std::vector<double> first_signals_;  ///< third differences, one per satellite
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_CARRIER_NOISE_H
