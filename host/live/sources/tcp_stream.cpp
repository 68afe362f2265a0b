// The bytes of a TCP connection. Connecting goes on within Read, so that who reads can stop at any time.
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/live/sources/byte_stream.h"
#include "host/live/sources/descriptor_stream.h"
#include "host/live/sources/host_lookup.h"

namespace orsolva_host::live {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::chrono::seconds kConnectTime{15};  ///< for the look-up, and for each address

std::string Late() { return " within " + std::to_string(kConnectTime.count()) + " s"; }

class TcpStream : public ByteStream {
 public:
  TcpStream(const SourceSpec& spec, const ConnectionOptions& options)
      : silence_(options.silence),
        lookup_(spec.host, spec.port),
        until_(steady_clock::now() + kConnectTime) {}

  ReadOutcome Read(milliseconds longest) override {
    const auto until = steady_clock::now() + longest;
    const auto left = [until] {
      const auto rest = std::chrono::duration_cast<milliseconds>(until - steady_clock::now());
      return std::max(rest, milliseconds(0));
    };
    while (!stream_) {
      if (auto outcome = Step(left())) return *std::move(outcome);
    }
    return stream_->Read(left());
  }

 private:
  /// Each: what Read returns, or nothing when there is another step.
  std::optional<ReadOutcome> Step(milliseconds longest) {
    if (!looked_up_) return LookUp(longest);
    if (tried_.Number() < 0) return TryNext();
    return WaitConnected(longest);
  }

  std::optional<ReadOutcome> LookUp(milliseconds longest) {
    if (!lookup_.Wait(longest)) {
      if (steady_clock::now() < until_) return ReadOutcome{};
      return Over("the host is not found" + Late());
    }
    if (const std::string problem = lookup_.Problem(); !problem.empty())
      return Over("the host is not found: " + problem);
    looked_up_ = true;
    next_ = lookup_.Addresses();
    return std::nullopt;
  }

  std::optional<ReadOutcome> TryNext() {
    if (next_ == nullptr) return Over(problem_.empty() ? "no address could be tried" : problem_);
    const addrinfo& address = *next_;
    next_ = address.ai_next;
    until_ = steady_clock::now() + kConnectTime;
    Descriptor tried(
        socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol));
    if (tried.Number() < 0) return Failed(ReasonOf(errno));
    // One that a signal interrupts goes on by itself.
    const int failed = connect(tried.Number(), address.ai_addr, address.ai_addrlen);
    if (failed != 0 && errno != EINPROGRESS && errno != EINTR) return Failed(ReasonOf(errno));
    tried_ = std::move(tried);
    return std::nullopt;
  }

  std::optional<ReadOutcome> WaitConnected(milliseconds longest) {
    pollfd wanted = {tried_.Number(), POLLOUT, 0};
    const int ready = poll(&wanted, 1, static_cast<int>(longest.count()));
    if (ready < 0 && errno != EINTR) return Failed("waiting failed: " + ReasonOf(errno));
    if (ready <= 0 && steady_clock::now() < until_) return ReadOutcome{};
    if (ready <= 0) return Failed("no answer" + Late());
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(tried_.Number(), SOL_SOCKET, SO_ERROR, &error, &size);
    if (error != 0) return Failed(ReasonOf(error));
    stream_ = std::make_unique<DescriptorStream>(std::move(tried_), "", silence_,
                                                 "the other side closed the connection");
    return std::nullopt;
  }

  /// Of one address: the next is tried.
  std::optional<ReadOutcome> Failed(std::string problem) {
    problem_ = std::move(problem);
    tried_ = Descriptor();
    return std::nullopt;
  }

  std::chrono::seconds silence_;
  HostLookup lookup_;
  steady_clock::time_point until_;
  bool looked_up_ = false;
  const addrinfo* next_ = nullptr;
  Descriptor tried_;
  std::string problem_;                 ///< with the address before
  std::unique_ptr<ByteStream> stream_;  ///< once it is connected
};

}  // namespace

std::unique_ptr<ByteStream> OpenTcp(const SourceSpec& spec, const ConnectionOptions& options) {
  return std::make_unique<TcpStream>(spec, options);
}

}  // namespace orsolva_host::live
