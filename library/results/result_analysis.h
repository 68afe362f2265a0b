// The worker that turns the statistics of a run into its figures.
#ifndef ORSOLVA_RESULTS_RESULT_ANALYSIS_H
#define ORSOLVA_RESULTS_RESULT_ANALYSIS_H

#include "results/result_model.h"
#include "results/result_sources.h"
#include "results/satellite_figures.h"

namespace orsolva {

/// Times of a result are rounded to a millisecond, halves away from zero.
double RoundToMillisecond(double seconds);

/// The combinations for which a satellite has figures; none without a usable code.
struct SatelliteCombinations {
  QcCodeCombination Combinations;
  bool Shifted = false;  ///< its channels are read shifted, see SatelliteView
  bool OfBds3 = false;   ///< they are those of the newer BDS satellites
};

/// Keeps nothing between calls and changes nothing in the run.
class QcResultAnalysis {
 public:
  virtual ~QcResultAnalysis() = default;

  /// Flags of the six configuration slots as the results read them: with automatic detection a band enabled
  /// in either of the two BDS rows is enabled in both. A copy; the configuration of the run stays.
  QcConfig ResultConfig(const QcConfig& config) const;

  /// The code combinations of every system slot.
  void BuildCodeCombinations(const ResultSources& sources, const QcConfig& config, QcResult& result) const;

  /// Every satellite with every combination of its system, then the systems.
  void AnalyseSatellites(const ResultSources& sources, const QcConfig& config, QcResult& result) const;

  /// The combinations of a satellite, by its usable bands.
  SatelliteCombinations CombinationsOf(const SatelliteStores& stores, const QcConfig& config,
                                       const QcResult& result) const;

  /// One satellite into the figures of its system slot.
  void AnalyseSatellite(const SatelliteStores& stores, const QcConfig& config, QcResult& result) const;

  /// Times, interval, duration, lost epochs, station and usability flags.
  void FinishRun(const ResultSources& sources, QcResult& result) const;

  /// The best combination of every system slot and the systems merged into one.
  /// @param systems  mask of the systems that are merged
  void ChooseAndCombine(std::uint32_t systems, QcResult& result, QcResultCore& total) const;

  /// The whole chain, into an empty result.
  void Analyse(const ResultSources& sources, QcResult& result, QcResultCore& total) const;
};

/// The stores of a satellite number (1 to 208).
SatelliteStores StoresOf(const ResultSources& sources, const gnssqctoolkit::SatelliteId& satellite,
                         int number);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_RESULT_ANALYSIS_H
