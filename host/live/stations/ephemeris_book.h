// The ephemerides that a station uses: those of its stream, of a second source, and of the start before.
#ifndef ORSOLVA_LIVE_STATIONS_EPHEMERIS_BOOK_H
#define ORSOLVA_LIVE_STATIONS_EPHEMERIS_BOOK_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/formats/rtcm/ephemeris.h"
#include "host/judging/shared_navigation.h"
#include "host/observation/broadcast_records.h"

namespace orsolva_host::live {

/// Messages with the records made from them, in the order in which they came. Each is kept once, and not
/// longer than kKept_s behind its reference time.
class EphemerisBook {
 public:
  static constexpr double kKept_s = 5 * 3600;

  /// @param records  made from the messages, in their order @return the systems of those that are new
  std::set<char> Add(const std::vector<rtcm::EphemerisMessage>& messages, const BroadcastRecords& records);
  /// Whether any was new since ForgetChange was called last.
  bool HasChanged() const { return changed_; }
  void ForgetChange() { changed_ = false; }
  /// Leaves out what is too old at a time.
  void Prune(std::int64_t gps_ns);

  std::size_t Size() const { return entries_.size(); }
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
    rtcm::EphemerisMessage message;
    KeplerRecord kepler;  ///< one of both is meant, by the message
    StateVectorRecord vector;
    double ReferenceTime() const { return rtcm::IsStateVector(message) ? vector.toe_s : kepler.toe_s; }
    SatelliteId Satellite() const;
  };
  bool IsSecond(const Entry& entry) const;
  std::shared_ptr<ReadNavigation> NavigationFrom(std::size_t first, const std::string& name) const;

  std::vector<Entry> entries_;
  bool changed_ = false;
  std::size_t taken_ = 0;  ///< entries that TakeNew has returned
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_STATIONS_EPHEMERIS_BOOK_H
