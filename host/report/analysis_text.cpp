#include "host/report/analysis_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "host/report/figure_text.h"
#include "host/report/window_figures.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

using analysis::AnalysisResult;
using analysis::SignalFigures;
using analysis::SystemFigures;

constexpr std::size_t kMaxGapsShown = 3;

std::string SystemName(char letter) {
  const int slot = SystemSlot(letter);
  if (slot >= 0) return kSystemTable[slot].name;
  return letter == 'S' ? "SBAS" : letter == 'I' ? "NavIC" : std::string(1, letter);
}

std::string TimeOf(std::int64_t time_ns) {
  const std::string text = TimeText(TimeOfNanoseconds(time_ns));
  const std::size_t zeros = text.find(".000");
  return zeros == std::string::npos ? text : text.substr(0, zeros);
}

/// Joins what is not empty.
void AddPart(std::string& text, const std::string& part) {
  if (!part.empty()) text += (text.empty() ? "" : ", ") + part;
}

/// "1 satellite", "3 satellites"
std::string Counted(std::size_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

/// A short time in the unit that leaves the fewest digits: "480.9 us", "-1.25 ms".
std::string ShortTime(double seconds) {
  const double size = std::fabs(seconds);
  if (size >= 1) return fmt::format("{:.4g} s", seconds);
  if (size >= 1e-3) return fmt::format("{:.4g} ms", seconds * 1e3);
  if (size >= 1e-6) return fmt::format("{:.4g} us", seconds * 1e6);
  return fmt::format("{:.4g} ns", seconds * 1e9);
}

std::string GapsText(const analysis::SpanFigures& span) {
  std::string text;
  for (std::size_t i = 0; i < std::min(span.gaps.size(), kMaxGapsShown); ++i) {
    const analysis::DataGap& gap = span.gaps[i];
    AddPart(text, fmt::format("{} to {} ({})", TimeOf(gap.last_before_ns), TimeOf(gap.first_after_ns),
                              Counted(gap.missing_epochs, "epoch")));
  }
  const std::size_t further =
      span.gaps.size() + span.further_gaps - std::min(span.gaps.size(), kMaxGapsShown);
  return further > 0 ? text + fmt::format(" and {} more", further) : text;
}

std::string PositionText(const analysis::PositionFigures& position) {
  if (!position.solutions || *position.solutions == 0) return {};
  std::string text = Counted(*position.solutions, "solution");
  if (position.moving.value_or(false)) AddPart(text, "the antenna moves");
  if (position.residual_rms_m) AddPart(text, fmt::format("residuals {:.2f} m", *position.residual_rms_m));
  if (position.scatter_enu_m) {
    const auto& [east, north, up] = *position.scatter_enu_m;
    AddPart(text, fmt::format("scatter {:.2f} m east, {:.2f} m north, {:.2f} m up", east, north, up));
  }
  if (position.pdop_median) AddPart(text, fmt::format("PDOP {:.1f}", *position.pdop_median));
  if (position.distance_to_header_m) {
    AddPart(text, fmt::format("{:.2f} m from the header's", *position.distance_to_header_m));
  }
  if (position.distance_to_given_m) {
    AddPart(text, fmt::format("{:.2f} m from the one given", *position.distance_to_given_m));
  }
  return text;
}

std::string ClockText(const analysis::ReceiverClockFigures& clock) {
  std::string text;
  if (clock.mean_offset_s) text = "offset " + ShortTime(*clock.mean_offset_s);
  if (clock.drift_s_per_s) AddPart(text, fmt::format("drift {:.2e} s/s", *clock.drift_s_per_s));
  if (clock.allan_deviation) AddPart(text, fmt::format("Allan deviation {:.1e}", *clock.allan_deviation));
  if (clock.steered.value_or(false)) AddPart(text, "steered");
  const auto count = [&text](const std::optional<Count>& n, std::string_view what) {
    if (n.value_or(0) > 0) AddPart(text, Counted(*n, what));
  };
  count(clock.resets, "reset");
  count(clock.code_clock_jumps, "code clock jump");
  count(clock.restarts, "restart");
  return text;
}

/// The lines and tables, one after the other.
class Writer {
 public:
  Writer(const Report& report, const TextStyle& style, const FigureTables& tables)
      : report_(report), result_(report.analysis.figures), style_(style), tables_(tables) {}

  std::string Write() {
    Row("Gaps", GapsText(result_.span));
    Row("Position", PositionText(result_.position));
    Row("Receiver clock", ClockText(result_.receiver_clock));
    if (result_.mask.lowest_deg)
      Row("Receiver's mask", fmt::format("{:.1f} degrees", *result_.mask.lowest_deg));
    Systems();
    return std::move(text_);
  }

  std::string WriteSignals() {
    Signals();
    if (const std::string windows = WindowTable(result_.windows, style_); !windows.empty())
      text_ += "\n" + windows;
    if (report_.show_satellites) Satellites();
    return std::move(text_);
  }

 private:
  void Row(const char* name, const std::string& value) {
    if (!value.empty()) text_ += NamedRow(name, value, style_.width);
  }

  void Systems() {
    if (result_.systems.empty()) return;
    TextTable table;
    table.AddColumn("System", -10);
    AddColumnsOf(tables_.analysis_system, table);
    for (const SystemFigures& system : result_.systems) {
      std::vector<std::string> cells = {SystemName(system.letter)};
      AddCells(tables_.analysis_system, system, cells);
      table.AddRow(std::move(cells));
    }
    text_ += "\n" + table.Text(style_);
  }

  void Signals() {
    if (result_.signals.empty()) return;
    TextTable table;
    table.AddColumn("Signal", -8);
    AddColumnsOf(tables_.analysis_signal, table);
    for (const SignalFigures& signal : result_.signals) {
      std::vector<std::string> cells = {fmt::format("{} {}", signal.system, NameOf(signal.code))};
      AddCells(tables_.analysis_signal, signal, cells);
      table.AddRow(std::move(cells));
    }
    text_ += "\n" + table.Text(style_);
  }

  void Satellites() {
    TextTable table;
    table.AddColumn("Sat", -6);
    AddColumnsOf(tables_.analysis_satellite, table);
    for (const analysis::SatelliteFigures& satellite : result_.satellites) {
      std::vector<std::string> cells = {NameOf(satellite.id)};
      AddCells(tables_.analysis_satellite, satellite, cells);
      table.AddRow(std::move(cells));
    }
    text_ += "\n" + table.Text(style_);
  }

  const Report& report_;
  const AnalysisResult& result_;
  const TextStyle& style_;
  const FigureTables& tables_;
  std::string text_;
};

}  // namespace

std::string AnalysisText(const Report& report, const TextStyle& style, const FigureTables& tables) {
  return Writer(report, style, tables).Write();
}

std::string AnalysisSignals(const Report& report, const TextStyle& style, const FigureTables& tables) {
  return Writer(report, style, tables).WriteSignals();
}

}  // namespace orsolva_host
