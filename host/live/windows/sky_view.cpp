#include "host/live/windows/sky_view.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/station_position.h"

namespace orsolva_host::live {
namespace {

constexpr double kDegrees = 180 / 3.14159265358979323846;

}  // namespace

void SkyView::SetRecords(const BroadcastRecords& records) {
  visibility_.reset();
  store_ = std::make_unique<analysis::BroadcastStore>();
  store_->Add(records);
  Build();
}

void SkyView::SetPosition(const std::array<double, 3>& xyz_m) {
  position_m_ = xyz_m;
  station_ = analysis::Station(xyz_m);
  Build();
}

/// The visibility keeps what it found for one position.
void SkyView::Build() {
  visibility_.reset();
  if (!store_ || store_->Empty() || !position_m_) return;
  visibility_ = std::make_unique<analysis::Visibility>(*store_, cutoff_deg_);
}

std::array<double, 3> SkyView::Geodetic() const {
  const analysis::Geodetic place = analysis::ToGeodetic(*position_m_);
  return {place.latitude_rad * kDegrees, place.longitude_rad * kDegrees, place.height_m};
}

bool SkyView::HasOrbit(SatelliteId id, std::int64_t gps_ns) {
  analysis::SatelliteRecords* const records = store_ ? store_->Find(id) : nullptr;
  return records != nullptr && records->Select(gps_ns).has_value();
}

void SkyView::MoveTo(std::int64_t gps_ns) {
  if (gps_ns < time_ns_) Build();
  time_ns_ = gps_ns;
  visibility_->MoveTo(gps_ns, station_);
  expected_.clear();
  for (const std::size_t satellite : visibility_->InView()) {
    for (const auto& window : visibility_->WindowsOf(satellite)) {
      const bool now = window.from_ns <= gps_ns && gps_ns < window.to_ns;
      if (!now || window.level != analysis::Visibility::kCutoff || !window.healthy) continue;
      expected_.push_back(visibility_->IdOf(satellite));
      break;
    }
  }
}

double SkyView::ElevationOf(SatelliteId id) {
  const auto satellite = visibility_->Find(id);
  return satellite ? std::asin(visibility_->SinElevation(*satellite)) * kDegrees : kAbsent;
}

std::optional<std::array<double, 3>> SkyView::PointPosition(const ObservationEpoch& epoch) {
  if (!store_ || store_->Empty()) return std::nullopt;
  return analysis::PointPosition(epoch, *store_, position_m_.value_or(analysis::Vector3{}));
}

}  // namespace orsolva_host::live
