// The wide-lane spread, disturbed minutes and patches of the ionosphere against what was injected.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/scenario_json.h"
#include "tests/truth/analyzed_run.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"
#include "tests/truth/true_roti.h"

namespace orsolva_test {
namespace {

using orsolva_host::ObservationEpoch;
using orsolva_host::Scenario;
using orsolva_host::SignalCode;
using orsolva_host::Simulation;
using orsolva_host::analysis::Count;
using orsolva_host::analysis::Event;
using orsolva_host::analysis::EventKind;

using orsolva_host::analysis::WideLaneFigures;

Scenario Pooled(const char* changes) {
  Scenario scenario;
  ReadScenario(R"({"errors": {"multipath_m": {"zenith": 0, "horizon": 0}}})", scenario);
  ReadScenario(changes, scenario);
  scenario.seed = 7701;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  return scenario;
}

/// Mean square of what was added to the code (or phase) of a signal, over its satellites from the cut-off up.
struct Noise {
  double code_m2 = 0, phase_m2 = 0;
  std::uint64_t tracked = 0;
};

/// @param partner  the satellites have it, too
Noise NoiseOf(const orsolva_host::Truth& truth, char system, SignalCode code, SignalCode partner) {
  double codes = 0, phases = 0, count = 0;
  Noise noise;
  for (const orsolva_host::SatelliteTruth& s : truth.satellites) {
    const auto of = [&](SignalCode wanted) {
      return std::find_if(s.signals.begin(), s.signals.end(),
                          [&](const auto& t) { return t.name == NameOf(wanted); });
    };
    const auto t = of(code);
    if (s.system != system || t == s.signals.end() || of(partner) == s.signals.end()) continue;
    noise.tracked += t->above_cutoff;
    codes += t->noise_square.sum;
    phases += t->phase_noise_square.sum;
    count += static_cast<double>(t->noise_square.count);
  }
  noise.code_m2 = codes / count;
  noise.phase_m2 = phases / count;
  return noise;
}

/// (f1 L1 - f2 L2) / (f1 - f2) - (f1 P1 + f2 P2) / (f1 + f2), of which range, clocks and ionosphere are gone.
double SpreadOf(const orsolva_host::Truth& truth, const WideLaneFigures& pair) {
  const double f1 = orsolva_host::CarrierFrequency(pair.system, pair.first.band, 0);
  const double f2 = orsolva_host::CarrierFrequency(pair.system, pair.second.band, 0);
  const Noise one = NoiseOf(truth, pair.system, pair.first, pair.second),
              other = NoiseOf(truth, pair.system, pair.second, pair.first);
  const double codes = (f1 * f1 * one.code_m2 + f2 * f2 * other.code_m2) / ((f1 + f2) * (f1 + f2));
  const double phases = (f1 * f1 * one.phase_m2 + f2 * f2 * other.phase_m2) / ((f1 - f2) * (f1 - f2));
  return std::sqrt(codes + phases);
}

/// Length of the wide lane's cycle, m.
double CycleOf(const WideLaneFigures& pair) {
  const double f1 = orsolva_host::CarrierFrequency(pair.system, pair.first.band, 0);
  const double f2 = orsolva_host::CarrierFrequency(pair.system, pair.second.band, 0);
  return orsolva_host::kLightSpeed_m_s / std::fabs(f1 - f2);
}

void ProveWideLanes(const char* name, const char* changes, ProofTable& table, Proof& proof) {
  const AnalyzedRun run = Analyze(Pooled(changes));
  std::string systems;
  for (const WideLaneFigures& pair : run.result.wide_lanes) {
    const std::string label = pair.system + NameOf(pair.first) + "-" + NameOf(pair.second);
    const double expected = SpreadOf(run.truth, pair), found = pair.spread_m.value_or(0);
    const double cycles = pair.spread_cycles.value_or(0);
    const Count most = std::min(NoiseOf(run.truth, pair.system, pair.first, pair.second).tracked,
                                NoiseOf(run.truth, pair.system, pair.second, pair.first).tracked);
    proof.Check(std::fabs(found / expected - 1) < 0.02,
                fmt::format("{} {}: {:.4f} m instead of {:.4f}", name, label, found, expected));
    proof.Check(std::fabs(cycles * CycleOf(pair) / expected - 1) < 0.025,
                fmt::format("{} {}: {:.4f} cycles", name, label, cycles));
    const Count values = pair.values.value_or(0);
    proof.Check(values <= most + 20 && 100 * values >= 98 * most,
                fmt::format("{} {}: {} values of {}", name, label, values, most));
    table.rows.push_back({name, label, std::to_string(values), Number(expected, 4), Number(found, 4),
                          Number(expected / CycleOf(pair), 4), Number(cycles, 4),
                          fmt::format("{:+.2f}", 100 * (found / expected - 1))});
    if (systems.find(pair.system) == std::string::npos) systems += pair.system;
  }
  proof.Check(systems.size() == 5, fmt::format("{}: wide lanes of {}", name, systems));
}

/// Minutes of windows in which a quarter of a system's satellites have a true ROTI above a limit.
double TrueMinutes(const TrueRoti& truth, char system, double limit) {
  double minutes = 0;
  for (const auto& [window, rotis] : truth.WindowsOf(system)) {
    const auto above = std::count_if(rotis.begin(), rotis.end(), [&](double roti) { return roti > limit; });
    if (above > 0 && 4 * static_cast<std::size_t>(above) >= rotis.size()) minutes += 5;
  }
  return minutes;
}

void ProveMinutes(const char* name, const char* changes, ProofTable& table, Proof& proof) {
  constexpr double kLimit = 0.5, kDoubt = 0.1;
  TrueRoti truth;
  const AnalyzedRun run =
      Analyze(Pooled(changes), {}, [&](const Simulation& s, const ObservationEpoch& e) { truth.Take(s, e); });
  for (const auto& system : run.result.systems) {
    const double least = TrueMinutes(truth, system.letter, kLimit + kDoubt);
    const double most = TrueMinutes(truth, system.letter, kLimit - kDoubt);
    const double found = system.ionosphere.disturbed_minutes.value_or(-1);
    proof.Check(least <= found && found <= most, fmt::format("{} {}: {} disturbed minutes, not {} to {}",
                                                             name, system.letter, found, least, most));
    table.rows.push_back({name, std::string(1, system.letter),
                          Number(TrueMinutes(truth, system.letter, kLimit), 0), Number(least, 0),
                          Number(most, 0), Number(found, 0)});
  }
}

/// One patch of ionosphere on a satellite: two steps of up to 3.3 TECU, up and down.
struct Patch {
  const char* satellite;
  double at_s;
};
constexpr Patch kPatches[] = {{"G", 20000}, {"E", 40000}, {"C", 60000}};
constexpr double kPatch_s = 240;

void ProvePatches(ProofTable& table, Proof& proof) {
  std::string faults;
  for (const Patch& patch : kPatches) {
    faults += fmt::format(
        R"({}{{"kind": "iono_storm", "satellite": "{}", "size": 12, "period_s": 90, "at_s": {}, "duration_s": {}}})",
        faults.empty() ? "" : ",", patch.satellite, patch.at_s, kPatch_s);
  }
  const Scenario scenario = Pooled(("{\"faults\": [" + faults + "]}").c_str());
  const AnalyzedRun run = Analyze(scenario);
  std::map<char, Count> events;
  std::map<char, std::map<double, int>> satellites;
  Count others = 0;
  for (const Event& event : run.events) {
    if (event.kind != EventKind::kIonosphere || event.elevation_deg < scenario.truth_cutoff_deg) continue;
    const double at_s = static_cast<double>(event.time_ns) * 1e-9 - static_cast<double>(scenario.start.time);
    ++events[event.satellite.system];
    const auto patch = std::find_if(std::begin(kPatches), std::end(kPatches), [&](const Patch& one) {
      return one.satellite[0] == event.satellite.system && at_s > one.at_s - 1 &&
             at_s <= one.at_s + kPatch_s + 30;
    });
    others += patch == std::end(kPatches);
  }
  proof.Check(others == 0, fmt::format("{} patches where there is none", others));
  for (const auto& system : run.result.systems) {
    const Count found = system.ionosphere.events.value_or(0);
    const bool injected = std::any_of(std::begin(kPatches), std::end(kPatches),
                                      [&](const Patch& one) { return one.satellite[0] == system.letter; });
    proof.Check(found == events[system.letter], fmt::format("{}: events of the ionosphere", system.letter));
    proof.Check((found > 0) == injected, fmt::format("{}: {} patches", system.letter, found));
    table.rows.push_back({std::string(1, system.letter), injected ? "one" : "none", std::to_string(found),
                          std::to_string(others)});
  }
}

}  // namespace

void ProvePooledFigures(bool /*long_form*/, Proof& proof) {
  proof.figures = {"wide_lane_spread_cycles", "wide_lane_spread_m", "wide_lane_values", "disturbed_minutes",
                   "ionosphere_events"};
  proof.injected =
      "white code noise of 0.4 m, and noise of codes and phases that depends on elevation, with 60 outages "
      "after "
      "which ambiguities are others and 20 slips; random TEC rates for four hours and patches of some TECU "
      "on one "
      "system for four minutes";
  proof.must_say =
      "the spread of the wide lane, sqrt((f1^2 c1 + f2^2 c2) / (f1 + f2)^2 + (f1^2 p1 + f2^2 p2) / (f1 - "
      "f2)^2), "
      "with the mean squares c and p of the noise that was drawn for codes and phases; five minutes for each "
      "window "
      "in which a quarter of a system's satellites have a ROTI of the simulated content above 0.5 TECU/min; "
      "steps "
      "that only a patch explains, in the four minutes and nowhere else";
  proof.tolerance =
      "2 % for spreads (2.5 % in cycles), 2 % of the values; the minutes lie between those of windows above "
      "0.6 and "
      "above 0.4 TECU/min";
  proof.reason =
      "an RMS of n values scatters by 1/sqrt(2n), and the noise of two signals by the same epoch's "
      "elevation; the "
      "cycle of a wide lane of GLONASS differs by 0.3 % among its channels; phase noise adds up to 0.2 "
      "TECU/min to "
      "a satellite's ROTI, as the root of squares 0.04 to 0.1 at 0.5, and an epoch at the edge of the window "
      "or at "
      "the cut-off may count or not";
  ProofTable lanes{"Wide lanes.",
                   {"injected", "pair", "values", "expected, m", "found, m", "expected, cycles",
                    "found, cycles", "off, %"},
                   {},
                   2};
  ProveWideLanes("white noise, outages and slips",
                 R"({"errors": {"code_noise_m": {"zenith": 0.4, "horizon": 0.4},
      "phase_noise_m": {"zenith": 0, "horizon": 0}},
      "faults": [{"kind": "outage", "duration_s": 90, "random": 60}, {"kind": "slip", "size": 3, "random": 20}]})",
                 lanes, proof);
  ProveWideLanes("noise by elevation",
                 R"({"errors": {"code_noise_m": {"zenith": 0.12, "horizon": 0.6},
      "phase_noise_m": {"zenith": 0.002, "horizon": 0.006}}})",
                 lanes, proof);
  ProofTable minutes{
      "Disturbed minutes.", {"case", "system", "true", "above 0.6", "above 0.4", "found"}, {}, 2};
  ProveMinutes("TEC rates from 10:00 to 14:00",
               R"({"faults": [{"kind": "tec_rate", "size": 1.7, "at_s": 36000, "duration_s": 14400}]})",
               minutes, proof);
  ProveMinutes("TEC rates of 0.6 TECU/min all day", R"({"faults": [{"kind": "tec_rate", "size": 0.6}]})",
               minutes, proof);
  ProveMinutes("quiet", "{}", minutes, proof);
  ProofTable patches{"Patches of ionosphere.", {"system", "injected", "steps found", "elsewhere"}, {}, 2};
  ProvePatches(patches, proof);
  proof.tables = {lanes, minutes, patches};
}

}  // namespace orsolva_test
