// What a recorded stream was made of, for people.
#ifndef ORSOLVA_REPORT_STREAM_TEXT_H
#define ORSOLVA_REPORT_STREAM_TEXT_H

#include <string>

#include "host/report/stream_facts.h"

namespace orsolva_host {

/// "RTCM 3, 18024 frames, 1 with a wrong CRC, 20 bytes outside frames"
std::string StreamText(const StreamFacts& stream);

/// "1006=12 1077=2880 4072=30 (not decoded)", by type
std::string MessagesText(const StreamFacts& stream);

/// What the steps of MSM4 and MSM5 hide; empty when the stream has none.
std::string StepsText(const StreamFacts& stream);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_STREAM_TEXT_H
