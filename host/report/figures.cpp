#include "host/report/figures.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "host/report/text_layout.h"

namespace orsolva_host {

/// host/report/figures.toml, embedded by the build.
extern const char* const kFigureTexts;

namespace {

constexpr std::size_t kWidth = 80;

constexpr std::pair<const char*, std::string Figure::*> kFields[] = {
    {"aliases", &Figure::aliases}, {"title", &Figure::title},
    {"column", &Figure::column},   {"formula", &Figure::formula},
    {"window", &Figure::window},   {"reset", &Figure::reset},
    {"cutoff", &Figure::cutoff},   {"denominator", &Figure::denominator},
    {"source", &Figure::source}};

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

bool HasAlias(const Figure& figure, const std::string& name) {
  std::istringstream aliases(figure.aliases);
  for (std::string alias; aliases >> alias;) {
    if (alias == name) return true;
  }
  return false;
}

/// How many single changes of letters turn one text into the other (Levenshtein 1966).
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = std::exchange(row[j], std::min({changed, row[j] + 1, row[j - 1] + 1}));
    }
  }
  return row.back();
}

std::size_t Distance(const Figure& figure, const std::string& name) {
  std::size_t least = Distance(figure.key, name);
  if (figure.key.find(name) != std::string::npos) least = 1;
  std::istringstream aliases(figure.aliases);
  for (std::string alias; aliases >> alias;) least = std::min(least, Distance(alias, name));
  return least;
}

/// A text of several lines as one.
std::string OneLine(const std::string& text) {
  std::istringstream words(text);
  std::string line;
  for (std::string word; words >> word;) line += (line.empty() ? "" : " ") + word;
  return line;
}

/// A field of a figure, of the one it is like, or of the defaults. What a figure is called, it does not take
/// over.
std::string FieldOf(const toml::table& all, const toml::table& figure, const char* field) {
  if (const auto own = figure[field].value<std::string>()) return OneLine(*own);
  const std::string_view name = field;
  if (name == "aliases" || name == "title" || name == "column") return {};
  if (const auto like = figure["like"].value<std::string>()) {
    const toml::table* other = all[*like].as_table();
    if (other == nullptr) throw std::runtime_error("a figure is like '" + *like + "', which is none");
    return FieldOf(all, *other, field);
  }
  return OneLine(all["default"][field].value_or(std::string()));
}

constexpr const char* kByAnalysis = "the analysis of this program";

const char* TextOf(FigureSource source) {
  if (source == FigureSource::kAnalysis) return kByAnalysis;
  return source == FigureSource::kFile ? "this program, from the files" : "the library";
}

bool HasHeading(const Figure& figure, const std::string& name) {
  return name == Lower(figure.column) ||
         std::any_of(figure.headings.begin(), figure.headings.end(),
                     [&name](const std::string& heading) { return name == Lower(heading); });
}

/// The figures of a heading or another name: those of the analysis, whose tables come first, before the
/// library's.
std::vector<const Figure*> FiguresCalled(const std::string& name) {
  std::vector<const Figure*> called;
  for (const Figure& figure : FigureTexts()) {
    if (name == figure.key || HasHeading(figure, name) || HasAlias(figure, name)) called.push_back(&figure);
  }
  std::stable_partition(called.begin(), called.end(), [&name](const Figure* figure) {
    return HasHeading(*figure, name) && figure->computed_by == kByAnalysis;
  });
  std::stable_partition(called.begin(), called.end(),
                        [&name](const Figure* figure) { return name == figure->key; });
  return called;
}

}  // namespace

std::vector<Figure> ParseFigures(std::string_view text, const FigureTables& tables) {
  const toml::table all = toml::parse(text);
  std::vector<std::pair<toml::source_index, Figure>> found;
  for (const auto& [key, node] : all) {
    if (key.str() == "default") continue;
    Figure figure;
    figure.key = key.str();
    for (const auto& [name, member] : kFields) figure.*member = FieldOf(all, *node.as_table(), name);
    ForEachRow(tables, [&figure](const auto& row) {
      if (figure.key != row.key) return;
      figure.unit = UnitOf(row.kind);
      figure.computed_by = TextOf(row.source);
      if (row.text.heading != nullptr) figure.headings.emplace_back(row.text.heading);
    });
    found.emplace_back(node.source().begin.line, std::move(figure));
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<Figure> figures;
  for (auto& [line, figure] : found) figures.push_back(std::move(figure));
  return figures;
}

const std::vector<Figure>& FigureTexts() {
  static const std::vector<Figure> figures = ParseFigures(kFigureTexts);
  return figures;
}

const Figure* FindFigure(std::string_view name) {
  const std::string wanted = Lower(name);
  for (const Figure& figure : FigureTexts()) {
    if (wanted == figure.key || HasAlias(figure, wanted)) return &figure;
  }
  return nullptr;
}

std::string Explanation(const Figure& f) {
  constexpr std::size_t kNameWidth = 13;
  std::string text = fmt::format("{}{}\n\n", f.key, f.unit.empty() ? "" : fmt::format("  [{}]", f.unit));
  text += Wrapped(f.title, "", "", kWidth) + "\n";
  const auto paragraph = [&text](std::string name, const std::string& what) {
    if (what.empty()) return;
    name.resize(kNameWidth, ' ');
    text += Wrapped(what, name, std::string(kNameWidth, ' '), kWidth);
  };
  paragraph("Formula", f.formula);
  paragraph("Window", f.window);
  paragraph("Reset", f.reset);
  paragraph("Cut-off", f.cutoff);
  paragraph("Denominator", f.denominator);
  paragraph("Source", f.source);
  paragraph("Computed by", f.computed_by);
  paragraph("Also called", f.aliases);
  return text;
}

std::string ExplanationOf(std::string_view name) {
  // A heading copied from a report may have the mark of a note: "PG slips[3]".
  const std::string wanted = Lower(name.substr(0, name.find('[')));
  if (wanted.empty()) return {};
  const std::vector<const Figure*> called = FiguresCalled(wanted);
  if (called.empty()) return {};
  std::string text = Explanation(*called.front());
  if (called.size() == 1) return text;
  std::string others;
  for (std::size_t i = 1; i < called.size(); ++i) {
    others += fmt::format("{}{} ({}, computed by {})", i == 1 ? "" : "; ", called[i]->key, called[i]->title,
                          called[i]->computed_by);
  }
  return text + "\n" + Wrapped(others, "Called so, too: ", "  ", kWidth);
}

std::vector<std::string> FiguresLike(std::string_view name) {
  constexpr std::size_t kMaxLetters = 40;
  constexpr std::size_t kFarthest = 4;
  const std::string wanted = Lower(name.substr(0, kMaxLetters));
  if (wanted.empty()) return {};
  std::vector<std::pair<std::size_t, std::string>> near;
  for (const Figure& figure : FigureTexts()) {
    const std::size_t distance = Distance(figure, wanted);
    if (distance <= kFarthest) near.emplace_back(distance, figure.key);
  }
  std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < std::min<std::size_t>(3, near.size()); ++i) keys.push_back(near[i].second);
  return keys;
}

std::string_view UnitOf(std::string_view key) {
  std::string_view unit;
  ForEachRow(AllFigures(), [&](const auto& row) {
    if (key == row.key) unit = UnitOf(row.kind);
  });
  return unit;
}

bool IsCount(std::string_view key) {
  bool count = false;
  ForEachRow(AllFigures(), [&](const auto& row) {
    if (key == row.key) count = IsCount(row.kind);
  });
  return count;
}

}  // namespace orsolva_host
