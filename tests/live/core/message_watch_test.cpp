// Messages of streams that are away at times.
#include "host/live/alarms/message_watch.h"
#include "host/live/windows/minute_store.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace orsolva_host::live;

MessageState StateOf(const MessageWatch& watch, int type, std::int64_t at_s) {
  std::map<int, MessageState> messages;
  watch.FillIn(at_s * kSecond_ns, messages);
  return messages.at(type);
}

TEST(MessageWatch, TheAgeIsThatOfTheLastMessageWhateverWasConnected) {
  MessageWatch watch;
  watch.Take(1006, 0);
  for (int s = 0; s <= 60; ++s) watch.Take(1077, s * kSecond_ns);
  watch.Resume(200 * kSecond_ns);
  EXPECT_EQ(StateOf(watch, 1006, 210).age_s, 210.0);
  EXPECT_EQ(StateOf(watch, 1077, 210).age_s, 150.0);
}

TEST(MessageWatch, TimeWithoutAConnectionIsNobodysAbsence) {
  MessageWatch watch;
  for (int s = 0; s <= 60; ++s) {
    watch.Take(1077, s * kSecond_ns);
    watch.Take(1087, s * kSecond_ns);
  }
  watch.Resume(7000 * kSecond_ns);
  watch.Resume(9000 * kSecond_ns);
  EXPECT_TRUE(watch.Announced(9030 * kSecond_ns).empty());
  EXPECT_TRUE(watch.Required({"1077", "1005|1006"}, 9060 * kSecond_ns).empty());
  EXPECT_EQ(watch.Announced(9031 * kSecond_ns).size(), 2U);
}

TEST(MessageWatch, AStreamThatReconnectsOftenMissesWhatItNeverSends) {
  MessageWatch watch;
  std::int64_t at_s = 0;
  std::size_t missing_s = 0;
  for (int connection = 0; connection < 10; ++connection, at_s += 5) {
    if (connection > 0) watch.Resume(at_s * kSecond_ns);
    for (int s = 0; s < 85; ++s, ++at_s) {
      watch.Take(1077, at_s * kSecond_ns);
      missing_s += watch.Required({"1087"}, at_s * kSecond_ns).size();
    }
  }
  // 120 s are allowed, of 84 connected ones each.
  EXPECT_EQ(missing_s, 10 * 85 - 120 - 2U);
}

TEST(MessageWatch, IntervalsAreOverTheTimeThatIsCovered) {
  MessageWatch watch;
  std::int64_t s = 50;
  for (; s <= 60; ++s) watch.Take(1077, s * kSecond_ns);
  watch.EndMinute(60 * kSecond_ns);
  EXPECT_EQ(StateOf(watch, 1077, 60).interval_s, 1.0);
  for (; s <= 80; ++s) watch.Take(1077, s * kSecond_ns);
  watch.Resume(110 * kSecond_ns);  // 30 s away
  for (s = 111; s <= 120; ++s) watch.Take(1077, s * kSecond_ns);
  watch.EndMinute(120 * kSecond_ns);
  EXPECT_EQ(StateOf(watch, 1077, 120).interval_s, 1.0);
}

}  // namespace
