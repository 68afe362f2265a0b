#include "host/formats/rtcm/decoder.h"

#include <utility>

namespace orsolva_host::rtcm {
namespace {

bool IsStation(int message) {
  return (message >= 1005 && message <= 1008) || message == 1033 || message == 1230;
}

constexpr int kTextMessage = 1029;
constexpr int kParameterMessage = 1013;

}  // namespace

bool HoldsObservations(int message) { return MsmTypeOf(message) || !LegacySatelliteRows(message).empty(); }

bool IsDecoded(int message) {
  return HoldsObservations(message) || !EphemerisRows(message).empty() || IsStation(message) ||
         message == kTextMessage || message == kParameterMessage;
}

void Decoder::Take(std::string_view message) {
  BitReader bits(message);
  const auto type = static_cast<int>(bits.Unsigned(12));
  if (bits.Overrun()) {  // a frame of less than two bytes keeps a link alive
    ++counts_.undecoded;
    return;
  }
  TypeCount& count = counts_.types[type];
  ++count.messages;
  if (!IsDecoded(type)) {
    ++counts_.undecoded;
  } else if (!TakeMessage(type, message)) {
    ++count.damaged;
  }
}

bool Decoder::TakeMessage(int type, std::string_view message) {
  if (MsmTypeOf(type)) return TakeMsm(message);
  if (!LegacySatelliteRows(type).empty()) return TakeLegacy(message);
  if (!EphemerisRows(type).empty()) return TakeEphemeris(message);
  if (type == kTextMessage) return TakeText(message);
  if (type == kParameterMessage) return TakeParameters(message);
  return TakeStationMessage(message);
}

bool Decoder::TakeStationMessage(std::string_view message) {
  if (!TakeStation(message, station_)) return false;
  StationDescription& first = first_station_;
  if (first.antenna.empty()) first.antenna = station_.antenna;
  if (first.receiver.empty()) first.receiver = station_.receiver;
  if (!first.position_m) first.position_m = station_.position_m;
  return true;
}

template <class Message>
void Decoder::AddPart(const Message& message, std::optional<std::int64_t> time_ns, bool more, int station) {
  if (!time_ns) {
    ++(clock_.Known() ? counts_.impossible_times : counts_.undated);
    return;
  }
  if (!first_ns_) first_ns_ = time_ns;
  if (!epochs_) return;
  if (!joiner_.Accepts(*time_ns, station)) return;
  EpochPart part;
  part.time_ns = *time_ns;
  part.more = more;
  signals_.Decode(message, part);
  for (ReceivedSignal& signal : part.signals) phases_.Take(part.time_ns, signal);
  joiner_.Add(std::move(part));
}

bool Decoder::TakeMsm(std::string_view bytes) {
  const std::optional<MsmMessage> message = epochs_ ? ReadMsm(bytes) : ReadMsmHeader(bytes);
  if (!message) return false;
  const auto& header = message->header;
  const std::int64_t time_ms = header[msm::kTime];
  std::optional<std::int64_t> time_ns;
  if (message->type.system == 'R') {
    time_ns = clock_.GlonassEpoch(static_cast<int>(header[msm::kDayOfWeek]), time_ms);
  } else if (message->type.system == 'C') {
    time_ns = clock_.BdsEpoch(time_ms);
  } else {
    time_ns = clock_.GpsEpoch(time_ms);
  }
  AddPart(*message, time_ns, header[msm::kMore] != 0, static_cast<int>(header[msm::kStation]));
  return true;
}

bool Decoder::TakeLegacy(std::string_view bytes) {
  constexpr int kUnknownDay = 7;
  const std::optional<LegacyMessage> message = ReadLegacy(bytes);
  if (!message) return false;
  const auto& header = message->header;
  const std::int64_t time_ms = header[legacy::kTime];
  const auto time_ns =
      message->message >= 1009 ? clock_.GlonassEpoch(kUnknownDay, time_ms) : clock_.GpsEpoch(time_ms);
  AddPart(*message, time_ns, header[legacy::kMore] != 0, static_cast<int>(header[legacy::kStation]));
  return true;
}

bool Decoder::TakeEphemeris(std::string_view bytes) {
  const std::optional<EphemerisMessage> message = ReadEphemeris(bytes);
  if (!message) return false;
  const auto number = static_cast<int>(message->values[term::kSatellite]);
  EphemerisMessage& latest = latest_[{message->message, number}];
  const bool repeated = latest.message != 0 && latest.values == message->values;
  bool possible = SatelliteOf(*message).has_value();
  if (possible && !TakeDate(*message, clock_)) ++counts_.impossible_dates;
  if (repeated) return true;
  if (possible) {
    if (!clock_.Known()) return true;
    latest = *message;
    const auto kepler = KeplerOf(*message, clock_);
    const auto vector = StateVectorOf(*message, clock_);
    possible = kepler || vector;
    if (kepler) broadcast_.kepler.push_back(*kepler);
    if (vector) {
      broadcast_.state_vectors.push_back(*vector);
      if (vector->channel) signals_.TakeChannel(vector->satellite.number, *vector->channel);
    }
  }
  if (possible) {
    ephemerides_.push_back(*message);
  } else {
    ++counts_.impossible_ephemerides;
  }
  return true;
}

bool Decoder::TakeText(std::string_view bytes) {
  std::optional<TextMessage> text = ReadText(bytes);
  if (!text) return false;
  clock_.TakeUtc(text->modified_julian_day, text->second_of_day);
  text_ = std::move(text);
  return true;
}

bool Decoder::TakeParameters(std::string_view bytes) {
  const std::optional<SystemParameters> parameters = ReadSystemParameters(bytes);
  if (!parameters) return false;
  clock_.TakeUtc(parameters->modified_julian_day, parameters->second_of_day);
  if (parameters->leap_seconds) clock_.TakeLeapSeconds(*parameters->leap_seconds);
  return true;
}

void Decoder::TakeDateOnly(std::string_view message) {
  if (const auto ephemeris = ReadEphemeris(message)) {
    if (SatelliteOf(*ephemeris)) TakeDate(*ephemeris, clock_);
  } else if (const auto text = ReadText(message)) {
    clock_.TakeUtc(text->modified_julian_day, text->second_of_day);
  } else if (const auto parameters = ReadSystemParameters(message)) {
    clock_.TakeUtc(parameters->modified_julian_day, parameters->second_of_day);
  }
}

BroadcastRecords Decoder::TakeBroadcast() { return std::exchange(broadcast_, {}); }

std::vector<EphemerisMessage> Decoder::TakeEphemerides() { return std::exchange(ephemerides_, {}); }

}  // namespace orsolva_host::rtcm
