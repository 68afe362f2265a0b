#include "host/report/text_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/report/analysis_text.h"
#include "host/report/comparison.h"
#include "host/report/headline_text.h"
#include "host/report/library_text.h"
#include "host/report/run_text.h"
#include "host/report/verdict_text.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kMinWidth = 40;

/// The parts of a report, one after the other.
class Writer {
 public:
  Writer(const Report& report, const TextStyle& style, const FigureTables& tables)
      : report_(report), style_(style), tables_(tables) {
    style_.width = std::max(style_.width, kMinWidth);
  }

  std::string Write() {
    text_ += Toned(fmt::format("Orsolva {} observation quality", report_.run.library_version), Tone::kStrong,
                   style_) +
             "\n";
    Verdict();
    if (report_.profile_verdict) {
      Heading("PROFILE");
      text_ += VerdictText(*report_.profile_verdict, style_);
    }
    Findings("WHAT TO LOOK AT FIRST", true);
    if (report_.comparison) {
      Heading("CHANGES");
      text_ += ComparisonText(*report_.comparison, style_);
    }
    if (report_.figures != FigureChoice::kLibrary) Headline();
    Findings("ALSO FOUND", false);
    if (report_.figures != FigureChoice::kLibrary) text_ += AnalysisSignals(report_, style_, tables_);
    text_ += RunText(report_, style_);
    if (report_.figures != FigureChoice::kAnalysis) text_ += LibraryText(report_, style_, tables_);
    Notices();
    return std::move(text_);
  }

 private:
  void Heading(const std::string& text) { text_ += "\n" + HeadingLine(text, style_); }

  void Verdict();
  void Findings(const char* heading, bool wrong);
  void Headline();
  void Notices();

  const Report& report_;
  TextStyle style_;
  const FigureTables& tables_;
  std::string text_;
};

Tone ToneOfFinding(const Finding& finding) {
  if (finding.severity == "error") return Tone::kFail;
  if (finding.severity == "warning") return Tone::kWarn;
  return finding.severity == "good" ? Tone::kPass : Tone::kPlain;
}

bool IsWrong(const Finding& finding) { return finding.severity == "error" || finding.severity == "warning"; }

/// @param wrong  those that the verdict rests on, or the others
void Writer::Findings(const char* heading, bool wrong) {
  bool any = false;
  for (const Finding& finding : report_.findings) {
    if (IsWrong(finding) != wrong) continue;
    if (!any) Heading(heading);
    any = true;
    const std::string text = finding.text.empty() ? "" : " " + finding.text;
    text_ += Toned(Wrapped(Printable(finding.title + "." + text), wrong ? "! " : "  ", "    ", style_.width),
                   ToneOfFinding(finding), style_);
  }
}

void Writer::Verdict() {
  const std::string line = fmt::format("Verdict: {} - {}", report_.verdict.grade, report_.verdict.text);
  text_ += Toned(Wrapped(Printable(line), "", "  ", style_.width), ToneOf(report_.verdict.grade), style_);
}

void Writer::Headline() {
  Heading("HEADLINE");
  text_ += HeadlineLines(tables_.headline, report_, report_.headline, style_);
  text_ += AnalysisText(report_, style_, tables_);
}

void Writer::Notices() {
  if (report_.notices.empty() && report_.further_notices == 0) return;
  Heading("NOTICES");
  for (const ReportNotice& n : report_.notices) {
    std::string place = Printable(n.file);
    if (n.line > 0) place += fmt::format(":{}", n.line);
    text_ += Wrapped(fmt::format("{}: {}{}", place, n.recovered ? "" : "not repaired: ", n.text) +
                         (n.count > 1 ? fmt::format(" ({} times)", n.count) : ""),
                     "  ", "  ", style_.width);
  }
  if (report_.further_notices > 0)
    text_ += fmt::format("  and {} of further kinds\n", report_.further_notices);
}

}  // namespace

std::string WriteText(const Report& report, const TextStyle& style, const FigureTables& tables) {
  return Writer(report, style, tables).Write();
}

}  // namespace orsolva_host
