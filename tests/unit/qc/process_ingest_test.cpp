#include "qc/process.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "tests/unit/qc/process_runs.h"

namespace {

using namespace orsolva;
using namespace orsolva_test;
using gnssqctoolkit::Ephemeris;

TEST(Ingest, AnEpochWithinAThousandthOfTheIntervalIsAcceptedAnEarlierOneSkipped) {
  const auto process = Process(Config(1.0));
  EXPECT_TRUE(Ingested(*process, {sky::EmptyEpoch(1000), sky::EmptyEpoch(1000, 0.9995)}));
  EXPECT_EQ(process->EpochCount, 2U);
  EXPECT_TRUE(Ingested(*process, {sky::EmptyEpoch(2000), sky::EmptyEpoch(2000, 0.998)}));
  EXPECT_EQ(process->EpochCount, 3U);
  EXPECT_EQ(process->LastAccepted.time, 2000);
  EXPECT_EQ(process->LastAccepted.sec, 0.0);
}

TEST(Ingest, AnEpochWithoutSatellitesIsCounted) {
  const auto process = Process(Config(1.0));
  EXPECT_TRUE(Ingested(*process, {sky::EmptyEpoch(1000)}));
  EXPECT_EQ(process->EpochCount, 1U);
  EXPECT_EQ(process->Epochs.Size(), 1);
  EXPECT_TRUE(process->ObsData.PresentSatellites().empty());
}

TEST(Ingest, TheLastAcceptedEpochHoldsAcrossBatches) {
  const auto process = Process(Config(30.0));
  Ingested(*process, {sky::EmptyEpoch(3000)});
  Ingested(*process, {sky::EmptyEpoch(3000), sky::EmptyEpoch(3010), sky::EmptyEpoch(3030)});
  EXPECT_EQ(process->EpochCount, 2U);
}

TEST(Ingest, FirstAndLastTimeSpanEveryEpochSkippedOnesToo) {
  const auto process = Process(Config(30.0));
  Ingested(*process, {sky::EmptyEpoch(3000), sky::EmptyEpoch(3010)});
  EXPECT_EQ(process->FirstTime.time, 3000);
  EXPECT_EQ(process->LastTime.time, 3010);
  Ingested(*process, {sky::EmptyEpoch(2990)});
  EXPECT_EQ(process->FirstTime.time, 2990);
  EXPECT_EQ(process->LastTime.time, 3010);
}

TEST(Ingest, AnEpochWhoseFractionIsNoNumberIsNoEpoch) {
  const auto process = Process(Config(30.0));
  EXPECT_TRUE(Ingested(
      *process, {sky::EmptyEpoch(1, std::nan("")), sky::EmptyEpoch(3000), sky::EmptyEpoch(9000000, HUGE_VAL),
                 sky::EmptyEpoch(3030), sky::EmptyEpoch(1, -HUGE_VAL)}));
  EXPECT_EQ(process->EpochCount, 2U);
  EXPECT_EQ(process->FirstTime.time, 3000);
  EXPECT_EQ(process->LastTime.time, 3030);
  EXPECT_EQ(process->ObsData.BatchFirst.time, 3000);
  EXPECT_EQ(process->ObsData.BatchLast.time, 3030);
}

TEST(Ingest, ABatchWithoutAnyUsableTimeHasNoData) {
  const auto process = Process(Config(30.0));
  EXPECT_EQ(Take(*process, {sky::EmptyEpoch(1000, std::nan(""))}), GNSSQC_NO_DATA);
  EXPECT_EQ(process->EpochCount, 0U);
  EXPECT_EQ(process->FirstTime.time, 0);
}

TEST(Ingest, WithoutAConfiguredIntervalItIsDetected) {
  const auto process = Process(Config(1.0));
  process->Config.Interval = 0.0;
  EXPECT_TRUE(Ingested(*process, {sky::EmptyEpoch(100), sky::EmptyEpoch(115), sky::EmptyEpoch(130)}));
  EXPECT_EQ(process->Interval, 15.0);
  EXPECT_EQ(process->EpochCount, 3U);
}

TEST(Ingest, AnIntervalThatCannotBeToldGivesNoDataButTheEpochsCount) {
  const auto process = Process(Config(1.0));
  process->Config.Interval = 0.0;
  EXPECT_EQ(Take(*process, {sky::EmptyEpoch(100)}), GNSSQC_NO_DATA);
  EXPECT_EQ(process->Interval, 0.0);
  EXPECT_EQ(process->EpochCount, 1U);
  EXPECT_EQ(process->LastAccepted.time, 100);
}

TEST(Ingest, AbsurdIntervalsAreSafe) {
  const Ephemeris ephemeris = sky::Store(sky::Records(0.0, 7200.0));
  const auto epochs = sky::Epochs(ephemeris, 0, 20, 30);
  for (const double interval : {1e-300, 1e-9, 1e300, HUGE_VAL, std::nan("")}) {
    const auto process = Process(Config(interval), sky::Records(0.0, 7200.0));
    process->Config.Interval = interval;
    EXPECT_EQ(Take(*process, epochs), GNSSQC_OK);
    EXPECT_GE(process->EpochCount, 1U);
    auto record = std::make_unique<result_qct>();
    process->WholePeriodResult(*record);
  }
}

TEST(Ingest, CodeListsAreFilledFromTheFirstBatchOnly) {
  const auto process = Process(Config(30.0));
  std::vector<ObsEpoch_QC_gbt> first{sky::EmptyEpoch(1000)};
  sky::AddSatellite(first[0], 1, 7, {1});
  std::vector<ObsEpoch_QC_gbt> second{sky::EmptyEpoch(1030)};
  sky::AddSatellite(second[0], 1, 7, {1, 16});
  sky::AddSatellite(second[0], 8, 7, {62});
  Ingested(*process, first);
  Ingested(*process, second);
  EXPECT_EQ(process->ObsData.CodeLists[0].Count(), 1);
  EXPECT_EQ(process->ObsData.CodeLists[3].Count(), 0);
}

TEST(Ingest, CodesAppearingAfterEpoch2002AreNotListedButTheirEpochsAreTakenIn) {
  std::vector<ObsEpoch_QC_gbt> epochs(3000);
  for (int i = 0; i < 3000; ++i) {
    epochs[i] = sky::EmptyEpoch(1000 + i);
    sky::AddSatellite(epochs[i], 1, 7, i < 2002 ? std::vector<int>{1} : std::vector<int>{1, 16});
  }
  const auto process = Process(Config(1.0));
  Ingested(*process, epochs);
  EXPECT_EQ(process->EpochCount, 3000U);
  EXPECT_EQ(process->ObsData.Sats[6].Epochs.size(), 3000U);
  EXPECT_EQ(process->ObsData.CodeLists[0].Count(), 1);
}

}  // namespace
