// The limits of connections, each by itself, and replies that cannot be made.
#include "host/live/serving/client_desk.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace orsolva_host::live {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kSoon{10'000};  // on a busy machine; where it passes, a test has failed

const std::string kRequest = "GET / HTTP/1.1\r\n\r\n";

/// A reply longer than a socket holds.
std::string LongReply() { return std::string(std::size_t{4} << 20, 'x'); }

/// The client's end of a connection that the desk has.
class Peer {
 public:
  explicit Peer(ClientDesk& desk) {
    int ends[2];
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    socket_ = ends[0];
    desk.Take(ends[1]);
  }
  ~Peer() { close(socket_); }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void Send(const std::string& bytes) const { send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  /// What is there to read now, at most so much; counts it. @return false at the end of the connection
  bool Read(std::size_t most = std::size_t{1} << 20) {
    std::string bytes(most, ' ');
    const ssize_t count = recv(socket_, bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count > 0) text_.append(bytes, 0, static_cast<std::size_t>(count));
    return count > 0 || (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK));
  }
  /// Everything to the end of the connection.
  const std::string& ReadAll() {
    const auto start = Clock::now();
    while (Read()) {
      if (Clock::now() - start > kSoon) {
        ADD_FAILURE() << "the connection does not end";
        break;
      }
      std::this_thread::sleep_for(milliseconds(1));
    }
    return text_;
  }
  /// Whether the desk has closed its end: no byte can be sent any more.
  bool IsClosed() const { return send(socket_, "x", 1, MSG_NOSIGNAL | MSG_DONTWAIT) < 0 && errno == EPIPE; }
  bool ClosesSoon() const {
    for (const auto start = Clock::now(); Clock::now() - start < kSoon;
         std::this_thread::sleep_for(milliseconds(10))) {
      if (IsClosed()) return true;
    }
    return false;
  }

 private:
  int socket_ = -1;
  std::string text_;
};

/// A desk with an answer; ends in the order that it needs.
struct Served {
  Served(ClientDesk::Answer answer, const DeskLimits& limits) : desk(workers, std::move(answer), limits) {}
  ~Served() { workers.Join(); }

  ConnectionThreads workers{2};
  ClientDesk desk;
};

TEST(ClientDesk, AConnectionHasSoManyRequests) {
  DeskLimits limits;
  limits.requests = 2;
  std::atomic<int> answered{0};
  Served served(
      [&answered](const std::string&, bool last) {
        ++answered;
        return HttpReply{last ? "last" : "more,", last};
      },
      limits);
  Peer peer(served.desk);
  peer.Send(kRequest + kRequest + kRequest);
  EXPECT_EQ(peer.ReadAll(), "more,last");
  EXPECT_EQ(answered, 2);
}

TEST(ClientDesk, WhoReadsNothingForTheStallTimeLosesTheConnection) {
  DeskLimits limits;
  limits.stall_time = milliseconds(300);
  Served served([](const std::string&, bool) { return HttpReply{LongReply(), true}; }, limits);
  const auto start = Clock::now();
  Peer peer(served.desk);
  peer.Send(kRequest);
  EXPECT_TRUE(peer.ClosesSoon());
  EXPECT_GE(Clock::now() - start, limits.stall_time);
  EXPECT_LT(peer.ReadAll().size(), LongReply().size());
}

TEST(ClientDesk, WhoReadsALittleWithinTheStallTimeKeepsItForTheReplyTime) {
  DeskLimits limits;
  limits.stall_time = milliseconds(1000);
  limits.reply_time = milliseconds(3000);
  Served served([](const std::string&, bool) { return HttpReply{LongReply(), true}; }, limits);
  const auto start = Clock::now();
  Peer peer(served.desk);
  peer.Send(kRequest);
  std::thread reading([&] {
    while (Clock::now() - start < kSoon && peer.Read(20'000)) std::this_thread::sleep_for(milliseconds(50));
  });
  reading.join();
  EXPECT_GE(Clock::now() - start, limits.reply_time);
  EXPECT_LT(Clock::now() - start, kSoon);
}

TEST(ClientDesk, OfTooManyUnsentBytesTheSlowestClientLosesItsOwn) {
  DeskLimits limits;
  limits.unsent_bytes = LongReply().size() * 3 / 2;
  limits.stall_time = limits.reply_time = kSoon;
  Served served([](const std::string&, bool) { return HttpReply{LongReply(), true}; }, limits);
  Peer slow(served.desk), quick(served.desk);
  slow.Send(kRequest);
  std::this_thread::sleep_for(milliseconds(500));
  EXPECT_FALSE(slow.IsClosed());  // alone it has room
  quick.Send(kRequest);
  EXPECT_TRUE(slow.ClosesSoon());
  EXPECT_EQ(quick.ReadAll().size(), LongReply().size());
}

TEST(ClientDesk, ARequestIsNoLongerThanItsLimit) {
  DeskLimits limits;
  limits.head_bytes = 1000;
  limits.head_time = kSoon;
  Served served(
      [](const std::string& request, bool) {
        return HttpReply{std::to_string(request.size()), true};
      },
      limits);
  Peer fits(served.desk), too_long(served.desk);
  fits.Send(std::string(996, 'x') + "\r\n\r\n");
  EXPECT_EQ(fits.ReadAll(), "1000");
  too_long.Send(std::string(1001, 'x'));
  EXPECT_TRUE(too_long.ClosesSoon());
  EXPECT_EQ(too_long.ReadAll(), "");
}

TEST(ClientDesk, ARequestHasSoMuchTime) {
  DeskLimits limits;
  limits.head_time = milliseconds(300);
  Served served([](const std::string&, bool) { return HttpReply{"reply", true}; }, limits);
  const auto start = Clock::now();
  Peer peer(served.desk);
  peer.Send("GET / HTTP/1.1\r\n");
  EXPECT_EQ(peer.ReadAll(), "");
  EXPECT_GE(Clock::now() - start, limits.head_time);
}

TEST(ClientDesk, OfTooManyClientsOneThatHasSentNothingLeaves) {
  DeskLimits limits;
  limits.clients = 2;
  limits.head_time = kSoon;
  Served served([](const std::string&, bool) { return HttpReply{"reply", true}; }, limits);
  Peer first(served.desk), second(served.desk), third(served.desk);
  EXPECT_TRUE(first.ClosesSoon());
  second.Send(kRequest);
  third.Send(kRequest);
  EXPECT_EQ(second.ReadAll(), "reply");
  EXPECT_EQ(third.ReadAll(), "reply");
}

TEST(ClientDesk, AReplyThatIsNeverMadeEndsWithTheReplyTime) {
  DeskLimits limits;
  limits.reply_time = milliseconds(300);
  std::atomic<bool> over{false};
  Served served(
      [&over](const std::string&, bool) {
        while (!over) std::this_thread::sleep_for(milliseconds(5));
        return HttpReply{"late", true};
      },
      limits);
  Peer peer(served.desk);
  peer.Send(kRequest);
  EXPECT_EQ(peer.ReadAll(), "");
  over = true;
}

TEST(ClientDesk, AnExceptionCostsItsRequestAlone) {
  std::atomic<int> number{0};
  Served served(
      [&number](const std::string&, bool) -> HttpReply {
        switch (++number) {
          case 1:
            throw std::runtime_error("cannot be made");
          case 2:
            throw std::bad_alloc();
          case 3:
            throw 1;
          default:
            return {"reply", true};
        }
      },
      {});
  testing::internal::CaptureStderr();
  for (int i = 0; i < 3; ++i) {
    Peer peer(served.desk);
    peer.Send(kRequest + kRequest);
    const std::string reply = peer.ReadAll();
    EXPECT_EQ(reply.rfind("HTTP/1.1 500 ", 0), 0U) << reply;
    EXPECT_EQ(reply.find("HTTP/1.1", 1), std::string::npos) << "the connection goes on";
  }
  Peer peer(served.desk);
  peer.Send(kRequest);
  EXPECT_EQ(peer.ReadAll(), "reply");
  EXPECT_EQ(served.desk.Failures(), 3U);
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_NE(log.find("(1 so far): cannot be made"), std::string::npos) << log;
  EXPECT_NE(log.find("(2 so far)"), std::string::npos) << log;
  EXPECT_EQ(log.find("(3 so far)"), std::string::npos) << log;
}

}  // namespace
}  // namespace orsolva_host::live
