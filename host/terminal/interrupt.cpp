#include "host/terminal/interrupt.h"

#include <csignal>

#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

volatile std::sig_atomic_t recorded = 0;

extern "C" void RecordSignal(int signal) {
  recorded = signal;
  std::signal(signal, SIG_DFL);
}

}  // namespace

void RecordInterrupts() {
  std::signal(SIGINT, RecordSignal);
  std::signal(SIGTERM, RecordSignal);
  IgnoreSignalsOfWriting();
}

int InterruptExitCode() {
  constexpr int kOfShells = 128;
  return recorded == 0 ? 0 : kOfShells + recorded;
}

}  // namespace orsolva_host
