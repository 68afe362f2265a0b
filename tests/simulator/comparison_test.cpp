// A report next to the truth: the figures of both are in one line, and files that do not belong together are
// refused.
#include "host/simulator/comparison.h"
#include "tests/support/json_reader.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using json = orsolva_test::Json;
using namespace orsolva_host;

json Report() {
  return json::parse(R"({
    "run": {"interval_s": 30.0, "elevation_cutoff_deg": 10.0, "epochs": 100,
      "first_epoch_gpst": "2020-06-25 00:00:00.000", "last_epoch_gpst": "2020-06-25 01:00:00.000"},
    "library": {"run": {"lost_epochs": 1}, "signals": [{"letter": "G", "signal": "1C", "mp_rms_m": 0.25}]},
    "analysis": {"solution_ecef_m": [3, 4, 0], "solution_to_header_m": 5.0,
      "systems": [{"letter": "G", "cutoff_expected_epochs": 200, "cutoff_observed_epochs": 150,
        "cutoff_completeness_ratio": 0.75, "sure_slips": 2, "unsure_slips": 0, "half_cycle_slips": 1,
        "phase_jumps": null}],
      "signals": [{"letter": "G", "signal": "1C", "cutoff_observed_epochs": 160, 
        "strength_mean_dbhz": 44.5, "sure_slips": 2, "unsure_slips": 0, "half_cycle_slips": 1,
        "phase_jumps": null}]}})");
}

json Signal(int above, double rms, double snr) {
  return {{"signal", "1C"},
          {"tracked_epochs", above},
          {"above_cutoff_epochs", above},
          {"code_error_less_moving_mean_rms_m", rms},
          {"snr_mean_dbhz", snr}};
}

json Satellite(const char* name, bool healthy, const json& signal) {
  return {{"satellite", name},
          {"healthy", healthy},
          {"above_cutoff_epochs", 100},
          {"signals", json::array({signal})}};
}

json Slip(const char* satellite, bool shows) {
  return {{"kind", "slip"},
          {"satellite", satellite},
          {"signal", "1C"},
          {"size", 2},
          {"duration_s", 0},
          {"shows_in_the_data", shows},
          {"time_gpst", "2020-06-25 00:30:00.000"}};
}

json TruthOf() {
  json truth = json::parse(R"({"scenario": "s", "seed": 1, "interval_s": 30.0, "cutoff_deg": 10.0,
    "first_epoch_gpst": "2020-06-25 00:00:00.000", "last_epoch_gpst": "2020-06-25 01:00:00.000",
    "delivered_epochs": 100, "missing_epochs": 1,
    "receiver": {"track": [{"position_ecef_m": [0, 0, 0]}], "header_position_ecef_m": [0, 0, 5]}})");
  truth["satellites"] = {Satellite("G01", true, Signal(30, 0.4, 40)),
                         Satellite("G02", true, Signal(10, 0.2, 44)),
                         Satellite("G03", false, Signal(99, 9, 99))};
  truth["faults"] = {Slip("G01", true), Slip("G02", false)};
  return truth;
}

std::string Compare(const json& report, const json& truth) {
  return ComparisonText({"r.json", report.dump()}, {"t.json", truth.dump()});
}

std::string LineOf(const std::string& text, const std::string& begin) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(begin, 0) == 0) return line;
  }
  return "";
}

TEST(Comparison, ASystemsFiguresStandBesideTheSumsOfItsHealthySatellites) {
  std::istringstream line(LineOf(Compare(Report(), TruthOf()), "GPS"));
  std::string system, completeness, truth_completeness;
  int expected, truth_expected, observed, truth_observed, slips, truth_slips;
  line >> system >> expected >> truth_expected >> observed >> truth_observed >> completeness >>
      truth_completeness >> slips >> truth_slips;
  EXPECT_EQ(expected, 200);
  EXPECT_EQ(truth_expected, 200);
  EXPECT_EQ(observed, 150);
  EXPECT_EQ(truth_observed, 40);
  EXPECT_EQ(completeness, "75.00");
  EXPECT_EQ(truth_completeness, "20.00");
  EXPECT_EQ(slips, 3);
  EXPECT_EQ(truth_slips, 1) << "a slip of a signal that was not tracked is none";
}

TEST(Comparison, SlipsFoundAndInjectedAreAddedUp) {
  EXPECT_EQ(LineOf(Compare(Report(), TruthOf()), "Cycle slips"), "Cycle slips found: 3, injected: 1");
}

TEST(Comparison, ASignalsTruthIsPooledByCounts) {
  std::istringstream line(LineOf(Compare(Report(), TruthOf()), "G 1C"));
  std::vector<std::string> cells;
  for (std::string cell; line >> cell;) cells.push_back(cell);
  // sqrt((30 * 0.4^2 + 10 * 0.2^2) / 40) = 0.3606; the strengths of an unhealthy satellite count as well:
  // (30 * 40 + 10 * 44 + 99 * 99) / 139 = 82.31
  const std::vector<std::string> wanted = {"G",     "1C",    "160",   "40", "0.250",
                                           "0.361", "44.50", "82.31", "3",  "1"};
  EXPECT_EQ(cells, wanted);
}

TEST(Comparison, AReportWithoutTheLibrarysFiguresIsCompared) {
  json report = Report();
  report.erase("library");
  const std::string text = Compare(report, TruthOf());
  EXPECT_NE(LineOf(text, "G 1C").find(" - "), std::string::npos) << text;
  EXPECT_NE(LineOf(text, "Epochs not in the file").find(" - "), std::string::npos) << text;
}

TEST(Comparison, RunAndFaultsAreListed) {
  const std::string text = Compare(Report(), TruthOf());
  EXPECT_NE(LineOf(text, "Epochs not in the file").find(" 1 "), std::string::npos);
  EXPECT_NE(LineOf(text, "Error of the position").find("5.000"), std::string::npos);
  EXPECT_NE(LineOf(text, "2020-06-25 00:30:00  slip             G01").find("1C"), std::string::npos);
  EXPECT_EQ(LineOf(text, "2020-06-25 00:30:00  slip             G02").back(), '*');
}

TEST(Comparison, LinesKeepTo80Columns) {
  json report = Report(), truth = TruthOf();
  report["analysis"]["systems"][0]["cutoff_expected_epochs"] =
      report["analysis"]["systems"][0]["cutoff_observed_epochs"] = 99999999;
  report["analysis"]["signals"][0]["cutoff_observed_epochs"] = 9999999;
  for (int i = 0; i < 100; ++i) truth["faults"].push_back(Slip("G01", true));
  std::istringstream lines(Compare(report, truth));
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_LT(count, 80) << "a long list of faults is cut";
}

TEST(Comparison, FilesThatDoNotBelongTogetherAreRefused) {
  const struct {
    const char* key;
    json value;
    const char* said;
  } cases[] = {{"interval_s", 1.0, "found interval 1.000, expected 30.000"},
               {"elevation_cutoff_deg", 15.0, "found elevation cut-off 15.000, expected 10.000"},
               {"first_epoch_gpst", "2020-06-25 00:00:30.000", "found first epoch"},
               {"last_epoch_gpst", "2020-06-26 01:00:00.000", "found last epoch"}};
  for (const auto& c : cases) {
    json report = Report();
    report["run"][c.key] = c.value;
    try {
      Compare(report, TruthOf());
      ADD_FAILURE() << c.key;
    } catch (const ComparisonError& error) {
      EXPECT_NE(std::string(error.what()).find(c.said), std::string::npos) << error.what();
    }
  }
}

TEST(Comparison, FilesOfAnotherKindAreNamed) {
  const json report = Report(), truth = TruthOf();
  const auto wrong = [](const std::string& a, const std::string& b) -> std::string {
    try {
      return ComparisonText({"r.json", a}, {"t.json", b});
    } catch (const ComparisonError& error) {
      return error.what();
    }
  };
  EXPECT_EQ(wrong("", truth.dump()).find("r.json: is not a report"), 0U);
  EXPECT_EQ(wrong(truth.dump(), truth.dump()).find("r.json: is not a report"), 0U);
  EXPECT_EQ(wrong(report.dump(), report.dump()).find("t.json: is not a truth.json"), 0U);
  EXPECT_EQ(wrong(report.dump(), "[1]").find("t.json: is not a truth.json"), 0U);
  json old_truth = truth;
  old_truth["satellites"][0]["signals"][0].erase("snr_mean_dbhz");
  EXPECT_NE(wrong(report.dump(), old_truth.dump()).find("snr_mean_dbhz"), std::string::npos);
}

}  // namespace
