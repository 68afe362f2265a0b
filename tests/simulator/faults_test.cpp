// Every kind of fault does to the data what docs/user/simulator.md says, and the truth records it.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "host/observation/physical_constants.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using orsolva_test::EpochsOf;
using orsolva_test::Find;
using orsolva_test::ScenarioOf;

Fault FaultOf(FaultKind kind, double at_s, double duration_s, double size, const FaultTarget& target = {}) {
  Fault fault;
  fault.kind = kind;
  fault.target = target;
  fault.at_s = at_s;
  fault.duration_s = duration_s;
  fault.size = size;
  return fault;
}

/// The same twenty minutes of GPS and GLONASS with and without faults.
struct Twins {
  explicit Twins(const std::vector<Fault>& faults, double interval_s = 10) {
    Scenario scenario = ScenarioOf(1.0 / 3, interval_s, "GR");
    Simulation quiet(scenario);
    plain = EpochsOf(quiet);
    scenario.faults = faults;
    Simulation faulty(scenario);
    met = EpochsOf(faulty);
    truth = faulty.TruthSoFar();
    interval = interval_s;
  }
  double Seconds(const ObsEpoch_QC_gbt& epoch) const {
    return static_cast<double>(epoch.time.time - plain[0].time.time) + epoch.time.sec;
  }
  /// Of a satellite that is above 15 degrees throughout.
  static FaultTarget High(char system, const std::string& signal) {
    Simulation simulation(ScenarioOf(1.0 / 3, 60, std::string(1, system)));
    std::map<int, int> count;
    auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
    while (simulation.Next(*epoch)) {
      for (const SatelliteMoment& m : simulation.Moments()) {
        if (m.elevation_rad > 0.35 && ++count[m.number] == 20) return {system, m.number, signal};
      }
    }
    return {};
  }

  std::vector<ObsEpoch_QC_gbt> plain, met;
  Truth truth;
  double interval = 0;
};

TEST(Faults, ASlipAddsItsCyclesToThePhaseFromItsEpochOn) {
  const FaultTarget target = Twins::High('G', "1C");
  for (const double size : {0.5, 1.0, -7.0, 100.0}) {
    const Twins t({FaultOf(FaultKind::kSlip, 603, 0, size, target)});
    for (std::size_t i = 0; i < t.met.size(); ++i) {
      const Signal_QC_gbt* a = Find(t.plain[i], 'G', target.satellite, "1C");
      const Signal_QC_gbt* b = Find(t.met[i], 'G', target.satellite, "1C");
      ASSERT_TRUE(a && b);
      EXPECT_NEAR(b->phase - a->phase, i >= 61 ? size : 0, 1e-6) << "the first epoch at or after 603 s";
      EXPECT_EQ(a->pseudorange, b->pseudorange);
    }
    ASSERT_EQ(t.truth.faults.size(), 1U);
    const InjectedFault& f = t.truth.faults[0];
    EXPECT_EQ(f.kind, "slip");
    EXPECT_EQ(f.satellite, SatelliteName('G', target.satellite));
    EXPECT_EQ(f.signal, "1C");
    EXPECT_EQ(f.size, size);
    EXPECT_EQ(f.time.time, t.plain[61].time.time);
    EXPECT_TRUE(f.seen);
    EXPECT_GT(f.elevation_deg, 15);
  }
}

TEST(Faults, ASlipEndsWithItsArcAndOneWithoutTrackingIsNotSeen) {
  const FaultTarget target = Twins::High('G', "1C");
  const FaultTarget all = {'G', target.satellite, ""};
  const Twins t({FaultOf(FaultKind::kSlip, 300, 0, 5, target), FaultOf(FaultKind::kOutage, 600, 60, 0, all),
                 FaultOf(FaultKind::kSlip, 630, 0, 9, target)});
  const Twins outage_only({FaultOf(FaultKind::kOutage, 600, 60, 0, all)});
  for (std::size_t i = 0; i < t.met.size(); ++i) {
    const Signal_QC_gbt* a = Find(outage_only.met[i], 'G', target.satellite, "1C");
    const Signal_QC_gbt* b = Find(t.met[i], 'G', target.satellite, "1C");
    ASSERT_EQ(a == nullptr, i >= 60 && i < 66);
    ASSERT_EQ(b == nullptr, a == nullptr);
    if (!a) continue;
    EXPECT_NEAR(b->phase - a->phase, i >= 30 && i < 60 ? 5 : 0, 1e-6) << i;
  }
  int seen = 0;
  for (const InjectedFault& f : t.truth.faults) seen += f.kind == "slip" && f.seen;
  EXPECT_EQ(seen, 1);
}

TEST(Faults, ACodeJumpMovesThePseudorangeForItsDuration) {
  const FaultTarget target = Twins::High('R', "2C");
  const Twins t({FaultOf(FaultKind::kCodeJump, 300, 200, -12.5, target)});
  for (std::size_t i = 0; i < t.met.size(); ++i) {
    const Signal_QC_gbt* a = Find(t.plain[i], 'R', target.satellite, "2C");
    const Signal_QC_gbt* b = Find(t.met[i], 'R', target.satellite, "2C");
    EXPECT_NEAR(b->pseudorange - a->pseudorange, i >= 30 && i < 50 ? -12.5 : 0, 0.0011);
    EXPECT_EQ(a->phase, b->phase);
    const Signal_QC_gbt* other = Find(t.met[i], 'R', target.satellite, "1C");
    EXPECT_EQ(Find(t.plain[i], 'R', target.satellite, "1C")->pseudorange, other->pseudorange);
  }
}

TEST(Faults, AnSnrDropTakesItsDecibelsForItsDuration) {
  const FaultTarget target = Twins::High('G', "5Q");
  const Twins t({FaultOf(FaultKind::kSnrDrop, 300, 200, 12, target)});
  for (std::size_t i = 0; i < t.met.size(); ++i) {
    const double change = static_cast<double>(Find(t.met[i], 'G', target.satellite, "5Q")->snr) -
                          static_cast<double>(Find(t.plain[i], 'G', target.satellite, "5Q")->snr);
    EXPECT_NEAR(change, i >= 30 && i < 50 ? -12 : 0, 0.0011);
  }
}

TEST(Faults, OutagesMeetASignalASatelliteASystemOrTheReceiver) {
  const FaultTarget signal = Twins::High('G', "2W");
  const FaultTarget satellite = Twins::High('R', "");
  const Twins t(
      {FaultOf(FaultKind::kOutage, 100, 50, 0, signal), FaultOf(FaultKind::kOutage, 300, 50, 0, satellite),
       FaultOf(FaultKind::kOutage, 500, 50, 0, {'R', 0, ""}), FaultOf(FaultKind::kOutage, 700, 50, 0)});
  for (std::size_t i = 0; i < t.met.size(); ++i) {
    const double s = t.Seconds(t.met[i]);
    const auto within = [s](double at) { return s >= at && s < at + 50; };
    const bool all = within(700);
    EXPECT_EQ(Find(t.met[i], 'G', signal.satellite, "2W") == nullptr, within(100) || all) << s;
    EXPECT_EQ(Find(t.met[i], 'G', signal.satellite, "1C") == nullptr, all) << s;
    EXPECT_EQ(Find(t.met[i], 'R', satellite.satellite) == nullptr, within(300) || within(500) || all) << s;
    EXPECT_EQ(t.met[i].sat_num == 0, all) << s;
  }
  ASSERT_EQ(t.truth.faults.size(), 4U);
  for (const InjectedFault& f : t.truth.faults) EXPECT_TRUE(f.seen && f.duration_s == 50);
}

TEST(Faults, MissingEpochsAreNotGivenAndTrackingGoesOn) {
  const Twins t(
      {FaultOf(FaultKind::kMissingEpoch, 300, 0, 0), FaultOf(FaultKind::kMissingEpoch, 600, 100, 0)});
  ASSERT_EQ(t.met.size(), t.plain.size() - 11);
  EXPECT_EQ(t.truth.missing_epochs, 11U);
  EXPECT_EQ(t.truth.delivered_epochs, t.met.size());
  std::size_t k = 0;
  for (std::size_t i = 0; i < t.plain.size(); ++i) {
    if (i == 30 || (i >= 60 && i < 70)) continue;
    EXPECT_TRUE(orsolva_test::SameBits(t.plain[i], t.met[k++])) << i;
  }
}

TEST(Faults, ARepeatedEpochComesTwice) {
  const Twins t({FaultOf(FaultKind::kDuplicate, 300, 0, 0)});
  ASSERT_EQ(t.met.size(), t.plain.size() + 1);
  EXPECT_TRUE(orsolva_test::SameBits(t.met[30], t.plain[30]));
  EXPECT_TRUE(orsolva_test::SameBits(t.met[31], t.plain[30]));
  EXPECT_TRUE(orsolva_test::SameBits(t.met[32], t.plain[31]));
}

TEST(Faults, ALateEpochIsMeasuredAndTaggedLate) {
  const Twins t({FaultOf(FaultKind::kLateTag, 300, 0, 0.25)});
  ASSERT_EQ(t.met.size(), t.plain.size());
  EXPECT_EQ(t.Seconds(t.met[30]), 300.25);
  for (std::size_t i = 0; i < t.met.size(); ++i) {
    EXPECT_EQ(orsolva_test::SameBits(t.met[i], t.plain[i]), i != 30);
  }
  // A quarter of a second of range rate: up to 250 m for a GPS satellite, and no jump of hundreds of km.
  const FaultTarget target = Twins::High('G', "1C");
  const double moved = Find(t.met[30], 'G', target.satellite, "1C")->pseudorange -
                       Find(t.plain[30], 'G', target.satellite, "1C")->pseudorange;
  EXPECT_TRUE(std::fabs(moved) > 0.5 && std::fabs(moved) < 250) << moved;
}

TEST(Faults, ADelayedEpochComesAfterItsSuccessor) {
  const Twins t({FaultOf(FaultKind::kLateDelivery, 300, 0, 0)});
  ASSERT_EQ(t.met.size(), t.plain.size());
  EXPECT_TRUE(orsolva_test::SameBits(t.met[30], t.plain[31]));
  EXPECT_TRUE(orsolva_test::SameBits(t.met[31], t.plain[30]));
  EXPECT_TRUE(orsolva_test::SameBits(t.met[32], t.plain[32]));
}

TEST(Faults, AStormBendsCodeAndPhaseOppositelyWithinItsDuration) {
  const FaultTarget target = Twins::High('G', "1C");
  Fault storm = FaultOf(FaultKind::kIonoStorm, 300, 600, 20);
  storm.period_s = 150;
  const Twins t({storm});
  const double metres_a_tecu = 40.3e16 / (1575.42e6 * 1575.42e6);
  double highest = 0;
  for (std::size_t i = 0; i < t.met.size(); ++i) {
    const Signal_QC_gbt* a = Find(t.plain[i], 'G', target.satellite, "1C");
    const Signal_QC_gbt* b = Find(t.met[i], 'G', target.satellite, "1C");
    const double code = b->pseudorange - a->pseudorange;
    const double phase = (b->phase - a->phase) * kLightSpeed_m_s / 1575.42e6;
    EXPECT_NEAR(code, -phase, 0.0013);
    if (i < 30 || i >= 90) {
      EXPECT_EQ(code, 0) << i;
    }
    highest = std::max(highest, std::fabs(code));
  }
  EXPECT_GT(highest, 10 * metres_a_tecu);
  EXPECT_LE(highest, 20 * metres_a_tecu + 0.001);
}

TEST(Faults, AnUnhealthySatelliteIsTrackedAndMarked) {
  const FaultTarget target = Twins::High('G', "");
  const Twins t({FaultOf(FaultKind::kUnhealthy, 0, 0, 0, target)});
  for (std::size_t i = 0; i < t.met.size(); ++i) EXPECT_TRUE(orsolva_test::SameBits(t.met[i], t.plain[i]));
  for (const SatelliteTruth& s : t.truth.satellites) {
    EXPECT_EQ(s.healthy, !(s.system == 'G' && s.number == target.satellite));
  }
}

TEST(Faults, AClockJumpMovesAllRangesByItsMilliseconds) {
  const Twins t({FaultOf(FaultKind::kClockJump, 300, 0, 2)});
  const FaultTarget target = Twins::High('R', "1C");
  for (const std::size_t i : {29U, 30U, 100U}) {
    const double moved = Find(t.met[i], 'R', target.satellite, "1C")->pseudorange -
                         Find(t.plain[i], 'R', target.satellite, "1C")->pseudorange;
    // The range itself changes by up to two metres in two milliseconds.
    EXPECT_NEAR(moved, i >= 30 ? 2e-3 * kLightSpeed_m_s : 0, 2) << i;
  }
}

TEST(Faults, AWrongHeaderPositionLiesEastOfTheTrueOne) {
  const Twins t({FaultOf(FaultKind::kHeaderOffset, 0, 0, 25)});
  const auto &p = t.truth.position_m, &h = t.truth.header_position_m;
  EXPECT_NEAR(std::hypot(h[0] - p[0], h[1] - p[1], h[2] - p[2]), 25, 1e-6);
  EXPECT_EQ(h[2], p[2]);
  EXPECT_GT(p[0] * h[1] - p[1] * h[0], 0);
}

TEST(Faults, RandomOnesMeetSignalsThatStandHighAndDifferBySeed) {
  Scenario scenario = ScenarioOf(6, 30);
  Fault slip = FaultOf(FaultKind::kSlip, 0, 0, 3);
  slip.random = 40;
  slip.random_above_deg = 30;
  scenario.faults = {slip};
  std::set<std::int64_t> times[2];
  for (int k = 0; k < 2; ++k) {
    scenario.seed = static_cast<std::uint64_t>(k + 1);
    Simulation simulation(scenario);
    EpochsOf(simulation);
    const Truth& truth = simulation.TruthSoFar();
    EXPECT_EQ(truth.faults.size(), 40U);
    std::set<std::string> satellites;
    for (const InjectedFault& f : truth.faults) {
      times[k].insert(f.time.time);
      satellites.insert(f.satellite);
      EXPECT_GT(f.elevation_deg, 29.5);  // chosen at the drawn time, takes effect at the epoch after it
      EXPECT_TRUE(f.seen);
    }
    EXPECT_GT(satellites.size(), 15U);
    EXPECT_GT(times[k].size(), 30U);
  }
  EXPECT_NE(times[0], times[1]);
}

TEST(Faults, ASlipBelowTheHorizonIsRecordedAsNotSeen) {
  Scenario scenario = ScenarioOf(0.5, 30, "G");
  for (int number = 1; number <= 5; ++number) {
    scenario.faults.push_back(FaultOf(FaultKind::kSlip, 900, 0, 3, {'G', number, "1C"}));
  }
  Simulation simulation(scenario);
  EpochsOf(simulation);
  EXPECT_EQ(simulation.TruthSoFar().faults.size(), 5U);
  int seen = 0;
  for (const InjectedFault& f : simulation.TruthSoFar().faults) seen += f.seen;
  EXPECT_LT(seen, 5) << "not all of them are up";
}

TEST(Faults, TheTruthTellsThemInTheOrderOfTheirTimes) {
  Scenario scenario = ScenarioOf(2, 30);
  Fault slip = FaultOf(FaultKind::kSlip, 0, 0, 3), outage = FaultOf(FaultKind::kOutage, 0, 300, 0);
  slip.random = outage.random = 15;
  scenario.faults = {slip, outage, FaultOf(FaultKind::kMissingEpoch, 3600, 90, 0)};
  Simulation simulation(scenario);
  EpochsOf(simulation);
  const std::vector<InjectedFault>& faults = simulation.TruthSoFar().faults;
  EXPECT_EQ(faults.size(), 31U);
  for (std::size_t i = 1; i < faults.size(); ++i) EXPECT_LE(faults[i - 1].time.time, faults[i].time.time);
}

}  // namespace
