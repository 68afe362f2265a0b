// One epoch of observations with everything that a file or stream holds, whatever its format.
//
// Times are whole nanoseconds since 1970-01-01 00:00:00 on the GPS time scale (no leap seconds): exact for
// every format's epoch times, and differences of them are exact. Absent values are NaN, never 0. There is no
// limit on satellites or signals; the lists keep their memory from epoch to epoch.
#ifndef ORSOLVA_OBSERVATION_OBSERVATION_EPOCH_H
#define ORSOLVA_OBSERVATION_OBSERVATION_EPOCH_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "host/observation/signal_code.h"

namespace orsolva_host {

constexpr double kAbsent = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

/// Bits of SignalObservation::loss_of_lock (RINEX 3.05, section 6.7.2).
constexpr std::uint8_t kLossOfLock = 1;   ///< lock was lost since the epoch before: a slip is possible
constexpr std::uint8_t kHalfCycle = 2;    ///< half-cycle ambiguity unresolved or subtracted
constexpr std::uint8_t kBocTracking = 4;  ///< Galileo: tracked under the BOC, more noise

/// Bits of ObservationEpoch::events: what happened between the epoch before and this one.
constexpr std::uint32_t kPowerFailure = 1;
constexpr std::uint32_t kAntennaMoves = 2;
constexpr std::uint32_t kNewSite = 4;
constexpr std::uint32_t kExternalEvent = 8;
constexpr std::uint32_t kSlipRecordsListed = 16;  ///< the file lists cycle slips that a program found

/// One signal of one satellite.
struct SignalObservation {
  SignalCode code;
  std::uint8_t loss_of_lock = 0;    ///< bits above, of the phase
  std::uint8_t strength_digit = 0;  ///< 1 to 9 after the phase, 0 absent (RINEX 3.05, table 14)
  double pseudorange_m = kAbsent;
  double phase_cycles = kAbsent;
  double doppler_hz = kAbsent;  ///< positive for an approaching satellite
  double snr_dbhz = kAbsent;    ///< carrier-to-noise density as the receiver gives it
};

/// One satellite: system letter (G R E C J I S) and number as RINEX writes them; S20 is SBAS PRN 120.
struct SatelliteId {
  char system = 'G';
  std::uint8_t number = 0;

  friend bool operator==(SatelliteId a, SatelliteId b) {
    return a.system == b.system && a.number == b.number;
  }
  friend bool operator<(SatelliteId a, SatelliteId b) {
    return a.system != b.system ? a.system < b.system : a.number < b.number;
  }
};

/// "G05"
inline std::string NameOf(SatelliteId id) {
  return {id.system, static_cast<char>('0' + id.number / 10 % 10), static_cast<char>('0' + id.number % 10)};
}

struct SatelliteObservation {
  SatelliteId id;
  std::size_t first_signal = 0;  ///< in ObservationEpoch::signals
  std::size_t signal_count = 0;
};

struct ObservationEpoch {
  std::int64_t time_ns = 0;
  std::uint32_t events = 0;
  double receiver_clock_offset_s = kAbsent;
  std::vector<SatelliteObservation> satellites;
  std::vector<SignalObservation> signals;

  void Clear() {
    events = 0;
    receiver_clock_offset_s = kAbsent;
    satellites.clear();
    signals.clear();
  }
};

/// a - b in seconds; exact in the integers before the one rounding.
inline double SecondsBetween(std::int64_t a_ns, std::int64_t b_ns) {
  return static_cast<double>(a_ns - b_ns) / 1e9;
}

}  // namespace orsolva_host

#endif  // ORSOLVA_OBSERVATION_OBSERVATION_EPOCH_H
