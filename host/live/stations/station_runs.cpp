#include "host/live/stations/station_runs.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace orsolva_host::live {
namespace {

constexpr std::size_t kMinSatellites = 4;
constexpr std::int64_t kWaitForEphemerides_ns = 60 * kNanosecondsPerSecond;
constexpr std::int64_t kPause_ns = 60 * kNanosecondsPerSecond;

}  // namespace

void StationRuns::RefreshSky() {
  if (!book_.HasChanged() || book_.Satellites() < kMinSatellites) return;
  sky_.SetRecords(book_.Records());
  book_.ForgetChange();
}

bool StationRuns::IsReady(const ObservationEpoch& epoch, std::optional<std::int64_t> first_ephemeris_ns) {
  if (epoch.time_ns < no_run_before_ns_) return false;
  RefreshSky();
  if (!sky_.Known() || sky_.Satellites() < kMinSatellites) return false;
  const bool all = std::all_of(
      epoch.satellites.begin(), epoch.satellites.end(), [&](const SatelliteObservation& satellite) {
        const bool known_system = std::string("GREC").find(satellite.id.system) != std::string::npos;
        return !known_system || sky_.HasOrbit(satellite.id, epoch.time_ns);
      });
  return all || epoch.time_ns - first_ephemeris_ns.value_or(0) > kWaitForEphemerides_ns;
}

JudgingSettings StationRuns::SettingsOf(const std::optional<std::array<double, 3>>& stated_position_m) const {
  JudgingSettings settings;
  settings.elevation_cutoff_deg = settings_.elevation_cutoff_deg;
  settings.figures = FigureChoice::kBoth;
  settings.analysis_on_own_thread = false;
  if (settings_.position_m) {
    settings.position = {PositionSource::kOption, *settings_.position_m};
  } else if (stated_position_m) {
    settings.position.source = PositionSource::kHeader;
  } else {
    settings.position = {PositionSource::kOption, *sky_.Position()};
  }
  return settings;
}

void StationRuns::Begin(const ObservationEpoch& epoch, const rtcm::StationDescription& described,
                        const std::optional<std::array<double, 3>>& stated_position_m) {
  const JudgingSettings settings = SettingsOf(stated_position_m);
  ObservationHeader header;
  header.receiver = described.receiver;
  header.antenna = described.antenna;
  header.position = stated_position_m;
  if (settings.position.source == PositionSource::kHeader) sky_.SetPosition(*stated_position_m);
  book_.Prune(epoch.time_ns);
  sky_.SetRecords(book_.Records());
  book_.ForgetChange();
  book_.TakeNew(settings_.name);
  const auto navigation = book_.Navigation(settings_.name);
  for (const StateVectorRecord& record : navigation->broadcast.state_vectors) {
    if (record.satellite.system == 'R') header.glonass_channels[record.satellite.number] = record.channel;
  }
  begin_ns_ = epoch.time_ns;
  run_ = std::make_unique<HourRun>(settings, settings_.name, header, navigation, *this);
  if (!HourBridge::CanSpan(recent_, epoch.time_ns)) return recent_.Clear();
  analysis::DetectorOptions options;
  options.position = sky_.Position();
  options.glonass_channels = header.glonass_channels;
  bridge_ = std::make_unique<HourBridge>(options, navigation->broadcast, recent_, epoch.time_ns);
}

void StationRuns::Add(const analysis::Event& event) {
  if (!bridge_ || !bridge_->Covers(event.time_ns)) collector_.Add(event);
}

void StationRuns::Add(ObservationEpoch& epoch) {
  collector_.AddEpoch(epoch.time_ns, static_cast<int>(epoch.satellites.size()));
  run_->Add(epoch);
  recent_.Add(epoch);
  if (!bridge_) return;
  bridge_->Add(epoch, collector_);
  if (bridge_->IsOver()) bridge_.reset();
}

void StationRuns::EndMinute() {
  if (!run_) return;
  const auto more = book_.TakeNew(settings_.name);
  run_->EndMinute(*more);
  collector_.AddMultipath(run_->TakeMultipath());
  if (bridge_) bridge_->AddRecords(more->broadcast);
}

std::optional<Report> StationRuns::End() {
  if (!run_) return std::nullopt;
  const std::unique_ptr<HourRun> ended = std::move(run_);
  std::optional<Report> report = ended->Finish();
  collector_.AddMultipath(ended->TakeMultipath());
  if (bridge_) bridge_->Finish(collector_);
  bridge_.reset();
  return report;
}

void StationRuns::Abandon(std::int64_t now_ns) {
  run_.reset();
  bridge_.reset();
  recent_.Clear();
  no_run_before_ns_ = now_ns + kPause_ns;
}

void StationRuns::ForgetTimes() {
  recent_.Clear();
  no_run_before_ns_ = 0;
}

}  // namespace orsolva_host::live
