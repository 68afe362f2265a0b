#include "host/report/library_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/report/figure_text.h"
#include "host/report/headline_text.h"
#include "host/report/notes.h"
#include "host/report/run_text.h"

namespace orsolva_host {
namespace {

/// The library's record: its own rules, hence its own names, and a part of its own.
class LibraryWriter {
 public:
  LibraryWriter(const Report& report, const TextStyle& style, const FigureTables& tables)
      : report_(report), style_(style), tables_(tables) {}

  std::string Write() {
    Heading("LIBRARY RECORD (by the rules of archives; docs/user/two-figures.md)");
    text_ += HeadlineLines(tables_.library_headline, report_, report_.library_headline, style_);
    Run();
    if (!report_.run.library_absence) {
      Systems();
      Bands();
      Signals();
      if (report_.show_satellites) Satellites();
      Total();
    }
    Notes();
    return std::move(text_);
  }

 private:
  void Heading(const std::string& text) { text_ += "\n" + HeadingLine(text, style_); }
  void Row(const char* name, const std::string& value) { text_ += NamedRow(name, value, style_.width); }

  void Run();
  void Position();
  void Systems();
  void Bands();
  void Signals();
  void Satellites();
  void Total();
  void Notes();

  /// A column for every figure that has one, its heading with the marks of its notes.
  template <typename Owner>
  void AddColumns(const std::vector<FigureRow<Owner>>& rows, TextTable& table) const {
    for (const FigureRow<Owner>& row : rows) {
      if (row.text.heading == nullptr) continue;
      table.AddColumn(row.text.heading + HeadingMarks(report_.notes, row.key), row.text.width);
    }
  }

  const Report& report_;
  const TextStyle& style_;
  const FigureTables& tables_;
  std::string text_;
};

void LibraryWriter::Run() {
  const ReportRun& run = report_.run;
  Row("Epochs", fmt::format("{} read, {} judged, {} lost", run.epochs, Whole(run.judged_epochs),
                            Whole(run.lost_epochs)));
  Position();
  if (run.averaging_window_epochs) {
    Row("Multipath mean", fmt::format("over {} epochs", *run.averaging_window_epochs));
  }
}

void LibraryWriter::Position() {
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

void LibraryWriter::Systems() {
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

void LibraryWriter::Bands() {
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

void LibraryWriter::Signals() {
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
void LibraryWriter::Total() {
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

void LibraryWriter::Satellites() {
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

void LibraryWriter::Notes() {
  if (report_.notes.empty()) return;
  Heading("NOTES");
  for (std::size_t i = 0; i < report_.notes.size(); ++i) {
    text_ += Wrapped(report_.notes[i].text, fmt::format("  [{}] ", i + 1), "      ", style_.width);
  }
}

}  // namespace

std::string LibraryText(const Report& report, const TextStyle& style, const FigureTables& tables) {
  return LibraryWriter(report, style, tables).Write();
}

}  // namespace orsolva_host
