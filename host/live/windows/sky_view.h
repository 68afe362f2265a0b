// The sky over a station as its ephemerides have it now.
#ifndef ORSOLVA_LIVE_WINDOWS_SKY_VIEW_H
#define ORSOLVA_LIVE_WINDOWS_SKY_VIEW_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/analysis/figures/visibility.h"
#include "host/analysis/geometry/broadcast_store.h"
#include "host/analysis/geometry/station.h"
#include "host/observation/broadcast_records.h"
#include "host/observation/observation_epoch.h"

namespace orsolva_host::live {

class SkyView {
 public:
  explicit SkyView(double cutoff_deg) : cutoff_deg_(cutoff_deg) {}

  /// Takes the place of all records that were there.
  void SetRecords(const BroadcastRecords& records);
  void SetPosition(const std::array<double, 3>& xyz_m);
  const std::optional<std::array<double, 3>>& Position() const { return position_m_; }
  /// Latitude and longitude in degrees, height in metres. @pre a position
  std::array<double, 3> Geodetic() const;

  /// Whether elevations are known: a position, and records of a satellite.
  bool Known() const { return visibility_ != nullptr && position_m_.has_value(); }
  /// Satellites with records.
  std::size_t Satellites() const { return store_ ? store_->Satellites().size() : 0; }
  /// Whether a record of the satellite is young enough at a time.
  bool HasOrbit(SatelliteId id, std::int64_t gps_ns);

  /// Goes to a time. @pre Known
  void MoveTo(std::int64_t gps_ns);
  /// Healthy satellites above the cut-off at the time gone to.
  const std::vector<SatelliteId>& Expected() const { return expected_; }
  /// Degrees at the time gone to; NaN where there is no orbit.
  double ElevationOf(SatelliteId id);

  /// Single point position of an epoch; absent where it fails.
  std::optional<std::array<double, 3>> PointPosition(const ObservationEpoch& epoch);

 private:
  void Build();

  double cutoff_deg_;
  std::optional<std::array<double, 3>> position_m_;
  analysis::Station station_;
  std::unique_ptr<analysis::BroadcastStore> store_;
  std::unique_ptr<analysis::Visibility> visibility_;  ///< of the store
  std::int64_t time_ns_ = 0;
  std::vector<SatelliteId> expected_;
};

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_WINDOWS_SKY_VIEW_H
