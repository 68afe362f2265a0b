// RXM-RAWX, version 1: fields as transmitted (u-blox ZED-F9P interface description, UBX-RXM-RAWX).
#ifndef ORSOLVA_FORMATS_UBX_RAW_MEASUREMENTS_H
#define ORSOLVA_FORMATS_UBX_RAW_MEASUREMENTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orsolva_host::ubx {

/// Bits of RawMeasurement::tracking (trkStat).
constexpr std::uint8_t kPseudorangeValid = 1;
constexpr std::uint8_t kPhaseValid = 2;
constexpr std::uint8_t kHalfCycleResolved = 4;
constexpr std::uint8_t kHalfCycleSubtracted = 8;

constexpr int kMaxLock_ms = 64500;  ///< the lock time counts up to here
/// Of the lock time, a count of whole milliseconds; how it is rounded is not stated.
constexpr int kLockResolution_ms = 1;
constexpr int kMaxMeasurements = 255;

struct RawMeasurement {
  double pseudorange_m = 0;
  double phase_cycles = 0;
  float doppler_hz = 0;  ///< positive for an approaching satellite
  std::uint8_t gnss_id = 0;
  std::uint8_t sv_id = 0;
  std::uint8_t sig_id = 0;
  std::uint8_t channel = 0;  ///< GLONASS: the frequency channel plus 7
  std::uint16_t lock_ms = 0;
  std::uint8_t cno_dbhz = 0;
  std::uint8_t tracking = 0;
};

struct RawMessage {
  double second_of_week = 0;  ///< receiver time near GPS time
  std::uint16_t week = 0;     ///< of GPS, not modulo 1024
  std::vector<RawMeasurement> measurements;
};

/// @return absent when the payload has another version, or another length than its number of measurements
/// takes
std::optional<RawMessage> ReadRaw(std::string_view payload);

/// The payload. Leap seconds are marked unknown, standard deviations 0. @pre at most kMaxMeasurements
std::string WriteRaw(const RawMessage& message);

}  // namespace orsolva_host::ubx

#endif  // ORSOLVA_FORMATS_UBX_RAW_MEASUREMENTS_H
