// Sums of slips, steps, flags and interruptions, and what is said of satellites, against a recount.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/observation/carriers.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/scenario_json.h"
#include "tests/truth/analyzed_run.h"
#include "tests/truth/proof.h"
#include "tests/truth/simulated_run.h"

namespace orsolva_test {
namespace {

using orsolva_host::ObservationEpoch;
using orsolva_host::SatelliteId;
using orsolva_host::SatelliteObservation;
using orsolva_host::Scenario;
using orsolva_host::SignalObservation;
using orsolva_host::Simulation;
using orsolva_host::analysis::Count;
using orsolva_host::analysis::InterruptionFigures;
using orsolva_host::analysis::SignalFigures;
using orsolva_host::analysis::SlipFigures;

constexpr std::int64_t kLongestHole_ns = 600'000'000'000;
constexpr double kElevationDoubt_deg = 0.005;  // the analysis leaves out the signal's travel

/// Of one side of the cut-off.
struct Side {
  Count steps = 0, flags = 0, holes = 0;
  Count by_signal = 0, by_satellite = 0, by_receiver = 0;  ///< holes
  Count sure = 0, half = 0, unknown = 0;                   ///< slips injected within tracking
};

struct SignalCount {
  std::array<Side, 2> sides;  ///< below the cut-off, from it up
  std::int64_t last_ns = 0;
  Count dopplers = 0, doubtful = 0;
};

struct SatelliteCount {
  Count epochs = 0;
  std::int64_t first_ns = 0, last_ns = 0;
  double highest_deg = -90;
};

struct Recounted {
  std::map<std::pair<SatelliteId, std::string>, SignalCount> signals;
  std::map<SatelliteId, SatelliteCount> satellites;
  std::map<std::int64_t, std::set<SatelliteId>> delivered;

  void Take(const Simulation& simulation, const ObservationEpoch& epoch);
  void AddSlips(const orsolva_host::Truth& truth, double cutoff_deg);
  /// @param first_missing_ns  of the signal
  void AddHole(SatelliteId satellite, std::int64_t first_missing_ns, Side& side) const;
};

void Recounted::AddHole(SatelliteId satellite, std::int64_t first_missing_ns, Side& side) const {
  ++side.holes;
  const auto then = delivered.find(first_missing_ns);
  if (then == delivered.end() || then->second.empty()) {
    ++side.by_receiver;
  } else {
    ++(then->second.count(satellite) > 0 ? side.by_signal : side.by_satellite);
  }
}

void Recounted::Take(const Simulation& simulation, const ObservationEpoch& epoch) {
  const double cutoff_deg = simulation.Settings().truth_cutoff_deg;
  const std::int64_t interval_ns = std::llround(simulation.Settings().interval_s * 1e9);
  std::map<SatelliteId, double> elevations;
  for (const auto& m : simulation.Moments())
    elevations[{m.system, static_cast<std::uint8_t>(m.number)}] = m.elevation_rad / orsolva_host::kRadian;
  for (const SatelliteObservation& s : epoch.satellites) {
    const double elevation_deg = elevations.at(s.id);
    delivered[epoch.time_ns].insert(s.id);
    SatelliteCount& satellite = satellites[s.id];
    if (satellite.epochs++ == 0) satellite.first_ns = epoch.time_ns;
    satellite.last_ns = epoch.time_ns;
    satellite.highest_deg = std::max(satellite.highest_deg, elevation_deg);
    for (std::size_t i = 0; i < s.signal_count; ++i) {
      const SignalObservation& o = epoch.signals[s.first_signal + i];
      SignalCount& signal = signals[{s.id, NameOf(o.code)}];
      signal.dopplers += !std::isnan(o.doppler_hz);
      signal.doubtful += std::fabs(elevation_deg - cutoff_deg) < kElevationDoubt_deg;
      Side& side = signal.sides[elevation_deg >= cutoff_deg];
      const std::int64_t away_ns = epoch.time_ns - std::exchange(signal.last_ns, epoch.time_ns);
      if (away_ns > kLongestHole_ns) continue;  // an arc begins
      ++side.steps;
      side.flags += (o.loss_of_lock & 1) != 0;
      if (away_ns > interval_ns) AddHole(s.id, epoch.time_ns - away_ns + interval_ns, side);
    }
  }
}

void Recounted::AddSlips(const orsolva_host::Truth& truth, double cutoff_deg) {
  for (const auto& [key, slips] : InjectedSlips(truth)) {
    for (const auto& [signal, size] : slips.sizes) {
      const auto counted = signals.find({key.second, signal});
      if (counted == signals.end()) continue;
      Side& side = counted->second.sides[slips.elevation_deg >= cutoff_deg];
      const double twice = 2 * size;
      ++(size == std::round(size) ? side.sure : twice == std::round(twice) ? side.half : side.unknown);
    }
  }
}

bool Differ(const std::optional<Count>& found, Count truth, Count doubtful) {
  const Count value = found.value_or(0);
  return (value > truth ? value - truth : truth - value) > doubtful;
}

struct Sums {
  Side truth;
  Count tested = 0, untested = 0, slips = 0, sure = 0, unsure = 0, half = 0, unknown = 0, flags = 0,
        holes = 0;
};

void CheckSlips(const SlipFigures& found, const Side& truth, Count doubtful, const std::string& name,
                Sums& sums, Proof& proof) {
  const Count tested = found.tested_steps.value_or(0), untested = found.untested_steps.value_or(0);
  proof.Check(!Differ(tested + untested, truth.steps, doubtful),
              fmt::format("{}: {} and {} steps instead of {}", name, tested, untested, truth.steps));
  proof.Check(untested <= truth.holes, fmt::format("{}: {} untested steps", name, untested));
  const Count weak = found.weakly_tested_steps.value_or(0);
  proof.Check(weak <= tested, fmt::format("{}: {} weakly tested of {}", name, weak, tested));
  const Count sure = found.sure.value_or(0), unsure = found.unsure.value_or(0);
  proof.Check(sure + unsure == truth.sure,
              fmt::format("{}: {} and {} whole slips instead of {}", name, sure, unsure, truth.sure));
  proof.Check(found.half_cycles.value_or(0) == truth.half, name + ": half cycles");
  proof.Check(!Differ(found.loss_of_lock_flags, truth.flags, doubtful), name + ": loss-of-lock flags");
  const Count slips = sure + unsure + found.half_cycles.value_or(0) + found.unknown_size.value_or(0);
  if (tested >= 100) {
    const double n = static_cast<double>(tested), z = static_cast<double>(slips);
    proof.Check(found.slips_per_1000 == 1000 * z / n, name + ": slips per 1,000");
    proof.Check(slips > 0 ? found.observations_per_slip == n / z : found.observations_without_slip == tested,
                name + ": observations per slip");
  }
  sums.tested += tested, sums.untested += untested, sums.sure += sure, sums.unsure += unsure;
  sums.half += found.half_cycles.value_or(0), sums.unknown += found.unknown_size.value_or(0);
  sums.flags += found.loss_of_lock_flags.value_or(0);
  sums.truth.steps += truth.steps, sums.truth.flags += truth.flags, sums.truth.holes += truth.holes;
  sums.truth.sure += truth.sure, sums.truth.half += truth.half, sums.truth.unknown += truth.unknown;
}

void CheckHoles(const InterruptionFigures& found, const Side& truth, Count doubtful, const std::string& name,
                Sums& sums, Proof& proof) {
  const Count causes =
      found.by_signal.value_or(0) + found.by_satellite.value_or(0) + found.by_receiver.value_or(0);
  const Count ends = found.continuous.value_or(0) + found.slipped.value_or(0) + found.unresolved.value_or(0);
  const Count either = std::min<Count>(doubtful, 1);
  proof.Check(!Differ(causes, truth.holes, either),
              fmt::format("{}: {} interruptions instead of {}", name, causes, truth.holes));
  proof.Check(!Differ(found.by_signal, truth.by_signal, either), name + ": interruptions of the signal");
  proof.Check(!Differ(found.by_satellite, truth.by_satellite, either), name + ": of the satellite");
  proof.Check(!Differ(found.by_receiver, truth.by_receiver, either), name + ": of the receiver");
  proof.Check(causes == ends, name + ": interruptions and how they ended");
  sums.holes += causes;
}

/// What the analysis says of each satellite.
void CheckSatellites(const AnalyzedRun& run, const Recounted& truth, Proof& proof) {
  std::map<char, Count> satellites;
  for (const auto& row : run.result.satellites) {
    const std::string name = NameOf(row.id);
    const auto counted = truth.satellites.find(row.id);
    proof.Check(counted != truth.satellites.end(), name + " was never delivered");
    if (counted == truth.satellites.end()) continue;
    const SatelliteCount& one = counted->second;
    proof.Check(row.observed_epochs == one.epochs, name + ": epochs");
    proof.Check(row.first_ns == one.first_ns && row.last_ns == one.last_ns, name + ": first or last");
    proof.Check(!row.has_record || std::fabs(row.highest_deg.value_or(0) - one.highest_deg) < 0.01,
                name + ": highest elevation");
    ++satellites[row.id.system];
  }
  for (const auto& system : run.result.systems) {
    proof.Check(system.satellites_observed == satellites[system.letter],
                fmt::format("{}: satellites", system.letter));
  }
  for (const SignalFigures& row : run.result.satellite_signals) {
    const std::string name = NameOf(row.satellite) + " " + NameOf(row.code);
    proof.Check(row.dopplers == truth.signals.at({row.satellite, NameOf(row.code)}).dopplers,
                name + ": Doppler");
    const double carrier = orsolva_host::CarrierFrequency(row.system, row.code.band, 0);
    const double tolerance_hz = row.system == 'R' ? 7 * 562500.0 : 0;
    proof.Check(row.frequency_hz && std::fabs(*row.frequency_hz - carrier) <= tolerance_hz,
                name + ": frequency");
  }
  for (const SignalFigures& row : run.result.signals) {
    const auto with = std::count_if(
        run.result.satellite_signals.begin(), run.result.satellite_signals.end(),
        [&](const SignalFigures& one) { return one.system == row.system && one.code == row.code; });
    proof.Check(row.satellites == static_cast<Count>(with), row.system + NameOf(row.code) + ": satellites");
  }
}

Scenario Slipping(double hours) {
  Scenario scenario;
  ReadScenario(R"({"observables": {"doppler": true},
    "receiver": {"lock_flags": {"at_slip": 0.9, "at_acquisition": 1, "without_slip": 0.002}},
    "faults": [{"kind": "slip", "size": 3, "random": 40}, {"kind": "slip", "size": -7, "random": 20},
      {"kind": "slip", "size": 0.5, "random": 20}, {"kind": "slip", "size": 5, "random": 20,
       "random_above_deg": 6}, {"kind": "outage", "duration_s": 90, "random": 40, "random_above_deg": 6},
      {"kind": "outage", "satellite": "G", "duration_s": 60, "at_s": 10000},
      {"kind": "outage", "satellite": "C", "duration_s": 120, "at_s": 30000},
      {"kind": "outage", "duration_s": 90, "at_s": 50000}, {"kind": "power_failure", "duration_s": 60, "at_s": 70000}]})",
               scenario);
  scenario.seed = 7901;
  scenario.hours = hours;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  return scenario;
}

std::vector<std::string> RowOf(const std::string& name, const Sums& sums) {
  const auto text = [](Count n) { return std::to_string(n); };
  return {name,
          text(sums.truth.steps),
          text(sums.tested),
          text(sums.untested),
          text(sums.truth.sure),
          text(sums.sure),
          text(sums.unsure),
          text(sums.truth.half),
          text(sums.half),
          text(sums.truth.flags),
          text(sums.flags),
          text(sums.truth.holes),
          text(sums.holes)};
}

void ProveCounts(double hours, ProofTable& table, Proof& proof) {
  Recounted truth;
  const Scenario scenario = Slipping(hours);
  const AnalyzedRun run =
      Analyze(scenario, {}, [&](const Simulation& s, const ObservationEpoch& e) { truth.Take(s, e); });
  truth.AddSlips(run.truth, scenario.truth_cutoff_deg);
  Sums up, below;
  for (const SignalFigures& row : run.result.satellite_signals) {
    const std::string name = NameOf(row.satellite) + " " + NameOf(row.code);
    const SignalCount& one = truth.signals.at({row.satellite, NameOf(row.code)});
    CheckSlips(row.slips, one.sides[1], one.doubtful, name, up, proof);
    CheckSlips(row.slips_below_cutoff, one.sides[0], one.doubtful, name + " below the cut-off", below, proof);
    CheckHoles(row.interruptions, one.sides[1], one.doubtful, name, up, proof);
    CheckHoles(row.interruptions_below_cutoff, one.sides[0], one.doubtful, name + " below the cut-off", below,
               proof);
  }
  Count with_slip = 0, flagged = 0;
  for (const SignalFigures& row : run.result.signals)
    with_slip += row.slips.loss_of_lock_with_slip.value_or(0);
  for (const SignalFigures& row : run.result.signals)
    with_slip += row.slips_below_cutoff.loss_of_lock_with_slip.value_or(0);
  for (const orsolva_host::InjectedFault& fault : run.truth.faults) flagged += fault.seen && fault.flagged;
  proof.Check(with_slip >= flagged && with_slip <= flagged + up.truth.holes + below.truth.holes,
              fmt::format("{} flags with a slip, {} slips flagged", with_slip, flagged));
  CheckSatellites(run, truth, proof);
  table.rows.push_back(RowOf("from 10 degrees up", up));
  table.rows.push_back(RowOf("below", below));
}

/// What is missing or out of order: records of a system, a satellite that is never tracked, epochs that come
/// twice or late, a receiver that begins again, glitches of clocks.
void ProveMissing(ProofTable& table, Proof& proof) {
  Scenario scenario;
  ReadScenario(R"({"systems": "GREC", "faults": [{"kind": "outage", "satellite": "G05", "duration_s": 100000},
    {"kind": "duplicate_epoch", "at_s": 5000}, {"kind": "duplicate_epoch", "at_s": 9000}, {"kind": "late_delivery", "at_s": 12000},
    {"kind": "power_failure", "at_s": 30000}, {"kind": "power_failure", "at_s": 50000},
    {"kind": "satellite_clock", "size": 0.9, "random": 8}, {"kind": "slip", "size": 6.27, "random": 8, "random_above_deg": 45}]})",
               scenario);
  scenario.seed = 7902;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  RunOptions options;
  options.without_records = "E";
  const AnalyzedRun run = Analyze(scenario, options);
  const auto add = [&](const std::string& what, Count expected, Count found, Count doubtful) {
    proof.Check(!Differ(found, expected, doubtful),
                fmt::format("{}: {} instead of {}", what, found, expected));
    table.rows.push_back({what, std::to_string(expected), std::to_string(found)});
  };
  add("epochs out of order", 3, run.result.span.disordered_epochs.value_or(0), 0);
  add("restarts of the receiver", 2, run.result.receiver_clock.restarts.value_or(0), 0);
  Count galileo = 0, clocks = 0, jumps = 0;
  std::set<std::string> without;
  for (const SatelliteId id : run.result.without_record) without.insert(NameOf(id));
  for (const auto& row : run.result.satellites) {
    galileo += row.id.system == 'E';
    proof.Check(row.has_record == (row.id.system != 'E'), NameOf(row.id) + ": record");
    proof.Check((without.count(NameOf(row.id)) == 1) == (row.id.system == 'E'), NameOf(row.id) + ": listed");
    clocks += row.satellite_clock_events.value_or(0);
    jumps += row.slips.unknown_size.value_or(0);
  }
  Count glitches = 0;
  for (const orsolva_host::InjectedFault& fault : run.truth.faults)
    glitches += fault.kind == "satellite_clock" && fault.seen;
  add("jumps of satellite clocks by 0.9 m", glitches, clocks, 0);
  add("jumps of a phase by 6.27 cycles", InjectedSlips(run.truth).size(), jumps, 0);
  add("satellites without a record", galileo, without.size(), 0);
  for (const auto& system : run.result.systems) {
    add(fmt::format("of system {}", system.letter), system.letter == 'E' ? galileo : 0,
        system.satellites_without_record.value_or(0), 0);
  }
  const auto& never = run.result.never_observed;
  proof.Check(never.size() == 1 && never[0].id == SatelliteOf("G05"), "G05 was never observed");
  for (const orsolva_host::SatelliteTruth& s : run.truth.satellites) {
    if (s.system != 'G' || s.number != 5 || never.empty()) continue;
    add("epochs of G05 above the cut-off", s.above_cutoff, never[0].healthy_epochs, 2);
  }
}

/// One cycle on all signals of single satellites, at times of their own.
Scenario EqualSlips(const char* storm, double hours) {
  std::string faults = storm;
  int number = 0;
  Scenario plain;
  plain.systems = "GREC";
  const Simulation simulation(plain);
  for (const auto& satellite : simulation.sky().Satellites()) {
    for (int round = 0; round < 6; ++round) {
      faults += fmt::format(R"({}{{"kind": "slip", "satellite": "{}{:02}", "size": 1, "at_s": {}}})",
                            faults.empty() ? "" : ",", satellite.system, satellite.number,
                            600 + 30 * (number++ * 467 % static_cast<int>(hours * 118)));
    }
  }
  Scenario scenario;
  ReadScenario("{\"systems\": \"GREC\", \"faults\": [" + faults + "]}", scenario);
  scenario.seed = 7903;
  scenario.hours = hours;
  scenario.receiver.position_m = {-3024831.536, 4928986.861, 2681262.589};
  return scenario;
}

/// Of steps called weakly tested at least one slip in six is missed, of the others at most: so many are
/// missed in all, but for three standard deviations of a count.
void ProveWeak(const char* name, const char* storm, double hours, ProofTable& table, Proof& proof) {
  const AnalyzedRun run = Analyze(EqualSlips(storm, hours));
  const SlipScore score = ScoreOf(run);
  double weak = 0, tested = 0;
  for (const auto& system : run.result.systems) {
    weak += static_cast<double>(system.slips.weakly_tested_steps.value_or(0));
    tested += static_cast<double>(system.slips.tested_steps.value_or(0));
  }
  const auto injected = static_cast<double>(score.injected);
  const double part = weak / tested, missed = (injected - static_cast<double>(score.found)) / injected;
  const double least = part / 6, most = part + (1 - part) / 6;
  const double doubt = 1.5 / std::sqrt(injected);
  proof.Check(score.injected > 100, fmt::format("{}: {} equal slips", name, score.injected));
  proof.Check(missed >= least - doubt && missed <= most + doubt,
              fmt::format("{}: {:.3f} missed, {:.3f} weakly tested", name, missed, part));
  table.rows.push_back({name, Number(100 * part, 2), std::to_string(score.injected),
                        std::to_string(score.injected - score.found), Number(100 * missed, 1)});
}

}  // namespace

void ProveSlipCounts(bool long_form, Proof& proof) {
  for (const char* key :
       {"sure_slips", "unsure_slips", "half_cycle_slips", "tested_steps", "untested_steps",
        "weakly_tested_steps", "observations_per_slip", "observations_without_slip",
        "slips_per_1000_observations", "loss_of_lock_flags", "loss_of_lock_with_slip",
        "interruptions_of_signals", "interruptions_of_satellites", "interruptions_of_receiver",
        "continuous_interruptions", "slipped_interruptions", "unresolved_interruptions"}) {
    proof.figures.push_back(key);
    proof.figures.push_back(std::string("below_cutoff_") + key);
  }
  proof.figures.insert(
      proof.figures.end(),
      {"phase_jumps", "below_cutoff_phase_jumps", "satellites_tracked", "signal_satellites", "tracked_epochs",
       "highest_elevation_deg", "doppler_values", "frequency_hz", "has_orbit", "satellites_without_orbit",
       "satellites_never_observed", "satellite_clock_events", "disordered_epochs", "receiver_restarts"});
  proof.injected =
      "slips of whole and half cycles on random signals, also below the cut-off; outages of 90 s; "
      "loss-of-lock flags "
      "at nine of ten slips, at every acquisition and at 0.2 % of all other phases. In a second run no "
      "records of "
      "Galileo, a satellite that is never tracked, epochs that come twice or late, power failures and two "
      "jumps of "
      "satellite clocks; in further ones one cycle on all signals of single satellites, in quiet and in a "
      "storm";
  proof.must_say =
      "per signal of a satellite, from the cut-off up and below it: steps tested and untested, slips by "
      "kind, "
      "observations per slip, slips per 1,000, flags, interruptions; epochs, first and last epoch, highest "
      "elevation, Doppler values, frequency; what is missing";
  proof.tolerance =
      "none (equality), but for the epochs within 0.005 degrees of the cut-off; the highest elevation to "
      "0.01 degrees";
  proof.reason =
      "counts are integers; an elevation of the analysis is off by up to 0.005 degrees, and an epoch so near "
      "to the "
      "cut-off counts on either side. Untested may be a step over a hole that was left open, no other";
  ProofTable counts{"Sums over all signals of all satellites; true and found.",
                    {"population", "steps", "tested", "untested", "whole slips", "sure", "unsure",
                     "half cycles", "found", "flags", "found", "interruptions", "found"},
                    {},
                    1};
  ProveCounts(long_form ? 48 : 24, counts, proof);
  ProofTable missing{"What is missing.", {"of", "true", "found"}, {}, 1};
  ProveMissing(missing, proof);
  ProofTable weak{"Weakly tested steps, and slips of one cycle on all signals of a satellite.",
                  {"sky", "weakly tested, %", "slips", "missed", "missed, %"},
                  {},
                  1};
  ProveWeak("quiet", "", long_form ? 48 : 24, weak, proof);
  ProveWeak("TEC rates and scintillation",
            R"({"kind": "tec_rate", "size": 1.7}, {"kind": "scintillation", "size": 0.12})",
            long_form ? 48 : 24, weak, proof);
  proof.tables = {counts, missing, weak};
}

}  // namespace orsolva_test
