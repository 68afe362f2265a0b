#include "toolkit/satellite.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <thread>

namespace gnssqctoolkit {
namespace {

TEST(SatelliteIndex, CountsGpsGlonassBdsGalileoInARow) {
  for (int prn = 1; prn <= 35; ++prn) EXPECT_EQ(SatelliteIndex({kGps, prn}), prn);
  for (int prn = 1; prn <= 32; ++prn) EXPECT_EQ(SatelliteIndex({kGlonass, prn}), prn + 35);
  for (int prn = 1; prn <= 64; ++prn) EXPECT_EQ(SatelliteIndex({kBds, prn}), prn + 67);
  for (int prn = 1; prn <= 37; ++prn) EXPECT_EQ(SatelliteIndex({kGalileo, prn}), prn + 131);
}

TEST(SatelliteIndex, EndsAtTheLastNumberOfASystem) {
  EXPECT_EQ(SatelliteIndex({kGps, 35}), 35);
  EXPECT_EQ(SatelliteIndex({kGps, 36}), 0);
  EXPECT_EQ(SatelliteIndex({kGlonass, 33}), 0);
  EXPECT_EQ(SatelliteIndex({kBds, 65}), 0);
  EXPECT_EQ(SatelliteIndex({kGalileo, 38}), 0);
  EXPECT_EQ(SatelliteIndex({kIrnss, 8}), 0);
}

TEST(SatelliteIndex, NumbersAbove64AndBelow1HaveNone) {
  EXPECT_EQ(SatelliteIndex({kQzss, 193}), 0);
  EXPECT_EQ(SatelliteIndex({kSbas, 120}), 0);
  EXPECT_EQ(SatelliteIndex({kQzss, 1}), 0);
  EXPECT_EQ(SatelliteIndex({kSbas, 20}), 0);
  EXPECT_EQ(SatelliteIndex({kGps, 0}), 0);
  EXPECT_EQ(SatelliteIndex({kGps, std::numeric_limits<int>::min()}), 0);
  EXPECT_EQ(SatelliteIndex({kGps, std::numeric_limits<int>::max()}), 0);
}

TEST(SatelliteIndex, IrnssSharesTheNumbersOfBds16To22) {
  EXPECT_EQ(SatelliteIndex({kIrnss, 1}), 83);
  EXPECT_EQ(SatelliteIndex({kBds, 16}), 83);
  EXPECT_EQ(SatelliteIndex({kIrnss, 7}), SatelliteIndex({kBds, 22}));
}

TEST(SatelliteIndex, UnknownSystemsHaveNone) {
  for (int system : {0, 3, 5, 128, 255}) EXPECT_EQ(SatelliteIndex({static_cast<std::uint8_t>(system), 5}), 0);
}

TEST(QcSatelliteIndex, DiffersForQzssOnly) {
  for (int system = 0; system < 256; ++system) {
    for (int prn = -2; prn <= 210; ++prn) {
      const SatelliteId key{static_cast<std::uint8_t>(system), prn};
      const int expected = system == kQzss && prn >= 1 && prn <= 10 ? prn + 191 : SatelliteIndex(key);
      ASSERT_EQ(QcSatelliteIndex(key), expected) << system << " " << prn;
    }
  }
  EXPECT_EQ(QcSatelliteIndex({kQzss, 193}), 0);
}

TEST(SatelliteFromIndex, FollowsItsRanges) {
  struct {
    int first, last;
    GnssSystem system;
    int offset;
  } const ranges[] = {{1, 35, kGps, 0},          {36, 67, kGlonass, 35}, {68, 131, kBds, 67},
                      {132, 168, kGalileo, 131}, {169, 191, kSbas, 49},  {192, 201, kQzss, 191},
                      {202, 208, kIrnss, 201}};
  int seen = 0;
  for (const auto& range : ranges) {
    for (int number = range.first; number <= range.last; ++number, ++seen) {
      SatelliteId key{1, 99};
      ASSERT_TRUE(SatelliteFromIndex(number, key));
      EXPECT_EQ(key.system, range.system);
      EXPECT_EQ(key.prn, number - range.offset);
    }
  }
  EXPECT_EQ(seen, kMaxSatellites);
}

TEST(SatelliteFromIndex, ClearsTheKeyOutside1To208) {
  for (int number : {0, -1, 209, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
    SatelliteId key{1, 99};
    EXPECT_FALSE(SatelliteFromIndex(number, key));
    EXPECT_EQ(key.system, 0);
    EXPECT_EQ(key.prn, 0);
  }
}

TEST(SatelliteFromIndex, RoundTripsExceptForSbasAndIrnss) {
  for (int number = 1; number <= kMaxSatellites; ++number) {
    SatelliteId key;
    ASSERT_TRUE(SatelliteFromIndex(number, key));
    const int back = QcSatelliteIndex(key);
    if (key.system == kSbas) {
      EXPECT_EQ(back, 0);
    } else if (key.system == kIrnss) {
      EXPECT_EQ(back, number - 119);
    } else {
      EXPECT_EQ(back, number);
    }
  }
}

TEST(SatelliteIdText, IsTheLetterAndAtLeastTwoDigits) {
  EXPECT_STREQ(SatelliteIdText({kGps, 3}), "G03");
  EXPECT_STREQ(SatelliteIdText({kGlonass, 7}), "R07");
  EXPECT_STREQ(SatelliteIdText({kBds, 123}), "C123");
  EXPECT_STREQ(SatelliteIdText({kGalileo, 36}), "E36");
  EXPECT_STREQ(SatelliteIdText({kQzss, 1}), "J01");
  EXPECT_STREQ(SatelliteIdText({kIrnss, 7}), "I07");
  EXPECT_STREQ(SatelliteIdText({kSbas, 120}), "S120");
  EXPECT_STREQ(SatelliteIdText({kSbas, std::numeric_limits<int>::min()}), "S-2147483648");
}

TEST(SatelliteIdText, UnknownSystemLeavesTheText) {
  SatelliteIdText({kGps, 21});
  EXPECT_STREQ(SatelliteIdText({3, 5}), "G21");
}

TEST(SatelliteIdText, OverwritesOneTextPerThread) {
  const char* first = SatelliteIdText({kGps, 1});
  const char* second = SatelliteIdText({kGps, 2});
  EXPECT_EQ(first, second);
  EXPECT_STREQ(first, "G02");
  std::string other;
  std::thread([&] { other = SatelliteIdText({kGalileo, 9}); }).join();
  EXPECT_EQ(other, "E09");
  EXPECT_STREQ(first, "G02");
}

TEST(BdsOrbitClass, NamesGeostationaryAndInclinedSatellites) {
  const std::set<int> geostationary = {1, 2, 3, 4, 5, 59, 60, 61, 62};
  const std::set<int> inclined = {6, 7, 8, 9, 10, 13, 16, 31, 38, 39, 40, 56};
  for (int prn = 1; prn <= 64; ++prn) {
    const int expected = geostationary.count(prn) != 0 ? 0 : inclined.count(prn) != 0 ? 2 : 1;
    EXPECT_EQ(BdsOrbitClass(prn), expected) << prn;
  }
  EXPECT_EQ(BdsOrbitClass(0), -1);
  EXPECT_EQ(BdsOrbitClass(65), -1);
}

}  // namespace
}  // namespace gnssqctoolkit
