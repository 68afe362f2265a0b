#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "host/cli/argument_texts.h"
#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/cli/live_config.h"
#include "host/judging/run_error.h"
#include "host/judging/selection_texts.h"
#include "host/live/live_service.h"
#include "host/live/serving/live_server.h"
#include "host/output/byte_sink.h"
#include "host/platform/platform.h"
#include "host/rinex/civil_time.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

using live::LiveServer;
using live::LiveService;

struct LiveRequest {
  std::vector<std::string> sources;
  std::string stations_file;
  std::string navigation;
  std::string user, password_file, certificates;
  PositionChoice position;
  double cutoff_deg = 10;
  std::string profile = "default";
  double speed = 0;
  std::optional<TimeLimit> start;
  std::string state_folder, reports_folder;
  live::ServiceSettings service;
  bool exit_by_alarms = false;
};

/// The first line of a file, or else what the environment says. @throws UsageError
std::string PasswordOf(const LiveRequest& request) {
  if (request.password_file.empty()) return live::EnvironmentText("ORSOLVA_NTRIP_PASSWORD");
  return live::SecretFromFile(request.password_file);
}

live::StationSettings StationOf(const LiveRequest& request, const std::string& source) {
  live::StationSettings station;
  station.source = source;
  station.navigation = request.navigation;
  station.common_user = request.user.empty() ? live::EnvironmentText("ORSOLVA_NTRIP_USER") : request.user;
  station.common_password = PasswordOf(request);
  station.certificates = request.certificates;
  station.elevation_cutoff_deg = request.cutoff_deg;
  if (request.position.source == PositionSource::kOption) station.position_m = request.position.xyz_m;
  station.limits = live::FindLimits(request.profile)->limits;
  station.speed = request.speed;
  if (request.start) station.start_gps_ns = request.start->time_ns;
  station.state_folder = request.state_folder;
  station.reports_folder = request.reports_folder;
  return station;
}

live::ServiceSettings ServiceOf(const LiveRequest& request) {
  if (request.start && request.start->of_first_day) throw UsageError("--start: a date is missing");
  live::ServiceSettings service = request.service;
  for (const std::string& source : request.sources) service.stations.push_back(StationOf(request, source));
  if (!request.stations_file.empty())
    live::AddStations(request.stations_file, StationOf(request, ""), service);
  const std::string wrong = live::Complete(service);
  if (!wrong.empty()) throw UsageError(wrong);
  return service;
}

/// Whether a file was cut short, as by a power failure.
bool EndsWithinALine(const std::string& path) {
  std::error_code none;
  if (!std::filesystem::is_regular_file(path, none)) return false;
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  return file && file.tellg() > 0 && file.seekg(-1, std::ios::end).get() != '\n';
}

/// Lines of events, to standard output or a file, each whole as soon as it is there.
class EventLines {
 public:
  /// @throws RunError when the file cannot be opened
  explicit EventLines(const std::string& path) : path_(path) {
    if (path.empty() || path == "-") return;
    const bool cut = EndsWithinALine(path);
    file_.open(path, std::ios::app | std::ios::binary);
    if (cut) file_ << '\n' << std::flush;
    if (!file_) throw RunError(path + ": the file of events cannot be written.");
  }
  void Write(const std::string& line) {
    if (file_.is_open()) {
      file_ << line << std::flush;
      if (!file_) LineLost();
    } else {
      std::fwrite(line.data(), 1, line.size(), stdout);
      if (std::fflush(stdout) != 0 && IsOutputClosed()) nobody_reads_ = true;
    }
  }
  /// Whether what reads standard output has gone, as after `| head -1`.
  bool NobodyReads() const { return nobody_reads_; }
  /// Whether a line could not be written to the file.
  bool LostAny() const { return lost_any_; }

 private:
  /// Said once; the next line is tried again, as when there is room on the disk again.
  void LineLost() {
    file_.clear();
    if (!lost_any_.exchange(true)) PrintError(path_ + ": events could not be written.");
  }

  std::string path_;
  std::ofstream file_;
  std::atomic<bool> lost_any_{false};
  std::atomic<bool> nobody_reads_{false};
};

/// What cannot be written there is said before a station runs. @throws WriteError
void MakeFolders(const live::ServiceSettings& settings) {
  for (const live::StationSettings& station : settings.stations) {
    for (const std::string& folder : {station.state_folder, station.reports_folder})
      if (!folder.empty()) MakeFolder(folder);
  }
}

int RunLive(const LiveRequest& request) {
  constexpr std::chrono::milliseconds kLook{100};
  const live::ServiceSettings settings = ServiceOf(request);
  std::optional<live::ListenAddress> address;
  if (!settings.listen.empty()) {
    address = live::ParseListenAddress(settings.listen);
    if (!address) throw UsageError("--listen: found \"" + settings.listen + "\", expected HOST:PORT");
  }
  MakeFolders(settings);
  ReturnFreedMemory();
  RecordInterrupts();
  EventLines lines(settings.events);
  live::LiveBoard board;
  std::unique_ptr<LiveServer> server;
  if (address) {
    server = std::make_unique<LiveServer>(board, *address);
    std::fprintf(stderr, "orsolva: serving %s\n", live::UrlOf(server->Address()).c_str());
    if (!live::IsLoopback(server->Address()))
      std::fprintf(stderr, "orsolva: others can reach it; there is no password\n");
  }
  LiveService service(settings, board, [&lines](const std::string& line) { lines.Write(line); });
  service.Start();
  while (InterruptExitCode() == 0 && !service.Ended() && !lines.NobodyReads())
    std::this_thread::sleep_for(kLook);
  service.Stop();
  for (const std::string& failure : service.Failures()) PrintError(failure);
  if (service.LostFiles())
    PrintError("reports or ephemerides could not be written: see the events not_written.");
  if (lines.LostAny() || service.LostFiles()) return kRunFailed;
  if (InterruptExitCode() != 0) return kGood;  // the usual end of a service
  if (!service.Failures().empty()) return kRunFailed;
  return request.exit_by_alarms && service.AnyAlarm() ? kVerdictFailed : kGood;
}

std::vector<std::string> ProfileNames() {
  std::vector<std::string> names;
  for (const live::LimitsProfile& profile : live::LimitsProfiles()) names.emplace_back(profile.name);
  return names;
}

std::vector<Option> Rows(const std::shared_ptr<LiveRequest>& r) {
  std::vector<Option> rows = {
      Positional(
          ListOption("SOURCES", "SOURCES", r->sources,
                     "ntrip://host:2101/MOUNT (ntrips: with TLS), tcp://host:port, "
                     "serial:/dev/ttyUSB0:115200, a recording to be replayed, or - for standard input"),
          false),
      FileOption("stations", "FILE", r->stations_file, "TOML file of stations"),
      TextOption("nav", "SOURCE", r->navigation,
                 "Second source of ephemerides: RTCM 3 as SOURCES, or a RINEX navigation file"),
      TextOption("user", "NAME", r->user, "User of the caster; else ORSOLVA_NTRIP_USER"),
      FileOption("password-file", "FILE", r->password_file,
                 "File whose first line is the password; else ORSOLVA_NTRIP_PASSWORD"),
      FileOption("certificates", "FILE", r->certificates, "Authorities for TLS; else those of the system"),
      Parsed("position", "X,Y,Z", "", ParsePosition, r->position,
             "Position of the antenna in metres; else that of the stream, else computed"),
      Number("elevation", "DEGREES", 0, live::StationSettings::kHighestCutoff_deg, r->cutoff_deg,
             "Elevation cut-off in degrees"),
      Choice("profile", "NAME", ProfileNames(), r->profile, "Limits of alarms"),
      Number("speed", "TIMES", 0, live::StationSettings::kFastest, r->speed,
             "Speed of a replay against its time; 0: no waiting"),
      Parsed("start", "TIME", "", ParseTimeLimit, r->start,
             "When a recording without a date was made, within half a week, GPS time"),
      FolderOption("state", r->state_folder, "Keep ephemerides here between starts"),
      FolderOption("reports", r->reports_folder, "Write the report of every hour here, as JSON"),
      FileOption("events", "FILE", r->service.events,
                 "Append events here, a line of JSON each; else they go to standard output"),
      TextOption("on-alarm", "COMMAND", r->service.on_alarm,
                 "Run by the shell for every alarm raised or cleared; ORSOLVA_EVENT and others say which"),
      TextOption("listen", "HOST:PORT", r->service.listen,
                 "Serve metrics, states and a page, as on 127.0.0.1:9464"),
      Switch("fail-on-alarm", r->exit_by_alarms, "Exit with 3 when a replay raised an alarm"),
  };
  rows[0].many = true;
  return rows;
}

}  // namespace

Command LiveCommand() {
  auto r = std::make_shared<LiveRequest>();
  return {"live",
          "Judge RTCM 3 streams as they run, with alarms",
          Rows(r),
          [r] { return RunLive(*r); },
          {kGood, kRunFailed, kWrongUsage, kVerdictFailed}};
}

}  // namespace orsolva_host
