#include "host/report/json_writer.h"

#include <optional>

#include "host/report/analysis_json.h"
#include "host/report/figure_json.h"
#include "host/report/figures.h"
#include "host/report/library_headline.h"

namespace orsolva_host {
namespace {

template <typename T>
Json ValueOf(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

void AddBands(const char* name, const std::vector<FigureRow<BandFigures>>& rows, const Figures& figures,
              Json& j) {
  j[name] = Json::array();
  for (const BandFigures& band : figures.bands) {
    Json b;
    b["slot"] = band.slot;
    if (!band.band.empty()) b["band"] = band.band;
    AddFigures(rows, band, b);
    j[name].push_back(b);
  }
}

Json SelectionJson(const std::optional<ReportSelection>& selection) {
  if (!selection) return nullptr;
  Json j;
  j["start_gpst"] = TimeJson(selection->start);
  j["end_gpst"] = TimeJson(selection->end);
  j["sampling_s"] = ValueOf(selection->sampling_s);
  j["signals"] = TextJson(selection->signals);
  j["epochs_left_out"] = selection->epochs_left_out;
  return j;
}

/// What a recorded stream was made of.
Json StreamJson(const std::optional<StreamFacts>& stream) {
  if (!stream) return nullptr;
  Json j;
  j["format"] = stream->format;
  j["frames"] = stream->frames;
  j["crc_errors"] = stream->crc_errors;
  j["skipped_bytes"] = stream->skipped_bytes;
  j["messages"] = Json::array();
  for (const StreamMessages& row : stream->messages) {
    j["messages"].push_back(
        {{"type", row.type}, {"messages", row.messages}, {"damaged", row.damaged}, {"decoded", row.decoded}});
  }
  j["coarse_systems"] = stream->coarse_systems;
  j["coarse_steps"] = nullptr;
  if (!stream->coarse_systems.empty()) {
    j["coarse_steps"] = {{"pseudorange_m", kCoarseSteps.pseudorange_m},
                         {"phase_m", kCoarseSteps.phase_m},
                         {"snr_dbhz", kCoarseSteps.snr_dbhz}};
  }
  return j;
}

/// The parts of a document that hold figures.
class Parts {
 public:
  Parts(const Report& report, const FigureTables& tables) : report_(report), tables_(tables) {}

  Json Run() const;
  Json Headline() const {
    Json j;
    AddFigures(tables_.headline, report_.headline, j);
    return j;
  }
  /// What the library has of the run, in an object of its own.
  Json Library() const;

 private:
  Json LibraryRun() const;
  Json LibraryHeadline() const {
    Json j;
    AddFigures(tables_.library_headline, report_.library_headline, j);
    return j;
  }
  Json Systems() const;
  Json LibraryTotal() const {
    Json j;
    AddFigures(tables_.total, report_.library_total, j);
    AddBands("slots", tables_.slot, report_.library_total, j);
    return j;
  }
  Json Signals() const;
  Json Satellites() const;
  void AddWhole(const Figures& figures, Json& j) const {
    AddFigures(tables_.whole, figures, j);
    AddBands("bands", tables_.band, figures, j);
  }
  Json Coverage(const NavigationCoverage& row) const;

  const Report& report_;
  const FigureTables& tables_;
};

Json Parts::Coverage(const NavigationCoverage& row) const {
  Json j;
  j["satellite"] = row.satellite;
  j["state"] = StateOf(report_, row);
  j["first_reference"] = TimeJson(row.first_reference);
  j["last_reference"] = TimeJson(row.last_reference);
  AddFigures(tables_.coverage, row, j);
  return j;
}

Json Parts::Run() const {
  const ReportRun& run = report_.run;
  Json j;
  j["observation_file"] = run.observation_file;
  j["joined_files"] = run.joined_files;
  j["stream"] = StreamJson(run.stream);
  j["navigation_files"] = run.navigation_files;
  j["rinex_version"] = run.rinex_version > 0 ? NumberJson(run.rinex_version) : Json(nullptr);
  j["marker"] = TextJson(run.marker);
  j["receiver"] = TextJson(run.receiver);
  j["antenna"] = TextJson(run.antenna);
  j["first_epoch_gpst"] = TimeJson(run.first_epoch);
  j["last_epoch_gpst"] = TimeJson(run.last_epoch);
  j["interval_source"] = run.interval_source;
  j["selection"] = SelectionJson(run.selection);
  j["systems"] = run.systems;
  j["excluded_satellites"] = run.excluded;
  AddFigures(tables_.run, run, j);
  j["navigation_coverage"] = Json::array();
  for (const NavigationCoverage& row : run.navigation_coverage)
    j["navigation_coverage"].push_back(Coverage(row));
  return j;
}

Json Parts::LibraryRun() const {
  const ReportRun& run = report_.run;
  Json j;
  j["position_ecef_m"] = PositionJson(run.position_m);
  j["position_source"] = run.position_source;
  AddFigures(tables_.library_run, run, j);
  return j;
}

Json Parts::Systems() const {
  Json all = Json::array();
  for (const SystemReport& system : report_.systems) {
    Json j;
    j["letter"] = std::string(1, system.letter);
    j["name"] = system.name;
    j["optimal_combination"] = system.combination;
    j["signals"] = system.signals;
    AddWhole(system.figures, j);
    all.push_back(j);
  }
  return all;
}

Json Parts::Signals() const {
  Json all = Json::array();
  for (const SignalReport& s : report_.signals) {
    Json j;
    j["letter"] = std::string(1, s.letter);
    j["name"] = s.name;
    j["signal"] = s.signal;
    j["band"] = TextJson(s.band);
    AddFigures(tables_.signal, s, j);
    all.push_back(j);
  }
  return all;
}

Json Parts::Satellites() const {
  Json all = Json::array();
  for (const SatelliteReport& satellite : report_.satellites) {
    Json j;
    j["satellite"] = satellite.name;
    j["state"] = satellite.state;
    AddWhole(satellite.figures, j);
    all.push_back(j);
  }
  return all;
}

Json FindingJson(const Finding& finding) {
  Json j;
  j["id"] = finding.id;
  j["severity"] = finding.severity;
  j["title"] = finding.title;
  j["text"] = finding.text;
  j["figures"] = Json::object();
  for (const FindingFigure& f : finding.figures)
    j["figures"][f.key] = IsCount(f.key) ? Json(static_cast<std::int64_t>(f.value)) : Json(f.value);
  j["satellites"] = finding.satellites;
  j["signal"] = TextJson(finding.signal);
  return j;
}

Json OutcomeJson(const CriterionOutcome& outcome) {
  Json j;
  j["criterion"] = outcome.criterion;
  j["figure"] = outcome.figure;
  j["unit"] = outcome.unit;
  j["subject"] = TextJson(outcome.subject);
  j["signal"] = TextJson(outcome.signal);
  j["direction"] = outcome.at_least ? "at_least" : "at_most";
  j["good_limit"] = NumberJson(outcome.good_limit);
  j["fair_limit"] = NumberJson(outcome.fair_limit);
  j["value"] = ValueOf(outcome.value);
  j["grade"] = outcome.grade;
  j["missed_by"] = ValueOf(outcome.missed_by);
  j["source"] = outcome.source;
  return j;
}

Json VerdictJson(const Verdict& verdict) {
  Json j;
  j["text"] = verdict.text;
  j["grade"] = verdict.grade;
  return j;
}

Json ProfileJson(const ProfileVerdict& verdict) {
  Json j;
  j["profile"] = verdict.profile;
  j["title"] = verdict.title;
  j["grade"] = verdict.grade;
  j["passed"] = verdict.passed;
  j["satellites_observed"] = ValueOf(verdict.satellites_observed);
  j["satellites_judged"] = ValueOf(verdict.satellites_judged);
  j["outcomes"] = Json::array();
  for (const CriterionOutcome& outcome : verdict.outcomes) j["outcomes"].push_back(OutcomeJson(outcome));
  j["remarks"] = verdict.remarks;
  return j;
}

Json ComparisonJson(const std::optional<Comparison>& comparison) {
  if (!comparison) return nullptr;
  Json j;
  j["file"] = comparison->file;
  j["observation_file"] = comparison->observation_file;
  j["first_epoch_gpst"] = TextJson(comparison->first_epoch);
  j["last_epoch_gpst"] = TextJson(comparison->last_epoch);
  j["statements"] = Json::array();
  for (const StatementChange& change : comparison->statements) {
    j["statements"].push_back(
        {{"what", change.what}, {"before", TextJson(change.before)}, {"after", TextJson(change.after)}});
  }
  j["signals_gone"] = comparison->signals_gone;
  j["signals_appeared"] = comparison->signals_appeared;
  j["figures"] = Json::array();
  for (const FigureChange& change : comparison->figures) {
    j["figures"].push_back({{"subject", TextJson(change.subject)},
                            {"signal", TextJson(change.signal)},
                            {"figure", change.figure},
                            {"unit", change.unit},
                            {"before", ValueOf(change.before)},
                            {"after", ValueOf(change.after)},
                            {"limit", change.limit},
                            {"worse", ValueOf(change.worse)}});
  }
  j["figures_compared"] = comparison->figures_compared;
  return j;
}

Json AbsenceJson(const std::optional<LibraryAbsence>& absence) {
  if (!absence) return nullptr;
  Json j;
  j["id"] = absence->id;
  j["text"] = absence->text;
  return j;
}

Json NoteJson(const ReportNote& note) {
  Json j;
  j["id"] = note.id;
  j["text"] = note.text;
  j["figures"] = note.figures;
  j["system"] = TextJson(note.system);
  j["bands"] = note.bands;
  return j;
}

Json NoticeJson(const ReportNotice& notice) {
  Json j;
  j["file"] = notice.file;
  j["line"] = notice.line > 0 ? Json(notice.line) : Json(nullptr);
  j["text"] = notice.text;
  j["count"] = notice.count;
  j["recovered"] = notice.recovered;
  return j;
}

Json Parts::Library() const {
  Json j;
  j["absence"] = AbsenceJson(report_.run.library_absence);
  j["headline"] = LibraryHeadline();
  j["run"] = LibraryRun();
  j["systems"] = Systems();
  j["library_total"] = LibraryTotal();
  j["signals"] = Signals();
  if (report_.show_satellites) j["satellites"] = Satellites();
  j["notes"] = Json::array();
  for (const ReportNote& note : report_.notes) j["notes"].push_back(NoteJson(note));
  return j;
}

}  // namespace

std::string WriteJson(const Report& report, const FigureTables& tables) {
  const Parts parts(report, tables);
  const bool analysis = report.figures != FigureChoice::kLibrary;
  Json j;
  j["format"] = kJsonFormat;
  j["library_version"] = report.run.library_version;
  j["verdict"] = VerdictJson(report.verdict);
  j["comparison"] = ComparisonJson(report.comparison);
  j["findings"] = Json::array();
  for (const Finding& finding : report.findings) j["findings"].push_back(FindingJson(finding));
  if (analysis) j["headline"] = parts.Headline();
  j["profile"] = report.profile_verdict ? ProfileJson(*report.profile_verdict) : Json(nullptr);
  j["run"] = parts.Run();
  if (analysis) j["analysis"] = AnalysisJson(report, tables);
  if (report.figures != FigureChoice::kAnalysis) j["library"] = parts.Library();
  j["notices"] = Json::array();
  for (const ReportNotice& notice : report.notices) j["notices"].push_back(NoticeJson(notice));
  j["further_notices"] = report.further_notices;
  return j.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string WriteJsonFailure(const std::string& file, const std::string& error) {
  Json j;
  j["format"] = kJsonFormat;
  j["observation_file"] = file;
  j["error"] = error;
  return j.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace orsolva_host
