// An event as a line of JSON.
#ifndef ORSOLVA_LIVE_EVENT_JSON_H
#define ORSOLVA_LIVE_EVENT_JSON_H

#include <string>

#include "host/live/live_state.h"

namespace orsolva_host::live {

/// "2026-11-22T15:50:42.000Z"; milliseconds are cut off.
std::string UtcText(std::int64_t utc_ns);

/// One object without an end of line: id, time, station, kind, subject, state, severity, seen, advice.
/// Members without a value are left out. Where event.json holds an object already, its members are added.
std::string EventJson(const LiveEvent& event);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_EVENT_JSON_H
