// The connections of clients: takes requests in and sends replies out, and waits for no client in particular.
//
// One thread looks at all connections at once, so that a client that sends its request byte by byte, or reads
// its reply as slowly, holds no thread. A thread of the workers has a request from its last byte until its
// reply is made.
#ifndef ORSOLVA_LIVE_SERVING_CLIENT_DESK_H
#define ORSOLVA_LIVE_SERVING_CLIENT_DESK_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/live/serving/connection_threads.h"

namespace orsolva_host::live {

/// The bytes of a reply, and whether the connection is over with it.
struct HttpReply {
  std::string bytes;
  bool last = true;
};

struct DeskLimits {
  std::size_t clients = 256;                         ///< beyond it the slowest one loses its connection
  std::size_t head_bytes = 16 * 1024;                ///< of a request
  std::size_t unsent_bytes = std::size_t{32} << 20;  ///< of all replies together
  std::size_t requests = 100;                        ///< of a connection
  std::chrono::milliseconds head_time{3000};         ///< for a whole request, or until the next one begins
  std::chrono::milliseconds stall_time{5000};        ///< in which a client reads at least something
  std::chrono::milliseconds reply_time{60'000};      ///< to make a reply, and for the client to take it
};

class ClientDesk {
 public:
  /// A request whose reply cannot be made, for whatever exception, is refused with 500 and counted, and the
  /// first, second, fourth, eighth ... of them is said on standard error.
  /// @param request  with its empty line @param last  whether the connection takes no further request
  using Answer = std::function<HttpReply(std::string request, bool last)>;

  ClientDesk(ConnectionThreads& workers, Answer answer, const DeskLimits& limits = {});
  /// Every connection is closed. No worker may be at work for the desk.
  ~ClientDesk();
  ClientDesk(const ClientDesk&) = delete;
  ClientDesk& operator=(const ClientDesk&) = delete;

  /// Takes a connection over, which it closes in the end. May be called from any thread.
  void Take(int socket);
  /// Requests that ended with an exception.
  std::uint64_t Failures() const { return failures_; }
  /// Closes what is idle; replies under way to the desk are dropped.
  void Stop();

 private:
  using Clock = std::chrono::steady_clock;
  enum class Phase : std::uint8_t { kReading, kAnswering, kSending, kClosing };

  struct Client {
    int socket = -1;
    Phase phase = Phase::kReading;
    std::string in, out;
    std::size_t sent = 0;
    std::size_t requests = 0;
    bool last = false;
    Clock::time_point until;  ///< the phase ends at the latest
    Clock::time_point moved;  ///< the last time it took bytes of a reply
  };
  using Clients = std::map<std::uint64_t, Client>;

  void Run();
  void Round(const std::vector<std::uint64_t>& ready);
  void AnswerFor(std::uint64_t id, std::string request, bool last);
  HttpReply Failed(const char* why);
  void Wake() const;
  void TakeArrivals();
  void Wait(std::vector<std::uint64_t>& ready);
  void Serve(std::uint64_t id, Client& client);
  void Read(std::uint64_t id, Client& client);
  void Begin(std::uint64_t id, Client& client);
  void SendMore(std::uint64_t id, Client& client);
  void Discard(Client& client);
  void Enter(Client& client, Phase phase, std::chrono::milliseconds time) const;
  bool IsLate(const Client& client, Clock::time_point now) const;
  void CloseLate();
  void MakeRoom();
  bool CloseSlowest(Phase phase);
  void Close(Clients::iterator client);
  std::size_t Unsent() const;

  ConnectionThreads& workers_;
  Answer answer_;
  DeskLimits limits_;
  std::atomic<std::uint64_t> failures_{0};
  int wake_[2] = {-1, -1};  ///< a pipe
  Clients clients_;         ///< of the desk's thread
  std::uint64_t next_id_ = 1;

  std::mutex mutex_;
  std::vector<int> arrived_;
  std::vector<std::pair<std::uint64_t, HttpReply>> replies_;
  bool stopped_ = false;
  std::thread thread_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_CLIENT_DESK_H
