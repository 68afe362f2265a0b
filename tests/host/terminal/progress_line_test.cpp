#include "host/terminal/progress_line.h"

#include <gtest/gtest.h>

namespace {

using orsolva_host::ProgressLine;
using orsolva_host::ProgressState;

TEST(ProgressLine, ShowsShareFilesEpochsRateAndTimeLeft) {
  const ProgressState state{8, 3, 12345, 50, 100, 3};
  EXPECT_EQ(ProgressLine(state),
            "[##########----------]  50 %  3/8 files  12345 epochs  4115 epochs/s  0:03 left");
}

TEST(ProgressLine, LeavesOutTheShareWhereTheBytesAreNotKnown) {
  const ProgressState state{1, 0, 600, 4096, 0, 2};
  EXPECT_EQ(ProgressLine(state), "600 epochs  300 epochs/s");
}

TEST(ProgressLine, HasNoRateAtTheBeginning) {
  EXPECT_EQ(ProgressLine({}), "0 epochs");
  EXPECT_EQ(ProgressLine({2, 0, 0, 0, 100, 0}), "[--------------------]   0 %  0/2 files  0 epochs");
}

TEST(ProgressLine, EndsAtAHundredPerCentWhereAFileGrew) {
  const ProgressState state{1, 0, 100, 200, 100, 10};
  EXPECT_EQ(ProgressLine(state), "[####################] 100 %  100 epochs  10 epochs/s  0:00 left");
}

TEST(ProgressLine, GivesHoursWhereMinutesDoNotDo) {
  const ProgressState state{1, 0, 0, 1, 4, 3000};
  EXPECT_EQ(ProgressLine(state), "[#####---------------]  25 %  0 epochs  0 epochs/s  2:30:00 left");
}

}  // namespace
