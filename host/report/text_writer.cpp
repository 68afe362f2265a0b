#include "host/report/text_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/report/notes.h"
#include "host/report/verdict_text.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kLeastWidth = 40;
constexpr std::size_t kNameWidth = 18;

std::string Fixed(const std::optional<double>& value, int decimals) {
  return value ? fmt::format("{:.{}f}", *value, decimals) : "-";
}

std::string Whole(const std::optional<Count>& value) { return value ? fmt::format("{}", *value) : "-"; }

std::string Percent(const std::optional<double>& ratio) {
  return ratio ? fmt::format("{:.2f}", *ratio * 100) : "-";
}

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

/// Which observed satellites lack broadcast records, and for how many of their epochs.
std::string CoverageText(const std::vector<NavigationCoverage>& rows) {
  constexpr double kWhole = 0.9995;
  std::size_t whole = 0;
  std::string lacking;
  for (const NavigationCoverage& row : rows) {
    if (row.covered_ratio >= kWhole) {
      ++whole;
      continue;
    }
    std::string how = fmt::format("{:.0f}%", row.covered_ratio * 100);
    if (row.records == 0) how = row.unhealthy_records > 0 ? "unhealthy" : "none";
    lacking += fmt::format("{} {} {}", lacking.empty() ? ";" : ",", row.satellite, how);
  }
  return fmt::format("cover {} of {} observed satellites{}", whole, rows.size(), lacking);
}

/// The parts of a report, one after the other.
class Writer {
 public:
  Writer(const Report& report, const TextStyle& style) : report_(report), style_(style) {
    style_.width = std::max(style_.width, kLeastWidth);
  }

  std::string Do() {
    Run();
    if (report_.verdict) {
      Heading("VERDICT");
      text_ += VerdictText(*report_.verdict, style_);
    }
    Systems();
    Bands();
    Signals();
    if (report_.show_satellites) Satellites();
    Notes();
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
    name.resize(kNameWidth, ' ');
    text_ += Wrapped(value.empty() ? "-" : value, name, std::string(kNameWidth, ' '), style_.width);
  }

  void FileRow(std::string name, const std::string& file) {
    name.resize(kNameWidth, ' ');
    text_ += name + Fitted(file.empty() ? "-" : Printable(file), style_.width - kNameWidth) + "\n";
  }

  void Run();
  void Position();
  void Systems();
  void AddBands(const std::string& name, std::string_view letter, const Figures& figures, TextTable& table);
  void Bands();
  void Signals();
  void Satellites();
  void Notes();
  void Notices();
  std::string Marked(const char* heading, std::string_view figure) const {
    return heading + HeadingMarks(report_.notes, figure);
  }

  const Report& report_;
  TextStyle style_;
  std::string text_;
};

void Writer::Run() {
  const ReportRun& run = report_.run;
  text_ += Toned(fmt::format("Orsolva {} observation quality", run.library_version), Tone::kStrong, style_);
  text_ += "\n\n";
  FileRow("Observations", run.observation_file);
  for (const std::string& file : run.navigation_files) FileRow("Navigation", file);
  FileRow("Marker", run.marker);
  FileRow("Receiver", run.receiver);
  FileRow("Antenna", run.antenna);
  Row("First epoch", TimeOf(run.first_epoch));
  Row("Last epoch", TimeOf(run.last_epoch));
  Row("Duration", fmt::format("{:.4f} h", run.duration_h));
  Row("Interval", fmt::format("{:g} s, {}", run.interval_s, SourceText(run.interval_source)));
  Row("Epochs", fmt::format("{} read, {} judged, {} lost", run.epochs, run.judged_epochs, run.lost_epochs));
  Position();
  Row("Elevation cut-off", fmt::format("{:g} degrees", run.elevation_cutoff_deg));
  Row("Multipath mean", fmt::format("over {} epochs", run.averaging_window_epochs));
  Row("Systems judged", run.systems);
  if (!run.excluded.empty()) Row("Excluded", Joined(run.excluded, " "));
  if (!run.navigation_coverage.empty()) Row("Broadcast records", CoverageText(run.navigation_coverage));
}

void Writer::Position() {
  const ReportRun& run = report_.run;
  Row("Position X Y Z",
      fmt::format("{:.4f} {:.4f} {:.4f} m", run.position_m[0], run.position_m[1], run.position_m[2]));
  std::string source = SourceText(run.position_source);
  if (run.distance_from_header_m) {
    source += fmt::format(", {:.3f} m from the header's position", *run.distance_from_header_m);
  }
  Row("Position source", source);
}

std::vector<std::string> FigureCells(const Figures& f) {
  return {Whole(f.expected),       Whole(f.observed),
          Percent(f.completeness), Whole(f.phase_geometry_slips),
          Whole(f.mp_restarts),    Fixed(f.obs_per_restart, 0)};
}

void AddFigureColumns(const std::string& slips, TextTable& table) {
  table.AddColumn("Expected", 9);
  table.AddColumn("Observed", 9);
  table.AddColumn("Compl %", 9);
  table.AddColumn(slips, 9);
  table.AddColumn("Restarts", 9);
  table.AddColumn("Obs/rst", 9);
}

std::vector<std::string> Cells(std::vector<std::string> names, const Figures& figures) {
  for (std::string& cell : FigureCells(figures)) names.push_back(std::move(cell));
  return names;
}

void Writer::Systems() {
  Heading("SYSTEMS (optimal combination of signals)");
  TextTable table;
  table.AddColumn("System", -12);
  table.AddColumn("Combination", -15);
  AddFigureColumns(Marked("PG slips", "phase_geometry_slip_epochs"), table);
  bool ambiguous = false;
  for (const SystemReport& system : report_.systems) {
    const std::string combination = Joined(system.combination, "+");
    ambiguous = ambiguous || combination.find('|') != std::string::npos;
    const std::string marks = RowMarks(report_.notes, std::string(1, system.letter), "");
    table.AddRow(Cells({system.name + marks, combination}, system.figures));
  }
  // What a note says about all of Galileo's figures holds for the sums with them.
  table.AddRow(Cells({"Library total" + RowMarks(report_.notes, "E", ""), ""}, report_.library_total));
  text_ += table.Text(style_);
  if (ambiguous)
    text_ += Wrapped("1C|1L: one of these; the figures do not tell which.", "", "", style_.width);
}

void Writer::AddBands(const std::string& name, std::string_view letter, const Figures& figures,
                      TextTable& table) {
  for (const BandFigures& b : figures.bands) {
    const std::string band = b.band.empty() ? fmt::format("slot {}", b.slot) : b.band;
    const std::string marks = RowMarks(report_.notes, letter, b.band);
    table.AddRow({name, band + marks, Fixed(b.mp_m, 3), Fixed(b.snr_dbhz, 2), Fixed(b.snr_below30_dbhz, 2),
                  Fixed(b.snr_above30_dbhz, 2), Fixed(b.iono_rms_cycles, 4)});
  }
}

void Writer::Bands() {
  Heading("BANDS (multipath RMS in m, mean SNR in dB-Hz, iono RMS in cycles)");
  const bool any = std::any_of(report_.systems.begin(), report_.systems.end(),
                               [](const SystemReport& system) { return !system.figures.bands.empty(); });
  if (!any) {
    text_ += "no data\n";
    return;
  }
  TextTable table;
  table.AddColumn("System", -9);
  table.AddColumn("Band", -12);
  table.AddColumn("MP", 9);
  table.AddColumn("SNR", 10);
  table.AddColumn("SNR<=30deg", 12);
  table.AddColumn("SNR>30deg", 12);
  table.AddColumn(Marked("Iono RMS", "iono_rms_cycles"), 14);
  for (const SystemReport& system : report_.systems) {
    AddBands(system.name, std::string(1, system.letter), system.figures, table);
  }
  AddBands("Library total", "all", report_.library_total, table);
  text_ += table.Text(style_);
}

void Writer::Signals() {
  Heading("SIGNALS (every code by itself)");
  if (report_.signals.empty()) {
    text_ += "no data\n";
    return;
  }
  TextTable table;
  table.AddColumn("Signal", -12);
  table.AddColumn("Exp", 6);
  table.AddColumn("Obs", 7);
  table.AddColumn("Compl %", 8);
  table.AddColumn("MP m", 7);
  table.AddColumn("Rst", 5);
  table.AddColumn(Marked("PG slips", "phase_geometry_slip_epochs"), 9);
  table.AddColumn("Obs/rst", 9);
  table.AddColumn("SNR", 5);
  table.AddColumn("<=30", 6);
  table.AddColumn(">30", 5);
  for (const SignalReport& s : report_.signals) {
    const std::string marks = RowMarks(report_.notes, std::string(1, s.letter), s.band);
    table.AddRow({fmt::format("{} {} {}", s.letter, s.signal, s.band) + marks, Whole(s.expected),
                  Whole(s.observed), Percent(s.completeness), Fixed(s.mp_m, 3), Whole(s.mp_restarts),
                  Whole(s.phase_geometry_slips), Fixed(s.obs_per_restart, 1), Fixed(s.snr_dbhz, 1),
                  Fixed(s.snr_below30_dbhz, 1), Fixed(s.snr_above30_dbhz, 1)});
  }
  text_ += table.Text(style_);
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
  Heading("SATELLITES (MP in m, SNR in dB-Hz, by band)");
  if (report_.satellites.empty()) {
    text_ += "no data\n";
    return;
  }
  TextTable table;
  table.AddColumn("Sat", -6);
  table.AddColumn("State", -12);
  AddFigureColumns(Marked("PG slips", "phase_geometry_slip_epochs"), table);
  for (const SatelliteReport& s : report_.satellites) {
    table.AddRow(Cells({s.name, s.state}, s.figures));
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

std::string WriteText(const Report& report, const TextStyle& style) { return Writer(report, style).Do(); }

}  // namespace orsolva_host
