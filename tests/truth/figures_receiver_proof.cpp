#include <fmt/format.h>

#include <cmath>

#include "host/simulator/presets.h"
#include "host/simulator/scenario_json.h"
#include "tests/truth/analyzed_run.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::ObservationEpoch;
using orsolva_host::Scenario;
using orsolva_host::Simulation;

/// A scenario by preset and changes, and what is true of its receiver.
struct ReceiverCase {
  const char* name;
  const char* preset;
  const char* changes;
  bool moving;
  std::size_t resets, code_jumps;
  bool steered;
};

constexpr ReceiverCase kCases[] = {
    {"at rest, clock drifts 1 ns/s", "quiet", R"({"receiver": {"clock_drift": 1e-9}})", false, 0, 0, false},
    {"header 25 m off", "quiet", R"({"faults": [{"kind": "header_offset", "size": 25}]})", false, 0, 0,
     false},
    {"clock drifts and is reset", "clock", "{}", false, 9, 0, false},
    {"clock and codes jump", "clock-jumps", R"({"seed": 7401})", false, 5, 2, false},
    {"clock walks 5e-10 s per root second", "quiet", R"({"receiver": {"clock_walk": 5e-10}})", false, 0, 0,
     false},
    {"clock steered", "steered-clock", "{}", false, 0, 0, true},
    {"antenna on a circle at 15 m/s", "kinematic", "{}", true, 0, 0, false},
};

/// Here the simulator's troposphere (by the cosecant of the elevation) and that of the analysis (Niell 1996)
/// differ by decimetres and more. Low satellites have little weight, and what theirs change by is learned as
/// an offset of their own.
constexpr double kLowest_deg = 5;
/// Of a moving antenna, whose shift is solved with the clock: low satellites would pull at both.
constexpr double kLowestMoving_deg = 15;

struct ClockTruth {
  std::vector<double> bias_s;
  double MeanBias() const {
    double sum = 0;
    for (const double bias : bias_s) sum += bias;
    return sum / static_cast<double>(bias_s.size());
  }
  /// Of the bias with whole milliseconds of its steps taken off.
  double Drift(double interval_s) const {
    double sum = 0;
    for (std::size_t i = 1; i < bias_s.size(); ++i) {
      const double step = bias_s[i] - bias_s[i - 1];
      sum += step - 1e-3 * std::round(step / 1e-3);
    }
    return sum / (interval_s * static_cast<double>(bias_s.size() - 1));
  }
};

double Distance(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

Scenario ScenarioOf(const ReceiverCase& one) {
  Scenario scenario;
  scenario.seed = 7401;
  ReadScenario(orsolva_host::FindPreset(one.preset)->json, scenario);
  ReadScenario(one.changes, scenario);
  scenario.receiver.cutoff_deg = one.moving ? kLowestMoving_deg : kLowest_deg;
  return scenario;
}

void CheckPosition(const ReceiverCase& one, const AnalyzedRun& run, Proof& proof) {
  const auto& position = run.result.position;
  const std::string name = one.name;
  proof.Check(position.moving == one.moving, name + ": moving or not");
  proof.Check(position.solutions.value_or(0) == run.truth.delivered_epochs, name + ": solutions");
  proof.Check(position.mean_m.has_value() != one.moving,
              name + ": a mean of a moving antenna, or none at rest");
  if (one.moving || !position.mean_m) return;
  const double off = Distance(*position.mean_m, run.truth.position_m);
  proof.Check(off < 0.3, fmt::format("{}: position {:.2f} m off", name, off));
}

void CheckClock(const ReceiverCase& one, const AnalyzedRun& run, const ClockTruth& truth, Proof& proof) {
  const auto& clock = run.result.receiver_clock;
  const std::string name = one.name;
  proof.Check(clock.resets == one.resets, fmt::format("{}: {} resets", name, clock.resets.value_or(0)));
  proof.Check(clock.code_clock_jumps == one.code_jumps, name + ": code jumps");
  proof.Check(clock.steered == one.steered, name + ": steered or not");
  const double offset_off = std::fabs(clock.mean_offset_s.value_or(1) - truth.MeanBias());
  proof.Check(offset_off < 2e-9, fmt::format("{}: offset {:.2e} s off", name, offset_off));
  if (one.code_jumps > 0) return;
  const double drift_off = std::fabs(clock.drift_s_per_s.value_or(1) - truth.Drift(run.truth.interval_s));
  // Over two hours low satellites that rise and that set do not balance as they do over a day.
  proof.Check(drift_off < (one.moving ? 2e-12 : 1e-12), fmt::format("{}: drift {:.2e} off", name, drift_off));
}

void CheckAllan(const AnalyzedRun& run, double walk, Proof& proof) {
  const auto& clock = run.result.receiver_clock;
  const double expected = walk / std::sqrt(run.truth.interval_s), expected_10 = expected / std::sqrt(10.0);
  proof.Check(
      std::fabs(clock.allan_deviation.value_or(0) / expected - 1) < 0.06,
      fmt::format("Allan deviation {:.3e} instead of {:.3e}", clock.allan_deviation.value_or(0), expected));
  proof.Check(std::fabs(clock.allan_deviation_10.value_or(0) / expected_10 - 1) < 0.2,
              fmt::format("at ten intervals {:.3e} instead of {:.3e}", clock.allan_deviation_10.value_or(0),
                          expected_10));
}

std::string Scientific(const std::optional<double>& value) {
  return value ? fmt::format("{:.3e}", *value) : std::string("-");
}

}  // namespace

void ProveReceiverFigures(bool long_form, Proof& proof) {
  proof.figures = {"solution_ecef_m",       "position_solutions",      "antenna_moves",
                   "solution_to_header_m",  "receiver_clock_offset_s", "receiver_clock_drift_s_per_s",
                   "receiver_clock_resets", "code_clock_jumps",        "receiver_clock_steered",
                   "allan_deviation",       "allan_deviation_10"};
  proof.injected =
      "a receiver at rest and one on a circle, a header 25 m off, clocks that drift, are reset, jump, walk "
      "and are "
      "steered; the full error model";
  proof.must_say =
      "a solution at every epoch; position, moving or not; mean offset and drift of the clock, resets and "
      "code jumps, "
      "steered or not; the Allan deviation q / sqrt(t) of a random walk of q per root second";
  proof.tolerance =
      "0.3 m in position, 2 ns in offset, 1e-12 in drift (2e-12 over the two hours of the moving antenna), 6 "
      "% and "
      "20 % in the Allan deviation at one and ten "
      "intervals; none for counts";
  proof.reason =
      "the simulated broadcast orbits are exact, so a day's median of positions scatters by the metre of a "
      "single "
      "solution over the root of the independent ones; what is left of the drift is the difference of the "
      "tropospheres "
      "of simulator and analysis, with satellites from 5 degrees up and, where the antenna moves and its "
      "shift is "
      "solved with the clock, from 15 degrees; an Allan "
      "variance of n "
      "pairs scatters by some 1/sqrt(n)";
  ProofTable table{"By case.",
                   {"case", "solutions", "position off, m", "header off, m", "moving", "offset off, ns",
                    "drift", "drift off", "Allan deviation", "at ten", "resets", "code jumps", "steered"},
                   {},
                   1};
  for (const ReceiverCase& one : kCases) {
    Scenario scenario = ScenarioOf(one);
    if (long_form && scenario.interval_s == 30 && std::string(one.preset) == "quiet") scenario.hours = 48;
    ClockTruth truth;
    const AnalyzedRun run = Analyze(scenario, {}, [&](const Simulation& s, const ObservationEpoch&) {
      truth.bias_s.push_back(s.ClockBias());
    });
    CheckPosition(one, run, proof);
    CheckClock(one, run, truth, proof);
    if (scenario.receiver.clock_walk == 5e-10) CheckAllan(run, scenario.receiver.clock_walk, proof);
    const auto& position = run.result.position;
    const auto& clock = run.result.receiver_clock;
    if (std::string(one.name).find("header") == 0) {
      proof.Check(std::fabs(position.distance_to_header_m.value_or(0) - 25) < 0.3, "distance to the header");
    }
    table.rows.push_back(
        {one.name, std::to_string(position.solutions.value_or(0)),
         position.mean_m ? Number(Distance(*position.mean_m, run.truth.position_m), 3) : "-",
         position.distance_to_header_m ? Number(*position.distance_to_header_m, 2) : "-",
         position.moving.value_or(false) ? "yes" : "no",
         Number(1e9 * (clock.mean_offset_s.value_or(0) - truth.MeanBias()), 3),
         Scientific(clock.drift_s_per_s),
         fmt::format("{:.1e}", clock.drift_s_per_s.value_or(0) - truth.Drift(run.truth.interval_s)),
         Scientific(clock.allan_deviation), Scientific(clock.allan_deviation_10),
         std::to_string(clock.resets.value_or(0)), std::to_string(clock.code_clock_jumps.value_or(0)),
         clock.steered.value_or(false) ? "yes" : "no"});
  }
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
