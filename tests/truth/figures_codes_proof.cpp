#include <fmt/format.h>

#include <cmath>

#include "host/observation/carriers.h"
#include "host/observation/physical_constants.h"
#include "host/simulator/scenario_json.h"
#include "host/simulator/thermal_noise.h"
#include "tests/truth/analyzed_run.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::Scenario;
using orsolva_host::SignalTruth;
using orsolva_host::analysis::ElevationBin;
using orsolva_host::analysis::SignalFigures;

constexpr double kNoise_m = 0.4;
constexpr double kAmplitude_m = 0.5;
constexpr double kWindow_s = 630;  // of the moving mean

Scenario Codes(const char* changes, double interval_s, double hours) {
  Scenario scenario;
  ReadScenario(R"({"errors": {"phase_noise_m": {"zenith": 0, "horizon": 0},
    "code_noise_m": {"zenith": 0, "horizon": 0}, "multipath_m": {"zenith": 0, "horizon": 0}}})",
               scenario);
  ReadScenario(changes, scenario);
  scenario.seed = 7301;
  scenario.interval_s = interval_s;
  scenario.hours = hours;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  return scenario;
}

/// One figure of a signal against what it should be. @param tolerance  part of it
std::vector<std::string> Compare(const std::string& what, const SignalFigures& signal, double expected,
                                 const std::optional<double>& found, double tolerance, Proof& proof) {
  const std::string name = fmt::format("{} {}{}", what, signal.system, NameOf(signal.code));
  proof.Check(found.has_value(), name + " is absent");
  if (!found) return {what, signal.system + NameOf(signal.code), Number(expected, 4), "-", "-"};
  const double off = *found / expected - 1;
  proof.Check(std::fabs(off) <= tolerance,
              fmt::format("{}: {:.4f} instead of {:.4f}", name, *found, expected));
  return {what, signal.system + NameOf(signal.code), Number(expected, 4), Number(*found, 4),
          fmt::format("{:+.2f}", 100 * off)};
}

/// Observations of a signal from the cut-off up, over the satellites of its system.
std::uint64_t AboveCutoff(const orsolva_host::Truth& truth, const SignalFigures& signal) {
  std::uint64_t count = 0;
  for (const orsolva_host::SatelliteTruth& s : truth.satellites) {
    for (const SignalTruth& t : s.signals)
      count += s.system == signal.system && t.name == NameOf(signal.code) ? t.above_cutoff : 0;
  }
  return count;
}

/// Root mean square over periods of 0.8 to 1.25 times the nominal one of what the moving mean leaves.
double PartLeft(double period_s) {
  constexpr int kParts = 1000;
  double squares = 0;
  for (int i = 0; i < kParts; ++i) {
    const double x = orsolva_host::kPi * kWindow_s / (period_s * (0.8 + 0.45 * (i + 0.5) / kParts));
    const double left = 1 - std::sin(x) / x;
    squares += left * left;
  }
  return std::sqrt(squares / kParts);
}

void ProveWhiteNoise(double interval_s, double hours, ProofTable& table, Proof& proof) {
  const AnalyzedRun run =
      Analyze(Codes(R"({"errors": {"code_noise_m": {"zenith": 0.4, "horizon": 0.4}}})", interval_s, hours));
  const std::string at = fmt::format(", {:g} s", interval_s);
  for (const SignalFigures& signal : run.result.signals) {
    // Arcs shorter than the moving mean have no value.
    const std::uint64_t values = signal.multipath.values.value_or(0);
    const std::uint64_t most = AboveCutoff(run.truth, signal);
    proof.Check(1000 * values <= 1005 * most && 100 * values >= 95 * most,
                fmt::format("{} of {} values of {}{}", values, most, signal.system, NameOf(signal.code)));
    table.rows.push_back(
        Compare("white noise: moving mean" + at, signal, kNoise_m, signal.multipath.moving_m, 0.02, proof));
    table.rows.push_back(
        Compare("white noise: whole arc" + at, signal, kNoise_m, signal.multipath.whole_arc_m, 0.02, proof));
    table.rows.push_back(Compare("white noise: code noise" + at, signal, kNoise_m,
                                 signal.multipath.code_noise_m, 0.02, proof));
  }
}

void ProveSine(double period_s, double tolerance, ProofTable& table, Proof& proof) {
  Scenario scenario = Codes(R"({"errors": {"multipath_m": {"zenith": 0.5, "horizon": 0.5}}})", 30, 24);
  scenario.errors.multipath_period_s = period_s;
  const AnalyzedRun run = Analyze(scenario);
  const double rms = kAmplitude_m / std::sqrt(2.0);
  const std::string of = fmt::format(", period {:g} s", period_s);
  for (const SignalFigures& signal : run.result.signals) {
    table.rows.push_back(Compare("sine: moving mean" + of, signal, rms * PartLeft(period_s),
                                 signal.multipath.moving_m, tolerance, proof));
    table.rows.push_back(
        Compare("sine: whole arc" + of, signal, rms, signal.multipath.whole_arc_m, 0.03, proof));
  }
}

/// Noise and multipath within a range of elevations, root mean square, over the satellites of a system.
double TruthWithin(const orsolva_host::Truth& truth, const SignalFigures& signal, int from_deg, int to_deg) {
  double squares = 0, count = 0;
  for (const orsolva_host::SatelliteTruth& s : truth.satellites) {
    for (const SignalTruth& t : s.signals) {
      if (s.system != signal.system || t.name != NameOf(signal.code)) continue;
      for (int bin = from_deg / orsolva_host::kTruthBin_deg; bin < to_deg / orsolva_host::kTruthBin_deg;
           ++bin) {
        const orsolva_host::BinTruth& one = t.by_elevation[static_cast<std::size_t>(bin)];
        squares += one.noise_square.sum + one.multipath_square.sum;
        count += static_cast<double>(one.noise_square.count);
      }
    }
  }
  return count > 0 ? std::sqrt(squares / count) : 0;
}

void ProveElevations(ProofTable& table, Proof& proof) {
  const AnalyzedRun run = Analyze(Codes(R"({"errors": {"code_noise_m": {"zenith": 0.12, "horizon": 0.45},
    "multipath_by_elevation": [[0, 0.8], [20, 0.5], [90, 0.1]], "multipath_period_s": 120}})",
                                        30, 24));
  for (const SignalFigures& signal : run.result.signals) {
    if (NameOf(signal.code) != "1C" && NameOf(signal.code) != "2I") continue;
    for (const ElevationBin& bin : signal.multipath.by_elevation) {
      table.rows.push_back(Compare(fmt::format("noise and sine, {} to {} deg", bin.from_deg, bin.to_deg),
                                   signal, TruthWithin(run.truth, signal, bin.from_deg, bin.to_deg),
                                   bin.value, 0.05, proof));
    }
    proof.Check(signal.multipath.by_elevation.size() >= 4, "bins are missing");
  }
}

constexpr double kThermalSnr_dbhz = 44;  // on B1I

double SnrOf(char band) { return kThermalSnr_dbhz + (band == '7' ? 0.5 : band == '6' ? -1 : 0); }

/// White noise of the multipath combination of a BDS signal: of its code, and of both phases with their
/// weights (Estey and Meertens 1999, eq. 4 and 5).
double ThermalCodeNoise(const orsolva_host::ThermalNoise& loops, const std::string& code,
                        const std::string& partner) {
  const auto ratio = [](const std::string& name) { return orsolva_host::NoiseDensityRatio(SnrOf(name[0])); };
  const auto frequency = [](const std::string& name) {
    return orsolva_host::CarrierFrequency('C', name[0], 0);
  };
  const auto phase_m = [&](const std::string& name) {
    return PhaseThermalNoise(loops, ratio(name), orsolva_host::kLightSpeed_m_s / frequency(name));
  };
  const double squared = std::pow(frequency(code) / frequency(partner), 2);
  const double weight = 2 / (squared - 1);
  return std::hypot(CodeThermalNoise(loops, ratio(code), orsolva_host::ChipLength('C', code)),
                    (1 + weight) * phase_m(code), weight * phase_m(partner));
}

/// Geostationary satellites at one SNR have one noise all day.
void ProveThermal(ProofTable& table, Proof& proof) {
  Scenario scenario = Codes(R"({"systems": "C", "errors": {"thermal_noise": {}, "snr_noise_db": 0,
    "snr_zenith_dbhz": 44, "snr_horizon_dbhz": 44}})",
                            30, 24);
  const AnalyzedRun run = Analyze(scenario);
  for (const SignalFigures& signal : run.result.satellite_signals) {
    if (signal.satellite.number > 5 || !signal.multipath.values.value_or(0)) continue;
    const double expected =
        ThermalCodeNoise(*scenario.errors.thermal_noise, NameOf(signal.code), signal.multipath.partner);
    table.rows.push_back(Compare("thermal noise: code noise of " + NameOf(signal.satellite), signal, expected,
                                 signal.multipath.code_noise_m, 0.08, proof));
  }
}

}  // namespace

void ProveCodeFigures(bool long_form, Proof& proof) {
  proof.figures = {"multipath_moving_rms_m", "multipath_arc_rms_m", "multipath_values", "code_noise_m"};
  proof.injected =
      "phases without noise; codes with white noise of 0.4 m, with a sine of 0.5 m on each signal with a "
      "period of "
      "its own, 0.8 to 1.25 times the one given, with noise and a sine that depend on elevation, or with "
      "thermal "
      "noise (Kaplan and Hegarty 2006) at one SNR";
  proof.must_say =
      "RMS about the moving mean and about the arc's mean, and the white code noise, per signal. A sine of "
      "period T "
      "leaves a (1 - sinc(630 s / T)) / sqrt 2 about the moving mean and a / sqrt 2 about that of the arc";
  proof.tolerance =
      "2 % for white noise, 3 % for sines about the arc's mean, about the moving mean 9 % at 120 s and 20 % "
      "at 1,260 "
      "s, 5 % by elevation, 8 % for the thermal noise of a satellite";
  proof.reason =
      "an RMS of n values scatters by 1/sqrt(2n), 0.5 % for 20,000; a median of differences by 1.2/sqrt(n), "
      "2 % for a "
      "satellite's 2,880. What the moving mean leaves of a sine depends on its period, which is one random "
      "number per "
      "signal of a satellite: QZSS has four";
  ProofTable table{
      "By signal.", {"injected and figure", "signal", "expected, m", "found, m", "off, %"}, {}, 2};
  ProveWhiteNoise(30, 24, table, proof);
  ProveWhiteNoise(1, long_form ? 4 : 1.5, table, proof);
  ProveSine(120, 0.09, table, proof);
  ProveSine(1260, 0.2, table, proof);
  ProveElevations(table, proof);
  ProveThermal(table, proof);
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
