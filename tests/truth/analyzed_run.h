// A simulated run through the analysis of the host, with what it found against what was injected.
#ifndef ORSOLVA_TESTS_TRUTH_ANALYZED_RUN_H
#define ORSOLVA_TESTS_TRUTH_ANALYZED_RUN_H

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/station_analysis.h"
#include "host/simulator/simulation.h"

namespace orsolva_test {

/// Called with every epoch delivered, before the analysis takes it.
using EpochListener =
    std::function<void(const orsolva_host::Simulation&, const orsolva_host::ObservationEpoch&)>;

struct AnalyzedRun {
  orsolva_host::Truth truth;
  orsolva_host::analysis::AnalysisResult result;
  std::vector<orsolva_host::analysis::Event> events;
  /// Decided steps of satellites from 10 degrees up, or of unknown elevation.
  std::uint64_t tested_steps = 0;
};

/// What is kept from the analysis.
struct RunOptions {
  bool navigation = true;
  double interval_s = 0;                                  ///< that a header states; 0: none
  std::string without_records;                            ///< systems whose records are left out, by letter
  std::optional<std::array<double, 3>> given_position_m;  ///< by the user
};

AnalyzedRun Analyze(const orsolva_host::Scenario& scenario, const RunOptions& options = {},
                    const EpochListener& listener = {});

/// Nanoseconds of a time of the truth.
std::int64_t Nanoseconds(const Time_gbt& time);

/// "G04"
orsolva_host::SatelliteId SatelliteOf(const std::string& name);

/// The slips of one satellite in one epoch.
struct SlipSet {
  double elevation_deg = 0;
  std::map<std::string, double> sizes;  ///< cycles by signal
};
using SlipKey = std::pair<std::int64_t, orsolva_host::SatelliteId>;

/// Slips that show in the data, by time and satellite.
std::map<SlipKey, SlipSet> InjectedSlips(const orsolva_host::Truth& truth);

/// How slips and events agree, from 10 degrees up.
struct SlipScore {
  std::uint64_t tested_steps = 0;
  std::uint64_t injected = 0;
  std::uint64_t found = 0;       ///< an event in exactly that epoch says slip, half cycle or jump
  std::uint64_t right = 0;       ///< with exactly these signals and sizes
  std::uint64_t alarms = 0;      ///< slips, half cycles and jumps where nothing was injected
  std::uint64_t near_slips = 0;  ///< alarms within three epochs of a slip of the same satellite
  std::vector<std::string> missed, false_alarms;  ///< for a look, at most ten each

  void Add(const SlipScore& other);
  double FoundPercent() const;
  double AlarmsPer10000() const;
};

inline constexpr double kScoredFrom_deg = 10;

/// @param keep  which of the injected slips are scored; all of them answer for an event
SlipScore ScoreOf(const AnalyzedRun& run,
                  const std::function<bool(const SlipKey&, const SlipSet&)>& keep = {});

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_ANALYZED_RUN_H
