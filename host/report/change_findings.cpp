#include "host/report/change_findings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "host/report/comparison.h"
#include "host/report/figures.h"
#include "host/report/finding_limits.h"
#include "host/report/finding_texts.h"

namespace orsolva_host {
namespace {

constexpr const char* kWarning = "warning";

std::string Capital(std::string text) {
  if (!text.empty()) text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
  return text;
}

std::string NamedOrNone(const std::string& text) { return text.empty() ? "none" : text; }

/// Another marker may mean another station; receiver and antenna break the series of a station.
void AddStatements(const Comparison& comparison, std::vector<Finding>& findings) {
  std::string title, text;
  for (const StatementChange& change : comparison.statements) {
    title += (title.empty() ? "" : ", ") + change.what;
    text += fmt::format("{}{}: {} -> {}", text.empty() ? "" : "; ", Capital(change.what),
                        NamedOrNone(change.before), NamedOrNone(change.after));
  }
  if (title.empty()) return;
  AddFinding(findings, "changed-statements", kWarning, "Changed since the earlier report: " + title,
             text + ".");
}

void AddSignalsGone(const Comparison& comparison, std::vector<Finding>& findings) {
  const std::vector<std::string>& gone = comparison.signals_gone;
  if (gone.empty()) return;
  Finding& finding =
      AddFinding(findings, "signals-gone", kWarning,
                 fmt::format("{} of the earlier report gone: {}", Many(gone.size(), "signal"), Listed(gone)),
                 "The data hold no value of them.");
  if (gone.size() == 1) finding.signal = gone.front();
}

/// "Mean signal strength of G 1C: 44.5 dB-Hz -> 38.1 dB-Hz"
std::string ChangeText(const FigureChange& change) {
  const Figure* const figure = FindFigure(change.figure);
  std::string text = figure != nullptr ? figure->title : change.figure;
  if (!change.subject.empty()) text += ", " + WhereOf(change);
  return text + ": " + ValuesOf(change);
}

/// @param worse  not empty, those beyond their limit the most first
void AddWorseFigures(const std::vector<const FigureChange*>& worse, std::vector<Finding>& findings) {
  std::string title = "Worse than the earlier report: " + ChangeText(*worse.front());
  if (worse.size() > 1) title += fmt::format(", and {}", Many(worse.size() - 1, "more figure"));
  std::vector<std::string> others;
  for (std::size_t i = 1; i < worse.size(); ++i) others.push_back(ChangeText(*worse[i]));
  Finding& finding = AddFinding(findings, "became-worse", kWarning, std::move(title),
                                others.empty() ? std::string() : Listed(others) + ".");
  finding.figures = {{worse.front()->figure, *worse.front()->after}};
  if (!worse.front()->signal.empty()) finding.signal = WhereOf(*worse.front());
}

}  // namespace

void AddChangeFindings(const Report& report, std::vector<Finding>& findings) {
  if (!report.comparison) return;
  const Comparison& comparison = *report.comparison;
  const std::size_t before = findings.size();
  AddStatements(comparison, findings);
  AddSignalsGone(comparison, findings);
  std::vector<const FigureChange*> worse;
  for (const FigureChange& change : comparison.figures) {
    if (change.worse.value_or(false)) worse.push_back(&change);
  }
  if (!worse.empty()) AddWorseFigures(worse, findings);
  if (findings.size() > before) return;
  AddFinding(
      findings, "nothing-worse", "good", "Nothing worse than in the earlier report",
      fmt::format("Of {} compared with {}.", Many(comparison.figures_compared, "figure"), comparison.file));
}

}  // namespace orsolva_host
