// Joins the messages of an epoch.
#ifndef ORSOLVA_FORMATS_RTCM_EPOCH_JOINER_H
#define ORSOLVA_FORMATS_RTCM_EPOCH_JOINER_H

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <vector>

#include "host/formats/rtcm/received_signal.h"

namespace orsolva_host::rtcm {

/// When an epoch is complete.
enum class EpochEnd {
  kNextTime,     ///< with the first message of another time: joins all, an epoch late; for recordings
  kLastMessage,  ///< with the message that says that no other follows (DF005, DF393), or at another time; for
                 ///< live streams. What comes after it for the same time is counted and dropped.
};

/// Of a signal that several messages of an epoch hold (legacy and MSM) the finest counts. When that is of
/// another family than in the epoch before, its phase may differ by whole cycles, and kLossOfLock is set.
///
/// The first station of the stream counts; messages of observations of others are dropped.
class EpochJoiner {
 public:
  explicit EpochJoiner(EpochEnd end) : end_(end) {}

  /// Whether a message of this time and station (DF003) belongs to an epoch; otherwise it is counted.
  bool Accepts(std::int64_t time_ns, int station);
  /// @pre accepted
  void Add(EpochPart part);
  /// Ends the epoch at hand.
  void Finish();

  /// The next complete epoch, satellites in the order of system and number, signals in that of their codes.
  /// Epochs without a signal are delivered too: the receiver said that it sees nothing.
  bool Next(ObservationEpoch& epoch);

  std::uint64_t LateMessages() const { return late_; }
  std::uint64_t OtherStations() const { return other_stations_; }
  std::uint64_t Duplicates() const { return duplicates_; }  ///< signals in several messages of an epoch

 private:
  void Complete();
  void MarkFamilies();

  EpochEnd end_;
  std::optional<int> station_;
  std::optional<EpochPart> open_;
  std::optional<std::int64_t> last_complete_ns_;
  std::deque<EpochPart> complete_;
  std::vector<std::pair<std::uint64_t, std::uint32_t>> order_;  ///< of the signals of an epoch, with places
  std::map<SatelliteId, std::vector<std::pair<SignalCode, Family>>> families_;
  std::uint64_t late_ = 0;
  std::uint64_t other_stations_ = 0;
  std::uint64_t duplicates_ = 0;
};

}  // namespace orsolva_host::rtcm

#endif  // ORSOLVA_FORMATS_RTCM_EPOCH_JOINER_H
