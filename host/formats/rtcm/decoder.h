// Messages to epochs, ephemerides and a description of the station.
#ifndef ORSOLVA_FORMATS_RTCM_DECODER_H
#define ORSOLVA_FORMATS_RTCM_DECODER_H

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "host/formats/rtcm/ephemeris.h"
#include "host/formats/rtcm/epoch_joiner.h"
#include "host/formats/rtcm/phase_tracker.h"
#include "host/formats/rtcm/signal_decoder.h"
#include "host/formats/rtcm/station.h"
#include "host/formats/rtcm/stream_clock.h"

namespace orsolva_host::rtcm {

struct DecoderOptions {
  /// A time within half a week of the first message, on the GPS time scale.
  std::optional<std::int64_t> near_ns;
  EpochEnd epoch_end = EpochEnd::kNextTime;
  bool epochs = true;  ///< off: of observation messages the time alone is read
};

/// Messages of one type.
struct TypeCount {
  std::uint64_t messages = 0;
  std::uint64_t damaged = 0;  ///< too short, or with masks of more than 64 cells; nothing of these is used
};

struct MessageCounts {
  std::map<int, TypeCount> types;  ///< of every type, decoded or not
  std::uint64_t undecoded = 0;     ///< messages of types that are only counted
  std::uint64_t undated = 0;       ///< observations before any date
  std::uint64_t impossible_times = 0;
  std::uint64_t impossible_ephemerides = 0;
  std::uint64_t impossible_dates = 0;  ///< weeks and days of ephemerides that are otherwise used
};

/// Whether messages of this type are decoded.
bool IsDecoded(int message);
/// MSM1 to 7, 1001 to 1004 and 1009 to 1012.
bool HoldsObservations(int message);

class Decoder {
 public:
  explicit Decoder(const DecoderOptions& options)
      : epochs_(options.epochs), clock_(options.near_ns), joiner_(options.epoch_end) {}

  /// Takes in a message, the bytes between the head of a frame and its CRC.
  void Take(std::string_view message);
  /// Ends the last epoch.
  void Finish() { joiner_.Finish(); }
  /// Sets the clock to the first GPS week although it repeats after 1024. @return whether the clock is known
  bool UseWeakDate() { return clock_.UseWeakDate(); }

  /// Only the date of a message, so that observations before the first date need not be lost.
  void TakeDateOnly(std::string_view message);

  bool Next(ObservationEpoch& epoch) { return joiner_.Next(epoch); }

  /// The ephemerides since the last call, in the order of the stream. Repeated ones are left out: of a
  /// satellite and message type a message equal to the one before it.
  BroadcastRecords TakeBroadcast();
  /// The same as transmitted.
  std::vector<EphemerisMessage> TakeEphemerides();

  const StationDescription& Station() const { return station_; }
  /// The first antenna, receiver and position that it gave.
  const StationDescription& FirstStation() const { return first_station_; }
  const std::optional<TextMessage>& LastText() const { return text_; }
  /// GLONASS channels from outside, such as a navigation file.
  void TakeChannel(int glonass_number, int channel) { signals_.TakeChannel(glonass_number, channel); }

  const MessageCounts& Counts() const { return counts_; }
  const FieldCounts& Fields() const { return signals_.Counts(); }
  const StreamClock& Clock() const { return clock_; }
  /// The first time of an observation message.
  std::optional<std::int64_t> FirstTime() const { return first_ns_; }
  const PhaseTracker& Phases() const { return phases_; }
  const EpochJoiner& Epochs() const { return joiner_; }

 private:
  bool TakeMessage(int type, std::string_view message);
  bool TakeMsm(std::string_view message);
  bool TakeLegacy(std::string_view message);
  bool TakeEphemeris(std::string_view message);
  bool TakeStationMessage(std::string_view message);
  bool TakeText(std::string_view message);
  bool TakeParameters(std::string_view message);
  template <class Message>
  void AddPart(const Message& message, std::optional<std::int64_t> time_ns, bool more, int station);

  bool epochs_;
  std::optional<std::int64_t> first_ns_;
  StreamClock clock_;
  SignalDecoder signals_;
  PhaseTracker phases_;
  EpochJoiner joiner_;
  StationDescription station_;
  StationDescription first_station_;
  std::optional<TextMessage> text_;
  std::map<std::pair<int, int>, EphemerisMessage> latest_;  ///< by message type and satellite
  std::vector<EphemerisMessage> ephemerides_;
  BroadcastRecords broadcast_;
  MessageCounts counts_;
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_DECODER_H
