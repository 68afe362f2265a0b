// Data against statements, each alone.
#include <gtest/gtest.h>

#include "host/analysis/figures/description_check.h"
#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::int64_t kDay_ns = 1593043200LL * kNanosecondsPerSecond;  // 2020-06-25
constexpr std::int64_t kSecond_ns = kNanosecondsPerSecond;

/// A whole day at 30 s.
AnalysisResult Day() {
  AnalysisResult result;
  result.span.interval_s = 30;
  result.span.first_ns = kDay_ns;
  result.span.last_ns = kDay_ns + 86370 * kSecond_ns;
  result.span.present_epochs = 2880;
  return result;
}

StationDescription Right() {
  StationDescription stated;
  stated.marker = "ESBC00DNK";
  stated.interval_s = 30;
  stated.first_ns = kDay_ns;
  stated.last_ns = kDay_ns + 86370 * kSecond_ns;
  stated.name = {"ESBC00DNK", kDay_ns, 86400, 30};
  return stated;
}

std::vector<Contradiction> Check(const StationDescription& stated, AnalysisResult result = Day()) {
  DescriptionCheck().FillIn(stated, result);
  return result.contradictions;
}

void ExpectOne(const std::vector<Contradiction>& found, const std::string& id, const std::string& stated,
               const std::string& data) {
  ASSERT_EQ(found.size(), 1U) << id;
  EXPECT_EQ(found[0].id, id);
  EXPECT_EQ(found[0].stated, stated);
  EXPECT_EQ(found[0].found, data);
}

TEST(DescriptionCheck, NothingIsSaidOfWhatAgreesOrIsNotStated) {
  EXPECT_TRUE(Check(Right()).empty());
  EXPECT_TRUE(Check({}).empty());
  StationDescription lower = Right();
  lower.marker = "esbc";
  EXPECT_TRUE(Check(lower).empty());
  lower.marker = "Unknown";
  EXPECT_TRUE(Check(lower).empty());
}

TEST(DescriptionCheck, Intervals) {
  StationDescription stated = Right();
  stated.interval_s = 15;
  ExpectOne(Check(stated), "interval", "15 s", "30 s");
  stated = Right();
  stated.name.interval_s = 1;
  ExpectOne(Check(stated), "file_name_interval", "1 s", "30 s");
}

TEST(DescriptionCheck, FirstAndLastEpochByMoreThanHalfAnInterval) {
  StationDescription stated = Right();
  stated.first_ns = kDay_ns - 15 * kSecond_ns;
  EXPECT_TRUE(Check(stated).empty());
  stated.first_ns = kDay_ns - 30 * kSecond_ns;
  ExpectOne(Check(stated), "first_epoch", "2020-06-24 23:59:30", "2020-06-25 00:00:00");
  stated = Right();
  stated.last_ns = kDay_ns + 3600 * kSecond_ns + 250'000'000;
  ExpectOne(Check(stated), "last_epoch", "2020-06-25 01:00:00.250", "2020-06-25 23:59:30");
}

TEST(DescriptionCheck, TimesOfTheFileName) {
  StationDescription stated = Right();
  stated.name.begin_ns = kDay_ns + 86400 * kSecond_ns;
  ExpectOne(Check(stated), "file_name_start", "2020-06-26 00:00:00", "2020-06-25 00:00:00");
  stated.name.begin_ns = kDay_ns - 2 * 86400 * kSecond_ns;
  ExpectOne(Check(stated), "file_name_start", "2020-06-23 00:00:00", "2020-06-25 00:00:00");
  stated = Right();
  stated.name.period_s = 3600;
  ExpectOne(Check(stated), "file_name_period", "until 2020-06-25 01:00:00", "until 2020-06-25 23:59:30");
  // A period that is not filled is none.
  stated.name.period_s = 7 * 86400;
  EXPECT_TRUE(Check(stated).empty());
}

TEST(DescriptionCheck, MarkersOfAnotherStation) {
  StationDescription stated = Right();
  stated.marker = "WTZR";
  ExpectOne(Check(stated), "marker", "WTZR", "ESBC00DNK in the file name");
}

TEST(DescriptionCheck, PositionsFarAwayOfAnAntennaAtRest) {
  AnalysisResult result = Day();
  result.position.mean_m = {3582105.0, 532589.0, 5232754.0};
  result.position.solutions = 2880;
  result.position.one_band_solutions = 0;
  result.position.distance_to_header_m = 49;
  StationDescription stated = Right();
  stated.position_m = {3580000.0, 532589.0, 5232754.0};
  EXPECT_TRUE(Check(stated, result).empty());
  result.position.distance_to_header_m = 2105;
  ExpectOne(Check(stated, result), "position", "3580000.0 532589.0 5232754.0 m",
            "3582105.0 532589.0 5232754.0 m, 2105 m away");
  result.position.distance_to_header_m = 90;
  EXPECT_EQ(Check(stated, result).size(), 1U);
  result.position.one_band_solutions = 2000;
  EXPECT_TRUE(Check(stated, result).empty());
}

TEST(DescriptionCheck, GlonassChannelsThatCodeAndPhaseContradict) {
  DescriptionCheck check;
  const double wavelength_m = kLightSpeed_m_s / (1602e6 - 3 * 0.5625e6);
  for (int i = 0; i < 100; ++i) {
    ObservationEpoch epoch;
    epoch.satellites = {{{'R', 5}, 0, 1}, {{'R', 6}, 0, 1}};
    SignalObservation o;
    o.code = {'1', 'C'};
    o.pseudorange_m = 2.1e7 + 15000.0 * i;
    o.phase_cycles = o.pseudorange_m / wavelength_m;
    epoch.signals = {o};
    check.AddEpoch(epoch);
  }
  StationDescription stated = Right();
  stated.glonass_channels[5] = 1;
  stated.glonass_channels[6] = -3;
  stated.glonass_channels[7] = 4;
  AnalysisResult result = Day();
  check.FillIn(stated, result);
  ExpectOne(result.contradictions, "glonass_channel", "R05: 1", "R05: -3");
}

TEST(DescriptionCheck, ChangesWithinTheFile) {
  StationDescription stated = Right();
  stated.changes = {{"antenna", "OLD", "NEW"}};
  ExpectOne(Check(stated), "antenna_change", "OLD", "NEW");
}

TEST(DescriptionCheck, TwoEpochsContradictNoTime) {
  AnalysisResult result = Day();
  result.span.present_epochs = 2;
  StationDescription stated = Right();
  stated.interval_s = 1;
  EXPECT_TRUE(Check(stated, result).empty());
}

}  // namespace
}  // namespace orsolva_host::analysis
