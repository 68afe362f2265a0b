#include "host/formats/rtcm/reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "host/formats/rtcm/frame.h"
#include "tests/formats/rtcm/frames.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::rtcm;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;
using orsolva_test::OneCell;

/// Bytes in small pieces, then an error if so wished.
class Pieces : public ByteSource {
 public:
  explicit Pieces(std::string bytes, bool fails = false) : bytes_(std::move(bytes)), fails_(fails) {}
  std::size_t Read(char* out, std::size_t size) override {
    const std::size_t count = std::min({size, std::size_t{7}, bytes_.size() - at_});
    if (count == 0 && fails_) throw FileError("file", 0, "a broken disk", "readable data", "Check the disk.");
    std::memcpy(out, bytes_.data() + at_, count);
    at_ += count;
    return count;
  }

 private:
  std::string bytes_;
  bool fails_;
  std::size_t at_ = 0;
};

std::string EpochFrame(std::int64_t time_ms) { return FrameOf(WriteMsm(OneCell('G', 7, time_ms))); }

std::string Ephemeris(int type, char system, std::int64_t toe_ns) {
  KeplerRecord record;
  record.satellite = {system, 3};
  record.sqrt_a = 5153;
  record.toe_s = record.toc_s = static_cast<double>(toe_ns / kSecond);
  return FrameOf(WriteEphemeris(MessageOf(record, type)));
}

Reader Open(const std::string& bytes, Diagnostics& diagnostics, bool fails = false) {
  return Reader(std::make_unique<Pieces>(bytes, fails), "file", diagnostics);
}

std::vector<std::int64_t> TimesOf(Reader& reader) {
  std::vector<std::int64_t> times;
  ObservationEpoch epoch;
  while (reader.Next(epoch)) times.push_back(epoch.time_ns);
  EXPECT_FALSE(reader.Next(epoch));
  return times;
}

TEST(RtcmReader, EpochsBeforeTheFirstDateAreKept) {
  Diagnostics diagnostics;
  Reader reader =
      Open(EpochFrame(604'799'000) + EpochFrame(0) + Ephemeris(1045, 'E', GpsTime(2001, 600)), diagnostics);
  EXPECT_EQ(TimesOf(reader), (std::vector{GpsTime(2000, 604799), GpsTime(2001, 0)}));
  EXPECT_EQ(reader.TakeBroadcast().kepler.size(), 1u);
  EXPECT_EQ(diagnostics.Total(), 0);
}

TEST(RtcmReader, FullDateAfterAGpsWeekCounts) {
  Diagnostics diagnostics;
  Reader reader = Open(
      Ephemeris(1019, 'G', GpsTime(2001, 600)) + EpochFrame(1000) + Ephemeris(1042, 'C', GpsTime(2001, 3614)),
      diagnostics);
  EXPECT_EQ(TimesOf(reader), std::vector{GpsTime(2001, 1)});
}

TEST(RtcmReader, GpsWeekAloneIsOneFrom2019On) {
  Diagnostics diagnostics;
  Reader reader = Open(Ephemeris(1019, 'G', GpsTime(2301, 600)) + EpochFrame(1000), diagnostics);
  EXPECT_EQ(TimesOf(reader), std::vector{GpsTime(2301, 1)});
}

TEST(RtcmReader, ObservationsWithoutADateNeedOne) {
  Diagnostics diagnostics;
  EXPECT_THROW(Open(EpochFrame(1000), diagnostics), FileError);
  ReaderOptions options;
  options.near_ns = GpsTime(2301, 5);
  Reader reader(std::make_unique<Pieces>(EpochFrame(1000)), "file", diagnostics, options);
  EXPECT_EQ(TimesOf(reader), std::vector{GpsTime(2301, 1)});
}

TEST(RtcmReader, OtherFilesAreRefused) {
  Diagnostics diagnostics;
  EXPECT_THROW(Open("", diagnostics), FileError);
  EXPECT_THROW(Open("     3.05           OBSERVATION DATA", diagnostics), FileError);
}

TEST(RtcmReader, DamageIsReportedOnceWithItsNumbers) {
  std::string damaged = EpochFrame(2000);
  damaged[10] ^= 4;
  Diagnostics diagnostics;
  Reader reader = Open(Ephemeris(1045, 'E', GpsTime(2001, 600)) + EpochFrame(1000) + damaged + damaged +
                           EpochFrame(3000) + "garbage",
                       diagnostics);
  EXPECT_EQ(TimesOf(reader), (std::vector{GpsTime(2001, 1), GpsTime(2001, 3)}));
  long wrong = 0;
  std::string skipped;
  for (const Notice& notice : diagnostics.Notices()) {
    if (notice.text.find("outside frames") != std::string::npos) skipped = notice.text;
    if (notice.text == "frame with a wrong CRC") {
      wrong = notice.count;
      EXPECT_FALSE(notice.recovered);
    }
  }
  EXPECT_EQ(wrong, 1);  // the second one follows skipped bytes, where no frame had to begin
  EXPECT_EQ(reader.Frames().skipped_bytes, 2 * damaged.size() + 7);
  EXPECT_EQ(skipped, std::to_string(2 * damaged.size() + 7) + " bytes outside frames skipped");
}

TEST(RtcmReader, FailureAfterTheFirstEpochEndsTheData) {
  Diagnostics diagnostics;
  const std::string bytes =
      Ephemeris(1045, 'E', GpsTime(2001, 600)) + EpochFrame(1000) + EpochFrame(2000) + EpochFrame(3000);
  Reader reader = Open(bytes, diagnostics, true);
  EXPECT_EQ(TimesOf(reader).size(), 3u);
  ASSERT_TRUE(reader.Failure());
  EXPECT_EQ(reader.Failure()->Found(), "a broken disk");
}

TEST(RtcmReader, FailureBeforeTheFirstEpochIsThrown) {
  Diagnostics diagnostics;
  EXPECT_THROW(Open(EpochFrame(1000), diagnostics, true), FileError);
}

TEST(RtcmReader, EveryDamagedByteCostsAtMostItsOwnEpoch) {
  const std::string head = Ephemeris(1045, 'E', GpsTime(2001, 600));
  std::string bytes = head;
  for (int second = 0; second < 5; ++second) bytes += EpochFrame(second * 1000);
  for (std::size_t at = head.size(); at < bytes.size(); ++at) {
    std::string damaged = bytes;
    damaged[at] ^= 0x11;
    Diagnostics diagnostics;
    Reader reader = Open(damaged, diagnostics);
    EXPECT_EQ(TimesOf(reader).size(), 4u) << at;
  }
}

}  // namespace
