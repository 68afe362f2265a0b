#include "navigation/positioning/spp_residuals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/exact_sky.h"
#include "tests/support/trace_recorder.h"

namespace gnssqctoolkit {
namespace {

using namespace orsolva_test;

TEST(SPPOption, HasItsDefaults) {
  const SPPOption o;
  EXPECT_EQ(o.Mode, 0);
  EXPECT_EQ(o.Flags, 0);
  for (const auto& row : o.Reserved) {
    for (double value : row) EXPECT_EQ(value, 0.0);
  }
  EXPECT_EQ(o.ErrRatio, 100.0);
  EXPECT_EQ(o.ErrA, 0.006);
  EXPECT_EQ(o.ErrB, 0.004);
  EXPECT_EQ(o.ErrC, 0.0);
  EXPECT_EQ(o.ErrDoppler, 1.0);
  EXPECT_EQ(o.IonoOpt, 1);
  EXPECT_EQ(o.TropOpt, 2);
  EXPECT_EQ(o.ElevationMask, 0.17453292519943295);
  EXPECT_EQ(o.NavSys, 15u);
  for (std::int32_t use : o.SatUse) EXPECT_EQ(use, 1);
  EXPECT_EQ(o.MaxGdop, 30.0);
}

TEST(SatelliteExcluded, LeavesOutWhatHasNoNumberNoPositionOrNoEnabledSystem) {
  SPPOption o;
  EXPECT_FALSE(SatelliteExcluded({kGps, 1}, 4.0, 0, o));
  EXPECT_TRUE(SatelliteExcluded({kGps, 36}, 4.0, 0, o));
  EXPECT_TRUE(SatelliteExcluded({kGps, 1}, 4.0, -1, o));
  EXPECT_TRUE(SatelliteExcluded({kQzss, 1}, 4.0, 0, o));
  o.NavSys = 1;
  EXPECT_TRUE(SatelliteExcluded({kGalileo, 1}, 4.0, 0, o));
  o.SatUse[0] = 0;
  EXPECT_TRUE(SatelliteExcluded({kGps, 1}, 4.0, 0, o));
}

TEST(SatelliteExcluded, UsesAnUnhealthySatelliteWhileItsEntryIsOne) {
  orsolva_test::TraceRecorder trace;
  SPPOption o;
  EXPECT_FALSE(SatelliteExcluded({kGps, 5}, 1e9, 63, o));
  EXPECT_TRUE(trace.Texts.empty());
  o.SatUse[4] = 2;
  EXPECT_TRUE(SatelliteExcluded({kGps, 5}, 1e9, 63, o));
  ASSERT_EQ(trace.Texts.size(), 1u);
  EXPECT_EQ(trace.Texts[0], "unhealthy satellite: sat=  5 svh=3F\n");
}

TEST(SatelliteExcluded, TestsTheAccuracyOfSatellitesSetToOtherValues) {
  orsolva_test::TraceRecorder trace;
  SPPOption o;
  o.SatUse[4] = -1;
  EXPECT_FALSE(SatelliteExcluded({kGps, 5}, 90000.0, 0, o));
  EXPECT_TRUE(SatelliteExcluded({kGps, 5}, 90601.0, 0, o));
  ASSERT_EQ(trace.Texts.size(), 1u);
  EXPECT_EQ(trace.Texts[0], "invalid ura satellite: sat=  5 ura=301.00\n");
}

SppEpoch OneSatellite(std::uint8_t system, int prn) {
  ExactSky sky;
  SppEpoch epoch;
  epoch.Time = {kSkyTime, 0.0};
  SppObservation o;
  o.Satellite = {system, prn};
  o.Pseudorange = 2.2e7;
  o.Wavelength = 0.19029367279836487;
  sky.Records.SatellitePosition(o.Satellite, epoch.Time, o.Pseudorange, o.State);
  epoch.Observations.push_back(o);
  return epoch;
}

TEST(FormRows, HoldsClocksWithoutSatellitesByAPseudoRow) {
  const double nowhere[kSppUnknowns] = {};
  std::vector<SppRow> rows;
  std::vector<SppMark> marks;
  EXPECT_EQ(FormRows(OneSatellite(kBds, 20), SPPOption(), nowhere, rows, marks), 1);
  ASSERT_EQ(rows.size(), 4u);
  EXPECT_EQ(rows[0].Design[5], 1.0);
  const int columns[3] = {3, 4, 6};
  for (std::size_t i = 0; i < 3; ++i) {
    for (int j = 0; j < kSppUnknowns; ++j) {
      EXPECT_EQ(rows[i + 1].Design[static_cast<std::size_t>(j)], j == columns[i] ? 1.0 : 0.0);
    }
    EXPECT_EQ(rows[i + 1].Residual, 0.0);
    EXPECT_EQ(rows[i + 1].Variance, 0.01);
  }
}

TEST(FormRows, WeighsByElevationSystemAndSatellite) {
  const double nowhere[kSppUnknowns] = {};  // elevation 90 degrees, no delays
  std::vector<SppRow> rows;
  std::vector<SppMark> marks;
  FormRows(OneSatellite(kGps, 3), SPPOption(), nowhere, rows, marks);
  const double code = 1e4 * (0.006 * 0.006 + 0.004 * 0.004), trop = 0.3 / 1.1;
  EXPECT_NEAR(rows[0].Variance, code + 4.0 + trop * trop, 1e-12);
  FormRows(OneSatellite(kGlonass, 3), SPPOption(), nowhere, rows, marks);
  EXPECT_NEAR(rows[0].Variance, code * 2.25 + 25.0 + trop * trop, 1e-12);
}

TEST(FormRows, MasksByElevationOnlyOnceAPositionExists) {
  ExactSky sky;
  sky.LowestElevation = 0.0;
  const PositioningEpoch all = sky.Epoch(0.0);
  SppEpoch epoch;
  epoch.Time = all.Time;
  for (const auto& from : all.Observations) {
    SppObservation o;
    o.Satellite = from.Satellite;
    o.Pseudorange = from.Pseudorange;
    sky.Records.SatellitePosition(o.Satellite, epoch.Time, o.Pseudorange, o.State);
    epoch.Observations.push_back(o);
  }
  std::vector<SppRow> rows;
  std::vector<SppMark> marks;
  const double nowhere[kSppUnknowns] = {};
  const double there[kSppUnknowns] = {sky.Station[0], sky.Station[1], sky.Station[2]};
  const int unmasked = FormRows(epoch, SPPOption(), nowhere, rows, marks);
  EXPECT_EQ(unmasked, static_cast<int>(epoch.Observations.size()));
  const int masked = FormRows(epoch, SPPOption(), there, rows, marks);
  EXPECT_LT(masked, unmasked);
  for (const SppMark& mark : marks) {
    if (!mark.Valid) continue;
    EXPECT_GE(mark.AzimuthElevation[1], 0.17453292519943295);
  }
}

TEST(FormRows, UsesARepeatedSatelliteOnceAndSixtyFourAtMost) {
  const double nowhere[kSppUnknowns] = {};
  std::vector<SppRow> rows;
  std::vector<SppMark> marks;
  SppEpoch epoch = OneSatellite(kGps, 3);
  epoch.Observations.push_back(epoch.Observations[0]);
  EXPECT_EQ(FormRows(epoch, SPPOption(), nowhere, rows, marks), 1);
  EXPECT_TRUE(marks[0].Valid);
  EXPECT_FALSE(marks[1].Valid);
  const SppObservation model = epoch.Observations[0];
  epoch.Observations.clear();
  for (int system = 1; system <= 8; system *= 2) {
    for (int prn = 1; prn <= 30; ++prn) {
      epoch.Observations.push_back(model);
      epoch.Observations.back().Satellite = {static_cast<std::uint8_t>(system), prn};
    }
  }
  EXPECT_EQ(FormRows(epoch, SPPOption(), nowhere, rows, marks), 64);
  EXPECT_EQ(rows.size(), 65u);  // no Galileo satellite among the first 64
}

TEST(FormRows, LeavesOutWhatIsNotANumber) {
  const double nowhere[kSppUnknowns] = {}, nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<SppRow> rows;
  std::vector<SppMark> marks;
  SppEpoch epoch = OneSatellite(kGps, 3);
  epoch.Observations[0].Pseudorange = nan;
  EXPECT_EQ(FormRows(epoch, SPPOption(), nowhere, rows, marks), 0);
  epoch = OneSatellite(kGps, 3);
  epoch.Observations[0].State.Variance = nan;
  EXPECT_EQ(FormRows(epoch, SPPOption(), nowhere, rows, marks), 0);
  epoch = OneSatellite(kGps, 3);
  epoch.Observations[0].Pseudorange = -2e7;
  EXPECT_EQ(FormRows(epoch, SPPOption(), nowhere, rows, marks), 0);
}

}  // namespace
}  // namespace gnssqctoolkit
