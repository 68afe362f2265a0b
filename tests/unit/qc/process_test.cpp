#include "qc/process.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <set>
#include <vector>

#include "tests/unit/qc/process_runs.h"

namespace {

using namespace orsolva;
using namespace orsolva_test;
using gnssqctoolkit::Ephemeris;

class Run : public testing::Test {
 protected:
  std::vector<GpsEph_gbt> records_ = sky::Records(0.0, 14400.0);
  Ephemeris ephemeris_ = sky::Store(records_);
  std::vector<ObsEpoch_QC_gbt> epochs_ = sky::Epochs(ephemeris_, 0, 120, 30);

  static std::unique_ptr<result_qct> Result(PostProcessGnssQc& process, bool* plausible = nullptr) {
    auto record = std::make_unique<result_qct>();
    std::memset(record.get(), 0, sizeof(*record));
    const bool ok = process.WholePeriodResult(*record);
    process.RoundInterval();
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
    Numbers.insert(detail.number);
    Consistent = Consistent && detail.signal_count > 0 && detail.signals[0].code != 0 &&
                 detail.satellite.prn > 0 &&
                 detail.above_cutoff == (detail.elevation_rad > 10.0 * gnssqctoolkit::kRadiansPerDegree) &&
                 detail.azimuth_rad >= 0.0 && detail.azimuth_rad <= 2.0 * sky::kPi;
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

class Glancing : public QcDetailObserver {
 public:
  void OnSatelliteEpoch(const SatelliteEpochDetail& detail) override {
    Plain = Plain && detail.signal_count == 0 && detail.azimuth_rad == 0.0;
    Above += detail.above_cutoff ? 1 : 0;
    Elevations.push_back(detail.elevation_rad);
  }
  void OnPairEpoch(const PairEpochDetail&) override { ++Pairs; }
  bool LooksAtDirections() const override { return false; }

  bool Plain = true;
  int Above = 0;
  int Pairs = 0;
  std::vector<double> Elevations;
};

class Looking : public Glancing {
 public:
  bool LooksAtDirections() const override { return true; }
};

TEST_F(Run, AnObserverThatDoesWithoutDirectionsSeesTheSameSatellitesAndPairs) {
  const auto first = Process(sky::Config(), records_);
  const auto second = Process(sky::Config(), records_);
  Glancing glancing;
  Looking looking;
  first->SetDetailObserver(&glancing);
  second->SetDetailObserver(&looking);
  Take(*first, epochs_);
  Take(*second, epochs_);
  EXPECT_TRUE(glancing.Plain);
  EXPECT_FALSE(looking.Plain);
  EXPECT_EQ(glancing.Above, looking.Above);
  EXPECT_EQ(glancing.Pairs, looking.Pairs);
  ASSERT_EQ(glancing.Elevations.size(), looking.Elevations.size());
  for (std::size_t i = 0; i < glancing.Elevations.size(); ++i) {
    EXPECT_TRUE(std::isnan(glancing.Elevations[i]));
    EXPECT_FALSE(std::isnan(looking.Elevations[i]));
  }
}

TEST_F(Run, ReleaseFreesTheRunsData) {
  const auto process = Process(sky::Config(), records_);
  Take(*process, epochs_);
  process->Release();
  EXPECT_EQ(process->Epochs.Size(), 0);
  EXPECT_TRUE(process->ObsData.CodeListsEmpty());
  EXPECT_FALSE(process->Snr.Ready);
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_FALSE(process->Eph.Select({1, 5}, {sky::kWeekStart, 0.0}, gnssqctoolkit::kDefaultMaxAges, choice));
}

}  // namespace
