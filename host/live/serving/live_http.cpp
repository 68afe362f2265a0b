#include "host/live/serving/live_http.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "host/live/serving/live_page.h"
#include "host/live/serving/metrics.h"

namespace orsolva_host::live {
namespace {

using Milliseconds = std::chrono::milliseconds;
using httplib::Request;
using httplib::Response;

constexpr int kMaxPolls = 24;  // waiting at a time; the rest of the threads stay for those that do not wait
constexpr std::size_t kMaxEventsPerAnswer = 200;
constexpr Milliseconds kLongestPoll(20'000);
constexpr Milliseconds kFresh(500);
constexpr std::size_t kKeptTexts = 8;
constexpr const char* kBodyRefused =
    "HTTP/1.1 400 Bad Request\r\nConnection: close\r\nCache-Control: no-store\r\n"
    "X-Content-Type-Options: nosniff\r\nContent-Type: text/plain\r\nContent-Length: 29\r\n\r\n"
    "requests here have no bodies\n";
constexpr const char* kJson = "application/json";

/// A request that is there as a whole, and the reply as it is written.
class WholeRequest : public httplib::Stream {
 public:
  explicit WholeRequest(const std::string& request) : request_(request) {}

  bool is_readable() const override { return read_ < request_.size(); }
  bool is_writable() const override { return true; }
  ssize_t read(char* to, size_t size) override {
    const std::size_t count = request_.copy(to, size, read_);
    read_ += count;
    return static_cast<ssize_t>(count);
  }
  using httplib::Stream::write;
  ssize_t write(const char* from, size_t size) override {
    reply_.append(from, size);
    return static_cast<ssize_t>(size);
  }
  void get_remote_ip_and_port(std::string&, int&) const override {}
  void get_local_ip_and_port(std::string&, int&) const override {}
  socket_t socket() const override { return INVALID_SOCKET; }

  std::string TakeReply() { return std::move(reply_); }

 private:
  const std::string& request_;
  std::size_t read_ = 0;
  std::string reply_;
};

/// Connections are given on as they are accepted.
class AtOnce : public httplib::TaskQueue {
 public:
  void enqueue(std::function<void()> job) override { job(); }
  void shutdown() override {}
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

/// Brotli takes a second of processor time for the page, a hundred times that of gzip.
void CompressWithGzipOnly(Request& request) {
  const bool gzip = request.get_header_value("Accept-Encoding").find("gzip") != std::string::npos;
  request.headers.erase("Accept-Encoding");
  if (gzip) request.set_header("Accept-Encoding", "gzip");
}

/// Whether a body follows the head of a request, whatever its method: what follows is not read, and must not
/// be taken for the next request.
bool AnnouncesBody(std::string_view head) {
  constexpr std::string_view kBlank = " \t";
  for (std::size_t begin = 0; begin < head.size();) {
    const std::size_t end = std::min(head.find('\n', begin), head.size());
    const std::string_view line = head.substr(begin, end - begin);
    begin = end + 1;
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    std::string name(line.substr(0, line.find_first_of(" \t:")));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (name == "transfer-encoding") return true;
    if (name != "content-length") continue;
    const std::size_t value = line.find_first_not_of(kBlank, colon + 1);
    if (value == std::string_view::npos ||
        line.substr(value, line.find_last_not_of(" \t\r") + 1 - value) != "0")
      return true;
  }
  return false;
}

void Refuse(Response& response, int status, const char* why) {
  response.status = status;
  response.set_content(std::string(why) + "\n", "text/plain");
}

}  // namespace

LiveHttp::LiveHttp(LiveBoard& board) : board_(board), texts_(kKeptTexts, kFresh) {
  Configure();
  AddPaths();
}

bool LiveHttp::process_and_close_socket(socket_t socket) {
  take_(socket);
  return true;
}

HttpReply LiveHttp::Answer(const std::string& request, bool last) {
  if (AnnouncesBody(request)) return {kBodyRefused, true};
  WholeRequest stream(request);
  HttpReply reply;
  reply.last = last;
  const bool understood = process_request(stream, last, reply.last, CompressWithGzipOnly);
  reply.bytes = stream.TakeReply();
  reply.last = reply.last || last || !understood;
  return reply;
}

void LiveHttp::Configure() {
  new_task_queue = [] { return new AtOnce; };
  set_socket_options(SetSocketOptions);
  set_tcp_nodelay(true);
  set_default_headers({{"Cache-Control", "no-store"}, {"X-Content-Type-Options", "nosniff"}});
  // A request for many parts of a page would return many times its size.
  set_pre_routing_handler([](const Request& request, Response& response) {
    if (!request.has_header("Range")) return httplib::Server::HandlerResponse::Unhandled;
    response.status = 416;
    return httplib::Server::HandlerResponse::Handled;
  });
  set_exception_handler([](const Request&, Response& response, std::exception_ptr) {
    Refuse(response, 500, "internal error");
  });
}

void LiveHttp::AddPaths() {
  Get("/", [](const Request&, Response& response) {
    response.set_content(std::string(LivePage()), "text/html; charset=utf-8");
  });
  Get("/metrics", [this](const Request& request, Response& response) { Metrics(request, response); });
  Get("/state.json", [this](const Request& request, Response& response) { State(request, response); });
  Get("/events.json", [this](const Request& request, Response& response) { Events(request, response); });
}

StateHead LiveHttp::Head() const { return {NowUtc_ns(), board_.LastEventId()}; }

void LiveHttp::Metrics(const Request& request, Response& response) {
  const SharedText plain = texts_.Get("/metrics", [this] { return MetricsText(board_.Stations()); });
  if (!WantsOpenMetrics(request.get_header_value("Accept")))
    return response.set_content(*plain, kPlainMetricsType);
  response.set_content(OpenMetricsText(*plain), kOpenMetricsType);
}

void LiveHttp::State(const Request& request, Response& response) {
  if (!request.has_param("station")) {
    const auto make = [this] { return NetworkJson(board_.Stations(), Head()); };
    return response.set_content(*texts_.Get("/state.json", make), kJson);
  }
  const std::string name = request.get_param_value("station");
  const LiveBoard::StatePointer station = StationAsShown(name);
  if (!station) return Refuse(response, 404, "no station of that name");
  const auto make = [&] { return StationJson(*station, Head()); };
  response.set_content(*texts_.Get("/state.json?" + name, make), kJson);
}

/// By the name that the documents have of it. @return null when there is none
LiveBoard::StatePointer LiveHttp::StationAsShown(const std::string& name) const {
  for (const LiveBoard::StatePointer& station : board_.Stations()) {
    if (ValidUtf8(station->name) == name) return station;
  }
  return nullptr;
}

/// Events after an id; without any it waits for the first one, up to the seconds asked for.
void LiveHttp::Events(const Request& request, Response& response) {
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
  response.set_content(json, kJson);
}

std::vector<LiveEvent> LiveHttp::EventsAfter(std::uint64_t after, Milliseconds wait) {
  const bool known = after <= board_.LastEventId();
  if (!known || polls_.fetch_add(1) >= kMaxPolls) {
    if (known) --polls_;
    return board_.EventsAfter(after, kMaxEventsPerAnswer);
  }
  std::vector<LiveEvent> events = board_.WaitForEvents(after, kMaxEventsPerAnswer, wait);
  --polls_;
  return events;
}

}  // namespace orsolva_host::live
