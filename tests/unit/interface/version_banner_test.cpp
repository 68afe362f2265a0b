#include "interface/version_banner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "orsolva/gnssqc.h"

namespace {

/// Whether a character is of the kind that A (capital), a (small), 9 (digit) or * (blank, 1, 2 or 3) stands
/// for, or is that character itself.
bool IsOfKind(char c, char kind) {
  switch (kind) {
    case 'A':
      return c >= 'A' && c <= 'Z';
    case 'a':
      return c >= 'a' && c <= 'z';
    case '9':
      return c >= '0' && c <= '9';
    case '*':
      return c == ' ' || (c >= '1' && c <= '3');
    default:
      return c == kind;
  }
}

bool HasForm(const std::string& text, const std::string& form) {
  return std::equal(text.begin(), text.end(), form.begin(), form.end(), IsOfKind);
}

TEST(VersionBanner, HasTheDocumentedText) {
  const std::string text = orsolva::QCVersion().Text;
  const std::string lines =
      "library    name: libOrsolva_cbb\n"
      "library version: V1.2.9\n"
      "SVN     version: 4664\n"
      "build      date: ";
  EXPECT_EQ(text.substr(0, lines.size()), lines);
  EXPECT_TRUE(HasForm(text.substr(lines.size()), "Aaa *9 9999 99:99:99")) << text;
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
