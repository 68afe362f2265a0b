#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>

#include "host/rinex/navigation_reader.h"
#include "tests/host/navigation_text.h"

namespace orsolva_host {
namespace {

using namespace orsolva_test::navigation;
using orsolva_test::DataFile;

TEST(NavigationVersion2, GpsRecordsHaveTheirValuesOneColumnFurtherLeft) {
  const ReadFile file(Header2("N: GPS NAV DATA") + Record2(" 5 20  6 25  2  0  0.0", 7, {{21, 2111}}) +
                      Record2("12 99 12 31 23 59 44.0", 7, {{21, 1042}}));
  ASSERT_EQ(file.set.gps.size(), 2U);
  const GpsEph_gbt& e = file.set.gps[0];
  EXPECT_EQ(e.prn, 5);
  EXPECT_EQ(e.toc.time, 1593050400);
  EXPECT_EQ(e.af2, 2);
  EXPECT_EQ(e.iode, 3);
  EXPECT_EQ(e.sqrtA, 10);
  EXPECT_EQ(e.idot, 19);
  EXPECT_EQ(e.svh, 24);
  EXPECT_EQ(file.set.gps[1].prn, 12);
  EXPECT_EQ(file.set.gps[1].toc.time, 946684784);
  EXPECT_EQ(file.notices.Total(), 0);
}

TEST(NavigationVersion2, GlonassRecordsKeepUtcAndClockSigns) {
  const ReadFile file(Header2("G: GLONASS NAV DATA") +
                      Record2(" 7 20  6 24 23 15  0.0", 3, {{0, 6.4e-5}, {1, -1e-12}, {6, 1}, {10, -7}}));
  ASSERT_EQ(file.set.glonass.size(), 1U);
  const GloEph_gbt& e = file.set.glonass[0];
  EXPECT_EQ(e.prn, 7);
  EXPECT_EQ(e.toe.time, 1593040500);
  EXPECT_EQ(e.clock_bias, 6.4e-5);
  EXPECT_EQ(e.clock_rate, -1e-12);
  EXPECT_EQ(e.frequency_channel, -7);
  EXPECT_EQ(e.az, 13);
}

TEST(NavigationVersion2, TheFileTypeOrTheLetterBesideItTellsTheSystem) {
  const std::string record = Record2(" 5 20  6 25  2  0  0.0", 7, {{20, 517}, {21, 2111}});
  EXPECT_EQ(ReadFile(Header2("E: GALILEO NAV DATA") + record).set.galileo.size(), 1U);
  EXPECT_EQ(ReadFile(Header2("L: GALILEO NAV DATA") + record).set.galileo.size(), 1U);
  EXPECT_EQ(ReadFile(Header2("N: GNSS NAV DATA", 'E') + record).set.galileo.size(), 1U);
  EXPECT_EQ(ReadFile(Header2("J: QZSS NAV DATA") + record).set.qzss.size(), 1U);
  EXPECT_EQ(ReadFile(Header2("N: GNSS NAV DATA", 'C') + record).set.bds.size(), 1U);
  const ReadFile geostationary(Header2("H: GEO NAV MSG DATA") + Record2("20 20  6 25  2  0  0.0", 3));
  EXPECT_EQ(geostationary.set.Size(), 0U);
  EXPECT_TRUE(geostationary.Said("system S"));
}

TEST(NavigationVersion2, MixedFilesMayHaveLettersWithEitherYear) {
  const ReadFile file(Header2("N: GNSS NAV DATA", 'M', "2.12") +
                      Record("G05 20  6 25  2  0  0.0", 7, {{21, 2111}}) +
                      Record("R 7 20  6 24 23 15  0.0", 3, {{10, 3}}) +
                      Record("E11 2020 06 25 02 00 00", 7, {{20, 517}, {21, 2111}}));
  ASSERT_EQ(file.set.gps.size(), 1U);
  EXPECT_EQ(file.set.gps[0].toc.time, 1593050400);
  EXPECT_EQ(file.set.gps[0].idot, 19);
  ASSERT_EQ(file.set.glonass.size(), 1U);
  EXPECT_EQ(file.set.glonass[0].frequency_channel, 3);
  ASSERT_EQ(file.set.galileo.size(), 1U);
  EXPECT_EQ(file.set.galileo[0].af1, 1);
  EXPECT_EQ(file.notices.Total(), 0);
}

TEST(NavigationVersion2, DamagedFirstLinesArePassedOver) {
  const ReadFile file(Header2("N: GPS NAV DATA") + Record2(" x 20  6 25  2  0  0.0", 7) +
                      Record2(" 5 20 13 25  2  0  0.0", 7) +
                      Record2(" 6 20  6 25  2  0  0.0", 7, {{21, 2111}}));
  ASSERT_EQ(file.set.gps.size(), 1U);
  EXPECT_EQ(file.set.gps[0].prn, 6);
  EXPECT_EQ(file.notices.Total(), 2);
}

/// The records of one system out of a RINEX 3 text, as RINEX 2 writes them: no letter, a year of two digits,
/// everything one column further left.
std::string AsVersion2(const std::string& text, char letter) {
  std::istringstream lines(text.substr(text.find("END OF HEADER") + 13));
  std::string out;
  bool taken = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.size() < 23) continue;
    if (line[0] == ' ') {
      if (taken) out += line.substr(1) + "\n";
      continue;
    }
    taken = line[0] == letter;
    if (!taken) continue;
    const auto pair = [&line](std::size_t column) {
      const std::string digits = line.substr(column, 2);
      return digits[0] == '0' ? " " + digits.substr(1) : digits;
    };
    out += pair(1) + " " + line.substr(6, 2) + " " + pair(9) + " " + pair(12) + " " + pair(15) + " " +
           pair(18) + " " + pair(21) + ".0" + line.substr(23) + "\n";
  }
  return out;
}

TEST(NavigationRealFiles, TheSameRecordsWrittenAsVersionTwoReadTheSame) {
  const std::string path = DataFile("ESBC00DNK_R_20201770000_01D_MN.rnx.gz");
  ORSOLVA_NEED_FILE(path);
  Diagnostics notices;
  std::string text;
  const auto source = OpenBytes(path, notices);
  char buffer[4096];
  for (std::size_t n = 0; (n = source->Read(buffer, sizeof buffer)) > 0;) text.append(buffer, n);
  const ReadFile whole(text);
  const ReadFile gps(Header2("N: GPS NAV DATA") + AsVersion2(text, 'G'));
  const ReadFile glonass(Header2("G: GLONASS NAV DATA") + AsVersion2(text, 'R'));
  ASSERT_EQ(gps.set.gps.size(), whole.set.gps.size());
  ASSERT_EQ(glonass.set.glonass.size(), whole.set.glonass.size());
  for (std::size_t i = 0; i < gps.set.gps.size(); ++i) {
    ASSERT_EQ(std::memcmp(&gps.set.gps[i], &whole.set.gps[i], sizeof(GpsEph_gbt)), 0) << i;
  }
  for (std::size_t i = 0; i < glonass.set.glonass.size(); ++i) {
    ASSERT_EQ(std::memcmp(&glonass.set.glonass[i], &whole.set.glonass[i], sizeof(GloEph_gbt)), 0) << i;
  }
}

}  // namespace
}  // namespace orsolva_host
