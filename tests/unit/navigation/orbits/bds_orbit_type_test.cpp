#include "navigation/orbits/bds_orbit_type.h"

#include <gtest/gtest.h>

#include <string>

#include "toolkit/satellite.h"

namespace gnssqctoolkit {
namespace {

TEST(BdsOrbitType, FollowsTheTable) {
  const auto expected = [](int prn) {
    if (prn <= 5 || (prn >= 59 && prn <= 61)) return 1;
    if (prn <= 10 || prn == 13 || prn == 16 || prn == 18) return 16;
    if (prn == 15 || prn == 17 || prn == 31 || prn >= 47) return 0;
    return 17;
  };
  for (int prn = 1; prn <= 64; ++prn) EXPECT_EQ(BdsOrbitType(prn), expected(prn)) << prn;
  EXPECT_EQ(BdsOrbitType(0), 0);
  EXPECT_EQ(BdsOrbitType(65), 0);
}

TEST(BdsOrbitType, DisagreesWithTheClassOfTheMeasuresOnPurpose) {
  EXPECT_EQ(BdsOrbitClass(62), 0);  // geostationary there
  EXPECT_EQ(BdsOrbitType(62), 0);   // unknown here
  EXPECT_EQ(BdsOrbitClass(31), 2);
  EXPECT_EQ(BdsOrbitType(31), 0);
}

TEST(BdsIsGeo, GoesByTheRecordFirst) {
  EXPECT_TRUE(BdsIsGeo(1, 20));
  EXPECT_FALSE(BdsIsGeo(2, 1));
  EXPECT_TRUE(BdsIsGeo(0, 1));
  EXPECT_FALSE(BdsIsGeo(0, 20));
  EXPECT_TRUE(BdsIsGeo(7, 60));
}

}  // namespace
}  // namespace gnssqctoolkit
