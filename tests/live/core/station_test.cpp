// Stations over simulated streams of which the faults are known: hours as qc judges them, alarms in time, and
// none without a fault.
#include "host/live/stations/station_judge.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "host/formats/rtcm/reader.h"
#include "host/judging/judge_file.h"
#include "host/report/json_writer.h"
#include "host/simulator/file_set.h"
#include "host/simulator/scenario.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;

constexpr std::int64_t kSecond_ns = 1'000'000'000;
constexpr double kLeap_s = 18;  // GPS time minus UTC in 2020

/// A folder of its own, removed at the end.
class TestFolder {
 public:
  TestFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orsolva-live-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TestFolder() { std::filesystem::remove_all(path_); }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

std::string ReadAll(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Scenario Short(double hours) {
  Scenario scenario;
  scenario.systems = "GE";
  scenario.hours = hours;
  scenario.interval_s = 1;
  return scenario;
}

Fault FaultOf(FaultKind kind, double at_s, double duration_s, double size) {
  Fault fault;
  fault.kind = kind;
  fault.at_s = at_s;
  fault.duration_s = duration_s;
  fault.size = size;
  return fault;
}

std::string StreamOf(const Scenario& scenario, const std::string& folder) {
  const FileSetOptions options = {folder, false, false, 7};
  WriteFileSet(scenario, options, [](std::uint64_t, std::uint64_t) {});
  return FileNames(scenario, options).stream;
}

/// The times of the simulation are those of its first epoch.
std::int64_t StartOf(const std::string& stream) {
  Diagnostics unused;
  rtcm::Reader reader(OpenBytes(stream, unused), stream, unused);
  ObservationEpoch epoch;
  reader.Next(epoch);
  return epoch.time_ns;
}

struct Judged {
  LiveBoard board;
  std::vector<LiveEvent> events;
  std::shared_ptr<const StationState> state;
  std::int64_t start_ns = 0;

  /// Seconds from the start of the span to the first event of the kind.
  std::optional<double> At(const std::string& kind, const std::string& subject,
                           LiveEvent::State what = LiveEvent::State::kRaised) const {
    for (const LiveEvent& event : events) {
      if (event.kind == kind && event.subject == subject && event.state == what)
        return static_cast<double>(event.time_utc_ns - start_ns) / 1e9 + kLeap_s;
    }
    return std::nullopt;
  }
  int Raised() const {
    int raised = 0;
    for (const LiveEvent& event : events) raised += event.state == LiveEvent::State::kRaised ? 1 : 0;
    return raised;
  }
  std::string Text() const {
    std::string text;
    for (const LiveEvent& event : events) text += event.json + "\n";
    return text;
  }
};

/// Takes each frame's message at a time; gives what is sent instead.
using Change = std::function<std::string(const std::string& message, double at_s)>;

/// As qc does, which reads a file twice.
void UseAllEphemerides(const std::string& path, std::int64_t start_ns, StationJudge& judge) {
  Diagnostics unused;
  rtcm::ReaderOptions options;
  options.epochs = false;
  rtcm::Reader reader(OpenBytes(path, unused), path, unused, options);
  ObservationEpoch none;
  while (reader.Next(none)) continue;
  const auto messages = reader.TakeEphemerides();
  judge.UseEphemerides(messages, reader.TakeBroadcast(), start_ns);
}

void JudgeStream(const std::string& path, const StationSettings& wanted, const Change& change,
                 Judged& judged) {
  StationSettings settings = wanted;
  settings.name = "SIMU";
  judged.start_ns = StartOf(path);
  settings.start_gps_ns = judged.start_ns;
  StationJudge judge(settings, "simulated", true, judged.board);
  if (!change) UseAllEphemerides(path, judged.start_ns, judge);
  judge.Connected(judged.start_ns);
  rtcm::FrameScanner frames;
  frames.Append(ReadAll(path));
  while (const auto message = frames.Next()) {
    const std::int64_t latest_ns = judge.LatestEpoch().value_or(judged.start_ns);
    const std::string sent =
        change ? change(std::string(*message), static_cast<double>(latest_ns - judged.start_ns) / 1e9)
               : rtcm::FrameOf(*message);
    judge.Take(sent, judged.start_ns);
  }
  judge.Finish(judged.start_ns);
  judge.Publish(judged.start_ns);
  judged.events = judged.board.EventsAfter(0, 10'000);
  judged.state = judged.board.Station("SIMU");
}

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
  }
}

TEST(Station, EachFaultOfTheSkyRaisesItsAlarmInTimeAndNoOther) {
  const TestFolder folder;
  Scenario scenario = Short(1.2);
  Fault one_band = FaultOf(FaultKind::kSnrDrop, 2100, 60, 8);
  one_band.target.signal = "1C";
  Fault galileo = FaultOf(FaultKind::kOutage, 3000, 120, 0);
  galileo.target.system = 'E';
  scenario.faults = {FaultOf(FaultKind::kMissingEpoch, 1200, 60, 0),
                     FaultOf(FaultKind::kSnrDrop, 1800, 60, 8), one_band,
                     FaultOf(FaultKind::kSlip, 2500, 0, 10), galileo};
  Judged judged;
  JudgeStream(StreamOf(scenario, folder / "data"), {}, nullptr, judged);
  const auto raised = [&judged](const char* kind, const char* subject, double at_s, double within_s) {
    const auto found = judged.At(kind, subject);
    ASSERT_TRUE(found) << kind << " " << subject << "\n" << judged.Text();
    EXPECT_GE(*found, at_s) << kind;
    EXPECT_LE(*found, at_s + within_s) << kind;
    const auto cleared = judged.At(kind, subject, LiveEvent::State::kCleared);
    EXPECT_TRUE(cleared) << kind << " " << subject << "\n" << judged.Text();
  };
  raised("data_gap", "", 1200, 7);
  raised("snr_drop", "L1/E1/B1C", 1800, 11);
  raised("snr_drop", "L5/E5a/B2a", 1800, 11);
  raised("slip_burst", "", 2500, 7);
  raised("satellites_few", "E", 3000, 11);
  for (const LiveEvent& event : judged.events) {
    const bool known = event.kind == "data_gap" || event.kind == "snr_drop" || event.kind == "slip_burst" ||
                       event.kind == "satellites_few" || event.subject == "1097" ||
                       event.state == LiveEvent::State::kNote;
    EXPECT_TRUE(known) << event.json;
    const double at_s = static_cast<double>(event.time_utc_ns - judged.start_ns) / 1e9 + kLeap_s;
    if (event.kind == "snr_drop" && event.state == LiveEvent::State::kRaised && at_s > 2000) {
      EXPECT_EQ(event.subject, "L1/E1/B1C");
      EXPECT_NE(event.advice.find("interference"), std::string::npos) << event.json;
    }
  }
  EXPECT_EQ(judged.state->epochs_lost_total, 60U);
}

TEST(Station, EachFaultOfTheStreamRaisesItsAlarmInTimeAndNoOther) {
  const TestFolder folder;
  const std::string stream = StreamOf(Short(0.75), folder / "data");
  bool moved = false;
  const Change change = [&moved](const std::string& message, double at_s) {
    const int type = static_cast<int>(rtcm::BitReader(message).Unsigned(12));
    std::string frame = rtcm::FrameOf(message);
    if (type == 1046 && at_s > 1300) return std::string();
    if (type == 1077 && at_s >= 600 && at_s < 660 && static_cast<int>(at_s) % 10 == 0) frame.back() ^= 1;
    rtcm::StationDescription station;
    if (type == 1033 && at_s > 800 && rtcm::TakeStation(message, station)) {
      station.receiver = "ANOTHER";
      return rtcm::FrameOf(rtcm::WriteEquipment(station));
    }
    if (type == 1006 && at_s > 800 && rtcm::TakeStation(message, station)) {
      moved = true;
      (*station.position_m)[0] += 20;
      return rtcm::FrameOf(rtcm::WritePosition(station));
    }
    return frame;
  };
  StationSettings settings;
  settings.limits.ephemeris_age_s = 600;
  Judged judged;
  JudgeStream(stream, settings, change, judged);
  ASSERT_TRUE(moved);
  const auto raised = [&judged](const char* kind, const char* subject, double from_s, double to_s) {
    const auto found = judged.At(kind, subject);
    ASSERT_TRUE(found) << kind << " " << subject << "\n" << judged.Text();
    EXPECT_GE(*found, from_s) << kind;
    EXPECT_LE(*found, to_s) << kind;
  };
  raised("crc_errors", "", 600, 661);
  raised("identity_changed", "receiver", 800, 1210);
  raised("position_moved", "stated", 800, 1210);
  raised("position_moved", "computed", 800, 1210 + 660);
  raised("messages_missing", "1046", 1300, 1200 + 900 + 61);
  raised("ephemeris_old", "E", 1300, 1200 + 600 + 61);
  for (const LiveEvent& event : judged.events) {
    const bool known = event.kind == "crc_errors" || event.kind == "identity_changed" ||
                       event.kind == "position_moved" || event.kind == "messages_missing" ||
                       event.kind == "ephemeris_old" || event.state == LiveEvent::State::kNote;
    EXPECT_TRUE(known) << event.json;
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
