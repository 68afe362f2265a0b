// Streams behind descriptors, with what other programs and networks do to them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/time.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>

#include "host/live/sources/byte_stream.h"
#include "host/live/sources/descriptor_stream.h"
#include "tests/live/core/listener.h"

namespace {

using namespace orsolva_host::live;
using orsolva_test::Listener;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using State = ReadOutcome::State;

std::unique_ptr<ByteStream> Open(const std::string& source) {
  SourceSpec spec;
  EXPECT_EQ(ParseSource(source, spec), "");
  return OpenStream(spec, {});
}

double SecondsSince(steady_clock::time_point begin) {
  return std::chrono::duration<double>(steady_clock::now() - begin).count();
}

TEST(TcpStream, WaitsForAnAnswerNoLongerThanOneReads) {
  const Listener silent(true);
  const auto begin = steady_clock::now();
  const auto stream = Open(silent.Source());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(stream->Read(milliseconds(50)).state, State::kNothing);
  EXPECT_LT(SecondsSince(begin), 5) << "the time that a connection may take is 15 s";
}

TEST(TcpStream, ASignalWhileItConnectsOrReadsEndsNothing) {
  struct sigaction caught = {}, before = {};
  caught.sa_handler = [](int) {};  // and no SA_RESTART: waiting is interrupted
  sigaction(SIGALRM, &caught, &before);
  const Listener silent(true), good(false);
  for (const Listener* listener : {&silent, &good}) {
    const auto stream = Open(listener->Source());
    const itimerval soon = {{0, 0}, {0, 20'000}};
    setitimer(ITIMER_REAL, &soon, nullptr);
    const auto outcome = stream->Read(milliseconds(3000));
    EXPECT_EQ(outcome.state, State::kNothing) << outcome.problem;
  }
  sigaction(SIGALRM, &before, nullptr);
}

TEST(TcpStream, ReadsWhatComesAndSaysHowItEnds) {
  const Listener listener(false);
  const auto stream = Open(listener.Source());
  EXPECT_EQ(stream->Read(milliseconds(10)).state, State::kNothing);
  {
    const Descriptor other(listener.Accept());
    ASSERT_EQ(write(other.Number(), "abc", 3), 3);
    EXPECT_EQ(stream->Read(milliseconds(5000)).bytes, "abc");
  }
  EXPECT_EQ(stream->Read(milliseconds(5000)).problem, "the other side closed the connection");
}

TEST(TcpStream, ARefusedConnectionAndAnUnknownHostAreSaid) {
  std::string source;
  {
    const Listener closed(false);
    source = closed.Source();
  }
  const auto refused = Open(source)->Read(milliseconds(5000));
  EXPECT_EQ(refused.state, State::kEnd);
  EXPECT_NE(refused.problem.find("refused"), std::string::npos) << refused.problem;
  const auto stream = Open("tcp://no-such-host.invalid:1");
  ReadOutcome outcome;
  for (int i = 0; i < 100 && outcome.state == State::kNothing; ++i) outcome = stream->Read(milliseconds(200));
  EXPECT_EQ(outcome.state, State::kEnd);
  EXPECT_EQ(outcome.problem.rfind("the host is not found", 0), 0U) << outcome.problem;
}

TEST(SerialLine, TakesNoSettingOfWhoeverUsedItBefore) {
  const Descriptor receiver(posix_openpt(O_RDWR | O_NOCTTY));
  ASSERT_GE(receiver.Number(), 0);
  ASSERT_EQ(grantpt(receiver.Number()) | unlockpt(receiver.Number()), 0);
  const std::string path = ptsname(receiver.Number());
  const Descriptor line(open(path.c_str(), O_RDWR | O_NOCTTY));
  termios used = {};
  ASSERT_EQ(tcgetattr(line.Number(), &used), 0);
  used.c_cflag |= CSTOPB | CRTSCTS;
  used.c_iflag |= IXON | IXOFF | IXANY | ICRNL;
  cfsetospeed(&used, B9600);
  ASSERT_EQ(tcsetattr(line.Number(), TCSANOW, &used), 0);
  const auto stream = Open("serial:" + path + ":38400");
  const std::string bytes = "\xd3\r\n\x11\x13\x7f";
  ASSERT_EQ(write(receiver.Number(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  EXPECT_EQ(stream->Read(milliseconds(5000)).bytes, bytes);
  termios now = {};
  ASSERT_EQ(tcgetattr(line.Number(), &now), 0);
  EXPECT_EQ(now.c_cflag & (CSTOPB | CRTSCTS | PARENB), 0U);
  EXPECT_EQ(now.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
  EXPECT_EQ(now.c_iflag & (IXON | IXOFF | IXANY | ICRNL), 0U);
  EXPECT_EQ(cfgetospeed(&now), static_cast<speed_t>(B38400));
}

}  // namespace
