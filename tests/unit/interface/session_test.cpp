#include "orsolva/session.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/run.h"
#include "tests/support/sky.h"

namespace orsolva {
namespace {

static_assert(!std::is_copy_constructible_v<Session> && !std::is_copy_assignable_v<Session>);
static_assert(std::is_nothrow_move_constructible_v<Session> && std::is_nothrow_move_assignable_v<Session>);

template <class Record>
bool SameBytes(const Record& a, const Record& b) {
  return std::memcmp(&a, &b, sizeof(Record)) == 0;
}

class Sessions : public testing::Test {
 protected:
  std::vector<GpsEph_gbt> records_ = sky::Records(0.0, 14400.0);
  gnssqctoolkit::Ephemeris ephemeris_ = sky::Store(records_);
  std::vector<ObsEpoch_QC_gbt> epochs_ = sky::Epochs(ephemeris_, 0, 60, 30);
  Config config_;
  Navigation navigation_;
  Session session_;

  Sessions() {
    config_.interval_s = 30.0;
    config_.position_m = {sky::kStation[0], sky::kStation[1], sky::kStation[2]};
    navigation_.gps = records_;
  }
};

TEST_F(Sessions, GiveTheBitsOfTheDirectCalls) {
  ASSERT_TRUE(session_.Start(config_, navigation_));
  ASSERT_TRUE(session_.Feed({epochs_.data(), 25}));
  ASSERT_TRUE(session_.Feed({epochs_.data() + 25, 35}));
  const config_qct record = sky::Config();
  const NavBodyData_QC_gbt nav = sky::Navigation(records_);
  const orsolva_test::OwnedHandle handle(CreatQcProcess());
  ASSERT_TRUE(InitialQc(nav, &record, handle.get()));
  ASSERT_EQ(GNSSQCPlus({25, epochs_.data()}, handle.get()), GNSSQC_OK);
  ASSERT_EQ(GNSSQCPlus({35, epochs_.data() + 25}, handle.get()), GNSSQC_OK);
  const auto whole = std::make_unique<result_qct>();
  const auto codes = std::make_unique<total_code_qc_result>();
  ASSERT_TRUE(GetAllPeriodResult(handle.get(), whole.get()));
  GetEachCodeResult(handle.get(), *codes);
  EXPECT_EQ(whole->sys[0].completeness, 1.0);
  EXPECT_TRUE(SameBytes(*session_.Result(), *whole));
  EXPECT_TRUE(SameBytes(*session_.CodeResult(), *codes));
}

TEST_F(Sessions, TheTypedConfigurationIsTheRecordOfTheLibrary) {
  config_qct record;
  std::memset(&record, 0xAA, sizeof record);
  ASSERT_TRUE(config_.ToRecord(record));
  EXPECT_TRUE(SameBytes(record, sky::Config()));
}

TEST_F(Sessions, TakeANavigationSetThatTheHostHasMadeItself) {
  Session other;
  ASSERT_TRUE(session_.Start(config_, navigation_));
  ASSERT_TRUE(other.Start(config_, sky::Navigation(records_)));
  ASSERT_TRUE(session_.Feed(epochs_));
  ASSERT_TRUE(other.Feed(epochs_));
  EXPECT_TRUE(SameBytes(*session_.Result(), *other.Result()));
}

TEST_F(Sessions, DefaultsJudgeEverythingAboveTenDegreesAndComputeThePosition) {
  config_qct record{};
  ASSERT_TRUE(Config().ToRecord(record));
  EXPECT_EQ(record.elevation, 10.0);
  EXPECT_EQ(record.interval, 1.0);
  EXPECT_EQ(record.enable_position, 0);
  EXPECT_EQ(record.auto_detect_freq, 1);
  for (int slot = 0; slot < ORSOLVA_SYSTEMS; ++slot) {
    EXPECT_EQ(record.enable_system[slot], 1);
    EXPECT_EQ(record.combination_system[slot], 1);
  }
}

TEST_F(Sessions, ExclusionsClearOneFlagEach) {
  config_.systems = {System::kGps, System::kGalileo};
  config_.combined_systems = {System::kGps};
  config_.excluded_satellites = {{System::kGalileo, 64}};
  config_.excluded_bands = {{System::kGps, 3}};
  config_.detect_bands = false;
  config_qct record{};
  ASSERT_TRUE(config_.ToRecord(record));
  config_qct expected = sky::Config();
  for (const int slot : {1, 2, 4}) expected.enable_system[slot] = 0;
  for (const int slot : {1, 2, 3, 4}) expected.combination_system[slot] = 0;
  expected.include_satellite[3][63] = 0;
  expected.satellite_freq[0][2] = 0;
  expected.auto_detect_freq = 0;
  EXPECT_TRUE(SameBytes(record, expected));
}

std::vector<Config> ConfigsOutOfRange(const Config& good) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<Config> bad(9, good);
  bad[0].elevation_cutoff_deg = 90.0;
  bad[1].elevation_cutoff_deg = nan;
  bad[2].interval_s = 0.0;
  bad[3].interval_s = std::numeric_limits<double>::infinity();
  bad[4].position_m = {1.0, nan, 3.0};
  bad[5].excluded_satellites = {{System::kGps, 65}};
  bad[6].excluded_bands = {{System::kGps, 0}};
  bad[7].systems = {static_cast<System>(32)};
  bad[8].combined_systems = {static_cast<System>(0)};
  return bad;
}

TEST_F(Sessions, AValueOutOfItsRangeIsNamedAndTheRecordKept) {
  for (const Config& bad : ConfigsOutOfRange(config_)) {
    config_qct record = sky::Config();
    const Status status = bad.ToRecord(record);
    EXPECT_EQ(status.Code(), StatusCode::kBadConfig);
    EXPECT_STRNE(status.Text(), StatusText(StatusCode::kBadConfig)) << "does not say which value";
    EXPECT_TRUE(SameBytes(record, sky::Config())) << status.Text();
    EXPECT_EQ(session_.Start(bad, navigation_).Code(), StatusCode::kBadConfig) << status.Text();
  }
  EXPECT_TRUE(session_.Start(config_, navigation_));
}

TEST_F(Sessions, CallsBeforeStartSaySo) {
  EXPECT_EQ(session_.Feed(epochs_).Code(), StatusCode::kNotStarted);
  EXPECT_EQ(session_.Result().status.Code(), StatusCode::kNotStarted);
  EXPECT_EQ(session_.CodeResult().record, nullptr);
  EXPECT_FALSE(session_.Started());
  EXPECT_EQ(session_.Handle(), nullptr);
}

TEST_F(Sessions, ASecondStartIsRefusedAndTheRunGoesOn) {
  ASSERT_TRUE(session_.Start(config_, navigation_));
  ASSERT_TRUE(session_.Feed(epochs_));
  EXPECT_EQ(session_.Start(config_, navigation_).Code(), StatusCode::kAlreadyStarted);
  EXPECT_EQ(session_.Result()->end_time.time, epochs_.back().time.time);
}

TEST_F(Sessions, WithoutNavigationRecordsThereIsNoRun) {
  EXPECT_EQ(session_.Start(config_, Navigation()).Code(), StatusCode::kNoNavigation);
  EXPECT_FALSE(session_.Started());
}

TEST_F(Sessions, CountsThatDoNotFitTheirPointersAreRefused) {
  constexpr std::size_t kTooMany = std::size_t{1} << 31;
  navigation_.glonass = {nullptr, 3};
  EXPECT_EQ(session_.Start(config_, navigation_).Code(), StatusCode::kBadArgument);
  navigation_.glonass = {};
  navigation_.gps = {records_.data(), kTooMany};
  EXPECT_EQ(session_.Start(config_, navigation_).Code(), StatusCode::kBadArgument);
  NavBodyData_QC_gbt nav = sky::Navigation(records_);
  nav.bds_num = -1;
  EXPECT_EQ(session_.Start(sky::Config(), nav).Code(), StatusCode::kBadArgument);
  navigation_.gps = records_;
  ASSERT_TRUE(session_.Start(config_, navigation_));
  EXPECT_EQ(session_.Feed({nullptr, 2}).Code(), StatusCode::kBadArgument);
  EXPECT_EQ(session_.Feed({epochs_.data(), kTooMany}).Code(), StatusCode::kBadArgument);
}

TEST_F(Sessions, StatesOfTheLibraryComeThrough) {
  config_.position_m.reset();
  ASSERT_TRUE(session_.Start(config_, navigation_));
  EXPECT_EQ(session_.Feed(Span<ObsEpoch_QC_gbt>()).Code(), StatusCode::kNoData);
  epochs_[0].sat_num = 2;
  EXPECT_EQ(session_.Feed({epochs_.data(), 1}).Code(), StatusCode::kNoPosition);
  const Outcome<result_qct> none = session_.Result();
  EXPECT_EQ(none.status.Code(), StatusCode::kNoData);
  EXPECT_STREQ(none.status.Text(), "no batch has been taken");
}

TEST_F(Sessions, MoreEpochsThanTheIntervalAllowsAreImplausibleAndTheRecordIsThere) {
  config_.interval_s = 30.025;  // epochs may come a thousandth early
  ASSERT_TRUE(session_.Start(config_, navigation_));
  ASSERT_TRUE(session_.Feed(epochs_));
  const Outcome<result_qct> outcome = session_.Result();
  EXPECT_EQ(outcome.status.Code(), StatusCode::kImplausible);
  ASSERT_NE(outcome.record, nullptr);
  EXPECT_LT(outcome->lost_epochs, 0);
}

TEST_F(Sessions, ResultsOnTheWayChangeNothing) {
  Session other;
  ASSERT_TRUE(session_.Start(config_, navigation_));
  ASSERT_TRUE(other.Start(config_, navigation_));
  for (const ObsEpoch_QC_gbt& epoch : epochs_) {
    ASSERT_TRUE(session_.Feed({&epoch, 1}));
    ASSERT_TRUE(session_.Result());
    ASSERT_TRUE(other.Feed({&epoch, 1}));
  }
  EXPECT_TRUE(SameBytes(*session_.Result(), *other.Result()));
}

TEST_F(Sessions, OfDifferentThreadsShareNothing) {
  constexpr int kThreads = 4;
  std::unique_ptr<result_qct> results[kThreads];
  std::vector<std::thread> threads;
  for (std::unique_ptr<result_qct>& result : results) {
    threads.emplace_back([&] {
      Session session;
      if (session.Start(config_, navigation_) && session.Feed(epochs_)) result = session.Result().record;
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::unique_ptr<result_qct>& result : results) {
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(SameBytes(*result, *results[0]));
    EXPECT_EQ(result->sys[0].completeness, 1.0);
  }
}

TEST_F(Sessions, AMovedSessionGoesOnAndTheOldOneStartsAgain) {
  ASSERT_TRUE(session_.Start(config_, navigation_));
  ASSERT_TRUE(session_.Feed(epochs_));
  const Session moved = std::move(session_);
  EXPECT_TRUE(moved.Result());
  ASSERT_TRUE(session_.Start(config_, navigation_));  // NOLINT: what is left is a new session
  EXPECT_EQ(session_.Result().status.Code(), StatusCode::kNoData);
}

TEST(SessionVersion, IsThatOfTheHeaders) { EXPECT_EQ(LibraryVersion(), ORSOLVA_VERSION_STRING); }

TEST(SessionStatus, EveryCodeHasAText) {
  for (const int code : {1, 0, -1, -2, -3, -100, -101, -102, -103, -104, -105}) {
    EXPECT_STRNE(StatusText(static_cast<StatusCode>(code)), "unknown status") << code;
  }
  EXPECT_STREQ(StatusText(static_cast<StatusCode>(7)), "unknown status");
}

}  // namespace
}  // namespace orsolva
