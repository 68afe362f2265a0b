#include "host/report/notes.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/report/navigation_coverage.h"

namespace orsolva_host {
namespace {

constexpr const char* kGalileoNotCounted = "galileo-not-counted";

bool HasBand(const std::vector<std::string>& codes, char band) {
  return std::any_of(codes.begin(), codes.end(),
                     [band](const std::string& code) { return !code.empty() && code[0] == band; });
}

bool Contains(const std::vector<std::string>& texts, std::string_view text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

const SystemReport* Find(const Report& report, char letter) {
  for (const SystemReport& system : report.systems) {
    if (system.letter == letter) return &system;
  }
  return nullptr;
}

void AddGalileo(const Report& report, std::vector<ReportNote>& notes) {
  const SystemReport* galileo = Find(report, 'E');
  if (galileo == nullptr) return;
  if (!HasBand(galileo->signals, '7') && !HasBand(galileo->signals, '8')) return;
  notes.push_back({"galileo-no-channel",
                   "Galileo bands 7 (E5b) and 8 (E5) have multipath and slips, but no completeness and SNR "
                   "channel.",
                   {"expected_epochs", "observed_epochs", "completeness_ratio", "snr_mean_dbhz",
                    "snr_mean_below_30deg_dbhz", "snr_mean_above_30deg_dbhz"},
                   "E",
                   {"E5b", "E5"}});
  const Figures& figures = galileo->figures;
  if (!HasUncountedCode(*galileo) || !figures.expected || figures.observed) return;
  ReportNote note{kGalileoNotCounted,
                  "The Galileo combination holds E5b or E5, so its complete observations are not counted; "
                  "see each signal instead.",
                  {"observed_epochs", "completeness_ratio", "observations_per_restart"},
                  "E",
                  {}};
  if (report.library_total.completeness) {
    note.text +=
        " The library total holds Galileo's expected epochs without observed ones, which lowers its "
        "completeness; the headline leaves Galileo out.";
    note.figures.emplace_back("total_completeness_ratio");
  }
  notes.push_back(std::move(note));
}

void AddGlonass(const Report& report, std::vector<ReportNote>& notes) {
  const SystemReport* glonass = Find(report, 'R');
  if (glonass == nullptr || !HasBand(glonass->signals, '3')) return;
  notes.push_back({"glonass-g3",
                   "GLONASS pairs are of bands 1 and 2 only: band 3 has no multipath and no slips.",
                   {"mp_rms_m", "mp_values", "mp_restart_epochs", "phase_geometry_slip_epochs",
                    "observations_per_restart"},
                   "R",
                   {"G3"}});
}

void AddBds(const Report& report, std::vector<ReportNote>& notes) {
  std::string names;
  for (const NavigationCoverage& row : report.run.navigation_coverage) {
    if (HasNoOrbit(row.satellite)) names += (names.empty() ? "" : ", ") + row.satellite;
  }
  if (names.empty()) return;
  notes.push_back({"bds-no-orbit",
                   "BDS satellites whose number has no known kind of orbit have no position and are not "
                   "judged, whatever records they have: " +
                       names + ".",
                   {"expected_epochs", "observed_epochs"},
                   "C",
                   {}});
}

void AddSlips(const Report& report, std::vector<ReportNote>& notes) {
  const bool systems = std::any_of(report.systems.begin(), report.systems.end(), [](const SystemReport& s) {
    return s.figures.phase_geometry_slips.value_or(0) > 0;
  });
  const bool signals = std::any_of(report.signals.begin(), report.signals.end(), [](const SignalReport& s) {
    return s.phase_geometry_slips.value_or(0) > 0;
  });
  if (!systems && !signals) return;
  notes.push_back(
      {"phase-test",
       "PG slips are those of the phase-minus-geometry test, which also counts every change of the "
       "broadcast record in use, and at 30 s the phases of low satellites, so the counts exceed "
       "the number of real cycle slips. Restarts (Rst) are those of the multipath mean, which Obs/rst "
       "divides by; they are not affected.",
       {"phase_geometry_slip_epochs"},
       "",
       {}});
}

bool AnyIonosphere(const Report& report) {
  for (const SystemReport& system : report.systems) {
    for (const BandFigures& band : system.figures.bands) {
      if (band.iono_rms_cycles) return true;
    }
  }
  return false;
}

}  // namespace

bool HasUncountedCode(const SystemReport& system) {
  return system.letter == 'E' && (HasBand(system.combination, '7') || HasBand(system.combination, '8'));
}

std::vector<ReportNote> NotesOf(const Report& report) {
  std::vector<ReportNote> notes;
  AddGalileo(report, notes);
  AddGlonass(report, notes);
  AddBds(report, notes);
  AddSlips(report, notes);
  if (AnyIonosphere(report)) {
    notes.push_back({"iono-last-satellite",
                     "The Iono RMS of a system is that of its last satellite.",
                     {"iono_rms_cycles"},
                     "",
                     {}});
  }
  if (!report.library_total.bands.empty()) {
    notes.push_back({"library-total-slots",
                     "The library total of a band slot pools the bands that the systems keep under the same "
                     "slot number.",
                     {"total_mp_rms_m", "total_snr_mean_dbhz", "total_snr_mean_below_30deg_dbhz",
                      "total_snr_mean_above_30deg_dbhz"},
                     "all",
                     {}});
  }
  return notes;
}

std::string HeadingMarks(const std::vector<ReportNote>& notes, std::string_view figure) {
  std::string marks;
  for (std::size_t i = 0; i < notes.size(); ++i) {
    if (notes[i].system.empty() && Contains(notes[i].figures, figure)) marks += fmt::format("[{}]", i + 1);
  }
  return marks;
}

std::string LibraryHeadlineMarks(const Report& report, std::string_view figure) {
  if (figure != "completeness_ratio" || !report.library_headline.completeness) return {};
  for (std::size_t i = 0; i < report.notes.size(); ++i) {
    if (report.notes[i].id == kGalileoNotCounted) return fmt::format("[{}]", i + 1);
  }
  return {};
}

std::string RowMarks(const std::vector<ReportNote>& notes, std::string_view system, std::string_view band) {
  std::string marks;
  for (std::size_t i = 0; i < notes.size(); ++i) {
    const bool here = band.empty() ? notes[i].bands.empty() : Contains(notes[i].bands, band);
    if (notes[i].system == system && here) marks += fmt::format("[{}]", i + 1);
  }
  return marks;
}

}  // namespace orsolva_host
