// The small sky of simulated_sky.h as the analysis takes it: every signal as an observation, its records as
// broadcast records, and troubles put in on request.
#ifndef ORSOLVA_TESTS_SUPPORT_ANALYSIS_SKY_H
#define ORSOLVA_TESTS_SUPPORT_ANALYSIS_SKY_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/analysis/station_analysis.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/observation_epoch.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {

struct AnalysisSky {
  orsolva_host::analysis::AnalysisOptions Options;  ///< with the true position
  orsolva_host::BroadcastRecords Records;
  std::vector<orsolva_host::ObservationEpoch> Epochs;

  explicit AnalysisSky(const SimulatedSky& sky);
};

/// Slips of whole and half cycles with and without flags, holes of a signal, of a satellite and of
/// everything, a reset of the receiver clock, a jump of the codes, a power failure and epochs that go back in
/// time; the shares are of epochs, so that a longer sky holds more of each.
void AddTroubles(AnalysisSky& sky, std::uint32_t seed);

struct AnalysisOutcome {
  std::vector<orsolva_host::analysis::Event> Events;
  orsolva_host::analysis::AnalysisResult Figures;
};

/// Feeds a sky to an analysis.
/// @param records  broadcast orbits; may hold nothing
/// @param share    epochs between two requests for events and figures
AnalysisOutcome Analysed(const AnalysisSky& sky, const orsolva_host::BroadcastRecords& records,
                         std::size_t share);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SUPPORT_ANALYSIS_SKY_H
