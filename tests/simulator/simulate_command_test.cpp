// The built program's commands around simulated data.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

#include "tests/simulator/made.h"
#include "tests/support/json_reader.h"

namespace {

using json = orsolva_test::Json;
using orsolva_test::ReadText;
using orsolva_test::TestFolder;

struct Answer {
  int code = -1;
  std::string out;
  std::string err;
};

Answer Orsolva(const TestFolder& folder, const std::string& arguments) {
  const std::string out = folder.Path("answer.out"), err = folder.Path("answer.err");
  const std::string command = "cd " + folder.Path() + " && " + std::string(ORSOLVA_PROGRAM) + " " +
                              arguments + " >" + out + " 2>" + err + " </dev/null";
  const int status = std::system(command.c_str());
  const Answer answer{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(out), ReadText(err)};
  std::filesystem::remove(out);
  std::filesystem::remove(err);
  return answer;
}

TEST(SimulateCommand, WritesThreeFilesAndNamesThem) {
  const TestFolder folder("simulate_three");
  const Answer a = Orsolva(folder, "simulate --hours 0.25 --output made");
  EXPECT_EQ(a.code, 0) << a.err;
  EXPECT_EQ(a.out,
            "made/SIMU00ORS_R_20201770000_15M_30S_MO.rnx\n"
            "made/SIMU00ORS_R_20201770000_15M_MN.rnx\n"
            "made/truth.json\n");
  EXPECT_EQ(a.err, "") << "progress belongs on a terminal only";
  const json truth = json::parse(ReadText(folder.Path("made/truth.json")));
  EXPECT_EQ(truth["delivered_epochs"], 30);
}

TEST(SimulateCommand, OptionsStandAboveTheScenario) {
  const TestFolder folder("simulate_options");
  orsolva_test::WriteText(folder.Path("s.json"),
                          R"({"seed": 3, "hours": 9, "systems": "R", "interval_s": 60})");
  const Answer a = Orsolva(folder,
                           "simulate --scenario s.json --seed 77 --start '2021-03-19 12:00:00' --hours 0.1 "
                           "--interval 1 --position 6378137,0,0 --systems GC --station ABCD00XYZ --cutoff 15 "
                           "--gzip --crinex");
  ASSERT_EQ(a.code, 0) << a.err;
  EXPECT_EQ(a.out.find("./ABCD00XYZ_R_20210781200_06M_01S_MO.crx.gz\n"), 0U) << a.out;
  const json truth = json::parse(ReadText(folder.Path("truth.json")));
  EXPECT_EQ(truth["seed"], 77);
  EXPECT_EQ(truth["systems"], "GC");
  EXPECT_EQ(truth["interval_s"], 1);
  EXPECT_EQ(truth["nominal_epochs"], 360);
  EXPECT_EQ(truth["first_epoch_gpst"], "2021-03-19 12:00:00.000");
  EXPECT_EQ(truth["receiver"]["track"][0]["position_ecef_m"], (json{6378137, 0, 0}));
}

TEST(SimulateCommand, FaultsOfAPresetJoinThoseOfTheScenario) {
  const TestFolder folder("simulate_faults");
  const Answer a = Orsolva(folder, "simulate --preset clock --faults slips --hours 1");
  ASSERT_EQ(a.code, 0) << a.err;
  EXPECT_GT(json::parse(ReadText(folder.Path("truth.json")))["faults"].size(), 60U);
}

TEST(SimulateCommand, FaultsAfterTheEndAreReported) {
  const TestFolder folder("simulate_late");
  const Answer a = Orsolva(folder, "simulate --preset gaps --hours 1");
  ASSERT_EQ(a.code, 0) << a.err;
  EXPECT_EQ(a.err, "orsolva: 3 faults begin after the end of the span and do not happen\n");
  orsolva_test::WriteText(
      folder.Path("late.json"),
      R"({"hours": 0.1, "faults": [{"kind": "outage", "satellite": "E", "duration_s": 60, "at_s": 3600}]})");
  const Answer one = Orsolva(folder, "simulate --scenario late.json");
  ASSERT_EQ(one.code, 0) << one.err;
  EXPECT_EQ(one.err, "orsolva: 1 fault begins after the end of the span and does not happen\n");
}

TEST(SimulateCommand, WrongOptionsAreTwoAndSayWhatIsExpected) {
  const TestFolder folder("simulate_wrong");
  orsolva_test::WriteText(folder.Path("s.json"), "{}");
  for (const char* wrong : {"--preset nosuch", "--faults nosuch", "--hours 0", "--interval 0.05",
                            "--interval x", "--seed -1", "--start then", "--position 1,2,3", "--position spp",
                            "--systems GX", "--station AB", "--cutoff 91", "--preset quiet --scenario s.json",
                            "--rtcm 4 --ubx", "--ubx --sbf", "--sbf --rtcm 7", "--nosuch", "stray"}) {
    const Answer a = Orsolva(folder, std::string("simulate ") + wrong);
    EXPECT_EQ(a.code, 2) << wrong;
    EXPECT_FALSE(a.err.empty()) << wrong;
    EXPECT_TRUE(a.out.empty()) << wrong;
  }
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"s.json"});
}

TEST(SimulateCommand, ABadScenarioFileIsOneAndNamed) {
  const TestFolder folder("simulate_bad");
  orsolva_test::WriteText(folder.Path("s.json"), R"({"faults": [{"kind": "slip", "size": "big"}]})");
  const Answer a = Orsolva(folder, "simulate --scenario s.json");
  EXPECT_EQ(a.code, 1);
  EXPECT_EQ(a.err, "orsolva: s.json: faults[0].size: found \"big\", expected a number\n");
  const Answer none = Orsolva(folder, "simulate --scenario none.json");
  EXPECT_EQ(none.code, 1);
  EXPECT_EQ(none.err.find("orsolva: none.json: "), 0U) << none.err;
}

TEST(SimulateCommand, AFolderThatCannotBeWrittenIsOne) {
  const TestFolder folder("simulate_folder");
  const Answer a = Orsolva(folder, "simulate --hours 0.1 --output /proc/nowhere");
  EXPECT_EQ(a.code, 1);
  EXPECT_NE(a.err.find("/proc/nowhere"), std::string::npos) << a.err;
}

TEST(SimulateCommand, PresetsAreListed) {
  const TestFolder folder("simulate_list");
  const Answer a = Orsolva(folder, "simulate --list-presets");
  EXPECT_EQ(a.code, 0);
  for (const char* name : {"quiet", "station-day", "slips", "storm", "gaps", "clock", "high-rate"}) {
    EXPECT_NE(("\n" + a.out).find(std::string("\n") + name + " "), std::string::npos) << name;
  }
  EXPECT_EQ(folder.Names().size(), 0U);
}

/// Leaves the files of a station-day and its report.json in the folder.
void JudgeStationDay(const TestFolder& folder, const std::string& simulation, const std::string& judging) {
  ASSERT_EQ(Orsolva(folder, "simulate --preset station-day " + simulation).code, 0);
  const Answer report = Orsolva(folder, "qc --no-config --json " + judging + " *_MO.rnx *_MN.rnx");
  ASSERT_EQ(report.code, 0) << report.err;
  orsolva_test::WriteText(folder.Path("report.json"), report.out);
}

TEST(CompareCommand, LaysTheReportOfASimulatedDayBesideItsTruth) {
  const TestFolder folder("compare");
  ASSERT_NO_FATAL_FAILURE(JudgeStationDay(folder, "--hours 3", ""));
  const Answer a = Orsolva(folder, "compare report.json truth.json");
  EXPECT_EQ(a.code, 0) << a.err;
  for (const char* system : {"GPS", "GLONASS", "BDS", "Galileo", "QZSS"}) {
    EXPECT_NE(a.out.find(std::string("\n") + system), std::string::npos) << system;
  }
  std::istringstream lines(a.out);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

TEST(CompareCommand, EverySlipAndJumpOfTheStationDayIsDetectedByItsDetailTable) {
  const TestFolder folder("compare_detail");
  ASSERT_NO_FATAL_FAILURE(JudgeStationDay(folder, "", "--detail detail.csv"));
  const Answer a = Orsolva(folder, "compare report.json truth.json --detail detail.csv");
  EXPECT_EQ(a.code, 0) << a.err;
  EXPECT_NE(a.out.find("\nDetected: 8 of 8 slips, 3 of 3 code jumps\n"), std::string::npos) << a.out;
}

TEST(CompareCommand, ADetailTableCutOffIsRefused) {
  const TestFolder folder("compare_cut");
  ASSERT_NO_FATAL_FAILURE(JudgeStationDay(folder, "--hours 1", "--detail d.csv.gz"));
  std::filesystem::resize_file(folder.Path("d.csv.gz"),
                               std::filesystem::file_size(folder.Path("d.csv.gz")) / 2);
  const Answer a = Orsolva(folder, "compare report.json truth.json --detail d.csv.gz");
  EXPECT_EQ(a.code, 1);
  EXPECT_EQ(a.err.find("orsolva: d.csv.gz: truncated compressed data"), 0U) << a.err;
}

TEST(CompareCommand, WhatCannotBeComparedIsOneAndWrongUsageIsTwo) {
  const TestFolder folder("compare_wrong");
  orsolva_test::WriteText(folder.Path("x.json"), "{}");
  const Answer none = Orsolva(folder, "compare none.json x.json");
  EXPECT_EQ(none.code, 1);
  EXPECT_EQ(none.err.find("orsolva: none.json: "), 0U) << none.err;
  EXPECT_EQ(Orsolva(folder, "compare x.json x.json").code, 1);
  EXPECT_EQ(Orsolva(folder, "compare x.json").code, 2);
  EXPECT_EQ(Orsolva(folder, "compare").code, 2);
}

}  // namespace
