#include "host/report/profile.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>
#include <utility>

#include "host/report/figures.h"
#include "host/report/finding_limits.h"
#include "host/report/toml_keys.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/text_file.h"

namespace orsolva_host {
namespace {

[[noreturn]] void Refuse(const std::string& origin, const toml::node& node, const std::string& what) {
  throw ProfileError(fmt::format("{}:{}: {}", origin, node.source().begin.line, what));
}

std::string TextOf(const toml::table& table, const char* key, const std::string& origin) {
  const std::optional<std::string> text = table[key].value<std::string>();
  if (!text || text->empty()) Refuse(origin, table, fmt::format("expected a text for '{}'", key));
  return *text;
}

double NumberOf(const toml::table& table, const char* key, const std::string& origin) {
  const std::optional<double> number = table[key].value<double>();
  if (!number || !std::isfinite(*number)) {
    Refuse(origin, table, fmt::format("expected a number for '{}'", key));
  }
  return *number;
}

void RefuseUnknownKeys(const toml::table& table, std::initializer_list<std::string_view> known,
                       const std::string& origin) {
  for (const auto& [key, value] : table) {
    if (std::find(known.begin(), known.end(), key.str()) == known.end()) {
      Refuse(origin, value, fmt::format("'{}' is not a key of a profile", key.str()));
    }
  }
}

FigureScope ScopeOf(const toml::table& table, const std::string& origin) {
  const std::string name = TextOf(table, "scope", origin);
  constexpr std::pair<const char*, FigureScope> kScopes[] = {{"run", FigureScope::kRun},
                                                             {"headline", FigureScope::kHeadline},
                                                             {"library_total", FigureScope::kLibraryTotal},
                                                             {"system", FigureScope::kSystem},
                                                             {"satellite", FigureScope::kSatellite},
                                                             {"signal", FigureScope::kSignal}};
  for (const auto& [text, scope] : kScopes) {
    if (name == text) return scope;
  }
  Refuse(origin, table,
         "'" + name + "' is not a scope: use run, headline, library_total, system, satellite or signal");
}

/// A few short names mean a figure of the headline there, and elsewhere the figure that every scope has.
std::string NameIn(FigureScope scope, const std::string& name) {
  if (scope == FigureScope::kHeadline) return name;
  constexpr std::pair<std::string_view, const char*> kElsewhere[] = {{"mp1", "mp_rms_m"},
                                                                     {"mp2", "mp_rms_m"},
                                                                     {"slips", "phase_geometry_slip_epochs"},
                                                                     {"jumps", "mp_restart_epochs"}};
  std::string lower = name;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const auto& [short_name, key] : kElsewhere) {
    if (lower == short_name) return key;
  }
  return name;
}

void TakeLimits(const toml::table& table, const std::string& origin, Criterion& criterion) {
  const toml::table* least = table["at_least"].as_table();
  const toml::table* most = table["at_most"].as_table();
  if ((least == nullptr) == (most == nullptr)) {
    Refuse(origin, table,
           "expected either at_least or at_most, such as at_least = { good = 0.9, fair = 0.8 }");
  }
  const toml::table& limits = least != nullptr ? *least : *most;
  RefuseUnknownKeys(limits, {"good", "fair"}, origin);
  criterion.at_least = least != nullptr;
  criterion.good = NumberOf(limits, "good", origin);
  criterion.fair = NumberOf(limits, "fair", origin);
  const bool ordered =
      criterion.at_least ? criterion.good >= criterion.fair : criterion.good <= criterion.fair;
  if (!ordered) Refuse(origin, limits, "the good limit is easier to meet than the fair one");
}

Criterion CriterionOf(const toml::table& table, const std::string& origin) {
  RefuseUnknownKeys(table, {"name", "figure", "scope", "systems", "signals", "at_least", "at_most", "source"},
                    origin);
  Criterion criterion;
  criterion.name = TextOf(table, "name", origin);
  const std::string figure = TextOf(table, "figure", origin);
  criterion.scope = ScopeOf(table, origin);
  const Figure* known = FindFigure(NameIn(criterion.scope, figure));
  if (known == nullptr) Refuse(origin, table, "'" + figure + "' is not a figure; see orsolva explain");
  criterion.figure = known->key;
  criterion.systems = table["systems"].value_or(std::string());
  if (const toml::array* signals = table["signals"].as_array()) {
    for (const toml::node& signal : *signals) criterion.signals.push_back(signal.value_or(std::string()));
  }
  TakeLimits(table, origin, criterion);
  criterion.source = TextOf(table, "source", origin);
  return criterion;
}

/// Figures of the run that the headline shows are listed there alone.
bool IsInScope(const Criterion& c, const FigureValue& f) {
  const bool leads = f.scope == FigureScope::kHeadline && f.source == FigureSource::kAnalysis;
  return f.scope == c.scope || (c.scope == FigureScope::kRun && leads);
}

bool IsAbout(const Criterion& c, const FigureValue& f) {
  if (f.key != c.figure || !IsInScope(c, f)) return false;
  const bool system = c.systems.empty() || f.subject.empty() || f.subject == "all" ||
                      c.systems.find(f.subject[0]) != std::string::npos;
  const bool signal =
      c.signals.empty() || std::find(c.signals.begin(), c.signals.end(), f.signal) != c.signals.end();
  return system && signal;
}

CriterionOutcome OutcomeOf(const Criterion& c, const FigureValue& f) {
  CriterionOutcome o{c.name,    c.figure, std::string(UnitOf(c.figure)),
                     f.subject, f.signal, c.at_least,
                     c.good,    c.fair,   f.value,
                     "no data", {},       c.source};
  if (!f.value) return o;
  const double sign = c.at_least ? 1 : -1;
  const double over_good = sign * (*f.value - c.good);
  const double over_fair = sign * (*f.value - c.fair);
  const bool same = c.good == c.fair;
  o.grade = over_good > 0 || (same && over_good >= 0) ? "good" : over_fair >= 0 ? "fair" : "fail";
  if (o.grade == "fail") o.missed_by = -over_fair;
  return o;
}

int Rank(const std::string& grade) {
  if (grade == "fail") return 0;
  if (grade == "fair") return 1;
  return grade == "good" ? 3 : 2;
}

/// Worst of the outcomes that have data.
std::string GradeOf(const std::vector<CriterionOutcome>& outcomes) {
  std::string grade = "no data";
  for (const CriterionOutcome& o : outcomes) {
    if (o.value && (grade == "no data" || Rank(o.grade) < Rank(grade))) grade = o.grade;
  }
  return grade;
}

}  // namespace

Profile ParseProfile(std::string_view text, const std::string& origin) {
  if (const std::size_t line = LineOfDeepKey(text); line > 0) {
    throw ProfileError(fmt::format("{}:{}: a key of more than {} parts", origin, line, kMaxKeyParts));
  }
  try {
    const toml::table table = toml::parse(text, origin);
    RefuseUnknownKeys(table, {"name", "title", "criterion"}, origin);
    Profile profile{TextOf(table, "name", origin), TextOf(table, "title", origin), {}};
    const toml::array* criteria = table["criterion"].as_array();
    if (criteria == nullptr || criteria->empty())
      Refuse(origin, table, "expected at least one [[criterion]]");
    for (const toml::node& node : *criteria) {
      if (!node.is_table()) Refuse(origin, node, "expected a table [[criterion]]");
      profile.criteria.push_back(CriterionOf(*node.as_table(), origin));
    }
    return profile;
  } catch (const toml::parse_error& error) {
    throw ProfileError(
        fmt::format("{}:{}: {}", origin, error.source().begin.line, std::string(error.description())));
  }
}

Profile LoadProfile(const std::string& name_or_file) {
  for (int i = 0; i < kBuiltInProfileCount; ++i) {
    if (name_or_file == kBuiltInProfiles[i].name) return ParseProfile(kBuiltInProfiles[i].text, name_or_file);
  }
  std::string text;
  try {
    text = TextOfFile(name_or_file, kLargestSettings_bytes);
  } catch (const FileError& error) {
    std::string names;
    for (int i = 0; i < kBuiltInProfileCount; ++i) {
      names += std::string(i > 0 ? ", " : "") + kBuiltInProfiles[i].name;
    }
    throw ProfileError("'" + name_or_file + "' is neither a built-in profile (" + names +
                       ") nor a readable file: " + error.Found());
  }
  return ParseProfile(text, name_or_file);
}

namespace {

/// The systems observed of which no satellite has an orbit.
std::string SystemsWithoutOrbits(const Report& report) {
  std::string letters;
  for (const analysis::SystemFigures& system : report.analysis.figures.systems) {
    const bool none = system.satellites_without_record.value_or(0) >= system.satellites_observed.value_or(0);
    if (system.satellites_observed.value_or(0) > 0 && none) letters += system.letter;
  }
  return letters;
}

/// A criterion about systems has no data for those that were observed and not judged.
void AddUnjudged(const Criterion& criterion, const std::string& letters, std::size_t first,
                 std::vector<CriterionOutcome>& outcomes) {
  if (criterion.scope != FigureScope::kSystem) return;
  for (const char letter : letters) {
    if (!criterion.systems.empty() && criterion.systems.find(letter) == std::string::npos) continue;
    FigureValue none;
    none.subject = std::string(1, letter);
    if (!criterion.signals.empty()) none.signal = criterion.signals.front();
    const auto has = [&none](const CriterionOutcome& o) { return o.subject == none.subject; };
    if (std::none_of(outcomes.begin() + static_cast<std::ptrdiff_t>(first), outcomes.end(), has)) {
      outcomes.push_back(OutcomeOf(criterion, none));
    }
  }
}

/// What was not judged is not good, and of which most was not judged has no grade.
std::string GradeBy(const Report& report, const std::vector<CriterionOutcome>& outcomes) {
  const std::string grade = GradeOf(outcomes);
  if (grade != "good" && grade != "fair") return grade;
  const auto observed = static_cast<double>(report.headline.satellites_tracked.value_or(0));
  const auto judged = static_cast<double>(report.headline.satellites_with_orbit.value_or(0));
  if (judged < (1 - kFindingLimits.hardly_judged_share) * observed) return "no data";
  const bool whole =
      SystemsWithoutOrbits(report).empty() && judged >= (1 - kFindingLimits.not_judged_share) * observed;
  return whole ? grade : "fair";
}

}  // namespace

ProfileVerdict Judge(const Report& report, const Profile& profile) {
  ProfileVerdict verdict;
  verdict.profile = profile.name;
  verdict.title = profile.title;
  const std::vector<FigureValue> figures = ListFigures(report);
  for (const Criterion& criterion : profile.criteria) {
    const std::size_t before = verdict.outcomes.size();
    for (const FigureValue& figure : figures) {
      if (IsAbout(criterion, figure)) verdict.outcomes.push_back(OutcomeOf(criterion, figure));
    }
    AddUnjudged(criterion, SystemsWithoutOrbits(report), before, verdict.outcomes);
    if (verdict.outcomes.size() > before) continue;
    FigureValue none;
    none.subject = criterion.systems;
    if (!criterion.signals.empty()) none.signal = criterion.signals.front();
    verdict.outcomes.push_back(OutcomeOf(criterion, none));
  }
  std::stable_sort(verdict.outcomes.begin(), verdict.outcomes.end(),
                   [](const auto& a, const auto& b) { return Rank(a.grade) < Rank(b.grade); });
  verdict.grade = GradeBy(report, verdict.outcomes);
  verdict.satellites_observed = report.headline.satellites_tracked;
  verdict.satellites_judged = report.headline.satellites_with_orbit;
  verdict.passed = verdict.grade == "good" || verdict.grade == "fair";
  return verdict;
}

}  // namespace orsolva_host
