// A terminal in place of a standard stream, and what is written to it.
#ifndef ORSOLVA_TESTS_HOST_PSEUDO_TERMINAL_H
#define ORSOLVA_TESTS_HOST_PSEUDO_TERMINAL_H

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace orsolva_test {

class PseudoTerminal {
 public:
  /// @param descriptor  that of standard output or of standard error
  PseudoTerminal(int descriptor, unsigned short columns)
      : descriptor_(descriptor), kept_(dup(descriptor)), reader_(posix_openpt(O_RDWR | O_NOCTTY)) {
    std::fflush(nullptr);
    if (grantpt(reader_) != 0 || unlockpt(reader_) != 0) return;
    const int terminal = open(ptsname(reader_), O_RDWR | O_NOCTTY);
    termios settings{};
    tcgetattr(terminal, &settings);
    cfmakeraw(&settings);
    tcsetattr(terminal, TCSANOW, &settings);
    winsize size{24, columns, 0, 0};
    ioctl(terminal, TIOCSWINSZ, &size);
    dup2(terminal, descriptor_);
    close(terminal);
  }
  ~PseudoTerminal() {
    std::fflush(nullptr);
    dup2(kept_, descriptor_);
    close(kept_);
    close(reader_);
  }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  /// Since the last call. The system hands it over with delay: a mark is written and waited for.
  std::string Written() {
    static const std::string kMark = "<mark>";
    constexpr int kLongest_ms = 10000;
    std::fflush(nullptr);
    if (write(descriptor_, kMark.data(), kMark.size()) < 0) return "not a terminal";
    std::string text;
    char bytes[256];
    pollfd readable{reader_, POLLIN, 0};
    while (!text.ends_with(kMark) && poll(&readable, 1, kLongest_ms) > 0) {
      const ssize_t count = read(reader_, bytes, sizeof bytes);
      if (count <= 0) return text + "<closed>";
      text.append(bytes, static_cast<std::size_t>(count));
    }
    return text.substr(0, text.rfind(kMark));
  }

 private:
  int descriptor_;
  int kept_;
  int reader_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_HOST_PSEUDO_TERMINAL_H
