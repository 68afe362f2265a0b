#include "host/formats/ubx/raw_measurements.h"

#include "host/formats/streams/little_endian.h"

namespace orsolva_host::ubx {
namespace {

// Places in the payload.
constexpr std::size_t kTimeOfWeek = 0;
constexpr std::size_t kWeek = 8;
constexpr std::size_t kCount = 11;
constexpr std::size_t kVersionField = 13;
constexpr std::size_t kHeadBytes = 16;
constexpr int kReadVersion = 1;

// Places in a block of a measurement.
constexpr std::size_t kPseudorange = 0;
constexpr std::size_t kPhase = 8;
constexpr std::size_t kDoppler = 16;
constexpr std::size_t kGnssId = 20;
constexpr std::size_t kSvId = 21;
constexpr std::size_t kSigId = 22;
constexpr std::size_t kChannel = 23;
constexpr std::size_t kLock = 24;
constexpr std::size_t kCno = 26;
constexpr std::size_t kTracking = 30;
constexpr std::size_t kBlockBytes = 32;

RawMeasurement MeasurementAt(std::string_view block) {
  RawMeasurement m;
  m.pseudorange_m = FieldAt<double>(block, kPseudorange);
  m.phase_cycles = FieldAt<double>(block, kPhase);
  m.doppler_hz = FieldAt<float>(block, kDoppler);
  m.gnss_id = FieldAt<std::uint8_t>(block, kGnssId);
  m.sv_id = FieldAt<std::uint8_t>(block, kSvId);
  m.sig_id = FieldAt<std::uint8_t>(block, kSigId);
  m.channel = FieldAt<std::uint8_t>(block, kChannel);
  m.lock_ms = FieldAt<std::uint16_t>(block, kLock);
  m.cno_dbhz = FieldAt<std::uint8_t>(block, kCno);
  m.tracking = FieldAt<std::uint8_t>(block, kTracking);
  return m;
}

}  // namespace

std::optional<RawMessage> ReadRaw(std::string_view payload) {
  if (payload.size() < kHeadBytes || FieldAt<std::uint8_t>(payload, kVersionField) != kReadVersion) {
    return std::nullopt;
  }
  if (payload.size() != kHeadBytes + kBlockBytes * FieldAt<std::uint8_t>(payload, kCount))
    return std::nullopt;
  RawMessage message;
  message.second_of_week = FieldAt<double>(payload, kTimeOfWeek);
  message.week = FieldAt<std::uint16_t>(payload, kWeek);
  for (std::size_t at = kHeadBytes; at < payload.size(); at += kBlockBytes) {
    message.measurements.push_back(MeasurementAt(payload.substr(at, kBlockBytes)));
  }
  return message;
}

std::string WriteRaw(const RawMessage& message) {
  std::string payload;
  AppendField(message.second_of_week, payload);
  AppendField(message.week, payload);
  payload.push_back(0);  // leapS, which recStat says is not determined
  payload.push_back(static_cast<char>(message.measurements.size()));
  payload.push_back(0);  // recStat
  payload.push_back(kReadVersion);
  payload.append(kHeadBytes - payload.size(), '\0');
  for (const RawMeasurement& m : message.measurements) {
    AppendField(m.pseudorange_m, payload);
    AppendField(m.phase_cycles, payload);
    AppendField(m.doppler_hz, payload);
    for (const std::uint8_t byte : {m.gnss_id, m.sv_id, m.sig_id, m.channel}) AppendField(byte, payload);
    AppendField(m.lock_ms, payload);
    AppendField(m.cno_dbhz, payload);
    payload.append(3, '\0');  // standard deviations
    AppendField(m.tracking, payload);
    payload.push_back(0);
  }
  return payload;
}

}  // namespace orsolva_host::ubx
