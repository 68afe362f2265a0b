// Streams recorded by others, in ../shared/rtcm next to the checkout.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "host/formats/rtcm/reader.h"
#include "tests/formats/rtcm/frames.h"
#include "tests/support/shared_folder.h"

namespace {

using namespace orsolva_host;
using namespace orsolva_host::rtcm;
using orsolva_test::GpsTime;
using orsolva_test::kSecond;

class FileBytes : public ByteSource {
 public:
  explicit FileBytes(const std::filesystem::path& path) : file_(path, std::ios::binary) {}
  std::size_t Read(char* out, std::size_t size) override {
    file_.read(out, static_cast<std::streamsize>(size));
    return static_cast<std::size_t>(file_.gcount());
  }

 private:
  std::ifstream file_;
};

class RtcmSamples : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(Folder())) GTEST_SKIP() << "no folder " << Folder();
  }
  static std::filesystem::path Folder() { return orsolva_test::SharedFolder() / "rtcm"; }

  Reader Open(const char* name) {
    return Reader(std::make_unique<FileBytes>(Folder() / name), name, diagnostics_);
  }

  static FrameCounts FramesOf(const char* name) {
    std::ifstream file(Folder() / name, std::ios::binary);
    FrameScanner frames;
    orsolva_test::MessagesIn(std::string((std::istreambuf_iterator<char>(file)), {}), frames);
    return frames.Counts();
  }

  /// The first time and the last, when all epochs are a second apart.
  static std::pair<std::int64_t, std::int64_t> SpanAt1Hz(Reader& reader) {
    ObservationEpoch epoch;
    std::int64_t first = 0;
    std::int64_t last = 0;
    while (reader.Next(epoch)) {
      if (first == 0) first = epoch.time_ns;
      if (last != 0) {
        EXPECT_EQ(epoch.time_ns - last, kSecond);
      }
      last = epoch.time_ns;
    }
    return {first, last};
  }

  Diagnostics diagnostics_;
};

TEST_F(RtcmSamples, EpochsGoOnOverTheEndOfAWeek) {
  Reader reader = Open("week-rollover-STR24.rtcm3");
  EXPECT_EQ(SpanAt1Hz(reader), (std::pair{GpsTime(2009, 604209), GpsTime(2010, 542)}));
  const BroadcastRecords records = reader.TakeBroadcast();
  EXPECT_FALSE(records.kepler.empty());
  for (const KeplerRecord& record : records.kepler) {
    EXPECT_LE(std::fabs(record.toe_s - static_cast<double>(GpsTime(2010, 0) / kSecond)), 4 * 3600.0)
        << NameOf(record.satellite);
  }
  for (const StateVectorRecord& record : records.state_vectors) {
    EXPECT_LE(std::fabs(record.toe_s - static_cast<double>(GpsTime(2010, 0) / kSecond)), 3600.0)
        << NameOf(record.satellite);
  }
  EXPECT_EQ(reader.Station().receiver, "TRIMBLE NETR9");
  EXPECT_EQ(reader.Messages().Phases().UnknownJumps(), 0u);
}

TEST_F(RtcmSamples, LegacyGlonassHasTheDayOfMoscow) {
  Reader reader = Open("glo_day_rollover.rtcm");  // 2017-07-28 21:42 UTC, the next day in Moscow
  EXPECT_EQ(SpanAt1Hz(reader), (std::pair{1501278191 * kSecond, 1501278197 * kSecond}));
}

TEST_F(RtcmSamples, WrongCrcsAreThoseOfTheSamples) {
  EXPECT_EQ(FramesOf("test_gal_eph.rtcm").crc_errors, 7u);
  EXPECT_EQ(FramesOf("MIXED-RTCM3BADCRC.log").frames + 1, FramesOf("MIXED-RTCM3.log").frames);
}

TEST_F(RtcmSamples, GlonassSatelliteWithAWrongYearIsPlacedByTheTime) {
  Reader reader = Open("eph.rtcm");
  ObservationEpoch epoch;
  EXPECT_FALSE(reader.Next(epoch));
  const BroadcastRecords records = reader.TakeBroadcast();
  ASSERT_FALSE(records.state_vectors.empty());
  for (const StateVectorRecord& record : records.state_vectors) {
    EXPECT_EQ(record.toe_s, records.state_vectors[0].toe_s) << NameOf(record.satellite);
  }
  EXPECT_EQ(reader.Messages().Counts().impossible_dates, 16u);
}

}  // namespace
