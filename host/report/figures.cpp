#include "host/report/figures.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <sstream>
#include <utility>

namespace orsolva_host {
namespace {

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
  if (std::string_view(figure.key).find(name) != std::string_view::npos) least = 1;
  std::istringstream aliases(figure.aliases);
  for (std::string alias; aliases >> alias;) least = std::min(least, Distance(alias, name));
  return least;
}

}  // namespace

const Figure* FindFigure(std::string_view name) {
  const std::string wanted = Lower(name);
  for (int i = 0; i < kFigures; ++i) {
    if (wanted == kFigureTable[i].key || HasAlias(kFigureTable[i], wanted)) return &kFigureTable[i];
  }
  return nullptr;
}

std::vector<std::string> FiguresLike(std::string_view name) {
  constexpr std::size_t kMostLetters = 40;
  constexpr std::size_t kFarthest = 4;
  const std::string wanted = Lower(name.substr(0, kMostLetters));
  if (wanted.empty()) return {};
  std::vector<std::pair<std::size_t, std::string>> near;
  for (int i = 0; i < kFigures; ++i) {
    const std::size_t distance = Distance(kFigureTable[i], wanted);
    if (distance <= kFarthest) near.emplace_back(distance, kFigureTable[i].key);
  }
  std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < std::min<std::size_t>(3, near.size()); ++i) keys.push_back(near[i].second);
  return keys;
}

std::string_view UnitOf(std::string_view key) {
  for (int i = 0; i < kFigures; ++i) {
    if (key == kFigureTable[i].key) return kFigureTable[i].unit;
  }
  return {};
}

}  // namespace orsolva_host
