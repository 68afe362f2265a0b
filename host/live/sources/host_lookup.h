// Addresses of a host by its name, without waiting for the servers of names longer than one wants.
#ifndef ORSOLVA_LIVE_SOURCES_HOST_LOOKUP_H
#define ORSOLVA_LIVE_SOURCES_HOST_LOOKUP_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

struct addrinfo;

namespace orsolva_host::live {

/// A look-up cannot be ended from outside, so one of a name has a thread of its own, which outlives the
/// object when it is given up. A numeric address needs none.
class HostLookup {
 public:
  HostLookup(const std::string& host, std::uint16_t port);

  /// @return whether it is done
  bool Wait(std::chrono::milliseconds longest);
  /// Both when it is done. Why there is no address; empty when there is one.
  std::string Problem() const;
  /// They live as long as this object.
  const addrinfo* Addresses() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SOURCES_HOST_LOOKUP_H
