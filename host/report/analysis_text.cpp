#include "host/report/analysis_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "host/report/figure_text.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/diagnostics.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

using analysis::AnalysisResult;
using analysis::SignalFigures;
using analysis::SlipFigures;
using analysis::SystemFigures;

constexpr std::size_t kMaxGapsShown = 3;
constexpr std::size_t kMaxNamesShown = 12;

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

std::string Listed(std::vector<std::string> names) {
  const std::size_t further = names.size() > kMaxNamesShown ? names.size() - kMaxNamesShown : 0;
  names.resize(names.size() - further);
  std::string text;
  for (const std::string& name : names) AddPart(text, name);
  return further > 0 ? text + fmt::format(" and {} more", further) : text;
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

std::string EpochsText(const analysis::SpanFigures& span) {
  if (!span.expected_epochs) return {};
  return fmt::format("{} nominal every {:g} s, {} present, {} usable, {} missing", *span.expected_epochs,
                     span.interval_s, Whole(span.present_epochs), Whole(span.usable_epochs),
                     Whole(span.lost_epochs));
}

std::string GapsText(const analysis::SpanFigures& span) {
  if (span.gaps.empty()) return span.expected_epochs ? "none" : "";
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

std::string CompletenessText(const AnalysisResult& result) {
  std::string text;
  for (const SystemFigures& system : result.systems) {
    if (!system.cutoff.ratio) continue;
    AddPart(text, fmt::format("{} {:.2f} %", SystemName(system.letter), *system.cutoff.ratio * 100));
  }
  if (text.empty()) return text;
  return fmt::format("{}, from {:g} degrees up", text, result.elevation_cutoff_deg);
}

/// "3 (1 unsure) in 25792", "0 in 25792"
std::string SlipsOf(const SlipFigures& slips) {
  if (!slips.tested_steps || *slips.tested_steps == 0) return {};
  const Count unsure = slips.unsure.value_or(0);
  const Count all =
      slips.sure.value_or(0) + unsure + slips.half_cycles.value_or(0) + slips.unknown_size.value_or(0);
  std::string text = fmt::format("{}", all);
  if (unsure > 0) text += fmt::format(" ({} unsure)", unsure);
  return text + fmt::format(" in {}", *slips.tested_steps);
}

std::string SlipsText(const AnalysisResult& result) {
  std::string text;
  for (const SystemFigures& system : result.systems) {
    const std::string slips = SlipsOf(system.slips);
    if (!slips.empty()) AddPart(text, SystemName(system.letter) + " " + slips);
  }
  return text.empty() ? text : text + " tested steps";
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
    Row("Epochs", EpochsText(result_.span));
    Row("Gaps", GapsText(result_.span));
    Row("Completeness", CompletenessText(result_));
    Row("Cycle slips", SlipsText(result_));
    Row("Position", PositionText(result_.position));
    Row("Receiver clock", ClockText(result_.receiver_clock));
    if (result_.mask.lowest_deg)
      Row("Receiver's mask", fmt::format("{:.1f} degrees", *result_.mask.lowest_deg));
    for (const analysis::Contradiction& c : result_.contradictions) {
      Row("Contradiction", Printable(fmt::format("{}: stated {}, found {}", c.id, c.stated, c.found)));
    }
    WithoutOrbit();
    NeverObserved();
    Systems();
    Signals();
    if (report_.show_satellites) Satellites();
    return std::move(text_);
  }

 private:
  void Row(const char* name, const std::string& value) {
    if (!value.empty()) text_ += NamedRow(name, value, style_.width);
  }

  void WithoutOrbit() {
    std::vector<std::string> names;
    for (const SatelliteId id : result_.without_record) names.push_back(NameOf(id));
    if (names.empty()) return;
    const std::size_t count = names.size();
    Row("Without orbit", Counted(count, "satellite") + ": " + Listed(std::move(names)));
  }

  void NeverObserved() {
    std::vector<std::string> names;
    for (const analysis::NeverObserved& s : result_.never_observed) {
      if (s.healthy_epochs > 0) names.push_back(NameOf(s.id));
    }
    if (names.empty()) return;
    const std::size_t count = names.size();
    Row("Never observed", Counted(count, "satellite") + " in view: " + Listed(std::move(names)));
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

}  // namespace orsolva_host
