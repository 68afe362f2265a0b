#include "host/analysis/figures/sky.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/figures/result_rows.h"
#include "host/analysis/figures/system_order.h"
#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

bool HasCodeOrPhase(const ObservationEpoch& epoch, const SatelliteObservation& satellite) {
  for (std::size_t i = 0; i < satellite.signal_count; ++i) {
    const SignalObservation& o = epoch.signals[satellite.first_signal + i];
    if (!std::isnan(o.pseudorange_m) || !std::isnan(o.phase_cycles)) return true;
  }
  return false;
}

}  // namespace

void Sky::Add(const ObservationEpoch& epoch, const SignalRoster& roster, const Station* station,
              std::int64_t steps) {
  while (satellites_.size() < roster.Satellites().size()) {
    const SatelliteId id = roster.Satellites()[satellites_.size()];
    satellites_.push_back({orbits_->Find(id), visibility_.Find(id), false, false, kAbsent});
  }
  if (station != nullptr) expected_.Add(epoch.time_ns, steps, *station, visibility_);
  satellite_at_.resize(epoch.satellites.size());
  elevations_deg_.resize(epoch.satellites.size());
  for (std::size_t i = 0; i < epoch.satellites.size(); ++i) {
    satellite_at_[i] = roster.SatelliteAt(i);
    Satellite& satellite = satellites_[satellite_at_[i]];
    elevations_deg_[i] = kAbsent;
    if (!HasCodeOrPhase(epoch, epoch.satellites[i])) continue;
    satellite.observed = true;
    if (!satellite.covered && satellite.records != nullptr)
      satellite.covered = satellite.records->Select(epoch.time_ns).has_value();
    if (station == nullptr || !satellite.number) continue;
    const double sine = visibility_.SinElevation(*satellite.number);
    elevations_deg_[i] = std::asin(std::clamp(sine, -1.0, 1.0)) * 180 / kPi;
    satellite.highest_deg = std::fmax(satellite.highest_deg, elevations_deg_[i]);
  }
}

bool Sky::IsSatelliteExpected(std::size_t satellite, Visibility::Level level) const {
  const std::optional<std::size_t>& number = satellites_[satellite].number;
  return number && expected_.IsExpected(*number, level);
}

bool Sky::IsHealthyAbove(std::size_t place, Visibility::Level level) const {
  const std::optional<std::size_t>& number = satellites_[satellite_at_[place]].number;
  return number && expected_.IsHealthyAbove(*number, level);
}

const ExpectedEpochs::Counts* Sky::CountsOf(std::size_t satellite,
                                            const std::vector<ExpectedEpochs::Counts>& all) const {
  const std::optional<std::size_t>& number = satellites_[satellite].number;
  return number && *number < all.size() ? &all[*number] : nullptr;
}

void Sky::FillIn(const SignalRoster& roster, AnalysisResult& result) const {
  for (std::size_t i = 0; i < satellites_.size(); ++i) {
    const Satellite& satellite = satellites_[i];
    if (!satellite.observed) continue;
    const SatelliteId id = roster.Satellites()[i];
    SatelliteFigures& row = SatelliteRow(result, id);
    row.has_record = satellite.covered;
    if (!std::isnan(satellite.highest_deg)) row.highest_deg = satellite.highest_deg;
    std::optional<Count>& without = SystemRow(result, id.system).satellites_without_record;
    without = without.value_or(0) + (satellite.covered ? 0 : 1);
    if (!satellite.covered) result.without_record.push_back(id);
  }
  std::sort(result.without_record.begin(), result.without_record.end(), IsListedBefore);
  FillInNeverObserved(roster, result);
}

void Sky::FillInNeverObserved(const SignalRoster& roster, AnalysisResult& result) const {
  const std::vector<SatelliteId>& known = roster.Satellites();
  for (std::size_t number = 0; number < expected_.Satellites().size(); ++number) {
    const SatelliteId id = visibility_.IdOf(number);
    const auto is_same = [&](SatelliteId other) { return other == id; };
    const auto is_of_system = [&](SatelliteId other) { return other.system == id.system; };
    if (std::none_of(known.begin(), known.end(), is_of_system)) continue;
    std::optional<Count>& never = SystemRow(result, id.system).satellites_never_observed;
    never = never.value_or(0);
    const ExpectedEpochs::Counts& counts = expected_.Satellites()[number];
    const Count healthy = counts.healthy[Visibility::kCutoff];
    const Count unhealthy = counts.unhealthy[Visibility::kCutoff];
    if (healthy + unhealthy == 0 || std::any_of(known.begin(), known.end(), is_same)) continue;
    result.never_observed.push_back({id, healthy, unhealthy});
    if (healthy > 0) ++*never;
  }
  std::sort(result.never_observed.begin(), result.never_observed.end(),
            [](const NeverObserved& a, const NeverObserved& b) { return IsListedBefore(a.id, b.id); });
}

}  // namespace orsolva_host::analysis
