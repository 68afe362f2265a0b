// The model of a report: what was run and every figure found. It knows nothing of how it is written.
//
// A figure without data is absent, never zero.
#ifndef ORSOLVA_REPORT_REPORT_H
#define ORSOLVA_REPORT_REPORT_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "interface/records.h"

namespace orsolva_host {

using Count = std::uint64_t;

/// An oddity of the input that was met and passed over or repaired.
struct ReportNotice {
  std::string file;
  long line = 0;  ///< of the first case; 0 when no line is meant
  std::string text;
  long count = 0;
  bool recovered = true;
};

/// What was read and with which settings it was judged.
struct ReportRun {
  std::string library_version;
  std::string observation_file;
  std::vector<std::string> navigation_files;
  std::string marker;
  std::string receiver;
  std::string antenna;
  double rinex_version = 0;

  std::string systems;                ///< letters of the systems judged
  std::vector<std::string> excluded;  ///< satellites left out
  double elevation_cutoff_deg = 0;
  double interval_s = 0;
  std::string interval_source;  ///< "header", "data" or "option"
  std::string position_source;  ///< "computed", "header" or "option"

  std::optional<Time_gbt> first_epoch;
  std::optional<Time_gbt> last_epoch;
  double duration_h = 0;
  Count epochs = 0;         ///< read
  Count judged_epochs = 0;  ///< those at the interval's distance; others are passed over
  std::int64_t lost_epochs = 0;
  std::array<double, 3> position_m = {};
  std::optional<double> distance_from_header_m;  ///< of the position to the header's approximate one
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
  std::optional<double> completeness;  ///< 0 to 1
  std::optional<Count> slips;          ///< epochs with an ionospheric slip
  std::optional<Count> jumps;          ///< epochs with a multipath jump
  std::optional<double> obs_per_slip;
  std::vector<BandFigures> bands;  ///< those with data
};

struct SystemReport {
  char letter = 'G';
  std::string name;
  /// Codes of the optimal combination, one entry a band; see CombinationOf about several in one entry.
  std::vector<std::string> combination;
  std::vector<std::string> signals;  ///< every code with data
  Figures figures;
};

struct SatelliteReport {
  std::string name;
  std::string state;  ///< "used", "excluded" or "unhealthy"
  Figures figures;
};

struct SignalReport {
  char system = 'G';
  std::string system_name;
  std::string signal;  ///< such as "1C"
  std::string band;
  std::optional<Count> expected;
  std::optional<Count> observed;
  std::optional<double> completeness;
  std::optional<double> mp_m;
  std::optional<Count> mp_values;
  std::optional<Count> jumps;
  std::optional<Count> iono_slips;
  std::optional<double> obs_per_slip;
  std::optional<double> snr_dbhz;
  std::optional<double> snr_below30_dbhz;
  std::optional<double> snr_above30_dbhz;
};

struct Report {
  ReportRun run;
  std::vector<SystemReport> systems;
  Figures combined;
  std::vector<SignalReport> signals;
  std::vector<SatelliteReport> satellites;
  bool show_satellites = false;
  std::vector<std::string> notes;  ///< what a reader must know to read the figures right
  std::vector<ReportNotice> notices;
  long further_notices = 0;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_REPORT_H
