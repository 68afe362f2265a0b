#include "host/live/serving/client_desk.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <utility>

namespace orsolva_host::live {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t kReadAtOnce = 4096;
constexpr milliseconds kClosingTime{1000};  ///< for a client to see the reply before its connection ends
constexpr milliseconds kLook{250};
constexpr const char* kEndOfHead = "\r\n\r\n";
constexpr const char* kInternalError =
    "HTTP/1.1 500 Internal Server Error\r\nConnection: close\r\nContent-Length: 0\r\n\r\n";
constexpr std::size_t kEndOfHeadSize = 4;

bool WouldWait(ssize_t count) {
  return count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

}  // namespace

ClientDesk::ClientDesk(ConnectionThreads& workers, Answer answer, const DeskLimits& limits)
    : workers_(workers), answer_(std::move(answer)), limits_(limits) {
  if (pipe(wake_) == 0) {
    for (const int end : wake_) fcntl(end, F_SETFL, fcntl(end, F_GETFL) | O_NONBLOCK);
    for (const int end : wake_) fcntl(end, F_SETFD, FD_CLOEXEC);
  }
  thread_ = std::thread([this] { Run(); });
}

ClientDesk::~ClientDesk() {
  Stop();
  for (const int end : wake_) close(end);
}

void ClientDesk::Take(int socket) {
  fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK);
  {
    const std::lock_guard lock(mutex_);
    arrived_.push_back(socket);
  }
  Wake();
}

void ClientDesk::Stop() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  Wake();
  if (thread_.joinable()) thread_.join();
  for (const int socket : std::exchange(arrived_, {})) close(socket);
  while (!clients_.empty()) Close(clients_.begin());
}

/// A full pipe wakes as well.
void ClientDesk::Wake() const {
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = write(wake_[1], &byte, 1);
}

void ClientDesk::Run() {
  std::vector<std::uint64_t> ready;
  while (true) {
    Wait(ready);
    {
      const std::lock_guard lock(mutex_);
      if (stopped_) return;
    }
    try {
      Round(ready);
    } catch (const std::exception& error) {  // of memory: clients keep their limits of time
      Failed(error.what());
    }
  }
}

void ClientDesk::Round(const std::vector<std::uint64_t>& ready) {
  for (const std::uint64_t id : ready) {
    const auto client = clients_.find(id);
    Serve(id, client->second);
    if (client->second.socket < 0) clients_.erase(client);
  }
  TakeArrivals();
  CloseLate();
}

void ClientDesk::Wait(std::vector<std::uint64_t>& ready) {
  std::vector<pollfd> wanted = {{wake_[0], POLLIN, 0}};
  std::vector<std::uint64_t> ids;
  for (const auto& [id, client] : clients_) {
    if (client.phase == Phase::kAnswering) continue;
    ids.push_back(id);
    wanted.push_back(
        {client.socket, static_cast<short>(client.phase == Phase::kSending ? POLLOUT : POLLIN), 0});
  }
  ready.clear();
  if (poll(wanted.data(), wanted.size(), static_cast<int>(kLook.count())) <= 0) return;
  std::array<char, kReadAtOnce> unused;
  if (wanted[0].revents != 0)
    while (read(wake_[0], unused.data(), unused.size()) > 0) continue;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (wanted[i + 1].revents != 0) ready.push_back(ids[i]);
  }
}

void ClientDesk::Enter(Client& client, Phase phase, milliseconds time) const {
  client.phase = phase;
  client.moved = Clock::now();
  client.until = client.moved + time;
}

void ClientDesk::TakeArrivals() {
  std::vector<int> arrived;
  std::vector<std::pair<std::uint64_t, HttpReply>> replies;
  {
    const std::lock_guard lock(mutex_);
    arrived.swap(arrived_);
    replies.swap(replies_);
  }
  for (auto& [id, reply] : replies) {
    const auto place = clients_.find(id);
    if (place == clients_.end()) continue;
    Client& client = place->second;
    client.out = std::move(reply.bytes);
    client.sent = 0;
    client.last = reply.last;
    Enter(client, Phase::kSending, limits_.reply_time);
    SendMore(id, client);
    if (client.socket < 0) clients_.erase(id);
  }
  for (const int socket : arrived) {
    Client& client = clients_[next_id_];
    client.socket = socket;
    Enter(client, Phase::kReading, limits_.head_time);
    Read(next_id_, client);
    if (client.socket < 0) clients_.erase(next_id_);
    ++next_id_;
    MakeRoom();
  }
}

void ClientDesk::Serve(std::uint64_t id, Client& client) {
  if (client.phase == Phase::kReading) return Read(id, client);
  if (client.phase == Phase::kSending) return SendMore(id, client);
  if (client.phase == Phase::kClosing) Discard(client);
}

/// A closed connection has no socket; its caller leaves it out.
void ClientDesk::Read(std::uint64_t id, Client& client) {
  std::array<char, kReadAtOnce> bytes;
  const ssize_t count = recv(client.socket, bytes.data(), bytes.size(), 0);
  if (WouldWait(count)) return;
  if (count > 0) client.in.append(bytes.data(), static_cast<std::size_t>(count));
  if (count <= 0 ||
      (client.in.size() > limits_.head_bytes && client.in.find(kEndOfHead) == std::string::npos)) {
    close(std::exchange(client.socket, -1));
    return;
  }
  Begin(id, client);
}

/// Hands a request on when it is whole.
void ClientDesk::Begin(std::uint64_t id, Client& client) {
  const std::size_t end = client.in.find(kEndOfHead);
  if (end == std::string::npos) return;
  std::string request = client.in.substr(0, end + kEndOfHeadSize);
  client.in.erase(0, request.size());
  Enter(client, Phase::kAnswering, limits_.reply_time);
  const bool last = ++client.requests >= limits_.requests;
  workers_.Run(
      [this, id, last, request = std::move(request)]() mutable { AnswerFor(id, std::move(request), last); });
}

/// On a thread of the workers, which an exception would end, and the program with it.
void ClientDesk::AnswerFor(std::uint64_t id, std::string request, bool last) {
  try {
    HttpReply reply;
    try {
      reply = answer_(std::move(request), last);
    } catch (const std::exception& error) {
      reply = Failed(error.what());
    } catch (...) {
      reply = Failed("unknown exception");
    }
    const std::lock_guard lock(mutex_);
    replies_.emplace_back(id, std::move(reply));
  } catch (const std::exception&) {
    ++failures_;  // without memory for a reply; the client's time runs out
  }
  Wake();
}

HttpReply ClientDesk::Failed(const char* why) {
  const std::uint64_t count = ++failures_;
  if ((count & (count - 1)) == 0) {
    std::fprintf(stderr, "orsolva: the service failed on a request (%llu so far): %s\n",
                 static_cast<unsigned long long>(count), why);
  }
  return {kInternalError, true};
}

void ClientDesk::SendMore(std::uint64_t id, Client& client) {
  while (client.sent < client.out.size()) {
    const ssize_t count = send(client.socket, client.out.data() + client.sent,
                               client.out.size() - client.sent, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (WouldWait(count)) return;
    if (count <= 0) {
      close(std::exchange(client.socket, -1));
      return;
    }
    client.sent += static_cast<std::size_t>(count);
    client.moved = Clock::now();
  }
  client.out = {};
  client.sent = 0;
  if (client.last) {
    // What the client still sends is read, or its system would throw the reply away.
    shutdown(client.socket, SHUT_WR);
    return Enter(client, Phase::kClosing, kClosingTime);
  }
  Enter(client, Phase::kReading, limits_.head_time);
  Begin(id, client);
}

void ClientDesk::Discard(Client& client) {
  std::array<char, kReadAtOnce> unused;
  const ssize_t count = recv(client.socket, unused.data(), unused.size(), 0);
  if (count == 0 || (count < 0 && !WouldWait(count))) close(std::exchange(client.socket, -1));
}

bool ClientDesk::IsLate(const Client& client, Clock::time_point now) const {
  return now > client.until || (client.phase == Phase::kSending && now > client.moved + limits_.stall_time);
}

void ClientDesk::CloseLate() {
  const auto now = Clock::now();
  for (auto client = clients_.begin(); client != clients_.end();) {
    const auto next = std::next(client);
    if (IsLate(client->second, now)) Close(client);
    client = next;
  }
  while (Unsent() > limits_.unsent_bytes && CloseSlowest(Phase::kSending)) continue;
}

void ClientDesk::MakeRoom() {
  while (clients_.size() > limits_.clients) {
    if (!CloseSlowest(Phase::kClosing) && !CloseSlowest(Phase::kReading) && !CloseSlowest(Phase::kSending))
      return Close(std::prev(clients_.end()));  // the newest: all others wait for their replies
  }
}

/// Of the clients in a phase, the one that will have had its time first.
bool ClientDesk::CloseSlowest(Phase phase) {
  auto slowest = clients_.end();
  for (auto client = clients_.begin(); client != clients_.end(); ++client) {
    if (client->second.phase != phase) continue;
    if (slowest == clients_.end() || client->second.until < slowest->second.until) slowest = client;
  }
  if (slowest == clients_.end()) return false;
  Close(slowest);
  return true;
}

void ClientDesk::Close(Clients::iterator client) {
  close(client->second.socket);
  clients_.erase(client);
}

std::size_t ClientDesk::Unsent() const {
  std::size_t bytes = 0;
  for (const auto& [id, client] : clients_) bytes += client.out.size() - client.sent;
  return bytes;
}

}  // namespace orsolva_host::live
