// What a station publishes, and what it writes.
#include <exception>
#include <filesystem>
#include <string>
#include <utility>

#include "host/live/event_json.h"
#include "host/live/station_name.h"
#include "host/live/stations/station_judge.h"
#include "host/report/json_writer.h"
#include "host/rinex/civil_time.h"

#include <fmt/format.h>

namespace orsolva_host::live {
namespace {

double AgeSeconds(std::int64_t later_ns, std::int64_t earlier_ns) {
  return static_cast<double>(later_ns - earlier_ns) / 1e9;
}

}  // namespace

void StationJudge::FillInSystems(StationState& state, std::int64_t now_ns) {
  for (const SatelliteObservation& satellite : latest_epoch_.satellites) {
    SystemState& system = state.systems[satellite.id.system];
    ++system.observed;
    if (latest_ns_ && sky_.HasOrbit(satellite.id, *latest_ns_)) ++system.with_ephemeris;
  }
  for (const auto& [letter, present] : counter_.PresentOfSystems()) {
    state.systems[letter].expected = present.expected;
  }
  for (const auto& [letter, last_ns] : last_ephemeris_ns_) {
    if (letter != ' ') state.systems[letter].ephemeris_age_s = AgeSeconds(now_ns, last_ns);
  }
}

void StationJudge::Publish(std::int64_t now_ns) {
  if (replay_) now_ns = latest_ns_.value_or(now_ns);
  auto state = std::make_shared<StationState>(state_);
  state->published_utc_ns = UtcOf(now_ns);
  state->frames_total = earlier_frames_.frames + frames_.Counts().frames;
  state->crc_errors_total = earlier_frames_.crc_errors + frames_.Counts().crc_errors;
  state->skipped_bytes_total = earlier_frames_.skipped_bytes + frames_.Counts().skipped_bytes;
  messages_.FillIn(now_ns, state->messages);
  for (const auto& [type, damaged] : earlier_damaged_) state->messages[type].damaged = damaged;
  for (const auto& [type, count] : decoder_->Counts().types) state->messages[type].damaged += count.damaged;
  state->epoch_gps_ns = latest_ns_;
  StationIdentity& identity = state->identity;
  identity.id = described_.id;
  identity.antenna = described_.antenna;
  identity.antenna_serial = described_.antenna_serial;
  identity.receiver = described_.receiver;
  identity.firmware = described_.firmware;
  identity.receiver_serial = described_.receiver_serial;
  identity.position_m = stated_position_m_;
  state->position_m = sky_.Position();
  if (sky_.Position()) state->position_llh = sky_.Geodetic();
  FillInSystems(*state, now_ns);
  for (const auto& [key, sums] : minutes_.Total().signals) state->totals[key].sums = sums;
  state->windows = minutes_.Windows();
  state->minutes = minutes_.Whole();
  state->alarms = alarms_.Raised();
  board_->Publish(std::move(state));
}

/// The event of an hour, and its report as a file.
void StationJudge::PublishHour(const orsolva_host::Report& report, std::int64_t now_ns) {
  const Headline& headline = report.headline;
  const auto text = [](const auto& value) { return value ? fmt::format("{}", *value) : std::string("null"); };
  LiveEvent event;
  event.time_utc_ns = UtcOf(now_ns);
  event.station = settings_.name;
  event.kind = "hour";
  event.seen = report.verdict.grade + ": " + report.verdict.text;
  event.json = fmt::format(
      R"({{"from":"{}","grade":"{}","present_epochs":{},"missing_epochs":{},"cutoff_expected":{},)"
      R"("cutoff_observed":{},"cycle_slips":{},"worst_multipath_m":{}}})",
      UtcText(UtcOf(runs_.BeginTime())), report.verdict.grade, text(headline.present_epochs),
      text(headline.missing_epochs), text(headline.cutoff_expected), text(headline.cutoff_observed),
      text(headline.cycle_slips), text(headline.worst_multipath_m));
  Report(std::move(event));
  WriteReport(report, runs_.BeginTime(), now_ns);
}

/// NAME_YYYYMMDDHH.json, of the hour in GPS time.
void StationJudge::WriteReport(const orsolva_host::Report& report, std::int64_t begin_ns,
                               std::int64_t now_ns) {
  if (settings_.reports_folder.empty()) return;
  const CivilTime hour = ToCivil(TimeOfNanoseconds(begin_ns));
  const std::string name = fmt::format("{}_{:04}{:02}{:02}{:02}.json", FileNameOf(settings_.name), hour.year,
                                       hour.month, hour.day, hour.hour);
  const std::string path = (std::filesystem::path(settings_.reports_folder) / name).string();
  try {
    if (files_ == nullptr) return WriteDurably(path, WriteJson(report));
    files_->Write(path, WriteJson(report),
                  [this, now_ns](const std::string& why) { NotWritten(why, now_ns); });
  } catch (const std::exception& error) {
    NotWritten(error.what(), now_ns);
  }
}

}  // namespace orsolva_host::live
