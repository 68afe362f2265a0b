#include "toolkit/signals.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <map>
#include <utility>

#include "tests/unit/toolkit/signal_rows.h"
#include "toolkit/constants.h"
#include "toolkit/satellite.h"

namespace gnssqctoolkit {
namespace {

constexpr GnssSystem kAllSystems[] = {kGps, kGlonass, kBds, kGalileo, kQzss, kIrnss, kSbas};

TEST(SignalTable, HoldsEveryRowInOrder) {
  std::map<int, int> next;
  for (const ExpectedSignal& expected : kExpectedSignals) {
    int rows = 0;
    const SignalRow* table = SignalTable(expected.system, rows);
    const int place = next[expected.system]++;
    ASSERT_LT(place, rows);
    EXPECT_EQ(table[place].code, expected.code);
    EXPECT_EQ(table[place].band, expected.band) << expected.code;
    EXPECT_EQ(table[place].priority, expected.priority) << expected.code;
    EXPECT_STREQ(table[place].obs, expected.obs) << expected.code;
    EXPECT_EQ(table[place].frequency, expected.frequency) << expected.code;
  }
  const std::map<int, int> sizes = {{kGps, 22},  {kGlonass, 13}, {kBds, 33}, {kGalileo, 19},
                                    {kQzss, 21}, {kIrnss, 8},    {kSbas, 4}};
  EXPECT_EQ(next, sizes);
  for (const auto& [system, size] : sizes) {
    int rows = 0;
    EXPECT_NE(SignalTable(system, rows), nullptr);
    EXPECT_EQ(rows, size);
  }
}

TEST(SignalTable, UnknownSystemHasNone) {
  for (int system : {0, 3, -1, 128, 255, INT_MIN, INT_MAX}) {
    int rows = 5;
    EXPECT_EQ(SignalTable(system, rows), nullptr);
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(FindSignal(system, 1), nullptr);
    EXPECT_EQ(SignalBand(system, 1), 0);
    EXPECT_EQ(SignalFrequency(system, 1), 0);
    EXPECT_EQ(Wavelength(system, 1, 0), 0.0);
  }
}

TEST(FindSignal, EqualsALinearSearch) {
  for (GnssSystem system : kAllSystems) {
    int rows = 0;
    const SignalRow* table = SignalTable(system, rows);
    for (int code = -300; code < 600; ++code) {
      const SignalRow* expected = nullptr;
      for (int i = rows - 1; i >= 0; --i) {
        if (table[i].code == code) expected = table + i;
      }
      EXPECT_EQ(FindSignal(system, code), expected) << code;
      EXPECT_EQ(SignalBand(system, code), expected != nullptr ? expected->band : 0);
      EXPECT_EQ(SignalFrequency(system, code), expected != nullptr ? expected->frequency : 0);
    }
  }
  EXPECT_EQ(FindSignal(kGps, INT_MIN), nullptr);
  EXPECT_EQ(FindSignal(kGps, INT_MAX), nullptr);
}

TEST(FindSignal, BdsCode150IsTheFirstRow) {
  const SignalRow* row = FindSignal(kBds, 150);
  ASSERT_NE(row, nullptr);
  EXPECT_STREQ(row->obs, "2I");
  EXPECT_EQ(row->band, 21);
}

TEST(SignalFrequency, BdsBands8And6And36ShareSlot3) {
  EXPECT_EQ(SignalFrequency(kBds, 170), 3);
  EXPECT_EQ(SignalFrequency(kBds, 173), 3);
  EXPECT_EQ(SignalFrequency(kBds, 176), 3);
}

TEST(SignalBand, SearchesTheIrnssTableForIrnss) {
  EXPECT_EQ(SignalBand(kIrnss, 204), 9);
  EXPECT_EQ(SignalFrequency(kIrnss, 204), 2);
  EXPECT_EQ(SignalBand(kIrnss, 120), 0);
}

TEST(Wavelength, IsStoredForEveryBand) {
  const std::map<std::pair<int, int>, double> stored = {
      {{kGps, 1}, 0.19029367279836487},     {{kGps, 2}, 0.24421021342456825},
      {{kGps, 5}, 0.25482804879085386},     {{kGlonass, 3}, 0.24940617541232504},
      {{kGlonass, 4}, 0.187253837769637},   {{kGlonass, 6}, 0.24020676730285404},
      {{kBds, 1}, 0.19029367279836487},     {{kBds, 5}, 0.25482804879085386},
      {{kBds, 6}, 0.2363324646044209},      {{kBds, 36}, 0.2363324646044209},
      {{kBds, 7}, 0.2483493695843067},      {{kBds, 27}, 0.2483493695843067},
      {{kBds, 8}, 0.251547000952345},       {{kBds, 21}, 0.19203948631027648},
      {{kGalileo, 1}, 0.19029367279836487}, {{kGalileo, 5}, 0.25482804879085386},
      {{kGalileo, 6}, 0.23444180488758554}, {{kGalileo, 7}, 0.2483493695843067},
      {{kGalileo, 8}, 0.251547000952345},   {{kQzss, 1}, 0.19029367279836487},
      {{kQzss, 2}, 0.24421021342456825},    {{kQzss, 5}, 0.25482804879085386},
      {{kQzss, 6}, 0.23444180488758554},    {{kSbas, 1}, 0.19029367279836487},
      {{kSbas, 5}, 0.25482804879085386}};
  for (const ExpectedSignal& signal : kExpectedSignals) {
    if (signal.system == kIrnss || (signal.system == kGlonass && signal.band <= 2)) continue;
    const auto found = stored.find({signal.system, signal.band});
    ASSERT_NE(found, stored.end()) << signal.code;
    EXPECT_EQ(Wavelength(signal.system, signal.code, 0), found->second) << signal.code;
  }
}

TEST(Wavelength, IsThatOfThePublishedCarrier) {
  const std::map<std::pair<int, int>, double> carriers_mhz = {
      {{kGps, 1}, 1575.42},       {{kGps, 10}, 1227.60},      {{kGps, 20}, 1176.45},
      {{kGlonass, 40}, 1202.025}, {{kBds, 153}, 1575.42},     {{kGlonass, 32}, 1600.995},
      {{kGlonass, 37}, 1248.06},  {{kBds, 161}, 1176.45},     {{kBds, 173}, 1268.52},
      {{kBds, 176}, 1268.52},     {{kBds, 167}, 1207.14},     {{kBds, 164}, 1207.14},
      {{kBds, 170}, 1191.795},    {{kBds, 150}, 1561.098},    {{kGalileo, 74}, 1278.75},
      {{kGalileo, 68}, 1207.14},  {{kGalileo, 71}, 1191.795}, {{kQzss, 136}, 1278.75}};
  for (const auto& [signal, mhz] : carriers_mhz) {
    // The stored values carry up to 17 digits; one part in 1e14 is the rounding of the last of the 15.
    const double wavelength = kSpeedOfLight / (mhz * 1e6);
    EXPECT_NEAR(Wavelength(signal.first, signal.second, 0), wavelength, wavelength * 1e-14) << signal.second;
  }
}

TEST(Wavelength, OfGlonassFollowsTheChannel) {
  EXPECT_EQ(Wavelength(kGlonass, 30, -7), 299792458.0 / 1598062500.0);
  EXPECT_EQ(Wavelength(kGlonass, 30, 0), 299792458.0 / 1.602e9);
  EXPECT_EQ(Wavelength(kGlonass, 31, 6), 299792458.0 / (1.602e9 + 562500.0 * 6));
  EXPECT_EQ(Wavelength(kGlonass, 35, -3), 299792458.0 / (1.246e9 + 437500.0 * -3));
  EXPECT_TRUE(std::isfinite(Wavelength(kGlonass, 35, INT_MAX)));
}

TEST(Wavelength, OfGlonassIsZeroBelowChannelMinus7) {
  for (int code = 30; code <= 42; ++code) {
    EXPECT_GT(Wavelength(kGlonass, code, -7), 0.0);
    EXPECT_EQ(Wavelength(kGlonass, code, -8), 0.0);
    EXPECT_EQ(Wavelength(kGlonass, code, -999), 0.0);
  }
}

TEST(Wavelength, OfIrnssIsSearchedInTheQzssTable) {
  for (int code = 200; code <= 207; ++code) EXPECT_EQ(Wavelength(kIrnss, code, 0), 0.0);
  EXPECT_EQ(Wavelength(kIrnss, 120, 0), 0.19029367279836487);
  EXPECT_EQ(Wavelength(kIrnss, 136, 0), 0.23444180488758554);
}

TEST(Wavelength, OfAnUnknownCodeIsZero) {
  EXPECT_EQ(Wavelength(kGps, 0, 0), 0.0);
  EXPECT_EQ(Wavelength(kGps, 23, 0), 0.0);
  EXPECT_EQ(Wavelength(kGps, 256 + 1, 0), 0.0);
  EXPECT_EQ(Wavelength(kGps, -1, 0), 0.0);
}

TEST(Constants, HaveTheirPublishedValues) {
  EXPECT_EQ(kSpeedOfLight, 299792458.0);
  EXPECT_EQ(kGmGps, 3.986005e14);
  EXPECT_EQ(kGmBdsGalileo, 3.986004418e14);
  EXPECT_EQ(kGmGlonass, 3.9860044e14);
  EXPECT_EQ(kEarthRotationGps, 7.2921151467e-5);
  EXPECT_EQ(kEarthRotationBds, 7.292115e-5);
  EXPECT_EQ(kEarthRotationGlonass, 7.292115e-5);
  EXPECT_EQ(kEarthRadius, 6378137.0);
  EXPECT_EQ(kHalfWeek * 2, kWeek);
  EXPECT_EQ(kWeek, 604800.0);
  EXPECT_EQ(kGpsMinusBds, 14.0);
}

TEST(Constants, DerivedOnesAgreeWithTheirFormulas) {
  // Relative 1e-13: the stored constants were rounded to 15 or 16 digits.
  EXPECT_NEAR(kEarthRotationGlonassSquared, 7.292115e-5 * 7.292115e-5, 5.3e-9 * 1e-13);
  EXPECT_NEAR(kEarthRotationGlonassDouble, 2 * 7.292115e-5, 1.5e-4 * 1e-13);
  EXPECT_NEAR(kGlonassJ2Factor, 1.5 * 1.0826257e-3 * 3.9860044e14 * 6378136.0 * 6378136.0, 2.6e25 * 1e-13);
  const double flattening = 1.0 / 298.257223563;
  EXPECT_NEAR(kEarthEccentricitySquared, flattening * (2 - flattening), 1e-16);
  EXPECT_NEAR(kRadiansPerDegree, std::atan(1.0) / 45.0, 1e-17);
  EXPECT_NEAR(kBdsGeoTilt, -5 * kRadiansPerDegree, 1e-16);
}

}  // namespace
}  // namespace gnssqctoolkit
