// The same epochs in any split into batches give the same bits.
#include <gtest/gtest.h>

#include <random>

#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {
namespace {

/// A sky with missing signals, slips, code jumps and an outage of everything.
SimulatedSky TroubledSky(std::uint32_t seed) {
  SkyOptions options;
  options.Epochs = 200;
  options.Seed = seed;
  options.MissingShare = 0.03;
  SimulatedSky sky(options);
  std::mt19937 random(seed);
  for (ObsEpoch_QC_gbt& epoch : sky.Epochs) {
    for (std::uint32_t s = 0; s < epoch.sat_num; ++s) {
      if (random() % 50 == 0) epoch.sats[s].signals[0].pseudorange += 20.0;
    }
  }
  for (std::size_t k = 80; k < sky.Epochs.size(); ++k) {
    for (std::uint32_t s = 0; s < sky.Epochs[k].sat_num; s += 3)
      sky.Epochs[k].sats[s].signals[0].phase += 9.0;
  }
  sky.Epochs.erase(sky.Epochs.begin() + 120, sky.Epochs.begin() + 145);
  return sky;
}

void FeedInSplit(Process& process, const SimulatedSky& sky, std::mt19937& random, int longest, bool ask) {
  std::size_t at = 0;
  while (at < sky.Epochs.size()) {
    const std::size_t count = std::min<std::size_t>(1 + random() % longest, sky.Epochs.size() - at);
    ASSERT_EQ(process.Feed(sky.Epochs.data() + at, static_cast<int>(count)), GNSSQC_OK);
    if (ask && random() % 3 == 0) Results{process};
    at += count;
  }
}

TEST(Split, AnySplitGivesTheSameBits) {
  for (std::uint32_t seed = 1; seed <= 3; ++seed) {
    const SimulatedSky sky = TroubledSky(seed);
    Process whole;
    ASSERT_TRUE(whole.Initialise(sky.Navigation, sky.Config()));
    ASSERT_EQ(whole.Feed(sky.Epochs), GNSSQC_OK);
    const Results expected(whole);
    ASSERT_TRUE(expected.Plausible);
    ASSERT_GT(expected.Whole->total.observed_epochs, 1000u);
    ASSERT_GT(expected.Whole->total.slip_epochs, 10u);

    std::mt19937 random(seed * 77);
    for (const int longest : {1, 2, 7, 40, 150}) {
      Process split;
      ASSERT_TRUE(split.Initialise(sky.Navigation, sky.Config()));
      FeedInSplit(split, sky, random, longest, false);
      EXPECT_TRUE(Results(split).SameBits(expected)) << "seed " << seed << ", batches up to " << longest;
    }
  }
}

TEST(Split, AskingForResultsInBetweenChangesNothing) {
  const SimulatedSky sky = TroubledSky(9);
  Process whole, asked;
  ASSERT_TRUE(whole.Initialise(sky.Navigation, sky.Config()));
  ASSERT_TRUE(asked.Initialise(sky.Navigation, sky.Config()));
  ASSERT_EQ(whole.Feed(sky.Epochs), GNSSQC_OK);
  std::mt19937 random(5);
  FeedInSplit(asked, sky, random, 20, true);
  const Results expected(whole);
  EXPECT_TRUE(Results(asked).SameBits(expected));
  EXPECT_TRUE(Results(asked).SameBits(expected)) << "the second time";
}

}  // namespace
}  // namespace orsolva_test
