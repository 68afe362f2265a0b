#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>

#include "interface/print.h"
#include "orsolva/detail.h"
#include "orsolva/gnssqc.h"
#include "qc/process.h"
#include "tests/support/deliberate_leak.h"
#include "tests/support/run.h"
#include "tests/support/sky.h"

namespace {

using Handle = unsigned long long*;

using orsolva_test::LeakIsDeliberate;
using orsolva_test::OwnedHandle;

class Exports : public testing::Test {
 protected:
  std::vector<GpsEph_gbt> records_ = sky::Records(0.0, 14400.0);
  NavBodyData_QC_gbt nav_ = sky::Navigation(records_);
  gnssqctoolkit::Ephemeris ephemeris_ = sky::Store(records_);
  std::vector<ObsEpoch_QC_gbt> epochs_ = sky::Epochs(ephemeris_, 0, 60, 30);
  ObsBodyData_QC_gbt obs_ = sky::Batch(epochs_);
  config_qct config_ = sky::Config();
  std::unique_ptr<result_qct> result_ = std::make_unique<result_qct>();
  std::unique_ptr<total_code_qc_result> codes_ = std::make_unique<total_code_qc_result>();

  OwnedHandle Initialised() {
    OwnedHandle handle(CreatQcProcess());
    EXPECT_TRUE(InitialQc(nav_, &config_, handle.get()));
    return handle;
  }
};

TEST_F(Exports, AWholeRunStepByStep) {
  const OwnedHandle handle = Initialised();
  EXPECT_EQ(GNSSQCPlus(obs_, handle.get()), GNSSQC_OK);
  EXPECT_TRUE(GetAllPeriodResult(handle.get(), result_.get()));
  EXPECT_EQ(result_->lost_epochs, 0);
  EXPECT_EQ(result_->sys[0].completeness, 1.0);
  EXPECT_EQ(result_->start_time.time, sky::kWeekStart);
  EXPECT_EQ(result_->end_time.time, sky::kWeekStart + 59 * 30);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(result_->station_xyz[i], sky::kStation[i]);
  GetEachCodeResult(handle.get(), *codes_);
  EXPECT_EQ(codes_->sys[0].count, 2);
  EXPECT_EQ(codes_->sys[0].entries[0].code, 1);
  EXPECT_EQ(codes_->sys[0].entries[1].code, 16);
}

TEST_F(Exports, TheOneShotGivesWhatTheStepsGive) {
  const OwnedHandle handle = Initialised();
  GNSSQCPlus(obs_, handle.get());
  std::memset(result_.get(), 0, sizeof(*result_));
  GetAllPeriodResult(handle.get(), result_.get());
  const auto one_shot = std::make_unique<result_qct>();
  std::memset(one_shot.get(), 0, sizeof(*one_shot));
  testing::internal::CaptureStdout();
  EXPECT_EQ(GNSSQC(obs_, nav_, config_, *one_shot), GNSSQC_OK);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "QC success! \n");
  EXPECT_EQ(std::memcmp(one_shot.get(), result_.get(), sizeof(*result_)), 0);
}

TEST_F(Exports, TheOneShotWithoutAnyNavigationRecordSaysSoAndNothingElse) {
  const LeakIsDeliberate deliberate;
  testing::internal::CaptureStdout();
  EXPECT_EQ(GNSSQC(obs_, NavBodyData_QC_gbt{}, config_, *result_), GNSSQC_NO_NAV);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "no nav data! \n");
}

TEST_F(Exports, TheOneShotPrintsNothingForABatchThatFails) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(GNSSQC({0, nullptr}, nav_, config_, *result_), GNSSQC_NO_DATA);
  config_.enable_position = 0;
  epochs_.resize(1);
  epochs_[0].sat_num = 2;
  EXPECT_EQ(GNSSQC(sky::Batch(epochs_), nav_, config_, *result_), GNSSQC_NO_POSITION);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(Exports, DisposingOfNullDoesNothing) { DiposeProcess(nullptr); }

TEST_F(Exports, InitialisingWithoutAConfigurationFailsAndChangesNothing) {
  const OwnedHandle handle(CreatQcProcess());
  EXPECT_FALSE(InitialQc(nav_, nullptr, handle.get()));
  const auto* process = reinterpret_cast<const orsolva::PostProcessGnssQc*>(handle.get());
  EXPECT_EQ(process->Config.SystemMask, 0U);
  gnssqctoolkit::EphemerisChoice choice;
  EXPECT_FALSE(process->Eph.Select({1, 5}, {sky::kWeekStart, 0.0}, gnssqctoolkit::kDefaultMaxAges, choice));
}

TEST_F(Exports, InitialisingWithAnEmptyNavigationSetFailsAfterTheConfigurationIsTaken) {
  const OwnedHandle handle(CreatQcProcess());
  EXPECT_FALSE(InitialQc(NavBodyData_QC_gbt{}, &config_, handle.get()));
  EXPECT_EQ(reinterpret_cast<const orsolva::PostProcessGnssQc*>(handle.get())->Config.Interval, 30.0);
}

TEST_F(Exports, InitialisingStoresTheCombinationMask) {
  const OwnedHandle handle(CreatQcProcess());
  config_.combination_system[0] = config_.combination_system[3] = 0;
  EXPECT_TRUE(InitialQc(nav_, &config_, handle.get()));
  EXPECT_EQ(reinterpret_cast<const orsolva::PostProcessGnssQc*>(handle.get())->CombinationMask, 22U);
}

TEST_F(Exports, AnEmptyBatchIsRefusedAndLeavesTheRunUnchanged) {
  const OwnedHandle handle = Initialised();
  GNSSQCPlus(obs_, handle.get());
  GetAllPeriodResult(handle.get(), result_.get());
  const auto before = std::make_unique<result_qct>(*result_);
  EXPECT_EQ(GNSSQCPlus({0, epochs_.data()}, handle.get()), GNSSQC_NO_DATA);
  EXPECT_EQ(GNSSQCPlus({1, nullptr}, handle.get()), GNSSQC_NO_DATA);
  GetAllPeriodResult(handle.get(), result_.get());
  EXPECT_EQ(std::memcmp(before.get(), result_.get(), offsetof(result_qct, sat_used)), 0);
}

TEST_F(Exports, NullArgumentsOfResultsGiveFalse) {
  const OwnedHandle handle = Initialised();
  EXPECT_FALSE(GetAllPeriodResult(nullptr, result_.get()));
  EXPECT_FALSE(GetAllPeriodResult(handle.get(), nullptr));
  std::memset(codes_.get(), 7, sizeof(*codes_));
  GetEachCodeResult(nullptr, *codes_);
  EXPECT_EQ(codes_->sys[0].count, 0);
}

TEST_F(Exports, ThePerCodeRecordIsZeroedEvenWhenNothingWasSeen) {
  const OwnedHandle handle = Initialised();
  std::memset(codes_.get(), 0xAB, sizeof(*codes_));
  GetEachCodeResult(handle.get(), *codes_);
  for (const code_qc_block& block : codes_->sys) EXPECT_EQ(block.count, 0);
  EXPECT_EQ(codes_->sat[5][63].entries[7].iod_slip_count, 0U);
}

TEST_F(Exports, ResultsBeforeAnyBatchAreTrueWithOneLostEpochAndAllElseZero) {
  const OwnedHandle handle = Initialised();
  EXPECT_TRUE(GetAllPeriodResult(handle.get(), result_.get()));
  EXPECT_EQ(result_->lost_epochs, 1);
  EXPECT_EQ(result_->duration, 0.0);
  EXPECT_EQ(result_->total.expected_epochs, 0U);
}

TEST_F(Exports, TwoHandlesShareNothing) {
  const OwnedHandle busy = Initialised();
  const OwnedHandle idle = Initialised();
  GNSSQCPlus(obs_, busy.get());
  EXPECT_TRUE(GetAllPeriodResult(idle.get(), result_.get()));
  EXPECT_EQ(result_->sys[0].observed_epochs, 0U);
}

TEST_F(Exports, HandlesInThreadsGiveTheSameResults) {
  std::unique_ptr<result_qct> results[4];
  std::vector<std::thread> threads;
  for (auto& result : results) {
    result = std::make_unique<result_qct>();
    std::memset(result.get(), 0, sizeof(*result));
    threads.emplace_back([this, &result] {
      const OwnedHandle handle(CreatQcProcess());
      InitialQc(nav_, &config_, handle.get());
      GNSSQCPlus(obs_, handle.get());
      GetAllPeriodResult(handle.get(), result.get());
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_GT(results[0]->sys[0].observed_epochs, 0U);
  for (const auto& result : results) {
    EXPECT_EQ(std::memcmp(result.get(), results[0].get(), sizeof(result_qct)), 0);
  }
}

TEST_F(Exports, CountsBeyondTheArraysAndAbsurdValuesNeitherCrashNorHang) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (ObsEpoch_QC_gbt& epoch : epochs_) {
    epoch.sat_num = 0xFFFFFFFFU;
    epoch.sats[0].signal_num = 0xFFFFFFFFU;
    epoch.sats[1].signals[0].pseudorange = nan;
    epoch.sats[2].signals[0].phase = 1e308;
    epoch.sats[3].signals[1].pseudorange = 1e308;
    epoch.sats[4].signals[1].code = 255;
  }
  epochs_[7].time = {std::numeric_limits<std::int64_t>::min(), 1e300};
  epochs_[9].time = {std::numeric_limits<std::int64_t>::max(), -1e300};
  for (const double position : {nan, 0.0, 1e308, sky::kStation[0]}) {
    config_.position[0] = position;
    for (const std::uint8_t given : {0, 1}) {
      config_.enable_position = given;
      const OwnedHandle handle = Initialised();
      GNSSQCPlus(obs_, handle.get());
      GNSSQCPlus(obs_, handle.get());
      GetAllPeriodResult(handle.get(), result_.get());
      GetEachCodeResult(handle.get(), *codes_);
    }
  }
}

TEST_F(Exports, AskingForTheWholePeriodResultRoundsTheIntervalOfTheRun) {
  config_.interval = 30.0004;
  const OwnedHandle handle = Initialised();
  EXPECT_EQ(GNSSQCPlus(obs_, handle.get()), GNSSQC_OK);
  const auto* process = reinterpret_cast<const orsolva::PostProcessGnssQc*>(handle.get());
  EXPECT_EQ(process->Interval, 30.0004);
  GetEachCodeResult(handle.get(), *codes_);
  EXPECT_EQ(process->Interval, 30.0004);
  GetAllPeriodResult(handle.get(), result_.get());
  EXPECT_EQ(process->Interval, 30.0);
}

/// Throws while a batch runs, as a list without memory would.
class Throwing : public orsolva::QcDetailObserver {
 public:
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail&) override { throw std::bad_alloc(); }
  void OnPairEpoch(const orsolva::PairEpochDetail&) override { throw std::runtime_error("pair"); }
};

TEST_F(Exports, NoExceptionLeavesABatchAndTheHandleStaysUsable) {
  const OwnedHandle handle = Initialised();
  Throwing throwing;
  orsolva::SetDetailObserver(nullptr, &throwing);
  orsolva::SetDetailObserver(handle.get(), &throwing);
  EXPECT_EQ(GNSSQCPlus(obs_, handle.get()), GNSSQC_INTERNAL_ERROR);
  orsolva::SetDetailObserver(handle.get(), nullptr);
  for (ObsEpoch_QC_gbt& epoch : epochs_) epoch.time.time += 60 * 30;
  EXPECT_EQ(GNSSQCPlus(obs_, handle.get()), GNSSQC_OK);
}

/// Throws at the tenth pair of a pass, later keeps the times it is shown.
class ThrowsOnce : public orsolva::QcDetailObserver {
 public:
  std::vector<std::int64_t> Times;

  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail&) override {}
  void OnPairEpoch(const orsolva::PairEpochDetail& detail) override {
    if (++pairs_ == 10) throw std::bad_alloc();
    if (pairs_ > 10) Times.push_back(detail.time.time);
  }

 private:
  int pairs_ = 0;
};

TEST_F(Exports, ABatchAfterAnInternalErrorMeasuresOnlyItsOwnEpochs) {
  const OwnedHandle handle = Initialised();
  ThrowsOnce observer;
  orsolva::SetDetailObserver(handle.get(), &observer);
  EXPECT_EQ(GNSSQCPlus(obs_, handle.get()), GNSSQC_INTERNAL_ERROR);
  for (ObsEpoch_QC_gbt& epoch : epochs_) epoch.time.time += 60 * 30;
  EXPECT_EQ(GNSSQCPlus(obs_, handle.get()), GNSSQC_OK);
  ASSERT_FALSE(observer.Times.empty());
  for (const std::int64_t time : observer.Times) ASSERT_GE(time, epochs_[0].time.time);
}

TEST(Print, FormatsToStandardOutput) {
  testing::internal::CaptureStdout();
  orsolva::Print("%s %d\n", "epochs", 12);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "epochs 12\n");
}

TEST(LogHooks, DoNothing) {
  testing::internal::CaptureStdout();
  orsolva::SetLogFile("/nonexistent/qc.txt");
  orsolva::SetLogSwitch(1);
  orsolva::WriteLog();
  orsolva::CloseLog();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
