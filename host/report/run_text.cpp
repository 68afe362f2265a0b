#include "host/report/run_text.h"

#include <fmt/format.h>

#include "host/report/stream_text.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

std::string TimeOf(const std::optional<Time_gbt>& time) { return time ? TimeText(*time) + " GPST" : "-"; }

/// Which observed satellites lack broadcast records, and for how many of their epochs they have one.
std::string CoverageText(const std::vector<NavigationCoverage>& rows) {
  constexpr double kWhole = 0.9995;
  std::string lacking;
  for (const NavigationCoverage& row : rows) {
    if (row.covered_ratio >= kWhole) continue;
    std::string how = fmt::format("{:.0f}%", row.covered_ratio * 100);
    if (row.records == 0) how = row.unhealthy_records > 0 ? "unhealthy" : "none";
    lacking += fmt::format("{}{} {}", lacking.empty() ? "" : ", ", row.satellite, how);
  }
  return lacking.empty() ? "cover every epoch of all satellites" : "lacking for " + lacking;
}

/// "from 2020-06-25 06:00:00.000 GPST, every 30 s, signals G:1C,2W, 2160 epochs left out"
std::string SelectionText(const ReportSelection& selection) {
  std::vector<std::string> parts;
  if (selection.start) parts.push_back("from " + TimeOf(selection.start));
  if (selection.end) parts.push_back("until before " + TimeOf(selection.end));
  if (selection.sampling_s) parts.push_back(fmt::format("every {:g} s", *selection.sampling_s));
  if (!selection.signals.empty()) parts.push_back("signals " + selection.signals);
  parts.push_back(fmt::format("{} epochs left out", selection.epochs_left_out));
  return Joined(parts, ", ");
}

std::string FileRow(std::string name, const std::string& file, std::size_t width) {
  name.resize(kRowNameWidth, ' ');
  return name + Fitted(file.empty() ? "-" : Printable(file), width - kRowNameWidth) + "\n";
}

}  // namespace

std::string RunText(const Report& report, const TextStyle& style) {
  const ReportRun& run = report.run;
  std::string text = "\n" + HeadingLine("RUN", style);
  const auto row = [&](const char* name, const std::string& value) {
    text += NamedRow(name, value.empty() ? "-" : value, style.width);
  };
  text += FileRow("Observations", run.observation_file, style.width);
  for (std::size_t i = 1; i < run.joined_files.size(); ++i) {
    text += FileRow(i == 1 ? "Joined with" : "", run.joined_files[i], style.width);
  }
  for (const std::string& file : run.navigation_files) text += FileRow("Navigation", file, style.width);
  if (run.navigation_files.empty()) row("Navigation", "none");
  text += FileRow("Marker", run.marker, style.width);
  text += FileRow("Receiver", run.receiver, style.width);
  text += FileRow("Antenna", run.antenna, style.width);
  if (run.stream) {
    row("Stream", StreamText(*run.stream));
    row("Messages", MessagesText(*run.stream));
    if (const std::string steps = StepsText(*run.stream); !steps.empty()) row("Steps", steps);
  }
  row("First epoch", TimeOf(run.first_epoch));
  row("Last epoch", TimeOf(run.last_epoch));
  row("Duration", fmt::format("{:.4f} h", run.duration_h));
  row("Interval", fmt::format("{:g} s, {}", run.interval_s, SourceText(run.interval_source)));
  row("Elevation cut-off", fmt::format("{:g} degrees", run.elevation_cutoff_deg));
  if (run.selection) row("Selected", SelectionText(*run.selection));
  row("Systems", run.systems);
  if (!run.excluded.empty()) row("Excluded", Joined(run.excluded, " "));
  if (!run.navigation_coverage.empty()) row("Broadcast records", CoverageText(run.navigation_coverage));
  return text;
}

std::string Joined(const std::vector<std::string>& parts, std::string_view between) {
  std::string text;
  for (const std::string& part : parts) {
    if (!text.empty()) text += between;
    text += part;
  }
  return text.empty() ? "-" : text;
}

std::string SourceText(const std::string& source) {
  if (source == "header") return "from the header";
  if (source == "option") return "as given";
  return source == "data" ? "found in the data" : "computed";
}

}  // namespace orsolva_host
