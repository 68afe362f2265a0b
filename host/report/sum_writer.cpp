#include "host/report/sum_writer.h"

#include <fmt/format.h>

#include <iterator>

#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"

namespace orsolva_host {
namespace {

using Out = std::back_insert_iterator<std::string>;

std::string Fixed(const std::optional<double>& value, int decimals) {
  return value ? fmt::format("{:.{}f}", *value, decimals) : "-";
}

std::string Whole(const std::optional<Count>& count) { return count ? fmt::format("{}", *count) : "-"; }

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

void WriteFigures(Out out, const std::string& key, const std::string& codes, const Figures& f,
                  const std::string& file) {
  fmt::format_to(out, "{} {} {} {} {} {} {} {}", key, codes, Whole(f.expected), Whole(f.observed),
                 Percent(f.completeness), Whole(f.phase_geometry_slips), Whole(f.mp_restarts),
                 Fixed(f.obs_per_restart, 0));
  for (int slot = 1; slot <= 6; ++slot) {
    std::optional<double> mp_m;
    std::optional<double> snr_dbhz;
    for (const BandFigures& band : f.bands) {
      if (band.slot != slot) continue;
      mp_m = band.mp_m;
      snr_dbhz = band.snr_dbhz;
    }
    fmt::format_to(out, " {} {}", Fixed(mp_m, 3), Fixed(snr_dbhz, 2));
  }
  fmt::format_to(out, " {}\n", file);
}

void WriteSignal(Out out, const SignalReport& s, const std::string& file) {
  fmt::format_to(out, "{}{} {} {} {} {} {} {} {} {} {} {} {} {}\n", KeyOf(s.letter), s.signal,
                 OneField(s.band), Whole(s.expected), Whole(s.observed), Percent(s.completeness),
                 Fixed(s.mp_m, 3), Whole(s.mp_restarts), Whole(s.phase_geometry_slips),
                 Fixed(s.obs_per_restart, 1), Fixed(s.snr_dbhz, 2), Fixed(s.snr_below30_dbhz, 2),
                 Fixed(s.snr_above30_dbhz, 2), file);
}

}  // namespace

std::string WriteSum(const Report& report) {
  std::string text;
  const Out out = std::back_inserter(text);
  const ReportRun& run = report.run;
  const Headline& sum = report.headline;
  const std::string file = OneField(run.observation_file);
  fmt::format_to(out, "SUM {} {} {:.2f} {:g} {} {} {} {} {} {} {}\n", TimeField(run.first_epoch),
                 TimeField(run.last_epoch), run.duration_h, run.interval_s, Whole(sum.expected),
                 Whole(sum.observed), Percent(sum.completeness), Fixed(sum.mp1_m, 3), Fixed(sum.mp2_m, 3),
                 Fixed(sum.obs_per_restart, 0), file);
  fmt::format_to(out, "=RUN {} {} {} {:.4f} {:.4f} {:.4f} {} {:g} {}\n", run.epochs, run.judged_epochs,
                 run.lost_epochs, run.position_m[0], run.position_m[1], run.position_m[2],
                 run.position_source, run.elevation_cutoff_deg, file);
  WriteFigures(out, "=ALL", "-", report.library_total, file);
  for (const SystemReport& system : report.systems) {
    WriteFigures(out, KeyOf(system.letter), Codes(system.combination), system.figures, file);
  }
  for (const SignalReport& signal : report.signals) WriteSignal(out, signal, file);
  if (report.verdict) {
    fmt::format_to(out, "=VERDICT {} {} {}\n", OneField(report.verdict->profile),
                   OneField(report.verdict->grade), file);
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
