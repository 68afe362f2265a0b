// Same scenario, same bytes: with every compiler, at every level of optimisation, on every machine. The
// digests below hold for all of them; a change of the simulator that is meant to change its output changes
// them too (the failing test prints the new ones).
#include <gtest/gtest.h>

#include "host/simulator/file_set.h"
#include "host/simulator/presets.h"
#include "host/simulator/scenario_json.h"
#include "tests/simulator/made.h"
#include "tests/support/digest.h"

namespace {

using namespace orsolva_host;
using orsolva_test::ReadText;
using orsolva_test::TestFolder;

/// Everything that draws, rises, jumps and waves, in twenty minutes.
Scenario Eventful() {
  Scenario s;
  ReadScenario(R"({
    "seed": 12345, "hours": 0.3334, "interval_s": 5, "start": "2020-06-25 07:50:00",
    "receiver": {"position_m": [-3024831.536, 4928986.861, 2681262.589], "cutoff_deg": 0, "clock_drift": 1e-6,
      "millisecond_jumps": true, "acquisition_s": 20, "reacquisition_s": 15, "signal_delay_s": {"G5Q": 40}},
    "signals": {"E": ["1C", "5Q", "7Q", "8Q", "6C"]},
    "faults": [
      {"kind": "slip", "size": 3.5, "random": 20},
      {"kind": "code_jump", "size": 10, "duration_s": 60, "random": 10},
      {"kind": "outage", "duration_s": 90, "random": 20},
      {"kind": "snr_drop", "size": 6, "duration_s": 120, "random": 10},
      {"kind": "missing_epoch", "random": 3}, {"kind": "duplicate_epoch", "random": 2},
      {"kind": "late_epoch", "size": 0.125, "random": 2}, {"kind": "late_delivery", "random": 2},
      {"kind": "iono_storm", "size": 20, "duration_s": 1200, "period_s": 120},
      {"kind": "unhealthy", "satellite": "R04"}, {"kind": "clock_jump", "size": 1, "at_s": 600},
      {"kind": "header_offset", "size": 12}]})",
               s);
  return s;
}

std::uint64_t DigestOf(const std::string& path) {
  const std::string text = ReadText(path);
  EXPECT_GT(text.size(), 1000U) << path;
  return orsolva_test::Digest(text.data(), text.size());
}

TEST(SameBytes, FilesOfAnEventfulSpanHaveTheCommittedDigests) {
  const TestFolder folder("same_bytes");
  const Scenario scenario = Eventful();
  const auto silent = [](std::uint64_t, std::uint64_t) {};
  const FileSetOptions plain{folder.Path("plain"), false, false}, crinex{folder.Path("crinex"), false, true};
  WriteFileSet(scenario, plain, silent);
  WriteFileSet(scenario, crinex, silent);
  EXPECT_EQ(DigestOf(FileNames(scenario, plain).observations), 16274389050269798944ULL);
  EXPECT_EQ(DigestOf(FileNames(scenario, crinex).observations), 7708318461339541300ULL);
  EXPECT_EQ(DigestOf(FileNames(scenario, plain).navigation), 12664195881367794926ULL);
  EXPECT_EQ(DigestOf(FileNames(scenario, plain).truth), 18160312315942674253ULL);
  EXPECT_EQ(DigestOf(FileNames(scenario, crinex).truth), DigestOf(FileNames(scenario, plain).truth));
}

TEST(SameBytes, EpochsAreTheSameHoweverTheyAreFetched) {
  Simulation by_one(Eventful()), by_batches(Eventful());
  std::vector<ObsEpoch_QC_gbt> batch;
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  std::size_t count = 0;
  for (std::size_t most : {1U, 7U, 100U, 1000U}) {
    for (std::size_t i = 0, got = by_batches.NextBatch(batch, most); i < got; ++i, ++count) {
      ASSERT_TRUE(by_one.Next(*epoch));
      ASSERT_TRUE(orsolva_test::SameBits(*epoch, batch[i])) << count;
    }
  }
  EXPECT_FALSE(by_one.Next(*epoch));
  EXPECT_EQ(count, by_one.TruthSoFar().delivered_epochs);
}

TEST(SameBytes, AnotherSeedGivesOtherBytes) {
  Scenario other = Eventful();
  other.seed = 12346;
  Simulation a(Eventful()), b(other);
  auto x = std::make_unique<ObsEpoch_QC_gbt>(), y = std::make_unique<ObsEpoch_QC_gbt>();
  a.Next(*x);
  b.Next(*y);
  EXPECT_FALSE(orsolva_test::SameBits(*x, *y));
}

TEST(SameBytes, AFaultChangesNothingBesideWhatItMeets) {
  Scenario quiet = orsolva_test::ScenarioOf(0.5, 30), slipped = quiet;
  Fault slip;
  slip.target = {'G', 0, "1C"};
  slip.at_s = 600;
  slip.size = 5;
  slipped.faults = {slip};
  Simulation a(quiet), b(slipped);
  auto x = std::make_unique<ObsEpoch_QC_gbt>(), y = std::make_unique<ObsEpoch_QC_gbt>();
  while (a.Next(*x)) {
    ASSERT_TRUE(b.Next(*y));
    for (std::uint32_t i = 0; i < y->sat_num; ++i) {
      for (std::uint32_t j = 0; j < y->sats[i].signal_num; ++j) {
        Signal_QC_gbt& signal = y->sats[i].signals[j];
        const bool met = y->sats[i].sys == kGps && SignalName(kGps, signal.code) == "1C";
        if (met) signal.phase = x->sats[i].signals[j].phase;
      }
    }
    ASSERT_TRUE(orsolva_test::SameBits(*x, *y));
  }
}

}  // namespace
