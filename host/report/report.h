// The model of a report: what was run and every figure found. It knows nothing of how it is written.
//
// A figure without data is absent, never zero.
#ifndef ORSOLVA_REPORT_REPORT_H
#define ORSOLVA_REPORT_REPORT_H

#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/analysis_result.h"
#include "host/analysis/slips/event.h"
#include "host/report/stream_facts.h"
#include "orsolva/records.h"

namespace orsolva_host {

using Count = std::uint64_t;

/// What computed a figure.
enum class FigureSource { kLibrary, kAnalysis, kFile };

/// Which figures a report shows: those of the analysis, the record of the library, or one after the other.
enum class FigureChoice { kBoth, kAnalysis, kLibrary };

/// The value, absent when it is not finite.
inline std::optional<double> Finite(double value) {
  return std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

/// An oddity of the input that was passed over or repaired.
struct ReportNotice {
  std::string file;
  long line = 0;  ///< of the first case; 0 when no line is meant
  std::string text;
  long count = 0;
  bool recovered = true;
};

/// A caveat about figures. Writers mark the figures concerned.
struct ReportNote {
  std::string id;  ///< stable name, such as "galileo-no-channel"
  std::string text;
  std::vector<std::string> figures;  ///< keys of figures.h
  std::string system;  ///< letter of the only system it is about, "all" for the library total, or empty
  std::vector<std::string> bands;  ///< the only bands it is about; empty: all
};

/// What the broadcast records say about a satellite that was observed.
struct NavigationCoverage {
  std::string satellite;
  Count observed_epochs = 0;    ///< epochs of the file with the satellite, above the cut-off or not
  Count records = 0;            ///< healthy ones
  Count unhealthy_records = 0;  ///< never used
  std::optional<Time_gbt> first_reference;
  std::optional<Time_gbt> last_reference;
  double covered_ratio = 0;  ///< part of the observed epochs with a healthy record young enough
};

/// Why a report has no figures of the library.
struct LibraryAbsence {
  std::string
      id;  ///< stable name, that of a finding: "no-navigation", "no-position", "no-epochs" or "implausible"
  std::string text;  ///< what was missing and what the user can do
};

/// The part of the data that was asked for.
struct ReportSelection {
  std::optional<Time_gbt> start;  ///< the first time taken
  std::optional<Time_gbt> end;    ///< the first time no longer taken
  std::optional<double> sampling_s;
  std::string signals;        ///< "G:1C,2W"; empty: all
  Count epochs_left_out = 0;  ///< of those read
};

/// What was read and with which settings it was judged.
struct ReportRun {
  std::string library_version;
  std::string observation_file;
  std::vector<std::string> joined_files;  ///< all files of a span, in order; empty for a file alone
  std::optional<StreamFacts> stream;      ///< absent for files of another kind
  std::vector<std::string> navigation_files;
  std::string marker;
  std::string receiver;
  std::string antenna;
  double rinex_version = 0;

  std::optional<ReportSelection> selection;  ///< absent: everything
  std::string systems;                       ///< letters of the systems judged
  std::vector<std::string> excluded;         ///< satellites left out
  double elevation_cutoff_deg = 0;
  double interval_s = 0;
  std::string interval_source;                 ///< "header", "data" or "option"
  std::string position_source;                 ///< "computed", "header" or "option"
  std::optional<int> averaging_window_epochs;  ///< of the multipath mean
  std::vector<NavigationCoverage> navigation_coverage;

  std::optional<Time_gbt> first_epoch;
  std::optional<Time_gbt> last_epoch;
  double duration_h = 0;
  Count epochs = 0;                    ///< read
  std::optional<Count> judged_epochs;  ///< those at the interval's distance; others are passed over
  std::optional<std::int64_t> lost_epochs;
  std::optional<std::array<double, 3>> position_m;
  std::optional<double> distance_from_header_m;   ///< of the position to the header's approximate one
  std::optional<LibraryAbsence> library_absence;  ///< absent when the library judged
};

/// Figures of one band slot.
struct BandFigures {
  int slot = 0;      ///< 1 to 6
  std::string band;  ///< such as "E5a"; empty for a mix of systems
  std::optional<double> mp_m;
  std::optional<double> snr_dbhz;
  std::optional<double> snr_below30_dbhz;
  std::optional<double> snr_above30_dbhz;
  std::optional<double> iono_rms_cycles;

  bool HasData() const { return mp_m || snr_dbhz || snr_below30_dbhz || snr_above30_dbhz || iono_rms_cycles; }
};

/// Figures of a system, a satellite or the whole run.
struct Figures {
  std::optional<Count> expected;
  std::optional<Count> observed;
  std::optional<double> completeness;         ///< 0 to 1
  std::optional<Count> phase_geometry_slips;  ///< epochs with a slip by the phase-minus-geometry test
  std::optional<Count> mp_restarts;           ///< epochs at which the multipath mean restarted
  std::optional<double> obs_per_restart;      ///< observed / mp_restarts
  std::vector<BandFigures> bands;             ///< those with data
};

struct SystemReport {
  char letter = 'G';
  std::string name;
  /// Codes of the optimal combination, one entry per band.
  std::vector<std::string> combination;
  std::vector<std::string> signals;  ///< every code with data
  Figures figures;
};

struct SatelliteReport {
  std::string name;
  std::string state;  ///< "judged", "excluded" or "unhealthy"
  Figures figures;
};

struct SignalReport {
  char letter = 'G';
  std::string name;
  std::string signal;  ///< such as "1C"
  std::string band;
  std::optional<Count> expected;
  std::optional<Count> observed;
  std::optional<double> completeness;
  std::optional<double> mp_m;
  std::optional<Count> mp_values;
  std::optional<Count> mp_restarts;
  std::optional<Count> phase_geometry_slips;
  std::optional<double> obs_per_restart;
  std::optional<double> snr_dbhz;
  std::optional<double> snr_below30_dbhz;
  std::optional<double> snr_above30_dbhz;
};

/// How a criterion of a profile came out for one figure.
struct CriterionOutcome {
  std::string criterion;  ///< its name in the profile
  std::string figure;     ///< key of figures.h
  std::string unit;
  std::string subject;   ///< "G", "G04", "all", or empty for the run
  std::string signal;    ///< "1C", a band such as "L1", or empty
  bool at_least = true;  ///< the limits are lowest allowed values; else highest ones
  double good_limit = 0;
  double fair_limit = 0;  ///< beyond it the criterion fails
  std::optional<double> value;
  std::string grade;                ///< "good", "fair", "fail" or "no data"
  std::optional<double> missed_by;  ///< how far the value lies beyond the fair limit; with "fail" only
  std::string source;               ///< where the limits come from
};

/// A report held against a profile of limits.
struct ProfileVerdict {
  std::string profile;
  std::string title;
  std::string grade;   ///< the worst grade of its outcomes; "no data" when nothing could be judged; "fair"
                       ///< at best where satellites were left unjudged
  bool passed = true;  ///< neither "fail" nor "no data"
  std::vector<CriterionOutcome> outcomes;  ///< failed ones first
  std::optional<Count> satellites_observed = {};
  std::optional<Count> satellites_judged = {};  ///< those observed that have an orbit
  std::vector<std::string> remarks = {};        ///< on where the limits come from, a sentence each
};

/// A figure that differs from an earlier report's by more than its limit.
struct FigureChange {
  std::string subject;  ///< "G"; empty for the run
  std::string signal;   ///< "1C" or empty
  std::string figure;   ///< key of figures.h
  std::string unit;
  std::optional<double> before, after;  ///< one may be absent
  double limit = 0;                     ///< largest difference that is no change
  std::optional<bool> worse;            ///< absent where neither direction is better
};

/// A statement of the header that is another one than in an earlier report.
struct StatementChange {
  std::string what;  ///< "receiver"
  std::string before, after;
};

/// What an earlier report had otherwise; comparison.h has the rules.
struct Comparison {
  std::string file;              ///< the earlier report
  std::string observation_file;  ///< that it is about
  std::string first_epoch, last_epoch;
  std::vector<StatementChange> statements;
  std::vector<std::string> signals_appeared, signals_gone;  ///< "G 1C"
  std::vector<FigureChange> figures;
  Count figures_compared = 0;  ///< with a value in either report
};

/// What a report says in one line.
struct Verdict {
  std::string grade;  ///< "good", "fair", "poor", or "not judged" where no satellite has an orbit
  std::string text;   ///< what is wrong, the most harmful first; else what makes it good
};

/// The figures a file is known by, of the analysis; headline.h has the rule of each.
struct Headline {
  std::optional<Count> nominal_epochs, present_epochs, missing_epochs, data_gaps;
  std::optional<Count> cutoff_expected, cutoff_observed;
  std::optional<double> cutoff_completeness;
  std::optional<Count> satellites_tracked, satellites_with_orbit, satellites_without_orbit;
  std::optional<Count> satellites_never_observed;
  std::optional<Count> cycle_slips, tested_steps, observations_without_slip;
  std::optional<double> observations_per_slip;
  std::optional<Count> interruptions_of_satellites, interruptions_of_signals;
  std::optional<double> gps_mp1_m, gps_mp2_m, worst_multipath_m;
  std::optional<double> solution_to_header_m, code_residual_rms_m;
  std::optional<Count> contradictions;
};

/// The figures a file is known by, of the library; library_headline.h has the rule of each.
struct LibraryHeadline {
  std::optional<Count> expected;
  std::optional<Count> observed;
  std::optional<double> completeness;
  std::optional<double> mp1_m;
  std::optional<double> mp2_m;
  std::optional<double> obs_per_restart;
  std::optional<Count> satellites_observed;
  std::optional<Count> satellites_judged;
  std::optional<Count> satellites_excluded;
  std::optional<Count> satellites_unhealthy;
  std::optional<Count> satellites_without_record;
  std::optional<Count> satellites_without_position;
  std::optional<Count> satellites_below_cutoff;
  std::optional<Count> geometry_free_slips;
  std::optional<Count> code_jumps;
  std::optional<Count> receiver_slip_epochs;
  std::optional<Count> gaps_in_view;
};

/// A figure that a finding rests on.
struct FindingFigure {
  std::string key;  ///< of figures.h
  double value = 0;
};

/// Something to look at first; findings.h has the rule of each.
struct Finding {
  std::string id;        ///< stable name, such as "gaps-in-view"
  std::string severity;  ///< "error", "warning", "info" or "good"
  std::string title;
  std::string text;
  std::vector<FindingFigure> figures;
  std::vector<std::string> satellites;  ///< those concerned; empty: the whole run
  std::string signal;                   ///< the one concerned, such as "G 1C", or empty
};

/// The analysis of every signal; unlike the library's figures it needs no navigation for most of them.
struct AnalysisReport {
  analysis::AnalysisResult figures;
  std::vector<analysis::Event> events;  ///< in order of time; the first ones where there are very many
  Count further_events = 0;
};

struct Report {
  ReportRun run;
  AnalysisReport analysis;
  Verdict verdict;
  std::optional<Comparison> comparison;  ///< with an earlier report, where one is named
  std::vector<Finding> findings;         ///< in order of harm
  Headline headline;
  std::optional<ProfileVerdict> profile_verdict;
  LibraryHeadline library_headline;
  std::vector<SystemReport> systems;
  Figures library_total;
  std::vector<SignalReport> signals;
  std::vector<SatelliteReport> satellites;    ///< those with figures
  std::map<std::string, std::string> states;  ///< what the run did with a satellite; see library_headline.h
  FigureChoice figures = FigureChoice::kBoth;
  bool show_satellites = false;
  bool show_satellite_signals = false;  ///< and of each its signals, by the analysis
  std::vector<ReportNote> notes;
  std::vector<ReportNotice> notices;
  long further_notices = 0;
  std::string read_error;  ///< why reading ended before the end of the file; empty when it did not
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_REPORT_H
