// What happened to the satellites: slips and jumps, gaps, and what struck the whole receiver.
#include "host/report/run_events.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include "host/report/detail_collector.h"
#include "host/report/finding_limits.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kStart = 1593043200;
constexpr std::uint32_t kCode = 1;
constexpr std::uint32_t kPartner = 16;

/// Satellites of GPS at every 30 s, with slips and code jumps where a test puts them.
class Happened : public testing::Test {
 protected:
  Happened() { detail_.Begin({kStart, 0}, 30); }

  void Satellite(int epoch, int prn, bool above_cutoff = true) {
    orsolva::SatelliteEpochDetail d;
    d.number = prn;
    d.satellite = {kGps, prn};
    d.time = {kStart + 30 * epoch, 0};
    d.elevation_rad = 0.5;
    d.above_cutoff = above_cutoff;
    detail_.OnSatelliteEpoch(d);
  }
  void Satellites(int first_epoch, int end_epoch, int prns) {
    for (int epoch = first_epoch; epoch < end_epoch; ++epoch) {
      for (int prn = 1; prn <= prns; ++prn) Satellite(epoch, prn);
    }
  }
  orsolva::PairEpochDetail Pair(int epoch, int prn) {
    orsolva::PairEpochDetail d;
    d.number = prn;
    d.satellite = {kGps, prn};
    d.time = {kStart + 30 * epoch, 0};
    d.code = kCode;
    d.partner = kPartner;
    d.counting = true;
    return d;
  }
  void Slip(int epoch, int prn) {
    orsolva::PairEpochDetail d = Pair(epoch, prn);
    d.ionosphere_slip = orsolva::IonosphereSlipReason::kRate;
    detail_.OnPairEpoch(d);
  }
  void Jump(int epoch, int prn) {
    orsolva::PairEpochDetail d = Pair(epoch, prn);
    d.restart = orsolva::RestartReason::kJump;
    detail_.OnPairEpoch(d);
  }
  RunEvents Events() {
    detail_.EndBatch();
    detail_.Finish(*codes_);
    return EventsOf(detail_);
  }

  DetailCollector detail_{DetailCollector::Keep::kFindings};
  std::unique_ptr<total_code_qc_result> codes_ = std::make_unique<total_code_qc_result>();
};

TEST_F(Happened, SlipsAndJumpsAreCountedForTheirSatellites) {
  Satellites(0, 10, 6);
  Slip(3, 2);
  Slip(5, 2);
  Jump(6, 4);
  const RunEvents events = Events();
  ASSERT_EQ(events.satellites.size(), 6U);
  EXPECT_EQ(events.satellites[1].name, "G02");
  EXPECT_EQ(events.satellites[1].geometry_free_slips, 2U);
  EXPECT_EQ(events.satellites[3].code_jumps, 1U);
  EXPECT_TRUE(events.receiver_epochs.empty());
}

TEST_F(Happened, SlipsOfManySatellitesAtOnceAreThoseOfTheReceiver) {
  Satellites(0, 10, 12);
  for (int prn = 1; prn <= 4; ++prn) Slip(3, prn);
  for (int prn = 1; prn <= 3; ++prn) Slip(5, prn);
  const RunEvents events = Events();
  ASSERT_EQ(events.receiver_epochs.size(), 1U);  // 4 of 12 are more than 30 %, 3 are fewer than 4
  EXPECT_EQ(events.receiver_epochs[0], 3U);
  EXPECT_EQ(events.Clock(3), "00:01:30");
  for (int prn = 1; prn <= 3; ++prn) {
    EXPECT_EQ(events.satellites[static_cast<std::size_t>(prn - 1)].geometry_free_slips, 1U);
  }
  EXPECT_EQ(events.satellites[3].geometry_free_slips, 0U);
}

TEST_F(Happened, FourOfFourteenSatellitesAreNotTheReceiver) {
  Satellites(0, 10, 14);
  for (int prn = 1; prn <= 4; ++prn) Slip(3, prn);
  EXPECT_TRUE(Events().receiver_epochs.empty());
}

TEST_F(Happened, ABreakOfAllSatellitesIsAHoleAndNoGap) {
  Satellites(0, 3, 3);
  Satellites(6, 9, 3);
  const RunEvents events = Events();
  ASSERT_EQ(events.holes.size(), 1U);
  EXPECT_EQ(events.holes[0].first, 3U);
  EXPECT_EQ(events.holes[0].end, 6U);
  for (const SatelliteEvents& satellite : events.satellites) EXPECT_TRUE(satellite.gaps.empty());
}

TEST_F(Happened, ABreakOfOneSatelliteAboveTheCutoffIsAGap) {
  Satellites(0, 10, 1);
  for (const int epoch : {0, 1, 5, 6}) Satellite(epoch, 2);
  for (const int epoch : {0, 1, 5, 6}) Satellite(epoch, 3, epoch != 5);
  const RunEvents events = Events();
  ASSERT_EQ(events.satellites[1].gaps.size(), 1U);
  EXPECT_EQ(events.satellites[1].gaps[0].first, 2U);
  EXPECT_EQ(events.satellites[1].gaps[0].end, 5U);
  EXPECT_TRUE(events.satellites[2].gaps.empty()) << "below the cut-off when it came back";
}

TEST_F(Happened, ASatelliteThatSetsAndRisesHasNoGap) {
  const int longest = static_cast<int>(kFindingLimits.longest_gap_s / 30);
  Satellites(0, 2 * longest + 10, 1);
  Satellite(0, 2);
  Satellite(longest, 2);
  Satellite(2 * longest + 1, 2);
  const RunEvents events = Events();
  ASSERT_EQ(events.satellites[1].gaps.size(), 1U);
  EXPECT_EQ(events.satellites[1].gaps[0].first, 1U);
}

}  // namespace
}  // namespace orsolva_host
