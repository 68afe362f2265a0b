// A port of this machine that TCP sources connect to.
#ifndef ORSOLVA_TESTS_LIVE_CORE_LISTENER_H
#define ORSOLVA_TESTS_LIVE_CORE_LISTENER_H

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <string>
#include <vector>

#include "host/live/sources/descriptor_stream.h"

namespace orsolva_test {

class Listener {
 public:
  /// @param full  its queue is: it neither accepts nor refuses
  explicit Listener(bool full) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(socket_.Number(), any, sizeof address), 0);
    EXPECT_EQ(listen(socket_.Number(), full ? 0 : 5), 0);
    socklen_t size = sizeof address;
    getsockname(socket_.Number(), any, &size);
    port_ = ntohs(address.sin_port);
    for (int i = 0; full && i < 3; ++i) {
      waiting_.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
      connect(waiting_.back().Number(), any, sizeof address);
    }
  }
  int Accept() const { return accept(socket_.Number(), nullptr, nullptr); }
  /// Wakes who accepts, with -1.
  void Close() const { shutdown(socket_.Number(), SHUT_RDWR); }
  std::string Source() const { return "tcp://127.0.0.1:" + std::to_string(port_); }

 private:
  orsolva_host::live::Descriptor socket_;
  int port_ = 0;
  std::vector<orsolva_host::live::Descriptor> waiting_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_LIVE_CORE_LISTENER_H
