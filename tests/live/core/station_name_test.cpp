#include "host/live/station_name.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "host/live/live_service.h"

namespace {

using namespace orsolva_host::live;

TEST(StationName, FilesOfDifferentNamesDiffer) {
  std::set<std::string> files;
  const std::vector<std::string> names = {"A.B", "A_B",  "A/B", "A%2FB", "A B",
                                          "A%B", "A\\B", ".A",  "%2EA",  "A"};
  for (const std::string& name : names) EXPECT_TRUE(files.insert(FileNameOf(name)).second) << name;
  EXPECT_EQ(FileNameOf("ESBC00DNK.b-1_2"), "ESBC00DNK.b-1_2");
}

TEST(StationName, NoFileLeadsOutOfItsFolderOrHides) {
  for (const char* name : {"..", "../../etc/x", "/etc/x", "a/../b", ".hidden", "."}) {
    const std::string file = FileNameOf(name);
    EXPECT_EQ(file.find('/'), std::string::npos) << file;
    EXPECT_NE(file[0], '.') << file;
  }
  EXPECT_EQ(FileNameOf("../x"), "%2E.%2Fx");
}

TEST(StationName, TheLongestOneFitsIntoAFileName) {
  const std::string longest(kLongestName, '/');
  EXPECT_EQ(WrongWithName(longest), "");
  EXPECT_LE((".part-" + FileNameOf(longest + "-99") + "_2026112300.json").size(), 255U);
  EXPECT_NE(WrongWithName(longest + "x"), "");
}

TEST(StationName, ControlCharactersAndBytesThatAreNoUtf8AreRefusedOrReplaced) {
  EXPECT_EQ(WrongWithName("Zürich 1/2"), "");
  for (const char* name : {"", "a\nb", "a\x7f", "Z\xfcrich"}) EXPECT_NE(WrongWithName(name), "") << name;
  EXPECT_EQ(NameFrom("Zürich"), "Zürich");
  EXPECT_EQ(NameFrom("Z\xfcrich\n"), "Z_rich_");
  EXPECT_EQ(WrongWithName(NameFrom(std::string(kLongestName - 1, 'x') + "ü")), "");
}

ServiceSettings SettingsOf(const std::vector<StationSettings>& stations) {
  ServiceSettings settings;
  settings.stations = stations;
  return settings;
}

StationSettings StationOf(const std::string& name, const std::string& source) {
  StationSettings station;
  station.name = name;
  station.source = source;
  return station;
}

TEST(ServiceSettings, NamesAreMadeUniqueAndGivenOnesMustBe) {
  ServiceSettings settings = SettingsOf({StationOf("", "tcp://h:1"), StationOf("", "tcp://h:2")});
  EXPECT_EQ(Complete(settings), "");
  EXPECT_EQ(settings.stations[0].name, "h");
  EXPECT_EQ(settings.stations[1].name, "h-2");
  settings.stations[1].name = "h";
  EXPECT_NE(Complete(settings).find("two stations are named h"), std::string::npos);
}

TEST(ServiceSettings, AGivenNameComesFirstWhereverItIs) {
  ServiceSettings settings = SettingsOf({StationOf("", "tcp://h:1"), StationOf("h", "tcp://other:1")});
  EXPECT_EQ(Complete(settings), "");
  EXPECT_EQ(settings.stations[0].name, "h-2");
  EXPECT_EQ(settings.stations[1].name, "h");
}

TEST(ServiceSettings, ANameThatIsNotAllowedIsRefusedAndOneOfASourceMadeAllowed) {
  ServiceSettings settings = SettingsOf({StationOf("a\tb", "tcp://h:1")});
  EXPECT_NE(Complete(settings).find("control character"), std::string::npos);
  settings = SettingsOf({StationOf("", "recordings/a\tb.rtcm3")});
  EXPECT_EQ(Complete(settings), "");
  EXPECT_EQ(settings.stations[0].name, "a_b");
}

TEST(ServiceSettings, StandardInputIsOneSourceOnly) {
  ServiceSettings settings = SettingsOf({StationOf("A", "-"), StationOf("B", "tcp://h:1")});
  EXPECT_EQ(Complete(settings), "");
  settings.stations[1].navigation = "-";
  EXPECT_NE(Complete(settings).find("standard input"), std::string::npos);
}

}  // namespace
