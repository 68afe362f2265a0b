#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "host/report/build_report.h"
#include "host/report/json_writer.h"
#include "host/report/library_figures.h"
#include "host/report/text_writer.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "tests/host/shared_data.h"
#include "tests/support/json_reader.h"

namespace orsolva_host {
namespace {

using json = orsolva_test::Json;

struct Records {
  std::unique_ptr<result_qct> result = std::make_unique<result_qct>();
  std::unique_ptr<total_code_qc_result> codes = std::make_unique<total_code_qc_result>();
  orsolva::RunFacts facts;
};

/// A run with GPS on two bands and nothing else.
Records OneSystem() {
  Records r;
  r.result->start_time = {1593043200, 0};
  r.result->end_time = {1593129570, 0};
  r.result->duration = 86370.0 / 3600;
  qc_core_summary& gps = r.result->sys[0];
  gps.system = 1;
  gps.expected_epochs = 1000;
  gps.observed_epochs = 987;
  gps.completeness = 0.987;
  gps.jump_epochs = 3;
  gps.obs_per_slip = 329;
  gps.mp[0] = 0.25;
  gps.snr[0] = 44.5;
  gps.snr_30[0][1] = 48;
  gps.snr[1] = 40;
  r.result->sat[0][3] = gps;
  r.result->sat_used[0][3] = 1;
  r.result->total = gps;
  code_qc_block& block = r.codes->sys[0];
  block.system = 1;
  block.count = 3;
  block.entries[0] = {};
  block.entries[0].code = 1;
  block.entries[0].expected_epochs = 1000;
  block.entries[0].observed_epochs = 987;
  block.entries[0].completeness = 0.987;
  block.entries[0].snr = 44.5;
  block.entries[0].snr_count = 987;
  block.entries[1] = block.entries[0];
  block.entries[1].code = 16;
  block.entries[1].snr = 39;
  block.entries[2] = block.entries[0];
  block.entries[2].code = 13;
  block.entries[2].snr = 40;
  r.facts.systems[0].combination.codes[0] = 1;
  r.facts.systems[0].combination.codes[1] = 13;
  r.facts.averaging_window_epochs = 10;
  r.facts.epochs = 2880;
  return r;
}

Report Built(const Records& r) {
  ReportRun run;
  run.observation_file = "station.rnx";
  run.interval_source = "header";
  run.position_source = "computed";
  run.interval_s = 30;
  return BuildReport(run, *r.result, *r.codes, r.facts);
}

TEST(ReportModel, NothingExpectedMeansNoData) {
  const Figures f = FiguresOf(qc_core_summary{}, 1);
  EXPECT_FALSE(f.expected);
  EXPECT_FALSE(f.observed);
  EXPECT_FALSE(f.completeness);
  EXPECT_FALSE(f.phase_geometry_slips);
  EXPECT_FALSE(f.mp_restarts);
  EXPECT_FALSE(f.obs_per_restart);
  EXPECT_TRUE(f.bands.empty());
}

TEST(ReportModel, ARealZeroIsAFigure) {
  qc_core_summary s = {};
  s.expected_epochs = 10;
  const Figures none = FiguresOf(s, 1);
  EXPECT_EQ(none.observed, Count{0});
  EXPECT_EQ(none.completeness, 0.0);
  EXPECT_FALSE(none.phase_geometry_slips);
  s.observed_epochs = 10;
  EXPECT_EQ(FiguresOf(s, 1).phase_geometry_slips, Count{0});
}

TEST(ReportModel, AMeanOrRmsOfZeroOrNotANumberIsNoData) {
  qc_core_summary s = {};
  s.mp[2] = 0.5;
  s.snr[2] = std::numeric_limits<double>::quiet_NaN();
  s.snr_30[2][0] = std::numeric_limits<double>::infinity();
  const Figures f = FiguresOf(s, 8);
  ASSERT_EQ(f.bands.size(), 1U);
  EXPECT_EQ(f.bands[0].band, "E5b");
  EXPECT_EQ(f.bands[0].mp_m, 0.5);
  EXPECT_FALSE(f.bands[0].snr_dbhz);
  EXPECT_FALSE(f.bands[0].snr_below30_dbhz);
}

TEST(ReportModel, SystemsWithoutDataAreLeftOut) {
  const Report report = Built(OneSystem());
  ASSERT_EQ(report.systems.size(), 1U);
  EXPECT_EQ(report.systems[0].name, "GPS");
  ASSERT_EQ(report.satellites.size(), 1U);
  EXPECT_EQ(report.satellites[0].name, "G04");
  EXPECT_EQ(report.satellites[0].state, "judged");
  EXPECT_EQ(report.signals.size(), 3U);
}

TEST(ReportModel, TheCombinationIsTheOneOfTheRun) {
  Records r = OneSystem();
  EXPECT_EQ(Built(r).systems[0].combination, (std::vector<std::string>{"1C", "2L"}));
  r.facts.systems[0].combination.codes[1] = 16;
  r.facts.systems[0].combination.mp_codes[1] = 13;
  r.facts.systems[0].combination.mp_codes[2] = 21;
  EXPECT_EQ(Built(r).systems[0].combination, (std::vector<std::string>{"1C", "2W", "5Q"}))
      << "a band without completeness is named by its multipath";
}

TEST(ReportModel, ASatelliteHasTheStateThatTheRunGaveIt) {
  using orsolva::SatelliteUse;
  Records r = OneSystem();
  const std::vector<std::pair<SatelliteUse, const char*>> states = {
      {SatelliteUse::kUsed, "judged"},
      {SatelliteUse::kExcluded, "excluded"},
      {SatelliteUse::kUnhealthy, "unhealthy"},
      {SatelliteUse::kNoRecord, "no_record"},
      {SatelliteUse::kNoElevation, "no_position"},
      {SatelliteUse::kBelowCutoff, "below_cutoff"}};
  for (const auto& [use, state] : states) {
    r.facts.satellites = {{1, 7, use, true, 0, {}}};
    EXPECT_EQ(Built(r).states.at("G07"), state);
  }
}

TEST(ReportModel, StatesOfSatellitesFollowTheUsableFlag) {
  Records r = OneSystem();
  r.result->sat[2][17] = r.result->sat[2][1] = r.result->sat[0][3];
  r.result->sat_used[5][17] = 4294967295U;
  r.result->sat_used[2][1] = 0;
  const Report report = Built(r);
  ASSERT_EQ(report.satellites.size(), 3U);
  EXPECT_EQ(report.satellites[1].name, "C02");
  EXPECT_EQ(report.satellites[1].state, "excluded");
  EXPECT_EQ(report.satellites[2].name, "C18");
  EXPECT_EQ(report.satellites[2].state, "unhealthy");
}

TEST(ReportModel, ATotalOfSystemsThatCountNothingHasNoObservedEpochs) {
  Records r = OneSystem();
  qc_core_summary galileo = {};
  galileo.expected_epochs = 500;
  r.result->sys[3] = r.result->total = galileo;
  r.result->sys[0] = {};
  r.codes->sys[0].count = 0;
  r.facts.systems[3].combination.mp_codes[2] = static_cast<std::uint8_t>(SignalNumber(kGalileo, "7Q", 3.05));
  const Report report = Built(r);
  ASSERT_EQ(report.systems.size(), 1U);
  EXPECT_EQ(report.library_total.expected, Count{500});
  EXPECT_FALSE(report.library_total.observed);
  EXPECT_FALSE(report.library_total.completeness);
  r.facts.systems[3].combination.mp_codes[2] = 0;
  EXPECT_EQ(Built(r).library_total.observed, Count{0}) << "counted, and never complete";
}

TEST(ReportModel, CountsBeyondTheEntriesAreNotRead) {
  Records r = OneSystem();
  r.codes->sys[0].count = 1000;
  EXPECT_LE(Built(r).signals.size(), 8U);
  r.codes->sys[0].count = -5;
  EXPECT_TRUE(Built(r).signals.empty());
}

TEST(ReportModel, JudgedEpochsAndTheWindowAreThoseOfTheRun) {
  Records r = OneSystem();
  r.facts.epochs = 2800;
  r.facts.averaging_window_epochs = 50;
  EXPECT_EQ(Built(r).run.judged_epochs, 2800U);
  EXPECT_EQ(Built(r).run.averaging_window_epochs, 50);
}

TEST(JsonWriter, WritesNullWithoutDataAndNeverNotANumber) {
  Records r = OneSystem();
  r.result->duration = std::numeric_limits<double>::quiet_NaN();
  r.result->station_xyz[0] = std::numeric_limits<double>::infinity();
  const json j = json::parse(WriteJson(Built(r)));
  EXPECT_TRUE(j["library"]["run"]["position_ecef_m"][0].is_null());
  EXPECT_TRUE(j["run"]["marker"].is_null());
  EXPECT_EQ(j["library"]["systems"][0]["completeness_ratio"], 0.987);
  EXPECT_TRUE(j["library"]["systems"][0]["bands"][0]["snr_mean_below_30deg_dbhz"].is_null());
  EXPECT_EQ(j["library"]["systems"][0]["bands"][0]["mp_rms_m"], 0.25);
  EXPECT_TRUE(j["library"]["signals"][0]["mp_rms_m"].is_null());
  EXPECT_FALSE(j["library"].contains("satellites"));
}

TEST(JsonWriter, SatellitesAreThereWhenAskedFor) {
  Report report = Built(OneSystem());
  report.show_satellites = true;
  const json j = json::parse(WriteJson(report));
  ASSERT_EQ(j["library"]["satellites"].size(), 1U);
  EXPECT_EQ(j["library"]["satellites"][0]["satellite"], "G04");
}

TEST(JsonWriter, TextThatIsNoUtf8StillGivesValidJson) {
  Report report = Built(OneSystem());
  report.run.marker = "A\xff\xfe\"\\B";
  report.notices.push_back({"f\x80.rnx", 3, "odd \x01", 2, false});
  const json j = json::parse(WriteJson(report));
  EXPECT_EQ(j["notices"][0]["line"], 3);
  EXPECT_EQ(j["notices"][0]["recovered"], false);
}

std::size_t LongestLine(const std::string& text) {
  std::istringstream lines(text);
  std::size_t longest = 0;
  for (std::string line; std::getline(lines, line);) longest = std::max(longest, line.size());
  return longest;
}

TEST(TextWriter, KeepsTo80ColumnsWhateverTheNames) {
  Report report = Built(OneSystem());
  report.show_satellites = true;
  report.run.observation_file = std::string(300, 'x');
  report.run.marker = std::string(100, 'm');
  report.run.excluded.assign(60, "G04");
  report.notices.push_back(
      {std::string(200, 'f'), 123456, "a notice that is long enough to need a second line", 7, false});
  report.systems[0].combination = {"1C|1L|1X|1W", "2W|2L|2X", "5Q|5X"};
  EXPECT_LE(LongestLine(WriteText(report)), 80U);
}

TEST(TextWriter, WritesADashWithoutData) {
  const std::string text = WriteText(Built(OneSystem()));
  EXPECT_NE(text.find("GPS         1C+2L               1000      987   98.70        0    3     329\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("GPS      L2                  -     40.00           -           -             -\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("nan"), std::string::npos);
}

template <typename Record>
void LoadCompressed(const std::string& path, Record& record) {
  gzFile file = gzopen(path.c_str(), "rb");
  ASSERT_EQ(gzread(file, &record, sizeof record), static_cast<int>(sizeof record));
  gzclose(file);
}

TEST(RealReport, AStationDayFitsAndSaysWhatGalileoLacks) {
  const std::string folder = (orsolva_test::SharedFolder() / "reference/whole-station-day/").string();
  ORSOLVA_NEED_FILE(folder + "result_1.bin.gz");
  Records r;
  LoadCompressed(folder + "result_1.bin.gz", *r.result);
  LoadCompressed(folder + "codes_1.bin.gz", *r.codes);
  const auto code = [](int system, const char* name) {
    return static_cast<std::uint8_t>(SignalNumber(system, name, 3.05));
  };
  r.facts.systems[3].combination.codes[0] = code(kGalileo, "1C");
  r.facts.systems[3].combination.mp_codes[2] = code(kGalileo, "7Q");
  Report report = Built(r);
  report.show_satellites = true;
  const std::string text = WriteText(report);
  EXPECT_LE(LongestLine(text), 80U);
  ASSERT_EQ(report.systems.size(), 4U);
  EXPECT_EQ(report.systems[3].combination, (std::vector<std::string>{"1C", "7Q"}));
  EXPECT_FALSE(report.systems[3].figures.completeness);
  EXPECT_NE(text.find("completeness and SNR channel"), std::string::npos);
  EXPECT_TRUE(json::accept(WriteJson(report)));
}

}  // namespace
}  // namespace orsolva_host
