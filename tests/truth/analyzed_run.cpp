#include "tests/truth/analyzed_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "host/observation/station_description.h"
#include "host/rinex/byte_source.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/navigation_reader.h"
#include "host/simulator/broadcast.h"
#include "host/simulator/navigation_writer.h"

namespace orsolva_test {
namespace {

using namespace orsolva_host;
using analysis::Event;
using analysis::EventKind;

constexpr std::size_t kShown = 10;

/// The records as a reader of the navigation file gives them.
BroadcastRecords RecordsOf(const Simulation& simulation) {
  Diagnostics diagnostics;
  NavigationReader reader(diagnostics);
  reader.Read(
      TextBytes(NavigationText(simulation.Navigation(), LeapSeconds(simulation.Settings().start.time))),
      "simulated");
  return reader.Broadcast();
}

/// @param left_out  letters of systems
BroadcastRecords Without(const std::string& left_out, BroadcastRecords records) {
  const auto is_left_out = [&](const auto& record) {
    return left_out.find(record.satellite.system) != std::string::npos;
  };
  std::erase_if(records.kepler, is_left_out);
  std::erase_if(records.state_vectors, is_left_out);
  return records;
}

analysis::AnalysisOptions OptionsOf(const Simulation& simulation, const RunOptions& options) {
  analysis::AnalysisOptions all;
  all.elevation_cutoff_deg = simulation.Settings().truth_cutoff_deg;
  all.detector.position = simulation.TruthSoFar().header_position_m;
  all.detector.interval_s = options.interval_s;
  for (const SkySatellite& s : simulation.sky().Satellites()) {
    if (s.system == 'R') all.detector.glonass_channels[static_cast<std::size_t>(s.number)] = s.channel;
  }
  return all;
}

/// Whether a slip of the satellite, at any elevation, is within three epochs of a time.
bool IsNear(const std::map<SlipKey, SlipSet>& slips, const Event& event, double interval_s) {
  const double near_ns = 3.01e9 * interval_s;
  return std::any_of(slips.begin(), slips.end(), [&](const auto& slip) {
    return slip.first.second == event.satellite &&
           std::fabs(static_cast<double>(slip.first.first - event.time_ns)) < near_ns;
  });
}

/// A broken phase within tracking, and also where tracking was interrupted.
bool SaysSlip(const Event& event) {
  return analysis::IsSlip(event.kind) || event.kind == EventKind::kGapUnresolved ||
         event.kind == EventKind::kSignalGapUnresolved;
}

bool IsAlarm(const Event& event) {
  return event.kind == EventKind::kSlip || event.kind == EventKind::kHalfCycle ||
         event.kind == EventKind::kJump;
}

bool IsRight(const Event& event, const SlipSet& slips) {
  if (event.signals.size() != slips.sizes.size() || event.sizes.size() != event.signals.size()) return false;
  for (std::size_t i = 0; i < event.signals.size(); ++i) {
    const auto injected = slips.sizes.find(NameOf(event.signals[i]));
    if (injected == slips.sizes.end() || injected->second != event.sizes[i]) return false;
  }
  return true;
}

std::string Described(const SlipKey& key, const SlipSet& slips) {
  std::string text =
      fmt::format("{} s of the day {} at {:.1f} deg:", key.first / kNanosecondsPerSecond % 86400,
                  NameOf(key.second), slips.elevation_deg);
  for (const auto& [signal, size] : slips.sizes) text += fmt::format(" {} {:+g}", signal, size);
  return text;
}

std::string Described(const Event& event) {
  return fmt::format("{} s of the day {} at {:.1f} deg: {}: {}",
                     event.time_ns / kNanosecondsPerSecond % 86400, NameOf(event.satellite),
                     event.elevation_deg, NameOf(event.kind), event.evidence);
}

}  // namespace

AnalyzedRun Analyze(const Scenario& scenario, const RunOptions& options, const EpochListener& listener) {
  Simulation simulation(scenario);
  const BroadcastRecords records =
      options.navigation ? Without(options.without_records, RecordsOf(simulation)) : BroadcastRecords();
  analysis::StationAnalysis analysis(OptionsOf(simulation, options), records);
  AnalyzedRun run;
  const auto record = std::make_unique<ObsEpoch_QC_gbt>();
  ObservationEpoch epoch;
  const auto take = [&] {
    for (Event& event : analysis.TakeEvents()) run.events.push_back(std::move(event));
  };
  while (simulation.Next(*record, epoch)) {
    if (listener) listener(simulation, epoch);
    analysis.Add(epoch);
    take();
  }
  analysis.Finish();
  take();
  run.truth = simulation.TruthSoFar();
  StationDescription stated;
  stated.position_m = run.truth.header_position_m;
  stated.given_position_m = options.given_position_m;
  run.result = analysis.Result(stated);
  for (const analysis::SystemFigures& system : run.result.systems) {
    run.tested_steps += system.slips.tested_steps.value_or(0);
  }
  return run;
}

std::int64_t Nanoseconds(const Time_gbt& time) {
  return time.time * kNanosecondsPerSecond + std::llround(time.sec * 1e9);
}

SatelliteId SatelliteOf(const std::string& name) {
  return {name[0], static_cast<std::uint8_t>(std::stoi(name.substr(1)))};
}

std::map<SlipKey, SlipSet> InjectedSlips(const Truth& truth) {
  std::map<SlipKey, SlipSet> all;
  for (const InjectedFault& fault : truth.faults) {
    if (fault.kind != "slip" || !fault.seen) continue;
    SlipSet& set = all[{Nanoseconds(fault.time), SatelliteOf(fault.satellite)}];
    set.elevation_deg = fault.elevation_deg;
    set.sizes[fault.signal] += fault.size;
  }
  return all;
}

void SlipScore::Add(const SlipScore& other) {
  tested_steps += other.tested_steps;
  injected += other.injected;
  found += other.found;
  right += other.right;
  alarms += other.alarms;
  near_slips += other.near_slips;
  for (const std::string& one : other.missed) {
    if (missed.size() < kShown) missed.push_back(one);
  }
  for (const std::string& one : other.false_alarms) {
    if (false_alarms.size() < kShown) false_alarms.push_back(one);
  }
}

double SlipScore::FoundPercent() const {
  return injected > 0 ? 100 * static_cast<double>(found) / static_cast<double>(injected) : 100;
}

double SlipScore::AlarmsPer10000() const {
  return tested_steps > 0 ? 1e4 * static_cast<double>(alarms) / static_cast<double>(tested_steps) : 0;
}

SlipScore ScoreOf(const AnalyzedRun& run, const std::function<bool(const SlipKey&, const SlipSet&)>& keep) {
  const std::map<SlipKey, SlipSet> injected = InjectedSlips(run.truth);
  std::map<SlipKey, const Event*> said;
  SlipScore score;
  score.tested_steps = run.tested_steps;
  for (const Event& event : run.events) {
    if (event.satellite.system == ' ' || !SaysSlip(event)) continue;
    const SlipKey key = {event.time_ns, event.satellite};
    said[key] = &event;
    if (!IsAlarm(event) || injected.count(key) > 0 || event.elevation_deg < kScoredFrom_deg) continue;
    ++score.alarms;
    score.near_slips += IsNear(injected, event, run.truth.interval_s);
    if (score.false_alarms.size() < kShown) score.false_alarms.push_back(Described(event));
  }
  for (const auto& [key, slips] : injected) {
    if (slips.elevation_deg < kScoredFrom_deg || (keep && !keep(key, slips))) continue;
    ++score.injected;
    const auto event = said.find(key);
    if (event != said.end()) ++score.found;
    if (event != said.end() && IsRight(*event->second, slips)) ++score.right;
    if (event == said.end() && score.missed.size() < kShown) score.missed.push_back(Described(key, slips));
  }
  return score;
}

}  // namespace orsolva_test
