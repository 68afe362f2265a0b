// The figures a file is known by: sums of the analysis over all systems, and the multipath of GPS.
#include "host/report/headline.h"

#include <gtest/gtest.h>

#include "host/analysis/analysis_result.h"

namespace orsolva_host {
namespace {

using analysis::AnalysisResult;

analysis::SystemFigures System(char letter, Count satellites, Count expected, Count observed) {
  analysis::SystemFigures system;
  system.letter = letter;
  system.satellites_observed = satellites;
  system.cutoff.expected = expected;
  system.cutoff.observed = observed;
  return system;
}

analysis::SignalFigures Signal(char system, SignalCode code, double multipath_m, Count values) {
  analysis::SignalFigures signal;
  signal.system = system;
  signal.code = code;
  signal.multipath.moving_m = multipath_m;
  signal.multipath.values = values;
  return signal;
}

TEST(Headline, AddsUpTheSystems) {
  AnalysisResult result;
  result.systems = {System('G', 31, 1000, 990), System('E', 22, 500, 450)};
  result.systems[0].slips.sure = 3;
  result.systems[0].slips.half_cycles = 1;
  result.systems[0].slips.tested_steps = 700;
  result.systems[1].slips.sure = 0;
  result.systems[1].slips.tested_steps = 300;
  result.systems[1].interruptions.by_satellite = 2;
  result.without_record = {{'E', 14}};
  const Headline h = HeadlineOf(result);
  EXPECT_EQ(h.satellites_tracked, Count{53});
  EXPECT_EQ(h.satellites_without_orbit, Count{1});
  EXPECT_EQ(h.satellites_with_orbit, Count{52});
  EXPECT_EQ(h.cutoff_completeness, 0.96);
  EXPECT_EQ(h.cycle_slips, Count{4});
  EXPECT_EQ(h.observations_per_slip, 250.0);
  EXPECT_FALSE(h.observations_without_slip);
  EXPECT_EQ(h.interruptions_of_satellites, Count{2});
  EXPECT_FALSE(h.interruptions_of_signals);
}

TEST(Headline, WithoutASlipSaysMoreThanHowMany) {
  AnalysisResult result;
  result.systems = {System('G', 31, 1000, 990)};
  result.systems[0].slips.sure = 0;
  result.systems[0].slips.tested_steps = 700;
  EXPECT_EQ(HeadlineOf(result).observations_without_slip, Count{700});
  EXPECT_FALSE(HeadlineOf(result).observations_per_slip);
  EXPECT_EQ(HeadlineOf(result).cycle_slips, Count{0});
}

TEST(Headline, OfFewTestedStepsHasNoObservationsPerSlip) {
  AnalysisResult result;
  result.systems = {System('G', 31, 1000, 990)};
  result.systems[0].slips.sure = 1;
  result.systems[0].slips.tested_steps = 99;
  EXPECT_FALSE(HeadlineOf(result).observations_per_slip);
}

TEST(Headline, MultipathIsThatOfTheGpsSignalsOfArchives) {
  AnalysisResult result;
  result.signals = {Signal('G', {'1', 'L'}, 0.1, 9000), Signal('G', {'1', 'C'}, 0.2, 10),
                    Signal('G', {'2', 'L'}, 0.3, 50), Signal('G', {'2', 'X'}, 0.4, 70),
                    Signal('R', {'1', 'C'}, 0.6, 9000)};
  const Headline h = HeadlineOf(result);
  EXPECT_EQ(h.gps_mp1_m, 0.2);
  EXPECT_EQ(h.gps_mp2_m, 0.4) << "without 2W the one with the most values";
  EXPECT_EQ(h.worst_multipath_m, 0.6);
  result.signals.erase(result.signals.begin(), result.signals.begin() + 4);
  EXPECT_FALSE(HeadlineOf(result).gps_mp1_m) << "no GPS";
}

TEST(Headline, CountsOnlyHealthySatellitesAsNeverObserved) {
  AnalysisResult result;
  result.never_observed = {{{'G', 4}, 100, 0}, {{'G', 5}, 0, 100}};
  EXPECT_FALSE(HeadlineOf(result).satellites_never_observed) << "without orbits";
  result.with_orbits = true;
  EXPECT_EQ(HeadlineOf(result).satellites_never_observed, Count{1});
}

TEST(Headline, OfNothingIsAbsentAndNotZero) {
  const Headline h = HeadlineOf(AnalysisResult());
  EXPECT_FALSE(h.satellites_tracked);
  EXPECT_FALSE(h.cutoff_completeness);
  EXPECT_FALSE(h.cycle_slips);
  EXPECT_FALSE(h.worst_multipath_m);
}

}  // namespace
}  // namespace orsolva_host
