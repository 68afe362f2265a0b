// How one observation file is judged. Plain data with defaults; how a command line or another program's
// arguments become such settings is the caller's affair.
#ifndef ORSOLVA_JUDGING_SETTINGS_H
#define ORSOLVA_JUDGING_SETTINGS_H

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/judging/epoch_selection.h"
#include "host/report/earlier_report.h"
#include "host/report/history_profile.h"
#include "host/report/profile.h"
#include "host/rinex/byte_source.h"

namespace orsolva_host {

/// GPS, GLONASS, Galileo, QZSS, BDS, NavIC and SBAS; the library knows the first five.
constexpr std::string_view kAllSystems = "GREJCIS";

/// Where the position of the antenna comes from.
enum class PositionSource {
  kComputed,  ///< single point positioning over the first epochs
  kHeader,    ///< the approximate position of the file's header
  kOption,    ///< given by the caller
};

struct PositionChoice {
  PositionSource source = PositionSource::kComputed;
  std::array<double, 3> xyz_m = {};  ///< Earth-centred, Earth-fixed; with kOption
};

struct ExcludedSatellite {
  int system_slot = 0;  ///< place in kSystemTable
  int number = 0;       ///< within the system, from 1
};

struct JudgingSettings {
  double elevation_cutoff_deg = 10;         ///< from 0 to 90
  std::optional<double> interval_s;         ///< nominal interval; absent: the header's, else that of the data
  PositionChoice position;                  ///< of the antenna
  std::string systems{kAllSystems};         ///< letters of the systems, each at most once
  std::vector<ExcludedSatellite> excluded;  ///< satellites that are left out
  EpochSelection selection;                 ///< of epochs and signals
  bool snr_from_strength = false;           ///< see ObservationOptions::snr_from_strength
  InputLimits limits;                       ///< of each input file
  std::optional<Profile> profile;           ///< limits that the report is held against; absent: no verdict
  std::optional<History> history;           ///< earlier reports to hold it against instead
  std::vector<EarlierReport> compare_with;  ///< of which one is of the station; empty: no comparison
  double window_s = 0;                      ///< figures of windows of time as well; 0: none
  FigureChoice figures = FigureChoice::kBoth;  ///< that reports show
  bool show_satellites = false;                ///< reports list every satellite
  /// What the library cannot judge, as without navigation, is an error; else the report says what is missing.
  bool strict = false;
  /// The analysis of a file runs on a second thread, next to reader and library, and a compressed file is
  /// decompressed on a third. Reports are the same;
  /// a JudgingPool that has no threads left for it switches it off.
  bool analysis_on_own_thread = true;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_SETTINGS_H
