// The user's command for alarms.
#ifndef ORSOLVA_LIVE_ALARM_COMMAND_H
#define ORSOLVA_LIVE_ALARM_COMMAND_H

#include <chrono>
#include <set>
#include <string>

#include "host/live/live_state.h"

namespace orsolva_host::live {

/// Runs a command by the shell and waits for it; after the longest time it is ended with its children. What
/// the event says is in the environment: ORSOLVA_STATION, ORSOLVA_ALARM, ORSOLVA_SUBJECT, ORSOLVA_STATE
/// (raised, cleared), ORSOLVA_SEVERITY, ORSOLVA_SEEN, ORSOLVA_ADVICE, ORSOLVA_EVENT (the line of JSON).
/// Nothing of it is part of the command's text. Its standard input is empty: that of this program may be a
/// stream. @param hidden  variables of the environment that it does not get, as none whose name begins with
/// ORSOLVA_. @return its exit code; -1 when it could not be run or was ended
int RunAlarmCommand(const std::string& command, const LiveEvent& event,
                    std::chrono::milliseconds longest = std::chrono::seconds(60),
                    const std::set<std::string>& hidden = {});

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_ALARM_COMMAND_H
