#include "host/live/sources/host_lookup.h"

#include <netdb.h>
#include <sys/socket.h>

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace orsolva_host::live {

struct HostLookup::State {
  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    if (found != nullptr) freeaddrinfo(found);
  }

  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
  int error = 0;
  addrinfo* found = nullptr;
};

namespace {

int LookUp(const std::string& host, const std::string& port, int flags, addrinfo*& found) {
  addrinfo hints = {};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags;
  return getaddrinfo(host.c_str(), port.c_str(), &hints, &found);
}

}  // namespace

HostLookup::HostLookup(const std::string& host, std::uint16_t port) : state_(std::make_shared<State>()) {
  const std::string service = std::to_string(port);
  state_->done = LookUp(host, service, AI_NUMERICHOST, state_->found) == 0;
  if (state_->done) return;
  const auto look_up = [state = state_, host, service] {
    addrinfo* found = nullptr;
    const int error = LookUp(host, service, 0, found);
    const std::lock_guard lock(state->mutex);
    state->done = true;
    state->error = error;
    if (error == 0) state->found = found;
    state->changed.notify_all();
  };
  try {
    std::thread(look_up).detach();
  } catch (const std::system_error&) {  // no thread is to be had
    state_->done = true;
    state_->error = EAI_AGAIN;
  }
}

bool HostLookup::Wait(std::chrono::milliseconds longest) {
  std::unique_lock lock(state_->mutex);
  return state_->changed.wait_for(lock, longest, [this] { return state_->done; });
}

std::string HostLookup::Problem() const {
  const std::lock_guard lock(state_->mutex);
  return state_->error == 0 ? "" : gai_strerror(state_->error);
}

const addrinfo* HostLookup::Addresses() const {
  const std::lock_guard lock(state_->mutex);
  return state_->found;
}

}  // namespace orsolva_host::live
