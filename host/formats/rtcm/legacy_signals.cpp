// Signals of messages 1001 to 1004 and 1009 to 1012.
#include <cmath>

#include "host/formats/rtcm/signal_decoder.h"
#include "host/observation/physical_constants.h"

namespace orsolva_host::rtcm {
namespace {

using LegacyValues = std::array<std::int64_t, legacy::kSatelliteTerms>;

constexpr double kRangeStep_m = 0.02;
constexpr double kPhaseStep_m = 0.0005;
constexpr double kStrengthStep_dbhz = 0.25;
constexpr int kFirstSbas = 40;  // DF009: 40 to 58 are SBAS, PRN 120 to 138
constexpr int kLastSbas = 58;
constexpr int kSbasOffset = 20;  // 40 is S20

std::optional<SatelliteId> LegacySatellite(bool glonass, std::int64_t number) {
  if (glonass && number >= 1 && number <= 32) return SatelliteId{'R', static_cast<std::uint8_t>(number)};
  if (!glonass && number >= 1 && number <= 32) return SatelliteId{'G', static_cast<std::uint8_t>(number)};
  if (!glonass && number >= kFirstSbas && number <= kLastSbas) {
    return SatelliteId{'S', static_cast<std::uint8_t>(number - kSbasOffset)};
  }
  return std::nullopt;
}

SignalCode FirstCode(std::int64_t indicator) { return {'1', indicator == 0 ? 'C' : 'P'}; }

/// DF016: C/A or L2C, which receivers that send it mean; P(Y) direct; P(Y) cross-correlated; correlated P/Y.
/// DF046: C/A, P.
std::optional<SignalCode> SecondCode(bool glonass, std::int64_t indicator) {
  constexpr char kGps[] = {'X', 'P', 'D', 'W'};
  if (!glonass) return SignalCode{'2', kGps[indicator & 3]};
  if (indicator > 1) return std::nullopt;
  return SignalCode{'2', indicator == 0 ? 'C' : 'P'};
}

double Strength(std::int64_t value) {
  return value == 0 ? kAbsent : static_cast<double>(value) * kStrengthStep_dbhz;
}

double Cycles(double metres, double carrier_hz) { return metres * (carrier_hz / kLightSpeed_m_s); }

}  // namespace

void SignalDecoder::Decode(const LegacyMessage& message, EpochPart& part) {
  for (const LegacyValues& values : message.satellites) AddLegacy(message.message, values, part);
}

/// DF012 and DF042 mark the range of L1 as invalid too; it then only serves those of L2.
void SignalDecoder::AddLegacy(int message, const LegacyValues& v, EpochPart& part) {
  using namespace legacy;
  const bool glonass = message >= 1009;
  const std::optional<SatelliteId> id = LegacySatellite(glonass, v[legacy::kSatellite]);
  if (!id) {
    ++counts_.unknown_satellites;
    return;
  }
  if (glonass) TakeChannel(id->number, static_cast<int>(v[legacy::kChannel]) - kChannelOffset);
  const double modulus_m = glonass ? 2 * kLightMillisecond_m : kLightMillisecond_m;
  const double in_part_m = static_cast<double>(v[kRange1]) * kRangeStep_m;
  if (in_part_m >= modulus_m + kRangeStep_m) {
    ++counts_.impossible;
    return;
  }
  std::optional<double> range_m;
  if (HasAmbiguity(message)) {
    range_m = in_part_m + static_cast<double>(v[kAmbiguity]) * modulus_m;
    Keep(*id, *range_m, part.time_ns);
  } else {
    range_m = Completed(*id, in_part_m, modulus_m, part.time_ns);
  }
  const auto add = [&](SignalCode code, std::int64_t range, bool range_valid, std::int64_t phase,
                       std::int64_t lock, std::int64_t strength) {
    ReceivedSignal signal;
    signal.satellite = *id;
    signal.carrier_hz = CarrierOf(*id, code);
    signal.lock = LockTimeOf7Bits(static_cast<int>(lock));
    signal.observation.code = code;
    signal.observation.snr_dbhz = Strength(strength);
    if (range_m && range_valid) {
      signal.observation.pseudorange_m = *range_m + static_cast<double>(range) * kRangeStep_m;
    }
    if (range_m && phase != kInvalidPhase20 && signal.carrier_hz > 0) {
      signal.observation.phase_cycles =
          Cycles(*range_m + static_cast<double>(phase) * kPhaseStep_m, signal.carrier_hz);
    }
    if (phase != kInvalidPhase20 && signal.carrier_hz == 0) ++counts_.phases_without_channel;
    if (HasValue(signal.observation)) part.signals.push_back(signal);
  };
  add(FirstCode(v[kCode1]), 0, v[kPhase1] != kInvalidPhase20, v[kPhase1], v[kLock1], v[kStrength1]);
  const bool has_second = message == 1003 || message == 1004 || message == 1011 || message == 1012;
  if (!has_second || id->system == 'S') return;
  const std::optional<SignalCode> second = SecondCode(glonass, v[kCode2]);
  if (!second) {
    ++counts_.unknown_signals;
    return;
  }
  add(*second, v[kRange2], v[kRange2] != kInvalidRange14, v[kPhase2], v[kLock2], v[kStrength2]);
}

}  // namespace orsolva_host::rtcm
