// Once a run is warm, an epoch allocates nothing but what the lists that record the run double by.
#include <gtest/gtest.h>

#include <memory>

#include "qc/process.h"
#include "tests/property/failing_memory.h"
#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {
namespace {

using orsolva::kBandSlots;
using orsolva::PostProcessGnssQc;

/// Times a list of `count` entries has been allocated: a first time, then whenever it had to double.
long Doublings(int count, int first) {
  long doublings = 0;
  for (long room = 0; room < count; room = room == 0 ? first : 2 * room) ++doublings;
  return doublings;
}

/// The same of every list that holds something an epoch: availability flags and SNR samples of a channel,
/// restarts and slips of a pair, the epochs of the run.
long DoublingsOfTheRun(const PostProcessGnssQc& run) {
  constexpr int kFirstValues = 20, kFirstTimes = 100;
  long sum = Doublings(run.Epochs.Size(), kFirstTimes);
  for (int number = 1; number <= gnssqctoolkit::kMaxSatellites; ++number) {
    for (int band = 0; band < kBandSlots; ++band) {
      for (const auto& channel : run.Snr.CompleteSats[number - 1].Channels[band]) {
        sum += Doublings(channel.Flags.Count(), kFirstValues);
      }
      for (const auto& channel : run.Snr.SnrSats[number - 1].Channels[band]) {
        sum += Doublings(channel.Samples.Count(), kFirstValues);
      }
      const orsolva::SatMp& multipath = run.IonMp.Multipath(number);
      const orsolva::SatIodDetect& ionosphere = run.IonMp.Ionosphere(number);
      for (int k = 0; k < multipath.Count[band]; ++k) {
        sum += Doublings(multipath.Pairs[band][k]->RestartTimes.Size(), kFirstTimes);
        sum += Doublings(ionosphere.Pairs[band][k]->SlipTimes.Size(), kFirstTimes);
      }
    }
  }
  return sum;
}

/// A station-day; every satellite has risen in its first half.
const SimulatedSky& Day() {
  static const SimulatedSky sky([] {
    SkyOptions options;
    options.Epochs = 2880;
    options.MissingShare = 0.02;
    options.LowestElevation = 0.05;
    return options;
  }());
  return sky;
}

std::unique_ptr<PostProcessGnssQc> Configured() {
  auto run = std::make_unique<PostProcessGnssQc>();
  orsolva::QcConfig config;
  config.ApplyDefaults();
  config.Overlay(Day().Config());
  run->Configure(config);
  run->LoadNavigationSet(Day().Navigation.Body());
  return run;
}

void Feed(PostProcessGnssQc& run, int from, int to, int batch) {
  for (int k = from; k < to; k += batch) {
    ASSERT_EQ(run.TakeBatch({batch, Day().Epochs.data() + k}), GNSSQC_OK);
  }
}

class WarmRun : public testing::TestWithParam<int> {};

TEST_P(WarmRun, AllocatesNothingButTheDoublingsOfItsLists) {
  const auto run = Configured();
  Feed(*run, 0, 1440, GetParam());
  const long doublings = DoublingsOfTheRun(*run);
  FailingMemory::Arm(FailingMemory::kNever, 0);
  Feed(*run, 1440, 2880, GetParam());
  const long allocations = FailingMemory::calls;
  EXPECT_EQ(allocations, DoublingsOfTheRun(*run) - doublings);
  EXPECT_GT(allocations, 0);
}

INSTANTIATE_TEST_SUITE_P(Allocation, WarmRun, testing::Values(1, 30, 120));

TEST(Allocation, ResultsOfAWarmRunTakeTheSameWhateverItsLength) {
  const auto run = Configured();
  const auto whole = std::make_unique<result_qct>();
  const auto codes = std::make_unique<total_code_qc_result>();
  const auto allocations = [&] {
    FailingMemory::Arm(FailingMemory::kNever, 0);
    run->WholePeriodResult(*whole);
    run->EachCodeResult(*codes);
    return FailingMemory::calls;
  };
  Feed(*run, 0, 1440, 120);
  const long half = allocations();
  Feed(*run, 1440, 2880, 120);
  EXPECT_LE(allocations(), half + half / 10);
}

}  // namespace
}  // namespace orsolva_test
