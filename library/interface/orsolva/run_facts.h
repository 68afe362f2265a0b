// What a run is set to, what it has chosen and what it did with every satellite: read-only facts for reports.
//
// For programs that link the static archive: the shared library exports nothing of this. All values come from
// the run itself and from the constants that its measures use; asking for them changes no statistic.
#ifndef ORSOLVA_INTERFACE_RUN_FACTS_H
#define ORSOLVA_INTERFACE_RUN_FACTS_H

#include <cstdint>
#include <vector>

namespace orsolva {

/// The codes behind the figures of a system, a satellite or the total, by band slot. 0 = none.
struct ChosenCombination {
  std::uint8_t codes[6] = {};        ///< the combination: completeness and SNR are figures of these codes
  std::uint8_t mp_codes[6] = {};     ///< code whose multipath and slips are shown
  std::uint8_t mp_partners[6] = {};  ///< its partner on another band
};

/// What a run has done with a satellite: the first of these that applies.
enum class SatelliteUse : std::uint8_t {
  kSystemDisabled,  ///< its system is left out by the configuration
  kUnhealthy,       ///< every broadcast record of a navigation set was unhealthy
  kExcluded,        ///< left out by the configuration
  kNotObserved,     ///< in no epoch that was measured
  kNoRecord,        ///< no healthy broadcast record
  kNoElevation,     ///< never with a position: records too old, or a BDS number without a known orbit
  kBelowCutoff,     ///< never above the elevation cut-off
  kUsed,
};

struct SatelliteFacts {
  std::uint8_t sys = 0;  ///< system code, as in the records
  std::int32_t prn = 0;
  SatelliteUse use = SatelliteUse::kNotObserved;
  bool observed = false;          ///< in an epoch that was measured
  int records = 0;                ///< healthy broadcast records
  ChosenCombination combination;  ///< behind its figures in result_qct
};

/// One system slot: GPS, GLONASS, BDS, Galileo, QZSS, BD3.
struct SystemFacts {
  std::uint8_t sys = 0;
  bool enabled = false;  ///< its epochs are measured
  bool merged = false;   ///< part of the total; never for BD3, whose figures are in the BDS slot
  bool bands[6] = {};    ///< frequency slots in use, once codes have been observed
  int code_count = 0;
  std::uint8_t codes[8] = {};  ///< codes of the run in order of first appearance; of BD3 those of BDS
  /// Of BD3: the codes with which the newer satellites enter the figures of BDS.
  ChosenCombination combination;
};

/// Threshold for gaps above that of the row before and up to this one's, the end included.
struct GapThreshold {
  double gap_s = 0.0;  ///< infinite in the last row
  double threshold_m = 0.0;
};

/// Largest residual of the multipath of a band before the averaging restarts.
struct BandThreshold {
  std::uint8_t sys = 0;
  int band = 0;
  double threshold_m = 0.0;  ///< 0: every change restarts
};

/// Largest age of a broadcast record.
struct RecordAge {
  std::uint8_t sys = 0;
  double elevations_s = 0.0;  ///< for elevations and positioning
  double measures_s = 0.0;    ///< for multipath and slips
};

struct RunThresholds {
  double elevation_cutoff_rad = 0.0;
  double elevation_split_rad = 0.0;          ///< of the SNR above and below 30 degrees
  double geometry_free_rate_cm_min = 0.0;    ///< ionospheric rate beyond which the geometry-free test flags
  double geometry_free_least_m = 0.0;        ///< its threshold is at least this
  double geometry_free_gap_s = 0.0;          ///< a longer gap is flagged by itself
  double phase_geometry_gap_s = 0.0;         ///< a longer gap counts a phase-minus-geometry slip by itself
  std::vector<GapThreshold> phase_geometry;  ///< of the phase-minus-geometry test, by ascending gap
  double arc_gap_s = 0.0;  ///< a gap this long ends the arc; a longer one restarts multipath
  std::vector<BandThreshold> multipath;
  RecordAge record_ages[5];  ///< GPS, GLONASS, BDS, Galileo, QZSS
};

struct RunLimits {
  int satellites_per_epoch = 0;
  int signals_per_satellite = 0;
  int signals_per_slot = 0;  ///< of one satellite at one epoch
  int codes_per_system = 0;
  int code_epochs = 0;  ///< epochs of a batch in which the codes of the run are looked for
  int band_slots = 0;
  int combinations = 0;  ///< of codes, per system
  int pairs_per_band = 0;
  int records_per_satellite = 0;
  int positioning_epochs = 0;    ///< epochs of a batch that are positioned
  double gps_minus_bds_s = 0.0;  ///< GPS time less BDS time
  int leap_seconds = 0;          ///< GPS time less UTC, newest row of the library's table
};

struct RunFacts {
  bool valid = false;               ///< false for a null handle; everything else is then empty
  int averaging_window_epochs = 0;  ///< of the multipath, fixed by the first batch with codes
  double interval_s = 0.0;          ///< in use
  std::uint32_t epochs = 0;         ///< taken in
  bool position_known = false;      ///< given or computed
  RunThresholds thresholds;
  RunLimits limits;
  SystemFacts systems[6];
  std::vector<SatelliteFacts> satellites;  ///< every satellite the library knows
  ChosenCombination total;                 ///< per band slot that of the first merged system that has one
};

/// The facts of a run at present.
/// @param handle  of CreatQcProcess; null gives facts that are not valid
/// @throws std::bad_alloc when there is no memory
RunFacts FactsOf(const unsigned long long* handle);

/// Epochs of the moving average of the multipath at an interval: 50 up to 5 s, the whole part of 300 s
/// divided by the interval up to 30 s, 10 beyond.
int AveragingWindow(double interval_s);

}  // namespace orsolva

#endif  // ORSOLVA_INTERFACE_RUN_FACTS_H
