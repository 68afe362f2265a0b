// The paths of the service: the bytes of a request in, those of a reply out.
#ifndef ORSOLVA_LIVE_SERVING_LIVE_HTTP_H
#define ORSOLVA_LIVE_SERVING_LIVE_HTTP_H

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/live/live_board.h"
#include "host/live/serving/client_desk.h"
#include "host/live/serving/shared_texts.h"
#include "host/live/serving/state_json.h"

namespace orsolva_host::live {

/// httplib's server, which listens and knows HTTP; of its connections it only takes the sockets.
class LiveHttp : public httplib::Server {
 public:
  explicit LiveHttp(LiveBoard& board);

  /// May be called from any thread; waits where the request asks it to wait for events.
  HttpReply Answer(const std::string& request, bool last);
  /// Given each connection, as it is accepted, to be closed.
  void OnConnection(std::function<void(int socket)> take) { take_ = std::move(take); }
  /// Once bound: lets more clients wait to be accepted than the five of httplib. A connection beyond them is
  /// tried again by its client's system after a second.
  void WidenQueue() { ::listen(svr_sock_, kQueue); }

 private:
  using Request = httplib::Request;
  using Response = httplib::Response;

  static constexpr int kQueue = 128;

  bool process_and_close_socket(socket_t socket) override;
  void Configure();
  void AddPaths();
  StateHead Head() const;
  void Metrics(const Request& request, Response& response);
  void State(const Request& request, Response& response);
  LiveBoard::StatePointer StationAsShown(const std::string& name) const;
  void Events(const Request& request, Response& response);
  std::vector<LiveEvent> EventsAfter(std::uint64_t after, std::chrono::milliseconds wait);

  LiveBoard& board_;
  SharedTexts texts_;
  std::atomic<int> polls_{0};
  std::function<void(int socket)> take_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_LIVE_HTTP_H
