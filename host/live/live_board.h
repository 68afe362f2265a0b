// Where judging threads leave what they know, and servers pick it up.
//
// A station's thread hands over a finished state and goes on; a reader gets a pointer to it. Neither waits
// for more than a few pointers to be exchanged, so that a slow client never slows the judging.
#ifndef ORSOLVA_LIVE_LIVE_BOARD_H
#define ORSOLVA_LIVE_LIVE_BOARD_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/live/live_state.h"

namespace orsolva_host::live {

/// May be used from any thread.
class LiveBoard {
 public:
  /// So many events are kept, the latest.
  static constexpr std::size_t kKeptEvents = 10'000;

  using StatePointer = std::shared_ptr<const StationState>;

  /// Takes the place of the state of that name, or adds it behind those there are.
  void Publish(StatePointer state);
  /// Every station, in the order in which they were first published.
  std::vector<StatePointer> Stations() const;
  /// Null when there is none of that name.
  StatePointer Station(const std::string& name) const;

  /// Gives the event its id, and its line of JSON. @return as it is kept
  LiveEvent Add(LiveEvent event);
  /// Events with ids above `after`, oldest first, at most `most`.
  std::vector<LiveEvent> EventsAfter(std::uint64_t after, std::size_t most) const;
  /// The same; waits for the first one if there is none. @return empty after the time, or once stopped
  std::vector<LiveEvent> WaitForEvents(std::uint64_t after, std::size_t most,
                                       std::chrono::milliseconds longest) const;
  /// The id given last; 0 before the first.
  std::uint64_t LastEventId() const;

  /// Wakes all who wait, now and from now on.
  void Stop();
  bool Stopped() const;

 private:
  std::vector<LiveEvent> Collect(std::uint64_t after, std::size_t most) const;

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::vector<StatePointer> stations_;
  std::deque<LiveEvent> events_;
  std::uint64_t last_id_ = 0;
  bool stopped_ = false;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_LIVE_BOARD_H
