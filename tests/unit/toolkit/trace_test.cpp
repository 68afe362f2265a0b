#include "toolkit/trace.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace gnssqctoolkit {
namespace {

class RecordingSink : public TraceSink {
 public:
  RecordingSink() : previous_(std::exchange(CurrentTraceSink(), this)) {}
  ~RecordingSink() override { CurrentTraceSink() = previous_; }
  void Write(int level, const std::string& text) override { Lines.emplace_back(level, text); }
  std::vector<std::pair<int, std::string>> Lines;

 private:
  TraceSink* previous_;
};

TEST(Trace, IsOffByDefault) {
  EXPECT_FALSE(TraceEnabled());
  Trace(2, "nobody reads %d\n", 5);
}

TEST(Trace, FormatsNothingWithoutASink) {
  int written = -1;
  Trace(2, "abc%n", &written);
  EXPECT_EQ(written, -1);
}

TEST(Trace, HandsLevelAndTextToTheSink) {
  RecordingSink sink;
  EXPECT_TRUE(TraceEnabled());
  Trace(2, "prn=%3d ura=%.2f\n", 7, 2.5);
  Trace(4, "%s", "");
  const std::string lengthy(5000, 'x');
  Trace(1, "%s!", lengthy.c_str());
  ASSERT_EQ(sink.Lines.size(), 3u);
  EXPECT_EQ(sink.Lines[0], std::make_pair(2, std::string("prn=  7 ura=2.50\n")));
  EXPECT_EQ(sink.Lines[1], std::make_pair(4, std::string()));
  EXPECT_EQ(sink.Lines[2].second, lengthy + "!");
}

TEST(Trace, SinkBelongsToItsThread) {
  RecordingSink sink;
  bool enabled_elsewhere = true;
  std::thread([&] {
    enabled_elsewhere = TraceEnabled();
    Trace(2, "lost");
  }).join();
  EXPECT_FALSE(enabled_elsewhere);
  EXPECT_TRUE(sink.Lines.empty());
}

}  // namespace
}  // namespace gnssqctoolkit
