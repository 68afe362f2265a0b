#include "host/terminal/status_line.h"

#include <gtest/gtest.h>

#include <string>

#include "host/terminal/standard_streams.h"
#include "tests/host/terminal/pseudo_terminal.h"

namespace {

using orsolva_host::StatusLine;
using orsolva_test::PseudoTerminal;

const std::string kWipe = "\r\033[K";

TEST(StatusLine, IsCutBeforeTheLastColumnAndWiped) {
  PseudoTerminal terminal(STDERR_FILENO, 20);
  StatusLine line(true);
  ASSERT_TRUE(line.Visible());
  line.Show("abcdefghijklmnopqrstuvwxyz");
  EXPECT_EQ(terminal.Written(), kWipe + "abcdefghijklmnopqrs");
  line.Show("short");
  EXPECT_EQ(terminal.Written(), kWipe + "short");
  line.Clear();
  EXPECT_EQ(terminal.Written(), kWipe);
  line.Clear();
  EXPECT_EQ(terminal.Written(), "");
}

TEST(StatusLine, LeavesNothingBehind) {
  PseudoTerminal terminal(STDERR_FILENO, 80);
  { StatusLine(true).Show("text"); }
  EXPECT_EQ(terminal.Written(), kWipe + "text" + kWipe);
}

TEST(StatusLine, IsNotShownWhereItIsNotWanted) {
  PseudoTerminal terminal(STDERR_FILENO, 80);
  StatusLine line(false);
  EXPECT_FALSE(line.Visible());
  line.Show("text");
  EXPECT_EQ(terminal.Written(), "");
}

TEST(StatusLine, IsNotShownInAFile) {
  testing::internal::CaptureStderr();
  {
    StatusLine line(true);
    EXPECT_FALSE(line.Visible());
    line.Show("text");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(PrintError, ShowsControlCharactersAsQuestionMarks) {
  testing::internal::CaptureStderr();
  orsolva_host::PrintError("a\033[31m\x7f file\nits second line");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "orsolva: a?[31m? file\nits second line\n");
}

}  // namespace
