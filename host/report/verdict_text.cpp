#include "host/report/verdict_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

/// A value as people read it: ratios in percent.
std::string Shown(double value, const std::string& unit) {
  if (unit == "1") return fmt::format("{:.2f} %", value * 100);
  if (unit == "epochs" || unit == "values" || unit == "records") return fmt::format("{:.0f}", value);
  return fmt::format("{:.3f} {}", value, unit);
}

std::string WhereText(const CriterionOutcome& o) {
  std::string where = o.subject.empty() ? "run" : o.subject;
  if (!o.signal.empty()) where += " " + o.signal;
  return where;
}

std::string OutcomeText(const CriterionOutcome& o) {
  const char* side = o.at_least ? "below" : "above";
  if (!o.value) return "no data";
  std::string text = Shown(*o.value, o.unit);
  if (o.missed_by) {
    text += fmt::format(", {} {} the limit of {}", Shown(*o.missed_by, o.unit), side,
                        Shown(o.fair_limit, o.unit));
  } else if (o.grade == "fair") {
    text += fmt::format(", {} the {} of good", side, Shown(o.good_limit, o.unit));
  }
  return text;
}

}  // namespace

Tone ToneOf(const std::string& grade) {
  if (grade == "good") return Tone::kPass;
  return grade == "fair" || grade == "not judged" ? Tone::kWarn : Tone::kFail;
}

std::string VerdictText(const ProfileVerdict& verdict, const TextStyle& style) {
  const auto count = [&verdict](const char* grade) {
    return std::count_if(verdict.outcomes.begin(), verdict.outcomes.end(),
                         [grade](const CriterionOutcome& o) { return o.grade == grade; });
  };
  std::string head = fmt::format("{}: {} good, {} fair, {} failed, {} without data by the profile {} ({})",
                                 verdict.grade, count("good"), count("fair"), count("fail"), count("no data"),
                                 verdict.profile, verdict.title);
  if (verdict.satellites_observed && verdict.satellites_judged) {
    head +=
        fmt::format("; {} of {} satellites judged", *verdict.satellites_judged, *verdict.satellites_observed);
  }
  std::string text = Toned(Wrapped(Printable(head), "", "  ", style.width), ToneOf(verdict.grade), style);
  for (const CriterionOutcome& o : verdict.outcomes) {
    if (o.grade == "good") continue;
    const std::string line = fmt::format("{} {} {}: {}", o.grade, WhereText(o), o.criterion, OutcomeText(o));
    text += Toned(Wrapped(Printable(line), "  ", "    ", style.width),
                  o.grade == "no data" ? Tone::kFaint : ToneOf(o.grade), style);
  }
  for (const std::string& remark : verdict.remarks)
    text += Toned(Wrapped(Printable(remark), "  ", "    ", style.width), Tone::kFaint, style);
  return text;
}

}  // namespace orsolva_host
