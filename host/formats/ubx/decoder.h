// Messages to epochs and a description of the receiver.
#ifndef ORSOLVA_FORMATS_UBX_DECODER_H
#define ORSOLVA_FORMATS_UBX_DECODER_H

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "host/formats/streams/epoch_signals.h"
#include "host/formats/streams/lock_time.h"
#include "host/formats/ubx/raw_measurements.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::ubx {

/// Messages of one type.
struct TypeCount {
  std::uint64_t messages = 0;
  std::uint64_t damaged = 0;  ///< of another length or version than is read; nothing of these is used
};

/// Oddities of fields; each costs the value or message that it is in and nothing else.
struct MessageCounts {
  std::map<int, TypeCount> types;      ///< of every type, decoded or not
  std::uint64_t undecoded = 0;         ///< messages of types that are only counted
  std::uint64_t impossible_times = 0;  ///< RXM-RAWX of a receiver that does not know the date
  std::uint64_t impossible = 0;        ///< values that no satellite can have
  std::uint64_t unknown_satellites = 0;
  std::uint64_t unknown_signals = 0;
  std::uint64_t duplicates = 0;  ///< signals that a message holds twice
};

/// MON-VER, of newer firmware; empty where it does not say.
struct ReceiverTexts {
  std::string model;     ///< "ZED-F9P"
  std::string firmware;  ///< "HPG 1.32"
};

/// Of RXM-RAWX:
///
/// - Pseudorange and phase count where trkStat says that they are valid. A phase whose half-cycle
///   ambiguity is not resolved has kHalfCycle.
/// - kLossOfLock: the lock time is below that of the epoch before, or below the time passed since then, by
///   more than its resolution; or half a cycle is subtracted now and was not before, or the other way round.
/// - The time is rounded to 100 ns, the last decimal of an epoch in RINEX.
/// - The flag for resets of the receiver clock (recStat), the standard deviations and the leap seconds are
///   not used.
class Decoder {
 public:
  /// @param epochs  off: of raw measurements the time and the channels of GLONASS alone are read
  explicit Decoder(bool epochs = true) : epochs_(epochs) {}

  /// Takes in a message, from the class on.
  void Take(std::string_view message);
  bool Next(ObservationEpoch& epoch);

  const MessageCounts& Counts() const { return counts_; }
  std::optional<std::int64_t> FirstTime() const { return first_ns_; }
  const ReceiverTexts& Receiver() const { return receiver_; }  ///< as stated last
  const ReceiverTexts& FirstReceiver() const { return first_receiver_; }
  /// Of GLONASS, by number, as far as they were seen.
  const std::array<std::optional<int>, 100>& Channels() const { return channels_; }

 private:
  bool TakeRaw(std::string_view payload);
  bool TakeVersion(std::string_view payload);
  void TakeChannel(const RawMeasurement& measurement);
  std::optional<SatelliteSignal> SignalFrom(const RawMeasurement& measurement, std::int64_t time_ns);
  double Possible(double value, double limit);

  bool epochs_;
  std::deque<ObservationEpoch> complete_;
  LockTracker locks_;
  std::optional<std::int64_t> first_ns_;
  ReceiverTexts receiver_, first_receiver_;
  std::array<std::optional<int>, 100> channels_;
  MessageCounts counts_;
};

}  // namespace orsolva_host::ubx

#endif  // ORSOLVA_FORMATS_UBX_DECODER_H
