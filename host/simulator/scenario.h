// What is simulated: the sky, the receiver, its surroundings and the faults. Plain data; the defaults are a
// quiet station-day. scenario_json.h reads a scenario from a file, presets.h contains some.
#ifndef ORSOLVA_SIMULATOR_SCENARIO_H
#define ORSOLVA_SIMULATOR_SCENARIO_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "orsolva/records.h"

namespace orsolva_host {

/// A scenario that cannot be simulated: which setting, what it holds and what is allowed.
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The satellites and signals that a fault affects. Empty parts mean all.
struct FaultTarget {
  char system = 0;     ///< 'G', 'R', 'E', 'J', 'C'; 0: every system
  int satellite = 0;   ///< number within the system; 0: every satellite
  std::string signal;  ///< such as "1C"; empty: every signal
};

enum class FaultKind {
  kSlip,            ///< size cycles are added to the phase, until the signal is acquired again
  kCodeJump,        ///< size m are added to the pseudorange for the duration (0: to the end)
  kOutage,          ///< nothing is tracked for the duration; then the signals are acquired again
  kSnrDrop,         ///< the SNR is reduced by size dB for the duration
  kMissingEpoch,    ///< epochs within the duration are not delivered; tracking continues (0: one epoch)
  kDuplicate,       ///< the epoch is delivered twice
  kLateTag,         ///< the epoch is measured, and tagged, size seconds late
  kLateDelivery,    ///< the epoch is delivered after its successor
  kIonoStorm,       ///< size TECU of slant disturbance, with period_s, building up and dying away within the
                    ///< duration
  kUnhealthy,       ///< broadcast records with a reference time in the duration (0: all of them) have size as
                    ///< their health word (0: 1)
  kClockJump,       ///< the receiver clock jumps by size ms
  kHeaderOffset,    ///< the header's position is size m east of the true one
  kTecRate,         ///< slant TEC that changes at random, with size TECU/min as the median of its rate
  kScintillation,   ///< white phase noise of size rad on 1575.42 MHz, on other carriers in inverse proportion
                    ///< to the frequency; signals of one carrier of a satellite have it in common
  kClockSlew,       ///< the receiver clock is slewed by size ns/s for the duration
  kCodeClockJump,   ///< codes jump by size ms for the duration (0: to the end) and phases go on
  kSatelliteClock,  ///< size m on all signals of the satellite for the duration (0: to the end)
  kPowerOutage,  ///< no epoch is delivered for the duration (0: one epoch); all signals are acquired again,
                 ///< and the next epoch says so
};

struct Fault {
  FaultKind kind = FaultKind::kSlip;
  FaultTarget target;
  double at_s = 0;  ///< from the start of the span; takes effect at the first epoch at or after it
  double duration_s = 0;
  double size = 0;        ///< unit by kind
  double period_s = 600;  ///< kIonoStorm
  /// Above 0: number of occurrences at random times; a slip, code jump, outage or SNR drop chooses random
  /// signals above the elevation `random_above_deg` among those that match the target.
  int random = 0;
  double random_above_deg = 15;
};

/// Loss-of-lock flags; the probabilities are from 0 to 1.
struct LockFlags {
  double at_slip = 0;         ///< where a slip was injected
  double at_acquisition = 0;  ///< at the first epoch of an arc
  double without_slip = 0;    ///< anywhere else, per signal and epoch
};

enum class PathKind { kStatic, kLine, kCircle };

/// How the antenna moves in the horizontal plane of the position. It is at rest before and after.
struct AntennaPath {
  PathKind kind = PathKind::kStatic;
  double speed_m_s = 0;
  double heading_deg = 90;  ///< kLine: clockwise from north
  double radius_m = 100;    ///< kCircle, clockwise from its northernmost point
  double from_s = 0;        ///< from the start of the span
  double to_s = 1e9;
};

/// Thermal noise of code and phase from the carrier-to-noise density (thermal_noise.h).
struct ThermalNoise {
  double dll_bandwidth_hz = 0.25;
  double pll_bandwidth_hz = 15;
  double integration_s = 0.02;
  double correlator_spacing_chips = 0.1;  ///< early to late
};

/// A figure by elevation, linear between its points and constant beyond them.
struct ElevationPoint {
  double elevation_deg = 0;
  double value = 0;
};

/// Standard deviations and amplitudes at the zenith and at the horizon; between them the figures follow the
/// square of the cosine of the elevation.
struct ByElevation {
  double zenith = 0;
  double horizon = 0;
};

struct ReceiverModel {
  std::array<double, 3> position_m = {3582105.291, 532589.7313, 5232754.8054};  ///< ECEF
  double cutoff_deg = 5;  ///< nothing is tracked below it
  double clock_bias_s = 2e-5;
  double clock_drift = 3e-10;      ///< s/s
  bool millisecond_jumps = false;  ///< keeps the clock within half a millisecond
  double start_up_s = 0;           ///< from the start of the span to the first tracking
  double acquisition_s = 0;        ///< from rising above the cut-off to tracking
  double reacquisition_s = 0;      ///< from the end of an outage to tracking
  double clock_walk = 0;           ///< random walk, standard deviation after one second, s
  /// Above 0: the clock is steered towards zero with this time constant; else it drifts.
  double clock_steering_s = 0;
  /// For this long after an acquisition the half-cycle ambiguity is unresolved: the phase says so, and half
  /// of the times it is half a cycle too high.
  double half_cycle_s = 0;
  LockFlags lock_flags;
  AntennaPath path;
  /// Additional delay of single signals, by system letter and signal, such as "G5Q".
  std::map<std::string, double> signal_delay_s;
};

struct ErrorModel {
  ByElevation code_noise_m = {0.12, 0.45};
  ByElevation multipath_m = {0.08, 0.60};  ///< amplitude of the slow periodic part
  double multipath_period_s = 420;         ///< nominal; that of each signal is close to it
  /// Where it has points, the amplitude of the multipath instead of multipath_m.
  std::vector<ElevationPoint> multipath_by_elevation;
  /// Above 0: the multipath is that of a horizontal reflector this far below the antenna and turns with the
  /// sine of the elevation, 4 pi h sin(e) / wavelength; else it turns with multipath_period_s.
  double reflector_height_m = 0;
  ByElevation phase_noise_m = {0.0008, 0.0025};
  std::optional<ThermalNoise> thermal_noise;  ///< instead of code_noise_m and phase_noise_m
  double doppler_noise_hz = 0.05;
  double snr_zenith_dbhz = 50;
  double snr_horizon_dbhz = 33;
  double snr_noise_db = 0.4;
  bool troposphere = true;
  bool ionosphere = true;
  double vertical_tec_night = 4;  ///< TECU
  double vertical_tec_day = 18;   ///< TECU on top of that at night, at 14 h local time
};

struct Cadence {
  double gps_s = 7200;
  double glonass_s = 1800;
  double bds_s = 3600;
  double galileo_s = 3600;
  double qzss_s = 3600;
};

/// What is observed in addition to code, phase and SNR.
struct Observables {
  bool doppler = false;
  bool strength = false;  ///< strength digits of code and phase
};

struct Scenario {
  std::string name = "quiet";
  std::string station = "SIMU00ORS";  ///< nine characters of a RINEX 3 file name
  std::uint64_t seed = 1;
  std::string systems = "GREJC";
  Time_gbt start = {1593043200, 0.0};  ///< GPS time, s since 1970: 2020-06-25 00:00:00
  double hours = 24;
  double interval_s = 30;  ///< 0.1 to 60
  ReceiverModel receiver;
  ErrorModel errors;
  Cadence cadence;
  Observables observables;
  /// Signals by "G", "R", "C2" (BDS up to number 17), "C3" (BDS from 18 on), "C3G" (its geostationary ones),
  /// "E", "J". A system that is not listed has its default signals.
  std::map<std::string, std::vector<std::string>> signals;
  std::vector<Fault> faults;
  /// Elevation above which truth counts completeness, SNR and multipath, degrees.
  double truth_cutoff_deg = 10;
};

/// @throws ScenarioError when a setting is out of its range, naming the key as in a scenario file
void CheckScenario(const Scenario& scenario);

/// The signals of a satellite in the scenario, default or chosen.
const std::vector<std::string>& SignalsOf(const Scenario& scenario, char system, int satellite);

/// The keys that Scenario::signals may have.
std::vector<std::string> SignalGroups();

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_SCENARIO_H
