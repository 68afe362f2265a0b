// Injected slips and jumps against a detail table: only rows of their epoch, satellite and signal count.
#include "host/simulator/fault_detection.h"

#include <gtest/gtest.h>

#include "host/rinex/byte_source.h"
#include "host/simulator/comparison.h"

namespace {

using namespace orsolva_host;
using Reasons = std::set<std::string>;

constexpr const char* kHead = "time_gpst,satellite,signal,partner,restart,geometry_free_slip,phase_slip\n";
constexpr const char* kNoon = "2020-06-25 12:00:00.000";

DetectedFault Fault(const char* satellite, const char* signal, bool slip, const char* time = kNoon) {
  return {time, satellite, signal, slip, 4};
}

std::vector<DetectedFault> WithReasons(const std::string& rows, std::vector<DetectedFault> faults) {
  LineReader lines(TextBytes(kHead + rows));
  ReadReasons({"d.csv", lines}, faults);
  return faults;
}

Reasons ReasonsOf(const std::string& rows, const DetectedFault& fault) {
  return WithReasons(rows, {fault})[0].reasons;
}

TEST(FaultDetection, ASlipIsDetectedByThePairsOnBothSidesAndThePhaseOfItsOwn) {
  const std::string rows =
      "2020-06-25 12:00:00.000,G01,1C,2W,slip,ionospheric_rate,geometry\n"
      "2020-06-25 12:00:00.000,G01,2W,1C,slip,long_gap,new_ephemeris\n"
      "2020-06-25 12:00:00.000,G01,5Q,2W,slip,ionospheric_rate,data_gap\n";
  EXPECT_EQ(ReasonsOf(rows, Fault("G01", "1C", true)), (Reasons{"geometry", "ionospheric_rate", "long_gap"}));
}

TEST(FaultDetection, OtherEpochsAndSatellitesSayNothing) {
  const std::string rows =
      "2020-06-25 12:00:30.000,G01,1C,2W,slip,ionospheric_rate,geometry\n"
      "2020-06-25 12:00:00.000,G02,1C,2W,slip,ionospheric_rate,geometry\n";
  EXPECT_EQ(ReasonsOf(rows, Fault("G01", "1C", true)), Reasons{});
}

TEST(FaultDetection, ACodeJumpIsDetectedByARestartOfItsOwnSignalForAJump) {
  const std::string rows =
      "2020-06-25 12:00:00.000,G01,1C,2W,jump,,geometry\n"
      "2020-06-25 12:00:00.000,G01,2W,1C,gap,,\n";
  EXPECT_EQ(ReasonsOf(rows, Fault("G01", "1C", false)), Reasons{"jump"});
  EXPECT_EQ(ReasonsOf(rows, Fault("G01", "2W", false)), Reasons{});
}

TEST(FaultDetection, SeveralFaultsOfOneEpochAreEachDetected) {
  const auto faults =
      WithReasons("2020-06-25 12:00:00.000,G01,1C,2W,,,geometry\n2020-06-25 12:00:00.000,G02,1C,2W,jump,,\n",
                  {Fault("G01", "1C", true), Fault("G02", "1C", false)});
  EXPECT_EQ(faults[0].reasons, Reasons{"geometry"});
  EXPECT_EQ(faults[1].reasons, Reasons{"jump"});
}

TEST(FaultDetection, AFaultOfAllSatellitesAndSignalsIsDetectedByAnyRow) {
  EXPECT_EQ(ReasonsOf("2020-06-25 12:00:00.000,G09,5Q,2W,jump,,\n", Fault("", "", false)), Reasons{"jump"});
}

TEST(FaultDetection, AGapOrANewRecordInTheEpochIsNoDetection) {
  DetectedFault fault = Fault("G01", "1C", true);
  fault.reasons = {"new_ephemeris", "data_gap", "long_gap"};
  EXPECT_FALSE(fault.Detected());
  fault.reasons.insert("geometry");
  EXPECT_TRUE(fault.Detected());
}

TEST(FaultDetection, ShortRowsAreLeftOut) {
  EXPECT_EQ(ReasonsOf("2020-06-25 12:00:00.000,G01,1C\n", Fault("G01", "1C", true)), Reasons{});
}

TEST(FaultDetection, ATableWithoutAColumnIsRefusedByName) {
  LineReader lines(TextBytes("time_gpst,satellite,signal,partner,restart,phase_slip\n"));
  std::vector<DetectedFault> faults;
  try {
    ReadReasons({"d.csv", lines}, faults);
    FAIL() << "not refused";
  } catch (const ComparisonError& error) {
    EXPECT_EQ(std::string(error.what()).find("d.csv: found no column geometry_free_slip"), 0U)
        << error.what();
  }
}

TEST(FaultDetection, TextCountsSlipsAndJumpsApart) {
  std::vector<DetectedFault> faults = {Fault("G01", "1C", true), Fault("G02", "1C", true),
                                       Fault("G03", "5Q", false)};
  faults[0].reasons = {"geometry", "ionospheric_rate"};
  faults[2].reasons = {"jump"};
  const std::string text = DetectedFaultsText(faults);
  EXPECT_NE(text.find("2020-06-25 12:00:00  G01 1C  slip            4  geometry, ionospheric_rate\n"),
            std::string::npos);
  EXPECT_NE(text.find("G02 1C  slip            4  not detected\n"), std::string::npos);
  EXPECT_NE(text.find("Detected: 1 of 2 slips, 1 of 1 code jumps\n"), std::string::npos);
}

}  // namespace
