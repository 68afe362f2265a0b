// One signal of one satellite as a message gives it, in the units of the observation model.
#ifndef ORSOLVA_FORMATS_RTCM_RECEIVED_SIGNAL_H
#define ORSOLVA_FORMATS_RTCM_RECEIVED_SIGNAL_H

#include <cstdint>
#include <vector>

#include "host/formats/rtcm/lock_time.h"
#include "host/formats/streams/epoch_signals.h"
#include "host/observation/observation_epoch.h"
#include "host/observation/physical_constants.h"

namespace orsolva_host::rtcm {

constexpr double kLightMillisecond_m = kLightSpeed_m_s / 1000;

/// What is added to a phase that leaves its field (DF012).
constexpr int kRollOver_cycles = 1500;

/// Messages whose phases of one signal may differ by whole cycles, the finest last.
enum class Family : std::uint8_t { kLegacy, kCoarseMsm, kFineMsm };  ///< 1001 to 1012; MSM1 to 5; MSM6 and 7

struct ReceivedSignal {
  SatelliteId satellite;
  Family family = Family::kLegacy;
  double carrier_hz = 0;  ///< 0: not known, and so no phase
  LockTime lock;
  SignalObservation observation;
};

/// What one observation message adds to an epoch.
struct EpochPart {
  std::int64_t time_ns = 0;
  bool more = false;  ///< DF005, DF393: further messages of this epoch follow
  std::vector<ReceivedSignal> signals;
};

/// Oddities of single fields; each costs the value that it is in and nothing else.
struct FieldCounts {
  std::uint64_t impossible = 0;          ///< values outside the range of their field
  std::uint64_t unknown_satellites = 0;  ///< reserved places of masks, numbers of no satellite
  std::uint64_t unknown_signals = 0;     ///< reserved places of masks, reserved code indicators
  std::uint64_t ranges_in_parts =
      0;  ///< satellites with a range modulo 1 ms (GLONASS 2 ms) and no whole one before
  std::uint64_t phases_without_channel = 0;  ///< GLONASS signals before the channel is known
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_RECEIVED_SIGNAL_H
