// What to look at first: when each finding is said, and what happened to the satellites.
#include "host/report/findings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/report/detail_collector.h"
#include "host/report/finding_limits.h"
#include "host/report/headline.h"
#include "host/report/run_events.h"
#include "host/rinex/satellite_names.h"
#include "tests/host/sample_report.h"

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

std::vector<std::string> IdsOf(const std::vector<Finding>& findings) {
  std::vector<std::string> ids;
  for (const Finding& finding : findings) ids.push_back(finding.id);
  return ids;
}

const Finding* Find(const std::vector<Finding>& findings, const std::string& id) {
  const auto found =
      std::find_if(findings.begin(), findings.end(), [&id](const Finding& f) { return f.id == id; });
  return found == findings.end() ? nullptr : &*found;
}

TEST(Findings, OfACleanRunSayThatNothingIsWrong) {
  Report report = orsolva_test::SampleReport();
  report.signals[0].observed = report.signals[0].expected;
  report.signals[0].completeness = 1;
  const RunEvents none;
  report.headline = HeadlineOf(report, &none);
  EXPECT_EQ(IdsOf(FindingsOf(report, &none)),
            (std::vector<std::string>{"worst-multipath", "no-slips", "nothing-missing"}));
}

TEST(Findings, ComeInTheOrderOfHarm) {
  Report report = orsolva_test::SampleReport();
  report.read_error = "f.rnx:9: found \"x\".";
  report.run.lost_epochs = 1;
  report.run.distance_from_header_m = 2109;
  NavigationCoverage unknown;
  unknown.satellite = "C05";
  report.run.navigation_coverage.push_back(unknown);
  report.states["C05"] = "no_record";
  RunEvents events;
  events.satellites = {{"G04", {{3, 5}}, 2, 1}, {"G05", {}, 1, 0}};
  events.receiver_epochs = {7};
  report.headline = HeadlineOf(report, &events);
  const std::vector<Finding> found = FindingsOf(report, &events);
  EXPECT_EQ(IdsOf(found), (std::vector<std::string>{"damaged", "not-judged", "position-far", "lost-epochs",
                                                    "receiver-slips", "gaps-in-view", "satellite-slips",
                                                    "code-jumps", "worst-multipath", "least-complete"}));
  EXPECT_EQ(Find(found, "not-judged")->title, "1 of 2 satellites not judged");
  EXPECT_EQ(Find(found, "not-judged")->text, "No broadcast record: C05.");
  EXPECT_EQ(Find(found, "lost-epochs")->title, "1 epoch lost");
  EXPECT_EQ(Find(found, "satellite-slips")->title, "Most slips: G04");
  EXPECT_EQ(Find(found, "satellite-slips")->text, "2 slips of the geometry-free phase. Then G05 (1).");
  EXPECT_EQ(Find(found, "satellite-slips")->satellites, (std::vector<std::string>{"G04", "G05"}));
  EXPECT_EQ(Find(found, "satellite-slips")->figures[0].value, 3.0);
  EXPECT_EQ(Find(found, "code-jumps")->title, "1 code jump");
  EXPECT_EQ(Find(found, "worst-multipath")->signal, "G 1C");
}

TEST(Findings, AFileWithoutSignalStrengthsHasNoCompleteness) {
  Report report = orsolva_test::SampleReport();
  report.headline.completeness.reset();
  const std::vector<Finding> found = FindingsOf(report, nullptr);
  ASSERT_NE(Find(found, "no-completeness"), nullptr);
  EXPECT_NE(Find(found, "no-completeness")->text.find("no signal strengths"), std::string::npos);
  report.signals[0].snr_dbhz = 40;
  const std::vector<Finding> other = FindingsOf(report, nullptr);
  EXPECT_EQ(Find(other, "no-completeness")->text, "No system counts complete observations.");
}

TEST(Findings, ARunThatJudgedNothingSaysSoAndNotThatNothingIsWrong) {
  Report report = orsolva_test::SampleReport();
  report.signals.clear();
  report.systems.clear();
  report.library_total = {};
  report.states["G04"] = "below_cutoff";
  const RunEvents none;
  report.headline = HeadlineOf(report, &none);
  const std::vector<Finding> found = FindingsOf(report, &none);
  EXPECT_EQ(IdsOf(found), (std::vector<std::string>{"nothing-judged"}));
  EXPECT_EQ(found[0].text, "None of the satellites observed was judged: 1 below the cut-off.");
  report.run.navigation_coverage.clear();
  report.headline = HeadlineOf(report, &none);
  EXPECT_EQ(FindingsOf(report, &none)[0].text, "No satellite of the systems chosen was observed.");
}

TEST(Findings, TheMedianOfAnEvenCountIsTheMeanOfTheMiddlePair) {
  Report report = orsolva_test::SampleReport();
  report.signals.push_back(report.signals[0]);
  report.signals[1].mp_m = 0.35;
  const std::vector<Finding> found = FindingsOf(report, nullptr);
  EXPECT_EQ(Find(found, "worst-multipath")->text, "RMS 0.350 m on L1; the median of all signals is 0.300 m.");
}

TEST(Findings, LostEpochsNameTheBeginningsOfTheGapsWhereTheyAreKnown) {
  Report report = orsolva_test::SampleReport();
  report.run.lost_epochs = 3;
  EXPECT_EQ(Find(FindingsOf(report, nullptr), "lost-epochs")->text, "");
  RunEvents events;
  events.interval_s = 30;
  events.holes = {{5, 6}, {10, 12}};
  const std::vector<Finding> found = FindingsOf(report, &events);
  EXPECT_EQ(Find(found, "lost-epochs")->text,
            "Gaps begin at " + events.Clock(5) + ", " + events.Clock(10) + ".");
}

TEST(Findings, APositionNearTheHeadersIsNone) {
  Report report = orsolva_test::SampleReport();
  report.run.distance_from_header_m = kFindingLimits.far_from_header_m;
  EXPECT_EQ(Find(FindingsOf(report, nullptr), "position-far"), nullptr);
}

TEST(Findings, ALongListOfNamesIsCut) {
  Report report = orsolva_test::SampleReport();
  report.run.navigation_coverage.clear();
  for (int prn = 11; prn <= 23; ++prn) {
    NavigationCoverage row;
    row.satellite = "C" + std::to_string(prn);
    report.states[row.satellite] = "unhealthy";
    report.run.navigation_coverage.push_back(row);
  }
  report.headline = HeadlineOf(report, nullptr);
  const std::vector<Finding> found = FindingsOf(report, nullptr);
  ASSERT_NE(Find(found, "not-judged"), nullptr);
  EXPECT_NE(Find(found, "not-judged")->text.find("C20 and 3 more."), std::string::npos);
}

}  // namespace
}  // namespace orsolva_host
