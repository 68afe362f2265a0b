#include "navigation/positioning/least_square_spp.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/exact_sky.h"
#include "tests/support/trace_recorder.h"

namespace gnssqctoolkit {
namespace {

using namespace orsolva_test;

SppEpoch Gps(const ExactSky& sky) {
  const PositioningEpoch from = sky.Epoch(0.0, kGps);
  SppEpoch epoch;
  epoch.Time = from.Time;
  for (const auto& one : from.Observations) {
    SppObservation o;
    o.Satellite = one.Satellite;
    o.Pseudorange = one.Pseudorange;
    o.Wavelength = 0.19029367279836487;
    sky.Records.SatellitePosition(o.Satellite, epoch.Time, o.Pseudorange, o.State);
    epoch.Observations.push_back(o);
  }
  return epoch;
}

TEST(LeastSquareSpp, FailsAtOnceWithFewerThanSevenRows) {
  SppEpoch epoch = Gps(ExactSky());
  epoch.Observations.resize(3);  // six rows with the three pseudo-rows
  TraceRecorder trace;
  SPPResult result;
  std::vector<SppMark> marks;
  EXPECT_FALSE(LeastSquareSpp(epoch, SPPOption(), result, marks));
  ASSERT_EQ(trace.Texts.size(), 1u);
  EXPECT_EQ(trace.Texts[0], "lack of valid sats ns=3 \n");
  EXPECT_EQ(result.Status, 0);
}

TEST(LeastSquareSpp, CountsPseudoRowsAsRows) {
  TraceRecorder trace;
  SppEpoch epoch = Gps(ExactSky());
  ASSERT_GT(epoch.Observations.size(), 4u);
  SPPOption option;
  option.MaxGdop = 1e9;
  for (SppObservation& o : epoch.Observations) o.State.Variance = 4.0;
  epoch.Observations.resize(4);
  SPPResult result;
  std::vector<SppMark> marks;
  LeastSquareSpp(epoch, option, result, marks);
  EXPECT_FALSE(trace.Holds("lack of valid sats ns=4 \n"));
}

TEST(LeastSquareSpp, FillsTheResult) {
  const ExactSky sky;
  SppEpoch epoch = Gps(sky);
  SPPResult result;
  std::vector<SppMark> marks;
  ASSERT_TRUE(LeastSquareSpp(epoch, SPPOption(), result, marks));
  EXPECT_EQ(result.Status, 1);
  EXPECT_LT(DistanceTo(result.Rr, sky.Station), 0.01);
  for (int i = 3; i < 6; ++i) EXPECT_EQ(result.Rr[i], 0.0);
  EXPECT_NEAR(result.Dtr[0], 30.0 / 299792458.0, 1e-10);
  EXPECT_EQ(result.Dtr[1], 0.0);  // held by its pseudo-row
  EXPECT_EQ(result.Time.time, epoch.Time.Seconds - 1);
  EXPECT_NEAR(result.Time.sec, 1.0 - 30.0 / 299792458.0, 1e-10);
  int used = 0;
  for (const SppMark& mark : marks) used += mark.Valid;
  EXPECT_EQ(result.SatNum, used);
  EXPECT_GT(result.Qr[0], 0.0f);
  // Kept for compatibility: Q22 is used where Q21 would be expected.
  EXPECT_EQ(result.Qr[4], result.Qr[2]);
  EXPECT_NE(result.Qr[3], 0.0f);
  EXPECT_NE(result.Qr[5], 0.0f);
  EXPECT_GT(result.Dop[0], result.Dop[1]);
  EXPECT_NEAR(result.Dop[1] * result.Dop[1], result.Dop[2] * result.Dop[2] + result.Dop[3] * result.Dop[3],
              1e-9);
  for (float v : result.Qv) EXPECT_EQ(v, 0.0f);
  EXPECT_EQ(result.Age, 0.0);
}

TEST(LeastSquareSpp, SaysWhenTheNormalMatrixIsSingular) {
  TraceRecorder trace;
  // Satellites on one line through the start: their design rows have no y and z parts.
  SppEpoch epoch;
  epoch.Time = {kSkyTime, 0.0};
  for (int prn = 1; prn <= 8; ++prn) {
    SppObservation o;
    o.Satellite = {kGps, prn};
    o.Pseudorange = 2e7;
    o.State.Position[0] = (prn % 2 == 0 ? 1.0 : -1.0) * 2.6e7;
    o.State.Health = 0;
    epoch.Observations.push_back(o);
  }
  SPPResult result;
  std::vector<SppMark> marks;
  EXPECT_FALSE(LeastSquareSpp(epoch, SPPOption(), result, marks));
  ASSERT_EQ(trace.Texts.size(), 2u);
  EXPECT_EQ(trace.Texts[0], "LeastSquareSpp: Matrix inv error!\n");
  EXPECT_EQ(trace.Texts[1], "LeastSquareSpp error! \n");
}

TEST(LeastSquareSpp, GivesUpAfterTenIterations) {
  TraceRecorder trace;
  const ExactSky sky;
  SppEpoch epoch = Gps(sky);
  SPPOption option;
  option.ElevationMask = -2.0;
  option.IonoOpt = 0;
  option.TropOpt = 0;
  // Ranges that no point has, with alternating signs of half the constellation's size: the iteration wanders.
  bool diverged = false;
  for (double size = 1e6; size < 1e9 && !diverged; size *= 1.3) {
    SppEpoch bad = epoch;
    double sign = 1.0;
    for (SppObservation& o : bad.Observations) o.Pseudorange += size * (sign = -sign) + 3e9;
    for (SppObservation& o : bad.Observations) o.Pseudorange = std::fabs(o.Pseudorange);
    SPPResult result;
    std::vector<SppMark> marks;
    trace.Texts.clear();
    if (LeastSquareSpp(bad, option, result, marks)) continue;
    diverged = trace.Holds("iteration divergent i=10");
  }
  EXPECT_TRUE(diverged);
}

TEST(GdopAccepted, TakesTheLimitItself) {
  EXPECT_TRUE(GdopAccepted(30.0, 30.0));
  EXPECT_FALSE(GdopAccepted(30.01, 30.0));
  EXPECT_FALSE(GdopAccepted(0.0, 30.0));
  EXPECT_FALSE(GdopAccepted(std::nan(""), 30.0));
}

std::vector<SppMark> Marks(std::initializer_list<std::pair<double, double>> degrees) {
  std::vector<SppMark> marks;
  for (const auto& [azimuth, elevation] : degrees) {
    marks.push_back({true, {azimuth * 0.017453292519943295, elevation * 0.017453292519943295}, 0.0});
  }
  return marks;
}

TEST(DilutionOfPrecision, OfAZenithAndThreeOnTheHorizonIsKnown) {
  // Three evenly spread at elevation 0 and one at the zenith: GDOP^2 = 4/3 + 4/3 + 1/3... summed below.
  double dop[4];
  DilutionOfPrecision(Marks({{0, 0}, {120, 0}, {240, 0}, {0, 90}}), 0.0, dop);
  // H'H = diag(3/2, 3/2) and [[1, 1], [1, 4]] for up and clock: inverse diagonal 2/3, 2/3, 4/3, 1/3.
  EXPECT_NEAR(dop[0], std::sqrt(3.0), 1e-12);
  EXPECT_NEAR(dop[1], std::sqrt(8.0 / 3.0), 1e-12);
  EXPECT_NEAR(dop[2], std::sqrt(4.0 / 3.0), 1e-12);
  EXPECT_NEAR(dop[3], std::sqrt(4.0 / 3.0), 1e-12);
}

TEST(DilutionOfPrecision, CountsValidSatellitesAtOrAboveTheMaskOnly) {
  double dop[4], fewer[4];
  const double mask = 10.0 * 0.017453292519943295;
  auto marks = Marks({{0, 10}, {120, 10}, {240, 10}, {0, 90}});
  DilutionOfPrecision(marks, mask, dop);
  EXPECT_GT(dop[0], 0.0);
  marks.push_back(Marks({{77, 9.99}})[0]);
  marks.push_back(Marks({{200, 50}})[0]);
  marks.back().Valid = false;
  DilutionOfPrecision(marks, mask, fewer);
  EXPECT_EQ(fewer[0], dop[0]);
  marks[0].Valid = false;
  DilutionOfPrecision(marks, mask, fewer);
  EXPECT_EQ(fewer[0], 0.0);
}

TEST(Valsol, RefusesASingularGeometry) {
  const auto marks = Marks({{0, 0}, {0, 0}, {0, 0}, {0, 0}});
  double dop[4] = {1.0, 1.0, 1.0, 1.0}, squares = 0.0;
  EXPECT_FALSE(valsol(marks, std::vector<SppRow>(7), SPPOption(), squares, dop));
  for (const double one : dop) EXPECT_EQ(one, 0.0);
}

TEST(Valsol, WordsAGdopItRejects) {
  TraceRecorder trace;
  const auto marks = Marks({{0, 20}, {120, 20}, {240, 20}, {0, 90}});
  std::vector<SppRow> rows(7);
  SPPOption option;
  double dop[4], squares = 0.0;
  EXPECT_TRUE(valsol(marks, rows, option, squares, dop));
  EXPECT_TRUE(trace.Texts.empty());
  option.MaxGdop = dop[0];
  EXPECT_TRUE(valsol(marks, rows, option, squares, dop));
  option.MaxGdop = 1.0;
  EXPECT_FALSE(valsol(marks, rows, option, squares, dop));
  char text[64];
  std::snprintf(text, sizeof text, "gdop error nv=7 gdop=%.1f", dop[0]);
  ASSERT_EQ(trace.Texts.size(), 1u);
  EXPECT_EQ(trace.Texts[0], text);
}

TEST(Valsol, DoesNotJudgeTheSizeOfTheResiduals) {
  auto marks = Marks({{0, 20}, {120, 20}, {240, 20}, {0, 90}});
  std::vector<SppRow> rows(7);
  for (SppRow& row : rows) row.Residual = 1e6;
  double dop[4], squares = 0.0;
  EXPECT_TRUE(valsol(marks, rows, SPPOption(), squares, dop));
}

TEST(Valsol, FormsTheWeightedSumOfSquaresOfAllRows) {
  const auto marks = Marks({{0, 20}, {120, 20}, {240, 20}, {0, 90}});
  std::vector<SppRow> rows(7);
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].Residual = static_cast<double>(i) - 2.0;
  double dop[4], squares = 1e9;
  EXPECT_TRUE(valsol(marks, rows, SPPOption(), squares, dop));
  EXPECT_EQ(squares, 4.0 + 1.0 + 0.0 + 1.0 + 4.0 + 9.0 + 16.0);
  SPPOption strict;
  strict.MaxGdop = 1e-3;
  EXPECT_FALSE(valsol(marks, rows, strict, squares, dop));
  EXPECT_EQ(squares, 35.0) << "formed before the GDOP is checked";
}

}  // namespace
}  // namespace gnssqctoolkit
