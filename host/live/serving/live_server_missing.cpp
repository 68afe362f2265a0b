// In place of live_server.cpp when the program is built without cpp-httplib and prometheus-cpp.
#include "host/judging/run_error.h"
#include "host/live/serving/live_server.h"

namespace orsolva_host::live {

class LiveServer::Implementation {
 public:
  ListenAddress address;
};

LiveServer::LiveServer(LiveBoard&, const ListenAddress&) {
  throw RunError(
      "this program was built without a server of metrics and pages: build it with cpp-httplib and "
      "prometheus-cpp (Debian: libcpp-httplib-dev and prometheus-cpp-dev), or leave the option --listen out");
}

LiveServer::~LiveServer() = default;

const ListenAddress& LiveServer::Address() const { return implementation_->address; }

bool LiveServer::Available() { return false; }

}  // namespace orsolva_host::live
