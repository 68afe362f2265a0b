#include "host/report/data_findings.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "host/report/finding_limits.h"
#include "host/report/finding_texts.h"

namespace orsolva_host {
namespace {

using analysis::AnalysisResult;
using analysis::Contradiction;
using analysis::Event;
using analysis::EventKind;

constexpr const char* kError = "error";
constexpr const char* kWarning = "warning";
constexpr const char* kInfo = "info";

double Share(Count part, Count whole) {
  return whole > 0 ? static_cast<double>(part) / static_cast<double>(whole) : 0;
}

void AddDamage(const Report& report, std::vector<Finding>& findings) {
  if (report.read_error.empty()) return;
  AddFinding(findings, "damaged", kError, "Damaged file",
             report.read_error + " The report covers what precedes it.");
}

/// Without orbits there are no elevations; without a record of the library the analysis is there all the
/// same.
void AddAbsence(const Report& report, std::vector<Finding>& findings) {
  const std::optional<LibraryAbsence>& absence = report.run.library_absence;
  if (!absence) return;
  const bool navigation = absence->id == "no-navigation";
  const char* severity = report.analysis.figures.with_orbits ? kInfo : kWarning;
  AddFinding(findings, absence->id.c_str(), severity,
             navigation ? "No broadcast records" : "No record by the library", absence->text);
}

void AddNotJudged(const Report& report, std::vector<Finding>& findings) {
  const AnalysisResult& result = report.analysis.figures;
  const Count observed = report.headline.satellites_tracked.value_or(0);
  if (!result.with_orbits || result.without_record.empty() || observed == 0) return;
  std::vector<std::string> names;
  std::map<char, Count> by_system;
  for (const SatelliteId id : result.without_record) {
    names.push_back(NameOf(id));
    ++by_system[id.system];
  }
  std::string systems;
  bool whole_system = false;
  for (const analysis::SystemFigures& system : result.systems) {
    if (by_system[system.letter] == 0) continue;
    const Count of = system.satellites_observed.value_or(0);
    whole_system = whole_system || by_system[system.letter] >= of;
    systems += fmt::format("{}{} {} of {}", systems.empty() ? "" : ", ", SystemText(system.letter),
                           by_system[system.letter], of);
  }
  const double share = Share(names.size(), observed);
  const bool matters = whole_system || share > kFindingLimits.not_judged_share;
  Finding& finding = AddFinding(
      findings, "not-judged",
      share > kFindingLimits.hardly_judged_share ? kError
      : matters                                  ? kWarning
                                                 : kInfo,
      fmt::format("{} of {} satellites not judged", names.size(), observed),
      fmt::format("No orbit, hence no elevation and no completeness: {} ({}).", systems, Listed(names)));
  finding.figures = {{"satellites_tracked", static_cast<double>(observed)},
                     {"satellites_without_orbit", static_cast<double>(names.size())}};
  finding.satellites = std::move(names);
}

void AddNothingObserved(const Report& report, std::vector<Finding>& findings) {
  if (report.headline.satellites_tracked.value_or(0) > 0) return;
  AddFinding(findings, "nothing-observed", kError, "Nothing observed",
             "The file holds no observation of the satellites chosen.");
}

void AddMoving(const Report& report, std::vector<Finding>& findings) {
  const analysis::PositionFigures& position = report.analysis.figures.position;
  const std::optional<double>& distance_m = report.run.distance_from_header_m;
  const bool far = distance_m && *distance_m > kFindingLimits.far_from_header_m;
  std::string text = "Scatter and distances of its position are not given.";
  if (far) {
    text = fmt::format("Its first position is {} from the header's. ", Distance(*distance_m)) + text;
  }
  Finding& finding =
      AddFinding(findings, "antenna-moves", far ? kWarning : kInfo,
                 far ? fmt::format("Antenna moves, {} from the header's position", Distance(*distance_m))
                     : std::string("Antenna moves"),
                 text);
  if (far) finding.figures = {{"distance_from_header_position_m", *distance_m}};
  if (position.residual_rms_m) finding.figures.push_back({"code_residual_rms_m", *position.residual_rms_m});
}

/// What the position says: codes that do not fit together, an antenna that moves, or one that is elsewhere.
void AddPosition(const Report& report, std::vector<Finding>& findings) {
  const analysis::PositionFigures& position = report.analysis.figures.position;
  const std::optional<double>& residual_m = position.residual_rms_m;
  const std::optional<double>& distance_m = position.distance_to_header_m;
  if (residual_m && *residual_m > kFindingLimits.unusable_residual_m) {
    std::string title = fmt::format("Codes do not fit a position: residuals {}", Distance(*residual_m));
    if (distance_m && *distance_m > kFindingLimits.far_from_header_m) {
      title += fmt::format(", {} from the header's", Distance(*distance_m));
    }
    AddFinding(findings, "position-unusable", kError, std::move(title),
               "The codes are faulty, or the broadcast records are of another time.")
        .figures = {{"code_residual_rms_m", *residual_m}};
    return;
  }
  if (position.moving.value_or(false)) return AddMoving(report, findings);
  const auto& stated = report.analysis.figures.contradictions;
  const bool far =
      std::any_of(stated.begin(), stated.end(), [](const Contradiction& c) { return c.id == "position"; });
  if (!distance_m || (!far && *distance_m < kFindingLimits.off_header_m)) return;
  AddFinding(findings, far ? "position-far" : "position-off", far ? kWarning : kInfo,
             fmt::format("Position {} from the header's", Distance(*distance_m)),
             residual_m ? fmt::format("The codes fit theirs to {:.2f} m: the header's is wrong.", *residual_m)
                        : std::string("The header's is wrong."))
      .figures = {{"solution_to_header_m", *distance_m}};
}

void AddGivenPosition(const Report& report, std::vector<Finding>& findings) {
  const analysis::PositionFigures& position = report.analysis.figures.position;
  const std::optional<double>& distance_m = position.distance_to_given_m;
  const bool usable = position.residual_rms_m.value_or(0) <= kFindingLimits.unusable_residual_m;
  if (!distance_m || !usable || *distance_m < kFindingLimits.far_from_header_m) return;
  AddFinding(findings, "given-position-far", kWarning,
             fmt::format("Position {} from the one given", Distance(*distance_m)),
             "The library's record has its elevations from the one given.")
      .figures = {{"solution_to_given_m", *distance_m}};
}

void AddInterval(const Report& report, std::vector<Finding>& findings) {
  for (const Contradiction& c : report.analysis.figures.contradictions) {
    if (c.id != "interval" && c.id != "file_name_interval") continue;
    const char* where = c.id == "interval" ? "header" : "file name";
    AddFinding(findings, c.id == "interval" ? "wrong-interval" : "wrong-name-interval", kWarning,
               fmt::format("Interval {}, {} says {}", c.found, where, c.stated), "The data's is used.")
        .figures = {{"data_interval_s", report.analysis.figures.span.interval_s}};
  }
}

/// What a statement is called in a sentence.
std::string_view WordsOf(std::string_view id) {
  constexpr std::pair<std::string_view, std::string_view> kWords[] = {
      {"first_epoch", "first epoch in the header"},
      {"last_epoch", "last epoch in the header"},
      {"file_name_start", "start in the file name"},
      {"file_name_period", "period of the file name"},
      {"marker", "marker"},
      {"glonass_channel", "GLONASS channel"},
      {"antenna_change", "antenna changed within the file"},
      {"receiver_change", "receiver changed within the file"},
      {"marker_change", "marker changed within the file"}};
  for (const auto& [name, words] : kWords) {
    if (id == name) return words;
  }
  return id;
}

/// Header and file name against the data: all in one finding, the first in its title.
void AddStatements(const Report& report, std::vector<Finding>& findings) {
  std::string title, text;
  std::size_t count = 0;
  for (const Contradiction& c : report.analysis.figures.contradictions) {
    if (c.id == "interval" || c.id == "file_name_interval" || c.id == "position") continue;
    const std::string one = fmt::format("{}: stated {}, found {}", WordsOf(c.id), c.stated, c.found);
    if (++count == 1) title = one;
    if (count <= kFindingLimits.most_names) text += (text.empty() ? "" : "; ") + one;
  }
  if (count == 0) return;
  if (count > kFindingLimits.most_names)
    text += fmt::format(" and {} more", count - kFindingLimits.most_names);
  title[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(title[0])));
  text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
  if (count > 1) title += fmt::format(", and {}", Many(count - 1, "further contradiction"));
  const std::size_t all = report.analysis.figures.contradictions.size();
  AddFinding(findings, "statements", kWarning, std::move(title), count > 1 ? text + "." : std::string())
      .figures = {{"contradictions", static_cast<double>(all)}};
}

std::string GapTexts(const analysis::SpanFigures& span) {
  std::vector<analysis::DataGap> gaps = span.gaps;
  std::stable_sort(gaps.begin(), gaps.end(),
                   [](const auto& a, const auto& b) { return a.missing_epochs > b.missing_epochs; });
  constexpr std::size_t kMaxGaps = 3;
  std::string text;
  for (std::size_t i = 0; i < std::min(gaps.size(), kMaxGaps); ++i) {
    text += fmt::format("{}{} after {}", i > 0 ? ", " : "", Many(gaps[i].missing_epochs, "epoch"),
                        MomentText(gaps[i].last_before_ns));
  }
  const std::size_t all = gaps.size() + span.further_gaps;
  return all > kMaxGaps ? fmt::format("The longest of {} gaps: {}.", all, text) : text + ".";
}

void AddMissingEpochs(const Report& report, std::vector<Finding>& findings) {
  const analysis::SpanFigures& span = report.analysis.figures.span;
  const Count missing = span.lost_epochs.value_or(0), expected = span.expected_epochs.value_or(0);
  if (missing > 0) {
    const double share = Share(missing, expected);
    AddFinding(findings, "missing-epochs",
               share > kFindingLimits.mostly_missing_share ? kError
               : share >= kFindingLimits.missing_share     ? kWarning
                                                           : kInfo,
               fmt::format("{} of {} epochs missing", missing, expected), GapTexts(span))
        .figures = {{"missing_epochs", static_cast<double>(missing)}};
  }
  const Count present = span.present_epochs.value_or(0), usable = span.usable_epochs.value_or(0);
  if (span.usable_epochs &&
      Share(present - std::min(present, usable), present) >= kFindingLimits.unusable_share) {
    AddFinding(findings, "unusable-epochs", kWarning,
               fmt::format("{} of {} epochs unusable", present - usable, present),
               "They have fewer than four satellites with code and phase on two bands.")
        .figures = {{"usable_epochs", static_cast<double>(usable)}};
  }
  const Count disordered = span.disordered_epochs.value_or(0);
  if (disordered == 0) return;
  AddFinding(findings, "disordered-epochs", kInfo, Many(disordered, "epoch") + " duplicate or back in time",
             "They are left out.")
      .figures = {{"disordered_epochs", static_cast<double>(disordered)}};
}

std::vector<std::string> TimesOf(const std::vector<Event>& events, EventKind kind) {
  std::vector<std::string> times;
  for (const Event& event : events) {
    if (event.kind == kind) times.push_back(MomentText(event.time_ns));
  }
  return times;
}

/// Epochs at which many satellites slipped.
std::vector<std::string> CommonSlips(const Report& report) {
  const AnalysisResult& result = report.analysis.figures;
  double observed = 0;
  for (const analysis::SatelliteFigures& s : result.satellites) {
    observed += static_cast<double>(s.observed_epochs.value_or(0));
  }
  const double present = static_cast<double>(std::max<Count>(result.span.present_epochs.value_or(0), 1));
  std::map<std::int64_t, std::set<std::string>> struck;
  for (const Event& event : report.analysis.events) {
    if (analysis::IsSlip(event.kind) && event.satellite.system != ' ') {
      struck[event.time_ns].insert(NameOf(event.satellite));
    }
  }
  std::vector<std::string> times;
  for (const auto& [time_ns, satellites] : struck) {
    const bool common =
        satellites.size() >= kFindingLimits.least_common &&
        static_cast<double>(satellites.size()) > kFindingLimits.common_share * observed / present;
    if (common) times.push_back(MomentText(time_ns));
  }
  return times;
}

/// What struck the receiver as a whole.
/// Phases that do not go on together, and so hide slips.
void AddRestarts(const Report& report, std::vector<Finding>& findings) {
  const Count restarts = report.analysis.figures.receiver_clock.restarts.value_or(0);
  if (restarts == 0) return;
  const Count steps = std::max<Count>(report.analysis.figures.span.present_epochs.value_or(0), 2) - 1;
  const double share = Share(restarts, steps);
  AddFinding(findings, "receiver-restarts",
             share > kFindingLimits.mostly_restarts_share ? kError
             : share > kFindingLimits.some_restarts_share ? kWarning
                                                          : kInfo,
             fmt::format("Phases do not go on at {} of {} steps", restarts, steps),
             "Slips cannot be found there. Look for restarts of the receiver, and for phases of the wrong "
             "sign or unit.")
      .figures = {{"receiver_restarts", static_cast<double>(restarts)}};
}

void AddReceiver(const Report& report, std::vector<Finding>& findings) {
  const std::vector<Event>& events = report.analysis.events;
  const analysis::ReceiverClockFigures& clock = report.analysis.figures.receiver_clock;
  if (const auto times = TimesOf(events, EventKind::kPowerFailure); !times.empty()) {
    AddFinding(findings, "power-failures", kWarning, Many(times.size(), "power failure"),
               fmt::format("The file flags {} at {}.", times.size() == 1 ? "it" : "them", Listed(times)));
  }
  if (const auto times = CommonSlips(report); !times.empty()) {
    AddFinding(
        findings, "receiver-slips", kWarning, "Slips of the whole receiver",
        fmt::format("Many satellites slipped at once at {}: look for an outage or a reset.", Listed(times)));
  }
  if (const Count jumps = clock.code_clock_jumps.value_or(0); jumps > 0) {
    AddFinding(findings, "code-clock-jumps", kWarning, Many(jumps, "jump") + " of the codes' clock",
               fmt::format("Codes jumped and phases did not at {}.",
                           Listed(TimesOf(events, EventKind::kCodeClockJump))))
        .figures = {{"code_clock_jumps", static_cast<double>(jumps)}};
  }
  if (const Count resets = clock.resets.value_or(0); resets > 0) {
    AddFinding(findings, "clock-resets", kInfo, Many(resets, "receiver clock reset"),
               "Codes and phases jumped together; they are not counted as slips.")
        .figures = {{"receiver_clock_resets", static_cast<double>(resets)}};
  }
}

}  // namespace

void AddDataFindings(const Report& report, std::vector<Finding>& findings) {
  AddDamage(report, findings);
  AddNothingObserved(report, findings);
  AddAbsence(report, findings);
  AddNotJudged(report, findings);
  AddPosition(report, findings);
  AddGivenPosition(report, findings);
  AddInterval(report, findings);
  AddStatements(report, findings);
  AddMissingEpochs(report, findings);
  AddReceiver(report, findings);
  AddRestarts(report, findings);
}

}  // namespace orsolva_host
