// Many short runs with random configurations in one process: memory stays flat.
//
// ORSOLVA_SOAK sets the number of runs (default 500; the long soak is ORSOLVA_SOAK=1000000).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "tests/property/failing_memory.h"
#include "tests/support/run.h"
#include "tests/support/sanitized.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_test {
namespace {

constexpr int kEpochs = 24;
constexpr long kMaxGrown = 4L << 20;  // what fragments may take

// The sanitizers keep freed memory for a while: there only the count of blocks is tested.
constexpr bool kKeepsFreedMemory = kSanitized;

long Runs() {
  const char* given = std::getenv("ORSOLVA_SOAK");
  return given != nullptr ? std::max(100L, std::atol(given)) : 500;
}

/// Resident memory of the process.
long ResidentBytes() {
  std::FILE* file = std::fopen("/proc/self/statm", "r");
  long pages = 0;
  long resident = 0;
  const int read = file != nullptr ? std::fscanf(file, "%ld %ld", &pages, &resident) : 0;
  if (file != nullptr) std::fclose(file);
  return read == 2 ? resident * 4096 : 0;
}

config_qct RandomConfig(const SimulatedSky& sky, std::mt19937& random) {
  config_qct config = sky.Config();
  for (auto& on : config.enable_system) on = random() % 4 != 0;
  for (auto& on : config.combination_system) on = random() % 2;
  config.enable_position = random() % 2;
  config.elevation = static_cast<double>(random() % 30);
  config.interval = random() % 8 == 0 ? 0 : sky.Options.Interval * static_cast<double>(1 + random() % 2);
  config.auto_detect_freq = static_cast<std::int32_t>(random() % 2);
  for (int n = static_cast<int>(random() % 20); n > 0; --n)
    config.include_satellite[random() % 6][random() % 64] = 0;
  return config;
}

void RandomRun(const SimulatedSky& sky, std::mt19937& random, result_qct& whole,
               total_code_qc_result& codes) {
  unsigned long long* handle = CreatQcProcess();
  ASSERT_NE(handle, nullptr);
  const config_qct config = RandomConfig(sky, random);
  const NavBodyData_QC_gbt navigation = sky.Navigation.Body();
  if (random() % 32 != 0) InitialQc(navigation, &config, handle);
  int at = static_cast<int>(random() % 8);
  const int end = at + static_cast<int>(random() % (kEpochs - 8));
  while (at < end) {
    const int count = std::min(end - at, 1 + static_cast<int>(random() % 12));
    GNSSQCPlus({count, sky.Epochs.data() + at}, handle);
    at += count;
    if (random() % 8 == 0) GetAllPeriodResult(handle, &whole);
  }
  if (random() % 4 != 0) GetAllPeriodResult(handle, &whole);
  if (random() % 4 != 0) GetEachCodeResult(handle, codes);
  DiposeProcess(handle);
}

TEST(Soak, MemoryIsFlatOverManyShortRuns) {
  SkyOptions options;
  options.Epochs = kEpochs;
  const SimulatedSky sky(options);
  const auto whole = std::make_unique<result_qct>();
  const auto codes = std::make_unique<total_code_qc_result>();
  std::mt19937 random(3);
  const long runs = Runs();
  long resident = 0;
  for (long run = 0; run < runs; ++run) {
    if (run == runs / 2) resident = ResidentBytes();
    const long live = FailingMemory::live;
    RandomRun(sky, random, *whole, *codes);
    ASSERT_EQ(FailingMemory::live, live) << "blocks are left over by run " << run;
  }
  const long grown = ResidentBytes() - resident;
  std::printf("%ld runs: %+ld bytes resident in the later half\n", runs, grown);
  if (kKeepsFreedMemory) return;
  EXPECT_LT(grown, kMaxGrown);
}

}  // namespace
}  // namespace orsolva_test
