#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/simulator/portable_math.h"
#include "host/simulator/scenario_json.h"
#include "tests/truth/analyzed_run.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"
#include "tests/truth/true_roti.h"

namespace orsolva_test {
namespace {

using orsolva_host::MeanOf;
using orsolva_host::ObservationEpoch;
using orsolva_host::SatelliteId;
using orsolva_host::Scenario;
using orsolva_host::Simulation;
using orsolva_host::analysis::Count;
using orsolva_host::analysis::ElevationBin;
using orsolva_host::analysis::SignalFigures;
using orsolva_host::analysis::StrengthDrop;

constexpr double kPhaseNoise_m = 0.002;

Scenario Signals(const char* changes, double interval_s, double hours) {
  Scenario scenario;
  ReadScenario(changes, scenario);
  scenario.seed = 7501;
  scenario.interval_s = interval_s;
  scenario.hours = hours;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  return scenario;
}

/// Strengths of a signal over the satellites of its system; within a bin when one is given.
MeanOf TruthStrength(const orsolva_host::Truth& truth, const SignalFigures& signal, int from_deg = -1) {
  MeanOf sum;
  for (const orsolva_host::SatelliteTruth& s : truth.satellites) {
    for (const orsolva_host::SignalTruth& t : s.signals) {
      if (s.system != signal.system || t.name != NameOf(signal.code)) continue;
      const MeanOf& one =
          from_deg < 0 ? t.snr
                       : t.by_elevation[static_cast<std::size_t>(from_deg / orsolva_host::kTruthBin_deg)].snr;
      sum.count += one.count;
      sum.sum += one.sum;
    }
  }
  return sum;
}

void ProveStrength(ProofTable& table, Proof& proof) {
  const AnalyzedRun run = Analyze(Signals("{}", 30, 24));
  for (const SignalFigures& signal : run.result.signals) {
    const std::string name = signal.system + NameOf(signal.code);
    const MeanOf truth = TruthStrength(run.truth, signal);
    const double mean = signal.strength.mean_dbhz.value_or(0);
    proof.Check(signal.strength.values == truth.count, name + ": strengths");
    proof.Check(std::fabs(mean - truth.Mean()) < 1e-9, name + ": mean strength");
    double most = 0;
    std::uint64_t moved = 0;
    for (const ElevationBin& bin : signal.strength.mean_by_elevation) {
      const MeanOf expected = TruthStrength(run.truth, signal, bin.from_deg);
      const std::uint64_t off = std::max(bin.values, expected.count) - std::min(bin.values, expected.count);
      moved = std::max(moved, off);
      most = std::max(most, std::fabs(bin.value - expected.Mean()));
      proof.Check(off <= 40 && std::fabs(bin.value - expected.Mean()) < 0.02,
                  fmt::format("{}: {} values instead of {} from {} deg", name, bin.values, expected.count,
                              bin.from_deg));
    }
    proof.Check(signal.strength.mean_by_elevation.size() >= 5, name + ": bins");
    table.rows.push_back({name, std::to_string(truth.count), Number(truth.Mean(), 4), Number(mean, 4),
                          std::to_string(signal.strength.mean_by_elevation.size()), Number(most, 4),
                          std::to_string(moved)});
  }
}

const SignalFigures* Find(const std::vector<SignalFigures>& all, char system, SatelliteId id,
                          const std::string& name) {
  for (const SignalFigures& one : all) {
    if (one.system == system && one.satellite == id && NameOf(one.code) == name) return &one;
  }
  return nullptr;
}

void ProveDrops(ProofTable& table, Proof& proof) {
  const Scenario scenario = Signals(R"({"faults": [
      {"kind": "snr_drop", "satellite": "G", "signal": "1C", "size": 8, "at_s": 36000, "duration_s": 1800}]})",
                                    30, 24);
  const AnalyzedRun run = Analyze(scenario);
  std::size_t others = 0;
  for (const SignalFigures& signal : run.result.signals) {
    if (signal.system != 'G' || NameOf(signal.code) != "1C") others += signal.strength.drops.size();
  }
  const SignalFigures* signal = Find(run.result.signals, 'G', {' ', 0}, "1C");
  const bool one = signal != nullptr && signal->strength.drops.size() == 1;
  proof.Check(one, "one drop of GPS 1C is found");
  proof.Check(others == 0, fmt::format("{} drops of other signals", others));
  if (!one) return;
  const StrengthDrop& drop = signal->strength.drops[0];
  const std::int64_t start_ns = scenario.start.time * orsolva_host::kNanosecondsPerSecond;
  const double from_s = static_cast<double>(drop.from_ns - start_ns) / 1e9;
  const double to_s = static_cast<double>(drop.to_ns - start_ns) / 1e9;
  proof.Check(std::fabs(from_s - 36000) <= 300 && std::fabs(to_s - 37800) <= 300, "times of the drop");
  proof.Check(std::fabs(drop.mean_drop_db - 8) < 0.5, "size of the drop");
  proof.Check(drop.other_bands == false, "other bands did not drop");
  table.rows.push_back({"8 dB on G1C, 36,000 to 37,800 s", fmt::format("{:.0f} to {:.0f} s", from_s, to_s),
                        Number(drop.mean_drop_db, 2), drop.other_bands.value_or(true) ? "yes" : "no",
                        std::to_string(others)});
}

/// Observations of a signal from the cut-off up, over the satellites of its system.
Count AboveCutoff(const orsolva_host::Truth& truth, const SignalFigures& signal) {
  Count count = 0;
  for (const orsolva_host::SatelliteTruth& s : truth.satellites) {
    for (const orsolva_host::SignalTruth& t : s.signals)
      count += s.system == signal.system && t.name == NameOf(signal.code) ? t.above_cutoff : 0;
  }
  return count;
}

void ProvePhaseNoise(double interval_s, double hours, ProofTable& table, Proof& proof) {
  const AnalyzedRun run =
      Analyze(Signals(R"({"errors": {"phase_noise_m": {"zenith": 0.002, "horizon": 0.002}},
    "receiver": {"clock_walk": 1e-10}})",
                      interval_s, hours));
  int given = 0;
  for (const SignalFigures& signal : run.result.signals) {
    const std::string name = signal.system + NameOf(signal.code);
    const auto& noise = signal.phase_noise;
    if (!noise.noise_mm) {
      table.rows.push_back({Number(interval_s, 0), name, "none", "-", "-", "-"});
      continue;
    }
    ++given;
    // Three differences use up three epochs of an arc; what the method needs is not always there.
    const Count above = AboveCutoff(run.truth, signal), values = noise.values.value_or(0);
    proof.Check(values >= 100 && values <= above &&
                    (noise.method != "third difference" || 100 * values >= 98 * above),
                fmt::format("{} at {} s: {} values of {}", name, interval_s, values, above));
    const double off = *noise.noise_mm / (1e3 * kPhaseNoise_m) - 1;
    proof.Check(std::fabs(off) < 0.08,
                fmt::format("{} at {} s: {:.3f} mm", name, interval_s, *noise.noise_mm));
    table.rows.push_back({Number(interval_s, 0), name, noise.method, std::to_string(noise.values.value_or(0)),
                          Number(*noise.noise_mm, 3), fmt::format("{:+.1f}", 100 * off)});
  }
  proof.Check(given >= (interval_s < 5 ? 12 : 5), fmt::format("{} phase noises at {} s", given, interval_s));
}

void ProveRoti(const char* name, const char* changes, double tolerance, double floor, ProofTable& table,
               Proof& proof) {
  TrueRoti truth;
  const AnalyzedRun run = Analyze(Signals(changes, 30, 24), {},
                                  [&](const Simulation& s, const ObservationEpoch& e) { truth.Take(s, e); });
  for (const auto& system : run.result.systems) {
    const std::vector<double> all = truth.Of(system.letter);
    if (all.empty()) continue;
    const double median = all[all.size() / 2], p95 = all[all.size() * 95 / 100];
    const auto windows = static_cast<double>(system.ionosphere.windows.value_or(0));
    proof.Check(std::fabs(windows / static_cast<double>(all.size()) - 1) <= 0.01,
                fmt::format("{} {}: {} windows of ROTI", name, system.letter, windows));
    const double found = system.ionosphere.median_roti.value_or(-1),
                 found_95 = system.ionosphere.p95_roti.value_or(-1);
    proof.Check(std::fabs(found - median) <= tolerance * median + floor &&
                    std::fabs(found_95 - p95) <= tolerance * p95 + floor,
                fmt::format("{} {}: ROTI {:.3f} and {:.3f} instead of {:.3f} and {:.3f}", name, system.letter,
                            found, found_95, median, p95));
    table.rows.push_back({name, std::string(1, system.letter), std::to_string(all.size()),
                          std::to_string(system.ionosphere.windows.value_or(0)), Number(median, 3),
                          Number(found, 3), Number(p95, 3), Number(found_95, 3)});
  }
}

}  // namespace

void ProveSignalFigures(bool long_form, Proof& proof) {
  proof.figures = {"strength_mean_dbhz", "strength_values_used", "strength_drops",    "phase_noise_mm",
                   "phase_noise_values", "roti_median_tecu_min", "roti_p95_tecu_min", "roti_windows"};
  proof.injected =
      "SNR by elevation with noise; a drop of 8 dB on GPS 1C for half an hour; white phase noise of 2 mm on "
      "every "
      "signal with a clock that walks; random TEC rates with a median of 1.7 TECU/min over a day, with and "
      "without "
      "phase noise and scintillation";
  proof.must_say =
      "the mean strength and its bins of 5 degrees; the drop with its times, its size and that no other band "
      "dropped; "
      "2 mm where a method exists, nothing elsewhere; ROTI as formed from the simulated content itself";
  proof.tolerance =
      "1e-9 dB for means, 0.02 dB for bins; five minutes and 0.5 dB for the drop; 8 % for phase noise; 5 % "
      "for "
      "ROTI, and what phase noise adds: 0.02 TECU/min without it, 0.1 with TEC rates, 0.25 on the quiet day";
  proof.reason =
      "an elevation within 0.005 degrees of the edge of a bin may count in either; windows are five minutes; "
      "the "
      "median of the other satellites' phases adds up to 7 %; the rates at the ends of a window may belong "
      "to either";
  ProofTable strength{"Strength.",
                      {"signal", "values", "injected mean, dB-Hz", "found", "bins",
                       "largest difference of a bin, dB", "largest difference of values"},
                      {},
                      1};
  ProofTable drops{"Drops.", {"injected", "found", "mean drop, dB", "other bands", "other drops"}, {}, 1};
  ProofTable noise{"White phase noise of 2 mm.",
                   {"interval, s", "signal", "method", "values", "found, mm", "off, %"},
                   {},
                   2};
  ProofTable roti{
      "ROTI, TECU/min.",
      {"case", "system", "windows", "of the analysis", "true median", "found", "true 95 %", "found"},
      {},
      2};
  ProveStrength(strength, proof);
  ProveDrops(drops, proof);
  ProvePhaseNoise(30, 24, noise, proof);
  ProvePhaseNoise(1, long_form ? 2 : 1, noise, proof);
  ProveRoti(
      "TEC rates, no phase noise",
      R"({"errors": {"phase_noise_m": {"zenith": 0, "horizon": 0}}, "faults": [{"kind": "tec_rate", "size": 1.7}]})",
      0.05, 0.02, roti, proof);
  ProveRoti("quiet", "{}", 0.05, 0.25, roti, proof);
  ProveRoti("TEC rates and scintillation",
            R"({"faults": [{"kind": "tec_rate", "size": 1.7}, {"kind": "scintillation", "size": 0.12}]})",
            0.05, 0.1, roti, proof);
  proof.tables = {strength, drops, noise, roti};
}

}  // namespace orsolva_test
