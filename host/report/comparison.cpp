#include "host/report/comparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string_view>
#include <tuple>

#include "host/report/figures.h"
#include "host/report/watched_figures.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

using Place = EarlierReport::Place;

constexpr std::size_t kMaxFiguresShown = 20;

FigureScope ScopeOf(const Place& place) {
  const auto& [subject, signal, key] = place;
  if (subject.empty()) return FigureScope::kRun;
  return signal.empty() ? FigureScope::kSystem : FigureScope::kSignal;
}

std::vector<std::string> SignalsOnlyIn(const EarlierReport& report, const EarlierReport& other) {
  std::vector<std::string> names;
  for (const std::string& name : report.signals) {
    if (!other.HasSignal(name)) names.push_back(name);
  }
  return names;
}

/// Whether a report holds the system or signal of a place.
bool Holds(const EarlierReport& report, const Place& place) {
  // A structured binding would do for g++ alone: C++17 lets no lambda capture one.
  const std::string& subject = std::get<0>(place);
  const std::string& signal = std::get<1>(place);
  if (!signal.empty()) return report.HasSignal(subject + " " + signal);
  return subject.empty() || std::any_of(report.signals.begin(), report.signals.end(),
                                        [&](const std::string& s) { return s[0] == subject[0]; });
}

/// By how much a change exceeds its limit; what only one report has exceeds any.
double Excess(const FigureChange& change) {
  constexpr double kAll = 1e9;
  if (!change.before || !change.after) return kAll;
  const double difference = std::fabs(*change.after - *change.before);
  return change.limit > 0 ? difference / change.limit : kAll;
}

void AddStatements(const EarlierReport& before, const EarlierReport& now, Comparison& comparison) {
  const auto add = [&comparison](const char* what, const std::string& a, const std::string& b) {
    if (a != b) comparison.statements.push_back({what, a, b});
  };
  add("marker", before.marker, now.marker);
  add("receiver", before.receiver, now.receiver);
  add("antenna", before.antenna, now.antenna);
}

/// Whether the figure became worse. One that only one report has says nothing of that.
std::optional<bool> IsWorse(const FigureChange& change, Better better) {
  if (better == Better::kNeither || !change.before || !change.after) return std::nullopt;
  return (*change.after > *change.before) == (better == Better::kLower);
}

/// A value in the shortest form that shows a change of the size of the limit.
std::string Shown(const std::optional<double>& value, const FigureChange& change) {
  if (!value) return "none";
  if (change.unit == "1" && change.figure.find("ratio") != std::string::npos)
    return fmt::format("{:.2f} %", *value * 100);
  const int decimals = IsCount(change.figure) ? 0 : change.limit >= 1 ? 1 : change.limit >= 0.1 ? 2 : 3;
  std::string text = fmt::format("{:.{}f}", *value, decimals);
  if (change.unit != "1") text += " " + change.unit;
  return text;
}

}  // namespace

const EarlierReport& ReportToCompare(const std::vector<EarlierReport>& earlier, const EarlierReport& now) {
  if (earlier.size() == 1) return earlier.front();
  std::string names;
  for (const EarlierReport& report : earlier) {
    if (SameStation(report, now)) return report;
    names += (names.empty() ? "" : ", ") + report.Station();
  }
  const std::string file = earlier.empty() ? std::string() : earlier.front().file;
  throw EarlierReportError(fmt::format("{}: holds no report of {}, only of {}", file, now.Station(), names));
}

Comparison Compare(const EarlierReport& before, const EarlierReport& now) {
  Comparison comparison;
  comparison.file = before.file;
  comparison.observation_file = before.observation_file;
  comparison.first_epoch = before.first_epoch;
  comparison.last_epoch = before.last_epoch;
  AddStatements(before, now, comparison);
  comparison.signals_gone = SignalsOnlyIn(before, now);
  comparison.signals_appeared = SignalsOnlyIn(now, before);
  std::set<Place> places;
  for (const EarlierReport* report : {&before, &now}) {
    for (const auto& [place, value] : report->figures) places.insert(place);
  }
  const bool similar = SimilarSpans(before, now);
  for (const Place& place : places) {
    const auto& [subject, signal, key] = place;
    const WatchedFigure* watched = FindWatched(ScopeOf(place), key);
    if (watched == nullptr || !Holds(before, place) || !Holds(now, place)) continue;
    if (watched->grows && !similar) continue;
    ++comparison.figures_compared;
    FigureChange change{subject,         signal, key,         std::string(UnitOf(key)), before.Find(place),
                        now.Find(place), 0,      std::nullopt};
    change.limit = watched->LimitAt(change.before.value_or(0));
    const bool both = change.before && change.after;
    if (both && std::fabs(*change.after - *change.before) <= change.limit) continue;
    change.worse = IsWorse(change, watched->better);
    comparison.figures.push_back(std::move(change));
  }
  std::stable_sort(comparison.figures.begin(), comparison.figures.end(),
                   [](const FigureChange& a, const FigureChange& b) { return Excess(a) > Excess(b); });
  return comparison;
}

std::string WhereOf(const FigureChange& change) {
  if (change.subject.empty()) return "run";
  return change.signal.empty() ? change.subject : change.subject + " " + change.signal;
}

std::string ValuesOf(const FigureChange& change) {
  return Shown(change.before, change) + " -> " + Shown(change.after, change);
}

std::string ComparisonText(const Comparison& comparison, const TextStyle& style) {
  std::string text = NamedRow("Earlier report", Printable(comparison.file), style.width);
  text += NamedRow("Of", Printable(comparison.observation_file), style.width);
  text += NamedRow("From, to", comparison.first_epoch + ", " + comparison.last_epoch + " GPST", style.width);
  const auto quoted = [](const std::string& s) { return s.empty() ? std::string("none") : Printable(s); };
  for (const StatementChange& change : comparison.statements) {
    text += Toned(
        NamedRow("Other " + change.what, quoted(change.before) + " -> " + quoted(change.after), style.width),
        Tone::kWarn, style);
  }
  const auto list = [&](const char* name, const std::vector<std::string>& signals) {
    std::string names;
    for (const std::string& signal : signals) names += (names.empty() ? "" : ", ") + signal;
    if (!names.empty()) text += Toned(NamedRow(name, names, style.width), Tone::kWarn, style);
  };
  list("Signals gone", comparison.signals_gone);
  list("New signals", comparison.signals_appeared);
  for (std::size_t i = 0; i < std::min(comparison.figures.size(), kMaxFiguresShown); ++i) {
    const FigureChange& change = comparison.figures[i];
    text += NamedRow(WhereOf(change), change.figure + ": " + ValuesOf(change), style.width);
  }
  text += fmt::format("{} of {} figures changed beyond their limits", comparison.figures.size(),
                      comparison.figures_compared);
  text += comparison.figures.size() > kMaxFiguresShown ? "; JSON has them all\n" : "\n";
  return text;
}

}  // namespace orsolva_host
