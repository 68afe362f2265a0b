// Broadcast records and precise orbits by satellite, and which to use at a time.
#ifndef ORSOLVA_ANALYSIS_GEOMETRY_BROADCAST_STORE_H
#define ORSOLVA_ANALYSIS_GEOMETRY_BROADCAST_STORE_H

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "host/analysis/geometry/precise_orbit.h"
#include "host/analysis/geometry/satellite_orbit.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/precise_orbits.h"

namespace orsolva_host::analysis {

/// What SatelliteRecords::Select returns for the precise orbit instead of a broadcast record.
constexpr std::size_t kPreciseOrbit = static_cast<std::size_t>(-1);

/// The records of one satellite in the order of their reference times, and its precise orbit.
class SatelliteRecords {
 public:
  void Add(const KeplerRecord& record);
  void Add(const StateVectorRecord& record);
  /// @param points  must outlive this
  void SetPrecise(const std::vector<PrecisePoint>& points) { precise_.emplace(points); }

  /// kPreciseOrbit where that has position and clock. Else the record whose reference time is nearest, the
  /// earlier of two equally near; absent when none is near enough: 7,500 s (GPS, QZSS, Galileo, BDS, NavIC),
  /// 2,000 s (GLONASS), 600 s (SBAS).
  std::optional<std::size_t> Select(std::int64_t time_ns) const;

  SatelliteState StateAt(std::size_t record, const Instant& time);
  /// Satellite clock without relativity, enough for the time of transmission. s
  double ClockAt(std::size_t record, const Instant& time) const;
  /// What the satellite says of itself; true with the precise orbit.
  bool IsHealthy(std::size_t record) const;
  /// KeplerRecord::group_delay_s; 0 with the precise orbit.
  double GroupDelay(std::size_t record) const;
  /// Whether the broadcast record for a time calls the satellite unhealthy; false without such a record.
  bool IsUnhealthy(std::int64_t time_ns) const;
  /// The earliest time from a given one on that may have an orbit; absent after the last one.
  std::optional<std::int64_t> NextCovered(std::int64_t time_ns) const;
  /// GLONASS frequency channel of the first record that has one.
  std::optional<int> Channel() const;

 private:
  struct VectorWithOrbit {
    StateVectorRecord record;
    std::unique_ptr<StateVectorOrbit> orbit;
  };
  bool HasNearFirstMessage(const KeplerRecord& record) const;
  std::optional<std::size_t> Nearest(std::int64_t time_ns) const;
  double LongestAge() const;

  std::optional<PreciseOrbit> precise_;
  std::vector<double> reference_s_;
  std::vector<KeplerRecord> kepler_;
  std::vector<std::unique_ptr<VectorWithOrbit>> vectors_;
};

class BroadcastStore {
 public:
  /// Galileo F/NAV records within four hours of an I/NAV record of the satellite are left out: the two clocks
  /// differ by a group delay, and a change between them would be a jump.
  void Add(const BroadcastRecords& records);
  /// @param orbits  to be used where they cover a time; must outlive this
  void Add(const PreciseOrbits& orbits);
  bool Empty() const { return satellites_.empty(); }
  /// Null for a satellite without records and precise orbit.
  SatelliteRecords* Find(SatelliteId satellite);
  /// Those with records or precise orbit, by system and number.
  std::vector<SatelliteId> Satellites() const;

 private:
  std::map<SatelliteId, SatelliteRecords> satellites_;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_GEOMETRY_BROADCAST_STORE_H
