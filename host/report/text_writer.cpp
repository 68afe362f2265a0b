#include "host/report/text_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

constexpr std::size_t kWidth = 80;
using Out = std::back_insert_iterator<std::string>;

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

/// The text, with its middle left out when it is longer than the room for it.
std::string Fitted(const std::string& text, std::size_t room) {
  if (text.size() <= room || room < 8) return text;
  const std::size_t tail = (room - 3) / 2;
  return text.substr(0, room - 3 - tail) + "..." + text.substr(text.size() - tail);
}

/// Breaks a text at blanks into lines that begin with `indent`.
std::string Wrapped(const std::string& text, const std::string& indent) {
  std::string out;
  std::string line = indent;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find(' ', begin), text.size());
    const std::string word = Fitted(text.substr(begin, end - begin), kWidth - indent.size());
    if (line.size() > indent.size() && line.size() + 1 + word.size() > kWidth) {
      out += line + "\n";
      line = indent;
    }
    if (line.size() > indent.size()) line += ' ';
    line += word;
    begin = end + 1;
  }
  return out + line + "\n";
}

void Heading(Out out, std::string_view text) { fmt::format_to(out, "\n{}\n", text); }

void Row(Out out, std::string_view name, const std::string& value) {
  constexpr std::size_t kNameWidth = 18;
  fmt::format_to(out, "{:<18}{}\n", name, Fitted(value.empty() ? "-" : value, kWidth - kNameWidth));
}

std::string TimeOf(const std::optional<Time_gbt>& time) { return time ? TimeText(*time) + " GPST" : "-"; }

std::string SourceText(const std::string& source) {
  if (source == "header") return "from the header";
  if (source == "option") return "as given";
  return source == "data" ? "found in the data" : "computed";
}

void WriteRun(Out out, const ReportRun& run) {
  fmt::format_to(out, "Orsolva {} observation quality\n\n", run.library_version);
  Row(out, "Observations", run.observation_file);
  for (const std::string& file : run.navigation_files) Row(out, "Navigation", file);
  Row(out, "Marker", run.marker);
  Row(out, "Receiver", run.receiver);
  Row(out, "Antenna", run.antenna);
  Row(out, "First epoch", TimeOf(run.first_epoch));
  Row(out, "Last epoch", TimeOf(run.last_epoch));
  Row(out, "Duration", fmt::format("{:.4f} h", run.duration_h));
  Row(out, "Interval", fmt::format("{:g} s, {}", run.interval_s, SourceText(run.interval_source)));
  Row(out, "Epochs",
      fmt::format("{} read, {} judged, {} lost", run.epochs, run.judged_epochs, run.lost_epochs));
  Row(out, "Position X Y Z",
      fmt::format("{:.4f} {:.4f} {:.4f} m", run.position_m[0], run.position_m[1], run.position_m[2]));
  std::string source = SourceText(run.position_source);
  if (run.distance_from_header_m) {
    source += fmt::format(", {:.3f} m from the header's position", *run.distance_from_header_m);
  }
  Row(out, "Position source", source);
  Row(out, "Elevation cut-off", fmt::format("{:g} degrees", run.elevation_cutoff_deg));
  Row(out, "Systems judged", run.systems);
  if (!run.excluded.empty()) Row(out, "Excluded", Joined(run.excluded, " "));
}

void WriteFigures(Out out, std::string_view name, std::size_t name_width, const std::string& combination,
                  const Figures& f) {
  fmt::format_to(out, "{:<{}}{:<18}{:>9}{:>9}{:>9}{:>8}{:>8}{:>10}\n", name, name_width,
                 Fitted(combination, 17), Whole(f.expected), Whole(f.observed), Percent(f.completeness),
                 Whole(f.slips), Whole(f.jumps), Fixed(f.obs_per_slip, 0));
}

void WriteSystems(Out out, const Report& report) {
  Heading(out, "SYSTEMS (optimal combination of signals)");
  fmt::format_to(out, "{:<9}{:<18}{:>9}{:>9}{:>9}{:>8}{:>8}{:>10}\n", "System", "Combination", "Expected",
                 "Observed", "Compl %", "Slips", "Jumps", "Obs/slip");
  bool ambiguous = false;
  for (const SystemReport& system : report.systems) {
    const std::string combination = Joined(system.combination, "+");
    ambiguous = ambiguous || combination.find('|') != std::string::npos;
    WriteFigures(out, system.name, 9, combination, system.figures);
  }
  WriteFigures(out, "Combined", 9, "", report.combined);
  if (ambiguous) fmt::format_to(out, "1C|1L: one of these; the figures do not tell which.\n");
}

void WriteBands(Out out, std::string_view name, const Figures& figures) {
  for (const BandFigures& b : figures.bands) {
    const std::string band = b.band.empty() ? fmt::format("slot {}", b.slot) : b.band;
    fmt::format_to(out, "{:<9}{:<8}{:>10}{:>11}{:>11}{:>11}{:>13}\n", name, band, Fixed(b.mp_m, 3),
                   Fixed(b.snr_dbhz, 2), Fixed(b.snr_below30_dbhz, 2), Fixed(b.snr_above30_dbhz, 2),
                   Fixed(b.iono_rms_cycles, 4));
  }
}

void WriteAllBands(Out out, const Report& report) {
  Heading(out, "BANDS (multipath RMS in m, mean SNR in dB-Hz, ionospheric RMS in cycles)");
  fmt::format_to(out, "{:<9}{:<8}{:>10}{:>11}{:>11}{:>11}{:>13}\n", "System", "Band", "MP", "SNR",
                 "SNR<=30deg", "SNR>30deg", "Iono RMS");
  for (const SystemReport& system : report.systems) WriteBands(out, system.name, system.figures);
  WriteBands(out, "Combined", report.combined);
  const bool any = std::any_of(report.systems.begin(), report.systems.end(),
                               [](const SystemReport& system) { return !system.figures.bands.empty(); });
  if (!any) fmt::format_to(out, "no data\n");
}

void WriteSignals(Out out, const Report& report) {
  Heading(out, "SIGNALS (every code by itself)");
  fmt::format_to(out, "{:<8}{:>8}{:>9}{:>8}{:>7}{:>7}{:>7}{:>9}{:>5}{:>6}{:>6}\n", "Signal", "Expected",
                 "Observed", "Compl %", "MP m", "Jumps", "Ion sl", "Obs/slip", "SNR", "<=30", ">30");
  for (const SignalReport& s : report.signals) {
    fmt::format_to(out, "{:<8}{:>8}{:>9}{:>8}{:>7}{:>7}{:>7}{:>9}{:>5}{:>6}{:>6}\n",
                   fmt::format("{} {} {}", s.system, s.signal, s.band), Whole(s.expected), Whole(s.observed),
                   Percent(s.completeness), Fixed(s.mp_m, 3), Whole(s.jumps), Whole(s.iono_slips),
                   Fixed(s.obs_per_slip, 1), Fixed(s.snr_dbhz, 1), Fixed(s.snr_below30_dbhz, 1),
                   Fixed(s.snr_above30_dbhz, 1));
  }
  if (report.signals.empty()) fmt::format_to(out, "no data\n");
}

std::string BandList(const Figures& figures, std::optional<double> BandFigures::*figure, int decimals) {
  std::string text;
  for (const BandFigures& b : figures.bands) {
    if (b.*figure) text += fmt::format(" {}={}", b.band, Fixed(b.*figure, decimals));
  }
  return text.empty() ? " -" : text;
}

void WriteSatellites(Out out, const Report& report) {
  Heading(out, "SATELLITES (MP in m, SNR in dB-Hz, by band)");
  fmt::format_to(out, "{:<5}{:<10}{:>9}{:>9}{:>9}{:>8}{:>8}{:>10}\n", "Sat", "State", "Expected", "Observed",
                 "Compl %", "Slips", "Jumps", "Obs/slip");
  for (const SatelliteReport& s : report.satellites) {
    const Figures& f = s.figures;
    fmt::format_to(out, "{:<5}{:<10}{:>9}{:>9}{:>9}{:>8}{:>8}{:>10}\n", s.name, s.state, Whole(f.expected),
                   Whole(f.observed), Percent(f.completeness), Whole(f.slips), Whole(f.jumps),
                   Fixed(f.obs_per_slip, 0));
    if (f.bands.empty()) continue;
    fmt::format_to(out, "     MP {}\n", BandList(f, &BandFigures::mp_m, 3));
    fmt::format_to(out, "     SNR{}\n", BandList(f, &BandFigures::snr_dbhz, 1));
  }
  if (report.satellites.empty()) fmt::format_to(out, "no data\n");
}

void WriteNotes(Out out, const Report& report) {
  if (report.notes.empty()) return;
  Heading(out, "NOTES");
  for (const std::string& note : report.notes) fmt::format_to(out, "{}", Wrapped(note, "  "));
}

void WriteNotices(Out out, const Report& report) {
  if (report.notices.empty() && report.further_notices == 0) return;
  Heading(out, "NOTICES");
  for (const ReportNotice& n : report.notices) {
    std::string place = n.file;
    if (n.line > 0) place += fmt::format(":{}", n.line);
    fmt::format_to(out, "{}",
                   Wrapped(fmt::format("{}: {}{}", place, n.recovered ? "" : "not repaired: ", n.text) +
                               (n.count > 1 ? fmt::format(" ({} times)", n.count) : ""),
                           "  "));
  }
  if (report.further_notices > 0) fmt::format_to(out, "  and {} of further kinds\n", report.further_notices);
}

}  // namespace

std::string WriteText(const Report& report) {
  std::string text;
  const Out out = std::back_inserter(text);
  WriteRun(out, report.run);
  WriteSystems(out, report);
  WriteAllBands(out, report);
  WriteSignals(out, report);
  if (report.show_satellites) WriteSatellites(out, report);
  WriteNotes(out, report);
  WriteNotices(out, report);
  return text;
}

}  // namespace orsolva_host
