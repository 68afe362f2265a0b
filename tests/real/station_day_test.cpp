// Real station files through the command, from file to JSON.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/json_reader.h"
#include "tests/support/shared_folder.h"

namespace orsolva_test {
namespace {

struct Outcome {
  int ExitCode = -1;
  Json Report;
};

/// Runs `orsolva qc --json` and parses what it prints.
Outcome Judge(const std::string& arguments) {
  const std::string command = std::string(ORSOLVA_PROGRAM) + " qc --json " + arguments + " 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string text;
  std::array<char, 65536> part;
  for (std::size_t n; (n = fread(part.data(), 1, part.size(), pipe)) > 0;) text.append(part.data(), n);
  const int status = pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Json::accept(text) ? Json::parse(text) : Json()};
}

std::string Data(const std::string& name) { return (SharedFolder() / "data" / name).string(); }

/// Every multipath RMS and mean SNR of the systems that is not null.
void ExpectSaneBands(const Json& report) {
  int bands_with_data = 0;
  for (const auto& system : report.at("library").at("systems")) {
    for (const auto& band : system.at("bands")) {
      if (const auto& mp = band.at("mp_rms_m"); !mp.is_null()) {
        ++bands_with_data;
        EXPECT_GT(mp.get<double>(), 0.05) << system.at("name") << band.dump();
        EXPECT_LT(mp.get<double>(), 1.5) << system.at("name") << band.dump();
      }
      if (const auto& snr = band.at("snr_mean_dbhz"); !snr.is_null()) {
        EXPECT_GT(snr.get<double>(), 25.0) << system.at("name") << band.dump();
        EXPECT_LT(snr.get<double>(), 60.0) << system.at("name") << band.dump();
      }
    }
  }
  EXPECT_GT(bands_with_data, 5);
}

TEST(StationDay, ReferenceStationIsJudgedWhole) {
  const std::string observations = Data("ESBC00DNK_R_20201770000_01D_30S_MO.crx.gz");
  if (!std::filesystem::exists(observations)) GTEST_SKIP() << "no file " << observations;
  const Outcome outcome = Judge(observations + " " + Data("ESBC00DNK_R_20201770000_01D_MN.rnx.gz"));
  ASSERT_EQ(outcome.ExitCode, 0);
  const Json& run = outcome.Report.at("run");
  EXPECT_EQ(run.at("epochs"), 2880);
  const Json& library = outcome.Report.at("library");
  EXPECT_EQ(library.at("run").at("lost_epochs"), 0);
  EXPECT_LT(library.at("run").at("distance_from_header_position_m").get<double>(), 5.0);
  const Json& gps = library.at("systems").at(0);
  ASSERT_EQ(gps.at("name"), "GPS");
  EXPECT_GT(gps.at("completeness_ratio").get<double>(), 0.95);
  ExpectSaneBands(outcome.Report);
}

TEST(StationDay, OneSecondStationWithQzssIsJudged) {
  const std::string observations = Data("SEPT078M.21O");
  if (!std::filesystem::exists(observations)) GTEST_SKIP() << "no file " << observations;
  const Outcome outcome = Judge(observations + " " + Data("SEPT078M.21P"));
  ASSERT_EQ(outcome.ExitCode, 0);
  EXPECT_GT(outcome.Report.at("run").at("epochs").get<int>(), 100);
}

TEST(StationDay, StartOfAnHourWithVersionFourNavigationIsJudged) {
  const std::string observations = Data("KMS300DNK_R_20221591000_01H_30S_MO.crx");
  if (!std::filesystem::exists(observations)) GTEST_SKIP() << "no file " << observations;
  const Outcome outcome = Judge(observations + " " + Data("KMS300DNK_R_20221591000_01H_MN.rnx.gz"));
  ASSERT_EQ(outcome.ExitCode, 0);
  EXPECT_EQ(outcome.Report.at("run").at("epochs"), 19);  // the file ends after nine minutes
}

}  // namespace
}  // namespace orsolva_test
