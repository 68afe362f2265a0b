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

/// "GPS", "GLO", "BDS", "GAL", "QZS", "IRN", "SBS"
std::string KeyOf(char letter) {
  const int slot = SystemSlot(letter);
  if (slot >= 0) return kSystemTable[slot].short_name;
  return letter == 'I' ? "IRN" : letter == 'S' ? "SBS" : "?";
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

/// The text of a comment, which ends its line.
std::string OneLine(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  }
  return text;
}

/// The lines, one after the other.
class Writer {
 public:
  Writer(const Report& report, const FigureTables& tables)
      : report_(report), tables_(tables), file_(OneField(report.run.observation_file)) {}

  std::string Write() {
    Comments();
    Sum();
    if (report_.figures != FigureChoice::kLibrary) Analysis();
    if (report_.figures != FigureChoice::kAnalysis) Library();
    if (!report_.profile_verdict) return std::move(text_);
    const ProfileVerdict& verdict = *report_.profile_verdict;
    fmt::format_to(out_, "=PROFILE {} {}", OneField(verdict.profile), OneField(verdict.grade));
    EndLine();
    return std::move(text_);
  }

 private:
  void EndLine() { fmt::format_to(out_, " {}\n", file_); }

  /// For people: the verdict, and each finding that made it.
  void Comments() {
    fmt::format_to(out_, "#VERDICT {} {} - {}\n", file_, report_.verdict.grade,
                   OneLine(report_.verdict.text));
    for (const Finding& finding : report_.findings) {
      if (finding.severity != "error" && finding.severity != "warning") continue;
      fmt::format_to(out_, "#FINDING {} {} {}\n", file_, finding.id, OneLine(finding.title));
    }
  }

  void Sum() {
    const ReportRun& run = report_.run;
    const Headline& head = report_.headline;
    std::optional<double> per_slip = head.observations_per_slip;
    if (head.observations_without_slip) per_slip = static_cast<double>(*head.observations_without_slip);
    fmt::format_to(out_, "SUM {} {} {:.2f} {:g} {} {} {} {} {} {}", TimeField(run.first_epoch),
                   TimeField(run.last_epoch), run.duration_h, run.interval_s, Whole(head.cutoff_expected),
                   Whole(head.cutoff_observed), Percent(head.cutoff_completeness), Fixed(head.gps_mp1_m, 3),
                   Fixed(head.gps_mp2_m, 3), Fixed(per_slip, 0));
    EndLine();
  }

  void Analysis() {
    const analysis::AnalysisResult& result = report_.analysis.figures;
    text_ += "=ANALYSIS";
    WriteFields(out_, tables_.headline, &report_.headline);
    EndLine();
    for (const analysis::SystemFigures& system : result.systems) {
      text_ += "=" + KeyOf(system.letter);
      WriteFields(out_, tables_.analysis_system, &system);
      EndLine();
    }
    for (const analysis::SignalFigures& signal : result.signals) {
      text_ += "=" + KeyOf(signal.system) + NameOf(signal.code);
      WriteFields(out_, tables_.analysis_signal, &signal);
      EndLine();
    }
  }

  void Library() {
    const ReportRun& run = report_.run;
    text_ += "=LIBRARY";
    WriteFields(out_, tables_.library_headline, &report_.library_headline);
    EndLine();
    fmt::format_to(out_, "=LIBRARY-RUN {} {} {}", run.epochs, Whole(run.judged_epochs),
                   Whole(run.lost_epochs));
    for (std::size_t axis = 0; axis < 3; ++axis) {
      fmt::format_to(out_, " {}", run.position_m ? fmt::format("{:.4f}", (*run.position_m)[axis]) : "-");
    }
    fmt::format_to(out_, " {} {:g}", run.position_source, run.elevation_cutoff_deg);
    EndLine();
    WriteFigures(out_, "=LIBRARY-ALL -", tables_.total, tables_.slot, report_.library_total);
    EndLine();
    for (const SystemReport& system : report_.systems) {
      WriteFigures(out_, "=LIBRARY-" + KeyOf(system.letter) + " " + Codes(system.combination), tables_.whole,
                   tables_.band, system.figures);
      EndLine();
    }
    for (const SignalReport& signal : report_.signals) {
      text_ += "=LIBRARY-" + KeyOf(signal.letter) + signal.signal + " " + OneField(signal.band);
      WriteFields(out_, tables_.signal, &signal);
      EndLine();
    }
  }

  const Report& report_;
  const FigureTables& tables_;
  std::string file_;
  std::string text_;
  Out out_ = std::back_inserter(text_);
};

}  // namespace

std::string WriteSum(const Report& report, const FigureTables& tables) {
  return Writer(report, tables).Write();
}

std::string WriteSumFailure(const std::string& file, const std::string& reason) {
  return fmt::format("#FAILED {} {}\n", OneField(file), OneLine(reason));
}

}  // namespace orsolva_host
