#include "host/live/sources/serial_line.h"

#include <fcntl.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <memory>
#include <utility>

#include "host/live/sources/descriptor_stream.h"

namespace orsolva_host::live {
namespace {

struct Speed {
  unsigned baud;
  speed_t value;
};
constexpr Speed kSpeeds[] = {{4800, B4800},     {9600, B9600},     {19200, B19200},
                             {38400, B38400},   {57600, B57600},   {115200, B115200},
                             {230400, B230400}, {460800, B460800}, {921600, B921600}};

const Speed* FindSpeed(unsigned baud) {
  const Speed* const found =
      std::find_if(std::begin(kSpeeds), std::end(kSpeeds), [baud](const Speed& s) { return s.baud == baud; });
  return found == std::end(kSpeeds) ? nullptr : found;
}

/// Raw bytes, 8 data bits, no parity, one stop bit, no flow control, whatever the line was used for before:
/// cfmakeraw leaves stop bits and flow control as they were.
void MakeRaw(termios& line, speed_t speed) {
  cfmakeraw(&line);
  line.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
  line.c_cflag |= CLOCAL | CREAD;
  line.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY | INPCK);
  line.c_cc[VMIN] = 1;
  line.c_cc[VTIME] = 0;
  cfsetispeed(&line, speed);
  cfsetospeed(&line, speed);
}

/// @return what went wrong, or an empty text
std::string SetLine(int descriptor, unsigned baud) {
  const Speed* const speed = FindSpeed(baud);
  if (speed == nullptr) return "a speed of " + std::to_string(baud) + " is not known";
  termios line = {};
  if (tcgetattr(descriptor, &line) != 0) return "it is no serial line";
  MakeRaw(line, speed->value);
  if (tcsetattr(descriptor, TCSANOW, &line) != 0) return "the line cannot be set: " + ReasonOf(errno);
  // Setting succeeds when any of it did.
  termios now = {};
  if (tcgetattr(descriptor, &now) != 0 || cfgetospeed(&now) != speed->value || now.c_cflag != line.c_cflag)
    return "the line does not take " + std::to_string(baud) + " baud with 8 data bits and one stop bit";
  return {};
}

}  // namespace

bool IsLineSpeed(unsigned baud) { return FindSpeed(baud) != nullptr; }

std::string LineSpeeds() {
  std::string all;
  for (const Speed& speed : kSpeeds) all += (all.empty() ? "" : ", ") + std::to_string(speed.baud);
  return all;
}

std::unique_ptr<ByteStream> OpenSerial(const SourceSpec& spec, const ConnectionOptions& options) {
  Descriptor descriptor(open(spec.path.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  const std::string problem =
      descriptor.Number() < 0 ? spec.path + ": " + ReasonOf(errno) : SetLine(descriptor.Number(), spec.baud);
  return std::make_unique<DescriptorStream>(std::move(descriptor), problem, options.silence,
                                            "the line was closed");
}

}  // namespace orsolva_host::live
