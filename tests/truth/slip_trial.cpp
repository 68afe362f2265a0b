#include "tests/truth/slip_trial.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/observation/physical_constants.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "tests/truth/faulty_scenarios.h"

namespace orsolva_test {
namespace {

using orsolva::PairEpochDetail;
using orsolva_host::FaultKind;
using orsolva_host::Scenario;

constexpr int kPeriod = 60;  ///< epochs between two slips of a signal
constexpr int kFirstSlip = 10;
constexpr double kRounding_cycles = 0.0011;  // of two phases, 0.0005 cycles each

/// Every pair of a run by epoch.
using History = std::map<PairKey, std::vector<PairEpochDetail>>;

/// Slips of one size, alternately up and down: no two signals of a satellite in one epoch, and few signals of
/// all at once, so that the median of the epoch holds.
Scenario WithSlips(Scenario scenario, const orsolva_host::Sky& sky, double size) {
  const auto epochs = static_cast<int>(std::lround(scenario.hours * 3600 / scenario.interval_s));
  int signal = 0;
  for (const orsolva_host::SkySatellite& satellite : sky.Satellites()) {
    for (const std::string& name : SignalsOf(scenario, satellite.system, satellite.number)) {
      int sign = 1;
      for (int epoch = kFirstSlip + 7 * ++signal % kPeriod; epoch < epochs; epoch += kPeriod, sign = -sign) {
        scenario.faults.push_back(MakeFault(FaultKind::kSlip, epoch * scenario.interval_s, 0, sign * size,
                                            {satellite.system, satellite.number, name}));
      }
    }
  }
  return scenario;
}

History Record(const Scenario& scenario, Proof& proof, orsolva_host::Truth& truth) {
  History history;
  SlipRuleChecker checker(scenario, proof);
  ByEpoch epochs([&checker](const std::vector<PairEpochDetail>& epoch) { checker.CheckEpoch(epoch); });
  const auto count = static_cast<std::size_t>(std::lround(scenario.hours * 3600 / scenario.interval_s));
  const ObservedRun run(scenario, [&](const PairEpochDetail& d) {
    std::vector<PairEpochDetail>& pair = history[KeyOf(d)];
    pair.resize(count);
    pair[static_cast<std::size_t>(EpochNumber(scenario, d.time))] = d;
    epochs.Add(d);
  });
  epochs.Finish();
  proof.Check(run.Good(), "a batch was refused");
  truth = run.simulation().TruthSoFar();
  return history;
}

/// One slip on a code of a satellite.
struct Slip {
  int system, prn, code;
  std::size_t epoch;
  double metres;
};

/// What a slip does to a pair, against the same epoch without slips.
class SlipJudge {
 public:
  SlipJudge(const History& quiet, const History& slipped, Proof& proof)
      : quiet_(&quiet), slipped_(&slipped), proof_(&proof) {}

  void Judge(const Slip& slip, double tolerance_m, Detection& tally) const {
    for (const auto& [key, pair] : *slipped_) {
      const auto [system, prn, code, partner] = key;
      if (system != slip.system || prn != slip.prn || (code != slip.code && partner != slip.code)) continue;
      const PairEpochDetail& now = pair[slip.epoch];
      const PairEpochDetail& before = quiet_->at(key)[slip.epoch];
      if (!now.has_geometry_free_step || !now.counting) continue;
      JudgeGeometryFree(slip, key, now, before, tolerance_m);
      if (code != slip.code) continue;
      JudgeGeometry(slip, now, before, tolerance_m);
      ++tally.pairs;
      tally.geometry_free_limit_m = now.geometry_free_threshold_m;
      if (now.ionosphere_slip != orsolva::IonosphereSlipReason::kNone) ++tally.geometry_free;
      if (now.geometry_slip != orsolva::GeometrySlipReason::kNone) ++tally.geometry;
    }
  }

 private:
  void JudgeGeometryFree(const Slip& slip, const PairKey& key, const PairEpochDetail& now,
                         const PairEpochDetail& before, double tolerance_m) const {
    const bool code_slips = std::get<2>(key) == slip.code;
    const double sign = FrequenciesOf(key, 0).code_is_first == code_slips ? -1 : 1;
    const double seen = sign * (now.geometry_free_step_m - before.geometry_free_step_m);
    proof_->Check(std::fabs(seen - slip.metres) <= tolerance_m, "geometry-free step does not hold the slip");
  }

  void JudgeGeometry(const Slip& slip, const PairEpochDetail& now, const PairEpochDetail& before,
                     double tolerance_m) const {
    const double seen = now.difference_m - before.difference_m;
    proof_->Check(std::fabs(seen - slip.metres) <= tolerance_m, "phase change does not hold the slip");
  }

  const History* quiet_;
  const History* slipped_;
  Proof* proof_;
};

}  // namespace

Scenario SlipScenario(double interval_s, int epochs, bool stormy) {
  Scenario scenario;
  scenario.interval_s = interval_s;
  scenario.hours = epochs * interval_s / 3600;
  scenario.seed = 40 + static_cast<std::uint64_t>(10 * interval_s);
  scenario.receiver.position_m = kEasternSite;
  scenario.receiver.cutoff_deg = kTruthCutoff_deg + 2;
  if (stormy) {
    const double period_s = std::min(600.0, epochs * interval_s);
    scenario.faults.push_back(MakeFault(FaultKind::kIonoStorm, 0, 0, 15 * period_s / 600));
    scenario.faults.back().period_s = period_s;
  }
  return scenario;
}

std::map<std::string, Detections> RunSlipTrial(const Scenario& scenario, Proof& proof) {
  const orsolva_host::Sky sky(scenario);
  const ElevationRule satellites(sky, scenario);
  orsolva_host::Truth truth;
  const History quiet = Record(scenario, proof, truth);
  std::map<std::string, Detections> bands;
  for (std::size_t k = 0; k < kSlipSizes.size(); ++k) {
    const History slipped = Record(WithSlips(scenario, sky, kSlipSizes[k]), proof, truth);
    const SlipJudge judge(quiet, slipped, proof);
    for (const orsolva_host::InjectedFault& fault : truth.faults) {
      if (fault.kind != "slip" || !fault.seen) continue;
      const int system = SystemCodeOf(fault.satellite[0]), prn = std::stoi(fault.satellite.substr(1));
      const int code = orsolva_host::SignalNumber(system, fault.signal, 3.05);
      const double wavelength =
          orsolva_host::kLightSpeed_m_s / FrequencyOf(system, code, satellites.Channel(system, prn));
      const auto epoch = static_cast<std::size_t>(EpochNumber(scenario, fault.time));
      Detection& tally = bands[BandLabel(system, code)][k];
      ++tally.slips;
      judge.Judge({system, prn, code, epoch, fault.size * wavelength}, kRounding_cycles * wavelength, tally);
    }
  }
  return bands;
}

}  // namespace orsolva_test
