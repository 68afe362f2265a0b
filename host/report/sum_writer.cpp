#include "host/report/sum_writer.h"

#include <fmt/format.h>

#include <iterator>

#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

using Out = std::back_insert_iterator<std::string>;

std::string Fixed(const std::optional<double>& value, int decimals) {
  return value ? fmt::format("{:.{}f}", *value, decimals) : "-";
}

template <typename Number>
std::string Whole(const std::optional<Number>& count) {
  return count ? fmt::format("{}", *count) : "-";
}

std::string Percent(const std::optional<double>& ratio) {
  return ratio ? fmt::format("{:.2f}", *ratio * 100) : "-";
}

/// "2020-06-25T00:00:00"
std::string TimeField(const std::optional<Time_gbt>& time) {
  if (!time) return "-";
  std::string text = TimeText(*time);
  text = text.substr(0, text.find('.'));
  const std::size_t blank = text.find(' ');
  if (blank != std::string::npos) text[blank] = 'T';
  return text;
}

/// A text as one field: blanks and control characters as %XX, so that fields can be counted.
std::string OneField(const std::string& text) {
  std::string field;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    field += byte <= 0x20 || c == '%' || byte == 0x7f ? fmt::format("%{:02X}", byte) : std::string(1, c);
  }
  return field.empty() ? "-" : field;
}

std::string Codes(const std::vector<std::string>& codes) {
  std::string text;
  for (const std::string& code : codes) text += (text.empty() ? "" : "+") + code;
  return text.empty() ? "-" : text;
}

/// "=GPS", "=GLO", "=BDS", "=GAL", "=QZS"
std::string KeyOf(char letter) {
  const int slot = SystemSlot(letter);
  return slot < 0 ? std::string("=?") : std::string("=") + kSystemTable[slot].short_name;
}

/// A figure as one field: ratios in percent.
std::string Field(const std::optional<double>& value, FigureKind kind, int decimals) {
  return Fixed(kind == FigureKind::kRatio && value ? std::optional<double>(*value * 100) : value, decimals);
}

/// The fields of an owner, each after a blank; those of none without data.
template <typename Owner>
void WriteFields(Out out, const std::vector<FigureRow<Owner>>& rows, const Owner* owner) {
  for (const FigureRow<Owner>& row : rows) {
    if (row.sum_decimals == kNotInSum) continue;
    const std::optional<double> value = owner != nullptr ? row.get(*owner) : std::nullopt;
    fmt::format_to(out, " {}", Field(value, row.kind, row.sum_decimals));
  }
}

const BandFigures* BandAt(const Figures& figures, int slot) {
  for (const BandFigures& band : figures.bands) {
    if (band.slot == slot) return &band;
  }
  return nullptr;
}

void WriteFigures(Out out, const std::string& start, const std::vector<FigureRow<Figures>>& rows,
                  const std::vector<FigureRow<BandFigures>>& band_rows, const Figures& f) {
  fmt::format_to(out, "{}", start);
  WriteFields(out, rows, &f);
  for (int slot = 1; slot <= ORSOLVA_BAND_SLOTS; ++slot) WriteFields(out, band_rows, BandAt(f, slot));
}

}  // namespace

std::string WriteSum(const Report& report, const FigureTables& tables) {
  std::string text;
  const Out out = std::back_inserter(text);
  const ReportRun& run = report.run;
  const Headline& head = report.headline;
  const std::string file = OneField(run.observation_file);
  const auto end_line = [&] { fmt::format_to(out, " {}\n", file); };
  fmt::format_to(out, "SUM {} {} {:.2f} {:g} {} {} {} {} {} {}", TimeField(run.first_epoch),
                 TimeField(run.last_epoch), run.duration_h, run.interval_s, Whole(head.expected),
                 Whole(head.observed), Percent(head.completeness), Fixed(head.mp1_m, 3), Fixed(head.mp2_m, 3),
                 Fixed(head.obs_per_restart, 0));
  end_line();
  text += "=HEADLINE";
  WriteFields(out, tables.headline, &head);
  end_line();
  fmt::format_to(out, "=RUN {} {} {}", run.epochs, Whole(run.judged_epochs), Whole(run.lost_epochs));
  for (std::size_t axis = 0; axis < 3; ++axis) {
    fmt::format_to(out, " {}", run.position_m ? fmt::format("{:.4f}", (*run.position_m)[axis]) : "-");
  }
  fmt::format_to(out, " {} {:g}", run.position_source, run.elevation_cutoff_deg);
  end_line();
  WriteFigures(out, "=ALL -", tables.total, tables.slot, report.library_total);
  end_line();
  for (const SystemReport& system : report.systems) {
    WriteFigures(out, KeyOf(system.letter) + " " + Codes(system.combination), tables.whole, tables.band,
                 system.figures);
    end_line();
  }
  for (const SignalReport& signal : report.signals) {
    text += KeyOf(signal.letter) + signal.signal + " " + OneField(signal.band);
    WriteFields(out, tables.signal, &signal);
    end_line();
  }
  if (report.verdict) {
    fmt::format_to(out, "=VERDICT {} {}", OneField(report.verdict->profile), OneField(report.verdict->grade));
    end_line();
  }
  return text;
}

std::string WriteSumFailure(const std::string& file, const std::string& reason) {
  std::string line = reason;
  for (char& c : line) {
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  }
  return fmt::format("#FAILED {} {}\n", OneField(file), line);
}

}  // namespace orsolva_host
