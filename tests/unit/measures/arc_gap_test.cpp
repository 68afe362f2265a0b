// What a gap does to the arc, whatever the satellite's records reach.
#include <gtest/gtest.h>

#include "measures/ionosphere.h"
#include "tests/support/exact_sky.h"

namespace orsolva {
namespace {

using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::Ephemeris;
using orsolva_test::ExactSky;
using orsolva_test::GalileoRecord;
using orsolva_test::GlonassRecord;

AbsoluteTime At(double seconds) {
  return gnssqctoolkit::AbsoluteTimeAdd({orsolva_test::kSkyTime, 0.0}, seconds);
}

// Two records of a satellite, 90,000 s apart, and an observation at the reference time of each.
IodDetect OverMoreThanADay(const Ephemeris& records, const gnssqctoolkit::SatelliteId& satellite) {
  const ExactSky sky;
  IodDetect state;
  for (const double seconds : {0.0, 90000.0}) {
    SatelliteGeometry geometry;
    geometry.Records = &records;
    for (int i = 0; i < 3; ++i) geometry.Station[i] = sky.Station[i];
    EXPECT_TRUE(records.Select(satellite, At(seconds), gnssqctoolkit::kDefaultMaxAges, geometry.Choice));
    geometry.HasPosition = records.SatellitePosition(geometry.Choice, At(seconds), 2.1e7, geometry.Satellite);
    EXPECT_TRUE(geometry.HasPosition);
    state.PreviousEpoch = state.CurrentEpoch;
    PhaseGeometryDifference(At(seconds), {1, 1.1e8, 2.1e7}, 0.187, geometry, state, nullptr);
    CountSlip(state, true, EpochMedians(), 0.0, 30.0, false, nullptr);
    UpdateWideLane(state, 5.0);
  }
  return state;
}

TEST(ArcGap, OfMoreThanADayClosesTheArcOfEverySystem) {
  Ephemeris records;
  GloEph_gbt glonass = GlonassRecord(3);
  GalEph_gbt galileo = GalileoRecord(3);
  records.Glonass().Add(glonass);
  records.Galileo().Add(galileo);
  glonass.toe.time += 90000;
  galileo.toc.time += 90000;
  galileo.toes += 90000.0;
  records.Glonass().Add(glonass);
  records.Galileo().Add(galileo);
  for (const auto& satellite : {gnssqctoolkit::SatelliteId{gnssqctoolkit::kGlonass, 3},
                                gnssqctoolkit::SatelliteId{gnssqctoolkit::kGalileo, 3}}) {
    const IodDetect state = OverMoreThanADay(records, satellite);
    EXPECT_EQ(1, state.LongestArcCount) << "the arc before the gap is closed";
    EXPECT_EQ(1, state.WideLaneCount) << "a new one begins behind it";
    EXPECT_EQ(0, state.SlipCount);
  }
}

}  // namespace
}  // namespace orsolva
