#include "host/live/serving/live_server.h"

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>

#include "host/judging/run_error.h"
#include "host/live/serving/client_desk.h"
#include "host/live/serving/connection_threads.h"
#include "host/live/serving/live_http.h"

namespace orsolva_host::live {
namespace {

constexpr std::size_t kThreads = 32;

}  // namespace

class LiveServer::Implementation {
 public:
  Implementation(LiveBoard& board, const ListenAddress& address)
      : board_(board),
        address_(address),
        threads_(kThreads),
        server_(board),
        desk_(threads_,
              [this](const std::string& request, bool last) { return server_.Answer(request, last); }) {
    server_.OnConnection([this](int socket) { desk_.Take(socket); });
    Bind();
    server_.WidenQueue();
    listening_ = std::thread([this] {
      server_.listen_after_bind();
      ended_ = true;
    });
    while (!server_.is_running() && !ended_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  ~Implementation() {
    board_.Stop();
    server_.stop();
    listening_.join();
    threads_.Join();
  }

  const ListenAddress& Address() const { return address_; }

 private:
  void Bind() {
    if (address_.port == 0) {
      address_.port = server_.bind_to_any_port(address_.host);
      if (address_.port > 0) return;
    } else if (server_.bind_to_port(address_.host, address_.port)) {
      return;
    }
    throw RunError("cannot listen on " + address_.host + " port " + std::to_string(address_.port) +
                   ": another program has the port, the address is not of this machine, or the port needs "
                   "rights of the system; choose another with --listen");
  }

  LiveBoard& board_;
  ListenAddress address_;
  ConnectionThreads threads_;
  LiveHttp server_;
  ClientDesk desk_;
  std::atomic<bool> ended_{false};
  std::thread listening_;
};

LiveServer::LiveServer(LiveBoard& board, const ListenAddress& address)
    : implementation_(std::make_unique<Implementation>(board, address)) {}

LiveServer::~LiveServer() = default;

const ListenAddress& LiveServer::Address() const { return implementation_->Address(); }

bool LiveServer::Available() { return true; }

}  // namespace orsolva_host::live
