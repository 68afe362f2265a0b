// Files of stations: every value has its range, and an error says where, what was found and what is allowed.
#include "host/cli/live_config.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "host/cli/config_file.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;

class StationsFile {
 public:
  explicit StationsFile(const std::string& text)
      : path_(testing::TempDir() + "orsolva_stations_" + std::to_string(getpid()) + ".toml") {
    std::ofstream(path_) << text;
  }
  ~StationsFile() { std::remove(path_.c_str()); }

  /// What was wrong, without the path; empty when nothing was.
  std::string Complaint() const {
    try {
      ServiceSettings service;
      AddStations(path_, {}, service);
      return {};
    } catch (const ConfigError& error) {
      const std::string text = error.what();
      EXPECT_EQ(text.rfind(path_ + ":", 0), 0U) << text;
      return text.substr(path_.size() + 1);
    }
  }
  ServiceSettings Read(ServiceSettings service = {}, const StationSettings& defaults = {}) const {
    AddStations(path_, defaults, service);
    return service;
  }

 private:
  std::string path_;
};

std::string ComplaintOf(const std::string& line) {
  return StationsFile("[[station]]\nsource = 'tcp://h:1'\n" + line + "\n").Complaint();
}

std::string ComplaintOfLimit(const std::string& limit) { return ComplaintOf("limits = { " + limit + " }"); }

TEST(StationsFile, SaysLineWhatWasFoundAndWhatIsAllowed) {
  EXPECT_EQ(ComplaintOf("elevation = 1000"),
            "3: elevation: found 1000, expected a number from 0 to 90 degrees");
  EXPECT_EQ(ComplaintOfLimit("completeness = 95"),
            "3: completeness: found 95, expected a number from 0 to 1");
  EXPECT_EQ(ComplaintOfLimit("snr_drop_s = 1e300"),
            "3: snr_drop_s: found 1e+300, expected a number from 1 to 3600 s");
  EXPECT_EQ(ComplaintOfLimit("gap_s = 'long'"),
            "3: gap_s: found \"long\", expected a number from 0.1 to 86400 s");
}

TEST(StationsFile, RefusesEveryLimitBeyondItsEndsAndTakesTheEnds) {
  for (const LimitField& field : LimitFields()) {
    const std::string key = field.key;
    const auto complaint = [&](double value) {
      // Both limits of latency, whose order is looked at too.
      const std::string other = key == "latency_warning_s" ? ", latency_bad_s = 3600"
                                : key == "latency_bad_s"   ? ", latency_warning_s = 0.1"
                                                           : "";
      return ComplaintOfLimit(key + " = " + std::to_string(value) + other);
    };
    EXPECT_EQ(complaint(field.least), "") << key;
    EXPECT_EQ(complaint(field.most), "") << key;
    EXPECT_NE(complaint(field.most * 1.1), "") << key;
    EXPECT_NE(complaint(-1), "") << key;
    for (const char* value : {"nan", "inf", "true", "[]", "2026-01-01"})
      EXPECT_NE(ComplaintOfLimit(key + " = " + value), "") << key << value;
    const bool may_be_zero = key == "completeness";
    EXPECT_EQ(complaint(0).empty(), may_be_zero) << key;
    // The default of every profile is in the range.
    for (const LimitsProfile& profile : LimitsProfiles()) {
      EXPECT_GE(profile.limits.*field.value, field.least) << key;
      EXPECT_LE(profile.limits.*field.value, field.most) << key;
    }
  }
}

TEST(StationsFile, RefusesLimitsOfLatencyInTheWrongOrder) {
  EXPECT_NE(ComplaintOfLimit("latency_warning_s = 6").find("at most latency_bad_s"), std::string::npos);
  EXPECT_EQ(ComplaintOfLimit("latency_warning_s = 6, latency_bad_s = 9"), "");
}

TEST(StationsFile, RefusesOtherNumbersBeyondTheirRange) {
  EXPECT_NE(ComplaintOf("speed = -1"), "");
  EXPECT_NE(ComplaintOf("speed = 1e9"), "");
  EXPECT_EQ(ComplaintOf("elevation = 90"), "");
  EXPECT_EQ(ComplaintOf("position = [3582105.29, 532589.73, 5232754.81]"), "");
  for (const char* position :
       {"[0, 0, 0]", "[1e300, 0, 0]", "[nan, 0, 6.4e6]", "[6.4e6, 0]", "['a', 0, 6.4e6]"})
    EXPECT_NE(ComplaintOf(std::string("position = ") + position), "") << position;
}

TEST(StationsFile, RefusesWhatAreNoMessageTypes) {
  EXPECT_EQ(ComplaintOfLimit("required_messages = ['1005|1006', '1077']"), "");
  EXPECT_EQ(ComplaintOfLimit("required_messages = ['abc']"),
            "3: required_messages: found \"abc\", expected a list of message types from 1 to 4095, such as "
            "\"1074|1077\"");
  for (const char* entry :
       {"''", "'0'", "'4096'", "'1074|'", "'|1074'", "'1074||1077'", "'1074 1077'", "1074"})
    EXPECT_NE(ComplaintOfLimit(std::string("required_messages = [") + entry + "]"), "") << entry;
}

TEST(StationsFile, RefusesNamesAndSourcesThatCannotBe) {
  EXPECT_NE(ComplaintOf("name = ''"), "");
  EXPECT_NE(ComplaintOf("name = \"a\\tb\""), "");
  EXPECT_EQ(ComplaintOf("name = '../a'"), "");
  EXPECT_EQ(ComplaintOf("nav = 'ntrip://me:secret@h'").find("secret"), std::string::npos);
  EXPECT_EQ(StationsFile("[[station]]\nsource = 'ntrip://me:secret@h'").Complaint().rfind("2: source: ", 0),
            0U);
  EXPECT_NE(ComplaintOf("nav = 'serial:/dev/ttyS0:12345'").find("115200"), std::string::npos);
}

TEST(StationsFile, APasswordThatIsNotThereIsAnError) {
  unsetenv("ORSOLVA_TEST_NO_PASSWORD");
  EXPECT_NE(ComplaintOf("password_env = 'ORSOLVA_TEST_NO_PASSWORD'").find("no variable"), std::string::npos);
  EXPECT_NE(ComplaintOf("password_env = 'PATH'\npassword_file = '/dev/null'").find("one of both"),
            std::string::npos);
}

TEST(StationsFile, FoldersOfTheCommandLineComeFirst) {
  const StationsFile file("state = 'own'\nreports = 'own'\n[[station]]\nsource = 'tcp://h:1'\n");
  StationSettings defaults;
  defaults.state_folder = "given";
  const StationSettings station = file.Read({}, defaults).stations.at(0);
  EXPECT_EQ(station.state_folder, "given");
  EXPECT_EQ(station.reports_folder, "own");
}

TEST(StationsFile, ThatIsNoneIsNamed) {
  ServiceSettings service;
  EXPECT_THROW(AddStations("/nonexistent/stations.toml", {}, service), ConfigError);
  EXPECT_THROW(AddStations("/dev/zero", {}, service), ConfigError);
  std::string deep;
  for (int i = 0; i < 300'000; ++i) deep += "a.";
  EXPECT_EQ(ComplaintOf(deep + "a = 1"), "3: a key of more than 100 parts");
}

}  // namespace
