// Observation files of RINEX 2, written by hand.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/rinex/version2_codes.h"
#include "tests/host/observation_text.h"

namespace orsolva_host {
namespace {

using orsolva_test::HeaderLine;
using orsolva_test::ReadFile;

/// A list of types, nine per line.
std::string Types(const std::vector<std::string>& types) {
  std::string text;
  for (std::size_t first = 0; first < types.size(); first += 9) {
    char count[8] = "      ";
    if (first == 0) std::snprintf(count, sizeof count, "%6d", static_cast<int>(types.size()));
    std::string line = count;
    for (std::size_t i = first; i < std::min(first + 9, types.size()); ++i) line += "    " + types[i];
    text += HeaderLine(line, "# / TYPES OF OBSERV");
  }
  return text;
}

std::string Header(const std::vector<std::string>& types, const std::string& more = "", char system = 'M',
                   const std::string& version = "2.11") {
  return HeaderLine("     " + version + "           OBSERVATION DATA    " + system, "RINEX VERSION / TYPE") +
         Types(types) + more + HeaderLine("", "END OF HEADER");
}

/// An epoch line with its satellites, twelve per line.
std::string Epoch(const std::string& second, const std::vector<std::string>& names, int flag = 0,
                  const std::string& date = "21 12 21") {
  char head[48];
  std::snprintf(head, sizeof head, " %s  0  0 %s00000  %d%3d", date.c_str(), second.c_str(), flag,
                static_cast<int>(names.size()));
  std::string text = head;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0 && i % 12 == 0) text += "\n" + std::string(32, ' ');
    text += names[i];
  }
  return text + "\n";
}

/// The values of a satellite in 16 columns each, five per line.
std::string Values(const std::vector<std::string>& values) {
  std::string text;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0 && i % 5 == 0) text += "\n";
    text += std::string(14 - values[i].size(), ' ') + values[i] + "  ";
  }
  return text + "\n";
}

TEST(Version2, ValuesStandOnLinesOfFiveUnderTheSatellitesOfTheEpochLine) {
  const ReadFile file(Header({"C1", "L1", "D1", "S1", "P2", "L2", "S2"}) + Epoch("30.00", {"G05", "R07"}) +
                      Values({"1.000", "2.000", "3.000", "4.000", "5.000", "6.000", "7.000"}) +
                      Values({"11.000", "12.000", "13.000", "14.000", "15.000", "16.000", "17.000"}));
  ASSERT_EQ(file.epochs.size(), 1U);
  const ObsEpoch_QC_gbt& e = file.epochs[0];
  EXPECT_EQ(e.time.time, 1640044830);
  ASSERT_EQ(e.sat_num, 2U);
  EXPECT_EQ(e.sats[0].sys, 1);
  EXPECT_EQ(e.sats[0].prn, 5);
  ASSERT_EQ(e.sats[0].signal_num, 2U);
  EXPECT_EQ(e.sats[0].signals[0].code, 1);  // 1C
  EXPECT_EQ(e.sats[0].signals[0].pseudorange, 1);
  EXPECT_EQ(e.sats[0].signals[0].phase, 2);
  EXPECT_EQ(e.sats[0].signals[0].doppler, 3);
  EXPECT_EQ(e.sats[0].signals[0].snr, 4);
  EXPECT_EQ(e.sats[0].signals[1].code, 16);  // 2W
  EXPECT_EQ(e.sats[0].signals[1].pseudorange, 5);
  EXPECT_EQ(e.sats[0].signals[1].phase, 6);
  EXPECT_EQ(e.sats[0].signals[1].snr, 7);
  EXPECT_EQ(e.sats[1].sys, 2);
  EXPECT_EQ(e.sats[1].signals[1].code, 36);  // 2P
  EXPECT_EQ(e.sats[1].signals[1].phase, 16);
  EXPECT_EQ(file.notices.Total(), 0);
}

TEST(Version2, TypeListsAndSatelliteListsContinue) {
  const std::vector<std::string> types = {"L1", "L2", "C1", "P2", "S1", "S2", "L5", "C5", "S5", "D1"};
  std::vector<std::string> names;
  std::string values;
  for (int i = 1; i <= 14; ++i) {
    names.push_back("G" + std::to_string(100 + i).substr(1));
    values += Values({"1.000", "2.000", std::to_string(i) + ".000", "4.000", "5.000", "6.000", "7.000",
                      "8.000", "9.000", "10.000"});
  }
  const ReadFile file(Header(types) + Epoch("00.00", names) + values);
  ASSERT_EQ(file.header.TypesOf('G').size(), 10U);
  ASSERT_EQ(file.epochs.size(), 1U);
  ASSERT_EQ(file.epochs[0].sat_num, 14U);
  EXPECT_EQ(file.epochs[0].sats[13].prn, 14);
  EXPECT_EQ(file.epochs[0].sats[13].signals[0].pseudorange, 14);
  EXPECT_EQ(file.epochs[0].sats[13].signals[0].doppler, 10);
}

TEST(Version2, YearsAreOfTheNinetiesOrOfThisCentury) {
  const std::vector<std::string> types = {"C1", "S1"};
  const auto time_of = [&](const std::string& date) {
    return ReadFile(Header(types) + Epoch("00.00", {"G05"}, 0, date) + Values({"1.000", "2.000"}))
        .epochs.at(0)
        .time.time;
  };
  EXPECT_EQ(time_of("80  1  6"), 315964800);
  EXPECT_EQ(time_of("99 12 31"), 946598400);
  EXPECT_EQ(time_of(" 0  1  1"), 946684800);
  EXPECT_EQ(time_of("79  1  1"), 3439756800);
}

TEST(Version2, SatellitesWithoutALetterAreOfTheSystemOfTheFile) {
  for (const char system : {'G', 'R', ' '}) {
    const ReadFile file(Header({"C1", "S1"}, "", system) + Epoch("00.00", {" 5 ", "  7", " 12"}) +
                        Values({"1.000", "40.000"}) + Values({"2.000", "40.000"}) +
                        Values({"3.000", "40.000"}));
    ASSERT_EQ(file.epochs.at(0).sat_num, 3U) << system;
    EXPECT_EQ(file.epochs[0].sats[0].sys, system == 'R' ? 2 : 1);
    EXPECT_EQ(file.epochs[0].sats[0].prn, 5);
    EXPECT_EQ(file.epochs[0].sats[1].prn, 7);
    EXPECT_EQ(file.epochs[0].sats[2].prn, 12);
  }
}

TEST(Version2, PhasesBelongToTheCivilRangeOfTheFirstBandAndThePreciseOneOfTheSecond) {
  const ReadFile file(Header({"L1", "L2", "C1", "P1", "C2", "P2", "S1", "S2"}) + Epoch("00.00", {"G05"}) +
                      Values({"1.000", "2.000", "3.000", "4.000", "5.000", "6.000", "41.000", "42.000"}));
  const Satellite_gbt& s = file.epochs.at(0).sats[0];
  ASSERT_EQ(s.signal_num, 4U);
  EXPECT_EQ(s.signals[0].code, 1);  // 1C
  EXPECT_EQ(s.signals[0].pseudorange, 3);
  EXPECT_EQ(s.signals[0].phase, 1);
  EXPECT_EQ(s.signals[0].snr, 41);
  EXPECT_EQ(s.signals[1].code, 6);  // 1W has its pseudorange alone
  EXPECT_EQ(s.signals[1].pseudorange, 4);
  EXPECT_EQ(s.signals[1].phase, 0);
  EXPECT_EQ(s.signals[2].code, 16);  // 2W
  EXPECT_EQ(s.signals[2].pseudorange, 6);
  EXPECT_EQ(s.signals[2].phase, 2);
  EXPECT_EQ(s.signals[2].snr, 42);
  EXPECT_EQ(s.signals[3].code, 14);  // 2X
  EXPECT_EQ(s.signals[3].phase, 0);
}

TEST(Version2, PhasesGoToTheOtherRangeWhereTheirOwnIsNeverObserved) {
  const std::string header = Header({"L1", "L2", "C1", "P1", "C2", "P2", "S1", "S2"});
  const ReadFile file(header + Epoch("00.00", {"G05"}) +
                      Values({"1.000", "2.000", "", "4.000", "5.000", "", "41.000", "42.000"}));
  const Satellite_gbt& s = file.epochs.at(0).sats[0];
  ASSERT_EQ(s.signal_num, 2U);
  EXPECT_EQ(s.signals[0].code, 6);
  EXPECT_EQ(s.signals[0].phase, 1);
  EXPECT_EQ(s.signals[1].code, 14);
  EXPECT_EQ(s.signals[1].phase, 2);
  EXPECT_EQ(s.signals[1].snr, 42);
}

TEST(Version2, LetteredCodesOfALaterVersionHaveTheirOwnSignals) {
  EXPECT_EQ(SignalsOfVersion2('G', "CA", false).first, "1C");
  EXPECT_EQ(SignalsOfVersion2('G', "LC", false).first, "2X");
  EXPECT_EQ(SignalsOfVersion2('G', "L1", true).first, "1W");
  EXPECT_EQ(SignalsOfVersion2('G', "L1", false).first, "1C");
  EXPECT_EQ(SignalsOfVersion2('G', "L2", false).first, "2W");
  EXPECT_EQ(SignalsOfVersion2('E', "S8", false).first, "8X");
  EXPECT_TRUE(SignalsOfVersion2('E', "P1", false).first.empty());
  EXPECT_TRUE(SignalsOfVersion2('G', "T1", false).first.empty());
  EXPECT_TRUE(SignalsOfVersion2('G', "C", false).first.empty());
}

TEST(Version2, ScaleFactorsDivideTheTypesTheyNameOrAll) {
  const std::string some = HeaderLine("   100     1    L1", "OBS SCALE FACTOR");
  const ReadFile named(Header({"C1", "L1", "S1"}, some) + Epoch("00.00", {"G05"}) +
                       Values({"500.000", "600.000", "40.000"}));
  EXPECT_EQ(named.epochs.at(0).sats[0].signals[0].pseudorange, 500);
  EXPECT_EQ(named.epochs[0].sats[0].signals[0].phase, 6);
  const ReadFile all(Header({"C1", "L1", "S1"}, HeaderLine("    10     0", "OBS SCALE FACTOR")) +
                     Epoch("00.00", {"G05"}) + Values({"500.000", "600.000", "400.000"}));
  EXPECT_EQ(all.epochs.at(0).sats[0].signals[0].pseudorange, 50);
  EXPECT_EQ(all.epochs[0].sats[0].signals[0].snr, 40);
}

TEST(Version2, TypesChangedByAnEventHoldFromThereOn) {
  const std::string event = " 21 12 21  0  0 10.0000000  4  1\n" + Types({"L1", "C1"});
  const ReadFile file(Header({"C1", "L1"}) + Epoch("00.00", {"G05"}) + Values({"1.000", "2.000"}) + event +
                      Epoch("30.00", {"G05"}) + Values({"1.000", "2.000"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[0].sats[0].signals[0].phase, 2);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].phase, 1);
  EXPECT_TRUE(file.Said("change within the file"));
}

TEST(Version2, CycleSlipRecordsAreNoObservations) {
  const ReadFile file(Header({"C1", "L1"}) + Epoch("00.00", {"G05"}) + Values({"1.000", "2.000"}) +
                      Epoch("10.00", {"G05", "G06"}, 6) + Values({"", "5.000"}) + Values({"", "6.000"}) +
                      Epoch("30.00", {"G05"}) + Values({"3.000", "4.000"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].phase, 4);
  EXPECT_TRUE(file.Said("flag 6"));
}

TEST(Version2, AnEpochWithFewerLinesThanItSaysKeepsWhatItHas) {
  const ReadFile file(Header({"C1", "S1"}) + Epoch("00.00", {"G05", "G06"}) + Values({"1.000", "40.000"}) +
                      Epoch("30.00", {"G07"}) + Values({"2.000", "40.000"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[0].sat_num, 1U);
  EXPECT_EQ(file.epochs[1].sats[0].prn, 7);
  EXPECT_EQ(file.LineOf("fewer lines than declared"), 6);
}

TEST(Version2, HalfCyclePhasesAreNamed) {
  const ReadFile file(Header({"C1", "L1", "S1"}, HeaderLine("     1     2", "WAVELENGTH FACT L1/2")));
  EXPECT_TRUE(file.Said("half-cycle"));
}

std::string PhaseWithDigit(char digit) {
  std::string line = Values({"1.000", "2.000"});
  line[31] = digit;
  return line;
}

TEST(Version2, SignalStrengthIsTakenFromTheDigitOnlyWhenAskedAndNothingBetterIsThere) {
  const std::string text = Header({"C1", "L1"}) + Epoch("00.00", {"G05"}) + PhaseWithDigit('7');
  EXPECT_EQ(ReadFile(text).epochs.at(0).sats[0].signals[0].snr, 0);
  ObservationOptions options;
  options.snr_from_strength = true;
  const ReadFile asked(text, options);
  EXPECT_EQ(asked.epochs.at(0).sats[0].signals[0].snr, 42);
  EXPECT_TRUE(asked.strength);
  EXPECT_TRUE(asked.Said("digits of the phases"));
  const ReadFile blank(Header({"C1", "L1"}) + Epoch("00.00", {"G05"}) + PhaseWithDigit('0'), options);
  EXPECT_EQ(blank.epochs.at(0).sats[0].signals[0].snr, 0);
  std::string with_type = Values({"1.000", "2.000", "45.000"});
  with_type[31] = '3';
  const ReadFile better(Header({"C1", "L1", "S1"}) + Epoch("00.00", {"G05"}) + with_type, options);
  EXPECT_EQ(better.epochs.at(0).sats[0].signals[0].snr, 45);
}

// CRINEX 1, by hand.
TEST(Version2, CrinexBeginsFullEpochLinesWithAnAmpersand) {
  const std::string body = "&21 12 21  0  0  0.0000000  0  2G05R07\n\n3&1000 3&2000  7\n3&3000 3&4000\n" +
                           std::string("                3\n\n10 20\n30 40\n");
  const ReadFile file(HeaderLine("1.0                 COMPACT RINEX FORMAT", "CRINEX VERS   / TYPE") +
                      HeaderLine("by hand", "CRINEX PROG / DATE") + Header({"C1", "L1"}) + body);
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[1].time.time - file.epochs[0].time.time, 30);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].pseudorange, 1.010);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].phase, 2.020);
  EXPECT_EQ(file.epochs[1].sats[1].signals[0].phase, 4.040);
}

}  // namespace
}  // namespace orsolva_host
