// The files of a simulation: names, contents, and that they are written atomically.
#include "host/simulator/file_set.h"

#include <gtest/gtest.h>

#include "host/output/byte_sink.h"
#include "host/output/whole_file.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/navigation_reader.h"
#include "host/rinex/observation_reader.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using orsolva_test::EpochsOf;
using orsolva_test::ScenarioOf;
using orsolva_test::TestFolder;

const SimulationProgress kSilent = [](std::uint64_t, std::uint64_t) {};

/// An hour in which signals come, go and slip.
Scenario Troubled() {
  Scenario s = ScenarioOf(1, 30);
  s.receiver.acquisition_s = 60;
  s.receiver.reacquisition_s = 60;
  for (const FaultKind kind : {FaultKind::kSlip, FaultKind::kOutage, FaultKind::kMissingEpoch,
                               FaultKind::kDuplicate, FaultKind::kLateTag, FaultKind::kLateDelivery}) {
    Fault fault;
    fault.kind = kind;
    fault.size = kind == FaultKind::kLateTag ? 0.25 : 7;
    fault.duration_s = kind == FaultKind::kOutage ? 120 : 0;
    fault.random = 4;
    s.faults.push_back(fault);
  }
  return s;
}

void ExpectReadsBack(const Scenario& scenario, const FileSetOptions& options) {
  const FileSet names = FileNames(scenario, options);
  Simulation simulation(scenario);
  Diagnostics diagnostics;
  ObservationReader reader(names.observations, diagnostics);
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  std::size_t count = 0;
  for (const ObsEpoch_QC_gbt& made : EpochsOf(simulation)) {
    if (made.sat_num == 0) continue;  // the reader skips epochs without satellites
    *epoch = {};
    ASSERT_TRUE(reader.Next(*epoch)) << count;
    ASSERT_EQ(epoch->time.time, made.time.time) << count;
    ASSERT_DOUBLE_EQ(epoch->time.sec, made.time.sec) << count;
    ASSERT_EQ(epoch->sat_num, made.sat_num) << count;
    for (std::uint32_t i = 0; i < made.sat_num; ++i) {
      ASSERT_EQ(epoch->sats[i].signal_num, made.sats[i].signal_num);
      for (std::uint32_t j = 0; j < made.sats[i].signal_num; ++j) {
        const Signal_QC_gbt& a = epoch->sats[i].signals[j];
        const Signal_QC_gbt& b = made.sats[i].signals[j];
        ASSERT_EQ(a.code, b.code);
        ASSERT_EQ(a.pseudorange, b.pseudorange);
        ASSERT_EQ(a.phase, b.phase);
        ASSERT_EQ(a.snr, b.snr);
      }
    }
    ++count;
  }
  EXPECT_FALSE(reader.Next(*epoch));
  // Duplicate and late epochs give a notice; nothing else does.
  for (const Notice& notice : diagnostics.Notices()) EXPECT_TRUE(notice.recovered) << notice.text;
}

/// The path with the separators of POSIX systems.
std::string Slashed(const std::string& path) { return std::filesystem::path(path).generic_string(); }

TEST(FileSet, NamesFollowTheRinexRules) {
  Scenario s = ScenarioOf(24, 30);
  const FileSetOptions plain{"out", false, false};
  EXPECT_EQ(Slashed(FileNames(s, plain).observations), "out/SIMU00ORS_R_20201770000_01D_30S_MO.rnx");
  EXPECT_EQ(Slashed(FileNames(s, plain).navigation), "out/SIMU00ORS_R_20201770000_01D_MN.rnx");
  EXPECT_EQ(Slashed(FileNames(s, plain).truth), "out/truth.json");
  EXPECT_EQ(Slashed(FileNames(s, {"out", true, true}).observations),
            "out/SIMU00ORS_R_20201770000_01D_30S_MO.crx.gz");
  s.hours = 6;
  s.interval_s = 0.1;
  EXPECT_EQ(Slashed(FileNames(s, plain).observations), "out/SIMU00ORS_R_20201770000_06H_10Z_MO.rnx");
  s.hours = 0.25;
  s.interval_s = 60;
  EXPECT_EQ(Slashed(FileNames(s, plain).observations), "out/SIMU00ORS_R_20201770000_15M_01M_MO.rnx");
}

TEST(FileSet, WhatIsWrittenReadsBackToTheSameNumbers) {
  const Scenario scenario = Troubled();
  for (const bool gzip : {false, true}) {
    for (const bool crinex : {false, true}) {
      const TestFolder folder("reads_back");
      const FileSetOptions options{folder.Path(), gzip, crinex};
      WriteFileSet(scenario, options, kSilent);
      ExpectReadsBack(scenario, options);
    }
  }
}

TEST(FileSet, NavigationReadsBackToTheSameRecords) {
  const TestFolder folder("navigation");
  const Scenario scenario = ScenarioOf(1, 60);
  const FileSetOptions options{folder.Path(), false, false};
  WriteFileSet(scenario, options, kSilent);
  Diagnostics diagnostics;
  NavigationReader reader(diagnostics);
  reader.Read(FileNames(scenario, options).navigation);
  const NavigationSet read = reader.Take();
  const Sky sky(scenario);
  const NavigationSet& made = sky.Navigation();
  const auto same = [](const auto& a, const auto& b) {
    return a.sqrtA == b.sqrtA && a.e == b.e && a.M0 == b.M0 && a.OMG0 == b.OMG0 && a.OMGd == b.OMGd &&
           a.i0 == b.i0 && a.idot == b.idot && a.omg == b.omg && a.deln == b.deln && a.cuc == b.cuc &&
           a.cus == b.cus && a.crc == b.crc && a.crs == b.crs && a.cic == b.cic && a.cis == b.cis &&
           a.af0 == b.af0 && a.af1 == b.af1 && a.af2 == b.af2 && a.toes == b.toes && a.week == b.week &&
           a.toc.time == b.toc.time && a.prn == b.prn && a.svh == b.svh;
  };
  const auto all = [&same](const auto& a, const auto& b) {
    return !a.empty() && a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), same);
  };
  EXPECT_TRUE(all(read.gps, made.gps));
  EXPECT_TRUE(all(read.qzss, made.qzss));
  EXPECT_TRUE(all(read.bds, made.bds));
  EXPECT_TRUE(all(read.galileo, made.galileo));
  ASSERT_EQ(read.glonass.size(), made.glonass.size());
  for (std::size_t i = 0; i < read.glonass.size(); ++i) {
    const GloEph_gbt& a = read.glonass[i];
    const GloEph_gbt& b = made.glonass[i];
    EXPECT_TRUE(a.prn == b.prn && a.toe.time == b.toe.time && a.frequency_channel == b.frequency_channel);
    EXPECT_TRUE(a.x == b.x && a.vy == b.vy && a.az == b.az && a.clock_bias == b.clock_bias &&
                a.clock_rate == b.clock_rate);
  }
  EXPECT_TRUE(diagnostics.Notices().empty());
}

TEST(FileSet, OnlyWholeFilesAreLeft) {
  const TestFolder folder("whole");
  WriteFileSet(ScenarioOf(0.1, 30), {folder.Path(), false, false}, kSilent);
  EXPECT_EQ(folder.Names().size(), 3U);
}

TEST(FileSet, AFailureLeavesTheFolderAsItWas) {
  const TestFolder folder("failure");
  const Scenario scenario = ScenarioOf(0.1, 30);
  orsolva_test::WriteText(folder.Path("truth.json"), "from before");
  const SimulationProgress stop = [](std::uint64_t done, std::uint64_t) {
    if (done == 5) throw WriteError("no more");
  };
  EXPECT_THROW(WriteFileSet(scenario, {folder.Path(), false, false}, stop), WriteError);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"truth.json"});
  EXPECT_EQ(orsolva_test::ReadText(folder.Path("truth.json")), "from before");
}

TEST(FileSet, AFolderThatCannotBeMadeIsAnError) {
  const TestFolder folder("no_folder");
  orsolva_test::WriteText(folder.Path("file"), "");
  EXPECT_THROW(WriteFileSet(ScenarioOf(0.1, 30), {folder.Path("file/below"), false, false}, kSilent),
               WriteError);
}

TEST(FileSet, ProgressCountsTheEpochsOfTheSpan) {
  const TestFolder folder("progress");
  std::uint64_t last = 0, whole = 0;
  WriteFileSet(ScenarioOf(0.1, 30), {folder.Path(), false, false}, [&](std::uint64_t done, std::uint64_t of) {
    EXPECT_GT(done, last);
    last = done;
    whole = of;
  });
  EXPECT_EQ(last, 12U);
  EXPECT_EQ(whole, 12U);
}

}  // namespace
