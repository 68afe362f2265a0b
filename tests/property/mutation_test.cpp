// Random bytes in every boundary record neither crash nor hang nor trip a sanitizer.
//
// Valid runs are mutated field by field with values chosen to hurt. ORSOLVA_MUTATIONS sets the number of
// mutated batches (default 20,000; the long run is ORSOLVA_MUTATIONS=1000000).
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "tests/support/mutator.h"

namespace orsolva_test {
namespace {

long Mutations() {
  const char* given = std::getenv("ORSOLVA_MUTATIONS");
  return given != nullptr ? std::atol(given) : 20000;
}

TEST(Mutation, AbsurdRecordsNeitherCrashNorHangNorBreakALaw) {
  SkyOptions options;
  options.Epochs = 200;
  const SimulatedSky sky(options);
  const long wanted = Mutations();
  long batches = 0, accepted = 0;
  Results results;
  for (std::uint32_t seed = 1; batches < wanted; ++seed) {
    Mutator<std::mt19937> mutator(std::mt19937{seed});
    const MutatedRunFacts facts = MutatedRun(sky, mutator, results);
    ASSERT_EQ(facts.Broken, nullptr) << facts.Broken << ", seed " << seed;
    batches += facts.Batches;
    accepted += facts.Accepted;
  }
  // Both roads are taken: spoiled records are refused, and run through to the figures.
  EXPECT_GT(accepted, batches / 4);
  EXPECT_LT(accepted, batches);
}

TEST(Mutation, BatchOfPureNoiseIsSurvived) {
  SkyOptions options;
  options.Epochs = 4;
  const SimulatedSky sky(options);
  std::mt19937 random(11);
  for (int k = 0; k < 200; ++k) {
    Process process;
    config_qct config = sky.Config();
    process.Initialise(sky.Navigation, config);
    std::vector<ObsEpoch_QC_gbt> noise(3);
    auto* bytes = reinterpret_cast<unsigned char*>(noise.data());
    for (std::size_t i = 0; i < noise.size() * sizeof noise[0]; ++i)
      bytes[i] = static_cast<unsigned char>(random());
    const GNSSQC_STATE state = process.Feed(noise);
    EXPECT_TRUE(state == GNSSQC_OK || state == GNSSQC_NO_DATA) << state;
    const char* broken = BrokenLaw(Results(process), noise.size());
    EXPECT_EQ(broken, nullptr) << broken;
  }
}

}  // namespace
}  // namespace orsolva_test
