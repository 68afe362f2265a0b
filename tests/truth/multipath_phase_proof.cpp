#include <fmt/format.h>

#include <cmath>

#include "host/observation/physical_constants.h"
#include "host/rinex/signal_codes.h"
#include "tests/truth/observed_run.h"
#include "tests/truth/proof.h"

namespace orsolva_test {
namespace {

using orsolva::PairEpochDetail;
using orsolva::RestartReason;
using orsolva_host::Scenario;

constexpr double kPhaseNoise_m = 0.001;
constexpr double kStandardErrors = 5;
constexpr double kCellVariance = 0.001 * 0.001 / 12;  // of a value rounded to three decimals

/// One pair of a satellite, from its first value on.
struct PairNoise {
  std::uint64_t values = 0;
  double square = 0;
  int restarts = 0;
};

/// Pairs of the same two signals, over the satellites.
struct SignalPairNoise {
  double gain = 0;
  std::uint64_t values = 0;
  double square = 0, derived_square = 0;
};

Scenario PhaseScenario(double interval_s, int epochs) {
  Scenario scenario;
  scenario.interval_s = interval_s;
  scenario.hours = epochs * interval_s / 3600;
  scenario.seed = 50 + static_cast<std::uint64_t>(10 * interval_s);  // noise of its own
  scenario.receiver.position_m = kEasternSite;
  scenario.receiver.cutoff_deg = kTruthCutoff_deg + 2;
  Silence(scenario.errors);
  scenario.errors.phase_noise_m = {kPhaseNoise_m, kPhaseNoise_m};
  return scenario;
}

void AddEpoch(const PairEpochDetail& detail, PairNoise& pair) {
  if (!detail.has_multipath || !detail.counting) return;
  ++pair.values;
  pair.square += detail.residual_m * detail.residual_m;
  if (detail.restart != RestartReason::kNone && detail.restart != RestartReason::kFirstValue) ++pair.restarts;
}

/// Variance of a raw multipath value: both phases with their weights, and the rounding of the three cells.
double DerivedVariance(const MultipathWeights& w, double f_code, double f_partner) {
  const double light = orsolva_host::kLightSpeed_m_s;
  const double code_phase = kPhaseNoise_m * kPhaseNoise_m + kCellVariance * std::pow(light / f_code, 2);
  const double partner_phase = kPhaseNoise_m * kPhaseNoise_m + kCellVariance * std::pow(light / f_partner, 2);
  return w.of_code_phase * w.of_code_phase * code_phase +
         w.of_partner_phase * w.of_partner_phase * partner_phase + kCellVariance;
}

using NoiseBySignals = std::map<std::string, SignalPairNoise>;

NoiseBySignals RunPhaseNoise(const Scenario& scenario, Proof& proof) {
  std::map<PairKey, PairNoise> pairs;
  const ObservedRun run(scenario,
                        [&pairs](const PairEpochDetail& detail) { AddEpoch(detail, pairs[KeyOf(detail)]); });
  proof.Check(run.Good(), "a batch was refused");
  const ElevationRule rule(run.simulation().sky(), scenario);
  NoiseBySignals all;
  for (const auto& [key, pair] : pairs) {
    const auto [system, prn, code, partner] = key;
    if (pair.values < 2) continue;
    const std::string name =
        fmt::format("{} with {}", CodeName(system, code), orsolva_host::SignalName(system, partner));
    proof.Check(pair.restarts == 0, fmt::format("{} {}: restarts", NameOf(system, prn), name));
    if (pair.restarts != 0) continue;
    const double f_code = FrequencyOf(system, code, rule.Channel(system, prn));
    const double f_partner = FrequencyOf(system, partner, rule.Channel(system, prn));
    const MultipathWeights w = WeightsOf(f_code, f_partner);
    SignalPairNoise& signals = all[name];
    signals.gain = std::hypot(w.of_code_phase, w.of_partner_phase);
    signals.values += pair.values;
    signals.square += pair.square;
    signals.derived_square += DerivedVariance(w, f_code, f_partner) *
                              SquaresLessMovingMean(pair.values, MeanWindowOf(scenario.interval_s));
  }
  proof.Check(all.size() > 10, "too few pairs of signals");
  return all;
}

void Describe(Proof& proof) {
  proof.injected =
      "white noise of 1 mm on every phase; codes have no error; the atmosphere is simulated. At 30 s and 1 "
      "s, every satellite above the horizon";
  proof.must_say =
      "the phase noise times the weights of the multipath combination, code P_a + c1 L_a + c2 L_b with c1 = "
      "-(f_a^2 + f_b^2)/(f_a^2 - f_b^2), c2 = 2 f_b^2/(f_a^2 - f_b^2) (Estey and Meertens 1999): s sqrt(c1^2 "
      "+ c2^2), minus the moving mean as above. This is the multipath figure of a receiver without code "
      "error, and the reason why the figure of a pair with close carriers exceeds its code error";
  proof.tolerance = "five standard errors, that is 5/sqrt(2 n) of the derived RMS; no restart anywhere";
  proof.reason =
      "the RMS of n independent normal values scatters by 1/sqrt(2 n). The derived RMS includes the rounding "
      "of the three observations of a value, each uniform over a thousandth";
}

}  // namespace

void ProveMultipathPhase(bool long_form, Proof& proof) {
  Describe(proof);
  ProofTable table{"White phase noise of 1 mm.",
                   {"interval, s", "code", "sqrt(c1^2 + c2^2)", "values", "derived RMS, m", "RMS, m",
                    "off, standard errors"},
                   {},
                   2};
  for (const double interval_s : {1.0, 30.0}) {
    // Not so long that a satellite that has set returns: its averaging would restart then.
    const int epochs = long_form ? (interval_s < 30 ? 3600 : 480) : 360;
    for (const auto& [name, noise] : RunPhaseNoise(PhaseScenario(interval_s, epochs), proof)) {
      const double n = static_cast<double>(noise.values);
      const double measured = std::sqrt(noise.square / n), derived = std::sqrt(noise.derived_square / n);
      const double errors = (measured / derived - 1) * std::sqrt(2 * n);
      proof.Check(std::fabs(errors) <= kStandardErrors,
                  fmt::format("{} s {}: {} m, derived {} m", interval_s, name, measured, derived));
      table.rows.push_back({Number(interval_s, 0), name, Number(noise.gain, 2), std::to_string(noise.values),
                            Number(derived, 5), Number(measured, 5), fmt::format("{:+.1f}", errors)});
    }
  }
  proof.tables = {table};
}

}  // namespace orsolva_test
