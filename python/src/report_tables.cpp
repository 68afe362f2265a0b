#include "python/src/report_tables.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "host/report/figure_list.h"
#include "host/report/figure_tables.h"
#include "host/report/library_headline.h"
#include "host/report/run_events.h"
#include "python/src/figure_columns.h"
#include "python/src/notice_table.h"

namespace orsolva_python {
namespace {

using namespace orsolva_host;
using analysis::SignalFigures;

std::string Letter(char letter) { return {letter}; }

std::int64_t Nanoseconds(const Time_gbt& time) {
  return time.time * kNanosecondsPerSecond + std::llround(time.sec * 1e9);
}

std::optional<std::int64_t> Nanoseconds(const std::optional<Time_gbt>& time) {
  return time ? std::optional<std::int64_t>(Nanoseconds(*time)) : std::nullopt;
}

std::vector<std::string> Names(const std::vector<SignalCode>& codes) {
  std::vector<std::string> names;
  for (const SignalCode code : codes) names.push_back(NameOf(code));
  return names;
}

Table Systems(const Report& report) {
  Table table;
  Column& letters = table.Add("system", ColumnKind::kName);
  for (const auto& system : report.analysis.figures.systems) letters.AddText(Letter(system.letter));
  AddFigureColumns(AllFigures().analysis_system, Pointers(report.analysis.figures.systems), table);
  return table;
}

Table SignalTable(const std::vector<SignalFigures>& signals, bool by_satellite) {
  Table table;
  Column& systems = table.Add("system", ColumnKind::kName);
  Column* const satellites = by_satellite ? &table.Add("satellite", ColumnKind::kName) : nullptr;
  Column& codes = table.Add("signal", ColumnKind::kName);
  Column& partners = table.Add("multipath_partner", ColumnKind::kName);
  Column& methods = table.Add("phase_noise_method", ColumnKind::kName);
  for (const SignalFigures& signal : signals) {
    systems.AddText(Letter(signal.system));
    if (satellites != nullptr) satellites->AddText(NameOf(signal.satellite));
    codes.AddText(NameOf(signal.code));
    partners.AddTextOrNull(signal.multipath.partner);
    methods.AddTextOrNull(signal.phase_noise.method);
  }
  AddFigureColumns(AllFigures().analysis_signal, Pointers(signals), table);
  return table;
}

Table Signals(const Report& report) { return SignalTable(report.analysis.figures.signals, false); }

Table SatelliteSignals(const Report& report) {
  return SignalTable(report.analysis.figures.satellite_signals, true);
}

Table Satellites(const Report& report) {
  Table table;
  Column& names = table.Add("satellite", ColumnKind::kName);
  Column& firsts = table.Add("first_epoch", ColumnKind::kTime);
  Column& lasts = table.Add("last_epoch", ColumnKind::kTime);
  Column& lacking = table.Add("lacking_signals", ColumnKind::kTexts);
  for (const auto& satellite : report.analysis.figures.satellites) {
    names.AddText(NameOf(satellite.id));
    firsts.AddTime(satellite.first_ns);
    lasts.AddTime(satellite.last_ns);
    lacking.AddTexts(Names(satellite.lacking));
  }
  AddFigureColumns(AllFigures().analysis_satellite, Pointers(report.analysis.figures.satellites), table);
  return table;
}

Table WideLanes(const Report& report) {
  Table table;
  Column& systems = table.Add("system", ColumnKind::kName);
  Column& firsts = table.Add("signal", ColumnKind::kName);
  Column& seconds = table.Add("second_signal", ColumnKind::kName);
  for (const auto& pair : report.analysis.figures.wide_lanes) {
    systems.AddText(Letter(pair.system));
    firsts.AddText(NameOf(pair.first));
    seconds.AddText(NameOf(pair.second));
  }
  AddFigureColumns(AllFigures().wide_lane, Pointers(report.analysis.figures.wide_lanes), table);
  return table;
}

/// The rows of one list of elevation bins.
class BinTable {
 public:
  void Add(const SignalFigures& signal, const char* figure, const std::vector<analysis::ElevationBin>& bins) {
    const std::string satellite = signal.satellite.system == ' ' ? std::string() : NameOf(signal.satellite);
    for (const analysis::ElevationBin& bin : bins) {
      systems_.AddText(Letter(signal.system));
      satellites_.AddTextOrNull(satellite);
      signals_.AddText(NameOf(signal.code));
      figures_.AddText(figure);
      from_.AddWhole(std::int64_t{bin.from_deg});
      to_.AddWhole(std::int64_t{bin.to_deg});
      value_.AddReal(bin.value);
      values_.AddWhole(static_cast<std::int64_t>(bin.values));
    }
  }
  void Add(const std::vector<SignalFigures>& signals) {
    for (const SignalFigures& signal : signals) {
      Add(signal, "strength_mean_dbhz", signal.strength.mean_by_elevation);
      Add(signal, "strength_p5_dbhz", signal.strength.p5_by_elevation);
      Add(signal, "multipath_moving_rms_m", signal.multipath.by_elevation);
    }
  }

  Table table;

 private:
  Column& systems_ = table.Add("system", ColumnKind::kName);
  Column& satellites_ = table.Add("satellite", ColumnKind::kName);
  Column& signals_ = table.Add("signal", ColumnKind::kName);
  Column& figures_ = table.Add("figure", ColumnKind::kName);
  Column& from_ = table.Add("from_deg", ColumnKind::kWhole);
  Column& to_ = table.Add("to_deg", ColumnKind::kWhole);
  Column& value_ = table.Add("value", ColumnKind::kReal);
  Column& values_ = table.Add("values", ColumnKind::kWhole);
};

Table ByElevation(const Report& report) {
  BinTable bins;
  bins.Add(report.analysis.figures.signals);
  bins.Add(report.analysis.figures.satellite_signals);
  return bins.table;
}

Table Drops(const Report& report) {
  Table table;
  Column& satellites = table.Add("satellite", ColumnKind::kName);
  Column& signals = table.Add("signal", ColumnKind::kName);
  Column& from = table.Add("from_time", ColumnKind::kTime);
  Column& to = table.Add("to_time", ColumnKind::kTime);
  Column& mean = table.Add("mean_drop_db", ColumnKind::kReal);
  Column& largest = table.Add("largest_drop_db", ColumnKind::kReal);
  Column& others = table.Add("other_bands_dropped", ColumnKind::kYesNo);
  for (const SignalFigures& signal : report.analysis.figures.satellite_signals) {
    for (const analysis::StrengthDrop& drop : signal.strength.drops) {
      satellites.AddText(NameOf(signal.satellite));
      signals.AddText(NameOf(signal.code));
      from.AddTime(drop.from_ns);
      to.AddTime(drop.to_ns);
      mean.AddReal(drop.mean_drop_db);
      largest.AddReal(drop.largest_drop_db);
      others.AddYesNo(drop.other_bands);
    }
  }
  return table;
}

Table Gaps(const Report& report) {
  Table table;
  Column& before = table.Add("last_before", ColumnKind::kTime);
  Column& after = table.Add("first_after", ColumnKind::kTime);
  Column& missing = table.Add("missing_epochs", ColumnKind::kWhole);
  for (const analysis::DataGap& gap : report.analysis.figures.span.gaps) {
    before.AddTime(gap.last_before_ns);
    after.AddTime(gap.first_after_ns);
    missing.AddWhole(static_cast<std::int64_t>(gap.missing_epochs));
  }
  return table;
}

Table NeverObserved(const Report& report) {
  Table table;
  Column& names = table.Add("satellite", ColumnKind::kName);
  Column& healthy = table.Add("healthy_epochs", ColumnKind::kWhole);
  Column& unhealthy = table.Add("unhealthy_epochs", ColumnKind::kWhole);
  for (const auto& satellite : report.analysis.figures.never_observed) {
    names.AddText(NameOf(satellite.id));
    healthy.AddWhole(static_cast<std::int64_t>(satellite.healthy_epochs));
    unhealthy.AddWhole(static_cast<std::int64_t>(satellite.unhealthy_epochs));
  }
  return table;
}

Table Contradictions(const Report& report) {
  Table table;
  Column& ids = table.Add("id", ColumnKind::kText);
  Column& stated = table.Add("stated", ColumnKind::kText);
  Column& found = table.Add("found", ColumnKind::kText);
  for (const auto& contradiction : report.analysis.figures.contradictions) {
    ids.AddText(contradiction.id);
    stated.AddText(contradiction.stated);
    found.AddText(contradiction.found);
  }
  return table;
}

/// Events that rest on no comparison of explanations have no score.
double ScoreOf(const analysis::Event& event, double nats) {
  return event.score == 0 && event.margin == 0 ? kAbsent : nats;
}

Table Events(const Report& report) {
  Table table;
  Column& times = table.Add("time", ColumnKind::kTime);
  Column& satellites = table.Add("satellite", ColumnKind::kName);
  Column& kinds = table.Add("kind", ColumnKind::kName);
  Column& elevations = table.Add("elevation_deg", ColumnKind::kReal);
  Column& signals = table.Add("signals", ColumnKind::kTexts);
  Column& cycles = table.Add("size_cycles", ColumnKind::kReals);
  Column& milliseconds = table.Add("clock_size_ms", ColumnKind::kReal);
  Column& is_slip = table.Add("is_slip", ColumnKind::kYesNo);
  Column& sure = table.Add("sure", ColumnKind::kYesNo);
  Column& scores = table.Add("score", ColumnKind::kReal);
  Column& margins = table.Add("margin", ColumnKind::kReal);
  Column& gaps = table.Add("gap_s", ColumnKind::kReal);
  Column& locks = table.Add("loss_of_lock", ColumnKind::kYesNo);
  Column& evidence = table.Add("evidence", ColumnKind::kText);
  for (const analysis::Event& event : report.analysis.events) {
    const bool is_clock = event.kind == analysis::EventKind::kReceiverClockReset ||
                          event.kind == analysis::EventKind::kCodeClockJump;
    times.AddTime(event.time_ns);
    satellites.AddTextOrNull(event.satellite.system == ' ' ? std::string() : NameOf(event.satellite));
    kinds.AddText(analysis::NameOf(event.kind));
    elevations.AddReal(event.elevation_deg);
    signals.AddTexts(Names(event.signals));
    cycles.AddReals(is_clock ? std::vector<double>() : event.sizes);
    milliseconds.AddReal(is_clock && !event.sizes.empty() ? event.sizes.front() : kAbsent);
    is_slip.AddYesNo(analysis::IsSlip(event.kind));
    sure.AddYesNo(event.sure);
    scores.AddReal(ScoreOf(event, event.score));
    margins.AddReal(ScoreOf(event, event.margin));
    gaps.AddReal(event.gap_s);
    locks.AddYesNo(event.loss_of_lock);
    evidence.AddTextOrNull(event.evidence);
  }
  return table;
}

Table LibrarySystems(const Report& report) {
  Table table;
  Column& letters = table.Add("system", ColumnKind::kName);
  Column& names = table.Add("name", ColumnKind::kName);
  Column& combinations = table.Add("optimal_combination", ColumnKind::kTexts);
  Column& signals = table.Add("signals", ColumnKind::kTexts);
  std::vector<const Figures*> figures;
  for (const SystemReport& system : report.systems) {
    letters.AddText(Letter(system.letter));
    names.AddText(system.name);
    combinations.AddTexts(system.combination);
    signals.AddTexts(system.signals);
    figures.push_back(&system.figures);
  }
  AddFigureColumns(AllFigures().whole, figures, table);
  return table;
}

Table LibrarySignals(const Report& report) {
  Table table;
  Column& letters = table.Add("system", ColumnKind::kName);
  Column& signals = table.Add("signal", ColumnKind::kName);
  Column& bands = table.Add("band", ColumnKind::kName);
  for (const SignalReport& signal : report.signals) {
    letters.AddText(Letter(signal.letter));
    signals.AddText(signal.signal);
    bands.AddTextOrNull(signal.band);
  }
  AddFigureColumns(AllFigures().signal, Pointers(report.signals), table);
  return table;
}

Table LibrarySatellites(const Report& report) {
  Table table;
  Column& names = table.Add("satellite", ColumnKind::kName);
  Column& states = table.Add("state", ColumnKind::kName);
  std::vector<const Figures*> figures;
  for (const SatelliteReport& satellite : report.satellites) {
    names.AddText(satellite.name);
    states.AddText(satellite.state);
    figures.push_back(&satellite.figures);
  }
  AddFigureColumns(AllFigures().whole, figures, table);
  return table;
}

/// The bands of the library total, of systems and of satellites.
Table LibraryBands(const Report& report) {
  Table table;
  Column& subjects = table.Add("subject", ColumnKind::kName);
  Column& slots = table.Add("slot", ColumnKind::kWhole);
  Column& names = table.Add("band", ColumnKind::kName);
  std::vector<const BandFigures*> bands;
  const auto add = [&](const std::string& subject, const Figures& figures) {
    for (const BandFigures& band : figures.bands) {
      subjects.AddText(subject);
      slots.AddWhole(std::int64_t{band.slot});
      names.AddTextOrNull(band.band);
      bands.push_back(&band);
    }
  };
  add("all", report.library_total);
  for (const SystemReport& system : report.systems) add(Letter(system.letter), system.figures);
  for (const SatelliteReport& satellite : report.satellites) add(satellite.name, satellite.figures);
  AddFigureColumns(AllFigures().band, bands, table);
  return table;
}

Table Coverage(const Report& report) {
  Table table;
  Column& names = table.Add("satellite", ColumnKind::kName);
  Column& states = table.Add("state", ColumnKind::kName);
  Column& firsts = table.Add("first_reference", ColumnKind::kTime);
  Column& lasts = table.Add("last_reference", ColumnKind::kTime);
  for (const NavigationCoverage& row : report.run.navigation_coverage) {
    names.AddText(row.satellite);
    states.AddText(StateOf(report, row));
    firsts.AddTime(Nanoseconds(row.first_reference));
    lasts.AddTime(Nanoseconds(row.last_reference));
  }
  AddFigureColumns(AllFigures().coverage, Pointers(report.run.navigation_coverage), table);
  return table;
}

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

const std::vector<ReportTable>& ReportTables() {
  static const std::vector<ReportTable> kTables = {
      {"systems", Systems},
      {"signals", Signals},
      {"satellites", Satellites},
      {"satellite_signals", SatelliteSignals},
      {"wide_lanes", WideLanes},
      {"by_elevation", ByElevation},
      {"events", Events},
      {"gaps", Gaps},
      {"strength_drops", Drops},
      {"never_observed", NeverObserved},
      {"contradictions", Contradictions},
      {"library_systems", LibrarySystems},
      {"library_signals", LibrarySignals},
      {"library_satellites", LibrarySatellites},
      {"library_bands", LibraryBands},
      {"navigation_coverage", Coverage},
      {"outcomes", Outcomes},
      {"notes", Notes},
      {"notices", Notices},
      {"figures", AllOfThem},
  };
  return kTables;
}

Table ArcTable(const DetailCollector& detail) {
  Table table;
  Column& satellites = table.Add("satellite", ColumnKind::kName);
  Column& firsts = table.Add("first_epoch", ColumnKind::kTime);
  Column& lasts = table.Add("last_epoch", ColumnKind::kTime);
  Column& first_above = table.Add("first_above_cutoff", ColumnKind::kYesNo);
  Column& last_above = table.Add("last_above_cutoff", ColumnKind::kYesNo);
  const auto time = [&](EpochIndex epoch) {
    return Nanoseconds(detail.First()) + std::llround(epoch * detail.IntervalS() * 1e9);
  };
  for (const auto& [number, columns] : detail.Satellites()) {
    for (const Arc& arc : columns.arcs) {
      satellites.AddText(orsolva_host::NameOf(columns.satellite));
      firsts.AddTime(time(arc.first));
      lasts.AddTime(time(arc.last));
      first_above.AddYesNo(arc.first_above);
      last_above.AddYesNo(arc.last_above);
    }
  }
  return table;
}

}  // namespace orsolva_python
