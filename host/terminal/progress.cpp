#include "host/terminal/progress.h"

#include <cinttypes>
#include <cstdio>

#include "host/platform/platform.h"

namespace orsolva_host {

Progress::Progress() : terminal_(IsTerminal(Stream::kError)) {}

Progress::~Progress() {
  if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::Epochs(std::uint64_t count) {
  constexpr std::uint64_t kStep = 240;
  if (!terminal_ || count % kStep != 0) return;
  std::fprintf(stderr, "\r%" PRIu64 " epochs", count);
  std::fflush(stderr);
  shown_ = true;
}

void Progress::Epochs(std::uint64_t count, std::uint64_t of) {
  constexpr std::uint64_t kSteps = 100;
  const std::uint64_t step = of / kSteps > 0 ? of / kSteps : 1;
  if (!terminal_ || count % step != 0) return;
  std::fprintf(stderr, "\r%" PRIu64 " of %" PRIu64 " epochs", count, of);
  std::fflush(stderr);
  shown_ = true;
}

}  // namespace orsolva_host
