#include <gtest/gtest.h>

#include <cmath>

#include "host/formats/rtcm/phase_tracker.h"
#include "host/observation/physical_constants.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::rtcm;
using orsolva_test::kSecond;

constexpr double kCarrier_hz = 1575.42e6;
constexpr double kRange_m = 22e6;

/// A signal whose phase is so many cycles more than its range.
ReceivedSignal Signal(double phase_less_range_cycles, LockTime lock) {
  ReceivedSignal s;
  s.satellite = {'G', 5};
  s.carrier_hz = kCarrier_hz;
  s.lock = lock;
  s.observation.code = {'1', 'C'};
  s.observation.pseudorange_m = kRange_m;
  s.observation.phase_cycles = kRange_m * (kCarrier_hz / kLightSpeed_m_s) + phase_less_range_cycles;
  return s;
}

class PhaseTrackerTest : public testing::Test {
 protected:
  ReceivedSignal Take(std::int64_t second, double cycles, LockTime lock) {
    ReceivedSignal signal = Signal(cycles, lock);
    tracker_.Take(second * kSecond, signal);
    return signal;
  }
  static double LessRange(const ReceivedSignal& s) {
    return s.observation.phase_cycles - Signal(0, {}).observation.phase_cycles;
  }

  PhaseTracker tracker_;
};

TEST_F(PhaseTrackerTest, LockTimeThatGrowsOrStaysIsUnbroken) {
  EXPECT_EQ(Take(0, 0, LockTimeOf4Bits(3)).observation.loss_of_lock, 0);
  EXPECT_EQ(Take(1, 0, LockTimeOf4Bits(6)).observation.loss_of_lock, 0);
  EXPECT_EQ(Take(2, 0, LockTimeOf4Bits(7)).observation.loss_of_lock, 0);
  EXPECT_EQ(Take(3, 0, LockTimeOf4Bits(7)).observation.loss_of_lock, 0);
}

TEST_F(PhaseTrackerTest, LockTimeThatFallsIsLostLock) {
  Take(0, 0, LockTimeOf10Bits(300));
  EXPECT_EQ(Take(1, 0, LockTimeOf10Bits(299)).observation.loss_of_lock, kLossOfLock);
  EXPECT_EQ(Take(2, 0, LockTimeOf10Bits(300)).observation.loss_of_lock, 0);
}

TEST_F(PhaseTrackerTest, LockTimeShorterThanTheGapIsLostLock) {
  Take(0, 0, LockTimeOf7Bits(20));
  EXPECT_EQ(Take(60, 0, LockTimeOf7Bits(20)).observation.loss_of_lock, kLossOfLock);
  EXPECT_EQ(Take(61, 0, LockTimeOf7Bits(0)).observation.loss_of_lock, kLossOfLock);
}

TEST_F(PhaseTrackerTest, RollOverIsTakenBackAndIsNoSlip) {
  const LockTime lock = LockTimeOf7Bits(127);
  Take(0, 1300, lock);
  const ReceivedSignal rolled = Take(1, -198, lock);  // 1302 less 1500
  EXPECT_NEAR(LessRange(rolled), 1302, 1e-6);
  EXPECT_EQ(rolled.observation.loss_of_lock, 0);
  EXPECT_NEAR(LessRange(Take(2, -196, lock)), 1304, 1e-6);
  EXPECT_EQ(tracker_.RollOvers(), 1u);
}

TEST_F(PhaseTrackerTest, LostLockEndsWhatWasTakenBack) {
  Take(0, 1300, LockTimeOf7Bits(127));
  Take(1, -198, LockTimeOf7Bits(127));
  const ReceivedSignal begun = Take(2, 5, LockTimeOf7Bits(0));
  EXPECT_NEAR(LessRange(begun), 5, 1e-6);
  EXPECT_EQ(begun.observation.loss_of_lock, kLossOfLock);
}

TEST_F(PhaseTrackerTest, JumpByAnotherAmountIsMarkedAndCounted) {
  const LockTime lock = LockTimeOf7Bits(127);
  Take(0, 800, lock);
  const ReceivedSignal jumped = Take(1, 0, lock);
  EXPECT_EQ(jumped.observation.loss_of_lock, kLossOfLock);
  EXPECT_NEAR(LessRange(jumped), 0, 1e-6);
  EXPECT_EQ(tracker_.UnknownJumps(), 1u);
}

TEST_F(PhaseTrackerTest, SlipOfSomeCyclesIsLeftToTheDetector) {
  const LockTime lock = LockTimeOf7Bits(127);
  Take(0, 0, lock);
  const ReceivedSignal slipped = Take(1, 17, lock);
  EXPECT_EQ(slipped.observation.loss_of_lock, 0);
  EXPECT_NEAR(LessRange(slipped), 17, 1e-6);
}

TEST_F(PhaseTrackerTest, SignalsAndFamiliesAreApart) {
  Take(0, 0, LockTimeOf7Bits(100));
  ReceivedSignal other = Signal(0, LockTimeOf4Bits(0));
  other.family = Family::kCoarseMsm;
  tracker_.Take(kSecond, other);
  EXPECT_EQ(other.observation.loss_of_lock, 0);
}

}  // namespace
