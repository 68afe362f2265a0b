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
  kSlip,          ///< size cycles are added to the phase, until the signal is acquired again
  kCodeJump,      ///< size m are added to the pseudorange for the duration (0: to the end)
  kOutage,        ///< nothing is tracked for the duration; then the signals are acquired again
  kSnrDrop,       ///< the SNR is reduced by size dB for the duration
  kMissingEpoch,  ///< epochs within the duration are not delivered; tracking continues (0: one epoch)
  kDuplicate,     ///< the epoch is delivered twice
  kLateTag,       ///< the epoch is measured, and tagged, size seconds late
  kLateDelivery,  ///< the epoch is delivered after its successor
  kIonoStorm,     ///< size TECU of slant disturbance, with period_s, building up and dying away within the
                  ///< duration
  kUnhealthy,     ///< broadcast records with a reference time in the duration (0: all of them) have size as
                  ///< their health word (0: 1)
  kClockJump,     ///< the receiver clock jumps by size ms
  kHeaderOffset,  ///< the header's position is size m east of the true one
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
  /// Additional delay of single signals, by system letter and signal, such as "G5Q".
  std::map<std::string, double> signal_delay_s;
};

struct ErrorModel {
  ByElevation code_noise_m = {0.12, 0.45};
  ByElevation multipath_m = {0.08, 0.60};  ///< amplitude of the slow periodic part
  double multipath_period_s = 420;         ///< nominal; that of each signal is close to it
  ByElevation phase_noise_m = {0.0008, 0.0025};
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
