// The ephemerides of a stream as records of a run, as if they came from a navigation file.
#ifndef ORSOLVA_JUDGING_STREAM_NAVIGATION_H
#define ORSOLVA_JUDGING_STREAM_NAVIGATION_H

#include <cstdint>
#include <set>
#include <vector>

#include "host/formats/rtcm/reader.h"
#include "host/observation/broadcast_records.h"
#include "host/rinex/navigation_records.h"
#include "host/rinex/navigation_set.h"

namespace orsolva_host {

/// Accuracy in metres, from the index in an ephemeris: the nominal value of GPS, QZSS, BDS and NavIC
/// (IS-GPS-200, 20.3.3.3.1.3), the SISA of Galileo (Galileo OS SIS ICD, SISA index values; -1 where there is
/// no prediction).
double AccuracyOf(char system, int index);

/// Collects ephemerides in the order of the stream, each once.
class StreamNavigation {
 public:
  /// @param records  made from the messages, in their order
  void Take(const std::vector<rtcm::EphemerisMessage>& messages, const BroadcastRecords& records);

  /// Records with times of GLONASS in GPS time and indices of accuracy, as host/formats/sbf/ephemeris.h has
  /// them.
  void Take(const std::vector<NavigationRecord>& records);

  /// Appends what was collected, for the library with Galileo I/NAV preferred over F/NAV.
  void AppendTo(NavigationSet& set, BroadcastRecords& records) const;
  bool Empty() const { return broadcast_.kepler.empty() && broadcast_.state_vectors.empty(); }

 private:
  void Add(const std::vector<std::int64_t>& transmitted, const NavigationRecord& record);

  NavigationSet set_;  ///< without Galileo
  std::vector<GalileoRecord> galileo_;
  BroadcastRecords broadcast_;
  std::set<std::vector<std::int64_t>> seen_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_STREAM_NAVIGATION_H
