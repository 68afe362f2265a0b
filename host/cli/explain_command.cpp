#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "host/cli/commands.h"
#include "host/cli/exit_codes.h"
#include "host/report/figures.h"
#include "host/report/profile.h"
#include "host/report/text_layout.h"
#include "host/terminal/standard_streams.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kWidth = 80;

std::string FigureLines() {
  std::string text = "orsolva explain FIGURE explains how a figure is computed. The figures:\n\n";
  for (const Figure& f : FigureTexts()) {
    std::string head = "  " + f.key;
    constexpr std::size_t kKeyWidth = 34;
    head.resize(std::max(head.size() + 1, kKeyWidth), ' ');
    text += Wrapped(f.title, head, std::string(kKeyWidth, ' '), kWidth);
  }
  return text;
}

/// "figure of each signal of G, E: 1C, 2I"
std::string OwnersOf(const Criterion& criterion) {
  std::string text = criterion.figure;
  const bool each = criterion.scope == FigureScope::kSystem || criterion.scope == FigureScope::kSignal ||
                    criterion.scope == FigureScope::kSatellite;
  if (each) {
    text += criterion.scope == FigureScope::kSystem   ? " of each system"
            : criterion.scope == FigureScope::kSignal ? " of each signal"
                                                      : " of each satellite";
  }
  std::string of;
  for (const char letter : criterion.systems) of += (of.empty() ? "" : ", ") + std::string(1, letter);
  if (!of.empty()) text += " of " + of;
  for (std::size_t i = 0; i < criterion.signals.size(); ++i)
    text += (i == 0 ? ": " : ", ") + criterion.signals[i];
  return text;
}

/// What a profile asks for and where its limits come from.
std::string ProfileLines(const Profile& profile) {
  std::string text = fmt::format("{}  [profile]\n\n{}\n", profile.name, profile.title);
  for (const Criterion& criterion : profile.criteria) {
    const char* side = criterion.at_least ? "at least" : "at most";
    text += "\n" + Wrapped(fmt::format("{}: {}", criterion.name, OwnersOf(criterion)), "", "  ", kWidth);
    text += fmt::format("  good {0} {1:g}, fair {0} {2:g} {3}\n", side, criterion.good, criterion.fair,
                        UnitOf(criterion.figure) == "1" ? "" : UnitOf(criterion.figure));
    while (text[text.size() - 2] == ' ') text.erase(text.size() - 2, 1);
    text += Wrapped(criterion.source, "  ", "  ", kWidth);
  }
  return text;
}

bool IsBuiltInProfile(const std::string& name) {
  return std::any_of(kBuiltInProfiles, kBuiltInProfiles + kBuiltInProfileCount,
                     [&name](const BuiltInProfile& profile) { return name == profile.name; });
}

int Explain(const std::string& name) {
  if (name.empty()) {
    std::fputs(FigureLines().c_str(), stdout);
    return kGood;
  }
  if (const std::string text = ExplanationOf(name); !text.empty()) {
    std::fputs(text.c_str(), stdout);
    return kGood;
  }
  if (IsBuiltInProfile(name)) {
    std::fputs(ProfileLines(LoadProfile(name)).c_str(), stdout);
    return kGood;
  }
  std::string near;
  for (const std::string& key : FiguresLike(name)) near += (near.empty() ? " Did you mean " : ", ") + key;
  PrintError("'" + name + "' is not a figure." + near + (near.empty() ? "" : "?") +
             " `orsolva explain` lists them all.");
  return kWrongUsage;
}

}  // namespace

Command ExplainCommand() {
  auto name = std::make_shared<std::string>();
  Option row = TextOption("FIGURE", "FIGURE", *name,
                          "Key, column heading or name such as mp1, or a profile such as rtk; without it all "
                          "figures are listed");
  for (const Figure& figure : FigureTexts()) row.words.push_back(figure.key);
  for (int i = 0; i < kBuiltInProfileCount; ++i) row.words.emplace_back(kBuiltInProfiles[i].name);
  return {"explain",
          "Explain how a figure is computed, or the limits of a profile",
          {Positional(std::move(row), false)},
          [name] { return Explain(*name); }};
}

}  // namespace orsolva_host
