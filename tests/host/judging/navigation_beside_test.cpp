// Navigation that nobody named: which files next to the observations are used, and for which systems.
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "host/judging/shared_navigation.h"
#include "host/rinex/civil_time.h"
#include "tests/host/folder.h"
#include "tests/host/shared_data.h"

namespace {

using namespace orsolva_host;
using orsolva_test::Folder;
using orsolva_test::HeaderLine;

std::string Line(const std::string& head, int values) {
  std::string line = head;
  for (int i = 0; i < values; ++i) line += " 1.000000000000D+00";
  return line + "\n";
}

/// A RINEX 3 file with a record of each satellite.
std::string Records(const std::vector<std::string>& satellites) {
  std::string text = HeaderLine("     3.04           N: GNSS NAV DATA    M: MIXED", "RINEX VERSION / TYPE") +
                     HeaderLine("", "END OF HEADER");
  for (const std::string& satellite : satellites) {
    text += Line(satellite + " 2021 01 05 02 00 00", 3);
    for (int i = 0; i < (satellite[0] == 'R' ? 3 : 7); ++i) text += Line("    ", 4);
  }
  return text;
}

class NavigationBeside : public testing::Test {
 protected:
  void Put(const std::string& name, const std::vector<std::string>& satellites) {
    std::ofstream(folder_ / name) << Records(satellites);
  }
  std::shared_ptr<const ReadNavigation> Read(const std::string& systems) {
    const Time_gbt time = {DaysFromCivil(2021, 1, 5) * 86400 + 3600, 0.0};
    return ReadNavigationBeside({folder_ / "abcd0050.21o", time, time, systems, systems}, {});
  }
  std::vector<std::string> Files(const ReadNavigation& read) const {
    std::vector<std::string> names;
    for (const std::string& file : read.files) names.push_back(file.substr(folder_.Path().size() + 1));
    return names;
  }
  static std::string NoticeOf(const ReadNavigation& read, const std::string& file) {
    for (const Notice& n : read.notices.Notices()) {
      if (n.file.size() >= file.size() && n.file.substr(n.file.size() - file.size()) == file) return n.text;
    }
    return {};
  }

  Folder folder_;
};

using Names = std::vector<std::string>;

TEST_F(NavigationBeside, OfSingleSystemsIsMerged) {
  Put("abcd0050.21n", {"G01", "G02"});
  Put("abcd0050.21g", {"R01"});
  Put("abcd0050.21l", {"E01"});
  const auto read = Read("GRE");
  EXPECT_EQ(Files(*read), (Names{"abcd0050.21g", "abcd0050.21l", "abcd0050.21n"}));
  EXPECT_EQ(read->set.gps.size(), 2U);
  EXPECT_EQ(read->set.glonass.size(), 1U);
  EXPECT_EQ(read->set.galileo.size(), 1U);
  EXPECT_EQ(NoticeOf(*read, "abcd0050.21g"),
            "no navigation file is named; this one next to the observation file is used for GLONASS");
}

TEST_F(NavigationBeside, OfANetworkIsPreferredToThatOfTheStation) {
  Put("BRDC00IGS_R_20210050000_01D_MN.rnx", {"G01", "R01", "E01"});
  Put("abcd0050.21p", {"G01", "G09", "R09", "E09"});
  const auto read = Read("GRE");
  EXPECT_EQ(Files(*read), Names{"BRDC00IGS_R_20210050000_01D_MN.rnx"});
  EXPECT_EQ(read->set.gps.size(), 1U);
}

TEST_F(NavigationBeside, OfTheStationHasTheSystemsThatTheNetworksLacks) {
  Put("brdc0050.21n", {"G01"});
  Put("brdc0050.21g", {"R01"});
  Put("ABCD00XYZ_R_20210050000_01D_MN.rnx", {"G09", "E01", "C06"});
  const auto read = Read("GREC");
  EXPECT_EQ(read->set.gps.size(), 1U) << "those of the network";
  EXPECT_EQ(read->set.galileo.size(), 1U);
  EXPECT_EQ(read->set.bds.size(), 1U);
  EXPECT_EQ(NoticeOf(*read, "ABCD00XYZ_R_20210050000_01D_MN.rnx"),
            "no navigation file is named; this one next to the observation file is used for Galileo, BDS");
}

TEST_F(NavigationBeside, OfOtherStationsIsReadOnlyWhereASystemIsMissing) {
  Put("abcd0050.21n", {"G01"});
  Put("aaaa0050.21n", {"G02"});
  Put("bbbb0050.21l", {"E02"});
  EXPECT_EQ(Files(*Read("G")), Names{"abcd0050.21n"});
  const auto read = Read("GE");
  EXPECT_EQ(Files(*read), (Names{"abcd0050.21n", "bbbb0050.21l"}));
  EXPECT_EQ(read->set.gps.size(), 1U);
}

TEST_F(NavigationBeside, WithoutASystemSaysSo) {
  Put("abcd0050.21n", {"G01"});
  const auto read = Read("GRE");
  EXPECT_EQ(NoticeOf(*read, "abcd0050.21o"),
            "the navigation files next to the observation file hold no records of GLONASS, Galileo");
  EXPECT_EQ(NoticeOf(*Read("G"), "abcd0050.21o"), "");
}

TEST_F(NavigationBeside, ThatCannotBeReadIsPassedOver) {
  std::ofstream(folder_ / "brdc0050.21n") << "nothing\n";
  Put("abcd0050.21n", {"G01"});
  const auto read = Read("G");
  EXPECT_EQ(read->set.gps.size(), 1U);
  EXPECT_EQ(NoticeOf(*read, "brdc0050.21n").find("passed over"), 0U);
}

TEST_F(NavigationBeside, OfPreciseOrbitsIsNotTakenUnnamed) {
  std::ofstream(folder_ / "IGS0OPSFIN_20210050000_01D_15M_ORB.SP3") << "#dP2021  1  5\n";
  EXPECT_TRUE(Read("G")->files.empty());
}

}  // namespace
