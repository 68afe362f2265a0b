#include "host/live/event_json.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "host/live/windows/minute_store.h"
#include "host/rinex/civil_time.h"

namespace orsolva_host::live {

std::string UtcText(std::int64_t utc_ns) {
  std::int64_t seconds = utc_ns / kSecond_ns;
  std::int64_t rest_ns = utc_ns % kSecond_ns;
  if (rest_ns < 0) {
    rest_ns += kSecond_ns;
    --seconds;
  }
  const CivilTime civil = ToCivil(Time_gbt{seconds, 0});
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", civil.year, civil.month, civil.day,
                     civil.hour, civil.minute, static_cast<int>(civil.second), rest_ns / 1'000'000);
}

std::string EventJson(const LiveEvent& event) {
  nlohmann::ordered_json json;
  json["id"] = event.id;
  json["time"] = UtcText(event.time_utc_ns);
  json["station"] = event.station;
  json["kind"] = event.kind;
  const auto text = [&json](const char* name, const std::string& value) {
    if (!value.empty()) json[name] = value;
  };
  text("subject", event.subject);
  json["state"] = NameOf(event.state);
  if (event.state != LiveEvent::State::kNote) json["severity"] = NameOf(event.severity);
  text("seen", event.seen);
  text("advice", event.advice);
  if (!event.json.empty()) json.update(nlohmann::ordered_json::parse(event.json));
  // Texts of a stream need not be UTF-8.
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace orsolva_host::live
