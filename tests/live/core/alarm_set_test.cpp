#include "host/live/alarms/alarm_set.h"

#include <gtest/gtest.h>

namespace {

using namespace orsolva_host::live;

struct Log {
  std::vector<LiveEvent> events;
  AlarmSet alarms{"S", [this](LiveEvent event) {
                    events.push_back(std::move(event));
                    return static_cast<std::uint64_t>(events.size());
                  }};
  void Update(Standing standing, Hysteresis hysteresis, Severity severity = Severity::kBad) {
    alarms.Update(AlarmKind::kLatency, "", standing, hysteresis, 7, [severity] {
      return Finding{severity, "seen", "advice"};
    });
  }
};

TEST(AlarmSet, IsRaisedAfterSoManyOfSoManyAndOnce) {
  Log log;
  for (const bool bad : {true, false, true}) log.Update(bad ? Standing::kBad : Standing::kGood, {3, 5, 2});
  EXPECT_TRUE(log.events.empty());
  for (int i = 0; i < 4; ++i) log.Update(Standing::kBad, {3, 5, 2});
  ASSERT_EQ(log.events.size(), 1U);
  EXPECT_EQ(log.events[0].state, LiveEvent::State::kRaised);
  EXPECT_EQ(log.events[0].kind, "latency");
  EXPECT_EQ(log.alarms.Raised().at(0).event_id, 1U);
}

TEST(AlarmSet, BetweenTheLimitsNothingChanges) {
  Log log;
  log.Update(Standing::kBetween, {1, 1, 2});
  EXPECT_TRUE(log.events.empty());
  log.Update(Standing::kBad, {1, 1, 2});
  for (int i = 0; i < 9; ++i) log.Update(i % 2 == 0 ? Standing::kGood : Standing::kBetween, {1, 1, 2});
  EXPECT_EQ(log.events.size(), 1U);
  log.Update(Standing::kGood, {1, 1, 2});
  log.Update(Standing::kGood, {1, 1, 2});
  ASSERT_EQ(log.events.size(), 2U);
  EXPECT_EQ(log.events[1].state, LiveEvent::State::kCleared);
  EXPECT_TRUE(log.alarms.Raised().empty());
}

TEST(AlarmSet, WorseIsSaidAgainAndBetterIsNot) {
  Log log;
  log.Update(Standing::kBad, {1, 1, 1}, Severity::kWarning);
  log.Update(Standing::kBad, {1, 1, 1}, Severity::kBad);
  log.Update(Standing::kBad, {1, 1, 1}, Severity::kWarning);
  ASSERT_EQ(log.events.size(), 2U);
  EXPECT_EQ(log.events[1].severity, Severity::kBad);
}

TEST(AlarmSet, ASubjectThatIsNoLongerJudgedIsCleared) {
  Log log;
  log.Update(Standing::kBad, {1, 1, 1});
  log.alarms.Keep(AlarmKind::kLatency, {"other"}, 9);
  ASSERT_EQ(log.events.size(), 2U);
  EXPECT_EQ(log.events[1].state, LiveEvent::State::kCleared);
}

}  // namespace
