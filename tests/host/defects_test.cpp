// Defects of real files: each is repaired or skipped with a notice that names its line and is counted.
#include <gtest/gtest.h>

#include <string>

#include "tests/host/observation_text.h"

namespace orsolva_host {
namespace {

using orsolva_test::Epoch;
using orsolva_test::Header;
using orsolva_test::HeaderLine;
using orsolva_test::ReadFile;
using orsolva_test::Satellite;

const char kTypes[] = "G    2 C1C S1C";  // a header of three lines

std::string Crinex(const std::string& body, const std::string& header = Header(kTypes)) {
  return HeaderLine("3.0                 COMPACT RINEX FORMAT", "CRINEX VERS   / TYPE") +
         HeaderLine("by hand", "CRINEX PROG / DATE") + header + body;
}

std::string CrinexEpoch(const std::string& second) {
  return "> 2021 12 21 00 00 " + second + "000000  0  1      G05\n\n3&1000 3&40000\n";
}

std::string Good(const std::string& second, const std::string& name = "G05") {
  return Epoch(second, 1) + Satellite(name, {"1.000", "40.000"});
}

std::string Header2() {
  return HeaderLine("     2.11           OBSERVATION DATA    M", "RINEX VERSION / TYPE") +
         HeaderLine("     2    C1    S1", "# / TYPES OF OBSERV") + HeaderLine("", "END OF HEADER");
}

std::string Good2(const std::string& second, const std::string& name = "G05") {
  return " 21 12 21  0  0 " + second + "00000  0  1" + name + "\n         1.000          40.000\n";
}

TEST(Defects, CommentsStandAnywhereAmongTheObservations) {
  const std::string comment = HeaderLine("a remark", "COMMENT");
  const ReadFile plain(Header(kTypes) + comment + Epoch("00.0", 2) + comment +
                       Satellite("G05", {"1.000", "40.000"}) + comment +
                       Satellite("G06", {"2.000", "40.000"}) + comment + comment + Good("30.0"));
  ASSERT_EQ(plain.epochs.size(), 2U);
  EXPECT_EQ(plain.epochs[0].sat_num, 2U);
  EXPECT_EQ(plain.LineOf("comments among the observations"), 4);
  const ReadFile old(Header2() + comment + Good2("00.00") + comment + Good2("30.00"));
  EXPECT_EQ(old.epochs.size(), 2U);
  EXPECT_EQ(old.LineOf("comments among the observations"), 4);
  const ReadFile crinex(Crinex(CrinexEpoch("00.0") + comment + CrinexEpoch("30.0")));
  EXPECT_EQ(crinex.epochs.size(), 2U);
  EXPECT_EQ(crinex.LineOf("comments among the observations"), 9);
}

TEST(Defects, ARepeatedHeaderIsTakenAndHoldsFromThereOn) {
  const std::string turned = Header("G    2 S1C C1C");
  const ReadFile file(Header(kTypes) + Good("00.0") + turned + Epoch("30.0", 1) +
                      Satellite("G05", {"41.000", "2.000"}));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].pseudorange, 2);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].snr, 41);
  EXPECT_EQ(file.LineOf("header lines among the observations"), 6);
  EXPECT_TRUE(file.Said("change within the file"));
  const ReadFile old(Header2() + Good2("00.00") + Header2() + Good2("30.00"));
  EXPECT_EQ(old.epochs.size(), 2U);
  EXPECT_TRUE(old.Said("header lines among the observations"));
}

TEST(Defects, ASecondHeaderOfAnotherFormBeginsAPartOfThatForm) {
  const ReadFile file(Header(kTypes) + Good("00.0") + Header2() + Good2("30.00"));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[1].sat_num, file.epochs[0].sat_num);
  EXPECT_EQ(file.LineOf("continues as plain RINEX 2.11"), 6);
}

/// A version line of RINEX 2.11 and nothing else of its header.
std::string VersionAlone() {
  return HeaderLine("     2.11           OBSERVATION DATA    M", "RINEX VERSION / TYPE");
}

TEST(Defects, ASecondHeaderWithoutTypesEndsReadingAndWhatPrecedesItStays) {
  Diagnostics notices;
  ObservationReader reader(TextBytes(Header(kTypes) + Good("00.0") + VersionAlone() + Good2("30.00")),
                           "test.rnx", notices);
  ObsEpoch_QC_gbt epoch;
  EXPECT_TRUE(reader.Next(epoch));
  EXPECT_FALSE(reader.Failure());
  EXPECT_FALSE(reader.Next(epoch));
  EXPECT_FALSE(reader.Next(epoch));
  ASSERT_TRUE(reader.Failure());
  EXPECT_EQ(reader.Failure()->Line(), 6);
  EXPECT_FALSE(reader.Failure()->Advice().empty());
  EXPECT_FALSE(notices.Notices().back().recovered);
}

TEST(Defects, AFileThatFailsBeforeItsFirstEpochIsAnError) {
  Diagnostics notices;
  ObservationReader reader(TextBytes(Header(kTypes) + VersionAlone()), "test.rnx", notices);
  ObsEpoch_QC_gbt epoch;
  EXPECT_THROW(reader.Next(epoch), FileError);
}

TEST(Defects, MarkersOfMovingAntennasAndNewSitesAreNamed) {
  const ReadFile file(Header(kTypes) + Good("00.0") + ">                              2  1\n" +
                      HeaderLine("on the road", "COMMENT") + Good("10.0") +
                      ">                              3  1\n" + HeaderLine("NEXT", "MARKER NAME") +
                      Good("20.0"));
  ASSERT_EQ(file.epochs.size(), 3U);
  EXPECT_EQ(file.LineOf("antenna starts moving"), 6);
  EXPECT_EQ(file.LineOf("new site occupation"), 10);
  EXPECT_EQ(file.header.marker, "NEXT");
}

TEST(Defects, BlankAndShortLinesCostNothing) {
  const ReadFile file("\n\n" + Header(kTypes) + "\n" + Epoch("00.0", 3) + "\nG05         1.000\n   \n" +
                      Satellite("G06", {"2.000", "40.000"}) + "G07\n\n" + Good("30.0"));
  ASSERT_EQ(file.epochs.size(), 2U);
  ASSERT_EQ(file.epochs[0].sat_num, 2U);
  EXPECT_EQ(file.epochs[0].sats[0].signals[0].pseudorange, 1);
  EXPECT_EQ(file.epochs[0].sats[1].prn, 6);
  EXPECT_EQ(file.LineOf("blank lines before the header"), 1);
  EXPECT_EQ(file.LineOf("blank lines among the observations"), 8);
  EXPECT_EQ(file.CountOf("blank lines among the observations"), 2);
}

TEST(Defects, AByteOrderMarkIsNoPartOfTheHeader) {
  const ReadFile file("\xEF\xBB\xBF" + Header(kTypes) + Good("00.0"));
  EXPECT_EQ(file.epochs.size(), 1U);
  EXPECT_EQ(file.LineOf("byte order mark"), 1);
}

std::string WithCrLf(const std::string& text) {
  std::string out;
  for (const char c : text) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return out;
}

TEST(Defects, LinesEndedByCrLfReadTheSameInEveryForm) {
  for (const std::string& text :
       {Header(kTypes) + Good("00.0"), Header2() + Good2("00.00"), Crinex(CrinexEpoch("00.0"))}) {
    const ReadFile file(WithCrLf(text));
    ASSERT_EQ(file.epochs.size(), 1U);
    EXPECT_EQ(file.epochs[0].sats[0].signals[0].pseudorange, 1);
    EXPECT_EQ(file.epochs[0].sats[0].signals[0].snr, 40);
    EXPECT_EQ(file.notices.Total(), 0);
  }
}

TEST(Defects, AMissingLastLineEndCostsOnlyAValueCutInsideIt) {
  const std::string whole = Header(kTypes) + Epoch("00.0", 1) + "G05         1.000          40.000";
  const ReadFile kept(whole);
  EXPECT_EQ(kept.epochs.at(0).sats[0].signals[0].snr, 40);
  EXPECT_EQ(kept.notices.Total(), 0);
  const ReadFile cut(whole.substr(0, whole.size() - 2));
  EXPECT_EQ(cut.epochs.at(0).sats[0].signals[0].pseudorange, 1);
  EXPECT_EQ(cut.epochs[0].sats[0].signals[0].snr, 0);
  EXPECT_EQ(cut.LineOf("ends within a value"), 5);
  ASSERT_TRUE(cut.notices.Incomplete());
  EXPECT_EQ(cut.notices.Incomplete()->Line(), 5);
}

TEST(Defects, ACrinexValueCutByTheEndOfTheFileCountsAsMissing) {
  const std::string text = Crinex(CrinexEpoch("00.0"));
  const ReadFile cut(text.substr(0, text.size() - 3));
  EXPECT_EQ(cut.epochs.at(0).sats[0].signals[0].pseudorange, 1);
  EXPECT_EQ(cut.epochs[0].sats[0].signals[0].snr, 0);
  EXPECT_TRUE(cut.Said("treated as missing"));
  EXPECT_TRUE(cut.notices.Incomplete());
}

TEST(Defects, AFileCutOffAnywhereInAnEpochIsIncompleteAndAWholeOneIsNot) {
  const std::string epochs[] = {
      Header(kTypes) + Good("00.0") + Epoch("30.0", 2) + Satellite("G05", {"1.000", "40.000"}) +
          Satellite("G06", {"1.000", "40.000"}),
      Header2() + Good2("00.00") +
          " 21 12 21  0  0 30.0000000  0  2G05G06\n         1.000          40.000\n"
          "         1.000          40.000\n",
      Crinex(CrinexEpoch("00.0") + "> 2021 12 21 00 00 30.0000000  0  2      G05G06\n\n"
                                   "3&1000 3&40000  4 4\n3&1000 3&40000  4 4\n")};
  for (const std::string& text : epochs) {
    const ReadFile whole(text);
    EXPECT_EQ(whole.epochs.size(), 2U);
    EXPECT_FALSE(whole.notices.Incomplete()) << whole.notices.Incomplete()->what();
    const std::size_t second = text.rfind("30.0000000");
    for (std::size_t end = second - 5; end + 12 < text.size(); ++end) {
      const ReadFile cut(text.substr(0, end));
      EXPECT_EQ(cut.epochs.at(0).sat_num, 1U);
      // A line that ends with a value may be whole.
      const std::size_t line = text.rfind('\n', end - 1) + 1;
      const std::size_t value = text.find("1.000", line);
      if (text.compare(end - 5, 5, "1000 ") == 0) continue;
      if (value != std::string::npos && end >= value + 5 && end <= value + 7) continue;
      EXPECT_TRUE(cut.notices.Incomplete()) << text.substr(second - 20, end - second + 20);
    }
  }
}

TEST(Defects, TheEndMarkOfDosIsNoCut) {
  EXPECT_FALSE(ReadFile(Header(kTypes) + Good("00.0") + "\x1a").notices.Incomplete());
  EXPECT_FALSE(ReadFile(Header2() + Good2("00.00") + "\x1a").notices.Incomplete());
}

TEST(Defects, MoreSatellitesThanTheEpochLineSaysAreTaken) {
  const ReadFile file(Header(kTypes) + Epoch("00.0", 1) + Satellite("G05", {"1.000", "40.000"}) +
                      Satellite("G06", {"2.000", "40.000"}) + Satellite("G07", {"3.000", "40.000"}) +
                      Good("30.0"));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[0].sat_num, 3U);
  EXPECT_EQ(file.LineOf("more lines than declared"), 6);
  EXPECT_EQ(file.CountOf("more lines than declared"), 2);
}

TEST(Defects, SatellitesBeyond999OfAnEpochArePassedOver) {
  std::string lines;
  for (int i = 0; i < 2000; ++i) lines += Satellite("G05", {"1.000", "40.000"});
  const ReadFile file(Header(kTypes) + Epoch("00.0", 1) + lines + Good("30.0"));
  ASSERT_EQ(file.epochs.size(), 2U) << "reading goes on behind them";
  EXPECT_EQ(file.CountOf("more than 999 satellites"), 1001);
}

TEST(Defects, ALastEpochCutOffKeepsTheSatellitesItHas) {
  const ReadFile plain(Header(kTypes) + Good("00.0") + Epoch("30.0", 4) +
                       Satellite("G05", {"1.000", "40.000"}));
  ASSERT_EQ(plain.epochs.size(), 2U);
  EXPECT_EQ(plain.epochs[1].sat_num, 1U);
  EXPECT_EQ(plain.LineOf("ends within an epoch"), 7);
  const ReadFile old(Header2() + Good2("00.00") +
                     " 21 12 21  0  0 30.0000000  0  2G05G06\n         1.000          40.000\n");
  ASSERT_EQ(old.epochs.size(), 2U);
  EXPECT_EQ(old.epochs[1].sat_num, 1U);
  EXPECT_TRUE(old.Said("ends within an epoch"));
  const std::string two = "> 2021 12 21 00 00 30.0000000  0  2      G05G06\n\n3&1000 3&40000\n";
  const ReadFile crinex(Crinex(CrinexEpoch("00.0") + two));
  ASSERT_EQ(crinex.epochs.size(), 2U);
  EXPECT_EQ(crinex.epochs[1].sat_num, 1U);
  EXPECT_TRUE(crinex.Said("ends within an epoch"));
}

TEST(Defects, EpochsThatStandTwiceOrRunBackwardsAreGivenAndNamed) {
  const ReadFile file(Header(kTypes) + Good("30.0") + Good("30.0") + Good("10.0") + Good("40.0"));
  ASSERT_EQ(file.epochs.size(), 4U);
  EXPECT_EQ(file.LineOf("duplicate epochs"), 6);
  EXPECT_EQ(file.LineOf("goes backwards"), 8);
  EXPECT_EQ(file.CountOf("goes backwards"), 1);
}

std::string AtHour(int hour, std::string epoch) {
  return epoch.replace(epoch.find(" 00 00 "), 7,
                       hour < 10 ? " 0" + std::to_string(hour) + " 00 " : " 23 00 ");
}

TEST(Defects, AnEpochAheadOfThoseAroundItIsNamed) {
  const ReadFile file(Header(kTypes) + Good("00.0") + Good("01.0") + AtHour(9, Good("02.0")) + Good("03.0") +
                      Good("04.0"));
  EXPECT_EQ(file.epochs.size(), 5U);
  EXPECT_EQ(file.LineOf("jumps ahead and back again; the epoch is not judged"), 8);
  EXPECT_FALSE(file.Said("goes backwards"));
  const ReadFile first(Header(kTypes) + AtHour(9, Good("00.0")) + Good("01.0") + Good("02.0"));
  EXPECT_EQ(first.LineOf("jumps ahead and back again"), 4);
  EXPECT_FALSE(first.Said("goes backwards"));
  const ReadFile crinex(Crinex(CrinexEpoch("00.0") + AtHour(9, CrinexEpoch("30.0")) + CrinexEpoch("31.0")));
  EXPECT_EQ(crinex.epochs.size(), 3U);
  EXPECT_TRUE(crinex.Said("jumps ahead and back again"));
}

TEST(Defects, AGapOrAnEpochOutOfOrderIsNoWrongTime) {
  const std::string begin = Header(kTypes) + Good("00.0") + Good("01.0");
  EXPECT_FALSE(ReadFile(begin + AtHour(9, Good("02.0")) + AtHour(9, Good("03.0"))).Said("jumps ahead"));
  EXPECT_FALSE(ReadFile(begin + Good("04.0") + Good("03.0") + Good("05.0")).Said("jumps ahead"));
  EXPECT_FALSE(ReadFile(begin + AtHour(9, Good("02.0"))).Said("jumps ahead"));
  const std::string morning = AtHour(9, Good("00.0")) + AtHour(9, Good("01.0"));
  EXPECT_FALSE(ReadFile(Header(kTypes) + morning + Good("00.0") + Good("01.0")).Said("jumps ahead"));
}

TEST(Defects, SatellitesListedWithoutAValueAreLeftOutAndCounted) {
  const ReadFile file(Header(kTypes) + Epoch("00.0", 3) + Satellite("G05", {"", ""}) + "G06\n" +
                      Satellite("G07", {"3.000", "40.000"}));
  ASSERT_EQ(file.epochs.at(0).sat_num, 1U);
  EXPECT_EQ(file.epochs[0].sats[0].prn, 7);
  EXPECT_EQ(file.LineOf("listed without observations"), 4);
  EXPECT_EQ(file.CountOf("listed without observations"), 2);
}

TEST(Defects, OfADuplicateSatelliteTheFirstIsUsed) {
  const ReadFile file(Header(kTypes) + Epoch("00.0", 3) + Satellite("G05", {"", ""}) +
                      Satellite("G05", {"1.000", "40.000"}) + Satellite("G05", {"2.000", "40.000"}) +
                      Good("30.0"));
  ASSERT_EQ(file.epochs.at(0).sat_num, 1U);
  EXPECT_EQ(file.epochs[0].sats[0].signals[0].pseudorange, 1);
  EXPECT_EQ(file.CountOf("duplicate satellite"), 1);
  EXPECT_EQ(file.epochs.at(1).sat_num, 1U);
}

TEST(Defects, PhaseShiftsInTheHeaderNeedNothingAndAmongTheObservationsAreNamed) {
  const std::string shift = HeaderLine("G L2S -0.25000", "SYS / PHASE SHIFT");
  EXPECT_EQ(ReadFile(Header(kTypes, "3.04", shift) + Good("00.0")).notices.Total(), 0);
  const ReadFile file(Header(kTypes) + Good("00.0") + Epoch("10.0", 1, 4) + shift + Good("30.0"));
  EXPECT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.LineOf("phase shifts"), 7);
}

TEST(Defects, ScaleFactorsMayChangeAmongTheObservations) {
  const std::string factor = HeaderLine("G   10   1 C1C", "SYS / SCALE FACTOR");
  const ReadFile file(Header(kTypes) + Good("00.0") + Epoch("10.0", 1, 4) + factor + Good("30.0"));
  ASSERT_EQ(file.epochs.size(), 2U);
  EXPECT_EQ(file.epochs[0].sats[0].signals[0].pseudorange, 1);
  EXPECT_EQ(file.epochs[1].sats[0].signals[0].pseudorange, 0.1);
  EXPECT_EQ(file.LineOf("scale factors change"), 6);
}

TEST(Defects, AbsurdCountsEndWithTheEpochOrTheFile) {
  const ReadFile plain(Header(kTypes) + Epoch("00.0", 999) + Satellite("G05", {"1.000", "40.000"}) +
                       Good("30.0"));
  EXPECT_EQ(plain.epochs.size(), 2U);
  EXPECT_TRUE(plain.Said("fewer lines than declared"));
  const ReadFile old(Header2() + " 21 12 21  0  0  0.0000000  0999G05\n" + Good2("30.00"));
  EXPECT_LE(old.epochs.size(), 2U);
  EXPECT_GE(old.notices.Total(), 1);
  const ReadFile event(Header(kTypes) + ">                              4999\n" +
                       HeaderLine("a remark", "COMMENT") + Good("30.0"));
  EXPECT_EQ(event.epochs.size(), 1U);
  const ReadFile crinex(
      Crinex("> 2021 12 21 00 00  0.0000000  0999      G05\n\n3&1 3&1\n" + CrinexEpoch("30.0")));
  EXPECT_EQ(crinex.epochs.size(), 1U);
}

TEST(Defects, TypeListsOfADamagedHeaderStayBounded) {
  std::string lines;
  for (int i = 0; i < 500; ++i) {
    lines += HeaderLine("       C1C L1C D1C S1C C1C L1C D1C S1C C1C L1C D1C S1C C1C", "SYS / # / OBS TYPES");
  }
  const ReadFile file(Header(kTypes, "3.04", lines) + Good("00.0"));
  EXPECT_LE(file.header.TypesOf('G').size(), 200U);
  EXPECT_EQ(file.epochs.size(), 1U);
}

TEST(Defects, ALineWithoutEndIsSkippedInPieces) {
  const ReadFile file(Header(kTypes) + Good("00.0") + std::string(3000000, 'x') + "\n" + Good("30.0"));
  EXPECT_EQ(file.epochs.size(), 2U);
  EXPECT_TRUE(file.Said("skipped"));
}

TEST(Defects, BytesThatAreNotTextAreSkipped) {
  const std::string noise("\0\x01\xff\x80 >\t\0\x1b[2J", 12);
  for (const std::string& text : {Header(kTypes) + Good("00.0") + noise + "\n" + Good("30.0"),
                                  Header2() + Good2("00.00") + noise + "\n" + Good2("30.00"),
                                  Crinex(CrinexEpoch("00.0") + noise + "\n" + CrinexEpoch("30.0"))}) {
    const ReadFile file(text);
    EXPECT_EQ(file.epochs.size(), 2U);
    EXPECT_GE(file.notices.Total(), 1);
  }
}

TEST(Defects, ControlCharactersOfAHeaderReachNoReport) {
  const ReadFile file(
      Header("G    3 C1C \x1b[2 S1C", "3.04", HeaderLine("A\x1b[31mB\x7f\xc3\xbc", "MARKER NAME")) +
      Good("00.0"));
  EXPECT_EQ(file.header.marker, "A?[31mB?\xc3\xbc");
  for (const Notice& notice : file.notices.Notices()) {
    EXPECT_EQ(notice.text.find('\x1b'), std::string::npos) << notice.text;
  }
  EXPECT_TRUE(file.Said("observation type ?[2"));
}

TEST(Defects, WhatCannotBeDecompressedFurtherKeepsWhatStandsBefore) {
  std::string text = Header(kTypes);
  for (int i = 10; i < 60; ++i) text += Good(std::to_string(i) + ".0");
  struct Failing : ByteSource {
    explicit Failing(std::string t) : bytes(TextBytes(std::move(t))) {}
    std::size_t Read(char* out, std::size_t size) override {
      const std::size_t count = bytes->Read(out, size);
      if (count == 0) throw FileError("x.gz", 0, "more than the limit", "fewer", "Raise it.");
      return count;
    }
    std::unique_ptr<ByteSource> bytes;
  };
  Diagnostics notices;
  ObservationReader reader(std::make_unique<Failing>(text), "x.gz", notices);
  ObsEpoch_QC_gbt epoch;
  int epochs = 0;
  while (reader.Next(epoch)) ++epochs;
  EXPECT_GE(epochs, 49);
  ASSERT_TRUE(reader.Failure());
  EXPECT_EQ(reader.Failure()->Found(), "more than the limit");
}

}  // namespace
}  // namespace orsolva_host
