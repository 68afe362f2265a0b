#include "host/live/stations/ephemeris_book.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

namespace {

using namespace orsolva_host;
using namespace orsolva_host::live;
using Origin = EphemerisBook::Origin;

constexpr double kNow_s = 1'592'870'400;
constexpr std::int64_t kReferenceTime_ns = 1'592'870'400'000'000'000;

/// A message 1019 of a satellite. @param content  makes it another one
std::set<char> Add(EphemerisBook& book, int satellite, double toe_s, std::int64_t content,
                   Origin origin = Origin::kStream) {
  rtcm::EphemerisMessage message;
  message.message = 1019;
  message.values.back() = content;
  KeplerRecord record;
  record.satellite = {'G', static_cast<std::uint8_t>(satellite)};
  record.toe_s = toe_s;
  BroadcastRecords records;
  records.kepler.push_back(record);
  return book.Add({message}, records, origin);
}

TEST(EphemerisBook, KeepsEachOnceInTheOrderInWhichTheyCame) {
  EphemerisBook book;
  EXPECT_EQ(Add(book, 9, kNow_s, 1), std::set<char>{'G'});
  EXPECT_EQ(Add(book, 3, kNow_s, 1), std::set<char>{'G'});
  EXPECT_TRUE(Add(book, 9, kNow_s, 1).empty());
  EXPECT_EQ(Add(book, 9, kNow_s + 7200, 2), std::set<char>{'G'});
  const BroadcastRecords records = book.Records();
  ASSERT_EQ(records.kepler.size(), 3U);
  EXPECT_EQ(records.kepler[0].satellite.number, 9);
  EXPECT_EQ(records.kepler[1].satellite.number, 3);
  EXPECT_EQ(records.kepler[2].toe_s, kNow_s + 7200);
  EXPECT_EQ(book.Satellites(), 2U);
}

TEST(EphemerisBook, KeepsTheLatestOfASatelliteThatAStreamRepeatsWithChanges) {
  EphemerisBook book;
  for (int i = 0; i < 10'000; ++i) Add(book, 1, kNow_s + i, i);
  EXPECT_EQ(book.Size(), EphemerisBook::kMost);
  EXPECT_EQ(book.Records().kepler.back().toe_s, kNow_s + 9999);
  Add(book, 2, kNow_s, 0);
  EXPECT_EQ(book.Size(), EphemerisBook::kMost + 1);
}

TEST(EphemerisBook, AStreamTakesNothingOfAFileAway) {
  EphemerisBook book;
  for (int i = 0; i < 100; ++i) Add(book, 1, kNow_s + 600 * i, i, Origin::kFile);
  for (int i = 0; i < 100; ++i) Add(book, 1, kNow_s, 1000 + i);
  EXPECT_EQ(book.Size(), 100 + EphemerisBook::kMost);
}

TEST(EphemerisBook, PrunesWhatIsOldAndWhatAStreamHasFarAhead) {
  EphemerisBook book;
  Add(book, 1, kNow_s - EphemerisBook::kKept_s - 1, 1);
  Add(book, 2, kNow_s + 7200, 2);
  Add(book, 3, kNow_s + 3 * 86400, 3);
  Add(book, 4, kNow_s + 86400, 4, Origin::kFile);  // of a file of the day that is replayed
  book.Prune(kReferenceTime_ns);
  const BroadcastRecords records = book.Records();
  ASSERT_EQ(records.kepler.size(), 2U);
  EXPECT_EQ(records.kepler[0].satellite.number, 2);
  EXPECT_EQ(records.kepler[1].satellite.number, 4);
}

}  // namespace
