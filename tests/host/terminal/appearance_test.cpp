#include "host/terminal/appearance.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/host/terminal/pseudo_terminal.h"

namespace {

using orsolva_host::TextWidth;
using orsolva_host::UseColours;
using orsolva_test::PseudoTerminal;

/// Takes the answer while standard output is a terminal; expectations print to it.
bool ColoursOnATerminal(const char* when, const char* kind, const char* no_color) {
  setenv("TERM", kind, 1);
  if (no_color != nullptr) {
    setenv("NO_COLOR", no_color, 1);
  } else {
    unsetenv("NO_COLOR");
  }
  const PseudoTerminal terminal(STDOUT_FILENO, 80);
  return UseColours(when);
}

std::size_t WidthOnATerminal(unsigned short columns, std::size_t asked) {
  const PseudoTerminal terminal(STDOUT_FILENO, columns);
  return TextWidth(asked);
}

std::size_t WidthInAFile(std::size_t asked) {
  testing::internal::CaptureStdout();
  const std::size_t width = TextWidth(asked);
  testing::internal::GetCapturedStdout();
  return width;
}

TEST(Colours, AreUsedOnATerminalUnlessTheEnvironmentRefusesThem) {
  EXPECT_TRUE(ColoursOnATerminal("auto", "xterm", nullptr));
  EXPECT_TRUE(ColoursOnATerminal("auto", "xterm", "")) << "an empty NO_COLOR says nothing";
  EXPECT_FALSE(ColoursOnATerminal("auto", "xterm", "1"));
  EXPECT_FALSE(ColoursOnATerminal("auto", "dumb", nullptr));
}

TEST(Colours, AreUsedAlwaysOrNeverWhereThatIsAsked) {
  EXPECT_TRUE(ColoursOnATerminal("always", "dumb", "1"));
  EXPECT_FALSE(ColoursOnATerminal("never", "xterm", nullptr));
}

TEST(Colours, AreNotWrittenToAFileUnlessAsked) {
  testing::internal::CaptureStdout();
  const bool by_itself = UseColours("auto"), asked = UseColours("always");
  testing::internal::GetCapturedStdout();
  EXPECT_FALSE(by_itself);
  EXPECT_TRUE(asked);
}

TEST(TextWidth, IsThatOfTheTerminalButAtMostEighty) {
  EXPECT_EQ(WidthOnATerminal(40, 0), 40U);
  EXPECT_EQ(WidthOnATerminal(200, 0), 80U);
  EXPECT_EQ(WidthInAFile(0), 80U);
}

TEST(TextWidth, IsTheOneAskedFor) {
  EXPECT_EQ(WidthOnATerminal(40, 120), 120U);
  EXPECT_EQ(WidthInAFile(60), 60U);
}

}  // namespace
