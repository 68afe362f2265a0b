// A troubled sky kept in memory, so that it can be given to the library in any shape.
#ifndef ORSOLVA_TESTS_TRUTH_LAW_SKY_H
#define ORSOLVA_TESTS_TRUTH_LAW_SKY_H

#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "tests/truth/simulated_run.h"

namespace orsolva_test {

struct LawSky {
  orsolva_host::NavigationSet navigation;
  std::vector<ObsEpoch_QC_gbt> epochs;
  config_qct config = {};
};

/// Outages, missing and repeated epochs, slips and code jumps.
LawSky MakeLawSky(double interval_s, int epochs, std::uint64_t seed);

bool FirstEpochHasEveryCode(const LawSky& sky);

/// How a run is fed: called with the process until it has given everything.
using Feeding = std::function<bool(Process& process, const LawSky& sky)>;

/// Everything in one batch.
bool FeedWhole(Process& process, const LawSky& sky);
/// Batches of random lengths up to `longest`.
/// @param between  called after each batch
bool FeedSplit(Process& process, const LawSky& sky, int longest, std::uint32_t seed,
               const std::function<void(Process&)>& between);

/// The results of a run; null when a batch was refused.
std::unique_ptr<Results> RunLawSky(const LawSky& sky, const Feeding& feeding);

/// Shuffles the satellites of every epoch from `first` on.
void ShuffleSatellites(LawSky& sky, std::size_t first, std::uint32_t seed);
/// Moves records and epochs by whole weeks.
void ShiftWeeks(LawSky& sky, int weeks);
/// Takes the satellites of a system out of every epoch.
void RemoveSystem(LawSky& sky, int system);

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_TRUTH_LAW_SKY_H
