// The simulator computes positions with its own code. Here they are held against the library's, from the same
// records, at the time of transmission.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "host/observation/physical_constants.h"
#include "navigation/ephemerides/ephemeris.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::Ephemeris;
using gnssqctoolkit::SatelliteId;
using gnssqctoolkit::SatelliteState;
using orsolva_test::ScenarioOf;

struct Worst {
  double position_m = 0;
  double clock_m = 0;
  int count = 0;
};

void Fill(const NavigationSet& set, Ephemeris& records) {
  for (const GpsEph_gbt& e : set.gps) records.Gps().Add(e);
  for (const GloEph_gbt& e : set.glonass) records.Glonass().Add(e);
  for (const BdsEph_gbt& e : set.bds) records.Bds().Add(e);
  for (const GalEph_gbt& e : set.galileo) records.Galileo().Add(e);
  for (const GpsEph_gbt& e : set.qzss) records.Qzss().Add(e);
}

std::string KindOf(char system, int number) {
  if (system != 'C') return std::string(1, system);
  if (number <= 5 || number >= 59) return "C geostationary";
  return (number >= 6 && number <= 10) || number == 13 || number == 16 || (number >= 38 && number <= 40)
             ? "C inclined"
             : "C medium";
}

/// The largest differences by system over all satellites above the horizon.
std::map<std::string, Worst> Differences(const Scenario& scenario) {
  Simulation simulation(scenario);
  const Sky& sky = simulation.sky();
  Ephemeris records;
  records.Bds().SetMaxAge(gnssqctoolkit::kPassMaxAges.Bds);
  records.Galileo().SetMaxAge(gnssqctoolkit::kPassMaxAges.Galileo);
  Fill(simulation.Navigation(), records);
  std::map<std::pair<char, int>, std::size_t> index;
  for (std::size_t i = 0; i < sky.Satellites().size(); ++i) {
    index[{sky.Satellites()[i].system, sky.Satellites()[i].number}] = i;
  }
  std::map<std::string, Worst> worst;
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  while (simulation.Next(*epoch)) {
    const double tag_s = static_cast<double>(epoch->time.time - scenario.start.time) + epoch->time.sec;
    const double bias_s = scenario.receiver.clock_bias_s + scenario.receiver.clock_drift * tag_s;
    for (const SatelliteMoment& m : simulation.Moments()) {
      const double travel_s = m.range_m / kLightSpeed_m_s;
      const double received_s = tag_s - bias_s;
      const SkyState made = sky.StateAt(index.at({m.system, m.number}), received_s - travel_s, received_s);
      // The library goes back from the tag by the pseudorange and the satellite clock.
      const double pseudorange_m = m.range_m + kLightSpeed_m_s * (bias_s - m.satellite_clock_s);
      SatelliteState found;
      const SatelliteId id{static_cast<std::uint8_t>(kSystemTable[SystemSlot(m.system)].code), m.number};
      const AbsoluteTime tag{epoch->time.time, epoch->time.sec};
      EXPECT_TRUE(records.SatellitePosition(id, tag, pseudorange_m, found)) << m.system << m.number;
      Worst& w = worst[KindOf(m.system, m.number)];
      ++w.count;
      w.clock_m = std::max(w.clock_m, kLightSpeed_m_s * std::fabs(found.Clock - made.clock_s));
      for (int axis = 0; axis < 3; ++axis) {
        w.position_m = std::max(w.position_m, std::fabs(found.Position[axis] - made.position_m[axis]));
      }
    }
  }
  return worst;
}

void ExpectAgreement(const Scenario& scenario) {
  const std::map<std::string, Worst> worst = Differences(scenario);
  EXPECT_EQ(worst.size(), 7U) << "four systems, and BDS on three kinds of orbits";
  for (const auto& [kind, w] : worst) {
    EXPECT_GT(w.count, 100) << kind;
    EXPECT_LT(w.position_m, 1e-3) << kind;
    EXPECT_LT(w.clock_m, 1e-3) << kind;
  }
}

TEST(Positions, AgreeWithTheLibraryToAMillimetreAtTransmissionTime) { ExpectAgreement(ScenarioOf(24, 60)); }

TEST(Positions, AgreeAcrossTheEndOfAWeekAndOfAYear) {
  Scenario scenario = ScenarioOf(24, 60);
  scenario.start = {1483228800 - 43200, 0.0};  // the new year's night of 2016, a leap second in it
  ExpectAgreement(scenario);
  scenario.start = {1593302400 - 43200, 0.0};  // a Saturday at noon
  ExpectAgreement(scenario);
}

}  // namespace
