#include "host/live/live_service.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <set>
#include <utility>

#include "host/live/alarm_command.h"
#include "host/live/station_name.h"

namespace orsolva_host::live {
namespace {

constexpr std::size_t kEventsAtOnce = 1000;
constexpr std::chrono::milliseconds kWait{500};
constexpr std::chrono::seconds kLongestCommand{60};
constexpr char kStandardInput[] = "-";
constexpr std::chrono::seconds kLastCommands{5};  ///< that are left when the service ends

/// With a number behind it where it is taken.
std::string FreeName(const std::string& wanted, const std::set<std::string>& taken) {
  std::string name = wanted;
  for (int n = 2; taken.count(name) != 0; ++n) name = wanted + "-" + std::to_string(n);
  return name;
}

std::string WrongWith(const StationSettings& station) {
  SourceSpec spec;
  std::string wrong = ParseSource(station.source, spec);
  if (!wrong.empty()) return wrong;
  if (spec.kind == SourceKind::kNtrip && !HasCasters())
    return "this program was built without libcurl and reads no casters";
  if (!station.navigation.empty()) wrong = ParseSource(station.navigation, spec);
  if (!wrong.empty()) return "navigation: " + wrong;
  return station.name.empty() ? "" : WrongWithName(station.name);
}

}  // namespace

std::string Complete(ServiceSettings& settings) {
  if (settings.stations.empty()) return "no station is given";
  std::set<std::string> names;
  for (const StationSettings& station : settings.stations) {
    const bool named = !station.name.empty();
    const std::string wrong = WrongWith(station);
    if (!wrong.empty()) return (named ? station.name : "a source") + ": " + wrong;
    if (named && !names.insert(station.name).second) return "two stations are named " + station.name;
  }
  // After those that were given, which stay as they are whatever the order.
  for (StationSettings& station : settings.stations) {
    if (!station.name.empty()) continue;
    SourceSpec spec;
    ParseSource(station.source, spec);
    station.name = FreeName(NameFrom(spec.StationName()), names);
    names.insert(station.name);
  }
  std::size_t readers = 0;
  for (const StationSettings& station : settings.stations) {
    readers += station.source == kStandardInput ? 1 : 0;
    readers += station.navigation == kStandardInput ? 1 : 0;
  }
  return readers > 1 ? "standard input can be one source only" : "";
}

LiveService::LiveService(const ServiceSettings& settings, LiveBoard& board,
                         std::function<void(const std::string&)> write)
    : settings_(settings), board_(&board), write_(std::move(write)) {
  for (const StationSettings& station : settings_.stations) {
    SourceSpec spec;
    ParseSource(station.source, spec);
    stations_.push_back(std::make_unique<StationThread>(station, spec, board, files_));
  }
}

LiveService::~LiveService() { Stop(); }

void LiveService::Start() {
  events_thread_ = std::thread([this] { PassEvents(); });
  for (const auto& station : stations_) station->Start();
}

/// One after the other: an alarm command that hangs delays others, and no judging.
void LiveService::PassEvents() {
  std::uint64_t passed = 0;
  auto until = std::chrono::steady_clock::time_point::max();
  while (true) {
    const bool last = last_round_;
    if (last) until = std::min(until, std::chrono::steady_clock::now() + kLastCommands);
    const auto events = last ? board_->EventsAfter(passed, kEventsAtOnce)
                             : board_->WaitForEvents(passed, kEventsAtOnce, kWait);
    for (const LiveEvent& event : events) {
      Pass(event, until);
      passed = event.id;
    }
    if (last && events.empty()) return;
    if (!last && board_->Stopped()) last_round_ = true;
  }
}

void LiveService::Pass(const LiveEvent& event, std::chrono::steady_clock::time_point until) {
  if (write_) write_(event.json + "\n");
  if (event.kind == kNotWritten) lost_files_ = true;
  if (settings_.on_alarm.empty() || event.state == LiveEvent::State::kNote) return;
  const auto now = std::chrono::steady_clock::now();
  if (now >= until) return;
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - now);
  std::set<std::string> hidden;
  for (const StationSettings& station : settings_.stations) hidden.insert(station.password_variable);
  RunAlarmCommand(settings_.on_alarm, event, std::min<std::chrono::milliseconds>(left, kLongestCommand),
                  hidden);
}

bool LiveService::Ended() const {
  return std::all_of(stations_.begin(), stations_.end(),
                     [](const auto& station) { return station->Ended(); });
}

void LiveService::Stop() {
  for (const auto& station : stations_) station->Stop();
  for (const auto& station : stations_) station->Join();
  files_.Finish();
  last_round_ = true;
  if (events_thread_.joinable()) events_thread_.join();
}

bool LiveService::AnyAlarm() const {
  return std::any_of(stations_.begin(), stations_.end(),
                     [](const auto& station) { return station->AnyAlarm(); });
}

std::vector<std::string> LiveService::Failures() const {
  std::vector<std::string> failures;
  for (std::size_t i = 0; i < stations_.size(); ++i) {
    const std::string& failure = stations_[i]->Failure();
    if (!failure.empty()) failures.push_back(settings_.stations[i].name + ": " + failure);
  }
  return failures;
}

}  // namespace orsolva_host::live
