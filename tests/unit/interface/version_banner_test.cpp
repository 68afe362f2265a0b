#include "interface/version_banner.h"

#include <gtest/gtest.h>

#include <cstring>
#include <regex>
#include <string>

#include "orsolva/gnssqc.h"

namespace {

TEST(VersionBanner, HasTheDocumentedText) {
  const std::string text = orsolva::QCVersion().Text;
  const std::regex banner(
      "library    name: libOrsolva_cbb\n"
      "library version: V1\\.2\\.9\n"
      "SVN     version: 4664\n"
      "build      date: [A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}");
  EXPECT_TRUE(std::regex_match(text, banner)) << text;
}

TEST(VersionBanner, Is115CharactersLong) { EXPECT_EQ(std::strlen(orsolva::QCVersion().Text), 115U); }

TEST(VersionBanner, LabelsKeepTheirBlanks) {
  const std::string text = orsolva::QCVersion().Text;
  EXPECT_NE(text.find("library    name: "), std::string::npos);
  EXPECT_NE(text.find("SVN     version: "), std::string::npos);
  EXPECT_NE(text.find("build      date: "), std::string::npos);
}

TEST(VersionBanner, EndsWithTheBuildTimeWithoutALineFeed) {
  const orsolva::QCVersion version;
  const std::string text = version.Text;
  const std::string time = version.BuildTime;
  EXPECT_EQ(text.substr(text.size() - time.size()), time);
  EXPECT_EQ(time.size(), 8U);
  EXPECT_EQ(std::string(version.BuildDate).size(), 11U);
}

TEST(VersionBanner, IsCopiedWithItsTerminatingZeroAndNothingMore) {
  char buffer[128];
  std::memset(buffer, '#', sizeof(buffer));
  EXPECT_EQ(GetGNSSQCLibVersion(buffer), buffer);
  EXPECT_STREQ(buffer, orsolva::QCVersion().Text);
  EXPECT_EQ(buffer[116], '#');
}

TEST(VersionBanner, ANullBufferGivesNull) { EXPECT_EQ(GetGNSSQCLibVersion(nullptr), nullptr); }

}  // namespace
