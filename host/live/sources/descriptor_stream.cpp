// Streams behind a file descriptor: TCP, a serial line, standard input.
#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "host/live/sources/byte_stream.h"

namespace orsolva_host::live {
namespace {

constexpr std::size_t kReadAtOnce = 16 * 1024;
constexpr std::chrono::seconds kConnectTime{15};

std::string Reason(int error) { return std::system_category().message(error); }

ReadOutcome Over(std::string problem) { return {ReadOutcome::State::kEnd, "", std::move(problem)}; }

/// Closed with the object; -1 is none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number, bool owned = true) : number_(number), owned_(owned) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)), owned_(other.owned_) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    std::swap(owned_, other.owned_);
    return *this;
  }
  ~Descriptor() {
    if (number_ >= 0 && owned_) close(number_);
  }
  int Number() const { return number_; }

 private:
  int number_ = -1;
  bool owned_ = true;
};

class DescriptorStream : public ByteStream {
 public:
  DescriptorStream(Descriptor descriptor, std::string problem, std::chrono::seconds silence, const char* end)
      : descriptor_(std::move(descriptor)),
        problem_(std::move(problem)),
        silence_(silence),
        end_(end),
        last_(std::chrono::steady_clock::now()) {}

  ReadOutcome Read(std::chrono::milliseconds longest) override {
    if (!problem_.empty()) return Over(problem_);
    pollfd wanted = {descriptor_.Number(), POLLIN, 0};
    const int ready = poll(&wanted, 1, static_cast<int>(longest.count()));
    if (ready < 0 && errno != EINTR) return Over("waiting failed: " + Reason(errno));
    if (ready <= 0) return Nothing();
    std::array<char, kReadAtOnce> bytes;
    const ssize_t count = read(descriptor_.Number(), bytes.data(), bytes.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return Nothing();
    if (count < 0) return Over("reading failed: " + Reason(errno));
    if (count == 0) return Over(end_);
    last_ = std::chrono::steady_clock::now();
    return {ReadOutcome::State::kData, std::string(bytes.data(), static_cast<std::size_t>(count)), ""};
  }

 private:
  ReadOutcome Nothing() const {
    if (silence_.count() == 0 || std::chrono::steady_clock::now() - last_ < silence_) return {};
    return Over("no byte came for " + std::to_string(silence_.count()) + " s");
  }

  Descriptor descriptor_;
  std::string problem_;
  std::chrono::seconds silence_;
  const char* end_;
  std::chrono::steady_clock::time_point last_;
};

bool WaitConnected(int descriptor, std::string& problem) {
  pollfd wanted = {descriptor, POLLOUT, 0};
  const auto longest = std::chrono::duration_cast<std::chrono::milliseconds>(kConnectTime);
  if (poll(&wanted, 1, static_cast<int>(longest.count())) <= 0) {
    problem = "no answer within " + std::to_string(kConnectTime.count()) + " s";
    return false;
  }
  int error = 0;
  socklen_t size = sizeof error;
  getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size);
  if (error != 0) problem = Reason(error);
  return error == 0;
}

Descriptor Connect(const SourceSpec& spec, std::string& problem) {
  addrinfo hints = {};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int unknown = getaddrinfo(spec.host.c_str(), std::to_string(spec.port).c_str(), &hints, &found);
  if (unknown != 0) {
    problem = "the host is not found: " + std::string(gai_strerror(unknown));
    return {};
  }
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, freeaddrinfo);
  for (const addrinfo* address = found; address != nullptr; address = address->ai_next) {
    Descriptor tried(socket(address->ai_family, address->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                            address->ai_protocol));
    if (tried.Number() < 0) continue;
    problem.clear();
    const int failed = connect(tried.Number(), address->ai_addr, address->ai_addrlen);
    if (failed != 0 && errno != EINPROGRESS) {
      problem = Reason(errno);
      continue;
    }
    if (WaitConnected(tried.Number(), problem)) return tried;
  }
  if (problem.empty()) problem = "no address could be tried";
  return {};
}

struct Speed {
  unsigned baud;
  speed_t value;
};
constexpr Speed kSpeeds[] = {{4800, B4800},     {9600, B9600},     {19200, B19200},
                             {38400, B38400},   {57600, B57600},   {115200, B115200},
                             {230400, B230400}, {460800, B460800}, {921600, B921600}};

/// Raw bytes, 8 data bits, no parity, one stop bit.
std::string SetLine(int descriptor, unsigned baud) {
  const auto speed =
      std::find_if(std::begin(kSpeeds), std::end(kSpeeds), [baud](const Speed& s) { return s.baud == baud; });
  if (speed == std::end(kSpeeds)) return "a speed of " + std::to_string(baud) + " is not known";
  termios line = {};
  if (tcgetattr(descriptor, &line) != 0) return "it is no serial line";
  cfmakeraw(&line);
  cfsetispeed(&line, speed->value);
  cfsetospeed(&line, speed->value);
  line.c_cflag |= CLOCAL | CREAD;
  if (tcsetattr(descriptor, TCSANOW, &line) != 0) return "the line cannot be set: " + Reason(errno);
  return {};
}

}  // namespace

std::unique_ptr<ByteStream> OpenTcp(const SourceSpec& spec, const ConnectionOptions& options) {
  std::string problem;
  Descriptor descriptor = Connect(spec, problem);
  return std::make_unique<DescriptorStream>(std::move(descriptor), problem, options.silence,
                                            "the other side closed the connection");
}

std::unique_ptr<ByteStream> OpenSerial(const SourceSpec& spec, const ConnectionOptions& options) {
  Descriptor descriptor(open(spec.path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  const std::string problem =
      descriptor.Number() < 0 ? spec.path + ": " + Reason(errno) : SetLine(descriptor.Number(), spec.baud);
  return std::make_unique<DescriptorStream>(std::move(descriptor), problem, options.silence,
                                            "the line was closed");
}

std::unique_ptr<ByteStream> OpenStandardInput() {
  return std::make_unique<DescriptorStream>(Descriptor(STDIN_FILENO, false), "", std::chrono::seconds(0),
                                            "standard input ended");
}

std::unique_ptr<ByteStream> OpenStream(const SourceSpec& spec, const ConnectionOptions& options) {
  if (spec.kind == SourceKind::kNtrip) return OpenCaster(spec, options);
  if (spec.kind == SourceKind::kTcp) return OpenTcp(spec, options);
  if (spec.kind == SourceKind::kSerial) return OpenSerial(spec, options);
  return OpenStandardInput();
}

}  // namespace orsolva_host::live
