// Ionosphere, noise, multipath, clocks, flags and paths of the simulator have the statistics and sizes that
// docs/user/simulator.md states.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/scenario_json.h"
#include "host/simulator/tec_rate.h"
#include "host/simulator/thermal_noise.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using orsolva_test::ScenarioOf;

Fault FaultOf(FaultKind kind, double size, double at_s = 0, double duration_s = 0, FaultTarget target = {}) {
  Fault fault;
  fault.kind = kind;
  fault.size = size;
  fault.at_s = at_s;
  fault.duration_s = duration_s;
  fault.target = target;
  return fault;
}

/// Phases of a signal of a satellite over a run, by epoch; NaN where there is none.
struct Series {
  std::vector<double> phase_m, code_m;
  std::vector<SignalObservation> all;
};

Series SeriesOf(const Scenario& scenario, SatelliteId id, const std::string& name) {
  Simulation simulation(scenario);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  Series series;
  const double wavelength = kLightSpeed_m_s / CarrierFrequency(id.system, name[0], 0);
  while (simulation.Next(*record, epoch)) {
    SignalObservation o;
    for (const SatelliteObservation& s : epoch.satellites) {
      for (std::size_t i = 0; s.id == id && i < s.signal_count; ++i) {
        if (NameOf(epoch.signals[s.first_signal + i].code) == name) o = epoch.signals[s.first_signal + i];
      }
    }
    series.phase_m.push_back(o.phase_cycles * wavelength);
    series.code_m.push_back(o.pseudorange_m);
    series.all.push_back(o);
  }
  return series;
}

/// The highest satellite of a system in the middle of a run.
SatelliteId HighestOf(const Scenario& scenario, char system) {
  Simulation simulation(scenario);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  while (simulation.NominalEpochsDone() < simulation.NominalEpochs() / 2) simulation.Next(*record);
  SatelliteMoment best;
  for (const SatelliteMoment& m : simulation.Moments()) {
    if (m.system == system && m.elevation_rad > best.elevation_rad) best = m;
  }
  return {system, static_cast<std::uint8_t>(best.number)};
}

double Deviation(const std::vector<double>& a, const std::vector<double>& b) {
  double squares = 0;
  for (std::size_t i = 0; i < a.size(); ++i) squares += (a[i] - b[i]) * (a[i] - b[i]);
  return std::sqrt(squares / static_cast<double>(a.size()));
}

TEST(TecRateProcess, HasTheMedianAndThe95thPercentileThatItIsGiven) {
  std::vector<double> rates;
  for (std::uint64_t satellite = 0; satellite < 200; ++satellite) {
    TecRate rate(RandomStream(7001).Of(satellite));
    double before = 0;
    for (int t = 0; t <= 7200; ++t) {
      rate.Advance(t, 1.7);
      if (t > 3600 && t % 10 == 0) rates.push_back(std::fabs(rate.Content() - before) * 60);
      before = rate.Content();
    }
  }
  std::sort(rates.begin(), rates.end());
  EXPECT_NEAR(rates[rates.size() / 2], 1.7, 0.07);
  EXPECT_NEAR(rates[rates.size() * 95 / 100], 4.9, 0.2);
}

TEST(TecRateProcess, OnlyDecaysWithoutARate) {
  TecRate rate((RandomStream(7001)));
  rate.Advance(0, 1.7);
  rate.Advance(600, 1.7);
  const double content = rate.Content();
  rate.Advance(1200, 0);
  EXPECT_NEAR(rate.Content(), content * std::exp(-600.0 / 3600), 1e-9);
}

TEST(Scintillation, IsWhiteAndLargerOnLowerCarriersAndOnlyInItsWindow) {
  Scenario quiet = ScenarioOf(1, 1, "G"), disturbed = quiet;
  disturbed.faults = {FaultOf(FaultKind::kScintillation, 0.12, 1200, 1200)};
  const SatelliteId id = HighestOf(quiet, 'G');
  for (const std::string name : {"1C", "5Q"}) {
    const Series a = SeriesOf(quiet, id, name), b = SeriesOf(disturbed, id, name);
    const double frequency = CarrierFrequency('G', name[0], 0);
    const auto part = [](const std::vector<double>& v, int from, int to) {
      return std::vector<double>(v.begin() + from, v.begin() + to);
    };
    const double cycles =
        Deviation(part(a.phase_m, 1200, 2400), part(b.phase_m, 1200, 2400)) * frequency / kLightSpeed_m_s;
    const double expected = 0.12 * 1575.42e6 / frequency / (2 * kPi);
    EXPECT_NEAR(cycles, expected, 5 * expected / std::sqrt(2.0 * 1200)) << name;
    EXPECT_EQ(part(a.phase_m, 0, 1200), part(b.phase_m, 0, 1200));
    EXPECT_EQ(part(a.phase_m, 2400, 3600), part(b.phase_m, 2400, 3600));
    EXPECT_EQ(a.code_m, b.code_m);
  }
}

TEST(Scintillation, SignalsOfOneCarrierShareIt) {
  Scenario quiet = ScenarioOf(0.1, 1, "G"), disturbed = quiet;
  disturbed.faults = {FaultOf(FaultKind::kScintillation, 0.2)};
  const SatelliteId id = HighestOf(quiet, 'G');
  const Series a1 = SeriesOf(quiet, id, "2W"), b1 = SeriesOf(disturbed, id, "2W");
  const Series a2 = SeriesOf(quiet, id, "2L"), b2 = SeriesOf(disturbed, id, "2L");
  for (std::size_t i = 0; i < a1.phase_m.size(); ++i) {
    ASSERT_NEAR(b1.phase_m[i] - a1.phase_m[i], b2.phase_m[i] - a2.phase_m[i], 0.0006);
  }
}

TEST(ThermalNoise, IsThatOfTheFormulas) {
  const ThermalNoise loops{1, 18, 0.02, 0.5};
  // 45 dB-Hz, C/A code: sqrt(0.25 / 31622.8 (1 + 2 / (1.5 0.02 31622.8))) chips of 293.05 m.
  const double ratio = NoiseDensityRatio(45);
  EXPECT_NEAR(ratio, 31622.8, 0.1);
  EXPECT_NEAR(ChipLength('G', "1C"), 293.05, 0.01);
  EXPECT_NEAR(ChipLength('E', "5Q"), 29.305, 0.001);
  EXPECT_NEAR(ChipLength('C', "2I"), 146.53, 0.01);
  EXPECT_NEAR(CodeThermalNoise(loops, ratio, 293.05), 0.8249, 0.0005);
  // 0.1903 / 2 pi sqrt(18 / 31622.8 (1 + 1 / 1264.9)) m.
  EXPECT_NEAR(PhaseThermalNoise(loops, ratio, 0.19029), 0.00072285, 1e-8);
}

TEST(ThermalNoise, GrowsWhereTheSnrDrops) {
  Scenario plain = ScenarioOf(1, 1, "G"), dropped = plain;
  plain.errors.thermal_noise = dropped.errors.thermal_noise = ThermalNoise();
  const SatelliteId id = HighestOf(plain, 'G');
  dropped.faults = {FaultOf(FaultKind::kSnrDrop, 6.0206, 0, 0, {'G', id.number, "1C"})};
  Simulation a(plain), b(dropped);
  std::vector<ObsEpoch_QC_gbt> batch;
  while (a.NextBatch(batch, 500) > 0) continue;
  while (b.NextBatch(batch, 500) > 0) continue;
  const auto noise = [id](const Simulation& s) {
    for (const SatelliteTruth& t : s.TruthSoFar().satellites) {
      if (t.system == 'G' && t.number == id.number) return std::sqrt(t.signals[0].noise_square.Mean());
    }
    return 0.0;
  };
  EXPECT_NEAR(noise(b) / noise(a), 2, 0.01);
}

TEST(MultipathByElevation, TurnsWithTheReflectorsPathAndHasTheAmplitudeOfTheCurve) {
  Scenario clean = ScenarioOf(1, 1, "G"), reflected = clean;
  clean.errors.multipath_m = {0, 0};
  reflected.errors.multipath_by_elevation = {{0, 0.5}, {90, 0.5}};
  reflected.errors.reflector_height_m = 2;
  const SatelliteId id = HighestOf(clean, 'G');
  const Series a = SeriesOf(clean, id, "1C"), b = SeriesOf(reflected, id, "1C");
  double most = 0;
  int crossings = 0;
  for (std::size_t i = 1; i < a.code_m.size(); ++i) {
    const double now = b.code_m[i] - a.code_m[i], before = b.code_m[i - 1] - a.code_m[i - 1];
    most = std::max(most, std::fabs(now));
    if ((now > 0) != (before > 0)) ++crossings;
  }
  EXPECT_NEAR(most, 0.5, 0.002);
  // The path difference 2 h sin(e) changes by a wavelength per turn, two crossings each.
  Simulation simulation(clean);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  double first = 0, turns = 0, last = 0;
  while (simulation.Next(*record)) {
    for (const SatelliteMoment& m : simulation.Moments()) {
      if (m.system != 'G' || m.number != id.number) continue;
      const double path = 2 * 2 * std::sin(m.elevation_rad) / 0.190293673;
      if (first != 0) turns += std::fabs(path - last);
      first = 1;
      last = path;
    }
  }
  EXPECT_NEAR(crossings, 2 * turns, 2);
}

TEST(SatelliteClock, GlitchMovesAllSignalsOfTheSatelliteAlike) {
  Scenario quiet = ScenarioOf(0.5, 30, "G"), moved = quiet;
  const SatelliteId id = HighestOf(quiet, 'G');
  moved.faults = {FaultOf(FaultKind::kSatelliteClock, 0.2, 300, 30, {'G', id.number, ""}),
                  FaultOf(FaultKind::kSatelliteClock, -0.5, 900, 0, {'G', id.number, ""})};
  for (const std::string name : {"1C", "2W"}) {
    const Series a = SeriesOf(quiet, id, name), b = SeriesOf(moved, id, name);
    for (std::size_t i = 0; i < a.phase_m.size(); ++i) {
      const double glitch = i == 10 ? 0.2 : i >= 30 ? -0.5 : 0;
      ASSERT_NEAR(b.phase_m[i] - a.phase_m[i], glitch, 0.0003) << i;
      ASSERT_NEAR(b.code_m[i] - a.code_m[i], glitch, 0.0011) << i;
    }
  }
}

TEST(ReceiverClock, CodeOnlyJumpLeavesPhasesOnTheirTrack) {
  Scenario quiet = ScenarioOf(0.5, 30, "G"), jumped = quiet;
  jumped.faults = {FaultOf(FaultKind::kCodeClockJump, 1, 600)};
  const SatelliteId id = HighestOf(quiet, 'G');
  const Series a = SeriesOf(quiet, id, "1C"), b = SeriesOf(jumped, id, "1C");
  for (std::size_t i = 0; i < a.phase_m.size(); ++i) {
    const double jump = i >= 20 ? 1e-3 * kLightSpeed_m_s : 0;
    EXPECT_NEAR(b.code_m[i] - a.code_m[i], jump, 1.0);  // the range of a millisecond earlier
    EXPECT_NEAR(b.phase_m[i] - a.phase_m[i], 0, 1.0);
  }
}

TEST(ReceiverClock, RandomWalkHasTheAllanDeviationThatItIsGiven) {
  Scenario scenario = ScenarioOf(12, 30, "G");
  scenario.receiver.clock_walk = 5e-11;
  scenario.seed = 7001;
  Simulation simulation(scenario);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  std::vector<double> bias;
  while (simulation.Next(*record)) bias.push_back(simulation.ClockBias());
  double squares = 0;
  for (std::size_t i = 2; i < bias.size(); ++i) {
    const double second = bias[i] - 2 * bias[i - 1] + bias[i - 2];
    squares += second * second;
  }
  const double count = static_cast<double>(bias.size() - 2);
  const double allan = std::sqrt(squares / (2 * count)) / 30;
  EXPECT_NEAR(allan, 5e-11 / std::sqrt(30.0), 5 * allan / std::sqrt(count));
}

TEST(ReceiverClock, SteeringKeepsItNearZeroAndASlewMovesIt) {
  Scenario scenario = ScenarioOf(6, 30, "G");
  scenario.receiver.clock_bias_s = 1e-5;
  scenario.receiver.clock_drift = 1e-9;
  scenario.receiver.clock_steering_s = 600;
  scenario.faults = {FaultOf(FaultKind::kClockSlew, 2, 18000, 600)};
  Simulation simulation(scenario);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  std::vector<double> bias;
  while (simulation.Next(*record)) bias.push_back(simulation.ClockBias());
  EXPECT_NEAR(bias[599], 1e-9 * 600, 3e-8);  // drift times time constant
  EXPECT_NEAR(bias[620] - bias[600], 2e-9 * 600, 1e-12);
  EXPECT_NEAR(bias[700] - bias[620], 0, 1e-12);
}

TEST(AntennaPath, CircleIsInTheDataAndInTheTruthAndNotInTheHeader) {
  Scenario scenario = ScenarioOf(0.5, 1, "G");
  scenario.receiver.path = {PathKind::kCircle, 10, 0, 50, 600, 1e9};
  Simulation simulation(scenario);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  const std::array<double, 3> start = scenario.receiver.position_m;
  double farthest = 0;
  for (int second = 0; simulation.Next(*record); ++second) {
    const std::array<double, 3> p = simulation.AntennaPosition();
    const double distance = std::hypot(p[0] - start[0], p[1] - start[1], p[2] - start[2]);
    if (second <= 600) {
      ASSERT_EQ(distance, 0);
    }
    // A chord of a circle of 50 m, ten metres a second along it.
    if (second > 600) {
      ASSERT_NEAR(distance, 100 * std::fabs(std::sin(10.0 * (second - 600) / 100)), 0.01);
    }
    farthest = std::max(farthest, distance);
  }
  EXPECT_NEAR(farthest, 100, 0.2);
  EXPECT_EQ(simulation.TruthSoFar().header_position_m, start);
  EXPECT_EQ(simulation.TruthSoFar().track.size(), 180U);
}

TEST(Doppler, IsTheChangeOfThePhase) {
  Scenario scenario = ScenarioOf(0.1, 1);
  scenario.observables.doppler = true;
  scenario.errors.doppler_noise_hz = 0;
  scenario.errors.phase_noise_m = {0, 0};
  scenario.receiver.clock_drift = 1e-7;
  scenario.receiver.path = {PathKind::kLine, 30, 45, 100, 0, 1e9};
  for (const auto& [system, name] : std::map<char, std::string>{{'G', "1C"}, {'E', "5Q"}, {'C', "2I"}}) {
    const Series s = SeriesOf(scenario, HighestOf(scenario, system), name);
    for (std::size_t i = 1; i + 1 < s.all.size(); ++i) {
      const double change = (s.all[i + 1].phase_cycles - s.all[i - 1].phase_cycles) / 2;
      ASSERT_NEAR(s.all[i].doppler_hz, -change, 0.02) << name << i;
    }
  }
}

TEST(LockFlags, AreRaisedAtSlipsAndElsewhereWithTheirProbabilities) {
  Scenario scenario = ScenarioOf(1, 1, "G");
  scenario.receiver.lock_flags = {0.75, 1, 0.01};
  scenario.faults = {FaultOf(FaultKind::kSlip, 3)};
  scenario.faults[0].random = 400;
  Simulation simulation(scenario);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  std::uint64_t flags = 0;
  while (simulation.Next(*record, epoch)) {
    for (const SignalObservation& o : epoch.signals) flags += o.loss_of_lock & kLossOfLock;
  }
  SignalTruth sum;
  std::uint64_t arcs = 0, tracked = 0;
  for (const SatelliteTruth& s : simulation.TruthSoFar().satellites) {
    for (const SignalTruth& t : s.signals) {
      sum.flags_at_slips += t.flags_at_slips;
      sum.slips_unflagged += t.slips_unflagged;
      sum.flags_at_arcs += t.flags_at_arcs;
      sum.flags_elsewhere += t.flags_elsewhere;
      arcs += t.arcs;
      tracked += t.tracked;
    }
  }
  EXPECT_EQ(flags, sum.flags_at_slips + sum.flags_at_arcs + sum.flags_elsewhere);
  EXPECT_EQ(sum.flags_at_arcs, arcs);
  EXPECT_GT(sum.flags_at_slips + sum.slips_unflagged, 300U);
  const double slips = static_cast<double>(sum.flags_at_slips + sum.slips_unflagged);
  EXPECT_NEAR(static_cast<double>(sum.flags_at_slips) / slips, 0.75, 0.11);
  EXPECT_NEAR(static_cast<double>(sum.flags_elsewhere) / static_cast<double>(tracked), 0.01, 0.001);
}

TEST(HalfCycles, AreFlaggedUntilTheyAreResolvedAndThenSlip) {
  Scenario scenario = ScenarioOf(0.5, 10, "G");
  scenario.receiver.half_cycle_s = 120;
  Simulation simulation(scenario);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  std::uint64_t flagged = 0, first_epochs = 0;
  for (int i = 0; simulation.Next(*record, epoch); ++i) {
    for (const SignalObservation& o : epoch.signals) {
      const bool unresolved = (o.loss_of_lock & kHalfCycle) != 0;
      flagged += unresolved;
      if (i < 12) {
        ASSERT_TRUE(unresolved);
      }
      first_epochs += i == 0;
    }
  }
  EXPECT_GE(flagged, 12 * first_epochs);
  std::size_t resolved = 0;
  for (const InjectedFault& fault : simulation.TruthSoFar().faults) {
    EXPECT_EQ(fault.kind, "slip");
    EXPECT_EQ(fault.size, -0.5);
    ++resolved;
  }
  EXPECT_GT(resolved, first_epochs / 4);
  EXPECT_LT(resolved, first_epochs);
}

TEST(PowerFailure, LosesEpochsAndEveryArcAndFlagsTheNextEpoch) {
  Scenario scenario = ScenarioOf(0.5, 30, "G");
  scenario.faults = {FaultOf(FaultKind::kPowerOutage, 0, 600, 90)};
  Simulation simulation(scenario);
  auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  std::vector<std::int64_t> flagged, seconds;
  while (simulation.Next(*record, epoch)) {
    seconds.push_back(epoch.time_ns / kNanosecondsPerSecond - scenario.start.time);
    if (epoch.events == kPowerFailure) flagged.push_back(seconds.back());
  }
  EXPECT_EQ(flagged, (std::vector<std::int64_t>{690}));
  EXPECT_EQ(seconds.size(), 57U);
  EXPECT_EQ(simulation.TruthSoFar().missing_epochs, 3U);
  const SatelliteTruth* longest = nullptr;
  for (const SatelliteTruth& s : simulation.TruthSoFar().satellites) {
    if (!longest || s.signals[0].tracked > longest->signals[0].tracked) longest = &s;
  }
  EXPECT_EQ(longest->signals[0].arcs, 2U);
}

}  // namespace
