// Each case runs in a process of its own: what is recorded stays recorded.
#include "host/terminal/interrupt.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace {

using orsolva_host::InterruptExitCode;
using orsolva_host::RecordInterrupts;

[[noreturn]] void ExitAfter(int signal) {
  RecordInterrupts();
  std::raise(signal);
  _exit(InterruptExitCode());
}

[[noreturn]] void RaiseTwice(int signal) {
  RecordInterrupts();
  std::raise(signal);
  std::raise(signal);
  _exit(0);
}

[[noreturn]] void WriteToAClosedPipe() {
  RecordInterrupts();
  int ends[2];
  if (pipe(ends) != 0) _exit(1);
  close(ends[0]);
  const bool failed = write(ends[1], "x", 1) < 0 && errno == EPIPE;
  _exit(failed && InterruptExitCode() == 0 ? 7 : 1);
}

TEST(InterruptDeathTest, TheFirstSignalIsOnlyRecorded) {
  EXPECT_EXIT(ExitAfter(SIGINT), testing::ExitedWithCode(130), "");
  EXPECT_EXIT(ExitAfter(SIGTERM), testing::ExitedWithCode(143), "");
}

TEST(InterruptDeathTest, TheSecondEndsTheProgram) {
  EXPECT_EXIT(RaiseTwice(SIGINT), testing::KilledBySignal(SIGINT), "");
  EXPECT_EXIT(RaiseTwice(SIGTERM), testing::KilledBySignal(SIGTERM), "");
}

TEST(InterruptDeathTest, AClosedPipeIsAnErrorOfWriting) {
  EXPECT_EXIT(WriteToAClosedPipe(), testing::ExitedWithCode(7), "");
}

}  // namespace
