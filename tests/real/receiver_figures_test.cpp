// Position, receiver clock and statements of header and name on real station files.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/analysis/station_analysis.h"
#include "host/formats/sp3_reader.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "host/rinex/station_statements.h"
#include "tests/host/shared_data.h"

namespace orsolva_host::analysis {
namespace {

using orsolva_test::DataFile;

/// @param navigation, precise  empty: without
AnalysisResult Analysed(const std::string& observations, const std::string& navigation,
                        const std::string& precise = {}) {
  Diagnostics notices;
  ObservationReader reader(DataFile(observations), notices);
  NavigationReader records(notices);
  if (!navigation.empty()) records.Read(DataFile(navigation));
  StationDescription stated = DescriptionOf(reader.Header(), observations);
  AnalysisOptions options;
  options.detector.position = reader.Header().position;
  options.detector.glonass_channels = reader.Header().glonass_channels;
  if (!precise.empty()) {
    const auto orbits = std::make_shared<PreciseOrbits>();
    ReadPreciseOrbits(DataFile(precise), notices, {}, *orbits);
    options.detector.precise_orbits = orbits;
  }
  StationAnalysis analysis(options, records.Broadcast());
  const auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  while (reader.Next(*record, epoch)) analysis.Add(epoch);
  analysis.Finish();
  stated.changes = reader.Changes();
  return analysis.Result(stated);
}

void ExpectAtRestNearItsHeader(const AnalysisResult& result, double metres) {
  ASSERT_TRUE(result.position.distance_to_header_m);
  EXPECT_EQ(result.position.moving, false);
  EXPECT_EQ(result.position.failed, 0U);
  EXPECT_LT(*result.position.distance_to_header_m, metres);
  EXPECT_LT(*result.position.residual_rms_m, 2);
}

TEST(ReceiverFigures, OfAStationDayWithAHeldClock) {
  const std::string file = "ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz";
  ORSOLVA_NEED_FILE(DataFile(file));
  const AnalysisResult result = Analysed(file, "ESBC00DNK_R_20201770000_01D_MN.rnx.gz");
  ExpectAtRestNearItsHeader(result, 2);
  EXPECT_EQ(result.position.solutions, 2880U);
  EXPECT_TRUE(result.contradictions.empty());
  EXPECT_EQ(result.receiver_clock.resets, 0U);
  EXPECT_EQ(result.receiver_clock.steered, true);
  EXPECT_NEAR(*result.receiver_clock.mean_offset_s, 481e-6, 1e-6);
  // The file holds no BDS, whose satellites keep their broadcast records.
  const AnalysisResult precise =
      Analysed(file, "ESBC00DNK_R_20201770000_01D_MN.rnx.gz", "GRG0MGXFIN_20201770000_01D_15M_ORB.SP3.gz");
  ExpectAtRestNearItsHeader(precise, 2);
  EXPECT_NE(precise.position.residual_rms_m, result.position.residual_rms_m);
  const AnalysisResult alone = Analysed(file, "", "GRG0MGXFIN_20201770000_01D_15M_ORB.SP3.gz");
  EXPECT_GT(*alone.position.solutions, 2800U);
  EXPECT_LT(*alone.position.distance_to_header_m, 2);
}

TEST(ReceiverFigures, OfAQuarterHourWithAFreeClock) {
  ORSOLVA_NEED_FILE(DataFile("SEPT078M.21O"));
  const AnalysisResult result = Analysed("SEPT078M.21O", "SEPT078M.21P");
  ExpectAtRestNearItsHeader(result, 3);
  EXPECT_TRUE(result.contradictions.empty());
  EXPECT_EQ(result.receiver_clock.steered, false);
  EXPECT_NEAR(*result.receiver_clock.drift_s_per_s, 8.8e-8, 0.2e-8);
}

TEST(ReceiverFigures, ATruncatedFileContradictsItsLastEpochAlone) {
  const std::string file = "KMS300DNK_R_20221591000_01H_30S_MO.crx";
  ORSOLVA_NEED_FILE(DataFile(file));
  const AnalysisResult result = Analysed(file, "KMS300DNK_R_20221591000_01H_MN.rnx.gz");
  ExpectAtRestNearItsHeader(result, 3);
  ASSERT_EQ(result.contradictions.size(), 1U);
  EXPECT_EQ(result.contradictions[0].id, "last_epoch");
  EXPECT_EQ(result.contradictions[0].found, "2022-06-08 10:09:00");
}

TEST(ReceiverFigures, WithoutNavigationThereIsNoPositionAndNoContradiction) {
  const std::string file = "GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz";
  ORSOLVA_NEED_FILE(DataFile(file));
  const AnalysisResult result = Analysed(file, "");
  EXPECT_FALSE(result.position.solutions);
  EXPECT_FALSE(result.receiver_clock.mean_offset_s);
  EXPECT_EQ(result.receiver_clock.resets, 0U);
  EXPECT_TRUE(result.contradictions.empty());
}

}  // namespace
}  // namespace orsolva_host::analysis
