#include "host/live/serving/state_json.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>

#include "host/judging/library_version.h"
#include "host/live/event_json.h"
#include "host/report/figure_json.h"

namespace orsolva_host::live {
namespace {

constexpr std::int64_t kMillisecond_ns = 1'000'000;
constexpr std::int64_t kHour_s = 3600;

template <typename T>
Json ValueOf(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json GpsTime(std::int64_t gps_ns) { return TimeText(TimeOfNanoseconds(gps_ns)); }

/// Digits beyond those that a plot shows only lengthen a series.
Json Rounded(const std::optional<double>& value, double steps) {
  return value ? NumberJson(std::round(*value * steps) / steps) : Json(nullptr);
}

std::optional<double> Ratio(Count part, Count whole) {
  if (whole == 0) return std::nullopt;
  return static_cast<double>(part) / static_cast<double>(whole);
}

SignalSums AllSignals(const WindowSums& sums) {
  SignalSums all;
  for (const auto& [key, signal] : sums.signals) all += signal;
  return all;
}

Json SignalJson(const SignalKey& key, const SignalSums& sums) {
  Json j;
  j["system"] = std::string(1, key.system);
  j["signal"] = key.signal;
  j["expected"] = sums.expected;
  j["observed"] = sums.observed;
  j["completeness_ratio"] = ValueOf(sums.Completeness());
  j["snr_dbhz"] = ValueOf(sums.SnrDbhz());
  j["multipath_rms_m"] = ValueOf(sums.MultipathM());
  j["slips"] = sums.slips;
  j["jumps"] = sums.jumps;
  j["lock_losses"] = sums.lock_losses;
  return j;
}

Json WindowJson(const Window& window) {
  const WindowSums& sums = window.sums;
  const bool empty = window.to_gps_ns == 0;
  Json j;
  j["length_s"] = window.length_s;
  j["from_gpst"] = empty ? Json(nullptr) : GpsTime(window.from_gps_ns);
  j["to_gpst"] = empty ? Json(nullptr) : GpsTime(window.to_gps_ns);
  j["epochs_expected"] = sums.epochs_expected;
  j["epochs_present"] = sums.epochs_present;
  j["messages"] = sums.messages;
  j["crc_errors"] = sums.crc_errors;
  j["slip_events"] = sums.slip_events;
  j["satellite_epochs"] = sums.satellite_epochs;
  j["completeness_ratio"] = ValueOf(AllSignals(sums).Completeness());
  j["signals"] = Json::array();
  for (const auto& [key, signal] : sums.signals) j["signals"].push_back(SignalJson(key, signal));
  return j;
}

Json AlarmJson(const Alarm& alarm) {
  Json j;
  j["kind"] = alarm.kind;
  j["subject"] = TextJson(alarm.subject);
  j["severity"] = NameOf(alarm.severity);
  j["since"] = UtcText(alarm.since_utc_ns);
  j["seen"] = alarm.seen;
  j["advice"] = alarm.advice;
  j["event_id"] = alarm.event_id;
  return j;
}

Json StreamJson(const StationState& station) {
  Json j;
  j["source"] = station.source;
  j["replay"] = station.replay;
  j["phase"] = NameOf(station.phase);
  j["connected"] = station.connected;
  j["problem"] = TextJson(station.problem);
  j["published"] = UtcText(station.published_utc_ns);
  j["connected_since"] =
      station.connected_since_utc_ns == 0 ? Json(nullptr) : Json(UtcText(station.connected_since_utc_ns));
  j["connections"] = station.connections_total;
  j["bytes"] = station.bytes_total;
  j["frames"] = station.frames_total;
  j["crc_errors"] = station.crc_errors_total;
  j["skipped_bytes"] = station.skipped_bytes_total;
  j["epochs"] = station.epochs_total;
  j["epochs_lost"] = station.epochs_lost_total;
  j["epochs_dropped"] = station.epochs_dropped_total;
  j["interval_s"] = ValueOf(station.interval_s);
  j["epoch_gpst"] = station.epoch_gps_ns ? GpsTime(*station.epoch_gps_ns) : Json(nullptr);
  j["latency_s"] = ValueOf(station.latency_s);
  j["judging_us_per_epoch"] = ValueOf(station.judging_us_per_epoch);
  return j;
}

Json SystemsJson(const std::map<char, SystemState>& systems) {
  Json list = Json::array();
  for (const auto& [letter, system] : systems) {
    Json j;
    j["system"] = std::string(1, letter);
    j["observed"] = system.observed;
    j["expected"] = ValueOf(system.expected);
    j["with_ephemeris"] = system.with_ephemeris;
    j["ephemeris_age_s"] = ValueOf(system.ephemeris_age_s);
    list.push_back(std::move(j));
  }
  return list;
}

Json MessagesJson(const std::map<int, MessageState>& messages) {
  Json list = Json::array();
  for (const auto& [type, message] : messages) {
    Json j;
    j["type"] = type;
    j["total"] = message.total;
    j["damaged"] = message.damaged;
    j["age_s"] = ValueOf(message.age_s);
    j["interval_s"] = ValueOf(message.interval_s);
    list.push_back(std::move(j));
  }
  return list;
}

Json StationSummary(const StationState& station) {
  Json j;
  j["name"] = station.name;
  j.update(StreamJson(station));
  j["station_id"] = ValueOf(station.identity.id);
  j["antenna"] = TextJson(station.identity.antenna);
  j["receiver"] = TextJson(station.identity.receiver);
  j["firmware"] = TextJson(station.identity.firmware);
  j["position_llh"] = PositionJson(station.position_llh);
  j["systems"] = SystemsJson(station.systems);
  j["messages"] = MessagesJson(station.messages);
  j["windows"] = Json::array();
  for (const Window& window : station.windows) j["windows"].push_back(WindowJson(window));
  j["alarms"] = Json::array();
  for (const Alarm& alarm : station.alarms) j["alarms"].push_back(AlarmJson(alarm));
  return j;
}

/// The same figure of every minute.
template <typename Get>
Json Series(const std::vector<std::shared_ptr<const Minute>>& minutes, const Get& get) {
  Json list = Json::array();
  for (const auto& minute : minutes) list.push_back(get(minute->sums));
  return list;
}

Json SignalSeries(const std::vector<std::shared_ptr<const Minute>>& minutes, const SignalKey& key) {
  const auto series = [&](const auto& get) {
    return Series(minutes, [&](const WindowSums& sums) {
      const auto found = sums.signals.find(key);
      return found == sums.signals.end() ? Json(nullptr) : Json(get(found->second));
    });
  };
  Json j;
  j["system"] = std::string(1, key.system);
  j["signal"] = key.signal;
  j["completeness_ratio"] = series([](const SignalSums& s) { return Rounded(s.Completeness(), 1e4); });
  j["snr_dbhz"] = series([](const SignalSums& s) { return Rounded(s.SnrDbhz(), 1e2); });
  j["multipath_rms_m"] = series([](const SignalSums& s) { return Rounded(s.MultipathM(), 1e3); });
  return j;
}

Json MinutesJson(const std::vector<std::shared_ptr<const Minute>>& minutes) {
  Json j;
  j["begin_gps_ms"] = Json::array();
  WindowSums day;
  for (const auto& minute : minutes) {
    j["begin_gps_ms"].push_back(minute->begin_gps_ns / kMillisecond_ns);
    for (const auto& [key, sums] : minute->sums.signals) day.signals[key];
  }
  j["epochs_expected"] = Series(minutes, [](const WindowSums& s) { return Json(s.epochs_expected); });
  j["epochs_present"] = Series(minutes, [](const WindowSums& s) { return Json(s.epochs_present); });
  j["crc_errors"] = Series(minutes, [](const WindowSums& s) { return Json(s.crc_errors); });
  j["slip_events"] = Series(minutes, [](const WindowSums& s) { return Json(s.slip_events); });
  j["satellites"] = Series(
      minutes, [](const WindowSums& s) { return Rounded(Ratio(s.satellite_epochs, s.epochs_present), 1e2); });
  j["completeness_ratio"] =
      Series(minutes, [](const WindowSums& s) { return Rounded(AllSignals(s).Completeness(), 1e4); });
  j["signals"] = Json::array();
  for (const auto& [key, sums] : day.signals) j["signals"].push_back(SignalSeries(minutes, key));
  return j;
}

Json HeadJson(const StateHead& head) {
  Json j;
  j["library_version"] = kLibraryVersion;
  j["time"] = UtcText(head.now_utc_ns);
  j["last_event_id"] = head.last_event_id;
  return j;
}

std::string TextOf(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

/// The smaller, the worse.
auto Rank(const StationState& station) {
  const auto of = [&](Severity severity) {
    return std::count_if(station.alarms.begin(), station.alarms.end(),
                         [&](const Alarm& alarm) { return alarm.severity == severity; });
  };
  const auto hour = std::find_if(station.windows.begin(), station.windows.end(),
                                 [](const Window& window) { return window.length_s == kHour_s; });
  const double complete =
      hour == station.windows.end() ? 1.0 : AllSignals(hour->sums).Completeness().value_or(1.0);
  return std::tuple(-of(Severity::kBad), -of(Severity::kWarning), station.connected, complete, station.name);
}

}  // namespace

std::string NetworkJson(std::vector<LiveBoard::StatePointer> stations, const StateHead& head) {
  std::sort(stations.begin(), stations.end(),
            [](const auto& a, const auto& b) { return Rank(*a) < Rank(*b); });
  Json j = HeadJson(head);
  j["stations"] = Json::array();
  for (const auto& station : stations) j["stations"].push_back(StationSummary(*station));
  return TextOf(j);
}

std::string StationJson(const StationState& station, const StateHead& head) {
  Json j = HeadJson(head);
  j["station"] = StationSummary(station);
  j["station"]["minutes"] = MinutesJson(station.minutes);
  return TextOf(j);
}

std::string ValidUtf8(const std::string& text) { return Json::parse(TextOf(Json(text))).get<std::string>(); }

}  // namespace orsolva_host::live
