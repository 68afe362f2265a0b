// Figures of receiver clocks whose truth is known.
#include <gtest/gtest.h>

#include <cmath>

#include "host/analysis/figures/receiver_clock_figures.h"
#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

// The test data NBS14 of NIST SP 1065: ten phases, and an Allan deviation of 91.22945 between neighbours. By
// hand: the frequencies 892 809 823 798 671 644 883 903 677 give sqrt(133165 / 16).
TEST(AllanSum, GivesThePublishedDeviation) {
  AllanSum sum(1);
  const double phases[] = {0.00000,  103.11111, 123.22222, 157.33333, 166.44444,
                           48.55555, -96.33333, -2.22222,  111.88889, 0.00000};
  for (int i = 1; i < 10; ++i) sum.Add(phases[i] - phases[i - 1]);
  EXPECT_FALSE(sum.Deviation());  // eight pairs
  sum.Break();
  for (int i = 1; i < 10; ++i) sum.Add(phases[i] - phases[i - 1]);
  ASSERT_TRUE(sum.Deviation());
  EXPECT_NEAR(*sum.Deviation(), 91.22945, 1e-4);
}

TEST(AllanSum, OfMeansOverTen) {
  AllanSum sum(10);
  for (int i = 0; i < 11; ++i) {
    for (int k = 0; k < 10; ++k) sum.Add(i % 2 == 0 ? 1 : 3);
  }
  ASSERT_TRUE(sum.Deviation());
  EXPECT_NEAR(*sum.Deviation(), std::sqrt(2.0), 1e-12);  // differences of 2: sqrt(4 / 2)
}

TEST(AllanSum, NothingIsComparedOverABreak) {
  AllanSum sum(1);
  for (int i = 0; i < 30; ++i) {
    sum.Add(1);
    sum.Add(1);
    sum.Break();
    sum.Add(1000.0 * i);
    sum.Break();
  }
  EXPECT_EQ(sum.Deviation(), 0);
}

class Clock {
 public:
  Clock() { sums.Start(30); }
  /// One epoch 30 s on, with this change of the clock over the step.
  void Step(double change_s, bool reset = false, bool known = true) {
    time_ns_ += 30 * kNanosecondsPerSecond;
    offset_s_ += change_s;
    ReceiverStep step;
    step.clock_known = known;
    step.clock_reset = reset;
    step.clock_change_m = known ? change_s * kLightSpeed_m_s : kAbsent;
    sums.AddOffset(time_ns_, offset_s_ * kLightSpeed_m_s);
    sums.AddStep(time_ns_, step);
    if (reset) sums.AddEvent(Of(EventKind::kReceiverClockReset));
  }
  static Event Of(EventKind kind) {
    Event event;
    event.kind = kind;
    return event;
  }
  ReceiverClockFigures Figures() const {
    ReceiverClockFigures figures;
    sums.FillIn(figures);
    return figures;
  }
  ReceiverClockSums sums;

 private:
  std::int64_t time_ns_ = 0;
  double offset_s_ = 2e-4;
};

TEST(ReceiverClockSums, DriftLeavesResetsAndUnknownStepsOut) {
  Clock clock;
  for (int i = 0; i < 101; ++i) clock.Step(i == 50 ? -1e-3 : i == 70 ? 5e-5 : 3e-7, i == 50, i != 70);
  const ReceiverClockFigures figures = clock.Figures();
  EXPECT_NEAR(*figures.drift_s_per_s, 1e-8, 1e-15);
  EXPECT_EQ(figures.resets, 1U);
  EXPECT_EQ(figures.code_clock_jumps, 0U);
  EXPECT_EQ(figures.restarts, 0U);
  EXPECT_EQ(figures.steered, false);
  EXPECT_NEAR(*figures.allan_deviation, 0, 1e-18);
}

TEST(ReceiverClockSums, AClockWithinAMicrosecondIsSteeredAndADriftingOneIsNot) {
  Clock held, drifting;
  for (int i = 0; i < 100; ++i) held.Step(i % 2 == 0 ? 1e-9 : -1e-9), drifting.Step(1e-7);
  EXPECT_EQ(held.Figures().steered, true);
  EXPECT_NEAR(*held.Figures().mean_offset_s, 2e-4, 1e-9);
  EXPECT_NEAR(*held.Figures().allan_deviation, std::sqrt(2.0) * 1e-9 / 30, 1e-16);
  EXPECT_EQ(drifting.Figures().steered, false);
}

TEST(ReceiverClockSums, EventsAreCountedByKind) {
  Clock clock;
  clock.Step(0), clock.Step(0);
  clock.sums.AddEvent(Clock::Of(EventKind::kCodeClockJump));
  clock.sums.AddEvent(Clock::Of(EventKind::kReceiverRestart));
  clock.sums.AddEvent(Clock::Of(EventKind::kReceiverRestart));
  clock.sums.AddEvent(Clock::Of(EventKind::kSlip));
  EXPECT_EQ(clock.Figures().resets, 0U);
  EXPECT_EQ(clock.Figures().code_clock_jumps, 1U);
  EXPECT_EQ(clock.Figures().restarts, 2U);
}

TEST(ReceiverClockSums, NothingIsSaidOfOneEpochAndWithoutSolutions) {
  Clock one;
  one.Step(0);
  EXPECT_FALSE(one.Figures().resets);
  ReceiverClockSums sums;
  sums.Start(30);
  for (int i = 0; i < 50; ++i) sums.AddStep(i * 30 * kNanosecondsPerSecond, {});
  ReceiverClockFigures figures;
  sums.FillIn(figures);
  EXPECT_EQ(figures.resets, 0U);
  EXPECT_FALSE(figures.drift_s_per_s);
  EXPECT_FALSE(figures.mean_offset_s);
  EXPECT_FALSE(figures.steered);
  EXPECT_FALSE(figures.allan_deviation);
}

}  // namespace
}  // namespace orsolva_host::analysis
