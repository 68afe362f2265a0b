#include "python/src/report_records.h"

#include <nanobind/stl/array.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/report/figure_tables.h"
#include "host/report/figures.h"
#include "host/rinex/civil_time.h"

namespace orsolva_python {
namespace {

namespace nb = nanobind;
using namespace orsolva_host;

nb::object TextOf(const std::string& text) {
  return nb::steal(PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace"));
}

nb::object TextOrNone(const std::string& text) {
  return text.empty() ? nb::object(nb::none()) : TextOf(text);
}

nb::list TextsOf(const std::vector<std::string>& texts) {
  nb::list list;
  for (const std::string& text : texts) list.append(TextOf(text));
  return list;
}

nb::object TimeOf(const std::optional<Time_gbt>& time) {
  return time ? TextOf(TimeText(*time)) : nb::object(nb::none());
}

nb::object FigureOf(const std::optional<double>& value, FigureKind kind) {
  if (!value) return nb::none();
  if (kind == FigureKind::kYesNo) return nb::bool_(*value != 0);
  if (IsCount(kind)) return nb::int_(static_cast<std::int64_t>(*value));
  return nb::float_(*value);
}

template <typename Owner>
void AddFigures(const std::vector<FigureRow<Owner>>& rows, const Owner& owner, nb::dict& record) {
  for (const FigureRow<Owner>& row : rows) record[row.key] = FigureOf(row.get(owner), row.kind);
}

nb::object PositionOf(const std::optional<std::array<double, 3>>& position) {
  if (!position) return nb::none();
  return nb::make_tuple((*position)[0], (*position)[1], (*position)[2]);
}

nb::object AbsenceOf(const std::optional<LibraryAbsence>& absence) {
  if (!absence) return nb::none();
  nb::dict record;
  record["id"] = TextOf(absence->id);
  record["text"] = TextOf(absence->text);
  return record;
}

nb::dict FindingRecord(const Finding& finding) {
  nb::dict record, figures;
  record["id"] = TextOf(finding.id);
  record["severity"] = TextOf(finding.severity);
  record["title"] = TextOf(finding.title);
  record["text"] = TextOf(finding.text);
  for (const FindingFigure& figure : finding.figures) {
    if (IsCount(figure.key)) {
      figures[figure.key.c_str()] = static_cast<std::int64_t>(figure.value);
    } else {
      figures[figure.key.c_str()] = figure.value;
    }
  }
  record["figures"] = figures;
  record["satellites"] = TextsOf(finding.satellites);
  record["signal"] = TextOrNone(finding.signal);
  return record;
}

/// None where everything was judged.
nb::object SelectionRecord(const std::optional<ReportSelection>& selection) {
  if (!selection) return nb::none();
  nb::dict record;
  record["start_gpst"] = TimeOf(selection->start);
  record["end_gpst"] = TimeOf(selection->end);
  record["sampling_s"] = selection->sampling_s ? nb::object(nb::float_(*selection->sampling_s)) : nb::none();
  record["signals"] = TextOrNone(selection->signals);
  record["epochs_left_out"] = selection->epochs_left_out;
  return record;
}

const char* TypeOf(FigureKind kind) {
  if (kind == FigureKind::kYesNo) return "bool";
  return IsCount(kind) ? "int" : "float";
}

template <typename Owner>
void AddMembers(const char* part, const std::vector<FigureRow<Owner>>& rows, nb::list& members) {
  for (const FigureRow<Owner>& row : rows) {
    const Figure* text = FindFigure(row.key);
    members.append(nb::make_tuple(part, row.key, TypeOf(row.kind), UnitOf(row.kind),
                                  text != nullptr ? text->title : std::string()));
  }
}

}  // namespace

nb::object StreamRecord(const std::optional<StreamFacts>& stream) {
  if (!stream) return nb::none();
  nb::dict record;
  nb::list messages;
  for (const StreamMessages& message : stream->messages) {
    nb::dict row;
    row["type"] = message.type;
    row["messages"] = message.messages;
    row["damaged"] = message.damaged;
    row["decoded"] = message.decoded;
    messages.append(row);
  }
  record["format"] = TextOf(stream->format);
  record["frames"] = stream->frames;
  record["crc_errors"] = stream->crc_errors;
  record["skipped_bytes"] = stream->skipped_bytes;
  record["messages"] = messages;
  record["coarse_systems"] = TextOf(stream->coarse_systems);
  return record;
}

nb::dict RunRecord(const Report& report) {
  const ReportRun& run = report.run;
  nb::dict record;
  record["observation_file"] = TextOf(run.observation_file);
  record["navigation_files"] = TextsOf(run.navigation_files);
  record["rinex_version"] = run.rinex_version > 0 ? nb::object(nb::float_(run.rinex_version)) : nb::none();
  record["marker"] = TextOrNone(run.marker);
  record["receiver"] = TextOrNone(run.receiver);
  record["antenna"] = TextOrNone(run.antenna);
  record["first_epoch_gpst"] = TimeOf(run.first_epoch);
  record["last_epoch_gpst"] = TimeOf(run.last_epoch);
  record["interval_source"] = TextOf(run.interval_source);
  record["selection"] = SelectionRecord(run.selection);
  record["joined_files"] = TextsOf(run.joined_files);
  record["stream"] = StreamRecord(run.stream);
  record["systems"] = TextOf(run.systems);
  record["excluded_satellites"] = TextsOf(run.excluded);
  record["library_version"] = TextOf(run.library_version);
  AddFigures(AllFigures().run, run, record);
  return record;
}

nb::dict HeadlineRecord(const Report& report) {
  nb::dict record;
  AddFigures(AllFigures().headline, report.headline, record);
  return record;
}

nb::dict AnalysisRecord(const Report& report) {
  const analysis::AnalysisResult& result = report.analysis.figures;
  nb::dict record;
  record["with_orbits"] = result.with_orbits;
  record["solution_ecef_m"] = PositionOf(result.position.mean_m);
  nb::list without;
  for (const SatelliteId id : result.without_record) without.append(NameOf(id));
  record["without_orbit"] = without;
  record["further_events"] = report.analysis.further_events;
  AddFigures(AllFigures().analysis, result, record);
  return record;
}

nb::dict LibraryHeadlineRecord(const Report& report) {
  nb::dict record;
  AddFigures(AllFigures().library_headline, report.library_headline, record);
  return record;
}

nb::dict LibraryRunRecord(const Report& report) {
  nb::dict record;
  record["absence"] = AbsenceOf(report.run.library_absence);
  record["position_ecef_m"] = PositionOf(report.run.position_m);
  record["position_source"] = TextOf(report.run.position_source);
  AddFigures(AllFigures().library_run, report.run, record);
  return record;
}

nb::dict LibraryTotalRecord(const Report& report) {
  nb::dict record;
  AddFigures(AllFigures().total, report.library_total, record);
  return record;
}

nb::dict VerdictRecord(const Report& report) {
  nb::dict record;
  record["grade"] = TextOf(report.verdict.grade);
  record["text"] = TextOf(report.verdict.text);
  return record;
}

nb::object ProfileRecord(const Report& report) {
  if (!report.profile_verdict) return nb::none();
  const ProfileVerdict& verdict = *report.profile_verdict;
  nb::dict record;
  record["profile"] = TextOf(verdict.profile);
  record["title"] = TextOf(verdict.title);
  record["grade"] = TextOf(verdict.grade);
  record["passed"] = verdict.passed;
  record["remarks"] = TextsOf(verdict.remarks);
  record["satellites_observed"] = nb::cast(verdict.satellites_observed);
  record["satellites_judged"] = nb::cast(verdict.satellites_judged);
  return record;
}

nb::object ComparisonRecord(const Report& report) {
  if (!report.comparison) return nb::none();
  const Comparison& comparison = *report.comparison;
  nb::dict record;
  nb::list statements;
  for (const StatementChange& change : comparison.statements) {
    nb::dict row;
    row["what"] = TextOf(change.what);
    row["before"] = TextOf(change.before);
    row["after"] = TextOf(change.after);
    statements.append(row);
  }
  record["file"] = TextOf(comparison.file);
  record["observation_file"] = TextOf(comparison.observation_file);
  record["first_epoch_gpst"] = TextOrNone(comparison.first_epoch);
  record["last_epoch_gpst"] = TextOrNone(comparison.last_epoch);
  record["statements"] = statements;
  record["signals_appeared"] = TextsOf(comparison.signals_appeared);
  record["signals_gone"] = TextsOf(comparison.signals_gone);
  record["figures_compared"] = comparison.figures_compared;
  record["figures_changed"] = comparison.figures.size();
  return record;
}

nb::list FindingRecords(const Report& report) {
  nb::list records;
  for (const Finding& finding : report.findings) records.append(FindingRecord(finding));
  return records;
}

nb::list FigureMembers() {
  const FigureTables& tables = AllFigures();
  nb::list members;
  AddMembers("run", tables.run, members);
  AddMembers("headline", tables.headline, members);
  AddMembers("analysis", tables.analysis, members);
  AddMembers("library_headline", tables.library_headline, members);
  AddMembers("library_run", tables.library_run, members);
  AddMembers("library_total", tables.total, members);
  AddMembers("systems", tables.analysis_system, members);
  AddMembers("signals", tables.analysis_signal, members);
  AddMembers("satellites", tables.analysis_satellite, members);
  AddMembers("wide_lanes", tables.wide_lane, members);
  AddMembers("windows", tables.window, members);
  AddMembers("window_systems", tables.window_system, members);
  AddMembers("window_signals", tables.window_signal, members);
  AddMembers("library_systems", tables.whole, members);
  AddMembers("library_signals", tables.signal, members);
  AddMembers("library_bands", tables.band, members);
  AddMembers("navigation_coverage", tables.coverage, members);
  return members;
}

}  // namespace orsolva_python
