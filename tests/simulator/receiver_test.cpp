// The receiver: its position and epochs, its clock, and when it tracks what.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "host/observation/physical_constants.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using orsolva_test::EpochsOf;
using orsolva_test::Find;
using orsolva_test::ScenarioOf;

double SecondsOf(const Scenario& scenario, const ObsEpoch_QC_gbt& epoch) {
  return static_cast<double>(epoch.time.time - scenario.start.time) + epoch.time.sec;
}

TEST(Receiver, EpochsStandAtWholeIntervalsFromTheStart) {
  for (const double interval_s : {0.1, 0.2, 1.0, 2.5, 15.0, 30.0, 60.0}) {
    Scenario scenario = ScenarioOf(0.05, interval_s, "G");
    scenario.start.time += 12345;
    Simulation simulation(scenario);
    const auto epochs = EpochsOf(simulation);
    ASSERT_EQ(epochs.size(), static_cast<std::size_t>(std::ceil(180 / interval_s - 1e-9))) << interval_s;
    for (std::size_t i = 0; i < epochs.size(); ++i) {
      const double wanted = interval_s * static_cast<double>(i);
      ASSERT_NEAR(SecondsOf(scenario, epochs[i]), wanted, 1e-9);
      ASSERT_TRUE(epochs[i].time.sec >= 0 && epochs[i].time.sec < 1);
    }
  }
}

TEST(Receiver, StandsAnywhereOnTheEarth) {
  const std::array<std::array<double, 3>, 5> places = {{{6378137, 0, 0},
                                                        {0, 0, 6356752.3},
                                                        {0, 0, -6356752.3},
                                                        {-4646678, 2553206, -3534319},
                                                        {0, -6378137, 1000}}};
  for (const auto& place : places) {
    Scenario scenario = ScenarioOf(1, 60, "GRE");
    scenario.receiver.position_m = place;
    Simulation simulation(scenario);
    for (const ObsEpoch_QC_gbt& epoch : EpochsOf(simulation)) {
      EXPECT_GE(epoch.sat_num, 12U) << place[0] << ' ' << place[1] << ' ' << place[2];
      EXPECT_LE(epoch.sat_num, 45U);
    }
    EXPECT_EQ(simulation.TruthSoFar().position_m, place);
  }
}

TEST(Receiver, TracksNothingBelowItsCutOff) {
  for (const double cutoff_deg : {0.0, 5.0, 20.0}) {
    Scenario scenario = ScenarioOf(2, 60);
    scenario.receiver.cutoff_deg = cutoff_deg;
    Simulation simulation(scenario);
    auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
    double lowest = 90;
    while (simulation.Next(*epoch)) {
      for (const SatelliteMoment& m : simulation.Moments()) {
        const double elevation_deg = m.elevation_rad * 57.29577951308232;
        const bool tracked = Find(*epoch, m.system, m.number) != nullptr;
        ASSERT_EQ(tracked, elevation_deg >= cutoff_deg) << m.system << m.number << ' ' << elevation_deg;
        if (tracked) lowest = std::min(lowest, elevation_deg);
      }
    }
    EXPECT_LT(lowest, cutoff_deg + 1) << "some satellite passes the cut-off in two hours";
  }
}

TEST(Receiver, TracksFromItsStartUpOnAndSingleSignalsLater) {
  Scenario scenario = ScenarioOf(0.2, 10, "GE");
  scenario.receiver.start_up_s = 120;
  scenario.receiver.signal_delay_s = {{"G5Q", 60}};
  Simulation simulation(scenario);
  int checked = 0;
  for (const ObsEpoch_QC_gbt& epoch : EpochsOf(simulation)) {
    const double t = SecondsOf(scenario, epoch);
    ASSERT_EQ(epoch.sat_num > 8, t >= 120) << t;
    ASSERT_EQ(epoch.sat_num == 0, t < 120) << t;
    for (std::uint32_t i = 0; i < epoch.sat_num && t < 300; ++i) {
      if (epoch.sats[i].sys != kGps) continue;
      EXPECT_EQ(epoch.sats[i].signal_num, t < 180 ? 3U : 4U) << t;
      ++checked;
    }
  }
  EXPECT_GT(checked, 50);
}

/// First epoch with an elevation of the cut-off or more, and first epoch tracked, of the satellites that
/// rise.
std::map<int, std::pair<double, double>> Rises(const Scenario& scenario) {
  Simulation simulation(scenario);
  std::map<int, std::pair<double, double>> rises;
  std::map<int, bool> was_low;
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  while (simulation.Next(*epoch)) {
    const double t = SecondsOf(scenario, *epoch);
    for (const SatelliteMoment& m : simulation.Moments()) {
      const bool up = m.elevation_rad * 57.29577951308232 >= scenario.receiver.cutoff_deg;
      if (!up) was_low[m.number] = true;
      if (!up || !was_low[m.number]) continue;
      if (rises.count(m.number) == 0) rises[m.number] = {t, -1};
      if (rises[m.number].second < 0 && Find(*epoch, m.system, m.number)) rises[m.number].second = t;
    }
  }
  return rises;
}

TEST(Receiver, AcquiresARisingSatelliteAfterTheDelay) {
  Scenario scenario = ScenarioOf(3, 10, "G");
  scenario.receiver.acquisition_s = 45;
  const auto rises = Rises(scenario);
  int checked = 0;
  for (const auto& [number, times] : rises) {
    if (times.second < 0) continue;  // it rose just before the end
    EXPECT_EQ(times.second - times.first, 50) << number << ": the first epoch 45 s or more after the rise";
    ++checked;
  }
  EXPECT_GE(checked, 3);
}

TEST(Receiver, AcquiresAnewAfterAnOutageWithTheDelay) {
  Scenario scenario = ScenarioOf(0.5, 10, "G");
  scenario.receiver.reacquisition_s = 35;
  Fault outage;
  outage.kind = FaultKind::kOutage;
  outage.at_s = 600;
  outage.duration_s = 100;
  scenario.faults = {outage};
  Simulation simulation(scenario);
  for (const ObsEpoch_QC_gbt& epoch : EpochsOf(simulation)) {
    const double t = SecondsOf(scenario, epoch);
    EXPECT_EQ(epoch.sat_num > 0, t < 600 || t >= 740) << t;
  }
}

TEST(Receiver, TheClockFollowsItsBiasAndDrift) {
  Scenario scenario = ScenarioOf(2, 60, "G");
  scenario.receiver.clock_bias_s = -3e-4;
  scenario.receiver.clock_drift = 2e-7;
  Simulation simulation(scenario);
  EpochsOf(simulation);
  const std::vector<ClockMoment>& clock = simulation.TruthSoFar().clock;
  ASSERT_GE(clock.size(), 12U);
  for (const ClockMoment& m : clock) {
    const double t = static_cast<double>(m.time.time - scenario.start.time);
    EXPECT_NEAR(m.bias_s, -3e-4 + 2e-7 * t, 1e-15);
  }
}

TEST(Receiver, MillisecondJumpsKeepTheClockWithinHalfAMillisecond) {
  Scenario scenario = ScenarioOf(2, 30, "G");
  scenario.receiver.clock_drift = 1e-6;
  scenario.receiver.millisecond_jumps = true;
  Simulation simulation(scenario);
  double last = 0;
  int jumps = 0;
  for (const ObsEpoch_QC_gbt& epoch : EpochsOf(simulation)) {
    const Signal_QC_gbt* signal = nullptr;
    for (std::uint32_t i = 0; i < epoch.sat_num && !signal; ++i) signal = &epoch.sats[i].signals[0];
    ASSERT_NE(signal, nullptr);
  }
  for (const ClockMoment& m : simulation.TruthSoFar().clock) {
    EXPECT_LE(std::fabs(m.bias_s), 5e-4 + 1e-12);
    if (m.bias_s < last) ++jumps;  // between jumps it grows
    last = m.bias_s;
  }
  EXPECT_EQ(jumps, 7) << "7.2 ms in two hours";
}

TEST(Receiver, AMillisecondJumpMovesEveryCodeAndPhaseAlike) {
  // The drift alone would take the clock past half a millisecond between these two epochs.
  Scenario steady = ScenarioOf(0.05, 30, "GR"), jumping = steady;
  steady.receiver.clock_bias_s = jumping.receiver.clock_bias_s = 4.8e-4;
  steady.receiver.clock_drift = jumping.receiver.clock_drift = 4e-7;
  jumping.receiver.millisecond_jumps = true;
  Simulation a(steady), b(jumping);
  const auto x = EpochsOf(a), y = EpochsOf(b);
  const ObsEpoch_QC_gbt &before = x[1], &same = y[1], &after = x[2], &jumped = y[2];
  ASSERT_GT(before.sat_num, 8U);
  for (std::uint32_t i = 0; i < before.sat_num; ++i) {
    EXPECT_EQ(before.sats[i].signals[0].pseudorange, same.sats[i].signals[0].pseudorange);
    // The true time of reception moves by a millisecond, and the satellite with it, by under a metre.
    EXPECT_NEAR(after.sats[i].signals[0].pseudorange - jumped.sats[i].signals[0].pseudorange,
                kLightSpeed_m_s * 1e-3, 1.0);
  }
}

TEST(Receiver, TracksTheSignalsChosenForASystem) {
  Scenario scenario = ScenarioOf(0.1, 30);
  scenario.signals = {{"G", {"5X", "1W"}}, {"C3", {"1X"}}, {"C2", {}}, {"E", {"7Q"}}};
  Simulation simulation(scenario);
  for (const ObsEpoch_QC_gbt& epoch : EpochsOf(simulation)) {
    for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
      const Satellite_gbt& s = epoch.sats[i];
      if (s.sys == kGps) {
        EXPECT_EQ(s.signal_num, 2U);
        EXPECT_EQ(SignalName(kGps, s.signals[0].code), "5X");
        EXPECT_EQ(SignalName(kGps, s.signals[1].code), "1W");
      }
      if (s.sys == kBds) {
        EXPECT_GE(s.prn, 18) << "a system without signals is not seen";
        EXPECT_EQ(s.signal_num, s.prn < 59 ? 1U : 2U);
      }
      if (s.sys == kQzss) {
        EXPECT_EQ(s.signal_num, 3U);
      }
    }
  }
}

}  // namespace
