#include <httplib.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "host/judging/run_error.h"
#include "host/live/serving/live_server.h"
#include "tests/live/serving/sample_board.h"
#include "tests/support/json_reader.h"

namespace orsolva_host::live {
namespace {

using orsolva_test::Json;
using Clock = std::chrono::steady_clock;
constexpr std::int64_t kNow_ns = 1'795'363'200'000'000'000;  // 2026-11-22 16:00 UTC

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

class ServingTest : public ::testing::Test {
 protected:
  ServingTest() { FillSampleBoard(board, kNow_ns); }

  httplib::Client Client() { return httplib::Client("127.0.0.1", server.Address().port); }

  LiveBoard board;
  LiveServer server{board, {"127.0.0.1", 0}};
};

TEST_F(ServingTest, EveryPathHasItsTypeAndOthersAreNotFound) {
  httplib::Client client = Client();
  const std::pair<const char*, const char*> paths[] = {
      {"/", "text/html; charset=utf-8"},
      {"/metrics", "text/plain; version=0.0.4; charset=utf-8"},
      {"/state.json", "application/json"},
      {"/state.json?station=BERN", "application/json"},
      {"/events.json?after=0", "application/json"}};
  for (const auto& [path, type] : paths) {
    const auto answer = client.Get(path);
    ASSERT_TRUE(answer) << path;
    EXPECT_EQ(answer->status, 200) << path;
    EXPECT_EQ(answer->get_header_value("Content-Type"), type) << path;
    EXPECT_EQ(answer->get_header_value("X-Content-Type-Options"), "nosniff") << path;
    EXPECT_FALSE(answer->has_header("Access-Control-Allow-Origin")) << path;
  }
  EXPECT_EQ(client.Get("/state.json?station=none")->status, 404);
  EXPECT_EQ(client.Get("/secret")->status, 404);
  EXPECT_EQ(client.Get("/events.json?after=-1")->status, 400);
}

TEST_F(ServingTest, CompressesWithGzipAloneWhateverElseAClientTakes) {
  httplib::Client client = Client();
  client.set_decompress(false);
  const auto encoding = [&](const char* accepted) {
    return client.Get("/", {{"Accept-Encoding", accepted}})->get_header_value("Content-Encoding");
  };
  EXPECT_EQ(encoding("gzip, deflate, br, zstd"), "gzip");
  EXPECT_EQ(encoding("br"), "");
  EXPECT_EQ(encoding("identity"), "");
}

TEST_F(ServingTest, AStationIsFoundByTheNameThatIsShown) {
  httplib::Client client = Client();
  const Json network = Json::parse(client.Get("/state.json")->body);
  for (const Json& station : network.at("stations")) {
    const std::string name = station.at("name").get<std::string>();
    const auto answer = client.Get("/state.json", httplib::Params{{"station", name}}, httplib::Headers{});
    ASSERT_EQ(answer->status, 200) << name;
    EXPECT_EQ(Json::parse(answer->body).at("station").at("name").get<std::string>(), name);
  }
}

TEST_F(ServingTest, OpenMetricsGoesToThoseWhoAskForIt) {
  httplib::Client client = Client();
  const auto open =
      client.Get("/metrics", {{"Accept", "application/openmetrics-text;version=1.0.0,text/plain"}});
  EXPECT_EQ(open->get_header_value("Content-Type"),
            "application/openmetrics-text; version=1.0.0; charset=utf-8");
  EXPECT_NE(open->body.find("# TYPE orsolva_epochs counter\n"), std::string::npos);
  EXPECT_NE(open->body.find("\norsolva_epochs_total{station=\"BERN\"} 86395\n"), std::string::npos);
  EXPECT_EQ(open->body.substr(open->body.size() - 6), "# EOF\n");
  const auto plain = client.Get("/metrics");
  EXPECT_NE(plain->body.find("# TYPE orsolva_epochs_total counter\n"), std::string::npos);
  EXPECT_EQ(plain->body.find("# EOF"), std::string::npos);
}

TEST_F(ServingTest, EventsComeAfterTheIdInOrder) {
  httplib::Client client = Client();
  const Json all = Json::parse(client.Get("/events.json?after=0")->body);
  EXPECT_EQ(all.at("last_event_id").get<int>(), 4);
  const Json rest = Json::parse(client.Get("/events.json?after=2")->body);
  ASSERT_EQ(rest.at("events").size(), 2U);
  EXPECT_EQ(rest.at("events").at(0).at("id").get<int>(), 3);
}

TEST_F(ServingTest, APollWaitsForTheNextEventAndNoLongerThanAskedFor) {
  httplib::Client client = Client();
  const auto start = Clock::now();
  EXPECT_EQ(Json::parse(client.Get("/events.json?after=4&wait=1")->body).at("events").size(), 0U);
  EXPECT_GE(SecondsSince(start), 0.9);
  std::thread later([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    LiveEvent event;
    event.station = "BERN";
    event.kind = "connected";
    board.Add(event);
  });
  const auto again = Clock::now();
  const Json found = Json::parse(client.Get("/events.json?after=4")->body);
  EXPECT_LT(SecondsSince(again), 3);
  later.join();
  ASSERT_EQ(found.at("events").size(), 1U);
  EXPECT_EQ(found.at("events").at(0).at("id").get<int>(), 5);
}

TEST_F(ServingTest, AnIdOfAnEarlierStartIsAnsweredAtOnce) {
  const auto start = Clock::now();
  const Json found = Json::parse(Client().Get("/events.json?after=1000")->body);
  EXPECT_EQ(found.at("last_event_id").get<int>(), 4);
  EXPECT_LT(SecondsSince(start), 3);
}

TEST_F(ServingTest, ManyPollsLeaveThreadsForOthers) {
  std::vector<std::thread> polls;
  for (int i = 0; i < 60; ++i) {
    polls.emplace_back([this] { Client().Get("/events.json?after=4&wait=20"); });
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const auto start = Clock::now();
  EXPECT_EQ(Client().Get("/metrics")->status, 200);
  EXPECT_LT(SecondsSince(start), 4);
  board.Add({});  // lets the polls go
  board.Stop();
  for (std::thread& poll : polls) poll.join();
}

/// A connection that sends what it is given and then neither reads nor writes.
class SilentClient {
 public:
  SilentClient(int port, const std::string& sent) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    const int small = 2048;
    setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    connected_ = connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                 send(socket_, sent.data(), sent.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(sent.size());
  }
  ~SilentClient() { close(socket_); }
  bool Connected() const { return connected_; }
  void Send(const std::string& text) const {
    send(socket_, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  }
  /// At most so many bytes, if there are any.
  void Read(std::size_t most) const {
    std::string bytes(most, '\0');
    recv(socket_, bytes.data(), most, MSG_DONTWAIT);
  }
  /// To the end of the connection.
  std::string ReadAll() const {
    std::string all;
    char byte = 0;
    while (recv(socket_, &byte, 1, 0) == 1) all += byte;
    return all;
  }
  bool IsClosed() const {
    char byte = 0;
    const ssize_t count = recv(socket_, &byte, 1, MSG_DONTWAIT);
    return count == 0 || (count < 0 && errno != EAGAIN && errno != EWOULDBLOCK);
  }

 private:
  int socket_;
  bool connected_ = false;
};

TEST_F(ServingTest, ClientsThatReadNothingNeverSlowThePublishing) {
  std::vector<std::unique_ptr<SilentClient>> clients;
  for (int i = 0; i < 30; ++i) {
    clients.push_back(std::make_unique<SilentClient>(
        server.Address().port, "GET /state.json?station=BERN HTTP/1.1\r\nHost: x\r\n\r\n"));
    ASSERT_TRUE(clients.back()->Connected());
  }
  const auto state = std::make_shared<const StationState>(SampleStation("BERN", 0, kNow_ns));
  double longest = 0;
  for (int i = 0; i < 200; ++i) {
    const auto start = Clock::now();
    board.Publish(state);
    longest = std::max(longest, SecondsSince(start));
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  EXPECT_LT(longest, 0.1);
  // They lose their connections when the time for writing is over; then others are served again.
  httplib::Client client = Client();
  client.set_read_timeout(20);
  const auto answer = client.Get("/metrics");
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 200);
}

/// Whether another client gets the state each time within a second, over some time.
void ExpectServed(httplib::Client client, double seconds) {
  const auto begun = Clock::now();
  while (SecondsSince(begun) < seconds) {
    const auto start = Clock::now();
    const auto answer = client.Get("/state.json");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    EXPECT_LT(SecondsSince(start), 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

TEST_F(ServingTest, ClientsThatSendByteByByteHoldNobodyUpAndLoseTheirConnections) {
  std::vector<std::unique_ptr<SilentClient>> clients;
  for (int i = 0; i < 50; ++i)
    clients.push_back(
        std::make_unique<SilentClient>(server.Address().port, "GET /state.json HTTP/1.1\r\nX: "));
  std::atomic<bool> over{false};
  std::thread dripping([&] {
    while (!over) {
      for (const auto& client : clients) client->Send("x");
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  });
  ExpectServed(Client(), 3.6);  // they have 3 s for their requests
  over = true;
  dripping.join();
  for (const auto& client : clients) EXPECT_TRUE(client->IsClosed());
}

TEST_F(ServingTest, ClientsThatReadSlowlyHoldNobodyUp) {
  std::vector<std::unique_ptr<SilentClient>> clients;
  for (int i = 0; i < 50; ++i) {
    const char* const path = i % 2 == 0 ? "/state.json?station=BERN" : "/events.json?after=0";
    clients.push_back(std::make_unique<SilentClient>(
        server.Address().port, std::string("GET ") + path + " HTTP/1.1\r\nHost: x\r\n\r\n"));
  }
  std::atomic<bool> over{false};
  std::thread sipping([&] {
    while (!over) {
      for (const auto& client : clients) client->Read(1);
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  });
  ExpectServed(Client(), 3);
  over = true;
  sipping.join();
}

TEST_F(ServingTest, OfTooManyClientsTheSlowestLeave) {
  std::vector<std::unique_ptr<SilentClient>> clients;
  for (int i = 0; i < 300; ++i)
    clients.push_back(std::make_unique<SilentClient>(server.Address().port, "GET / HTTP/1.1\r\n"));
  ExpectServed(Client(), 0.2);
  EXPECT_TRUE(clients.front()->IsClosed());
}

TEST_F(ServingTest, ARequestWithoutAnEndIsGivenUp) {
  SilentClient client(server.Address().port, "GET /state.json HTTP/1.1\r\n");
  const auto start = Clock::now();
  const std::string line = "X: " + std::string(1000, 'x') + "\r\n";
  while (!client.IsClosed() && SecondsSince(start) < 2) client.Send(line);
  EXPECT_LT(SecondsSince(start), 2);
}

TEST_F(ServingTest, RequestsOfOneConnectionAreAnsweredInTheirOrder) {
  SilentClient client(
      server.Address().port,
      "GET /events.json?after=1000 HTTP/1.1\r\nHost: x\r\n\r\nGET /none HTTP/1.1\r\nHost: x\r\n"
      "Connection: close\r\n\r\n");
  const std::string replies = client.ReadAll();
  EXPECT_EQ(replies.rfind("HTTP/1.1 200 OK", 0), 0U) << replies;
  EXPECT_GT(replies.find("HTTP/1.1 404"), replies.find("last_event_id")) << replies;
}

TEST_F(ServingTest, RequestsForPartsAreRefusedHoweverMany) {
  EXPECT_EQ(Client().Get("/", {{"Range", "bytes=0-1,0-1"}})->status, 416);
  std::string ranges = "bytes=0-1";
  while (ranges.size() < 8000) ranges += ",0-1";
  const auto answer = Client().Get("/", {{"Range", ranges}});
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 416);
  EXPECT_EQ(Client().Get("/metrics")->status, 200);
}

TEST_F(ServingTest, RequestsWithBodiesAndOtherMethodsAreRefused) {
  EXPECT_GE(Client().Post("/metrics", std::string(100'000, 'x'), "text/plain")->status, 400);
  EXPECT_GE(Client().Delete("/state.json")->status, 400);
  EXPECT_EQ(Client().Get("/metrics")->status, 200);
}

TEST_F(ServingTest, AGetWithABodyIsRefusedAndItsBodyIsNoRequest) {
  const char* const bodies[] = {"Content-Length: 36",        "content-length:5",   "Content-Length : 1",
                                "Content-Length:",           "Content-Length: 00", "Content-Length: 0, 5",
                                "Transfer-Encoding: chunked"};
  for (const std::string header : bodies) {
    SilentClient client(server.Address().port, "GET /metrics HTTP/1.1\r\nHost: x\r\n" + header +
                                                   "\r\n\r\nGET /state.json HTTP/1.1\r\nHost: x\r\n\r\n");
    const std::string replies = client.ReadAll();
    EXPECT_EQ(replies.rfind("HTTP/1.1 400", 0), 0U) << header;
    EXPECT_EQ(replies.find("HTTP/1.1", 1), std::string::npos) << header;
    const std::size_t body = replies.find("\r\n\r\n") + 4;
    EXPECT_NE(replies.find("Content-Length: " + std::to_string(replies.size() - body) + "\r\n"),
              std::string::npos);
  }
  EXPECT_EQ(Client().Get("/metrics", {{"Content-Length", "0"}})->status, 200);
}

TEST_F(ServingTest, APortInUseIsAnErrorWithAdvice) {
  try {
    const LiveServer second(board, server.Address());
    FAIL() << "two servers on one port";
  } catch (const RunError& error) {
    EXPECT_NE(std::string(error.what()).find("--listen"), std::string::npos) << error.what();
  }
}

TEST(LiveServer, EndsWhileClientsWait) {
  LiveBoard board;
  auto server = std::make_unique<LiveServer>(board, ListenAddress{"127.0.0.1", 0});
  const int port = server->Address().port;
  std::thread waiting([port] { httplib::Client("127.0.0.1", port).Get("/events.json?after=0&wait=20"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  const auto start = Clock::now();
  server.reset();
  EXPECT_LT(SecondsSince(start), 10);
  waiting.join();
}

}  // namespace
}  // namespace orsolva_host::live
