// The memory of the analysis goes with satellites, signals and records, not with time.
#include <gtest/gtest.h>

#include "tests/property/failing_memory.h"
#include "tests/support/analysis_sky.h"

namespace orsolva_test {
namespace {

/// Blocks that are held after two days and after three. By then every satellite has been seen.
struct Held {
  long AfterTwoDays = 0;
  long AfterThree = 0;
};

Held BlocksHeld(bool with_records) {
  constexpr int kEpochsPerDay = 720;
  SkyOptions options;
  options.Interval = 120;
  options.Epochs = 3 * kEpochsPerDay;
  options.LowestElevation = 0.2;
  AnalysisSky sky{SimulatedSky(options)};
  // Each state vector keeps the path that is integrated from it; Kepler records keep nothing.
  sky.Records.state_vectors.clear();
  const long before = FailingMemory::live;
  orsolva_host::analysis::StationAnalysis analysis(
      sky.Options, with_records ? sky.Records : orsolva_host::BroadcastRecords());
  Held held;
  for (std::size_t k = 0; k < sky.Epochs.size(); ++k) {
    analysis.Add(sky.Epochs[k]);
    if (k % 30 == 29) analysis.TakeEvents();
    if (k + 1 == 2 * kEpochsPerDay) held.AfterTwoDays = FailingMemory::live - before;
  }
  held.AfterThree = FailingMemory::live - before;
  return held;
}

constexpr double kMaxGrowth = 1.02;  // rings and lists of an epoch differ a little from one to another

TEST(AnalysisGrowth, AThirdDayHoldsNoMoreThanTwo) {
  const Held held = BlocksHeld(true);
  EXPECT_GT(held.AfterTwoDays, 100);
  EXPECT_LT(static_cast<double>(held.AfterThree), kMaxGrowth * static_cast<double>(held.AfterTwoDays));
}

TEST(AnalysisGrowth, NorWithoutNavigation) {
  const Held held = BlocksHeld(false);
  EXPECT_GT(held.AfterTwoDays, 100);
  EXPECT_LT(static_cast<double>(held.AfterThree), kMaxGrowth * static_cast<double>(held.AfterTwoDays));
}

}  // namespace
}  // namespace orsolva_test
