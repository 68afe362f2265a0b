// What a signal carries: range, clocks, atmosphere, noise, multipath and strength.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"
#include "host/simulator/surroundings.h"
#include "tests/simulator/made.h"

namespace {

using namespace orsolva_host;
using orsolva_test::Find;
using orsolva_test::ScenarioOf;

ErrorModel Silent() {
  ErrorModel e;
  e.code_noise_m = e.multipath_m = e.phase_noise_m = {0, 0};
  e.snr_noise_db = 0;
  e.troposphere = e.ionosphere = false;
  return e;
}

struct Seen {
  SatelliteMoment moment;
  Signal_QC_gbt signal;
  std::string name;
  double seconds = 0;
  double frequency_hz = 0;
};

/// Every signal of every epoch with the true circumstances.
std::vector<Seen> SeenIn(const Scenario& scenario) {
  Simulation simulation(scenario);
  std::map<int, int> channels;
  for (const SkySatellite& s : simulation.sky().Satellites()) {
    if (s.system == 'R') channels[s.number] = s.channel;
  }
  std::vector<Seen> all;
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  while (simulation.Next(*epoch)) {
    for (const SatelliteMoment& m : simulation.Moments()) {
      const Satellite_gbt* satellite = Find(*epoch, m.system, m.number);
      for (std::uint32_t j = 0; satellite && j < satellite->signal_num; ++j) {
        const std::string name(SignalName(satellite->sys, satellite->signals[j].code));
        const double seconds = static_cast<double>(epoch->time.time - scenario.start.time) + epoch->time.sec;
        const int channel = m.system == 'R' ? channels[m.number] : 0;
        all.push_back(
            {m, satellite->signals[j], name, seconds, CarrierFrequency(m.system, name[0], channel)});
      }
    }
  }
  return all;
}

double BiasAt(const Scenario& s, double seconds) {
  return s.receiver.clock_bias_s + s.receiver.clock_drift * seconds;
}

TEST(Signals, WithoutErrorsTheCodeIsRangeAndClocks) {
  Scenario scenario = ScenarioOf(0.5, 30);
  scenario.errors = Silent();
  for (const Seen& s : SeenIn(scenario)) {
    const double wanted =
        s.moment.range_m + kLightSpeed_m_s * (BiasAt(scenario, s.seconds) - s.moment.satellite_clock_s);
    ASSERT_NEAR(s.signal.pseudorange, wanted, 0.000501);
  }
}

TEST(Signals, TheRangeHoldsTheTurnOfTheEarthDuringTheTravel) {
  // The closed form of the Sagnac effect, held against the rotated frame: rate/c (xs yr - ys xr).
  Scenario scenario = ScenarioOf(0.2, 60, "G");
  Simulation simulation(scenario);
  const Sky& sky = simulation.sky();
  auto epoch = std::make_unique<ObsEpoch_QC_gbt>();
  double largest = 0;
  while (simulation.Next(*epoch)) {
    const double t = static_cast<double>(epoch->time.time - scenario.start.time);
    const double received = t - BiasAt(scenario, t);
    for (const SatelliteMoment& m : simulation.Moments()) {
      std::size_t index = 0;
      while (sky.Satellites()[index].number != m.number) ++index;
      const SkyState state = sky.StateAt(index, received - m.range_m / kLightSpeed_m_s, received);
      const double* p = state.position_m;
      const auto& r = scenario.receiver.position_m;
      const double plain = std::hypot(p[0] - r[0], p[1] - r[1], p[2] - r[2]);
      const double sagnac = kEarthRotation_rad_s / kLightSpeed_m_s * (p[0] * r[1] - p[1] * r[0]);
      EXPECT_NEAR(m.range_m, plain + sagnac, 0.001);
      largest = std::max(largest, std::fabs(sagnac));
    }
  }
  EXPECT_GT(largest, 15) << "it is worth up to 30 m";
}

TEST(Signals, TheIonosphereDelaysTheCodeAndAdvancesThePhaseByTheSquareOfTheFrequency) {
  Scenario with = ScenarioOf(1, 60), without = with;
  with.errors = without.errors = Silent();
  with.errors.ionosphere = true;
  const std::vector<Seen> a = SeenIn(with), b = SeenIn(without);
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double wanted = 40.3e16 * a[i].moment.slant_tec / (a[i].frequency_hz * a[i].frequency_hz);
    const double wavelength = kLightSpeed_m_s / a[i].frequency_hz;
    ASSERT_GT(wanted, 0.3);
    ASSERT_NEAR(a[i].signal.pseudorange - b[i].signal.pseudorange, wanted, 0.0011);
    ASSERT_NEAR((a[i].signal.phase - b[i].signal.phase) * wavelength, -wanted, 0.0011 * wavelength);
  }
}

TEST(Signals, TheTroposphereDelaysCodeAndPhaseAlike) {
  Scenario with = ScenarioOf(1, 60), without = with;
  with.errors = without.errors = Silent();
  with.errors.troposphere = true;
  const std::vector<Seen> a = SeenIn(with), b = SeenIn(without);
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double wanted = a[i].moment.troposphere_m;
    const double at_zenith = wanted * std::sin(a[i].moment.elevation_rad);
    const double wavelength = kLightSpeed_m_s / a[i].frequency_hz;
    ASSERT_TRUE(at_zenith > 2.2 && at_zenith < 2.7) << at_zenith;
    ASSERT_NEAR(a[i].signal.pseudorange - b[i].signal.pseudorange, wanted, 0.0011);
    ASSERT_NEAR((a[i].signal.phase - b[i].signal.phase) * wavelength, wanted, 0.0011 * wavelength);
  }
}

TEST(Signals, AnAmbiguityIsAWholeNumberThatStaysThroughAnArc) {
  Scenario scenario = ScenarioOf(1, 60, "GR");
  scenario.errors = Silent();
  std::map<std::string, double> known;
  for (const Seen& s : SeenIn(scenario)) {
    const double wavelength = kLightSpeed_m_s / s.frequency_hz;
    const double cycles = s.signal.phase - s.signal.pseudorange / wavelength;
    const double whole = std::round(cycles);
    ASSERT_NEAR(cycles, whole, 0.01);
    const auto [place, is_new] =
        known.insert({s.moment.system + std::to_string(s.moment.number) + s.name, whole});
    ASSERT_EQ(place->second, whole);
  }
  EXPECT_GT(known.size(), 30U);
}

/// Standard deviation of a figure by signal within a range of elevations.
template <typename Figure>
double Deviation(const std::vector<Seen>& seen, double low_deg, double high_deg, Figure figure) {
  double sum = 0, squares = 0, count = 0;
  for (const Seen& s : seen) {
    const double elevation = s.moment.elevation_rad * 57.29577951308232;
    if (elevation < low_deg || elevation > high_deg) continue;
    const double value = figure(s);
    sum += value, squares += value * value, ++count;
  }
  EXPECT_GT(count, 500);
  return std::sqrt(squares / count - sum / count * (sum / count));
}

TEST(Signals, CodeNoiseHasItsSizeAtEachElevation) {
  Scenario scenario = ScenarioOf(6, 60, "GE");
  scenario.errors = Silent();
  scenario.errors.code_noise_m = {0.2, 1.0};
  const std::vector<Seen> seen = SeenIn(scenario);
  const auto error = [&scenario](const Seen& s) {
    const double clean =
        s.moment.range_m + kLightSpeed_m_s * (BiasAt(scenario, s.seconds) - s.moment.satellite_clock_s);
    const double cosine = std::cos(s.moment.elevation_rad);
    return (s.signal.pseudorange - clean) / (0.2 + 0.8 * cosine * cosine);
  };
  for (const double low : {5.0, 30.0, 55.0})
    EXPECT_NEAR(Deviation(seen, low, low + 25, error), 1.0, 0.05) << low;
}

TEST(Signals, PhaseNoiseHasItsSize) {
  Scenario scenario = ScenarioOf(6, 60, "GE");
  scenario.errors = Silent();
  scenario.errors.phase_noise_m = {0.01, 0.01};  // far above the thousandths of a cycle of a file
  const auto error = [](const Seen& s) {
    const double cycles = s.signal.phase - s.signal.pseudorange * s.frequency_hz / kLightSpeed_m_s;
    return (cycles - std::round(cycles)) * kLightSpeed_m_s / s.frequency_hz;
  };
  EXPECT_NEAR(Deviation(SeenIn(scenario), 5, 90, error), 0.01, 0.0005);
}

TEST(Signals, MultipathIsASlowWaveOfItsPeriodAndAmplitude) {
  Scenario scenario = ScenarioOf(1, 10, "G");
  scenario.errors = Silent();
  scenario.errors.multipath_m = {2, 2};
  std::map<std::string, std::pair<double, double>> last;  // time of the last upward zero, value
  std::map<std::string, double> highest;
  std::set<int> periods;
  for (const Seen& s : SeenIn(scenario)) {
    const double clean =
        s.moment.range_m + kLightSpeed_m_s * (BiasAt(scenario, s.seconds) - s.moment.satellite_clock_s);
    const double wave = s.signal.pseudorange - clean;
    const std::string key = std::to_string(s.moment.number) + s.name;
    highest[key] = std::max(highest[key], std::fabs(wave));
    auto [place, is_new] = last.insert({key, {-1, wave}});
    if (!is_new && place->second.second < 0 && wave >= 0) {
      if (place->second.first >= 0) periods.insert(static_cast<int>(s.seconds - place->second.first));
      place->second.first = s.seconds;
    }
    place->second.second = wave;
  }
  ASSERT_FALSE(periods.empty());
  EXPECT_GE(*periods.begin(), static_cast<int>(420 * 0.8) - 10);
  EXPECT_LE(*periods.rbegin(), static_cast<int>(420 * 1.25) + 10);
  EXPECT_GT(periods.size(), 5U) << "each signal has its own";
  for (const auto& [key, height] : highest) EXPECT_LT(height, 2.001);
}

TEST(Signals, StrengthFollowsTheElevationWithItsNoise) {
  Scenario scenario = ScenarioOf(6, 60, "G");
  scenario.signals["G"] = {"1C"};
  const auto error = [](const Seen& s) {
    return static_cast<double>(s.signal.snr) - (33 + 17 * std::sin(s.moment.elevation_rad));
  };
  EXPECT_NEAR(Deviation(SeenIn(scenario), 5, 90, error), 0.4, 0.02);
  scenario.errors.snr_noise_db = 0;
  for (const Seen& s : SeenIn(scenario)) ASSERT_NEAR(error(s), 0, 0.00051);
}

TEST(Signals, ValuesAreThoseThatAFileCarries) {
  for (const Seen& s : SeenIn(ScenarioOf(0.5, 30))) {
    for (const double value : {s.signal.pseudorange, s.signal.phase}) {
      ASSERT_EQ(value, std::nearbyint(value * 1000) / 1000);
      ASSERT_LT(std::fabs(value), 1e10) << "ten digits before the point";
    }
    const double snr = static_cast<double>(s.signal.snr);
    ASSERT_NEAR(snr, std::nearbyint(snr * 1000) / 1000, 1e-5);
  }
}

}  // namespace
