#include "host/report/text_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <type_traits>
#include <utility>

#include "host/report/analysis_text.h"
#include "host/report/comparison.h"
#include "host/report/figure_text.h"
#include "host/report/notes.h"
#include "host/report/verdict_text.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kMinWidth = 40;

std::string Joined(const std::vector<std::string>& parts, std::string_view between) {
  std::string text;
  for (const std::string& part : parts) {
    if (!text.empty()) text += between;
    text += part;
  }
  return text.empty() ? "-" : text;
}

std::string TimeOf(const std::optional<Time_gbt>& time) { return time ? TimeText(*time) + " GPST" : "-"; }

std::string SourceText(const std::string& source) {
  if (source == "header") return "from the header";
  if (source == "option") return "as given";
  return source == "data" ? "found in the data" : "computed";
}

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
    Run();
    if (report_.figures != FigureChoice::kAnalysis) Library();
    Notices();
    return std::move(text_);
  }

 private:
  void Heading(const std::string& text) {
    text_ += "\n";
    std::string lines = Wrapped(text, "", "  ", style_.width);
    lines.pop_back();
    text_ += Toned(lines, Tone::kStrong, style_) + "\n";
  }

  void Row(std::string name, const std::string& value) {
    text_ += NamedRow(std::move(name), value.empty() ? "-" : value, style_.width);
  }

  void FileRow(std::string name, const std::string& file) {
    name.resize(kRowNameWidth, ' ');
    text_ += name + Fitted(file.empty() ? "-" : Printable(file), style_.width - kRowNameWidth) + "\n";
  }

  void Verdict();
  void Findings(const char* heading, bool wrong);
  void Headline();
  void Run();
  void Library();
  void LibraryRun();
  void Position();
  void Systems();
  void Bands();
  void Signals();
  void Satellites();
  void LibraryTotal();
  void Notes();
  void Notices();

  template <typename Owner>
  void HeadlineLines(const std::vector<FigureRow<Owner>>& rows, const Owner& owner);
  template <typename Owner>
  std::string HeadlineItem(const FigureRow<Owner>& row, const Owner& owner) const;

  /// A column for every figure that has one, its heading with the marks of its notes.
  template <typename Owner>
  void AddColumns(const std::vector<FigureRow<Owner>>& rows, TextTable& table) const {
    for (const FigureRow<Owner>& row : rows) {
      if (row.text.heading == nullptr) continue;
      table.AddColumn(row.text.heading + HeadingMarks(report_.notes, row.key), row.text.width);
    }
  }

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

/// "119 observed", and a dash for a figure that is absent.
template <typename Owner>
std::string Writer::HeadlineItem(const FigureRow<Owner>& row, const Owner& owner) const {
  const std::string_view heading = row.text.heading;
  const std::size_t bar = heading.find('|');
  const std::optional<double> value = row.get(owner);
  std::string item = Shown(value, row.kind, row.text.decimals);
  if (value && row.kind == FigureKind::kRatio) item += " %";
  if (value && row.kind == FigureKind::kMetres) item += " m";
  if constexpr (std::is_same_v<Owner, LibraryHeadline>) item += LibraryHeadlineMarks(report_, row.key);
  if constexpr (std::is_same_v<Owner, orsolva_host::Headline>) {
    const bool per_slip = std::string_view(row.key) == "observations_per_slip";
    if (per_slip && owner.observations_without_slip)
      item = fmt::format("more than {}", *owner.observations_without_slip);
  }
  if (bar + 1 < heading.size()) item += " " + std::string(heading.substr(bar + 1));
  if (item == "1 gaps") item.pop_back();
  return item;
}

/// A line for the figures of one group, "119 observed, 96 judged", and a dash where it has none.
template <typename Owner>
void Writer::HeadlineLines(const std::vector<FigureRow<Owner>>& rows, const Owner& owner) {
  std::string group, line;
  bool any = false;
  const auto end_line = [&] {
    if (!line.empty()) Row(group, any ? line : "-");
    line.clear();
    any = false;
  };
  for (const auto& row : rows) {
    if (row.text.heading == nullptr) continue;
    const std::string_view heading = row.text.heading;
    const std::size_t bar = heading.find('|');
    if (heading.substr(0, bar) != group) end_line();
    group = heading.substr(0, bar);
    const std::string item = HeadlineItem(row, owner);
    any = any || row.get(owner);
    // The ratio of a group leads, whatever the order of the rows.
    const bool leads = row.kind == FigureKind::kRatio && !line.empty();
    line = leads ? item + ", " + line : line + (line.empty() ? "" : ", ") + item;
  }
  end_line();
}

void Writer::Headline() {
  Heading("HEADLINE");
  HeadlineLines(tables_.headline, report_.headline);
  text_ += AnalysisText(report_, style_, tables_);
}

/// The library's record: its own rules, hence its own names, and a part of its own.
void Writer::Library() {
  Heading("LIBRARY RECORD (by the rules of archives; docs/user/two-figures.md)");
  HeadlineLines(tables_.library_headline, report_.library_headline);
  LibraryRun();
  if (!report_.run.library_absence) {
    Systems();
    Bands();
    Signals();
    if (report_.show_satellites) Satellites();
    LibraryTotal();
  }
  Notes();
}

void Writer::Run() {
  Heading("RUN");
  const ReportRun& run = report_.run;
  FileRow("Observations", run.observation_file);
  for (const std::string& file : run.navigation_files) FileRow("Navigation", file);
  if (run.navigation_files.empty()) Row("Navigation", "none");
  FileRow("Marker", run.marker);
  FileRow("Receiver", run.receiver);
  FileRow("Antenna", run.antenna);
  Row("First epoch", TimeOf(run.first_epoch));
  Row("Last epoch", TimeOf(run.last_epoch));
  Row("Duration", fmt::format("{:.4f} h", run.duration_h));
  Row("Interval", fmt::format("{:g} s, {}", run.interval_s, SourceText(run.interval_source)));
  Row("Elevation cut-off", fmt::format("{:g} degrees", run.elevation_cutoff_deg));
  if (run.selection) Row("Selected", SelectionText(*run.selection));
  Row("Systems", run.systems);
  if (!run.excluded.empty()) Row("Excluded", Joined(run.excluded, " "));
  if (!run.navigation_coverage.empty()) Row("Broadcast records", CoverageText(run.navigation_coverage));
}

void Writer::LibraryRun() {
  const ReportRun& run = report_.run;
  Row("Epochs", fmt::format("{} read, {} judged, {} lost", run.epochs, Whole(run.judged_epochs),
                            Whole(run.lost_epochs)));
  Position();
  if (run.averaging_window_epochs) {
    Row("Multipath mean", fmt::format("over {} epochs", *run.averaging_window_epochs));
  }
}

void Writer::Position() {
  const ReportRun& run = report_.run;
  if (!run.position_m) return Row("Position X Y Z", "-");
  const auto& [x, y, z] = *run.position_m;
  Row("Position X Y Z", fmt::format("{:.4f} {:.4f} {:.4f} m", x, y, z));
  std::string source = SourceText(run.position_source);
  if (run.distance_from_header_m) {
    source += fmt::format(", {:.3f} m from the header's position", *run.distance_from_header_m);
  }
  Row("Position source", source);
}

void Writer::Systems() {
  Heading("LIBRARY SYSTEMS (optimal combination of signals)");
  TextTable table;
  table.AddColumn("System", -12);
  table.AddColumn("Combination", -15);
  AddColumns(tables_.whole, table);
  for (const SystemReport& system : report_.systems) {
    const std::string combination = Joined(system.combination, "+");
    const std::string marks = RowMarks(report_.notes, std::string(1, system.letter), "");
    std::vector<std::string> cells = {system.name + marks, combination};
    AddCells(tables_.whole, system.figures, cells);
    table.AddRow(std::move(cells));
  }
  text_ += table.Text(style_);
}

void Writer::Bands() {
  Heading("LIBRARY BANDS (multipath RMS in m, mean SNR in dB-Hz, iono RMS in cycles)");
  const bool any = std::any_of(report_.systems.begin(), report_.systems.end(),
                               [](const SystemReport& system) { return !system.figures.bands.empty(); });
  if (!any) {
    text_ += "no data\n";
    return;
  }
  TextTable table;
  table.AddColumn("System", -9);
  table.AddColumn("Band", -12);
  AddColumns(tables_.band, table);
  for (const SystemReport& system : report_.systems) {
    for (const BandFigures& band : system.figures.bands) {
      const std::string marks = RowMarks(report_.notes, std::string(1, system.letter), band.band);
      std::vector<std::string> cells = {system.name, band.band + marks};
      AddCells(tables_.band, band, cells);
      table.AddRow(std::move(cells));
    }
  }
  text_ += table.Text(style_);
}

void Writer::Signals() {
  Heading("LIBRARY SIGNALS (every code by itself)");
  if (report_.signals.empty()) {
    text_ += "no data\n";
    return;
  }
  TextTable table;
  table.AddColumn("Signal", -12);
  AddColumns(tables_.signal, table);
  for (const SignalReport& s : report_.signals) {
    const std::string marks = RowMarks(report_.notes, std::string(1, s.letter), s.band);
    std::vector<std::string> cells = {fmt::format("{} {} {}", s.letter, s.signal, s.band) + marks};
    AddCells(tables_.signal, s, cells);
    table.AddRow(std::move(cells));
  }
  text_ += table.Text(style_);
}

/// What the library pools over all systems: other rules than the headline's, hence a part of its own.
void Writer::LibraryTotal() {
  const Figures& total = report_.library_total;
  if (!total.expected && total.bands.empty()) return;
  Heading("LIBRARY TOTAL (all systems as the library pools them)" + RowMarks(report_.notes, "all", "") +
          RowMarks(report_.notes, "E", ""));
  TextTable sums;
  AddColumns(tables_.total, sums);
  std::vector<std::string> cells;
  AddCells(tables_.total, total, cells);
  sums.AddRow(std::move(cells));
  text_ += sums.Text(style_);
  if (total.bands.empty()) return;
  TextTable table;
  table.AddColumn("Band slot", -12);
  AddColumns(tables_.slot, table);
  for (const BandFigures& slot : total.bands) {
    std::vector<std::string> row = {fmt::format("slot {}", slot.slot)};
    AddCells(tables_.slot, slot, row);
    table.AddRow(std::move(row));
  }
  text_ += "\n" + table.Text(style_);
}

std::string BandList(const char* name, const Figures& figures, std::optional<double> BandFigures::*figure,
                     int decimals) {
  std::string text;
  for (const BandFigures& b : figures.bands) {
    if (b.*figure) text += fmt::format(" {}={}", b.band, Fixed(b.*figure, decimals));
  }
  return text.empty() ? text : name + text;
}

void Writer::Satellites() {
  Heading("LIBRARY SATELLITES (MP in m, SNR in dB-Hz, by band)");
  if (report_.satellites.empty()) {
    text_ += "no data\n";
    return;
  }
  TextTable table;
  table.AddColumn("Sat", -6);
  table.AddColumn("State", -12);
  AddColumns(tables_.whole, table);
  for (const SatelliteReport& s : report_.satellites) {
    std::vector<std::string> cells = {s.name, s.state};
    AddCells(tables_.whole, s.figures, cells);
    table.AddRow(std::move(cells));
    for (const std::string& list : {BandList("MP ", s.figures, &BandFigures::mp_m, 3),
                                    BandList("SNR", s.figures, &BandFigures::snr_dbhz, 1)}) {
      if (!list.empty()) table.AddBelow(Wrapped(list, "     ", "       ", style_.width));
    }
  }
  text_ += table.Text(style_);
}

void Writer::Notes() {
  if (report_.notes.empty()) return;
  Heading("NOTES");
  for (std::size_t i = 0; i < report_.notes.size(); ++i) {
    text_ += Wrapped(report_.notes[i].text, fmt::format("  [{}] ", i + 1), "      ", style_.width);
  }
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
