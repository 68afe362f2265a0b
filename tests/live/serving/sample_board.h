// A network of made stations, without streams: what servers and pages are tested with.
#ifndef ORSOLVA_TESTS_LIVE_SERVING_SAMPLE_BOARD_H
#define ORSOLVA_TESTS_LIVE_SERVING_SAMPLE_BOARD_H

#include <cstdint>

#include "host/live/live_board.h"

namespace orsolva_host::live {

/// A station with a day of minutes; its strength, slips and gaps follow from the seed.
StationState SampleStation(const std::string& name, int seed, std::int64_t now_utc_ns);

/// Five stations: one well, one with alarms, one that is not connected, one that waits for navigation, and
/// one whose name and texts are markup and no UTF-8.
void FillSampleBoard(LiveBoard& board, std::int64_t now_utc_ns);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_TESTS_LIVE_SERVING_SAMPLE_BOARD_H
