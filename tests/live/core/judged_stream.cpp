#include "tests/live/core/judged_stream.h"

#include <stdlib.h>

#include <fstream>
#include <iterator>

#include "host/formats/rtcm/frame.h"
#include "host/formats/rtcm/reader.h"
#include "host/live/stations/station_judge.h"
#include "host/simulator/file_set.h"

namespace orsolva_test {

using namespace orsolva_host;
using namespace orsolva_host::live;

namespace {

constexpr double kLeap_s = 18;  // GPS time minus UTC in 2020

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

void TakeResults(StationJudge& judge, Judged& judged) {
  judge.Publish(judged.start_ns);
  judged.events = judged.board.EventsAfter(0, 10'000);
  judged.state = judged.board.Station("SIMU");
}

}  // namespace

TestFolder::TestFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orsolva-live-XXXXXX").string();
  path_ = mkdtemp(pattern.data());
}

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

std::int64_t StartOf(const std::string& stream) {
  Diagnostics unused;
  rtcm::Reader reader(OpenBytes(stream, unused), stream, unused);
  ObservationEpoch epoch;
  reader.Next(epoch);
  return epoch.time_ns;
}

double Judged::SecondsOf(const LiveEvent& event) const {
  return static_cast<double>(event.time_utc_ns - start_ns) / 1e9 + kLeap_s;
}

std::optional<double> Judged::At(const std::string& kind, const std::string& subject, LiveEvent::State what,
                                 double from_s) const {
  for (const LiveEvent& event : events) {
    const bool meant = event.kind == kind && event.subject == subject && event.state == what;
    if (meant && SecondsOf(event) >= from_s) return SecondsOf(event);
  }
  return std::nullopt;
}

int Judged::Raised() const {
  int raised = 0;
  for (const LiveEvent& event : events) raised += event.state == LiveEvent::State::kRaised ? 1 : 0;
  return raised;
}

std::string Judged::Text() const {
  std::string text;
  for (const LiveEvent& event : events) text += event.json + "\n";
  return text;
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
  TakeResults(judge, judged);
}

void JudgeLive(const std::string& path, const std::function<double(double at_s)>& delay_s, Judged& judged) {
  constexpr std::int64_t kInterval_ns = 1'000'000'000;
  StationSettings settings;
  settings.name = "SIMU";
  judged.start_ns = StartOf(path);
  StationJudge judge(settings, "simulated", false, judged.board);
  judge.Connected(judged.start_ns);
  rtcm::FrameScanner frames;
  frames.Append(ReadAll(path));
  std::int64_t now_ns = judged.start_ns;
  while (const auto message = frames.Next()) {
    // What comes before an epoch is complete belongs to the one after the latest.
    const std::int64_t epoch_ns = judge.LatestEpoch().value_or(judged.start_ns - kInterval_ns) + kInterval_ns;
    const double at_s = static_cast<double>(epoch_ns - judged.start_ns) / 1e9;
    now_ns = std::max(now_ns, epoch_ns + static_cast<std::int64_t>(delay_s(at_s) * 1e9));
    judge.Take(rtcm::FrameOf(*message), now_ns);
    judge.Tick(now_ns);
  }
  judge.Finish(now_ns);
  TakeResults(judge, judged);
}

}  // namespace orsolva_test
