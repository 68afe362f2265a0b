#include "host/live/stations/station_thread.h"

#include <time.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>
#include <functional>
#include <utility>

#include "host/analysis/geometry/station.h"
#include "host/formats/rtcm/reader.h"
#include "host/formats/rtcm/stream_clock.h"
#include "host/live/station_name.h"
#include "host/live/windows/minute_store.h"
#include "host/rinex/byte_source.h"

namespace orsolva_host::live {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kPublishEvery{1000};
constexpr std::chrono::minutes kKeepEvery{10};
constexpr std::chrono::minutes kLookEvery{1};
constexpr milliseconds kReadFor{500};
constexpr std::size_t kReplayAtOnce = 4096;
constexpr Count kCostEpochs = 60;

/// The host's clock on the GPS time scale.
std::int64_t Now() {
  const auto utc = std::chrono::system_clock::now().time_since_epoch();
  const std::int64_t utc_ns = std::chrono::duration_cast<std::chrono::nanoseconds>(utc).count();
  return utc_ns + rtcm::LeapSecondsAtUtc(utc_ns / kSecond_ns) * kSecond_ns;
}

std::int64_t ThreadTime_us() {
  timespec now = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<std::int64_t>(now.tv_sec) * 1'000'000 + now.tv_nsec / 1000;
}

bool IsReplay(const SourceSpec& spec, const StationSettings& settings) {
  return spec.kind == SourceKind::kFile ||
         (spec.kind == SourceKind::kStandardInput && settings.start_gps_ns.has_value());
}

/// Latitude and longitude in degrees, height in metres.
std::array<double, 3> DegreesOf(const std::array<double, 3>& xyz_m) {
  constexpr double kDegree = 180 / 3.14159265358979323846;
  const analysis::Geodetic place = analysis::ToGeodetic(xyz_m);
  return {place.latitude_rad * kDegree, place.longitude_rad * kDegree, place.height_m};
}

/// When a recording begins, within half a week. @throws FileError
std::optional<std::int64_t> DateOf(const std::string& path) {
  Diagnostics unused;
  rtcm::ReaderOptions options;
  options.epochs = false;
  const rtcm::Reader reader(OpenBytes(path, unused), path, unused, options);
  return reader.Messages().Clock().Latest();
}

/// With the time of a recording, where none is given.
StationSettings Dated(StationSettings settings, const SourceSpec& spec, std::string& failure) {
  if (spec.kind != SourceKind::kFile || settings.start_gps_ns) return settings;
  try {
    settings.start_gps_ns = DateOf(spec.path);
  } catch (const std::exception& error) {
    failure = error.what();
  }
  return settings;
}

}  // namespace

void StopFlag::Stop() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
}

bool StopFlag::WaitFor(milliseconds time) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, time, [this] { return stopped_.load(); });
}

StationThread::StationThread(StationSettings settings, SourceSpec spec, LiveBoard& board, FileWriter& files)
    : settings_(Dated(std::move(settings), spec, failure_)),
      spec_(std::move(spec)),
      judge_(settings_, spec_.Shown(), IsReplay(spec_, settings_), board, &files),
      files_(&files) {
  ChooseLogin({settings_.user, settings_.password}, {settings_.common_user, settings_.common_password},
              spec_);
}

StationThread::~StationThread() {
  Stop();
  Join();
}

void StationThread::Start() {
  judge_.Publish(Now());
  thread_ = std::thread([this] { Run(); });
  SourceSpec navigation;
  if (settings_.navigation.empty() || !ParseSource(settings_.navigation, navigation).empty()) return;
  ShareLogin(spec_, navigation);
  if (navigation.kind == SourceKind::kFile) return;  // read before the first epoch
  navigation_thread_ = std::thread([this, navigation] { FollowNavigation(navigation); });
}

void StationThread::Join() {
  if (thread_.joinable()) thread_.join();
  stop_.Stop();
  if (navigation_thread_.joinable()) navigation_thread_.join();
}

/// What goes wrong ends this station and no other.
void StationThread::Run() {
  try {
    ReadKeptEphemerides();
    if (spec_.kind == SourceKind::kFile) {
      Replay();
    } else {
      Follow();
    }
    judge_.Finish(Now());
    KeepEphemerides();
  } catch (const std::exception& error) {
    failure_ = error.what();
    judge_.Disconnected(error.what(), true, Now());
  }
  any_alarm_ = judge_.AnyAlarm();
  judge_.Publish(Now());
  ended_ = true;
  stop_.Stop();  // nobody takes what the second source of ephemerides reads on
}

void StationThread::PublishNow() {
  const auto now = steady_clock::now();
  if (now < next_publish_) return;
  next_publish_ = now + kPublishEvery;
  judge_.Publish(Now());
  any_alarm_ = judge_.AnyAlarm();
  if (now < next_keep_) return;
  if (next_keep_ != steady_clock::time_point()) KeepEphemerides();
  next_keep_ = now + kKeepEvery;
}

/// The settings' position, which any thread may read.
ConnectionOptions StationThread::OptionsOf(MountWishes& wishes) const {
  ConnectionOptions options;
  options.certificates = settings_.certificates;
  options.wishes = &wishes;
  if (settings_.position_m) options.llh = DegreesOf(*settings_.position_m);
  return options;
}

void StationThread::MeasureCost() {
  const Count epochs = judge_.Epochs() - cost_epochs_;
  if (epochs < kCostEpochs) return;
  const std::int64_t now_us = ThreadTime_us();
  judge_.SetCost(static_cast<double>(now_us - cost_from_us_) / static_cast<double>(epochs));
  cost_from_us_ = now_us;
  cost_epochs_ = judge_.Epochs();
}

void StationThread::Replay() {
  if (!failure_.empty()) throw std::runtime_error(failure_);
  Diagnostics diagnostics;
  const auto bytes = OpenBytes(spec_.path, diagnostics);
  judge_.Connected(settings_.start_gps_ns.value_or(Now()));
  const auto begin = steady_clock::now();
  std::optional<std::int64_t> first_ns;
  std::string buffer(kReplayAtOnce, '\0');
  while (!stop_.Stopped()) {
    const std::size_t count = bytes->Read(buffer.data(), buffer.size());
    if (count == 0) break;
    judge_.Take({buffer.data(), count}, settings_.start_gps_ns.value_or(Now()));
    MeasureCost();
    PublishNow();
    const std::optional<std::int64_t> latest_ns = judge_.LatestEpoch();
    if (!latest_ns || settings_.speed <= 0) continue;
    if (!first_ns) first_ns = latest_ns;
    const double due_s = static_cast<double>(*latest_ns - *first_ns) / 1e9 / settings_.speed;
    while (!stop_.Stopped()) {
      const std::chrono::duration<double> ahead =
          begin + std::chrono::duration<double>(due_s) - steady_clock::now();
      if (ahead.count() <= 0) break;
      stop_.WaitFor(std::min(kReadFor, std::chrono::duration_cast<milliseconds>(ahead) + milliseconds(1)));
      PublishNow();
    }
  }
}

void StationThread::Follow() {
  BackOff back_off(std::hash<std::string>()(settings_.name) ^ static_cast<std::size_t>(Now()));
  while (!stop_.Stopped()) {
    judge_.Connecting(Now());
    ConnectionOptions options = OptionsOf(wishes_);
    if (const auto place = judge_.PlaceForCaster()) options.llh = place;
    const auto stream = OpenStream(spec_, options);
    FollowOnce(*stream, back_off);
    if (spec_.kind == SourceKind::kStandardInput) return;
    const auto until = steady_clock::now() + back_off.Next(refused_);
    while (!stop_.Stopped() && steady_clock::now() < until) {
      const auto left = std::chrono::duration_cast<milliseconds>(until - steady_clock::now());
      stop_.WaitFor(std::min(kReadFor, left + milliseconds(1)));
      judge_.Tick(Now());
      PublishNow();
    }
  }
}

/// Reads one connection to its end.
void StationThread::FollowOnce(ByteStream& stream, BackOff& back_off) {
  bool connected = false;
  refused_ = false;
  while (!stop_.Stopped()) {
    ReadOutcome outcome;
    if (const milliseconds wait = budget_.Wait(steady_clock::now()); wait.count() > 0) {
      stop_.WaitFor(wait);
    } else {
      outcome = stream.Read(kReadFor);
    }
    const std::int64_t now_ns = Now();
    if (outcome.state == ReadOutcome::State::kData) {
      if (!connected) judge_.Connected(now_ns);
      connected = true;
      back_off.Succeeded();
      judge_.Take(outcome.bytes, now_ns);
      if (spec_.kind != SourceKind::kStandardInput) budget_.Spend(outcome.bytes.size(), steady_clock::now());
    }
    judge_.Tick(now_ns);
    ReadChangedFile();
    MeasureCost();
    PublishNow();
    if (outcome.state == ReadOutcome::State::kData || outcome.state == ReadOutcome::State::kNothing) continue;
    refused_ = outcome.state == ReadOutcome::State::kRefused;
    judge_.Disconnected(outcome.problem, false, now_ns);
    return;
  }
}

/// A second source, whose ephemerides are handed to the judge. What goes wrong with it is noted once, and it
/// is tried again; the station goes on.
void StationThread::FollowNavigation(const SourceSpec& spec) {
  BackOff back_off(std::hash<std::string>()(settings_.name + " navigation"));
  MountWishes wishes;
  ByteBudget budget;
  std::string noted;
  while (!stop_.Stopped()) {
    bool any_byte = false;
    ReadOutcome end;
    try {
      end = ReadNavigation(*OpenStream(spec, OptionsOf(wishes)), budget, back_off, any_byte);
    } catch (const std::exception& error) {
      end = {ReadOutcome::State::kEnd, "", error.what()};
    }
    if (any_byte) noted.clear();
    if (!end.problem.empty() && end.problem != noted)
      judge_.EphemeridesFailed(spec.Shown() + ": " + end.problem);
    noted = end.problem;
    stop_.WaitFor(back_off.Next(end.state == ReadOutcome::State::kRefused));
  }
}

/// One connection to its end. @return how it ended
ReadOutcome StationThread::ReadNavigation(ByteStream& stream, ByteBudget& budget, BackOff& back_off,
                                          bool& any_byte) {
  rtcm::FrameScanner frames;
  rtcm::DecoderOptions decoding;
  decoding.near_ns = Now();
  decoding.epochs = false;
  rtcm::Decoder decoder(decoding);
  while (!stop_.Stopped()) {
    if (const milliseconds wait = budget.Wait(steady_clock::now()); wait.count() > 0) {
      stop_.WaitFor(wait);
      continue;
    }
    const ReadOutcome outcome = stream.Read(kReadFor);
    if (outcome.state == ReadOutcome::State::kNothing) continue;
    if (outcome.state != ReadOutcome::State::kData) return outcome;
    any_byte = true;
    back_off.Succeeded();
    frames.Append(outcome.bytes);
    while (const auto message = frames.Next()) decoder.Take(*message);
    const auto messages = decoder.TakeEphemerides();
    const BroadcastRecords records = decoder.TakeBroadcast();
    if (!messages.empty()) judge_.TakeEphemerides(messages, records);
    budget.Spend(outcome.bytes.size(), steady_clock::now());
  }
  return {};
}

// Ephemerides between starts

std::string StationThread::KeptPath() const {
  if (settings_.state_folder.empty()) return {};
  return (std::filesystem::path(settings_.state_folder) / (FileNameOf(settings_.name) + ".rtcm3")).string();
}

void StationThread::KeepEphemerides() {
  if (settings_.state_folder.empty() || judge_.Ephemerides().Size() == 0) return;
  files_->Write(KeptPath(), judge_.Ephemerides().Frames(),
                [this](const std::string& why) { judge_.NotWritten(why, Now()); });
}

/// Those of a file given as --nav, and those of the start before. Weeks are those near the stream's time;
/// what is too old is never selected.
void StationThread::ReadKeptEphemerides() {
  SourceSpec navigation;
  if (!settings_.navigation.empty() && ParseSource(settings_.navigation, navigation).empty() &&
      navigation.kind == SourceKind::kFile) {
    ephemeris_file_.emplace(navigation.path);
    ephemeris_file_->Changed();
    ReadEphemerisFile();
  }
  try {
    if (KeptPath().empty() || !std::filesystem::exists(KeptPath())) return;
    const std::int64_t near_ns = settings_.start_gps_ns.value_or(Now());
    const FileEphemerides kept = ReadEphemerides(KeptPath(), near_ns);
    judge_.UseEphemerides(kept.messages, kept.records, near_ns);
  } catch (const std::exception& error) {  // a loss of minutes: the stream sends them again
    judge_.EphemeridesFailed(error.what());
  }
}

void StationThread::ReadEphemerisFile() {
  const std::int64_t near_ns = settings_.start_gps_ns.value_or(Now());
  FileEphemerides found = ReadEphemerides(settings_.navigation, near_ns);
  const auto latest_ns = judge_.LatestEpoch();
  // What has been let go for its age would be new again.
  if (latest_ns) found = Since(found, static_cast<double>(*latest_ns) / 1e9 - EphemerisBook::kKept_s);
  judge_.UseFile(found.messages, found.records, latest_ns.value_or(near_ns));
}

/// A file that someone keeps up to date, as long as the stream runs. It is read once more when it has
/// changed; a bad one is noted and the ephemerides that there are stay.
void StationThread::ReadChangedFile() {
  const auto now = steady_clock::now();
  if (!ephemeris_file_ || now < next_look_) return;
  next_look_ = now + kLookEvery;
  if (!ephemeris_file_->Changed()) return;
  try {
    ReadEphemerisFile();
  } catch (const std::exception& error) {
    judge_.EphemeridesFailed(error.what());
  }
}

}  // namespace orsolva_host::live
