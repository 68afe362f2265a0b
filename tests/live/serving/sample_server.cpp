// Serves the made stations until its standard input ends; says where in the first line of its output. A line
// "event" on its input adds an event.
#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>

#include "host/live/serving/live_server.h"
#include "tests/live/serving/sample_board.h"

int main() {
  using namespace orsolva_host::live;
  const auto now = [] {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
  };
  LiveBoard board;
  FillSampleBoard(board, now());
  const LiveServer server(board, {"127.0.0.1", 0});
  std::printf("%s\n", UrlOf(server.Address()).c_str());
  std::fflush(stdout);
  for (std::string line; std::getline(std::cin, line);) {
    if (line != "event") continue;
    LiveEvent event;
    event.time_utc_ns = now();
    event.station = "BERN";
    event.kind = "crc_errors";
    event.state = LiveEvent::State::kRaised;
    event.seen = "4.1 % of the frames of a minute are damaged.";
    event.advice = "Look at the line between the receiver and the caster.";
    board.Add(event);
  }
}
