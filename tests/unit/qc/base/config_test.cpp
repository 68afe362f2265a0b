#include "qc/base/config.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/sky.h"

namespace {

using namespace orsolva;

QcConfig Built(const config_qct& host) {
  QcConfig config;
  config.ApplyDefaults();
  config.Overlay(host);
  return config;
}

TEST(QcConfig, SlotsHaveTheirSystemsAndBandCounts) {
  const QcConfig config;
  const int systems[6] = {1, 2, 4, 8, 16, 4};
  const int bands[6] = {2, 2, 3, 3, 2, 3};
  for (int slot = 0; slot < 6; ++slot) {
    EXPECT_EQ(config.Sys[slot].SysCode, systems[slot]);
    EXPECT_EQ(config.Sys[slot].FreqNum, bands[slot]);
    EXPECT_EQ(config.Sys[slot].Enable, 1);
    EXPECT_EQ(config.Sys[slot].Select, 0);
    EXPECT_EQ(config.Sys[slot].Extra, 0);
  }
}

TEST(QcConfig, ConstructedHasDocumentedValues) {
  const QcConfig config;
  EXPECT_EQ(config.EnablePosition, 0);
  EXPECT_EQ(config.AutoDetectFreq, 0);
  EXPECT_EQ(config.SystemMask, 0U);
  EXPECT_EQ(config.Interval, 1.0);
  EXPECT_EQ(config.ElevationMask, 0.17453292519943295);
  for (const double x : config.Position) EXPECT_EQ(x, 0.0);
}

TEST(QcConfig, AConstructedSystemIsOffWithEveryFrequencyAndSatellite) {
  const QcSysConfig sys;
  EXPECT_EQ(sys.Enable, 0);
  EXPECT_EQ(sys.SysCode, 0);
  EXPECT_EQ(sys.CodeList.Count(), 0);
  for (const auto flag : sys.FreqEnable) EXPECT_EQ(flag, 1);
  for (const auto flag : sys.IncludeSat) EXPECT_EQ(flag, 1);
}

TEST(QcConfig, DefaultsSelectEverythingAndDetectFrequencies) {
  QcConfig config;
  config.Sys[5].SysCode = 0;
  config.Interval = 7.0;
  for (int f = 0; f < 6; ++f) config.Sys[2].FreqEnable[f] = config.Sys[1].FreqEnable[f] = 0;
  config.ApplyDefaults();
  EXPECT_EQ(config.AutoDetectFreq, 1);
  EXPECT_EQ(config.Interval, 1.0);
  EXPECT_EQ(config.Sys[5].SysCode, 4);
  for (const QcSysConfig& sys : config.Sys) EXPECT_EQ(sys.Select, 1);
  for (int f = 0; f < 6; ++f) EXPECT_EQ(config.Sys[2].FreqEnable[f], 1);
  for (int f = 0; f < 6; ++f) EXPECT_EQ(config.Sys[1].FreqEnable[f], f < 2 ? 1 : 0);
}

TEST(QcConfig, ElevationZeroMeansATenThousandthOfARadian) {
  config_qct host = sky::Config();
  host.elevation = 0.0;
  EXPECT_EQ(Built(host).ElevationMask, 0.0001);
  host.elevation = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Built(host).ElevationMask, 0.0001);
}

TEST(QcConfig, ElevationIsConvertedToRadians) {
  config_qct host = sky::Config();
  host.elevation = 5.0;
  EXPECT_EQ(Built(host).ElevationMask, 0.08726646259971647);
}

TEST(QcConfig, DisablingBdsDisablesBothSlots) {
  config_qct host = sky::Config();
  host.enable_system[2] = 0;
  const QcConfig config = Built(host);
  EXPECT_EQ(config.Sys[2].Enable, 0);
  EXPECT_EQ(config.Sys[5].Enable, 0);
  EXPECT_EQ(config.EnabledSystems(), 27U);
}

TEST(QcConfig, EachEnableFlagGovernsItsSystem) {
  for (int slot = 0; slot < 5; ++slot) {
    config_qct host = sky::Config();
    host.enable_system[slot] = 0;
    EXPECT_EQ(Built(host).EnabledSystems(), 31U & ~(1U << slot));
  }
}

TEST(QcConfig, OnlyTheValueOneEnablesABds3Frequency) {
  config_qct host = sky::Config();
  host.satellite_freq[2][1] = 2;
  host.satellite_freq[5][1] = 1;
  const QcConfig config = Built(host);
  EXPECT_EQ(config.Sys[5].FreqEnable[1], 0);
  EXPECT_EQ(config.Sys[2].FreqEnable[1], 1);
}

TEST(QcConfig, TheBds3RowsHaveNoEffect) {
  config_qct host = sky::Config();
  for (int f = 0; f < 6; ++f) host.satellite_freq[5][f] = 0;
  for (int k = 0; k < 64; ++k) host.include_satellite[5][k] = 0;
  host.satellite_freq[2][3] = 0;
  host.include_satellite[2][7] = 0;
  const QcConfig config = Built(host);
  for (int f = 0; f < 6; ++f) EXPECT_EQ(config.Sys[5].FreqEnable[f], f == 3 ? 0 : 1);
  for (int k = 0; k < 64; ++k) EXPECT_EQ(config.Sys[5].IncludeSat[k], k == 7 ? 0 : 1);
}

TEST(QcConfig, AZeroFrequencyEntryDisablesTheFrequency) {
  config_qct host = sky::Config();
  host.satellite_freq[3][4] = 0;
  const QcConfig config = Built(host);
  EXPECT_EQ(config.Sys[3].FreqEnable[4], 0);
  EXPECT_EQ(config.Sys[3].FreqEnable[3], 1);
}

TEST(QcConfig, OnlyTheLowByteOfAnIncludeEntryCounts) {
  config_qct host = sky::Config();
  host.include_satellite[0][3] = 256;
  host.include_satellite[0][4] = -1;
  const QcConfig config = Built(host);
  EXPECT_EQ(config.Sys[0].IncludeSat[3], 0);
  EXPECT_EQ(config.Sys[0].IncludeSat[4], 255);
}

TEST(QcConfig, IntervalZeroKeepsOneSecond) {
  config_qct host = sky::Config();
  host.interval = 0.0;
  EXPECT_EQ(Built(host).Interval, 1.0);
  host.interval = 1e-12;
  EXPECT_EQ(Built(host).Interval, 1.0);
  host.interval = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Built(host).Interval, 1.0);
  host.interval = 15.0;
  EXPECT_EQ(Built(host).Interval, 15.0);
}

TEST(QcConfig, AutoDetectionFollowsTheHost) {
  config_qct host = sky::Config();
  host.auto_detect_freq = 0;
  EXPECT_EQ(Built(host).AutoDetectFreq, 0);
  host.auto_detect_freq = 256;
  EXPECT_EQ(Built(host).AutoDetectFreq, 1);
}

TEST(QcConfig, APositionThatIsNotEnabledIsStoredAsZeros) {
  config_qct host = sky::Config();
  EXPECT_EQ(Built(host).Position[2], sky::kStation[2]);
  EXPECT_EQ(Built(host).EnablePosition, 1);
  host.enable_position = 0;
  EXPECT_EQ(Built(host).Position[2], 0.0);
  EXPECT_EQ(Built(host).EnablePosition, 0);
}

TEST(QcConfig, NarrowsItsBandsToThoseInUse) {
  QcConfig config;
  config.ApplyDefaults();
  BandsInUse bands[kSystemSlots];
  bands[kSlotGps] = {{1, 0, 1, 0, 0, 0}, 2};
  config.NarrowBands(bands);
  EXPECT_EQ(config.Sys[kSlotGps].FreqNum, 2);
  EXPECT_EQ(config.Sys[kSlotGps].FreqEnable[0], 1);
  EXPECT_EQ(config.Sys[kSlotGps].FreqEnable[1], 0);
  EXPECT_EQ(config.Sys[kSlotBd3].FreqEnable[0], 0);
  EXPECT_EQ(config.Sys[kSlotGps].Enable, 1) << "nothing else changes";
}

TEST(QcConfig, CopyTakesTheCodeListAlong) {
  QcSysConfig sys;
  sys.CodeList.Append(16);
  sys.IncludeSat[5] = 0;
  const QcSysConfig copy = sys;
  sys.CodeList.Append(20);
  EXPECT_EQ(copy.CodeList.Count(), 1);
  EXPECT_EQ(copy.CodeList.At(0), 16);
  EXPECT_EQ(copy.IncludeSat[5], 0);
}

TEST(SystemSlot, BdsHasItsOwnAndUnknownSystemsNone) {
  EXPECT_EQ(SystemSlotOf(4), kSlotBds);
  EXPECT_EQ(SystemSlotOf(16), kSlotQzss);
  EXPECT_EQ(SystemSlotOf(32), -1);
  EXPECT_EQ(CodeListSlotOf(16), 5);
  EXPECT_EQ(CodeListSlotOf(8), 3);
  EXPECT_EQ(CodeListSlotOf(64), -1);
}

}  // namespace
