// The ephemerides that a station uses: those of its stream, of a second source, and of the start before.
#ifndef ORSOLVA_LIVE_STATIONS_EPHEMERIS_BOOK_H
#define ORSOLVA_LIVE_STATIONS_EPHEMERIS_BOOK_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/formats/rtcm/ephemeris.h"
#include "host/judging/shared_navigation.h"
#include "host/observation/broadcast_records.h"

namespace orsolva_host::live {

/// Messages with the records made from them, in the order in which they came. Each is kept once, and not
/// longer than kKept_s behind its reference time.
///
/// A stream may send anything: of a message type and satellite the latest kMost of streams are kept, and what
/// lies farther ahead than kAhead_s is pruned (IS-GPS-200, 20.3.4.4: reference times lie two hours ahead of
/// the beginning of transmission; other systems have less). A file may hold days ahead of a replay.
class EphemerisBook {
 public:
  static constexpr double kKept_s = 5 * 3600;
  static constexpr double kAhead_s = 5 * 3600;
  static constexpr std::size_t kMost = 36;  ///< Galileo sends another every ten minutes: 30 in kKept_s
  enum class Origin : std::uint8_t { kStream, kFile };

  /// @param records  made from the messages, in their order @return the systems of those that are new
  std::set<char> Add(const std::vector<rtcm::EphemerisMessage>& messages, const BroadcastRecords& records,
                     Origin origin);
  /// Whether any was new since ForgetChange was called last.
  bool HasChanged() const { return changed_; }
  void ForgetChange() { changed_ = false; }
  /// Leaves out what is too old at a time, or too far ahead.
  void Prune(std::int64_t gps_ns);

  std::size_t Size() const;
  std::size_t Satellites() const;
  BroadcastRecords Records() const;
  /// Everything, as navigation of a run. @param name  of where it came from
  std::shared_ptr<ReadNavigation> Navigation(const std::string& name) const;
  /// The same of what was added since the last call.
  std::shared_ptr<ReadNavigation> TakeNew(const std::string& name);

  /// As RTCM 3 frames, which any reader of them takes.
  std::string Frames() const;

 private:
  struct Entry {
    std::uint64_t place = 0;  ///< among all that ever came
    Origin origin = Origin::kStream;
    rtcm::EphemerisMessage message;
    KeplerRecord kepler;  ///< one of both is meant, by the message
    StateVectorRecord vector;
    double ReferenceTime() const { return rtcm::IsStateVector(message) ? vector.toe_s : kepler.toe_s; }
    SatelliteId Satellite() const;
  };
  using Key = std::pair<int, SatelliteId>;  ///< message type and satellite
  bool AddEntry(Entry entry);
  bool IsSecond(const Entry& entry) const;
  /// Those from a place on, in the order in which they came.
  std::vector<const Entry*> From(std::uint64_t first) const;
  std::shared_ptr<ReadNavigation> NavigationFrom(std::uint64_t first, const std::string& name) const;

  std::map<Key, std::vector<Entry>> entries_;
  bool changed_ = false;
  std::uint64_t next_place_ = 0;
  std::uint64_t taken_ = 0;  ///< place of the first that TakeNew has not returned
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_EPHEMERIS_BOOK_H
