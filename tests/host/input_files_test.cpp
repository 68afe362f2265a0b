#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "host/rinex/civil_time.h"
#include "host/rinex/file_names.h"
#include "host/rinex/input_files.h"
#include "tests/host/shared_data.h"

namespace orsolva_host {
namespace {

using orsolva_test::HeaderLine;

TEST(FileNames, ShortNamesGiveStationDayAndKind) {
  const auto observation = ParseRinexName("zegv0010.21o");
  ASSERT_TRUE(observation);
  EXPECT_EQ(observation->station, "ZEGV");
  EXPECT_EQ(observation->day, DaysFromCivil(2021, 1, 1));
  EXPECT_EQ(observation->kind, FileKind::kObservation);
  EXPECT_EQ(WithoutCompressionSuffix("a.rnx.ZST"), "a.rnx");
  EXPECT_EQ(WithoutCompressionSuffix(".gz"), ".gz");
  EXPECT_EQ(ParseRinexName("SEPT078M.21P")->kind, FileKind::kNavigation);
  EXPECT_EQ(ParseRinexName("AJAC355a15.99D.Z")->day, DaysFromCivil(1999, 12, 21));
  for (const char* name : {"abcd3660.20n", "abcd3660.20g.gz", "abcd3660.20l", "abcd3660.20f.Z"}) {
    ASSERT_TRUE(ParseRinexName(name)) << name;
    EXPECT_EQ(ParseRinexName(name)->kind, FileKind::kNavigation) << name;
    EXPECT_EQ(ParseRinexName(name)->day, DaysFromCivil(2020, 12, 31)) << name;
  }
  EXPECT_EQ(ParseRinexName("abcd0010.20m")->kind, FileKind::kOther);
  EXPECT_EQ(ParseRinexName("abcd0010.20h")->kind, FileKind::kOther);
}

TEST(FileNames, LongNamesGiveStationDayAndKind) {
  const auto observation = ParseRinexName("ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz");
  ASSERT_TRUE(observation);
  EXPECT_EQ(observation->station, "ESBC00DNK");
  EXPECT_EQ(observation->day, DaysFromCivil(2020, 6, 25));
  EXPECT_EQ(observation->kind, FileKind::kObservation);
  EXPECT_EQ(observation->whole, "ESBC00DNK_R_20201770000_01D_30S_MO.CRX");
  EXPECT_EQ(ParseRinexName("KMS300DNK_R_20221591000_01H_MN.rnx.gz")->kind, FileKind::kNavigation);
  EXPECT_EQ(ParseRinexName("BRDC00IGS_R_20221590000_01D_RN.rnx")->kind, FileKind::kNavigation);
  EXPECT_EQ(ParseRinexName("BRDC00IGS_R_20221590000_01D_SN.rnx")->kind, FileKind::kOther);
  EXPECT_EQ(ParseRinexName("ESBC00DNK_R_20201770000_01D_30S_MM.rnx")->kind, FileKind::kOther);
}

TEST(FileNames, OtherNamesSayNothing) {
  for (const char* name :
       {"", "README.md", "a.21o", "zegv0000.21o", "zegv3670.21o", "zegvx010.21o", "zegv0010.2xo",
        "ESBC00DNK_R_2020177.rnx", "GRG0MGXFIN_20201770000_01D_15M_ORB.SP3.gz", "x.gz", ".Z"}) {
    EXPECT_FALSE(ParseRinexName(name)) << name;
  }
}

class InputFolder : public testing::Test {
 protected:
  void SetUp() override {
    path_ = std::filesystem::path(testing::TempDir()) /
            (std::string("orsolva_") + testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  void TearDown() override { std::filesystem::remove_all(path_); }

  std::string At(const std::string& name) const { return (path_ / name).string(); }
  void Put(const std::string& name, const std::string& text = "") const {
    std::ofstream(path_ / name, std::ios::binary) << text;
  }
  std::vector<std::string> Beside(const std::string& observation, int day) const {
    std::vector<std::string> names;
    const Time_gbt time = {DaysFromCivil(2021, 1, day) * 86400 + 3600, 0.0};
    for (const NavigationGroup& group : NavigationBeside(At(observation), time, time)) {
      for (const std::string& file : group) names.push_back(std::filesystem::path(file).filename().string());
      names.emplace_back("|");
    }
    if (!names.empty()) names.pop_back();
    return names;
  }

  std::filesystem::path path_;
};

using Names = std::vector<std::string>;

TEST_F(InputFolder, NavigationOfTheDayIsFoundInBothNameForms) {
  for (const char* name :
       {"abcd0050.21o", "abcd0050.21n", "abcd0050.21g.Z", "ABCD00XYZ_R_20210050000_01D_EN.rnx",
        "abcd0060.21n", "brdc0050.21n", "efgh0050.21n", "abcd0050.21h", "notes.txt"}) {
    Put(name);
  }
  EXPECT_EQ(Beside("abcd0050.21o", 5),
            (Names{"brdc0050.21n", "|", "abcd0050.21g.Z", "abcd0050.21n",
                   "ABCD00XYZ_R_20210050000_01D_EN.rnx", "|", "efgh0050.21n", "|", "abcd0060.21n"}));
}

TEST_F(InputFolder, BroadcastFilesOfANetworkComeBeforeThoseOfOtherStations) {
  for (const char* name : {"efgh0050.21n", "BRDC00IGS_R_20210050000_01D_MN.rnx.gz"}) Put(name);
  EXPECT_EQ(Beside("abcd0050.21o", 5), (Names{"BRDC00IGS_R_20210050000_01D_MN.rnx.gz", "|", "efgh0050.21n"}));
  std::filesystem::remove(path_ / "BRDC00IGS_R_20210050000_01D_MN.rnx.gz");
  Put("aaaa0050.21g");
  Put("aaaa0050.21n");
  EXPECT_EQ(Beside("abcd0050.21o", 5), (Names{"aaaa0050.21g", "aaaa0050.21n", "|", "efgh0050.21n"}));
}

TEST_F(InputFolder, TheNearestDayComesFirstAndFartherThanADayIsOfNoUse) {
  for (const char* name : {"abcd0040.21n", "brdc0050.21n", "abcd0090.21n"}) Put(name);
  EXPECT_EQ(Beside("abcd0050.21o", 5), (Names{"brdc0050.21n", "|", "abcd0040.21n"}));
  EXPECT_EQ(Beside("any_name.rnx", 4), (Names{"abcd0040.21n", "|", "brdc0050.21n"}));
  EXPECT_EQ(Beside("any_name.rnx", 3), (Names{"abcd0040.21n"}));
  EXPECT_TRUE(Beside("any_name.rnx", 7).empty());
}

TEST_F(InputFolder, EveryDayOfTheDataHasItsNavigation) {
  for (const char* name : {"brdc0040.21n", "brdc0050.21n", "brdc0060.21n", "brdc0070.21n"}) Put(name);
  const std::int64_t day = DaysFromCivil(2021, 1, 5) * 86400;
  const auto groups = NavigationBeside(At("abcd0050.21o"), {day, 0.0}, {day + 86400 + 60, 0.0});
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0], (Names{At("brdc0050.21n"), At("brdc0060.21n")}));
  EXPECT_EQ(groups[1], (Names{At("brdc0040.21n"), At("brdc0070.21n")}));
}

TEST_F(InputFolder, TwoCompressionsOfOneFileAreReadOnce) {
  for (const char* name : {"abcd0050.21n", "abcd0050.21n.gz", "ABCD0050.21N.Z"}) Put(name);
  EXPECT_EQ(Beside("abcd0050.21o", 5).size(), 1U);
}

TEST_F(InputFolder, StandardInputAndMissingFoldersHaveNothingBesideThem) {
  EXPECT_TRUE(NavigationBeside("-", {0, 0.0}, {0, 0.0}).empty());
  EXPECT_TRUE(NavigationBeside(At("missing/abcd0050.21o"), {0, 0.0}, {0, 0.0}).empty());
}

TEST_F(InputFolder, AFolderStandsForItsFilesByNameOrContent) {
  Put("abcd0050.21o");
  Put("abcd0050.21n");
  Put("odd.nav", HeaderLine("     3.04           N: GNSS NAV DATA    M", "RINEX VERSION / TYPE"));
  Put("odd.obs", HeaderLine("     3.04           OBSERVATION DATA    M", "RINEX VERSION / TYPE"));
  Put("odd.crx", HeaderLine("3.0", "CRINEX VERS   / TYPE"));
  Put("odd.txt", "hello\n");
  Put("empty");
  std::filesystem::create_directories(path_ / "deeper");
  Put("deeper/abcd0060.21n");
  const InputFiles files = SortInputs({path_.string()});
  EXPECT_EQ(files.observations, (Names{At("abcd0050.21o"), At("odd.crx"), At("odd.obs")}));
  EXPECT_EQ(files.navigation, (Names{At("abcd0050.21n"), At("odd.nav")}));
  EXPECT_EQ(files.others, (Names{At("empty"), At("odd.txt")}));
  EXPECT_EQ(NavigationFilesOf({"/a/named.one", path_.string()}),
            (Names{"/a/named.one", At("abcd0050.21n"), At("odd.nav")}));
}

TEST_F(InputFolder, AFolderWithoutNavigationIsAnError) {
  EXPECT_THROW(NavigationFilesOf({path_.string()}), FileError);
}

TEST_F(InputFolder, FilesNamedAloneAreNeverDroppedSilently) {
  const InputFiles files = SortInputs({At("missing.rnx"), At("abcd0050.21n")});
  EXPECT_EQ(files.observations, (Names{At("missing.rnx")}));
  EXPECT_EQ(files.navigation, (Names{At("abcd0050.21n")}));
}

}  // namespace
}  // namespace orsolva_host
