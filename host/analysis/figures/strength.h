// Signal strength (C/N0, dB-Hz) of every signal, of satellites and over systems.
//
//   mean          arithmetic mean of all values above zero (files write 0 for an unknown strength)
//   p5            5th percentile of all values, to 0.25 dB (strength_histogram.h); absent with fewer than
//                 kMinValues
//   by elevation  the same over the values of each 5-degree bin [a, b), the last one with its end; without an
//                 orbit and below the horizon a value is in no bin. The percentiles of bins are given over
//                 systems only.
//   drops         strength_drops.h, of the last kKeptWindows windows of five minutes (26 hours); without
//                 orbits none
//
// Memory: 1.5 kB and at most 3.7 kB of windows per signal of a satellite, 18 kB per signal of a system.
#ifndef ORSOLVA_ANALYSIS_FIGURES_STRENGTH_H
#define ORSOLVA_ANALYSIS_FIGURES_STRENGTH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/figures/signal_roster.h"
#include "host/analysis/figures/sky.h"
#include "host/analysis/figures/strength_drops.h"
#include "host/analysis/figures/strength_histogram.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

class Strength {
 public:
  static constexpr Count kMinValues = 20;
  static constexpr Count kMinCurveValues = 100;  ///< values of a bin of elevation
  static constexpr std::int32_t kKeptWindows = 312;

  /// @param sky  has taken the epoch
  void Add(const ObservationEpoch& epoch, const SignalRoster& roster, const Sky& sky);
  void FillIn(const SignalRoster& roster, AnalysisResult& result) const;
  /// All but the drops.
  void FillInSums(const SignalRoster& roster, AnalysisResult& result) const;

 private:
  struct Sum {
    double dbhz = 0;
    Count values = 0;
  };
  using ElevationSums = std::array<Sum, kElevationBins>;
  struct Window {
    std::int32_t number = 0;
    int values = 0;
    double sum_dbhz = 0;
    double sum_elevation_deg = 0;
  };
  struct Signal {
    Sum sum;
    StrengthHistogram values;
    ElevationSums by_elevation;
    Window open;
    std::vector<StrengthWindow> windows;
  };
  using ElevationHistograms = std::array<StrengthHistogram, kElevationBins>;

  static void AddToWindow(Signal& signal, std::int32_t number, double snr_dbhz, double elevation_deg);
  static void Close(const Window& window, std::vector<StrengthWindow>& windows);
  static void FillIn(const Sum& sum, const StrengthHistogram& values, const ElevationSums& by_elevation,
                     StrengthFigures& figures);
  std::vector<StrengthCurves> Curves(const SignalRoster& roster) const;
  std::vector<std::vector<StrengthWindow>> KeptWindows() const;
  void FillInDrops(const SignalRoster& roster, AnalysisResult& result) const;

  std::vector<Signal> signals_;              ///< of the roster
  std::vector<ElevationHistograms> shared_;  ///< of the roster's shared signals
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_STRENGTH_H
