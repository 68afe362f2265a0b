// Injected slips and jumps beside a detail table: only rows of their epoch, satellite and signal speak.
#include "host/simulator/told_faults.h"

#include <gtest/gtest.h>

#include "host/rinex/byte_source.h"
#include "host/simulator/comparison.h"

namespace {

using namespace orsolva_host;
using Reasons = std::set<std::string>;

constexpr const char* kHead = "time_gpst,satellite,signal,partner,restart,geometry_free_slip,phase_slip\n";
constexpr const char* kNoon = "2020-06-25 12:00:00.000";

ToldFault Fault(const char* satellite, const char* signal, bool slip, const char* time = kNoon) {
  return {time, satellite, signal, slip, 4};
}

std::vector<ToldFault> Told(const std::string& rows, std::vector<ToldFault> faults) {
  LineReader lines(TextBytes(kHead + rows));
  ReadReasons({"d.csv", lines}, faults);
  return faults;
}

Reasons ReasonsOf(const std::string& rows, const ToldFault& fault) { return Told(rows, {fault})[0].reasons; }

TEST(ToldFaults, ASlipIsToldByThePairsOnBothSidesAndThePhaseOfItsOwn) {
  const std::string rows =
      "2020-06-25 12:00:00.000,G01,1C,2W,slip,ionospheric_rate,geometry\n"
      "2020-06-25 12:00:00.000,G01,2W,1C,slip,long_gap,new_ephemeris\n"
      "2020-06-25 12:00:00.000,G01,5Q,2W,slip,ionospheric_rate,data_gap\n";
  EXPECT_EQ(ReasonsOf(rows, Fault("G01", "1C", true)), (Reasons{"geometry", "ionospheric_rate", "long_gap"}));
}

TEST(ToldFaults, OtherEpochsAndSatellitesSayNothing) {
  const std::string rows =
      "2020-06-25 12:00:30.000,G01,1C,2W,slip,ionospheric_rate,geometry\n"
      "2020-06-25 12:00:00.000,G02,1C,2W,slip,ionospheric_rate,geometry\n";
  EXPECT_EQ(ReasonsOf(rows, Fault("G01", "1C", true)), Reasons{});
}

TEST(ToldFaults, ACodeJumpIsToldByARestartOfItsOwnSignalForAJump) {
  const std::string rows =
      "2020-06-25 12:00:00.000,G01,1C,2W,jump,,geometry\n"
      "2020-06-25 12:00:00.000,G01,2W,1C,gap,,\n";
  EXPECT_EQ(ReasonsOf(rows, Fault("G01", "1C", false)), Reasons{"jump"});
  EXPECT_EQ(ReasonsOf(rows, Fault("G01", "2W", false)), Reasons{});
}

TEST(ToldFaults, SeveralFaultsOfOneEpochAreEachTold) {
  const auto faults =
      Told("2020-06-25 12:00:00.000,G01,1C,2W,,,geometry\n2020-06-25 12:00:00.000,G02,1C,2W,jump,,\n",
           {Fault("G01", "1C", true), Fault("G02", "1C", false)});
  EXPECT_EQ(faults[0].reasons, Reasons{"geometry"});
  EXPECT_EQ(faults[1].reasons, Reasons{"jump"});
}

TEST(ToldFaults, AFaultOfAllSatellitesAndSignalsIsToldByAnyRow) {
  EXPECT_EQ(ReasonsOf("2020-06-25 12:00:00.000,G09,5Q,2W,jump,,\n", Fault("", "", false)), Reasons{"jump"});
}

TEST(ToldFaults, AGapOrANewRecordInTheEpochIsNoFaultTold) {
  ToldFault fault = Fault("G01", "1C", true);
  fault.reasons = {"new_ephemeris", "data_gap", "long_gap"};
  EXPECT_FALSE(fault.Told());
  fault.reasons.insert("geometry");
  EXPECT_TRUE(fault.Told());
}

TEST(ToldFaults, ShortRowsAreLeftOut) {
  EXPECT_EQ(ReasonsOf("2020-06-25 12:00:00.000,G01,1C\n", Fault("G01", "1C", true)), Reasons{});
}

TEST(ToldFaults, ATableWithoutAColumnIsRefusedByName) {
  LineReader lines(TextBytes("time_gpst,satellite,signal,partner,restart,phase_slip\n"));
  std::vector<ToldFault> faults;
  try {
    ReadReasons({"d.csv", lines}, faults);
    FAIL() << "not refused";
  } catch (const ComparisonError& error) {
    EXPECT_EQ(std::string(error.what()).find("d.csv: found no column geometry_free_slip"), 0U)
        << error.what();
  }
}

TEST(ToldFaults, TextCountsSlipsAndJumpsApart) {
  std::vector<ToldFault> faults = {Fault("G01", "1C", true), Fault("G02", "1C", true),
                                   Fault("G03", "5Q", false)};
  faults[0].reasons = {"geometry", "ionospheric_rate"};
  faults[2].reasons = {"jump"};
  const std::string text = ToldFaultsText(faults);
  EXPECT_NE(text.find("2020-06-25 12:00:00  G01 1C  slip            4  geometry, ionospheric_rate\n"),
            std::string::npos);
  EXPECT_NE(text.find("G02 1C  slip            4  not told\n"), std::string::npos);
  EXPECT_NE(text.find("Told: 1 of 2 slips, 1 of 1 code jumps\n"), std::string::npos);
}

}  // namespace
