// What the service knows of its stations as JSON, in the names and units of the reports.
#ifndef ORSOLVA_LIVE_SERVING_STATE_JSON_H
#define ORSOLVA_LIVE_SERVING_STATE_JSON_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/live/live_board.h"

namespace orsolva_host::live {

/// What a document says besides the stations.
struct StateHead {
  std::int64_t now_utc_ns = 0;
  std::uint64_t last_event_id = 0;
};

/// All stations with their windows and alarms, worst first: raised bad alarms, then warnings, then streams
/// that are not connected, then by completeness of the hour and by name.
std::string NetworkJson(std::vector<LiveBoard::StatePointer> stations, const StateHead& head);

/// One station with the minutes of its last day as series, and what NetworkJson() has of it.
std::string StationJson(const StationState& station, const StateHead& head);

/// The text with what is no UTF-8 replaced: texts of a stream or of a configuration can hold anything.
std::string ValidUtf8(const std::string& text);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_STATE_JSON_H
