#include "host/live/live_board.h"

#include <algorithm>
#include <utility>

#include "host/live/event_json.h"

namespace orsolva_host::live {

void LiveBoard::Publish(StatePointer state) {
  const std::lock_guard lock(mutex_);
  const auto same = std::find_if(stations_.begin(), stations_.end(),
                                 [&](const StatePointer& s) { return s->name == state->name; });
  // What is replaced is freed by its last reader, or here after the exchange: freeing a state is short.
  if (same != stations_.end()) {
    same->swap(state);
  } else {
    stations_.push_back(std::move(state));
  }
}

std::vector<LiveBoard::StatePointer> LiveBoard::Stations() const {
  const std::lock_guard lock(mutex_);
  return stations_;
}

LiveBoard::StatePointer LiveBoard::Station(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  const auto same = std::find_if(stations_.begin(), stations_.end(),
                                 [&](const StatePointer& s) { return s->name == name; });
  return same == stations_.end() ? nullptr : *same;
}

LiveEvent LiveBoard::Add(LiveEvent event) {
  {
    const std::lock_guard lock(mutex_);
    event.id = ++last_id_;
    event.json = EventJson(event);
    events_.push_back(event);
    if (events_.size() > kKeptEvents) events_.pop_front();
  }
  changed_.notify_all();
  return event;
}

std::vector<LiveEvent> LiveBoard::Collect(std::uint64_t after, std::size_t most) const {
  const auto first = std::upper_bound(events_.begin(), events_.end(), after,
                                      [](std::uint64_t id, const LiveEvent& e) { return id < e.id; });
  const auto count = std::min(most, static_cast<std::size_t>(events_.end() - first));
  return {first, first + static_cast<std::ptrdiff_t>(count)};
}

std::vector<LiveEvent> LiveBoard::EventsAfter(std::uint64_t after, std::size_t most) const {
  const std::lock_guard lock(mutex_);
  return Collect(after, most);
}

std::vector<LiveEvent> LiveBoard::WaitForEvents(std::uint64_t after, std::size_t most,
                                                std::chrono::milliseconds longest) const {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, longest, [&] { return stopped_ || last_id_ > after; });
  return stopped_ ? std::vector<LiveEvent>() : Collect(after, most);
}

std::uint64_t LiveBoard::LastEventId() const {
  const std::lock_guard lock(mutex_);
  return last_id_;
}

void LiveBoard::Stop() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
}

bool LiveBoard::Stopped() const {
  const std::lock_guard lock(mutex_);
  return stopped_;
}

}  // namespace orsolva_host::live
