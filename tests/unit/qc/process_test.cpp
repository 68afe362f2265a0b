#include "qc/process.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <set>

#include "qc/navigation_loading.h"
#include "tests/support/sky.h"

namespace {

using namespace orsolva;
using gnssqctoolkit::Ephemeris;

std::unique_ptr<PostProcessGnssQc> Process(const config_qct& host) {
  auto process = std::make_unique<PostProcessGnssQc>();
  QcConfig config;
  config.ApplyDefaults();
  config.Overlay(host);
  process->Configure(config);
  process->SetCombination(host.combination_system);
  return process;
}

std::unique_ptr<PostProcessGnssQc> Process(const config_qct& host, const std::vector<GpsEph_gbt>& records) {
  auto process = Process(host);
  EXPECT_TRUE(process->LoadNavigationSet(sky::Navigation(records)));
  return process;
}

bool Ingested(PostProcessGnssQc& process, const std::vector<ObsEpoch_QC_gbt>& epochs) {
  BatchCodes codes;
  codes.Collect(sky::Batch(epochs));
  BatchSummary summary;
  process.ResetBatch();
  return process.Ingest(sky::Batch(epochs), codes, summary);
}

GNSSQC_STATE Take(PostProcessGnssQc& process, const std::vector<ObsEpoch_QC_gbt>& epochs) {
  return process.TakeBatch(sky::Batch(epochs));
}

config_qct Config(double interval) {
  config_qct config = sky::Config();
  config.interval = interval;
  return config;
}

// --- configuration -------------------------------------------------------------------------------------

TEST(Configure, AnExcludedSatelliteIsUnusableForTheWholeRun) {
  config_qct host = sky::Config();
  host.include_satellite[0][3] = 0;
  const auto process = Process(host);
  EXPECT_EQ(process->SatUsable[3], 0);
  EXPECT_EQ(process->SatUsable[2], 1);
  EXPECT_EQ(Process(sky::Config())->SatUsable[3], 1);
}

TEST(Configure, NumbersWithoutASatelliteAreSkipped) {
  config_qct host = sky::Config();
  for (auto& row : host.include_satellite) {
    for (std::int32_t& flag : row) flag = 0;
  }
  const auto process = Process(host);
  for (int number = 1; number <= 208; ++number) {
    const bool has_key = number <= 168 || (number >= 192 && number <= 201);
    EXPECT_EQ(process->SatUsable[number - 1], has_key ? 0 : 1) << number;
  }
}

TEST(Configure, BuildsTheMaskOfEnabledSystems) {
  config_qct host = sky::Config();
  host.enable_system[2] = 0;
  EXPECT_EQ(Process(host)->Config.SystemMask, 27U);
}

TEST(Configure, ACutoffThatIsNotPositiveBecomesTheLeast) {
  PostProcessGnssQc& process = *Process(sky::Config()).release();
  const std::unique_ptr<PostProcessGnssQc> owner(&process);
  QcConfig config;
  config.ElevationMask = 0.0;
  process.Configure(config);
  EXPECT_EQ(process.Config.ElevationMask, 0.0001);
  config.ElevationMask = -1.0;
  process.Configure(config);
  EXPECT_EQ(process.Config.ElevationMask, 0.0001);
}

TEST(Configure, ThePositionIsKnownWhenTheHostGivesIt) {
  const auto process = Process(sky::Config());
  EXPECT_EQ(process->Config.EnablePosition, 1);
  EXPECT_EQ(process->Position[1], sky::kStation[1]);
}

TEST(Configure, TheCombinationMaskFollowsTheFlagsAndLeavesTheSystemMask) {
  config_qct host = sky::Config();
  host.combination_system[1] = host.combination_system[4] = 0;
  const auto process = Process(host);
  EXPECT_EQ(process->CombinationMask, 1U + 4U + 8U);
  EXPECT_EQ(process->Config.SystemMask, 31U);
  EXPECT_EQ(std::make_unique<PostProcessGnssQc>()->CombinationMask, 31U);
}

TEST(Configure, ASecondTimeReplacesTheConfigurationAndKeepsTheMarks) {
  config_qct host = sky::Config();
  host.include_satellite[0][3] = 0;
  const auto process = Process(host);
  QcConfig second;
  second.ApplyDefaults();
  config_qct again = Config(5.0);
  again.include_satellite[0][6] = 0;
  second.Overlay(again);
  process->Configure(second);
  EXPECT_EQ(process->SatUsable[3], 0);
  EXPECT_EQ(process->SatUsable[6], 0);
  EXPECT_EQ(process->Config.Interval, 5.0);
}

// --- navigation ----------------------------------------------------------------------------------------

TEST(LoadNavigation, AnEmptySetIsRefused) {
  const auto process = Process(sky::Config());
  EXPECT_FALSE(process->LoadNavigationSet(NavBodyData_QC_gbt{}));
}

TEST(LoadNavigation, UnhealthyRecordsAreVisitedButNeverStored) {
  std::vector<GpsEph_gbt> records{sky::Record(5, 0.0)};
  records[0].svh = 1;
  const auto process = Process(sky::Config());
  EXPECT_TRUE(process->LoadNavigationSet(sky::Navigation(records)));
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_FALSE(process->Eph.Select({1, 5}, {sky::kWeekStart, 0.0}, choice));
  EXPECT_EQ(process->SatUsable[4], 255);
}

TEST(LoadNavigation, OneHealthyRecordMakesASatelliteHealthyForGood) {
  std::vector<GpsEph_gbt> records{sky::Record(5, 0.0), sky::Record(5, 7200.0), sky::Record(5, 14400.0)};
  records[0].svh = records[2].svh = 3;
  const auto process = Process(sky::Config(), records);
  EXPECT_EQ(process->SatUsable[4], 1);
  EXPECT_EQ(process->SatUsable[5], 1) << "a satellite without any record stays usable";
}

TEST(LoadNavigation, EverySystemIsLoadedAndScanned) {
  GloEph_gbt glonass{};
  glonass.prn = 4;
  glonass.frequency_channel = -3;
  BdsEph_gbt bds{};
  bds.prn = 20;
  bds.svh = 1;
  GalEph_gbt galileo{};
  galileo.prn = 11;
  galileo.svh = 1;
  GpsEph_gbt qzss = sky::Record(2, 0.0);
  qzss.prn = 3;
  NavBodyData_QC_gbt nav{};
  nav.glo_num = nav.bds_num = nav.gal_num = nav.qzs_num = 1;
  nav.glo_eph = &glonass;
  nav.bds_eph = &bds;
  nav.gal_eph = &galileo;
  nav.qzs_eph = &qzss;
  const auto process = Process(sky::Config());
  ASSERT_TRUE(process->LoadNavigationSet(nav));
  EXPECT_EQ(process->Eph.GlonassChannels()[3], -3);
  EXPECT_EQ(process->Eph.GlonassChannels()[4], -999);
  EXPECT_EQ(process->SatUsable[68 + 20 - 2], 255);
  EXPECT_EQ(process->SatUsable[131 + 11 - 1], 255);
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_TRUE(process->Eph.Select({16, 3}, {sky::kWeekStart, 0.0}, choice));
}

TEST(LoadNavigation, ACountWithANullPointerIsNoRecord) {
  NavBodyData_QC_gbt nav{};
  nav.gps_num = nav.glo_num = nav.bds_num = nav.gal_num = nav.qzs_num = 1000;
  const auto process = Process(sky::Config());
  EXPECT_FALSE(process->LoadNavigationSet(nav));
  for (const std::uint8_t usable : process->SatUsable) EXPECT_EQ(usable, 1);
}

TEST(LoadNavigation, ASecondSetIsAddedToTheFirst) {
  const auto process = Process(sky::Config(), {sky::Record(5, 0.0)});
  std::vector<GpsEph_gbt> more{sky::Record(5, 86400.0)};
  ASSERT_TRUE(process->LoadNavigationSet(sky::Navigation(more)));
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_TRUE(process->Eph.Select({1, 5}, {sky::kWeekStart, 0.0}, choice));
  EXPECT_TRUE(process->Eph.Select({1, 5}, {sky::kWeekStart + 86400, 0.0}, choice));
}

// --- ingestion -----------------------------------------------------------------------------------------

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

// --- the whole chain -----------------------------------------------------------------------------------

class Run : public testing::Test {
 protected:
  std::vector<GpsEph_gbt> records_ = sky::Records(0.0, 14400.0);
  Ephemeris ephemeris_ = sky::Store(records_);
  std::vector<ObsEpoch_QC_gbt> epochs_ = sky::Epochs(ephemeris_, 0, 120, 30);

  static std::unique_ptr<result_qct> Result(PostProcessGnssQc& process, bool* plausible = nullptr) {
    auto record = std::make_unique<result_qct>();
    std::memset(record.get(), 0, sizeof(*record));
    const bool ok = process.WholePeriodResult(*record);
    if (plausible != nullptr) *plausible = ok;
    return record;
  }

  static std::unique_ptr<total_code_qc_result> Codes(const PostProcessGnssQc& process) {
    auto record = std::make_unique<total_code_qc_result>();
    std::memset(record.get(), 0, sizeof(*record));
    process.EachCodeResult(*record);
    return record;
  }

  void ExpectSameResults(PostProcessGnssQc& a, PostProcessGnssQc& b) {
    EXPECT_EQ(std::memcmp(Codes(a).get(), Codes(b).get(), sizeof(total_code_qc_result)), 0);
    EXPECT_EQ(std::memcmp(Result(a).get(), Result(b).get(), sizeof(result_qct)), 0);
  }
};

TEST_F(Run, AnErrorFreeReceiverIsComplete) {
  const auto process = Process(sky::Config(), records_);
  ASSERT_EQ(Take(*process, epochs_), GNSSQC_OK);
  bool plausible = false;
  const auto record = Result(*process, &plausible);
  EXPECT_TRUE(plausible);
  EXPECT_EQ(record->lost_epochs, 0);
  EXPECT_EQ(record->sys[0].completeness, 1.0);
  EXPECT_GT(record->sys[0].expected_epochs, 500U);
  EXPECT_EQ(record->sys[0].expected_epochs, record->sys[0].observed_epochs);
}

TEST_F(Run, AnEmptyBatchHasNoDataAndChangesNothing) {
  const auto process = Process(sky::Config(), records_);
  const auto untouched = Process(sky::Config(), records_);
  Take(*process, epochs_);
  Take(*untouched, epochs_);
  EXPECT_EQ(process->TakeBatch({0, epochs_.data()}), GNSSQC_NO_DATA);
  EXPECT_EQ(process->TakeBatch({-5, epochs_.data()}), GNSSQC_NO_DATA);
  EXPECT_EQ(process->TakeBatch({5, nullptr}), GNSSQC_NO_DATA);
  ExpectSameResults(*process, *untouched);
}

TEST_F(Run, AnExcludedSatelliteIsStoredButNeverMeasured) {
  config_qct host = sky::Config();
  const int prn = epochs_[0].sats[0].prn;
  host.include_satellite[0][prn - 1] = 0;
  const auto process = Process(host, records_);
  Ingested(*process, epochs_);
  EXPECT_EQ(process->ObsData.Sats[prn - 1].Epochs.size(), 120U);
  const auto fresh = Process(host, records_);
  Take(*fresh, epochs_);
  EXPECT_EQ(fresh->Snr.CompleteSats[prn - 1].ExpectedEpochs, 0U);
  const int other = epochs_[0].sats[1].prn;
  EXPECT_GT(fresh->Snr.CompleteSats[other - 1].ExpectedEpochs, 0U);
}

TEST_F(Run, AnUnhealthySatelliteIsNeverMeasured) {
  const int prn = epochs_[0].sats[0].prn;
  std::vector<GpsEph_gbt> unhealthy = records_;
  for (GpsEph_gbt& record : unhealthy) {
    if (record.prn == prn) record.svh = 1;
  }
  const auto process = Process(sky::Config(), unhealthy);
  // The healthy record of a second set gives an orbit, but the mark of the first stays.
  process->LoadNavigationSet(sky::Navigation(records_));
  Take(*process, epochs_);
  EXPECT_EQ(process->SatUsable[prn - 1], 255);
  EXPECT_EQ(process->Snr.CompleteSats[prn - 1].ExpectedEpochs, 0U);
  EXPECT_EQ(Result(*process)->sat_used[0][prn - 1], 4294967295U);
}

TEST_F(Run, MissingEpochsOfASatelliteLowerItsCompleteness) {
  const int prn = epochs_[0].sats[0].prn;
  std::vector<ObsEpoch_QC_gbt> holed = epochs_;
  for (int i = 40; i < 50; ++i) holed[i].sats[0].sys = 0;
  const auto whole = Process(sky::Config(), records_);
  const auto process = Process(sky::Config(), records_);
  Take(*whole, epochs_);
  Take(*process, holed);
  const auto& lacking = process->Snr.CompleteSats[prn - 1];
  const auto& complete = whole->Snr.CompleteSats[prn - 1];
  EXPECT_EQ(lacking.ExpectedEpochs, complete.ExpectedEpochs);
  EXPECT_LT(lacking.Channels[0][0].ValidCount, complete.Channels[0][0].ValidCount);
}

TEST_F(Run, AnySplitIntoBatchesGivesTheSameBits) {
  const auto whole = Process(sky::Config(), records_);
  Take(*whole, epochs_);
  for (const std::size_t batch : {1U, 2U, 7U, 50U}) {
    const auto split = Process(sky::Config(), records_);
    for (std::size_t i = 0; i < epochs_.size(); i += batch) {
      const std::size_t end = std::min(i + batch, epochs_.size());
      EXPECT_EQ(Take(*split, {epochs_.begin() + i, epochs_.begin() + end}), GNSSQC_OK);
    }
    ExpectSameResults(*whole, *split);
  }
}

TEST_F(Run, ResultsMayBeAskedForAtAnyTimeInAnyOrder) {
  const auto asked = Process(sky::Config(), records_);
  const auto quiet = Process(sky::Config(), records_);
  Result(*asked);
  Codes(*asked);
  for (int part = 0; part < 4; ++part) {
    const std::vector<ObsEpoch_QC_gbt> batch(epochs_.begin() + part * 30, epochs_.begin() + part * 30 + 30);
    Take(*asked, batch);
    Take(*quiet, batch);
    Codes(*asked);
    Result(*asked);
    Result(*asked);
    Codes(*asked);
  }
  ExpectSameResults(*asked, *quiet);
}

TEST_F(Run, ResultsBeforeAnyBatchAreTrueWithOneLostEpoch) {
  const auto process = Process(sky::Config(), records_);
  bool plausible = false;
  const auto record = Result(*process, &plausible);
  EXPECT_TRUE(plausible);
  EXPECT_EQ(record->lost_epochs, 1);
  EXPECT_EQ(record->total.expected_epochs, 0U);
}

TEST_F(Run, TheRoundedIntervalIsWrittenBackToTheRun) {
  const auto process = Process(Config(30.0004), records_);
  Take(*process, {epochs_[0]});
  EXPECT_EQ(process->Interval, 30.0004);
  Result(*process);
  EXPECT_EQ(process->Interval, 30.0);
}

TEST_F(Run, PositioningRunsForTheFirstBatchThatSucceedsOnly) {
  config_qct host = sky::Config();
  host.enable_position = 0;
  const auto process = Process(host, records_);
  ASSERT_EQ(Take(*process, {epochs_.begin(), epochs_.begin() + 60}), GNSSQC_OK);
  EXPECT_EQ(process->Config.EnablePosition, 1);
  double first[3];
  std::memcpy(first, process->Position, sizeof(first));
  // The receiver has no ionosphere and troposphere while positioning takes their models out: tens of metres.
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(first[i], sky::kStation[i], 60.0);
  ASSERT_EQ(Take(*process, {epochs_.begin() + 60, epochs_.end()}), GNSSQC_OK);
  EXPECT_EQ(std::memcmp(first, process->Position, sizeof(first)), 0);
}

TEST_F(Run, ABatchWithoutAPositionStaysCountedButIsNotMeasured) {
  config_qct host = sky::Config();
  host.enable_position = 0;
  const auto process = Process(host, records_);
  std::vector<ObsEpoch_QC_gbt> few = {epochs_[0], epochs_[1]};
  for (ObsEpoch_QC_gbt& epoch : few) epoch.sat_num = 3;
  EXPECT_EQ(Take(*process, few), GNSSQC_NO_POSITION);
  EXPECT_EQ(process->EpochCount, 2U);
  EXPECT_EQ(process->LastTime.time, few[1].time.time);
  EXPECT_EQ(process->Config.EnablePosition, 0);
  for (const auto& satellite : process->Snr.CompleteSats) EXPECT_EQ(satellite.ExpectedEpochs, 0U);
  EXPECT_EQ(Take(*process, {epochs_.begin() + 2, epochs_.end()}), GNSSQC_OK);
}

TEST_F(Run, PositioningUsesUsableSatellitesOnly) {
  config_qct host = sky::Config();
  host.enable_position = 0;
  for (int k = 0; k < 64; ++k) host.include_satellite[0][k] = 0;
  EXPECT_EQ(Take(*Process(host, records_), epochs_), GNSSQC_NO_POSITION);
}

TEST_F(Run, MeasuresAreInitialisedByTheFirstBatchWithCodes) {
  const auto process = Process(sky::Config(), records_);
  Take(*process, {sky::EmptyEpoch(sky::kWeekStart - 60), sky::EmptyEpoch(sky::kWeekStart - 30)});
  EXPECT_FALSE(process->IonMp.Initialised());
  EXPECT_FALSE(process->Snr.Ready);
  Take(*process, epochs_);
  EXPECT_TRUE(process->IonMp.Initialised());
  EXPECT_TRUE(process->Snr.Ready);
  EXPECT_EQ(Result(*process)->sys[0].completeness, 1.0);
}

TEST_F(Run, DefaultAgesHoldForTheElevationsOfEveryBatch) {
  // A single BDS record: the measures let it age to two hours, elevations to six.
  BdsEph_gbt bds{};
  bds.prn = 20;
  bds.sqrtA = 5282.6;
  bds.i0 = 0.96;
  bds.week = sky::kWeek - 1356;
  bds.toc = {sky::kWeekStart, 0.0};
  NavBodyData_QC_gbt nav{};
  nav.bds_num = 1;
  nav.bds_eph = &bds;
  const auto process = Process(Config(30.0));
  ASSERT_TRUE(process->LoadNavigationSet(nav));
  process->Config.ElevationMask = -2.0;
  for (const std::int64_t hour : {1, 3, 5, 7}) {
    std::vector<ObsEpoch_QC_gbt> batch{sky::EmptyEpoch(sky::kWeekStart + hour * 3600)};
    sky::AddSatellite(batch[0], 4, 20, {150, 173});
    EXPECT_EQ(Take(*process, batch), GNSSQC_OK);
  }
  const auto& list = process->Snr.CompleteSats[67 + 20 - 1].Channels[0][0].Flags;
  EXPECT_EQ(list.Count(), 3) << "the elevations of hours 1, 3 and 5 are found, that of hour 7 is not";
}

TEST_F(Run, AJumpOfACenturyEnds) {
  const auto process = Process(Config(1e-9), records_);
  std::vector<ObsEpoch_QC_gbt> jumping(epochs_.begin(), epochs_.begin() + 10);
  jumping.push_back(epochs_[10]);
  jumping.back().time.time += 3155760000;
  jumping.push_back(epochs_[11]);
  jumping.push_back(epochs_[12]);
  jumping.back().time.time = INT64_MIN;
  jumping.push_back(epochs_[13]);
  jumping.back().time.time = INT64_MAX;
  EXPECT_EQ(Take(*process, jumping), GNSSQC_OK);
  Result(*process);
}

TEST_F(Run, AThousandBatchesOfOneEpochAreTaken) {
  const auto process = Process(sky::Config(), records_);
  std::vector<ObsEpoch_QC_gbt> one{epochs_[0]};
  for (int i = 0; i < 1000; ++i) {
    one[0].time.time += 30;
    EXPECT_EQ(Take(*process, one), GNSSQC_OK);
  }
}

class Recorder : public QcDetailObserver {
 public:
  void OnSatelliteEpoch(const SatelliteEpochDetail& detail) override {
    ++Satellites;
    Numbers.insert(detail.Number);
    Consistent = Consistent && detail.SignalCount > 0 && detail.Signals[0].code != 0 &&
                 detail.Satellite.prn > 0 && detail.AboveCutoff == (detail.ElevationRad > 10.0 * kDegree) &&
                 detail.AzimuthRad >= 0.0 && detail.AzimuthRad <= 2.0 * sky::kPi;
  }
  void OnPairEpoch(const PairEpochDetail&) override { ++Pairs; }

  int Satellites = 0;
  int Pairs = 0;
  bool Consistent = true;
  std::set<int> Numbers;
};

TEST_F(Run, AnObserverSeesEveryMeasuredEpochAndChangesNothing) {
  const auto watched = Process(sky::Config(), records_);
  const auto alone = Process(sky::Config(), records_);
  Recorder recorder;
  watched->SetDetailObserver(&recorder);
  Take(*watched, epochs_);
  Take(*alone, epochs_);
  int listed = 0;
  for (const ObsEpoch_QC_gbt& epoch : epochs_) listed += static_cast<int>(epoch.sat_num);
  EXPECT_EQ(recorder.Satellites, listed);
  EXPECT_GT(recorder.Pairs, 0);
  EXPECT_TRUE(recorder.Consistent);
  watched->SetDetailObserver(nullptr);
  Take(*watched, {sky::EmptyEpoch(sky::kWeekStart + 5000)});
  Take(*alone, {sky::EmptyEpoch(sky::kWeekStart + 5000)});
  EXPECT_EQ(recorder.Satellites, listed);
  ExpectSameResults(*watched, *alone);
}

TEST_F(Run, ReleaseFreesTheRunsData) {
  const auto process = Process(sky::Config(), records_);
  Take(*process, epochs_);
  process->Release();
  EXPECT_EQ(process->Epochs.Size(), 0);
  EXPECT_TRUE(process->ObsData.CodeListsEmpty());
  EXPECT_FALSE(process->Snr.Ready);
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_FALSE(process->Eph.Select({1, 5}, {sky::kWeekStart, 0.0}, choice));
}

}  // namespace
