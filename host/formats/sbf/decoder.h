// Blocks to epochs, ephemerides and a description of the station.
#ifndef ORSOLVA_FORMATS_SBF_DECODER_H
#define ORSOLVA_FORMATS_SBF_DECODER_H

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "host/formats/sbf/measurements.h"
#include "host/formats/sbf/receiver_setup.h"
#include "host/formats/streams/epoch_signals.h"
#include "host/formats/streams/lock_time.h"
#include "host/observation/observation_epoch.h"
#include "host/rinex/navigation_records.h"

namespace orsolva_host::sbf {

/// Blocks of one number.
struct BlockCount {
  std::uint64_t blocks = 0;
  std::uint64_t damaged = 0;  ///< too short, or with values that none can have; nothing of these is used
};

/// Oddities of fields; each costs the value or block that it is in and nothing else.
struct BlockTotals {
  std::map<int, BlockCount> types;     ///< of every number, decoded or not
  std::uint64_t undecoded = 0;         ///< blocks of numbers that are only counted
  std::uint64_t impossible_times = 0;  ///< MeasEpoch of a receiver that does not know the date
  std::uint64_t scrambled = 0;         ///< MeasEpoch without permission to give measurements
  std::uint64_t impossible = 0;        ///< frequency numbers that GLONASS does not have
  std::uint64_t unrelated = 0;         ///< values without the one that they are differences from
  std::uint64_t other_antennas = 0;    ///< signals of another antenna than the main one
  std::uint64_t unknown_satellites = 0;
  std::uint64_t unknown_signals = 0;  ///< signals of another system than the satellite's included
  std::uint64_t duplicates = 0;       ///< signals that a block holds twice
};

/// Of MeasEpoch:
///
/// - Pseudorange and Doppler of further signals are sums with those of the first; a phase needs its
///   pseudorange, and as Dopplers of further signals the frequency of its carrier, which GLONASS has once the
///   channel was seen. Without these the value is left out.
/// - No field can hold a pseudorange, phase or Doppler that a RINEX file cannot.
/// - kLossOfLock: the lock time is below that of the epoch before, or below the time passed since then. A
///   signal without lock time says nothing.
/// - kHalfCycle: bit 2 of ObsInfo.
/// - E6 is left out where CommonFlags say that it is E6B.
/// - Code smoothing, multipath mitigation and clock steering, which CommonFlags state, are not used.
class Decoder {
 public:
  /// @param epochs  off: of measurements the time and the channels of GLONASS alone are read
  explicit Decoder(bool epochs = true) : epochs_(epochs) {}

  /// Takes in a block. @pre as a finder gives it
  void Take(std::string_view block);
  bool Next(ObservationEpoch& epoch);
  /// Hands over the ephemerides read since the last call; one that repeats the last of its satellite and
  /// source is given once.
  std::vector<NavigationRecord> TakeEphemerides();

  const BlockTotals& Counts() const { return counts_; }
  std::optional<std::int64_t> FirstTime() const { return first_ns_; }
  const ReceiverSetup& Setup() const { return setup_; }  ///< as stated last
  const ReceiverSetup& FirstSetup() const { return first_setup_ ? *first_setup_ : setup_; }
  /// Of GLONASS, by number, as far as they were seen.
  const std::array<std::optional<int>, 100>& Channels() const { return channels_; }

 private:
  bool TakeBlock(int number, std::string_view block);
  bool TakeMeasurements(std::string_view block);
  bool TakeSetup(std::string_view block);
  bool TakeEphemeris(std::string_view block);
  void TakeChannels(const MeasEpoch& epoch);
  /// What the further signals of a satellite are differences from.
  struct FirstValues {
    SatelliteId satellite;
    double pseudorange_m = kAbsent;
    double doppler_hz = kAbsent;
    double carrier_hz = 0;  ///< 0: not known
  };
  struct LockFields {
    int lock_s;
    int limit_s;  ///< the counter's end; above it there is no lock time
    bool half_cycle;
  };
  void AddSatellite(const FirstSignal& first, std::vector<SatelliteSignal>& signals);
  void AddOther(const OtherSignal& other, const FirstValues& first, std::vector<SatelliteSignal>& signals);
  std::optional<SignalCode> CodeOf(int signal, int antenna, SatelliteId satellite);
  double CarrierOf(SatelliteId satellite, SignalCode code) const;
  void SetPhase(int carrier_m_cycles, double carrier_hz, SignalObservation& o);
  void SetLock(const LockFields& fields, SatelliteSignal& signal);
  bool Related(bool related);

  bool epochs_;
  std::int64_t time_ns_ = 0;  ///< of the block
  bool e6b_ = false;          ///< of the block
  std::deque<ObservationEpoch> complete_;
  std::vector<NavigationRecord> ephemerides_;
  std::map<std::array<int, 3>, NavigationRecord> last_ephemerides_;  ///< by system, number and data source
  LockTracker locks_;
  std::optional<std::int64_t> first_ns_;
  ReceiverSetup setup_;
  std::optional<ReceiverSetup> first_setup_;
  std::array<std::optional<int>, 100> channels_;
  BlockTotals counts_;
};

}  // namespace orsolva_host::sbf

#endif  // ORSOLVA_FORMATS_SBF_DECODER_H
