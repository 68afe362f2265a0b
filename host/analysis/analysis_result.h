// The figures of an analysis as plain data. A figure without data is absent (std::nullopt or an empty list),
// never zero; a count of 0 was counted. The header that computes a figure has its rule.
#ifndef ORSOLVA_ANALYSIS_ANALYSIS_RESULT_H
#define ORSOLVA_ANALYSIS_ANALYSIS_RESULT_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/slips/event.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::analysis {

using Count = std::uint64_t;

/// Nominal epochs in a row that are lost, between two epochs with observations. Where the stream begins or
/// ends with epochs that hold nothing, its first or last epoch is that side of the gap.
struct DataGap {
  std::int64_t last_before_ns = 0;
  std::int64_t first_after_ns = 0;
  Count missing_epochs = 0;
};

/// Epochs of the whole stream.
struct SpanFigures {
  double interval_s = 0;  ///< of the data; 0 where a single epoch gives none and no header states one
  std::int64_t first_ns = 0;
  std::int64_t last_ns = 0;
  std::optional<Count> expected_epochs;
  std::optional<Count> present_epochs;  ///< with at least one observation
  std::optional<Count> usable_epochs;   ///< at least four satellites with code and phase on two bands
  std::optional<Count> lost_epochs;     ///< expected and not present
  std::optional<Count> disordered_epochs;
  std::vector<DataGap> gaps;
  Count further_gaps = 0;  ///< after the 10,000 listed
};

/// Observed against expected, from the horizon or the cut-off up.
struct CompletenessFigures {
  std::optional<Count> expected;
  std::optional<Count> observed;
  std::optional<double> ratio;
};

/// A figure over a range of elevations.
struct ElevationBin {
  int from_deg = 0;
  int to_deg = 0;
  double value = 0;
  Count values = 0;
};

/// A time during which a signal was weaker than it usually is at the elevations it was at.
struct StrengthDrop {
  std::int64_t from_ns = 0;
  std::int64_t to_ns = 0;
  double mean_drop_db = 0;
  double largest_drop_db = 0;
  std::optional<bool> other_bands;  ///< dropped with it; absent where there was no other band
};

struct StrengthFigures {
  std::optional<double> mean_dbhz;
  std::optional<double> p5_dbhz;
  std::optional<Count> values;
  std::vector<ElevationBin> mean_by_elevation;  ///< 5-degree bins
  std::vector<ElevationBin> p5_by_elevation;
  std::vector<StrengthDrop> drops;
};

struct MultipathFigures {
  std::optional<double> moving_m;     ///< RMS about a moving mean
  std::optional<double> whole_arc_m;  ///< RMS about the mean of each arc
  std::optional<Count> values;
  std::string partner;  ///< the signal whose phase takes the ionosphere off, "2W"
  std::vector<ElevationBin> by_elevation;
  std::optional<double> code_noise_m;  ///< white part
};

/// Slips within continuous tracking, of a signal or, one a step, of a satellite; those found after a hole are
/// interruptions that slipped.
struct SlipFigures {
  std::optional<Count> sure;          ///< whole cycles, size certain
  std::optional<Count> unsure;        ///< whole cycles, another size nearly as likely
  std::optional<Count> half_cycles;   ///< a half among the sizes
  std::optional<Count> unknown_size;  ///< jumps
  std::optional<Count> tested_steps;
  std::optional<Count> untested_steps;
  std::optional<Count> weakly_tested_steps;        ///< of those tested; see slip_sums.h
  std::optional<double> observations_per_slip;     ///< absent without a slip
  std::optional<Count> observations_without_slip;  ///< "more than n" where there is no slip
  std::optional<double> slips_per_1000;
  std::optional<Count> loss_of_lock_flags;
  std::optional<Count> loss_of_lock_with_slip;  ///< or with a hole left open
};

/// Phases without a break, from the cut-off up.
struct ArcFigures {
  std::optional<Count> arcs;
  std::optional<double> median_s;
  std::optional<double> longest_s;
};

/// Holes in the phase and how it went on after them.
struct InterruptionFigures {
  std::optional<Count> by_signal;     ///< the satellite's other signals went on
  std::optional<Count> by_satellite;  ///< other satellites went on
  std::optional<Count> by_receiver;   ///< no satellite went on
  std::optional<Count> continuous;
  std::optional<Count> slipped;
  std::optional<Count> unresolved;
};

struct PhaseNoiseFigures {
  std::optional<double> noise_mm;
  std::string method;  ///< "within the band", "three bands" or "third difference"
  std::optional<Count> values;
};

/// One signal of a system, or of a satellite.
struct SignalFigures {
  char system = 'G';
  SatelliteId satellite = {' ', 0};  ///< system ' ' for the sums over a system
  SignalCode code;
  std::optional<double> frequency_hz;                       ///< absent for the sums over GLONASS
  std::optional<Count> codes, phases, dopplers, strengths;  ///< values in the data
  std::optional<Count> satellites;  ///< that it was observed on; of sums over a system
  CompletenessFigures horizon;
  CompletenessFigures cutoff;
  StrengthFigures strength;
  MultipathFigures multipath;
  PhaseNoiseFigures phase_noise;
  SlipFigures slips;
  SlipFigures slips_below_cutoff;
  ArcFigures arcs;
  InterruptionFigures interruptions;
  InterruptionFigures interruptions_below_cutoff;
};

/// Phases of two bands against their codes: the scatter of the wide lane within arcs, pooled.
struct WideLaneFigures {
  char system = 'G';
  SignalCode first, second;
  std::optional<double> spread_cycles;
  std::optional<double> spread_m;
  std::optional<Count> values;
};

struct SatelliteFigures {
  SatelliteId id;
  bool has_record = false;  ///< a record or precise orbit covers some epoch of it
  std::optional<Count> observed_epochs;
  std::optional<std::int64_t> first_ns, last_ns;
  std::optional<double> highest_deg;
  std::vector<SignalCode> lacking;  ///< it must transmit them, others were observed with them, it never was
  CompletenessFigures horizon;      ///< of the signals expected of it
  CompletenessFigures cutoff;
  SlipFigures slips;
  SlipFigures slips_below_cutoff;
  ArcFigures arcs;
  InterruptionFigures interruptions;
  InterruptionFigures interruptions_below_cutoff;
  std::optional<Count> satellite_clock_events;
};

struct IonosphereFigures {
  std::optional<double> median_roti;  ///< TECU/min
  std::optional<double> p95_roti;
  std::optional<Count> windows;  ///< of five minutes of a satellite
  std::optional<double> disturbed_minutes;
  std::optional<Count> events;  ///< steps that only a patch of ionosphere explains
};

struct SystemFigures {
  char letter = 'G';
  std::optional<Count> satellites_observed;
  std::optional<Count> satellites_without_record;
  std::optional<Count> satellites_never_observed;  ///< healthy and above the cut-off in some epoch
  CompletenessFigures horizon;
  CompletenessFigures cutoff;
  SlipFigures slips;
  SlipFigures slips_below_cutoff;
  ArcFigures arcs;
  InterruptionFigures interruptions;
  InterruptionFigures interruptions_below_cutoff;
  IonosphereFigures ionosphere;
};

struct PositionFigures {
  std::optional<std::array<double, 3>> mean_m;  ///< median of the solutions, Earth-centred, Earth-fixed
  std::optional<Count> solutions;
  std::optional<Count> failed;
  std::optional<Count> one_band_solutions;  ///< of the solutions, with the ionosphere in them
  std::optional<double> residual_rms_m;
  std::optional<double> pdop_median;
  std::optional<double> pdop_p95;
  std::optional<std::array<double, 3>> scatter_enu_m;  ///< robust standard deviations east, north, up
  std::optional<bool> moving;
  std::optional<double> distance_to_header_m;
  std::optional<double> distance_to_given_m;
};

struct ReceiverClockFigures {
  std::optional<double> mean_offset_s;
  std::optional<double> drift_s_per_s;
  std::optional<Count> resets;            ///< of phases and codes together
  std::optional<Count> code_clock_jumps;  ///< of the codes alone
  std::optional<Count> restarts;          ///< steps whose clock cannot be known
  std::optional<bool> steered;
  std::optional<double> allan_deviation;     ///< at the interval
  std::optional<double> allan_deviation_10;  ///< at ten times the interval
};

/// A statement of header or file name that the data contradict.
struct Contradiction {
  std::string id;  ///< stable name, such as "interval"
  std::string stated;
  std::string found;
};

/// The receiver's own elevation mask as the data show it.
struct MaskFigures {
  std::optional<double> lowest_deg;  ///< first percentile of the elevations observed
};

/// A satellite that stood above the cut-off and of which the data hold nothing.
struct NeverObserved {
  SatelliteId id;
  Count healthy_epochs = 0;  ///< nominal epochs above the cut-off
  Count unhealthy_epochs = 0;
};

/// A stretch of time of the stream, from a multiple of its length in GPS time to before the next one. Of
/// systems and signals it has counts of values, completeness, mean strength, multipath about a moving mean,
/// slips, and interruptions; windows.h has the rules.
struct WindowFigures {
  std::int64_t from_ns = 0;
  std::int64_t to_ns = 0;
  SpanFigures span;  ///< without gaps
  std::vector<SystemFigures> systems;
  std::vector<SignalFigures> signals;  ///< sums over systems
};

struct AnalysisResult {
  bool with_orbits = false;  ///< elevations are known; without them what needs one is absent
  double elevation_cutoff_deg = 0;
  SpanFigures span;
  MaskFigures mask;
  std::vector<SystemFigures> systems;            ///< G R E C J I S; so are the lists below
  std::vector<SignalFigures> signals;            ///< sums over systems, by system and code
  std::vector<SatelliteFigures> satellites;      ///< everything observed, by system and number
  std::vector<SignalFigures> satellite_signals;  ///< by satellite and code
  std::vector<WideLaneFigures> wide_lanes;
  PositionFigures position;
  ReceiverClockFigures receiver_clock;
  std::vector<Contradiction> contradictions;
  std::vector<SatelliteId> without_record;
  std::vector<NeverObserved> never_observed;  ///< of the systems observed
  std::vector<WindowFigures> windows;         ///< in order of time; empty where none were asked for
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_ANALYSIS_RESULT_H
