#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "host/rinex/observation_reader.h"
#include "tests/host/observation_text.h"
#include "tests/host/shared_data.h"

namespace orsolva_host {
namespace {

using orsolva_test::DataFile;
using orsolva_test::Epoch;
using orsolva_test::Header;
using orsolva_test::HeaderLine;
using orsolva_test::ReadFile;
using orsolva_test::Satellite;

const char kOneSignal[] = "G    4 C1C L1C D1C S1C";

TEST(ObservationReader, TypesOfOneBandAndLetterFormOneSignal) {
  const ReadFile file(Header(kOneSignal) + Epoch("30.0", 1) +
                      Satellite("G05", {"23818653.240", "125167854.812", "-1234.5", "43.250"}));
  ASSERT_EQ(file.epochs.size(), 1U);
  const ObsEpoch_QC_gbt& e = file.epochs[0];
  EXPECT_EQ(e.time.time, 1640044830);
  EXPECT_EQ(e.time.sec, 0.0);
  ASSERT_EQ(e.sat_num, 1U);
  EXPECT_EQ(e.sats[0].sys, 1);
  EXPECT_EQ(e.sats[0].prn, 5);
  ASSERT_EQ(e.sats[0].signal_num, 1U);
  const Signal_QC_gbt& s = e.sats[0].signals[0];
  EXPECT_EQ(s.code, 1);
  EXPECT_EQ(s.pseudorange, 23818653.240);
  EXPECT_EQ(s.phase, 125167854.812);
  EXPECT_EQ(s.doppler, -1234.5F);
  EXPECT_EQ(s.snr, 43.25F);
  EXPECT_TRUE(file.notices.Notices().empty());
}

TEST(ObservationReader, SignalsStandInTheOrderOfTheirFirstType) {
  const ReadFile file(Header("G    6 S5Q C1C C5Q L5Q L1C S1C") + Epoch("00.0", 1) +
                      Satellite("G05", {"40.0", "1.0", "2.0", "3.0", "4.0", "50.0"}));
  const Satellite_gbt& s = file.epochs.at(0).sats[0];
  ASSERT_EQ(s.signal_num, 2U);
  EXPECT_EQ(s.signals[0].code, 21);
  EXPECT_EQ(s.signals[0].pseudorange, 2.0);
  EXPECT_EQ(s.signals[0].snr, 40.0F);
  EXPECT_EQ(s.signals[1].code, 1);
  EXPECT_EQ(s.signals[1].phase, 4.0);
}

TEST(ObservationReader, MissingValuesAreZeroAndSignalsWithoutAnyAreLeftOut) {
  const ReadFile file(Header("G    4 C1C L1C C2W S2W") + Epoch("00.0", 2) + Satellite("G05", {"", "12.500"}) +
                      Satellite("G06", {"0.000", "", "0.000"}));
  const ObsEpoch_QC_gbt& e = file.epochs.at(0);
  ASSERT_EQ(e.sat_num, 1U);
  ASSERT_EQ(e.sats[0].signal_num, 1U);
  EXPECT_EQ(e.sats[0].signals[0].pseudorange, 0.0);
  EXPECT_EQ(e.sats[0].signals[0].phase, 12.5);
}

TEST(ObservationReader, TypeListsContinueOnFurtherLines) {
  const std::string types =
      HeaderLine("E   15 C1C L1C S1C C5Q L5Q S5Q C6C L6C S6C C7Q L7Q S7Q C8Q", "SYS / # / OBS TYPES") +
      HeaderLine("       L8Q S8Q", "SYS / # / OBS TYPES");
  const ReadFile file(Header(kOneSignal, "3.04", types));
  ASSERT_EQ(file.header.TypesOf('E').size(), 15U);
  EXPECT_EQ(file.header.TypesOf('E')[14], "S8Q");
  EXPECT_EQ(file.header.TypesOf('G').size(), 4U);
}

int CodeOf(const std::string& system, const std::string& type, const std::string& version) {
  const ReadFile file(Header(system + "    1 " + type, version) + Epoch("00.0", 1) +
                      Satellite(system + "06", {"1.0"}));
  return file.epochs.at(0).sat_num == 0 ? 0 : file.epochs[0].sats[0].signals[0].code;
}

TEST(ObservationReader, BdsBandOneOf302IsTheSignalCalledBandTwoElsewhere) {
  EXPECT_EQ(CodeOf("C", "C1I", "3.02"), 150);
  EXPECT_EQ(CodeOf("C", "C1Q", "3.02"), 151);
  EXPECT_EQ(CodeOf("C", "C1X", "3.02"), 152);
  for (const char* version : {"3.00", "3.01", "3.03", "3.04", "4.00"}) {
    EXPECT_EQ(CodeOf("C", "C2I", version), 150) << version;
    EXPECT_EQ(CodeOf("C", "C2X", version), 152) << version;
  }
  EXPECT_EQ(CodeOf("C", "C1X", "3.04"), 155);
  EXPECT_EQ(CodeOf("C", "C1P", "3.04"), 154);
  EXPECT_EQ(CodeOf("C", "C1D", "4.00"), 153);
}

TEST(ObservationReader, SystemsHaveTheirOwnNumbers) {
  EXPECT_EQ(CodeOf("G", "C2W", "3.04"), 16);
  EXPECT_EQ(CodeOf("R", "C3Q", "3.04"), 41);
  EXPECT_EQ(CodeOf("E", "C8Q", "3.04"), 72);
  EXPECT_EQ(CodeOf("J", "C6E", "3.04"), 139);
  EXPECT_EQ(CodeOf("C", "C7D", "3.04"), 167);
  EXPECT_EQ(CodeOf("C", "C6A", "3.04"), 179);
}

TEST(ObservationReader, TypesWithoutANumberAreLeftOutWithOneNoticeEach) {
  const ReadFile file(Header("E    3 C1C C2C L1C") + Epoch("00.0", 1) +
                      Satellite("E05", {"1.0", "2.0", "3.0"}) + Epoch("30.0", 1) +
                      Satellite("E05", {"1.0", "2.0", "3.0"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[1].sats[0].signal_num, 1U);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].phase, 3.0);
  EXPECT_TRUE(file.Said("observation type C2C of Galileo is not in the library"));
  EXPECT_EQ(file.notices.Notices()[0].count, 1);
}

TEST(ObservationReader, OnlyTheFirstEightSignalsAreKeptWithANotice) {
  const ReadFile file(Header("G    9 C1C C1S C1L C1X C1W C2W C2L C5Q C5I") + Epoch("00.0", 1) +
                      Satellite("G05", {"1.0", "", "3.0", "4.0", "5.0", "6.0", "7.0", "8.0", "9.0"}) +
                      Epoch("30.0", 1) +
                      Satellite("G05", {"1.0", "2.0", "3.0", "4.0", "5.0", "6.0", "7.0", "8.0", "9.0"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[0].sats[0].signal_num, 8U);
  EXPECT_EQ(file.epochs[0].sats[0].signals[7].code, 20);
  EXPECT_EQ(file.epochs[1].sats[0].signal_num, 8U);
  EXPECT_EQ(file.epochs[1].sats[0].signals[7].code, 21);
  EXPECT_TRUE(file.Said("more than 8 signals"));
  EXPECT_EQ(file.notices.Total(), 2);  // the other: no S types
}

TEST(ObservationReader, OnlyTheFirstEightySatellitesAreKeptWithANotice) {
  std::string text = Header(
      kOneSignal, "3.04",
      HeaderLine("C    1 C2I", "SYS / # / OBS TYPES") + HeaderLine("R    1 C1C", "SYS / # / OBS TYPES"));
  text += Epoch("00.0", 85);
  for (int i = 1; i <= 63; ++i) text += Satellite("C" + std::to_string(i + 100).substr(1), {"1.0"});
  for (int i = 1; i <= 22; ++i) text += Satellite("R" + std::to_string(i + 100).substr(1), {"1.0"});
  const ReadFile file(text);
  ASSERT_EQ(file.epochs.size(), 1U);
  EXPECT_EQ(file.epochs[0].sat_num, 80U);
  EXPECT_EQ(file.epochs[0].sats[79].prn, 17);
  EXPECT_TRUE(file.Said("more than 80 satellites"));
  EXPECT_EQ(file.notices.Total(), 5);
}

TEST(ObservationReader, UnjudgedSystemsAndNumbersAreLeftOutWithNotices) {
  const std::string more =
      HeaderLine("S    1 C1C", "SYS / # / OBS TYPES") + HeaderLine("J    1 C1C", "SYS / # / OBS TYPES");
  const ReadFile file(Header(kOneSignal, "3.04", more) + Epoch("00.0", 4) + Satellite("S20", {"1.0"}) +
                      Satellite("G36", {"1.0"}) + Satellite("J10", {"1.0"}) + Satellite("G01", {"2.0"}));
  ASSERT_EQ(file.epochs.at(0).sat_num, 2U);
  EXPECT_EQ(file.epochs[0].sats[0].sys, 16);
  EXPECT_EQ(file.epochs[0].sats[0].prn, 10);
  EXPECT_TRUE(file.Said("system S"));
  EXPECT_TRUE(file.Said("G36"));
}

TEST(ObservationReader, EventsAboveOneAreSkippedWithTheirLines) {
  const std::string records = "> 2021 12 21 00 00 10.0000000  4  2\n" + HeaderLine("moved", "COMMENT") +
                              HeaderLine("NEW", "MARKER NAME") + ">                              5  0\n" +
                              Epoch("15.0", 1, 6) + Satellite("G05", {"9.0"});
  const ReadFile file(Header(kOneSignal) + Epoch("00.0", 1) + Satellite("G05", {"1.0"}) + records +
                      Epoch("30.0", 1, 1) + Satellite("G05", {"2.0"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[1].time.time - file.epochs[0].time.time, 30);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].pseudorange, 2.0);
  EXPECT_EQ(file.header.marker, "NEW");
  EXPECT_TRUE(file.Said("flag 4"));
  EXPECT_TRUE(file.Said("flag 5"));
  EXPECT_TRUE(file.Said("flag 6"));
}

TEST(ObservationReader, TypesChangedByAnEventHoldFromThereOn) {
  const std::string change = Epoch("10.0", 1, 4) + HeaderLine("G    2 L1C C1C", "SYS / # / OBS TYPES");
  const ReadFile file(Header("G    2 C1C L1C") + Epoch("00.0", 1) + Satellite("G05", {"1.0", "2.0"}) +
                      change + Epoch("30.0", 1) + Satellite("G05", {"1.0", "2.0"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[0].sats[0].signals[0].phase, 2.0);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].phase, 1.0);
  EXPECT_TRUE(file.Said("change within the file"));
}

TEST(ObservationReader, ScaleFactorsDivide) {
  const ReadFile file(Header(kOneSignal, "3.04", HeaderLine("G  100   1 L1C", "SYS / SCALE FACTOR")) +
                      Epoch("00.0", 1) + Satellite("G05", {"1000.000", "1000.000"}));
  EXPECT_EQ(file.epochs.at(0).sats[0].signals[0].pseudorange, 1000.0);
  EXPECT_EQ(file.epochs[0].sats[0].signals[0].phase, 10.0);
}

TEST(ObservationReader, BdsAndGlonassTimesAreBroughtToGpsTime) {
  const std::string first = "  2021    12    21     0     0    0.0000000     ";
  const std::string body = Epoch("00.0", 1) + Satellite("G05", {"1.0"});
  const auto time_of = [&](const std::string& system, const std::string& more) {
    return ReadFile(Header(kOneSignal, "3.04", HeaderLine(first + system, "TIME OF FIRST OBS") + more) + body)
        .epochs.at(0)
        .time.time;
  };
  EXPECT_EQ(time_of("GPS", ""), 1640044800);
  EXPECT_EQ(time_of("GAL", ""), 1640044800);
  EXPECT_EQ(time_of("BDT", ""), 1640044800 + 14);
  EXPECT_EQ(time_of("GLO", HeaderLine("    18", "LEAP SECONDS")), 1640044800 + 18);
  EXPECT_EQ(time_of("GLO", ""), 1640044800);
}

TEST(ObservationReader, HeaderFactsAreKept) {
  const std::string more =
      HeaderLine("ESBC00DNK", "MARKER NAME") + HeaderLine("    30.000", "INTERVAL") +
      HeaderLine("  3582105.2910   532589.7313  5232754.8054", "APPROX POSITION XYZ") +
      HeaderLine("3047937             SEPT POLARX5        5.2.0", "REC # / TYPE / VERS") +
      HeaderLine("CR5200327016        ASH701945E_M    SCIS", "ANT # / TYPE") +
      HeaderLine("        0.1380        0.0000        0.0000", "ANTENNA: DELTA H/E/N");
  const ReadFile file(Header(kOneSignal, "3.05", more));
  EXPECT_EQ(file.header.marker, "ESBC00DNK");
  EXPECT_EQ(file.header.receiver, "SEPT POLARX5");
  EXPECT_EQ(file.header.receiver_number, "3047937");
  EXPECT_EQ(file.header.receiver_firmware, "5.2.0");
  EXPECT_EQ(file.header.antenna, "ASH701945E_M    SCIS");
  EXPECT_EQ(file.header.antenna_number, "CR5200327016");
  EXPECT_EQ(file.header.antenna_height_m, 0.138);
  EXPECT_EQ(file.header.interval_s, 30.0);
  ASSERT_TRUE(file.header.position);
  EXPECT_EQ((*file.header.position)[1], 532589.7313);
  EXPECT_EQ(file.header.version, 3.05);
}

TEST(ObservationReader, APositionOfZerosAndAnIntervalOfZeroCountAsNotGiven) {
  const ReadFile file(
      Header(kOneSignal, "3.05",
             HeaderLine("     0.000", "INTERVAL") +
                 HeaderLine("        0.0000        0.0000        0.0000", "APPROX POSITION XYZ")));
  EXPECT_FALSE(file.header.position);
  EXPECT_FALSE(file.header.interval_s);
}

TEST(ObservationReader, SignalStrengthIsNotInventedFromTheDigit) {
  std::string line = Satellite("G05", {"23818653.240", "125167854.812"});
  line[3 + 15] = line[3 + 31] = '7';
  const ReadFile file(Header("G    2 C1C L1C") + Epoch("00.0", 1) + line);
  EXPECT_EQ(file.epochs.at(0).sats[0].signals[0].snr, 0.0F);
  EXPECT_FALSE(file.strength);
  EXPECT_TRUE(file.Said("no signal strength"));
}

TEST(ObservationReader, CrlfAndAMissingLastLineEndAreTolerated) {
  std::string text = Header(kOneSignal) + Epoch("00.0", 1) + Satellite("G05", {"1.0", "2.0", "3.0", "4.0"});
  std::string crlf;
  for (const char c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  crlf.resize(crlf.size() - 2);
  const ReadFile file(crlf);
  ASSERT_EQ(file.epochs.size(), 1U);
  EXPECT_EQ(file.epochs[0].sats[0].signals[0].snr, 4.0F);
  EXPECT_TRUE(file.notices.Notices().empty());
}

TEST(ObservationReader, AnEpochWithFewerLinesThanItSaysKeepsWhatItHas) {
  const ReadFile file(Header(kOneSignal) + Epoch("00.0", 3) + Satellite("G05", {"1.0"}) + Epoch("30.0", 2) +
                      Satellite("G06", {"2.0"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[0].sat_num, 1U);
  EXPECT_EQ(file.epochs[1].sats[0].prn, 6);
  EXPECT_TRUE(file.Said("fewer lines than declared"));
  EXPECT_TRUE(file.Said("ends within an epoch"));
}

TEST(ObservationReader, DamagedLinesArePassedOverWithTheirPlace) {
  const ReadFile file(Header(kOneSignal) + "rubbish\n" + Epoch("00.0", 2) + "?x7 1.0\n" +
                      Satellite("G05", {"1.0", "2x"}) + "> 2021 99 21 00 00 30.0000000  0  1\n" +
                      Satellite("G07", {"1.0"}) + Epoch("30.0", 1) + Satellite("G06", {"2.0"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[0].sats[0].signals[0].phase, 0.0);
  EXPECT_EQ(file.epochs[1].sats[0].prn, 6);
  EXPECT_EQ(file.LineOf("belong to no epoch"), 4);
  EXPECT_EQ(file.LineOf("unreadable satellite"), 6);
  EXPECT_EQ(file.LineOf("not a number"), 7);
  EXPECT_EQ(file.LineOf("unreadable epoch line"), 8);
}

TEST(ObservationReader, LaterVersionsAreReadWithANotice) {
  const ReadFile file(Header(kOneSignal, "4.09") + Epoch("00.0", 1) + Satellite("G05", {"1.0"}));
  EXPECT_EQ(file.epochs.size(), 1U);
  EXPECT_TRUE(file.Said("newer than any supported"));
  EXPECT_FALSE(ReadFile(Header(kOneSignal, "4.01")).Said("newer"));
}

FileError ErrorOf(const std::string& text) {
  try {
    const ReadFile file(text);
  } catch (const FileError& error) {
    return error;
  }
  return FileError("none", 0, "", "", "");
}

TEST(ObservationReader, ErrorsNameFileLineFoundAndWhatToDo) {
  const FileError navigation =
      ErrorOf(HeaderLine("     3.04           N: GNSS NAV DATA", "RINEX VERSION / TYPE"));
  EXPECT_EQ(navigation.File(), "test.rnx");
  EXPECT_EQ(navigation.Line(), 1);
  EXPECT_NE(navigation.Found().find("N: GNSS NAV DATA"), std::string::npos);
  EXPECT_FALSE(navigation.Advice().empty());
  EXPECT_NE(ErrorOf("").Found().find("empty"), std::string::npos);
  EXPECT_NE(ErrorOf("hello\n").Found().find("hello"), std::string::npos);
  EXPECT_NE(ErrorOf(HeaderLine("     1.00           O", "RINEX VERSION / TYPE")).Found().find("1.00"),
            std::string::npos);
  EXPECT_NE(ErrorOf(HeaderLine("2.0", "CRINEX VERS   / TYPE")).Found().find("2.0"), std::string::npos);
  const std::string cut = Header(kOneSignal);
  EXPECT_NE(ErrorOf(cut.substr(0, cut.size() - 40)).Found().find("END OF HEADER"), std::string::npos);
}

// CRINEX 3, by hand.

std::string Crinex(const std::string& header, const std::string& body) {
  return HeaderLine("3.0                 COMPACT RINEX FORMAT", "CRINEX VERS   / TYPE") +
         HeaderLine("by hand", "CRINEX PROG / DATE") + header + body;
}

std::string CrinexEpoch(const std::string& second, const std::string& satellites) {
  char line[200];
  std::snprintf(line, sizeof line, "> 2021 12 21 00 00 %s000000  0%3d      %s\n", second.c_str(),
                static_cast<int>(satellites.size() / 3), satellites.c_str());
  return line;
}

TEST(CrinexReader, DifferencesAreSummedUpToTheOrderOfTheArc) {
  // 1000, 1010, 1030, 1060, 1100: differences 10, 20, 30, 40; second 10, 10, 10; third 0, 0.
  const std::string body = CrinexEpoch("00.0", "G05") + "\n3&1000\n" + "                   1\n\n10\n" +
                           "                   2\n\n10\n" + "                   3\n\n0\n" +
                           "                   4\n\n0\n";
  const ReadFile file(Crinex(Header("G    1 C1C"), body));
  ASSERT_EQ(file.epochs.size(), 5U);
  const double expected[] = {1.000, 1.010, 1.030, 1.060, 1.100};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(file.epochs[i].sats[0].signals[0].pseudorange, expected[i]) << i;
    EXPECT_EQ(file.epochs[i].time.time - file.epochs[0].time.time, i * 10);
  }
  EXPECT_EQ(file.notices.Total(), 1);  // no S types
}

TEST(CrinexReader, ABlankValueEndsItsArc) {
  const std::string body = CrinexEpoch("00.0", "G05") + "\n3&1000 3&2000\n" + "                   1\n\n 5\n" +
                           "                   2\n\n7 6\n";
  const ReadFile file(Crinex(Header("G    2 C1C L1C"), body));
  ASSERT_EQ(file.epochs.size(), 3U);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].pseudorange, 0.0);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].phase, 2.005);
  EXPECT_EQ(file.epochs[2].sats[0].signals[0].pseudorange, 0.0);
  EXPECT_EQ(file.epochs[2].sats[0].signals[0].phase, 2.016);
  EXPECT_TRUE(file.Said("without an initial value"));
}

TEST(CrinexReader, ASatelliteAwayForAnEpochBeginsAnew) {
  const std::string body = CrinexEpoch("00.0", "G05G06") + "\n3&1000\n3&1000\n" + CrinexEpoch("10.0", "G06") +
                           "\n1\n" + CrinexEpoch("20.0", "G05G06") + "\n1\n1\n";
  const ReadFile file(Crinex(Header("G    1 C1C"), body));
  ASSERT_EQ(file.epochs.size(), 3U);
  ASSERT_EQ(file.epochs[2].sat_num, 1U);
  EXPECT_EQ(file.epochs[2].sats[0].prn, 6);
  EXPECT_EQ(file.epochs[2].sats[0].signals[0].pseudorange, 1.003);
}

TEST(CrinexReader, EventsStandInPlainForm) {
  const std::string body = CrinexEpoch("00.0", "G05") + "\n3&1000\n> 2021 12 21 00 00 05.0000000  4  1\n" +
                           HeaderLine("note", "COMMENT") + CrinexEpoch("10.0", "G05") + "\n3&1001\n";
  const ReadFile file(Crinex(Header("G    1 C1C"), body));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].pseudorange, 1.001);
}

TEST(CrinexReader, AfterDamageReadingGoesOnAtTheNextFullEpochLine) {
  const std::string body = CrinexEpoch("00.0", "G05") + "\n3&1000\n" +
                           "   x\n\n10\n                   2\n\n10\n" + CrinexEpoch("40.0", "G05") +
                           "\n3&1000\n                   5\n\n1\n";
  const ReadFile file(Crinex(Header("G    1 C1C"), body));
  ASSERT_EQ(file.epochs.size(), 3U);
  EXPECT_EQ(file.epochs[1].time.time - file.epochs[0].time.time, 40);
  EXPECT_EQ(file.epochs[2].sats[0].signals[0].pseudorange, 1.001);
  EXPECT_TRUE(file.Said("resumes at the next full one"));
}

// Real files.

TEST(RealFiles, AreReadWholeWithoutLoss) {
  struct Case {
    const char* name;
    std::size_t epochs;
  };
  const Case cases[] = {{"ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz", 2880},
                        {"SEPT078M.21O", 900},
                        {"GRAS00FRA_R_20223151700_15M_01S_MO.crx.gz", 900},
                        {"KMS300DNK_R_20221591000_01H_30S_MO.crx", 19}};
  for (const Case& c : cases) {
    const std::string path = DataFile(c.name);
    ORSOLVA_NEED_FILE(path);
    const ReadFile file(path.c_str());
    EXPECT_EQ(file.epochs.size(), c.epochs) << c.name;
    for (const Notice& n : file.notices.Notices()) {
      EXPECT_TRUE(n.recovered || n.text.find("no signal strength") == 0) << c.name << ": " << n.text;
    }
  }
}

}  // namespace
}  // namespace orsolva_host
