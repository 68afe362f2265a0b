#include "host/live/stations/ephemeris_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include <unistd.h>

#include "host/judging/run_error.h"
#include "host/simulator/file_set.h"
#include "host/simulator/scenario.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;
namespace fs = std::filesystem;

class EphemerisFileTest : public ::testing::Test {
 protected:
  EphemerisFileTest() { fs::create_directories(folder_); }
  ~EphemerisFileTest() override { fs::remove_all(folder_); }

  fs::path folder_ = fs::path(testing::TempDir()) / ("orsolva-ephemerides-" + std::to_string(getpid()));
};

TEST_F(EphemerisFileTest, ANavigationFileHoldsWhatTheStreamSends) {
  Scenario scenario;
  scenario.systems = "GRECJ";
  scenario.hours = 0.05;
  const FileSetOptions options = {folder_.string(), false, false, 7};
  WriteFileSet(scenario, options, [](std::uint64_t, std::uint64_t) {});
  const FileSet names = FileNames(scenario, options);
  const std::int64_t near_ns = scenario.start.time * 1'000'000'000;
  const FileEphemerides stream = ReadEphemerides(names.stream, near_ns);
  const FileEphemerides file = ReadEphemerides(names.navigation, near_ns);
  ASSERT_GT(stream.messages.size(), 40U);
  // Of each satellite the file has more records than a short stream; every one of the stream is among them.
  std::map<char, int> found;
  for (const KeplerRecord& sent : stream.records.kepler) {
    const auto same =
        std::find_if(file.records.kepler.begin(), file.records.kepler.end(),
                     [&](const auto& r) { return r.satellite == sent.satellite && r.toe_s == sent.toe_s; });
    ASSERT_NE(same, file.records.kepler.end()) << sent.satellite.system << int{sent.satellite.number};
    EXPECT_NEAR(same->sqrt_a, sent.sqrt_a, 1e-5);
    ++found[sent.satellite.system];
  }
  for (const StateVectorRecord& sent : stream.records.state_vectors) {
    const auto same =
        std::find_if(file.records.state_vectors.begin(), file.records.state_vectors.end(),
                     [&](const auto& r) { return r.satellite == sent.satellite && r.toe_s == sent.toe_s; });
    ASSERT_NE(same, file.records.state_vectors.end()) << int{sent.satellite.number};
    EXPECT_EQ(same->channel, sent.channel);
    ++found['R'];
  }
  EXPECT_EQ(found.size(), scenario.systems.size());
  EXPECT_EQ(file.messages.size(), file.records.kepler.size() + file.records.state_vectors.size());
}

TEST(FileEphemerides, WhatIsOlderIsLeftOutMessageAndRecord) {
  FileEphemerides all;
  for (const double toe_s : {1000.0, 9000.0, 5000.0}) {
    KeplerRecord kepler = {};
    kepler.satellite = SatelliteId{'G', 3};
    kepler.toe_s = toe_s;
    all.messages.push_back(rtcm::MessageOf(kepler, 1019));
    all.records.kepler.push_back(kepler);
    StateVectorRecord vector = {};
    vector.satellite = SatelliteId{'R', 4};
    vector.toe_s = toe_s + 1;
    all.messages.push_back(rtcm::MessageOf(vector));
    all.records.state_vectors.push_back(vector);
  }
  const FileEphemerides kept = Since(all, 5000.5);
  ASSERT_EQ(kept.messages.size(), 3U);
  EXPECT_EQ(kept.records.kepler.size(), 1U);
  EXPECT_EQ(kept.records.kepler[0].toe_s, 9000);
  ASSERT_EQ(kept.records.state_vectors.size(), 2U);
  EXPECT_EQ(kept.records.state_vectors[1].toe_s, 5001);
  EXPECT_FALSE(rtcm::IsStateVector(kept.messages[0]));
  EXPECT_TRUE(rtcm::IsStateVector(kept.messages[2]));
}

TEST_F(EphemerisFileTest, WhatHoldsNoneIsRefusedByName) {
  const std::string path = (folder_ / "note.txt").string();
  std::ofstream(path) << "no ephemerides here\n";
  try {
    ReadEphemerides(path, 0);
    FAIL();
  } catch (const RunError& error) {
    EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
  }
}

TEST_F(EphemerisFileTest, AFileIsChangedOncePerTimeItIsWritten) {
  const fs::path path = folder_ / "file";
  FileWatch watch(path.string());
  EXPECT_FALSE(watch.Changed());
  std::ofstream(path) << "1";
  EXPECT_FALSE(watch.Changed());
  EXPECT_FALSE(watch.Changed());
  fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(2));
  EXPECT_TRUE(watch.Changed());
  EXPECT_FALSE(watch.Changed());
  fs::remove(path);
  EXPECT_FALSE(watch.Changed());
}

}  // namespace
