// The service's HTTP server: /metrics, /state.json, /events.json and the page at /.
//
// It reads the board and nothing else. One thread takes all requests in and sends all replies out
// (client_desk.h), so that no slow, silent or hostile client holds a thread, and none holds the judging.
// There is no TLS and no password; a proxy has both.
#ifndef ORSOLVA_LIVE_SERVING_LIVE_SERVER_H
#define ORSOLVA_LIVE_SERVING_LIVE_SERVER_H

#include <memory>

#include "host/live/live_board.h"
#include "host/live/serving/listen_address.h"

namespace orsolva_host::live {

class LiveServer {
 public:
  /// Listens from now on. The board must outlive the server.
  /// @throws RunError when it cannot listen there, or when the program was built without a server
  LiveServer(LiveBoard& board, const ListenAddress& address);
  /// Stops the board too, whose waiting readers would keep a thread.
  ~LiveServer();
  LiveServer(const LiveServer&) = delete;
  LiveServer& operator=(const LiveServer&) = delete;

  /// As given, with the port that was found for 0.
  const ListenAddress& Address() const;

  /// Whether this program has a server.
  static bool Available();

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_LIVE_SERVER_H
