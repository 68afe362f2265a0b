// Any bytes as the stream of a live station, through decoder, windows, runs and alarms to what is published.
// The first byte chooses: odd, the rest is messages, each behind two bytes of length, that get their frames
// here; the second is the size of the pieces in which the stream comes. How it is cut changes nothing.
#include <algorithm>
#include <cstdint>
#include <string>

#include "fuzz/recorded_epochs.h"
#include "host/formats/rtcm/frame.h"
#include "host/live/serving/state_json.h"
#include "host/live/stations/station_judge.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orsolva_host::live;
using orsolva_fuzz::Require;

constexpr std::int64_t kStart_ns = 1531612209'000'000'000;

void CheckState(const StationState& state) {
  Count messages = 0;
  for (const auto& [type, counts] : state.messages) messages += counts.total;
  Require(state.epochs_total + state.epochs_dropped_total <= messages, "an epoch takes a message");
  for (const Window& window : state.windows) {
    for (const auto& [key, sums] : window.sums.signals)
      Require(sums.observed <= sums.expected, "what is observed was expected");
  }
}

std::string Judge(std::string_view stream, std::size_t piece) {
  LiveBoard board;
  StationSettings settings;
  settings.name = "FUZZ";
  settings.start_gps_ns = kStart_ns;
  StationJudge judge(settings, "a stream", true, board);
  judge.Connected(kStart_ns);
  for (std::size_t at = 0; at < stream.size(); at += piece) judge.Take(stream.substr(at, piece), kStart_ns);
  judge.Finish(kStart_ns);
  judge.Publish(kStart_ns);
  const LiveBoard::StatePointer state = board.Station("FUZZ");
  CheckState(*state);
  std::string shown = StationJson(*state, {0, board.LastEventId()});
  for (const LiveEvent& event : board.EventsAfter(0, LiveBoard::kKeptEvents)) shown += event.json;
  return shown;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view rest(reinterpret_cast<const char*>(data) + 2, size - 2);
  const std::string stream =
      (data[0] & 1) != 0 ? orsolva_fuzz::Framed(rest, 3, orsolva_host::rtcm::FrameOf) : std::string(rest);
  Require(Judge(stream, data[1] + 1U) == Judge(stream, stream.size() + 1),
          "how a stream is cut changes nothing");
  return 0;
}
