#include "navigation/positioning/positioning.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "tests/support/exact_sky.h"
#include "tests/support/trace_recorder.h"

namespace gnssqctoolkit {
namespace {

using namespace orsolva_test;

TEST(Spp, RecoversTheStationFromEverySystem) {
  // The model of the solver made the ranges, so what is left is the convergence limit and the rounding of
  // ranges.
  const ExactSky sky;
  for (int systems : {1, 2, 4, 8, 15}) {
    SPPOption option;
    SPP spp(sky.Records, option);
    SPPResult result;
    ASSERT_TRUE(spp.Position(sky.Epoch(300.0, systems), result)) << systems;
    EXPECT_LT(DistanceTo(result.Rr, sky.Station), 0.01) << systems;
    for (int slot = 0; slot < 4; ++slot) {
      const double expected = (systems >> slot) & 1 ? sky.ClockTerms[slot] : 0.0;
      EXPECT_NEAR(result.Dtr[slot] * 299792458.0, expected, 0.01) << systems;
    }
  }
}

TEST(Spp, FailsWithoutObservations) {
  const ExactSky sky;
  const SPPOption option;
  SPP spp(sky.Records, option);
  SPPResult result;
  result.Status = 1;
  EXPECT_FALSE(spp.Position({}, result));
  EXPECT_EQ(result.Status, 0);
}

TEST(Spp, LeavesOutTheSatelliteThatMakesTheFullSolutionFail) {
  TraceRecorder trace;
  const ExactSky sky;
  PositioningEpoch epoch = sky.Epoch(0.0, kGps);
  ASSERT_GE(epoch.Observations.size(), 7u);
  const SPPOption option;
  SPP spp(sky.Records, option);
  // A wild range keeps the full solution from a valid geometry; without it the rest agree exactly.
  PositioningEpoch faulty = epoch;
  bool excluded = false;
  for (double fault = 1e7; fault < 1e12 && !excluded; fault *= 1.5) {
    faulty.Observations[2].Pseudorange = epoch.Observations[2].Pseudorange + fault;
    trace.Texts.clear();
    SPPResult result;
    if (!spp.Position(faulty, result) || trace.Texts.empty()) continue;
    excluded = trace.Texts.back() == std::string("2020/09/03 12:00:00.000: ") +
                                         SatelliteIdText(faulty.Observations[2].Satellite) +
                                         " excluded by raim\n";
    if (excluded) {
      EXPECT_LT(DistanceTo(result.Rr, sky.Station), 0.01);
      EXPECT_FALSE(spp.Marks()[2].Valid);
      EXPECT_TRUE(spp.Marks()[0].Valid);
    }
  }
  EXPECT_TRUE(excluded);
}

TEST(Spp, UsesAnUnhealthySatelliteWhileItsEntryIsOne) {
  ExactSky sky;
  PositioningEpoch epoch = sky.Epoch(0.0, kGps);
  Ephemeris unhealthy;
  for (int prn = 1; prn <= 32; ++prn) {
    GpsEph_gbt r = GpsRecord(prn);
    r.svh = 1;
    unhealthy.Gps().Add(r);
  }
  SPPOption option;
  SPPResult result;
  EXPECT_TRUE(SPP(unhealthy, option).Position(epoch, result));
  for (std::int32_t& use : option.SatUse) use = 2;
  result = SPPResult();
  EXPECT_FALSE(SPP(unhealthy, option).Position(epoch, result));
}

// A range of a sound epoch now and then replaced by one that hurts.
void SpoilRanges(std::mt19937& random, PositioningEpoch& epoch) {
  const double bad[6] = {std::nan(""), std::numeric_limits<double>::infinity(), 0.0, -1.0, 1e300, 1e9};
  for (auto& observation : epoch.Observations) {
    const std::uint32_t kind = random() % 24;
    if (kind < 6) observation.Pseudorange = bad[kind];
    if (kind == 6) observation.Pseudorange += static_cast<double>(random()) * 1e-3;
  }
}

TEST(Spp, GivesAFiniteSolutionOrNoneForRandomRangesAndTimes) {
  const ExactSky sky;
  const SPPOption option;
  const std::int64_t times[] = {kSkyTime,
                                kSkyTime + 300,
                                kSkyTime + 100000,
                                0,
                                std::numeric_limits<std::int64_t>::max(),
                                std::numeric_limits<std::int64_t>::min()};
  std::mt19937 random(5);
  int solved = 0, refused = 0;
  for (int trial = 0; trial < 60; ++trial) {
    PositioningEpoch epoch = sky.Epoch(0.0, 1 + static_cast<int>(random() % 15));
    SpoilRanges(random, epoch);
    if (trial % 4 == 3) epoch.Time = {times[random() % 6], trial % 8 == 7 ? std::nan("") : 0.0};
    SPP spp(sky.Records, option);
    SPPResult result;
    const bool done = spp.Position(epoch, result);
    ASSERT_EQ(result.Status, done ? 1 : 0) << trial;
    (done ? solved : refused) += 1;
    if (!done) continue;
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(std::isfinite(result.Rr[i])) << trial;
    ASSERT_LE(result.SatNum, epoch.Observations.size()) << trial;
  }
  EXPECT_GT(solved, 0);
  EXPECT_GT(refused, 0);
}

TEST(Spp, HasNoSolutionAtATimeThatIsNotANumber) {
  const ExactSky sky;
  const SPPOption option;
  PositioningEpoch epoch = sky.Epoch(0.0);
  epoch.Time = {kSkyTime, std::nan("")};
  SPPResult result;
  EXPECT_FALSE(SPP(sky.Records, option).Position(epoch, result));
  EXPECT_EQ(result.Status, 0);
}

TEST(SpreadEpochs, TakesAllOfAHundredAndSpreadsAHundredOverMore) {
  EXPECT_TRUE(SpreadEpochs(0).empty());
  EXPECT_TRUE(SpreadEpochs(-5).empty());
  EXPECT_EQ(SpreadEpochs(3), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(SpreadEpochs(100).size(), 100u);
  for (int count : {101, 250, 2880, std::numeric_limits<int>::max()}) {
    const std::vector<int> indices = SpreadEpochs(count);
    ASSERT_EQ(indices.size(), 100u);
    EXPECT_EQ(indices.front(), 0);
    EXPECT_EQ(indices.back(), count - 1);
    const double step = (count - 1.0) / 99.0;
    for (std::size_t i = 1; i < 100; ++i) EXPECT_NEAR(indices[i] - indices[i - 1], step, 1.0);
  }
}

TEST(PositionFromEpochs, IsTheMedianOfTheSolutions) {
  const ExactSky sky;
  std::vector<PositioningEpoch> epochs;
  for (int i = 0; i < 7; ++i) epochs.push_back(sky.Epoch(60.0 * i));
  for (PositioningObservation& o : epochs[1].Observations)
    o.Pseudorange += o.Satellite.prn % 2 ? 300.0 : -300.0;
  for (PositioningObservation& o : epochs[4].Observations)
    o.Pseudorange += o.Satellite.prn % 2 ? -500.0 : 500.0;
  epochs[5].Observations.clear();
  double position[3];
  ASSERT_TRUE(PositionFromEpochs(epochs, sky.Records, SPPOption(), position));
  EXPECT_LT(DistanceTo(position, sky.Station), 0.05);
}

TEST(PositionFromEpochs, OfAnEvenNumberIsTheMeanOfTheMiddleTwo) {
  const ExactSky sky;
  std::vector<PositioningEpoch> epochs = {sky.Epoch(0.0), sky.Epoch(60.0)};
  for (PositioningObservation& o : epochs[1].Observations)
    o.Pseudorange += o.Satellite.prn % 2 ? 30.0 : -30.0;
  double position[3];
  ASSERT_TRUE(PositionFromEpochs(epochs, sky.Records, SPPOption(), position));
  const SPPOption option;
  SPP spp(sky.Records, option);
  SPPResult result;
  ASSERT_TRUE(spp.Position(epochs[0], result));
  const double first[3] = {result.Rr[0], result.Rr[1], result.Rr[2]};
  ASSERT_TRUE(spp.Position(epochs[1], result));  // started from the first solution
  EXPECT_GT(DistanceTo(first, result.Rr), 1.0);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(position[i], (std::min(first[i], result.Rr[i]) + std::max(first[i], result.Rr[i])) / 2.0);
}

TEST(PositionFromEpochs, RecoversFromAWrongFirstSolution) {
  // A consistent fault moves the first epoch to the other side of the Earth: seen from there the satellites
  // of the later epochs lie below the horizon.
  const ExactSky sky;
  ExactSky elsewhere;
  for (double& x : elsewhere.Station) x = -x;
  std::vector<PositioningEpoch> epochs = {elsewhere.Epoch(0.0)};
  for (int i = 1; i < 6; ++i) epochs.push_back(sky.Epoch(60.0 * i));
  double position[3];
  ASSERT_TRUE(PositionFromEpochs(epochs, sky.Records, SPPOption(), position));
  EXPECT_LT(DistanceTo(position, sky.Station), 0.05);
}

TEST(PositionFromEpochs, FailsWithoutAnySolutionAndLeavesThePosition) {
  const ExactSky sky;
  double position[3] = {1, 2, 3};
  EXPECT_FALSE(PositionFromEpochs({}, sky.Records, SPPOption(), position));
  EXPECT_FALSE(PositionFromEpochs({sky.Epoch(0.0)}, Ephemeris(), SPPOption(), position));
  EXPECT_EQ(position[0], 1);
  EXPECT_EQ(position[2], 3);
}

}  // namespace
}  // namespace gnssqctoolkit
