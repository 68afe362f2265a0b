#include "host/live/serving/live_server.h"

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "host/judging/run_error.h"
#include "host/live/serving/connection_threads.h"
#include "host/live/serving/live_page.h"
#include "host/live/serving/metrics.h"
#include "host/live/serving/shared_texts.h"
#include "host/live/serving/state_json.h"

namespace orsolva_host::live {
namespace {

using Milliseconds = std::chrono::milliseconds;
using httplib::Request;
using httplib::Response;

constexpr std::size_t kThreads = 32;
constexpr int kMaxPolls = 24;  // waiting at a time; the rest of the threads stay for those that do not wait
constexpr std::size_t kMaxEventsPerAnswer = 200;
constexpr Milliseconds kLongestPoll(20'000);
constexpr Milliseconds kFresh(500);
constexpr std::size_t kKeptTexts = 8;
constexpr std::chrono::seconds kReadTimeout(3);
constexpr std::chrono::seconds kWriteTimeout(5);
constexpr std::chrono::seconds kLongestAnswer(
    60);  // a client that reads slower than this loses its connection
constexpr std::size_t kPiece = 64 * 1024;
constexpr std::size_t kMaxBody = 1024;  // no request has one
constexpr const char* kJson = "application/json";

/// Gives httplib's connections to threads whose number does not grow.
class Queue : public httplib::TaskQueue {
 public:
  explicit Queue(ConnectionThreads& threads) : threads_(threads) {}
  void enqueue(std::function<void()> job) override { threads_.Run(std::move(job)); }
  void shutdown() override { threads_.Join(); }

 private:
  ConnectionThreads& threads_;
};

/// Two services on one port would share its clients at random: the port is not taken while another has it.
void SetSocketOptions(socket_t socket) {
  int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&yes), sizeof yes);
}

std::int64_t NowUtc_ns() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

/// A whole number; std::nullopt for anything else.
std::optional<std::uint64_t> NumberOf(const std::string& text) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// Sends a text that others send too, within a limited time.
void Send(Response& response, SharedText text, const char* type) {
  const auto until = std::chrono::steady_clock::now() + kLongestAnswer;
  const std::size_t size = text->size();
  response.set_content_provider(
      size, type, [text = std::move(text), until](std::size_t at, std::size_t left, httplib::DataSink& sink) {
        if (std::chrono::steady_clock::now() > until) return false;
        return sink.write(text->data() + at, std::min(left, kPiece));
      });
}

void Refuse(Response& response, int status, const char* why) {
  response.status = status;
  response.set_content(std::string(why) + "\n", "text/plain");
}

}  // namespace

class LiveServer::Implementation {
 public:
  Implementation(LiveBoard& board, const ListenAddress& address)
      : board_(board), address_(address), threads_(kThreads) {
    Configure();
    AddPaths();
    Bind();
    listening_ = std::thread([this] {
      server_.listen_after_bind();
      ended_ = true;
    });
    while (!server_.is_running() && !ended_) std::this_thread::sleep_for(Milliseconds(1));
  }

  ~Implementation() {
    board_.Stop();
    threads_.StopWaiting();
    server_.stop();
    listening_.join();
  }

  const ListenAddress& Address() const { return address_; }

 private:
  void Configure() {
    server_.new_task_queue = [this] { return new Queue(threads_); };
    server_.set_socket_options(SetSocketOptions);
    server_.set_tcp_nodelay(true);
    server_.set_read_timeout(kReadTimeout);
    server_.set_write_timeout(kWriteTimeout);
    server_.set_keep_alive_timeout(kReadTimeout.count());
    server_.set_payload_max_length(kMaxBody);
    server_.set_default_headers({{"Cache-Control", "no-store"}, {"X-Content-Type-Options", "nosniff"}});
    // A request for many parts of a page would return many times its size.
    server_.set_pre_routing_handler([](const Request& request, Response& response) {
      if (!request.has_header("Range")) return httplib::Server::HandlerResponse::Unhandled;
      response.status = 416;
      return httplib::Server::HandlerResponse::Handled;
    });
    server_.set_exception_handler([](const Request&, Response& response, std::exception_ptr) {
      Refuse(response, 500, "internal error");
    });
  }

  void AddPaths() {
    server_.Get("/", [](const Request&, Response& response) {
      static const SharedText page = std::make_shared<const std::string>(LivePage());
      Send(response, page, "text/html; charset=utf-8");
    });
    server_.Get("/metrics",
                [this](const Request& request, Response& response) { Metrics(request, response); });
    server_.Get("/state.json",
                [this](const Request& request, Response& response) { State(request, response); });
    server_.Get("/events.json",
                [this](const Request& request, Response& response) { Events(request, response); });
  }

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

  StateHead Head() const { return {NowUtc_ns(), board_.LastEventId()}; }

  void Metrics(const Request& request, Response& response) {
    const SharedText plain = texts_.Get("/metrics", [this] { return MetricsText(board_.Stations()); });
    if (!WantsOpenMetrics(request.get_header_value("Accept")))
      return Send(response, plain, kPlainMetricsType);
    Send(response, std::make_shared<const std::string>(OpenMetricsText(*plain)), kOpenMetricsType);
  }

  void State(const Request& request, Response& response) {
    if (!request.has_param("station")) {
      const auto make = [this] { return NetworkJson(board_.Stations(), Head()); };
      return Send(response, texts_.Get("/state.json", make), kJson);
    }
    const std::string name = request.get_param_value("station");
    const LiveBoard::StatePointer station = StationAsShown(name);
    if (!station) return Refuse(response, 404, "no station of that name");
    const auto make = [&] { return StationJson(*station, Head()); };
    Send(response, texts_.Get("/state.json?" + name, make), kJson);
  }

  /// By the name that the documents have of it. @return null when there is none
  LiveBoard::StatePointer StationAsShown(const std::string& name) const {
    for (const LiveBoard::StatePointer& station : board_.Stations()) {
      if (ValidUtf8(station->name) == name) return station;
    }
    return nullptr;
  }

  /// Events after an id; without any it waits for the first one, up to the seconds asked for.
  void Events(const Request& request, Response& response) {
    const auto number = [&](const char* name, std::uint64_t otherwise) {
      return request.has_param(name) ? NumberOf(request.get_param_value(name)) : std::optional(otherwise);
    };
    const std::optional<std::uint64_t> after = number("after", 0);
    const std::optional<std::uint64_t> wait_s = number("wait", kLongestPoll.count() / 1000);
    if (!after || !wait_s) return Refuse(response, 400, "expected after=ID and wait=SECONDS");
    const Milliseconds wait(1000 * std::min<std::uint64_t>(*wait_s, kLongestPoll.count() / 1000));
    std::string json = "{\"events\":[";
    const char* separator = "";
    std::uint64_t last = std::min(*after, board_.LastEventId());  // of an earlier start it may be larger
    for (const LiveEvent& event : EventsAfter(*after, wait)) {
      json += separator + event.json;
      separator = ",\n";
      last = event.id;
    }
    json += "],\"last_event_id\":" + std::to_string(last) + "}";
    Send(response, std::make_shared<const std::string>(std::move(json)), kJson);
  }

  std::vector<LiveEvent> EventsAfter(std::uint64_t after, Milliseconds wait) {
    const bool known = after <= board_.LastEventId();
    if (!known || polls_.fetch_add(1) >= kMaxPolls) {
      if (known) --polls_;
      return board_.EventsAfter(after, kMaxEventsPerAnswer);
    }
    std::vector<LiveEvent> events = board_.WaitForEvents(after, kMaxEventsPerAnswer, wait);
    --polls_;
    return events;
  }

  LiveBoard& board_;
  ListenAddress address_;
  ConnectionThreads threads_;
  SharedTexts texts_{kKeptTexts, kFresh};
  std::atomic<int> polls_{0};
  httplib::Server server_;
  std::atomic<bool> ended_{false};
  std::thread listening_;
};

LiveServer::LiveServer(LiveBoard& board, const ListenAddress& address)
    : implementation_(std::make_unique<Implementation>(board, address)) {}

LiveServer::~LiveServer() = default;

const ListenAddress& LiveServer::Address() const { return implementation_->Address(); }

bool LiveServer::Available() { return true; }

}  // namespace orsolva_host::live
