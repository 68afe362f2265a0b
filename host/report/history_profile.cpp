#include "host/report/history_profile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "host/report/figures.h"
#include "host/report/median.h"
#include "host/report/profile.h"
#include "host/report/watched_figures.h"

namespace orsolva_host {
namespace {

constexpr double kSigmaOfMad = 1.4826;
constexpr double kGoodSigmas = 3, kFairSigmas = 5;

using Place = EarlierReport::Place;

/// The reports that a report is held against, the latest first, and what is said of the others.
struct Choice {
  std::vector<const EarlierReport*> used;
  std::vector<std::string> remarks;
};

Choice Choose(const History& history, const EarlierReport& now) {
  Choice choice;
  std::set<std::string> foreign;
  std::size_t foreign_count = 0, later = 0;
  for (const EarlierReport& report : history.reports) {
    if (!SameStation(report, now)) {
      foreign.insert(report.Station().empty() ? "no name" : report.Station());
      ++foreign_count;
    } else if (report.first_epoch >= now.first_epoch) {
      ++later;
    } else {
      choice.used.push_back(&report);
    }
  }
  std::stable_sort(
      choice.used.begin(), choice.used.end(),
      [](const EarlierReport* a, const EarlierReport* b) { return a->first_epoch > b->first_epoch; });
  // Two reports of one day would count it twice.
  choice.used.erase(std::unique(choice.used.begin(), choice.used.end(),
                                [](const EarlierReport* a, const EarlierReport* b) {
                                  return a->first_epoch == b->first_epoch;
                                }),
                    choice.used.end());
  if (choice.used.size() > kMaxReports) choice.used.resize(kMaxReports);
  if (choice.used.size() < kMinReports) {
    choice.remarks.push_back(fmt::format("{} earlier reports of {} in {}: at least {} are needed",
                                         choice.used.size(), now.Station(), history.folder, kMinReports));
  }
  if (foreign_count > 0) {
    std::string names;
    for (const std::string& name : foreign) names += (names.empty() ? "" : ", ") + name;
    choice.remarks.push_back(fmt::format("{} of another station not used: {}", foreign_count, names));
  }
  if (later > 0) choice.remarks.push_back(fmt::format("{} of the same time or later not used", later));
  choice.remarks.insert(choice.remarks.end(), history.unreadable.begin(), history.unreadable.end());
  return choice;
}

FigureScope ScopeOf(const Place& place) {
  const auto& [subject, signal, key] = place;
  if (subject.empty()) return FigureScope::kRun;
  return signal.empty() ? FigureScope::kSystem : FigureScope::kSignal;
}

/// What a figure usually is.
struct Usual {
  double median = 0;
  double sigma = 0;
};

Usual UsualOf(const std::vector<double>& values, const WatchedFigure& watched) {
  Usual usual;
  usual.median = MedianOf(values);
  std::vector<double> departures;
  for (const double value : values) departures.push_back(std::fabs(value - usual.median));
  usual.sigma = std::max(kSigmaOfMad * MedianOf(departures), watched.LimitAt(usual.median) / kGoodSigmas);
  return usual;
}

Criterion CriterionOf(const Place& place, const WatchedFigure& watched, const std::vector<double>& values) {
  const auto& [subject, signal, key] = place;
  const Usual usual = UsualOf(values, watched);
  const double side = watched.better == Better::kHigher ? -1 : 1;
  Criterion criterion;
  criterion.name = std::string(key) + " as usual";
  criterion.figure = key;
  criterion.scope = watched.scope;
  criterion.systems = subject;
  if (!signal.empty()) criterion.signals = {signal};
  criterion.at_least = watched.better == Better::kHigher;
  criterion.good = usual.median + side * kGoodSigmas * usual.sigma;
  criterion.fair = usual.median + side * kFairSigmas * usual.sigma;
  criterion.source =
      fmt::format("{} earlier reports of the station: median {:.6g}, robust standard deviation {:.3g}",
                  values.size(), usual.median, usual.sigma);
  return criterion;
}

/// An outcome of a figure that history says too little about.
CriterionOutcome TooFew(const Place& place, std::size_t count) {
  const auto& [subject, signal, key] = place;
  CriterionOutcome outcome;
  outcome.criterion = key + " as usual";
  outcome.figure = key;
  outcome.unit = UnitOf(key);
  outcome.subject = subject;
  outcome.signal = signal;
  outcome.grade = "no data";
  outcome.source = fmt::format("only {} of {} earlier reports needed have it", count, kMinReports);
  return outcome;
}

}  // namespace

History ReadHistory(const std::string& folder) {
  namespace fs = std::filesystem;
  History history;
  history.folder = folder;
  std::error_code error;
  std::vector<std::string> files;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    if (at->path().extension() == ".json") files.push_back(at->path().string());
  }
  if (error) throw EarlierReportError(folder + ": cannot be read as a folder: " + error.message());
  if (files.empty())
    throw EarlierReportError(folder + ": holds no file *.json; reports are made by orsolva qc --json");
  std::sort(files.begin(), files.end());
  for (const std::string& file : files) {
    try {
      for (EarlierReport& report : ReadReports(file)) history.reports.push_back(std::move(report));
    } catch (const EarlierReportError& wrong) {
      history.unreadable.push_back(wrong.what());
    }
  }
  return history;
}

ProfileVerdict Judge(const Report& report, const History& history) {
  const EarlierReport now = AsEarlier(report);
  const Choice choice = Choose(history, now);
  std::map<Place, std::vector<double>> values;
  for (const auto& [place, value] : now.figures) values[place];
  for (const EarlierReport* earlier : choice.used) {
    const bool similar = SimilarSpans(*earlier, now);
    for (const auto& [place, value] : earlier->figures) {
      const WatchedFigure* watched = FindWatched(ScopeOf(place), std::get<2>(place));
      if (watched != nullptr && (similar || !watched->grows)) values[place].push_back(value);
    }
  }
  Profile profile{"history", fmt::format("{} earlier reports of {}", choice.used.size(), now.Station()), {}};
  std::vector<CriterionOutcome> unknown;
  for (const auto& [place, of_place] : values) {
    const WatchedFigure* watched = FindWatched(ScopeOf(place), std::get<2>(place));
    if (watched == nullptr || watched->better == Better::kNeither) continue;
    if (of_place.size() >= kMinReports) {
      profile.criteria.push_back(CriterionOf(place, *watched, of_place));
    } else {
      unknown.push_back(TooFew(place, of_place.size()));
    }
  }
  ProfileVerdict verdict = Judge(report, profile);
  // A young history would fill pages; the remark says it.
  if (choice.used.size() >= kMinReports)
    verdict.outcomes.insert(verdict.outcomes.end(), unknown.begin(), unknown.end());
  verdict.remarks = choice.remarks;
  return verdict;
}

}  // namespace orsolva_host
