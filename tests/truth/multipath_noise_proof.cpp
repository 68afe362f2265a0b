#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "host/observation/physical_constants.h"
#include "tests/truth/observed_run.h"
#include "tests/truth/proof.h"

namespace orsolva_test {
namespace {

using orsolva_host::SatelliteTruth;
using orsolva_host::Scenario;
using orsolva_host::SignalTruth;

constexpr double kNoise_m = 0.4;
constexpr double kStandardErrors = 5;
constexpr double kRounding = 0.0005;  // of the three decimals of a cell: metres of code, cycles of phase

/// Figures of a band, pooled over satellites and codes.
struct BandNoise {
  std::uint64_t values = 0;
  double measured_square = 0, derived_square = 0, true_square = 0;
  double largest_difference = 0, largest_bound = 0;
};

using Partners = std::map<std::tuple<int, int, int>, std::set<int>>;

Scenario NoiseScenario(double interval_s, int epochs) {
  Scenario scenario;
  scenario.interval_s = interval_s;
  scenario.hours = epochs * interval_s / 3600;
  scenario.seed = 5 + static_cast<std::uint64_t>(10 * interval_s);  // noise of its own
  scenario.receiver.position_m = kEasternSite;
  scenario.receiver.cutoff_deg = kTruthCutoff_deg + 2;  // every value given is a value counted
  scenario.errors.phase_noise_m = {};
  return scenario;
}

/// What the rounded cells of code and phases can add to a residual: the error of a value and of a mean.
double RoundingBound(const ObservedRun& run, int system, int prn, int code, const std::set<int>& partners) {
  const ElevationRule rule(run.simulation().sky(), run.simulation().Settings());
  double most = 0;
  for (const int partner : partners) {
    const double fa = FrequencyOf(system, code, rule.Channel(system, prn));
    const double fb = FrequencyOf(system, partner, rule.Channel(system, prn));
    const MultipathWeights w = WeightsOf(fa, fb);
    const double phases = std::fabs(w.of_code_phase) * orsolva_host::kLightSpeed_m_s / fa +
                          std::fabs(w.of_partner_phase) * orsolva_host::kLightSpeed_m_s / fb;
    most = std::max(most, 2 * kRounding * (1 + phases) + 1e-6);
  }
  return most;
}

void AddSignal(const ObservedRun& run, const code_qc_entry& entry, const SignalTruth& truth, double bound,
               BandNoise& band) {
  const double n = static_cast<double>(entry.mp_count);
  band.values += entry.mp_count;
  band.measured_square += entry.mp_rms * entry.mp_rms * n;
  band.true_square += truth.detrended_square.sum;
  const double interval = run.simulation().Settings().interval_s;
  band.derived_square += kNoise_m * kNoise_m * SquaresLessMovingMean(entry.mp_count, MeanWindowOf(interval));
  const double difference = std::fabs(entry.mp_rms - std::sqrt(truth.detrended_square.Mean()));
  band.largest_difference = std::max(band.largest_difference, difference);
  band.largest_bound = std::max(band.largest_bound, bound);
}

/// Runs a scenario and pools the codes that were tracked in one piece.
std::map<std::string, BandNoise> NoiseByBand(const Scenario& scenario, Proof& proof) {
  Partners partners;
  const ObservedRun run(scenario, [&partners](const orsolva::PairEpochDetail& detail) {
    if (!detail.has_multipath) return;
    const auto [system, prn, code, partner] = KeyOf(detail);
    partners[{system, prn, code}].insert(partner);
  });
  proof.Check(run.Good(), "a batch was refused");
  std::map<std::string, BandNoise> bands;
  for (const SatelliteTruth& satellite : run.simulation().TruthSoFar().satellites) {
    for (const SignalTruth& signal : satellite.signals) {
      const int system = SystemCodeOf(satellite.system);
      const auto pairs = partners.find({system, satellite.number, signal.number});
      if (signal.arcs != 1 || signal.tracked < 2 || pairs == partners.end()) continue;
      const std::string name = NameOf(system, satellite.number) + " " + signal.name;
      const code_qc_entry* entry = run.EntryOf(system, satellite.number, signal.number);
      proof.Check(entry != nullptr && entry->mp_count == signal.tracked, name + ": count of values");
      if (entry == nullptr) continue;
      const double bound = RoundingBound(run, system, satellite.number, signal.number, pairs->second);
      const double difference = std::fabs(entry->mp_rms - std::sqrt(signal.detrended_square.Mean()));
      proof.Check(difference <= bound, fmt::format("{}: {} m off", name, difference));
      AddSignal(run, *entry, signal, bound, bands[BandLabel(system, signal.number)]);
    }
  }
  return bands;
}

void AddNoiseRows(double interval_s, int epochs, ProofTable& table, Proof& proof) {
  Scenario scenario = NoiseScenario(interval_s, epochs);
  scenario.errors.code_noise_m = {kNoise_m, kNoise_m};
  scenario.errors.multipath_m = {};
  const int window = MeanWindowOf(interval_s);
  for (const auto& [name, band] : NoiseByBand(scenario, proof)) {
    const double n = static_cast<double>(band.values);
    const double measured = std::sqrt(band.measured_square / n), derived = std::sqrt(band.derived_square / n);
    const double errors = (measured / derived - 1) * std::sqrt(2 * n);
    proof.Check(std::fabs(errors) <= kStandardErrors,
                fmt::format("{} s {}: {} m, derived {} m", interval_s, name, measured, derived));
    table.rows.push_back({Number(interval_s, 1), name, std::to_string(window), std::to_string(band.values),
                          Number(std::sqrt(1 - 1.0 / window), 4), Number(derived, 4), Number(measured, 4),
                          fmt::format("{:+.1f}", errors)});
  }
}

void AddErrorRows(double interval_s, int epochs, ProofTable& table, Proof& proof) {
  for (const auto& [name, band] : NoiseByBand(NoiseScenario(interval_s, epochs), proof)) {
    const double n = static_cast<double>(band.values);
    table.rows.push_back({Number(interval_s, 1), name, std::to_string(band.values),
                          Number(std::sqrt(band.true_square / n), 4),
                          Number(std::sqrt(band.measured_square / n), 4),
                          Number(1000 * band.largest_difference, 3), Number(1000 * band.largest_bound, 1)});
  }
}

void Describe(Proof& proof) {
  proof.injected =
      "first white code noise of 0.4 m on every signal, then the full error model: noise and a slow periodic "
      "part that both grow towards the horizon. Phases have no noise; the atmosphere is simulated";
  proof.must_say =
      "the RMS of the injected error minus its moving mean. White noise with standard deviation s, minus the "
      "mean of the last N values including itself, has the variance s^2 ((1 - 1/N)^2 + (N - 1)/N^2) = s^2 (1 "
      "- 1/N); for the first N values N is replaced by k = 1, 2, ... The RMS of n values is therefore s "
      "sqrt(sum (1 - 1/min(k, N)) / n), approximately s sqrt(1 - 1/N): 0.9899 s for the window of 50 epochs "
      "(up to 5 s), 0.9747 s for 20 (15 s), 0.9487 s for 10 (30 s). Range, clocks, troposphere and "
      "first-order ionosphere must vanish";
  proof.tolerance =
      "against the derived RMS five standard errors, that is 5/sqrt(2 n) of it; against the injected values "
      "themselves, satellite by satellite, the rounding of the observations, at most 2 (0.5 mm + 0.0005 "
      "cycles (|c1| lambda_a + |c2| lambda_b))";
  proof.reason =
      "the RMS of n independent normal values scatters by 1/sqrt(2 n); adjacent residuals are almost "
      "uncorrelated (-k/N^2 at lag k). The rounding bound is the largest error of one value plus that of the "
      "mean, and two RMS values differ by no more than the RMS of the difference. It is large for BDS band "
      "1, whose partner at 1561 MHz is so close that the phases enter with weights of more than a hundred";
}

}  // namespace

void ProveMultipathNoise(bool long_form, Proof& proof) {
  Describe(proof);
  ProofTable noise{"White noise of 0.4 m.",
                   {"interval, s", "band", "window", "values", "sqrt(1 - 1/N)", "derived RMS, m", "RMS, m",
                    "off, standard errors"},
                   {},
                   2};
  ProofTable errors{"The full error model.",
                    {"interval, s", "band", "values", "injected RMS minus moving mean, m", "RMS, m",
                     "largest difference of a satellite, mm", "bound, mm"},
                    {},
                    2};
  for (const double interval_s : {0.1, 1.0, 15.0, 30.0}) {
    const int epochs = long_form ? 3600 : 360;
    AddNoiseRows(interval_s, epochs, noise, proof);
    AddErrorRows(interval_s, epochs, errors, proof);
  }
  proof.tables = {noise, errors};
}

}  // namespace orsolva_test
