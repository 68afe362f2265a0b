#include <gtest/gtest.h>

#include <string>

#include "host/rinex/navigation_reader.h"
#include "tests/host/navigation_text.h"

namespace orsolva_host {
namespace {

using namespace orsolva_test::navigation;
using orsolva_test::DataFile;
using orsolva_test::HeaderLine;

TEST(NavigationReader, GpsAndQzssRecordsHaveTheOrbitInItsPlaces) {
  const ReadFile file(Header() + Record("G05 2020 06 25 02 00 00", 7, {{24, 63}, {23, 2.8}}) +
                      Record("J10 2020 06 25 02 00 00", 7));
  ASSERT_EQ(file.set.gps.size(), 1U);
  ASSERT_EQ(file.set.qzss.size(), 1U);
  EXPECT_EQ(file.set.qzss[0].prn, 10);
  const GpsEph_gbt& e = file.set.gps[0];
  EXPECT_EQ(e.prn, 5);
  EXPECT_EQ(e.toc.time, 1593050400);
  const double kepler[] = {e.af0, e.af1,  e.af2,   static_cast<double>(e.iode),
                           e.crs, e.deln, e.M0,    e.cuc,
                           e.e,   e.cus,  e.sqrtA, e.toes,
                           e.cic, e.OMG0, e.cis,   e.i0,
                           e.crc, e.omg,  e.OMGd,  e.idot};
  for (int i = 0; i < 20; ++i) EXPECT_EQ(kepler[i], i);
  EXPECT_EQ(e.week, 21);
  EXPECT_EQ(e.ura, 2.8);
  EXPECT_EQ(e.svh, 63);
}

TEST(NavigationReader, GlonassRecordsKeepUtcClockSignsHealthAndChannel) {
  for (const int lines : {3, 4}) {
    const ReadFile file(
        Header() + Record("R07 2020 06 24 23 15 00", lines, {{0, 6.4e-5}, {1, -1e-12}, {6, 1}, {10, -7}}));
    ASSERT_EQ(file.set.glonass.size(), 1U);
    const GloEph_gbt& e = file.set.glonass[0];
    EXPECT_EQ(e.prn, 7);
    EXPECT_EQ(e.toe.time, 1593040500);
    EXPECT_EQ(e.clock_bias, 6.4e-5);
    EXPECT_EQ(e.clock_rate, -1e-12);
    EXPECT_EQ(e.svh, 1);
    EXPECT_EQ(e.frequency_channel, -7);
    EXPECT_EQ(e.x, 3);
    EXPECT_EQ(e.vx, 4);
    EXPECT_EQ(e.ax, 5);
    EXPECT_EQ(e.y, 7);
    EXPECT_EQ(e.vy, 8);
    EXPECT_EQ(e.ay, 9);
    EXPECT_EQ(e.z, 11);
    EXPECT_EQ(e.vz, 12);
    EXPECT_EQ(e.az, 13);
  }
}

TEST(NavigationReader, GlonassChannelsWrittenAsUnsignedBytesAreNegative) {
  const ReadFile file(Header() + Record("R07 2020 06 24 23 15 00", 3, {{10, 252}}));
  ASSERT_EQ(file.set.glonass.size(), 1U);
  EXPECT_EQ(file.set.glonass[0].frequency_channel, -4);
}

TEST(NavigationReader, BdsTimesWeeksAndDelaysStandAsTheFileGivesThem) {
  const ReadFile file(Header() +
                      Record("C05 2020 06 24 22 00 00", 7,
                             {{11, 338400}, {21, 755}, {23, 2.0}, {24, 1}, {25, 1e-10}, {26, -9.3e-9}}));
  ASSERT_EQ(file.set.bds.size(), 1U);
  const BdsEph_gbt& e = file.set.bds[0];
  EXPECT_EQ(e.toc.time, 1593036000);
  EXPECT_EQ(e.toes, 338400);
  EXPECT_EQ(e.week, 755);
  EXPECT_EQ(e.ura, 2.0);
  EXPECT_EQ(e.svh, 1);
  EXPECT_EQ(e.tgd1, 1e-10);
  EXPECT_EQ(e.tgd2, -9.3e-9);
  EXPECT_EQ(e.orbit_type, 0);
}

std::string Galileo(const std::string& time, double sources, double clock) {
  return Record("E11 2020 06 25 " + time, 7, {{0, clock}, {20, sources}, {21, 2111}, {24, 0}});
}

TEST(NavigationReader, GalileoInavIsPreferredOverFnavInEitherOrder) {
  constexpr double kFnav = 258;
  for (const double inav : {513.0, 516.0, 517.0}) {
    const ReadFile after(Header() + Galileo("02 00 00", kFnav, 0.5) + Galileo("02 00 00", inav, 0.25));
    const ReadFile before(Header() + Galileo("02 00 00", inav, 0.25) + Galileo("02 00 00", kFnav, 0.5));
    ASSERT_EQ(after.set.galileo.size(), 1U);
    ASSERT_EQ(before.set.galileo.size(), 1U);
    EXPECT_EQ(after.set.galileo[0].af0, 0.25);
    EXPECT_EQ(before.set.galileo[0].af0, 0.25);
    EXPECT_EQ(before.set.galileo[0].week, 2111);
  }
}

TEST(NavigationReader, GalileoFnavStaysWhereNoInavIsNear) {
  const ReadFile file(Header() + Galileo("02 00 00", 258, 0.5) + Galileo("12 00 00", 517, 0.25) +
                      Galileo("09 00 00", 258, 0.75));
  ASSERT_EQ(file.set.galileo.size(), 2U);
  EXPECT_EQ(file.set.galileo[0].af0, 0.5);
  EXPECT_EQ(file.set.galileo[1].af0, 0.25);
}

TEST(NavigationReader, BlankFieldsAreZero) {
  std::string record = Record("G05 2020 06 25 02 00 00", 7);
  record.replace(record.find(Value(5)), 19, std::string(19, ' '));
  const ReadFile file(Header() + record);
  ASSERT_EQ(file.set.gps.size(), 1U);
  EXPECT_EQ(file.set.gps[0].deln, 0.0);
}

TEST(NavigationReader, ExponentsMayBeWrittenWithD) {
  std::string record = Record("G05 2020 06 25 02 00 00", 7, {{8, 0.012345}});
  for (char& c : record) c = c == 'E' ? 'D' : c;
  const ReadFile file(Header() + record);
  ASSERT_EQ(file.set.gps.size(), 1U);
  EXPECT_EQ(file.set.gps[0].e, 0.012345);
}

TEST(NavigationReader, RecordsThatStandTwiceAreTakenOnce) {
  const std::string record = Record("G05 2020 06 25 02 00 00", 7);
  const ReadFile file(Header() + record + record + Record("G05 2020 06 25 02 00 00", 7, {{3, 99}}));
  EXPECT_EQ(file.set.gps.size(), 2U);
  EXPECT_TRUE(file.Said("duplicate records"));
}

TEST(NavigationReader, OtherSystemsAndNumbersAreCountedAndLeftOut) {
  const ReadFile file(Header() + Record("S20 2020 06 25 02 00 00", 3) + Record("I02 2020 06 25 02 00 00", 7) +
                      Record("G36 2020 06 25 02 00 00", 7) + Record("G05 2020 06 25 02 00 00", 7));
  EXPECT_EQ(file.set.Size(), 1U);
  EXPECT_TRUE(file.Said("system S"));
  EXPECT_TRUE(file.Said("system I"));
  EXPECT_TRUE(file.Said("G36"));
  EXPECT_EQ(file.notices.Total(), 3);
}

TEST(NavigationReader, DamagedRecordsArePassedOverAndTheOthersKept) {
  std::string bad_value = Record("G06 2020 06 25 02 00 00", 7);
  bad_value.replace(bad_value.find(Value(9)), 19, "  not a number      ");
  const ReadFile file(
      Header() + Record("G05 2020 06 25 02 00 00", 4) + bad_value + Record("G07 2020 99 25 02 00 00", 7) +
      Record("G08 2020 06 25 02 00 00", 7, {{21, 1e300}}) + Record("G09 2020 06 25 02 00 00", 7));
  ASSERT_EQ(file.set.gps.size(), 1U);
  EXPECT_EQ(file.set.gps[0].prn, 9);
  EXPECT_TRUE(file.Said("too few lines"));
  EXPECT_TRUE(file.Said("not a number"));
  EXPECT_TRUE(file.Said("unreadable first line"));
  EXPECT_TRUE(file.Said("out of range"));
  EXPECT_EQ(file.notices.Total(), 4);
}

TEST(NavigationReader, OfVersionFourTheBroadcastOrbitsAreTakenAndTheRestCounted) {
  const ReadFile file(Header("4.00") + "> EPH G02 LNAV\n" + Record("G02 2022 06 08 10 00 00", 7) +
                      "> EPH G02 CNAV\n" + Record("G02 2022 06 08 11 00 00", 8) + "> ION G29 LNAV\n" +
                      "    2022 06 08 09 59 48 1.024454832077E-08\n    -1.192092895508E-07\n" +
                      "> EPH R03 FDMA\n" + Record("R03 2022 06 08 09 45 00", 4, {{10, 5}}) +
                      "> EPH E03 INAV\n" + Record("E03 2022 06 08 09 40 00", 7, {{20, 0}, {0, 0.25}}) +
                      "> EPH E03 FNAV\n" + Record("E03 2022 06 08 09 40 00", 7, {{20, 0}, {0, 0.5}}) +
                      "> EPH C05 D2\n" + Record("C05 2022 06 08 09 00 00", 7) + "> EPH C06 D1\n" +
                      Record("C06 2022 06 08 09 00 00", 7) + "> EPH J02 LNAV\n" +
                      Record("J02 2022 06 08 09 00 00", 7));
  EXPECT_EQ(file.set.gps.size(), 1U);
  EXPECT_EQ(file.set.glonass.size(), 1U);
  EXPECT_EQ(file.set.bds.size(), 2U);
  ASSERT_EQ(file.set.galileo.size(), 1U);
  EXPECT_EQ(file.set.galileo[0].af0, 0.25);
  EXPECT_EQ(file.set.qzss.size(), 1U);
  EXPECT_EQ(file.notices.Total(), 2);
}

TEST(NavigationReader, WeeksCountedFromALaterBeginningAreMadeWhole) {
  const auto week_of = [](double week, const char* satellite) {
    const ReadFile file(Header() +
                        Record(std::string(satellite) + " 2020 06 25 02 00 00", 7, {{20, 517}, {21, week}}));
    return file.set.gps.empty() ? file.set.galileo.at(0).week : file.set.gps[0].week;
  };
  EXPECT_EQ(week_of(2111, "G05"), 2111);
  EXPECT_EQ(week_of(2111 - 2048, "G05"), 2111);
  EXPECT_EQ(week_of(2111 - 1024, "E05"), 2111);
  EXPECT_EQ(week_of(2112 - 1024, "G05"), 2112);
  EXPECT_EQ(week_of(2000, "G05"), 2000);
  EXPECT_TRUE(ReadFile(Header() + Record("G05 2020 06 25 02 00 00", 7, {{21, 63}})).Said("rollover"));
}

TEST(NavigationReader, FilesThatWereJoinedAreReadOnAtTheirHeaders) {
  const ReadFile file(Header() + Record("G05 2020 06 25 02 00 00", 7) + HeaderLine("note", "COMMENT") +
                      Header2("N: GPS NAV DATA") + Record2(" 6 20  6 25  2  0  0.0", 7));
  ASSERT_EQ(file.set.gps.size(), 2U);
  EXPECT_EQ(file.set.gps[1].idot, 19);
  EXPECT_TRUE(file.Said("comments among the records"));
  EXPECT_TRUE(file.Said("second header"));
}

TEST(NavigationReader, LaterVersionsAreReadWithANotice) {
  const ReadFile file(Header("3.09") + Record("G05 2020 06 25 02 00 00", 7, {{21, 2111}}));
  EXPECT_EQ(file.set.gps.size(), 1U);
  EXPECT_TRUE(file.Said("newer than any supported"));
}

TEST(NavigationReader, MoreRecordsThanTheLimitAllowsAreRefused) {
  NavigationOptions options;
  options.limits.max_records = 2;
  Diagnostics notices;
  NavigationReader reader(notices, options);
  const std::string two =
      Header() + Record("G05 2020 06 25 02 00 00", 7) + Record("G06 2020 06 25 02 00 00", 7);
  reader.Read(TextBytes(two), "a");
  EXPECT_EQ(reader.Take().Size(), 2U);
  EXPECT_THROW(reader.Read(TextBytes(Header() + Record("G07 2020 06 25 02 00 00", 7)), "b"), FileError);
}

TEST(NavigationReader, FilesReadAreKnown) {
  Diagnostics notices;
  NavigationReader reader(notices);
  reader.Read(TextBytes(Header()), "a");
  reader.Read(TextBytes(Header()), "b");
  EXPECT_EQ(reader.Files(), (std::vector<std::string>{"a", "b"}));
}

TEST(NavigationReader, ErrorsNameTheFileAndWhatWasFound) {
  const auto found = [](const std::string& text) {
    try {
      const ReadFile file(text);
    } catch (const FileError& error) {
      EXPECT_EQ(error.File(), "test.nav");
      EXPECT_FALSE(error.Advice().empty());
      return error.Found();
    }
    return std::string("nothing");
  };
  EXPECT_NE(
      found(HeaderLine("     3.04           OBSERVATION DATA", "RINEX VERSION / TYPE")).find("OBSERVATION"),
      std::string::npos);
  EXPECT_NE(found(HeaderLine("     1.00           N", "RINEX VERSION / TYPE")).find("1.00"),
            std::string::npos);
  EXPECT_NE(found(HeaderLine("     2.11           O", "RINEX VERSION / TYPE")).find("O"), std::string::npos);
  EXPECT_NE(found("").find("empty"), std::string::npos);
  EXPECT_NE(found(HeaderLine("     3.04           N", "RINEX VERSION / TYPE")).find("END OF HEADER"),
            std::string::npos);
}

TEST(NavigationReader, TheBodyPointsAtTheRecordsAndIsNullWhereThereAreNone) {
  const ReadFile file(Header() + Record("G05 2020 06 25 02 00 00", 7));
  const NavBodyData_QC_gbt body = file.set.Body();
  EXPECT_EQ(body.gps_num, 1);
  EXPECT_EQ(body.gps_eph, file.set.gps.data());
  EXPECT_EQ(body.bds_num, 0);
  EXPECT_EQ(body.bds_eph, nullptr);
}

TEST(NavigationRealFiles, AreReadWithTheRecordsTheyHold) {
  struct Case {
    const char* name;
    std::size_t gps, glonass, bds, galileo, qzss;
  };
  const Case cases[] = {{"ESBC00DNK_R_20201770000_01D_MN.rnx.gz", 257, 510, 357, 821, 15},
                        {"SEPT078M.21P", 24, 0, 0, 96, 8},
                        {"KMS300DNK_R_20221591000_01H_MN.rnx.gz", 30, 24, 36, 55, 1}};
  for (const Case& c : cases) {
    const std::string path = DataFile(c.name);
    ORSOLVA_NEED_FILE(path);
    Diagnostics notices;
    NavigationReader reader(notices);
    reader.Read(path);
    const NavigationSet set = reader.Take();
    EXPECT_EQ(set.gps.size(), c.gps) << c.name;
    EXPECT_EQ(set.glonass.size(), c.glonass) << c.name;
    EXPECT_EQ(set.bds.size(), c.bds) << c.name;
    EXPECT_EQ(set.galileo.size(), c.galileo) << c.name;
    EXPECT_EQ(set.qzss.size(), c.qzss) << c.name;
    for (const Notice& n : notices.Notices()) EXPECT_TRUE(n.recovered) << c.name << ": " << n.text;
  }
}

}  // namespace
}  // namespace orsolva_host
