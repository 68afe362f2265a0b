#include "python/src/verdict_tables.h"

#include <string>

#include "host/report/figure_list.h"
#include "python/src/notice_table.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;

const char* NameOf(FigureScope scope) {
  switch (scope) {
    case FigureScope::kRun:
      return "run";
    case FigureScope::kHeadline:
      return "headline";
    case FigureScope::kLibraryTotal:
      return "library_total";
    case FigureScope::kSystem:
      return "system";
    case FigureScope::kSatellite:
      return "satellite";
    case FigureScope::kSignal:
      return "signal";
    case FigureScope::kWindow:
      return "window";
  }
  return "";
}

Table AllOfThem(const Report& report) {
  Table table;
  Column& scopes = table.Add("scope", ColumnKind::kName);
  Column& subjects = table.Add("subject", ColumnKind::kName);
  Column& signals = table.Add("signal", ColumnKind::kName);
  Column& keys = table.Add("key", ColumnKind::kName);
  Column& units = table.Add("unit", ColumnKind::kName);
  Column& values = table.Add("value", ColumnKind::kReal);
  for (const FigureValue& figure : ListFigures(report)) {
    scopes.AddText(NameOf(figure.scope));
    subjects.AddTextOrNull(figure.subject);
    signals.AddTextOrNull(figure.signal);
    keys.AddText(figure.key);
    units.AddTextOrNull(std::string(figure.unit));
    values.AddReal(figure.value.value_or(kAbsent));
  }
  return table;
}

Table Outcomes(const Report& report) {
  Table table;
  const char* const texts[] = {"criterion", "figure",    "unit",  "subject",
                               "signal",    "direction", "grade", "source"};
  Column* text[std::size(texts)];
  for (std::size_t i = 0; i < std::size(texts); ++i) text[i] = &table.Add(texts[i], ColumnKind::kName);
  Column& good = table.Add("good_limit", ColumnKind::kReal);
  Column& fair = table.Add("fair_limit", ColumnKind::kReal);
  Column& values = table.Add("value", ColumnKind::kReal);
  Column& missed = table.Add("missed_by", ColumnKind::kReal);
  if (!report.profile_verdict) return table;
  for (const CriterionOutcome& outcome : report.profile_verdict->outcomes) {
    const std::string row[] = {outcome.criterion, outcome.figure, outcome.unit,
                               outcome.subject,   outcome.signal, outcome.at_least ? "at_least" : "at_most",
                               outcome.grade,     outcome.source};
    for (std::size_t i = 0; i < std::size(texts); ++i) text[i]->AddTextOrNull(row[i]);
    good.AddReal(outcome.good_limit);
    fair.AddReal(outcome.fair_limit);
    values.AddReal(outcome.value.value_or(kAbsent));
    missed.AddReal(outcome.missed_by.value_or(kAbsent));
  }
  return table;
}

Table Changes(const Report& report) {
  Table table;
  Column& subjects = table.Add("subject", ColumnKind::kName);
  Column& signals = table.Add("signal", ColumnKind::kName);
  Column& figures = table.Add("figure", ColumnKind::kName);
  Column& units = table.Add("unit", ColumnKind::kName);
  Column& before = table.Add("before", ColumnKind::kReal);
  Column& after = table.Add("after", ColumnKind::kReal);
  Column& limits = table.Add("limit", ColumnKind::kReal);
  if (!report.comparison) return table;
  for (const FigureChange& change : report.comparison->figures) {
    subjects.AddTextOrNull(change.subject);
    signals.AddTextOrNull(change.signal);
    figures.AddText(change.figure);
    units.AddTextOrNull(change.unit);
    before.AddReal(change.before.value_or(kAbsent));
    after.AddReal(change.after.value_or(kAbsent));
    limits.AddReal(change.limit);
  }
  return table;
}

Table Notes(const Report& report) {
  Table table;
  Column& ids = table.Add("id", ColumnKind::kText);
  Column& texts = table.Add("text", ColumnKind::kText);
  Column& figures = table.Add("figures", ColumnKind::kTexts);
  Column& systems = table.Add("system", ColumnKind::kName);
  Column& bands = table.Add("bands", ColumnKind::kTexts);
  for (const ReportNote& note : report.notes) {
    ids.AddText(note.id);
    texts.AddText(note.text);
    figures.AddTexts(note.figures);
    systems.AddTextOrNull(note.system);
    bands.AddTexts(note.bands);
  }
  return table;
}

Table Notices(const Report& report) { return NoticeTableOf(report.notices); }

}  // namespace

std::vector<ReportTable> VerdictTables() {
  return {
      {"outcomes", Outcomes}, {"changes", Changes},   {"notes", Notes},
      {"notices", Notices},   {"figures", AllOfThem},
  };
}

}  // namespace orsolva_python
