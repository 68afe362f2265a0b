// Stations over simulated streams: hours as qc judges them, however their bytes come.
#include "host/live/stations/station_judge.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/judging/judge_file.h"
#include "host/live/windows/minute_store.h"
#include "host/report/json_writer.h"
#include "tests/live/core/judged_stream.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;

using namespace orsolva_test;

/// The report as JSON without what names the file and the part of it.
nlohmann::json FiguresOf(nlohmann::json report) {
  for (const char* key : {"observation_file", "navigation_files", "stream", "selection"})
    report["run"].erase(key);
  report.erase("notices");
  return report;
}

TEST(Station, AQuietHourRaisesNothingAndIsThatOfQcToTheBit) {
  const TestFolder folder;
  const std::string stream = StreamOf(Short(1), folder / "data");
  StationSettings settings;
  settings.reports_folder = folder / "reports";
  Judged judged;
  JudgeStream(stream, settings, nullptr, judged);
  EXPECT_EQ(judged.Raised(), 0) << judged.Text();
  EXPECT_EQ(judged.state->epochs_total, 3600U);
  EXPECT_EQ(judged.state->epochs_lost_total, 0U);

  JudgingSettings qc;
  qc.position.source = PositionSource::kHeader;
  SharedNavigation none({}, {});
  Diagnostics diagnostics;
  const Report report = JudgeFile(stream, qc, none, diagnostics);
  const auto wanted = FiguresOf(nlohmann::json::parse(WriteJson(report)));
  const auto found = FiguresOf(nlohmann::json::parse(ReadAll(folder / "reports/SIMU_2020062500.json")));
  EXPECT_EQ(found, wanted);

  // The counts of the window are those of the report, signal by signal.
  const WindowSums& hour = judged.state->windows[1].sums;
  EXPECT_EQ(hour.epochs_present, 3600U);
  ASSERT_FALSE(report.analysis.figures.signals.empty());
  for (const analysis::SignalFigures& signal : report.analysis.figures.signals) {
    const SignalSums& sums = hour.signals.at({signal.system, NameOf(signal.code)});
    EXPECT_EQ(sums.observed, signal.cutoff.observed) << signal.system << NameOf(signal.code);
    EXPECT_NEAR(static_cast<double>(sums.expected), static_cast<double>(*signal.cutoff.expected),
                static_cast<double>(*signal.cutoff.expected) * 0.01);
    EXPECT_EQ(sums.multipath_values, signal.multipath.values) << signal.system << NameOf(signal.code);
    ASSERT_EQ(sums.MultipathM().has_value(), signal.multipath.moving_m.has_value());
    // Blocks are rounded to 1e-6 m^2, some thousand of them.
    if (sums.MultipathM()) {
      EXPECT_NEAR(*sums.MultipathM(), *signal.multipath.moving_m, 1e-6);
    }
  }
}

TEST(Station, HowBytesAreCutChangesNothing) {
  const TestFolder folder;
  const std::string bytes = ReadAll(StreamOf(Short(0.1), folder / "data"));
  std::vector<StationState> states;
  for (const std::size_t piece : {std::size_t{1}, std::size_t{700}, bytes.size()}) {
    LiveBoard board;
    StationSettings settings;
    settings.name = "SIMU";
    settings.start_gps_ns = 1593043200 * kSecond_ns;
    StationJudge judge(settings, "", true, board);
    judge.Connected(*settings.start_gps_ns);
    for (std::size_t at = 0; at < bytes.size(); at += piece)
      judge.Take(std::string_view(bytes).substr(at, piece), 0);
    judge.Finish(0);
    judge.Publish(0);
    states.push_back(*board.Station("SIMU"));
  }
  EXPECT_EQ(states[0].epochs_total, 360U);
  for (const StationState& state : states) {
    EXPECT_EQ(state.epochs_total, states[0].epochs_total);
    EXPECT_EQ(state.windows[1].sums, states[0].windows[1].sums);
  }
}

TEST(Station, EpochsThatACasterRepeatsAreNotJudgedTwice) {
  const TestFolder folder;
  const std::string bytes = ReadAll(StreamOf(Short(0.05), folder / "data"));
  LiveBoard board;
  StationSettings settings;
  settings.name = "SIMU";
  settings.start_gps_ns = 1593043200 * kSecond_ns;
  StationJudge judge(settings, "", true, board);
  judge.Connected(*settings.start_gps_ns);
  judge.Take(bytes, 0);
  const Count once = judge.Epochs();
  judge.Take(std::string_view(bytes).substr(bytes.size() / 2), 0);
  EXPECT_EQ(judge.Epochs(), once);
}

}  // namespace
