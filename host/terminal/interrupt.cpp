#include "host/terminal/interrupt.h"

#include <csignal>

#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

volatile std::sig_atomic_t noted = 0;

extern "C" void NoteSignal(int signal) {
  noted = signal;
  std::signal(signal, SIG_DFL);
}

}  // namespace

void NoteInterrupts() {
  std::signal(SIGINT, NoteSignal);
  std::signal(SIGTERM, NoteSignal);
  IgnoreSignalsOfWriting();
}

int InterruptExitCode() {
  constexpr int kOfShells = 128;
  return noted == 0 ? 0 : kOfShells + noted;
}

}  // namespace orsolva_host
