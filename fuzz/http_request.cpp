// Any bytes as the request of a client of the live page: the reply is one of HTTP, as long as it says.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "fuzz/require.h"
#include "host/live/serving/live_http.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orsolva_host::live;
using orsolva_fuzz::Require;

/// A station and an event; nobody waits for the next one.
class Service {
 public:
  Service() {
    auto state = std::make_shared<StationState>();
    state->name = "BERN";
    board_.Publish(std::move(state));
    board_.Add({});
    board_.Stop();
    http_ = std::make_unique<LiveHttp>(board_);
  }
  HttpReply Answer(const std::string& request) { return http_->Answer(request, false); }

 private:
  LiveBoard board_;
  std::unique_ptr<LiveHttp> http_;
};

void CheckReply(const HttpReply& reply, bool is_head) {
  const std::string& bytes = reply.bytes;
  if (bytes.empty()) return Require(reply.last, "a client without a reply loses its connection");
  Require(bytes.rfind("HTTP/1.1 ", 0) == 0, "a reply begins with its status");
  const std::size_t end = bytes.find("\r\n\r\n");
  Require(end != std::string::npos, "a head ends");
  const std::string name = "\r\nContent-Length: ";
  const std::size_t at = bytes.find(name);
  if (at == std::string::npos || at > end || is_head) return;
  const std::size_t length = std::strtoul(bytes.c_str() + at + name.size(), nullptr, 10);
  // An interim reply (100 Continue) may come before it.
  Require(bytes.size() >= end + 4 + length, "a reply is as long as it says");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Service service;
  const std::string request(reinterpret_cast<const char*>(data), size);
  // The server skips blanks before the method.
  const std::size_t method = std::min(request.find_first_not_of(" \t"), size);
  CheckReply(service.Answer(request + "\r\n\r\n"), request.compare(method, 4, "HEAD") == 0);
  return 0;
}
