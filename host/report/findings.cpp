#include "host/report/findings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "host/report/change_findings.h"
#include "host/report/data_findings.h"
#include "host/report/finding_texts.h"
#include "host/report/signal_findings.h"

namespace orsolva_host {
namespace {

int Rank(const Finding& finding) {
  constexpr std::string_view kOrder[] = {"error", "warning", "info", "good"};
  return static_cast<int>(std::find(std::begin(kOrder), std::end(kOrder), finding.severity) -
                          std::begin(kOrder));
}

bool Any(const std::vector<Finding>& findings, std::string_view severity) {
  return std::any_of(findings.begin(), findings.end(),
                     [severity](const Finding& finding) { return finding.severity == severity; });
}

bool IsWrong(const Finding& finding) { return finding.severity == "error" || finding.severity == "warning"; }

/// The titles of findings, the first few in full.
std::string TitlesOf(const std::vector<const Finding*>& findings, std::size_t most) {
  std::string text;
  for (std::size_t i = 0; i < std::min(findings.size(), most); ++i) {
    text += (i > 0 ? "; " : "") + findings[i]->title;
  }
  return findings.size() > most ? text + fmt::format("; and {} more", findings.size() - most) : text;
}

std::string WorstText(const std::vector<Finding>& findings) {
  constexpr std::size_t kMaxTitles = 4;
  std::vector<const Finding*> wrong;
  for (const Finding& finding : findings) {
    if (IsWrong(finding)) wrong.push_back(&finding);
  }
  return TitlesOf(wrong, kMaxTitles);
}

/// What is worth knowing although it makes nothing worse.
std::string NotableText(const std::vector<Finding>& findings, bool good) {
  constexpr std::size_t kMaxTitles = 2;
  constexpr std::string_view kNotable[] = {"position-off", "antenna-moves", "missing-observations",
                                           "clock-resets"};
  std::vector<const Finding*> notable;
  for (const Finding& finding : findings) {
    // A good verdict has the number of slips.
    const bool slips = !good && (finding.id == "cycle-slips" || finding.id == "half-cycles");
    const bool listed = std::find(std::begin(kNotable), std::end(kNotable), finding.id) != std::end(kNotable);
    if (!IsWrong(finding) && (listed || slips)) notable.push_back(&finding);
  }
  notable.resize(std::min(notable.size(), kMaxTitles));
  return TitlesOf(notable, kMaxTitles);
}

/// What a run without anything wrong is known by.
std::string GoodText(const Headline& h) {
  std::string text;
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  if (h.present_epochs) {
    add(Many(*h.present_epochs, "epoch") + (h.missing_epochs == Count{0} ? ", none missing" : ""));
  }
  if (h.cutoff_completeness) add(Percent(*h.cutoff_completeness) + " complete");
  if (h.cycle_slips) add(*h.cycle_slips == 0 ? "no cycle slip" : Many(*h.cycle_slips, "cycle slip"));
  if (h.satellites_tracked && h.satellites_with_orbit) {
    const bool all = *h.satellites_with_orbit == *h.satellites_tracked;
    add(all ? (*h.satellites_tracked > 1 ? "all " : "") + Many(*h.satellites_tracked, "satellite") + " judged"
            : fmt::format("{} of {} satellites judged", *h.satellites_with_orbit, *h.satellites_tracked));
  }
  return text;
}

}  // namespace

std::string NotableOf(const Report& report) {
  return NotableText(report.findings, WorstText(report.findings).empty());
}

Verdict VerdictOf(const Report& report) {
  const bool judged = report.headline.satellites_with_orbit.value_or(0) > 0;
  Verdict verdict;
  verdict.grade = Any(report.findings, "error")     ? "poor"
                  : !judged                         ? "not judged"
                  : Any(report.findings, "warning") ? "fair"
                                                    : "good";
  const std::string worst = WorstText(report.findings);
  const std::string notable = NotableOf(report);
  verdict.text = worst.empty() ? GoodText(report.headline) : worst;
  if (!notable.empty()) verdict.text += "; " + notable;
  return verdict;
}

std::vector<Finding> FindingsOf(const Report& report) {
  std::vector<Finding> findings;
  AddDataFindings(report, findings);
  AddChangeFindings(report, findings);
  AddSignalFindings(report, findings);
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return Rank(a) < Rank(b); });
  return findings;
}

}  // namespace orsolva_host
