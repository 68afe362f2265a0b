#include "results/output_records.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "tests/unit/results/result_fixtures.h"

namespace orsolva {
namespace {

using namespace orsolva::testing;
using gnssqctoolkit::kBds;
using gnssqctoolkit::kGps;

struct Period {
  std::unique_ptr<result_qct> Record = std::make_unique<result_qct>();
  bool Plausible;
  explicit Period(const RunStores& run) { Plausible = FillAllPeriodResult(run.Sources(), *Record); }
};

struct EachCode {
  std::unique_ptr<total_code_qc_result> Record = std::make_unique<total_code_qc_result>();
  explicit EachCode(const RunStores& run) { FillEachCodeResult(run.Sources(), *Record); }
};

QcEpochData L1L2(double snr_l1 = 45.0) {
  QcEpochData epoch;
  Put(epoch, 0, Signal(kG1C, snr_l1));
  Put(epoch, 1, Signal(kG2W, 38.0));
  return epoch;
}

RunStores GpsRun() {
  RunStores run;
  run.Observed(kGps, {kG1C, kG2W});
  run.Track(kGps, 7, L1L2(), 4);
  run.First = {100, 0.0};
  run.Last = {103, 0.0};
  run.EpochCount = 4;
  return run;
}

TEST(AllPeriodRecord, IsPlausibleBeforeAnyBatchWithOneLostEpochAndNothingElse) {
  RunStores run;
  run.Usable[0] = 255;
  const Period period(run);
  EXPECT_TRUE(period.Plausible);
  result_qct empty{};
  empty.lost_epochs = 1;
  for (int i = 0; i < 3; ++i) empty.station_xyz[i] = run.Sources().Position[i];
  for (auto& slot : empty.sat_used) {
    for (std::uint32_t& used : slot) used = 1;
  }
  empty.sat_used[0][0] = 4294967295u;
  EXPECT_EQ(std::memcmp(period.Record.get(), &empty, sizeof(empty)), 0);
}

TEST(AllPeriodRecord, HoldsTheOptimalFiguresOfSystemsAndSatellites) {
  const Period period(GpsRun());
  EXPECT_TRUE(period.Plausible);
  const result_qct& record = *period.Record;
  EXPECT_EQ(record.start_time.time, 100);
  EXPECT_EQ(record.end_time.time, 103);
  EXPECT_EQ(record.lost_epochs, 0);
  EXPECT_EQ(record.duration, 3.0 / 3600.0);
  for (const qc_core_summary* summary : {&record.sys[0], &record.sat[0][6], &record.total}) {
    EXPECT_EQ(summary->system, kGps);
    EXPECT_EQ(summary->expected_epochs, 4u);
    EXPECT_EQ(summary->observed_epochs, 4u);
    EXPECT_EQ(summary->completeness, 1.0);
    EXPECT_EQ(summary->snr[0], 45.0);
    EXPECT_EQ(summary->snr[1], 38.0);
    EXPECT_EQ(summary->snr_30[0][0], 0.0);
    EXPECT_EQ(summary->snr_30[0][1], 45.0);
    EXPECT_EQ(summary->obs_per_slip, 4.0);
  }
  EXPECT_EQ(record.sat[0][7].system, 0) << "a satellite never seen stays empty";
}

TEST(AllPeriodRecord, ShowsTheMeanAboveTheCutOffNotTheOverallOne) {
  RunStores run = GpsRun();
  run.Snr->AddEpoch(7, L1L2(20.0), false, false);
  const Period period(run);
  EXPECT_EQ(period.Record->sat[0][6].snr[0], 45.0);
  EXPECT_EQ(period.Record->sat[0][6].snr_30[0][0], 20.0);
}

TEST(AllPeriodRecord, CapsCompletenessAtOne) {
  RunStores run = GpsRun();
  run.Track(kGps, 7, L1L2(), 1);
  run.Snr->CompleteSats[6].ExpectedEpochs = 4;
  const Period period(run);
  EXPECT_EQ(period.Record->sat[0][6].observed_epochs, 5u);
  EXPECT_EQ(period.Record->sat[0][6].completeness, 1.0);
  EXPECT_EQ(period.Record->sys[0].completeness, 1.0);
  EXPECT_EQ(period.Record->total.completeness, 1.0);
  EXPECT_TRUE(period.Plausible);
  EXPECT_EQ(EachCode(run).Record->sat[0][6].entries[0].completeness, 1.25) << "not capped per code";
}

TEST(AllPeriodRecord, IsFilledButNotPlausibleWithMoreEpochsThanTheSpanAllows) {
  RunStores run = GpsRun();
  run.EpochCount = 5;
  const Period period(run);
  EXPECT_FALSE(period.Plausible);
  EXPECT_EQ(period.Record->lost_epochs, -1);
  EXPECT_EQ(period.Record->sys[0].observed_epochs, 4u);
}

TEST(AllPeriodRecord, DoesNotWriteItsPadding) {
  RunStores run = GpsRun();
  auto record = std::make_unique<result_qct>();
  std::memset(record.get(), 0x5A, sizeof(*record));
  FillAllPeriodResult(run.Sources(), *record);
  EXPECT_EQ(record->padding, 0x5A5A5A5A);
  EXPECT_EQ(record->sys[0].padding, 0x5A5A5A5A);
  EXPECT_EQ(record->total.padding, 0x5A5A5A5A);
  EXPECT_EQ(record->sys[5].system, 0) << "every field is written";
  EXPECT_EQ(record->sat[5][63].iod[5], 0.0);
}

TEST(AllPeriodRecord, DoesNotChangeWhenItIsAskedForAgain) {
  RunStores run;
  run.Observed(kBds, {kC2I, kC5P, kC7D, kC6I});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kC2I));
  Put(epoch, 1, Signal(kC5P, 41.0));
  Put(epoch, 2, Signal(kC6I));
  Put(epoch, 4, Signal(kC7D, 42.0));
  run.Track(kBds, 25, epoch, 3).Track(kBds, 60, epoch, 2);
  const Period first(run);
  const EachCode codes(run);
  const Period second(run);
  const EachCode codes_again(run);
  EXPECT_EQ(std::memcmp(first.Record.get(), second.Record.get(), sizeof(result_qct)), 0);
  EXPECT_EQ(std::memcmp(codes.Record.get(), codes_again.Record.get(), sizeof(total_code_qc_result)), 0);
  EXPECT_EQ(codes.Record->sat[2][24].entries[1].observed_epochs, 3u)
      << "the channel of band 5 is still there";
  EXPECT_EQ(first.Record->sat[2][24].snr[4], 41.0);
  EXPECT_EQ(first.Record->sat[2][24].snr[5], 42.0);
}

TEST(EachCodeRecord, IsZeroButForItsNamesWithoutASatellite) {
  const EachCode codes{RunStores()};
  auto empty = std::make_unique<total_code_qc_result>();
  std::memset(empty.get(), 0, sizeof(*empty));
  const int satellites[] = {35, 32, 64, 37, 10};
  for (int slot = 0; slot < 5; ++slot) {
    empty->sys[slot].system = static_cast<std::uint8_t>(1 << slot);
    for (int i = 0; i < satellites[slot]; ++i)
      empty->sat[slot][i].system = static_cast<std::uint8_t>(1 << slot);
  }
  EXPECT_EQ(std::memcmp(codes.Record.get(), empty.get(), sizeof(*empty)), 0);
}

TEST(EachCodeRecord, IsZeroedBeforeItIsFilled) {
  auto record = std::make_unique<total_code_qc_result>();
  std::memset(record.get(), 0x5A, sizeof(*record));
  FillEachCodeResult(GpsRun().Sources(), *record);
  EXPECT_EQ(record->sys[5].system, 0);
  EXPECT_EQ(record->sat[5][63].count, 0);
  EXPECT_EQ(record->sat[0][6].entries[7].iod_slip_count, 0u);
  EXPECT_EQ(record->sat[0][6].padding[0], 0);
}

TEST(EachCodeRecord, PoolsTheSatellitesOfASystem) {
  RunStores run = GpsRun();
  run.Track(kGps, 8, L1L2(49.0), 4);
  const EachCode codes(run);
  const code_qc_block& gps = codes.Record->sys[0];
  ASSERT_EQ(gps.count, 2);
  EXPECT_EQ(gps.entries[0].code, kG1C);
  EXPECT_EQ(gps.entries[0].observed_epochs, 8u);
  EXPECT_EQ(gps.entries[0].snr, 47.0);
  EXPECT_EQ(gps.entries[1].snr, 38.0);
  EXPECT_EQ(codes.Record->sat[0][7].entries[0].snr, 49.0);
}

TEST(EachCodeRecord, KeepsEveryBdsSatelliteInTheSlotOfBds) {
  RunStores run;
  run.Observed(kBds, {kC2I});
  QcEpochData epoch;
  Put(epoch, 0, Signal(kC2I));
  run.Track(kBds, 5, epoch, 1).Track(kBds, 64, epoch, 2);
  const EachCode codes(run);
  EXPECT_EQ(codes.Record->sat[2][4].entries[0].observed_epochs, 1u);
  EXPECT_EQ(codes.Record->sat[2][63].entries[0].observed_epochs, 2u);
  EXPECT_EQ(codes.Record->sys[2].entries[0].observed_epochs, 3u);
  EXPECT_EQ(codes.Record->sys[5].system, 0);
  EXPECT_EQ(codes.Record->sat[5][63].system, 0);
}

TEST(EachCodeRecord, RegroupsTheCodesOnlyWithoutAutomaticDetection) {
  RunStores run;
  run.Observed(kGps, {kG2W, kG1C});
  run.Config.AutoDetectFreq = 1;
  EXPECT_EQ(EachCode(run).Record->sys[0].entries[0].code, kG2W);
  run.Config.AutoDetectFreq = 0;
  EXPECT_EQ(EachCode(run).Record->sys[0].entries[0].code, kG1C);
  EXPECT_EQ(AsVector(run.Lists[0]), std::vector<std::int32_t>({kG2W, kG1C})) << "the run's own list stays";
  run.Config.Sys[kSlotGps].FreqEnable[0] = 0;
  EXPECT_EQ(EachCode(run).Record->sys[0].count, 1);
}

TEST(EachCodeRecord, MergesTheTwoBdsRowsUnderAutomaticDetection) {
  RunStores run;
  run.Observed(kBds, {kC5P});
  QcEpochData epoch;
  Put(epoch, 1, Signal(kC5P));
  run.Track(kBds, 25, epoch, 1);
  run.Config.Sys[kSlotBds].FreqEnable[4] = 0;
  run.Config.AutoDetectFreq = 1;
  EXPECT_EQ(EachCode(run).Record->sat[2][24].count, 1);
  run.Config.AutoDetectFreq = 0;
  EXPECT_EQ(EachCode(run).Record->sat[2][24].count, 0);
}

TEST(EachCodeRecord, HoldsAtMostEightCodesOfASystem) {
  RunStores run;
  run.Observed(kGps, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  const EachCode codes(run);
  EXPECT_EQ(codes.Record->sys[0].count, 8);
  EXPECT_EQ(codes.Record->sys[1].count, 0);
  EXPECT_EQ(codes.Record->sys[1].system, 2);
}

}  // namespace
}  // namespace orsolva
