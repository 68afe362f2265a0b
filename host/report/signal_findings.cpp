#include "host/report/signal_findings.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/report/finding_limits.h"
#include "host/report/finding_texts.h"
#include "host/report/median.h"

namespace orsolva_host {
namespace {

using analysis::AnalysisResult;
using analysis::SatelliteFigures;
using analysis::SignalFigures;
using analysis::SlipFigures;
using analysis::StrengthDrop;
using analysis::SystemFigures;

constexpr const char* kWarning = "warning";
constexpr const char* kInfo = "info";
constexpr const char* kGood = "good";

Count AllOf(const SlipFigures& slips) {
  return slips.sure.value_or(0) + slips.unsure.value_or(0) + slips.half_cycles.value_or(0) +
         slips.unknown_size.value_or(0);
}

template <typename Owner, typename CountOf>
std::vector<Tally> Tallies(const std::vector<Owner>& owners, const CountOf& count) {
  std::vector<Tally> tallies;
  for (const Owner& owner : owners) {
    if constexpr (std::is_same_v<Owner, SatelliteFigures>) {
      tallies.emplace_back(NameOf(owner.id), count(owner));
    } else {
      tallies.emplace_back(NameOf(owner), count(owner));
    }
  }
  return MostFirst(std::move(tallies));
}

/// Whether events come more often than once in so many steps.
bool Often(Count events, const std::optional<Count>& steps, double least_steps) {
  return events > 0 && static_cast<double>(steps.value_or(0)) < least_steps * static_cast<double>(events);
}

/// "by signal E 6C (7), G 2W (2)", with what makes up more than half in the title.
void AddSlips(const Report& report, std::vector<Finding>& findings) {
  const AnalysisResult& result = report.analysis.figures;
  const Headline& h = report.headline;
  if (!h.cycle_slips) return;
  const Count all = *h.cycle_slips;
  if (all == 0) {
    AddFinding(findings, "no-slips", kGood, "No cycle slip",
               fmt::format("None in {} of satellites.", Many(h.tested_steps.value_or(0), "tested step")));
    return;
  }
  const auto slips_of = [](const auto& owner) { return AllOf(owner.slips); };
  const auto satellites = Tallies(result.satellites, slips_of);
  const auto signals = Tallies(result.signals, slips_of);
  std::string title = Many(all, "cycle slip");
  const auto most = [all](const std::vector<Tally>& tallies) {
    return !tallies.empty() && all > 1 && 2 * tallies.front().second > all;
  };
  if (most(signals)) title += fmt::format(", most on {}", signals.front().first);
  if (most(satellites)) title += fmt::format(", most of {}", satellites.front().first);
  std::string text = fmt::format("By signal {}; by satellite {}.", Counted(signals), Counted(satellites));
  const bool often = Often(all, h.tested_steps, kFindingLimits.least_steps_per_slip);
  Finding& finding = AddFinding(findings, "cycle-slips", often ? kWarning : kInfo, std::move(title), text);
  finding.figures = {{"cycle_slips", static_cast<double>(all)}};
  if (h.observations_per_slip) finding.figures.push_back({"observations_per_slip", *h.observations_per_slip});
  finding.satellites = NamesOf(satellites);
}

void AddHalfCycles(const Report& report, std::vector<Finding>& findings) {
  const AnalysisResult& result = report.analysis.figures;
  const auto halves_of = [](const auto& owner) { return owner.slips.half_cycles.value_or(0); };
  Count all = 0;
  for (const SystemFigures& system : result.systems) all += halves_of(system);
  if (all == 0) return;
  const auto satellites = Tallies(result.satellites, halves_of);
  Finding& finding = AddFinding(
      findings, "half-cycles",
      Often(all, report.headline.tested_steps, kFindingLimits.least_steps_per_slip) ? kWarning : kInfo,
      fmt::format("{} of the cycle slips by half cycles", all), fmt::format("On {}.", Counted(satellites)));
  finding.satellites = NamesOf(satellites);
}

void AddInterruptions(const Report& report, std::vector<Finding>& findings) {
  const AnalysisResult& result = report.analysis.figures;
  const Headline& h = report.headline;
  // A satellite has an observation a step, its signals have one each.
  const auto add = [&](const char* id, const std::optional<Count>& all, const char* figure, const char* what,
                       const std::vector<Tally>& tallies, bool satellites) {
    if (all.value_or(0) == 0) return;
    const std::optional<Count>& of = satellites ? h.tested_steps : h.cutoff_observed;
    const bool often = of && Often(*all, of, kFindingLimits.least_observations_per_interruption);
    Finding& finding =
        AddFinding(findings, id, often ? kWarning : kInfo, Many(*all, "interruption") + " of " + what,
                   fmt::format("For at most 10 minutes, while others went on: {}.", Counted(tallies)));
    finding.figures = {{figure, static_cast<double>(*all)}};
    if (satellites) finding.satellites = NamesOf(tallies);
  };
  add("satellite-gaps", h.interruptions_of_satellites, "interruptions_of_satellites", "satellites in view",
      Tallies(result.satellites, [](const auto& s) { return s.interruptions.by_satellite.value_or(0); }),
      true);
  add("signal-gaps", h.interruptions_of_signals, "interruptions_of_signals", "single signals",
      Tallies(result.signals, [](const auto& s) { return s.interruptions.by_signal.value_or(0); }), false);
}

std::string DropText(const StrengthDrop& drop) {
  const double minutes = static_cast<double>(drop.to_ns - drop.from_ns) / (60.0 * kNanosecondsPerSecond);
  return fmt::format("{:.1f} dB for {:.0f} min from {}", drop.mean_drop_db, minutes,
                     MomentText(drop.from_ns));
}

/// Strength of all satellites of a signal at once: interference where one band is hit, an antenna or a cable
/// where all are.
void AddInterference(const Report& report, std::vector<Finding>& findings) {
  std::vector<std::string> names;
  std::string text;
  bool one_band = false;
  for (const SignalFigures& signal : report.analysis.figures.signals) {
    if (signal.strength.drops.empty()) continue;
    for (const StrengthDrop& drop : signal.strength.drops)
      one_band = one_band || !drop.other_bands.value_or(true);
    if (names.size() < kFindingLimits.most_names) {
      text += fmt::format("{}{} {}", text.empty() ? "" : ", ", NameOf(signal),
                          DropText(signal.strength.drops.front()));
    }
    names.push_back(NameOf(signal));
  }
  if (names.empty()) return;
  Finding& finding = AddFinding(
      findings, "strength-drops", kWarning, fmt::format("Signal strength dropped on {}", Listed(names)),
      fmt::format("{}. {}", text,
                  one_band ? "Other bands did not: look for interference."
                           : "All bands at once, or the only one: look at antenna, cable and interference."));
  if (names.size() == 1) finding.signal = names.front();
}

void AddSatelliteDrops(const Report& report, std::vector<Finding>& findings) {
  std::vector<std::string> names, satellites;
  for (const SignalFigures& signal : report.analysis.figures.satellite_signals) {
    if (signal.strength.drops.empty()) continue;
    const std::string satellite = NameOf(signal.satellite);
    names.push_back(satellite + " " + NameOf(signal.code));
    if (satellites.empty() || satellites.back() != satellite) satellites.push_back(satellite);
  }
  if (names.empty()) return;
  AddFinding(findings, "satellite-strength-drops", kInfo,
             fmt::format("Strength dropped on {}", Many(satellites.size(), "single satellite")),
             fmt::format("{}: an obstruction, or a satellite that changed its power.", Listed(names)))
      .satellites = satellites;
}

/// Mean strength in the open sky; absent where nothing was that high.
std::optional<double> HighStrength(const SignalFigures& signal) {
  double sum = 0, values = 0;
  for (const analysis::ElevationBin& bin : signal.strength.mean_by_elevation) {
    if (bin.from_deg < kFindingLimits.weak_from_deg) continue;
    sum += bin.value * static_cast<double>(bin.values);
    values += static_cast<double>(bin.values);
  }
  return values > 0 ? std::optional<double>(sum / values) : std::nullopt;
}

/// P(Y) tracked without its key is weaker by nature.
bool IsSemiCodeless(const SignalFigures& signal) {
  return signal.system == 'G' && (signal.code.attribute == 'W' || signal.code.attribute == 'D');
}

void AddWeakSignals(const Report& report, std::vector<Finding>& findings) {
  std::vector<std::string> names;
  std::string text;
  std::size_t of = 0;
  for (const SignalFigures& signal : report.analysis.figures.signals) {
    const std::optional<double> mean_dbhz = HighStrength(signal);
    if (!mean_dbhz || IsSemiCodeless(signal)) continue;
    ++of;
    if (*mean_dbhz >= kFindingLimits.weak_dbhz) continue;
    names.push_back(NameOf(signal));
    text += fmt::format("{}{} {:.1f}", text.empty() ? "" : ", ", names.back(), *mean_dbhz);
  }
  if (names.empty()) return;
  Finding& finding = AddFinding(
      findings, "weak-signals", 2 * names.size() > of ? kWarning : kInfo,
      fmt::format("Weak: {}", Listed(names)),
      fmt::format("Mean strength from {} degrees up in dB-Hz: {}.", kFindingLimits.weak_from_deg, text));
  if (names.size() == 1) finding.signal = names.front();
}

void AddIncompleteSystems(const Report& report, std::vector<Finding>& findings) {
  std::string title;
  bool matters = false;
  for (const SystemFigures& system : report.analysis.figures.systems) {
    if (!system.cutoff.ratio || *system.cutoff.ratio >= kFindingLimits.least_completeness) continue;
    title += fmt::format("{}{} {}", title.empty() ? "" : ", ", SystemText(system.letter),
                         Percent(*system.cutoff.ratio));
    matters = matters || system.letter != 'S';  // receivers track few of its satellites all the time
  }
  if (title.empty()) return;
  AddFinding(
      findings, "incomplete", matters ? kWarning : kInfo, title + " complete",
      fmt::format("From {:g} degrees up; {} is the least of a good station.",
                  report.analysis.figures.elevation_cutoff_deg, Percent(kFindingLimits.least_completeness)));
}

/// Observations expected and not there, in epochs that are.
void AddMissingObservations(const Report& report, std::vector<Finding>& findings) {
  const AnalysisResult& result = report.analysis.figures;
  const Headline& h = report.headline;
  const auto expected = static_cast<double>(h.cutoff_expected.value_or(0));
  if (expected == 0 || !h.cutoff_observed || h.nominal_epochs.value_or(0) == 0) return;
  const double present =
      static_cast<double>(h.present_epochs.value_or(0)) / static_cast<double>(*h.nominal_epochs);
  const double missing = present * expected - static_cast<double>(*h.cutoff_observed);
  if (missing < kFindingLimits.some_missing_share * expected) return;
  const auto count = static_cast<Count>(missing);
  const auto missing_of = [](const auto& owner) {
    const Count of = owner.cutoff.expected.value_or(0), there = owner.cutoff.observed.value_or(of);
    return of - std::min(of, there);
  };
  const auto signals = Tallies(result.signals, missing_of);
  std::string title = fmt::format("{} observations missing", count);
  if (h.missing_epochs.value_or(0) > 0) title = fmt::format("{} further observations missing", count);
  if (!signals.empty() && 2 * signals.front().second > count) title += ", most on " + signals.front().first;
  const bool many = missing >= kFindingLimits.many_missing_share * expected;
  AddFinding(findings, "missing-observations", many ? kWarning : kInfo, std::move(title),
             fmt::format("Expected above the cut-off. By signal {}; by satellite {}.", Counted(signals),
                         Counted(Tallies(result.satellites, missing_of))))
      .figures = {{"cutoff_completeness_ratio", h.cutoff_completeness.value_or(0)}};
}

void AddNeverObserved(const Report& report, std::vector<Finding>& findings) {
  std::vector<std::string> names;
  for (const analysis::NeverObserved& satellite : report.analysis.figures.never_observed) {
    if (satellite.healthy_epochs > 0) names.push_back(NameOf(satellite.id));
  }
  if (names.empty()) return;
  Finding& finding =
      AddFinding(findings, "never-observed", kInfo,
                 Many(names.size(), "satellite") + " in view never observed", Listed(names) + ".");
  finding.figures = {{"satellites_never_observed", static_cast<double>(names.size())}};
}

void AddIonosphere(const Report& report, std::vector<Finding>& findings) {
  double worst = 0, minutes = 0;
  for (const SystemFigures& system : report.analysis.figures.systems) {
    worst = std::max(worst, system.ionosphere.p95_roti.value_or(0));
    minutes += system.ionosphere.disturbed_minutes.value_or(0);
  }
  if (worst < kFindingLimits.disturbed_roti) return;
  AddFinding(
      findings, "ionosphere", kWarning, fmt::format("Ionosphere disturbed: ROTI {:.1f} TECU/min", worst),
      fmt::format(
          "At 95 % of the worst system; {:.0f} satellite-minutes in all. Slips and lost signals may follow "
          "from it.",
          minutes));
}

void AddSatelliteClocks(const Report& report, std::vector<Finding>& findings) {
  const auto clocks = Tallies(report.analysis.figures.satellites,
                              [](const auto& s) { return s.satellite_clock_events.value_or(0); });
  if (clocks.empty()) return;
  Count all = 0;
  for (const Tally& tally : clocks) all += tally.second;
  AddFinding(findings, "satellite-clocks", kInfo, Many(all, "jump") + " of satellite clocks",
             fmt::format("All signals of a satellite stepped by the same metres, not the station's: {}.",
                         Counted(clocks)))
      .satellites = NamesOf(clocks);
}

void AddGpsMultipath(const Report& report, std::vector<Finding>& findings) {
  const Headline& h = report.headline;
  const bool first = h.gps_mp1_m.value_or(0) > kFindingLimits.most_mp1_m;
  const bool second = h.gps_mp2_m.value_or(0) > kFindingLimits.most_mp2_m;
  if (!first && !second) return;
  std::string title = "Multipath of GPS:";
  if (first) title += " MP1 " + Metres(*h.gps_mp1_m);
  if (second) title += (first ? ", MP2 " : " MP2 ") + Metres(*h.gps_mp2_m);
  Finding& finding = AddFinding(findings, "gps-multipath", kWarning, std::move(title),
                                fmt::format("Stations keep below {:g} m and {:g} m.",
                                            kFindingLimits.most_mp1_m, kFindingLimits.most_mp2_m));
  if (first) finding.figures.push_back({"gps_mp1_rms_m", *h.gps_mp1_m});
  if (second) finding.figures.push_back({"gps_mp2_rms_m", *h.gps_mp2_m});
}

void AddWorstMultipath(const Report& report, std::vector<Finding>& findings) {
  const SignalFigures* worst = nullptr;
  std::vector<double> all;
  for (const SignalFigures& signal : report.analysis.figures.signals) {
    const std::optional<double>& rms_m = signal.multipath.moving_m;
    if (!rms_m) continue;
    all.push_back(*rms_m);
    if (worst == nullptr || *rms_m > *worst->multipath.moving_m) worst = &signal;
  }
  if (worst == nullptr) return;
  Finding& finding = AddFinding(findings, "worst-multipath", kInfo, "Most multipath: " + NameOf(*worst),
                                fmt::format("RMS {}; the median of all signals is {}.",
                                            Metres(*worst->multipath.moving_m), Metres(MedianOf(all))));
  finding.figures = {{"multipath_moving_rms_m", *worst->multipath.moving_m}};
  finding.signal = NameOf(*worst);
}

void AddLeastComplete(const Report& report, std::vector<Finding>& findings) {
  const SignalFigures* worst = nullptr;
  for (const SignalFigures& signal : report.analysis.figures.signals) {
    if (signal.cutoff.ratio && (worst == nullptr || *signal.cutoff.ratio < *worst->cutoff.ratio))
      worst = &signal;
  }
  if (worst == nullptr) return;
  const Count expected = worst->cutoff.expected.value_or(0), observed = worst->cutoff.observed.value_or(0);
  if (observed >= expected) {
    AddFinding(findings, "nothing-missing", kGood, "Nothing missing",
               "Every signal was observed whenever it was expected.");
    return;
  }
  Finding& finding = AddFinding(findings, "least-complete", kInfo, "Least complete: " + NameOf(*worst),
                                fmt::format("{} of the expected epochs; {} are missing.",
                                            Percent(*worst->cutoff.ratio), expected - observed));
  finding.figures = {{"cutoff_completeness_ratio", *worst->cutoff.ratio}};
  finding.signal = NameOf(*worst);
}

}  // namespace

void AddSignalFindings(const Report& report, std::vector<Finding>& findings) {
  AddSlips(report, findings);
  AddHalfCycles(report, findings);
  AddInterruptions(report, findings);
  AddInterference(report, findings);
  AddWeakSignals(report, findings);
  AddIncompleteSystems(report, findings);
  AddMissingObservations(report, findings);
  AddIonosphere(report, findings);
  AddGpsMultipath(report, findings);
  AddSatelliteDrops(report, findings);
  AddSatelliteClocks(report, findings);
  AddNeverObserved(report, findings);
  AddWorstMultipath(report, findings);
  AddLeastComplete(report, findings);
}

}  // namespace orsolva_host
