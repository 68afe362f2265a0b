// Recordings of streams wherever a RINEX file may be named.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "tests/host/folder.h"
#include "tests/host/program.h"
#include "tests/support/json_reader.h"

namespace {

using orsolva_test::Answer;
using orsolva_test::Folder;
using orsolva_test::Orsolva;
using orsolva_test::ReadText;
using json = orsolva_test::Json;

class StreamCommand : public testing::Test {
 protected:
  void SetUp() override {
    const Answer made = Orsolva("simulate --hours 0.2 --systems GRE --rtcm 4 --output " + folder_.Path());
    ASSERT_EQ(made.code, 0) << made.err;
    std::filesystem::rename(folder_ / (std::string(kStem) + ".rtcm3"), folder_ / "stream");
  }
  std::string Stream() const { return folder_ / "stream"; }
  static json Judged(const std::string& arguments, const std::string& input = "/dev/null") {
    const Answer a = Orsolva("qc --no-config --quiet --json " + arguments, input);
    EXPECT_EQ(a.code, 0) << a.err;
    return json::parse(a.out);
  }

  static constexpr const char* kStem = "SIMU00ORS_R_20201770000_12M";
  Folder folder_;
};

TEST_F(StreamCommand, JudgesAFileAPipeAndACompressedFileAlike) {
  json file = Judged(Stream());
  EXPECT_EQ(file["run"]["navigation_files"][0], Stream());
  EXPECT_EQ(file["run"]["epochs"], 24);
  ASSERT_EQ(std::system(("gzip -k " + Stream()).c_str()), 0);
  json compressed = Judged(Stream() + ".gz"), piped = Judged("-", Stream());
  for (json* other : {&compressed, &piped}) {
    (*other)["run"]["observation_file"] = file["run"]["observation_file"];
    (*other)["run"]["navigation_files"] = file["run"]["navigation_files"];
    (*other)["notices"] = file["notices"];
    EXPECT_EQ(*other, file);
  }
}

TEST_F(StreamCommand, DamageCostsOnlyItself) {
  std::string bytes = ReadText(Stream());
  bytes[bytes.size() / 2] ^= 0x10;
  std::ofstream(folder_ / "damaged", std::ios::binary) << "leading text" << bytes << "\xd3";
  const json damaged = Judged(folder_ / "damaged");
  EXPECT_EQ(damaged["run"]["epochs"], 24);
  bool counted = false;
  for (const json& notice : damaged["notices"])
    counted = counted || notice["text"] == "frame with a wrong CRC";
  EXPECT_TRUE(counted);
}

TEST_F(StreamCommand, ReportShowsMessagesAndTheStepsOfMsm4) {
  const Answer a = Orsolva("qc --no-config " + Stream());
  EXPECT_EQ(a.code, 0) << a.err;
  for (const char* text : {"RTCM", "1074=24", "MSM4"}) {
    EXPECT_NE(a.out.find(text), std::string::npos) << text << a.out;
  }
}

TEST_F(StreamCommand, InspectListsWhatItHolds) {
  const Answer a = Orsolva("inspect " + Stream());
  EXPECT_EQ(a.code, 0) << a.err;
  for (const char* text :
       {"RTCM 3, ", "1074=24", "ORSOLVA SIMULATED", "Interval          30 s", " ephemerides"}) {
    EXPECT_NE(a.out.find(text), std::string::npos) << text << a.out;
  }
}

TEST(UbxCommand, JudgesAndInspectsARecordingCompressedAndFromAPipe) {
  const Folder folder;
  const Answer made = Orsolva("simulate --hours 0.2 --systems GRE --ubx --output " + folder.Path());
  ASSERT_EQ(made.code, 0) << made.err;
  const std::string path = folder / "SIMU00ORS_R_20201770000_12M.ubx";
  EXPECT_NE(made.out.find(path), std::string::npos);
  const std::string navigation = " --nav " + (folder / "SIMU00ORS_R_20201770000_12M_MN.rnx");
  ASSERT_EQ(std::system(("gzip -k " + path).c_str()), 0);
  for (const auto& [file, input] :
       {std::pair(path, std::string("/dev/null")), {path + ".gz", "/dev/null"}, {"-", path}}) {
    const Answer a = Orsolva("qc --no-config --quiet --json " + file + navigation, input);
    ASSERT_EQ(a.code, 0) << a.err;
    const json report = json::parse(a.out);
    EXPECT_EQ(report["run"]["epochs"], 24);
    EXPECT_EQ(report["run"]["stream"]["format"], "u-blox UBX");
    EXPECT_EQ(report["run"]["receiver"], "ORSOLVA SIMULATED");
  }
  const Answer inspected = Orsolva("inspect " + path);
  EXPECT_EQ(inspected.code, 0) << inspected.err;
  for (const char* text : {"u-blox UBX, 25 frames", "02-15=24", "Interval          30 s"}) {
    EXPECT_NE(inspected.out.find(text), std::string::npos) << text << inspected.out;
  }
}

TEST(SbfCommand, JudgesAndInspectsARecordingCompressedAndFromAPipe) {
  const Folder folder;
  const Answer made = Orsolva("simulate --hours 0.2 --systems GRE --sbf --output " + folder.Path());
  ASSERT_EQ(made.code, 0) << made.err;
  const std::string made_path = folder / "SIMU00ORS_R_20201770000_12M.sbf", path = folder / "recording";
  EXPECT_NE(made.out.find(made_path), std::string::npos);
  std::filesystem::rename(made_path, path);
  ASSERT_EQ(std::system(("gzip -k " + path).c_str()), 0);
  for (const auto& [file, input] :
       {std::pair(path, std::string("/dev/null")), {path + ".gz", "/dev/null"}, {"-", path}}) {
    const Answer a = Orsolva("qc --no-config --quiet --json " + file, input);
    ASSERT_EQ(a.code, 0) << a.err;
    const json report = json::parse(a.out);
    EXPECT_EQ(report["run"]["epochs"], 24);
    EXPECT_EQ(report["run"]["stream"]["format"], "Septentrio SBF");
    EXPECT_EQ(report["run"]["receiver"], "ORSOLVA SIMULATED");
    EXPECT_EQ(report["run"]["navigation_files"].size(), 1U);
  }
  const Answer inspected = Orsolva("inspect " + path);
  EXPECT_EQ(inspected.code, 0) << inspected.err;
  for (const char* text :
       {"Septentrio SBF, ", "4027=24", "5902=1", "Interval          30 s", " ephemerides"}) {
    EXPECT_NE(inspected.out.find(text), std::string::npos) << text << inspected.out;
  }
}

TEST(SbfCommand, DamageCostsOnlyItself) {
  const Folder folder;
  ASSERT_EQ(Orsolva("simulate --hours 0.2 --systems GRE --sbf --output " + folder.Path()).code, 0);
  std::string bytes = ReadText(folder / "SIMU00ORS_R_20201770000_12M.sbf");
  bytes[bytes.size() - 1000] ^= 0x10;
  std::ofstream(folder / "damaged", std::ios::binary) << "leading text" << bytes << "$@";
  const Answer a = Orsolva("qc --no-config --quiet --json " + (folder / "damaged"));
  ASSERT_EQ(a.code, 0) << a.err;
  const json report = json::parse(a.out);
  EXPECT_EQ(report["run"]["epochs"], 23);
  EXPECT_EQ(report["run"]["stream"]["crc_errors"], 1);
}

TEST(SbfCommand, ExcludesOtherRecordings) {
  EXPECT_EQ(Orsolva("simulate --sbf --rtcm 7 --output /nonexistent").code, 2);
  EXPECT_EQ(Orsolva("simulate --sbf --ubx --output /nonexistent").code, 2);
}

TEST(UbxCommand, ExcludesARtcmStream) {
  EXPECT_EQ(Orsolva("simulate --ubx --rtcm 7 --output /nonexistent").code, 2);
}

}  // namespace
