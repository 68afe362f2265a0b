#include "host/simulator/active_faults.h"

#include <algorithm>
#include <cmath>

#include "host/simulator/fault_kinds.h"
#include "host/simulator/random_streams.h"

namespace orsolva_host {
namespace {

constexpr std::uint64_t kFaultStream = 101;
constexpr double kTicksPerSecond = 1e7;
/// The satellite of a random fault must have been well above the horizon for this long, so that the fault
/// shows.
constexpr double kUpBefore_s = 600;
constexpr int kMaxDraws = 50;

/// Draws time, satellite and signal. @return false when no satellite was up at any time drawn
bool Draw(const EpochGrid& grid, const VisibleAt& visible, const RandomStream& stream, Fault& fault) {
  for (std::uint64_t draw = 0; draw < kMaxDraws; ++draw) {
    const double place = std::floor(stream.Uniform(2 * draw) * static_cast<double>(grid.epochs));
    fault.at_s = grid.Seconds(static_cast<std::int64_t>(place));
    const FaultReach reach = RowOf(fault.kind).reach;
    if (reach == FaultReach::kEverything) return true;
    const double before = std::max(0.0, fault.at_s - kUpBefore_s);
    std::vector<FaultTarget> up;
    for (const FaultTarget& one : visible(fault.target, fault.at_s, fault.random_above_deg)) {
      const auto earlier = visible(one, before, fault.random_above_deg);
      if (!earlier.empty()) up.push_back(one);
    }
    if (up.empty()) continue;
    fault.target = up[stream.Bits(2 * draw + 1) % up.size()];
    if (reach == FaultReach::kSatellite) fault.target.signal.clear();
    return true;
  }
  return false;
}

ActiveFault OnGrid(const Fault& fault, const EpochGrid& grid) {
  ActiveFault active;
  active.fault = fault;
  active.first = grid.AtOrAfter(fault.at_s);
  active.end = grid.AtOrAfter(fault.at_s + fault.duration_s);
  if (fault.duration_s <= 0) active.end = RowOf(fault.kind).momentary ? active.first + 1 : grid.epochs;
  active.end = std::max(active.end, active.first + 1);
  return active;
}

}  // namespace

bool HasFault(const std::vector<ActiveFault>& faults, FaultKind kind, std::int64_t epoch) {
  return std::any_of(faults.begin(), faults.end(), [kind, epoch](const ActiveFault& active) {
    return active.fault.kind == kind && active.At(epoch);
  });
}

double LateBy(const std::vector<ActiveFault>& faults, std::int64_t epoch) {
  double late = 0;
  for (const ActiveFault& active : faults) {
    if (active.fault.kind == FaultKind::kLateTag && active.At(epoch)) late += active.fault.size;
  }
  return late;
}

std::int64_t EpochGrid::AtOrAfter(double seconds) const {
  const auto ticks = static_cast<std::int64_t>(std::llround(seconds * kTicksPerSecond));
  return (ticks + interval_ticks - 1) / interval_ticks;
}

EpochGrid GridOf(const Scenario& scenario) {
  EpochGrid grid;
  grid.interval_ticks = std::llround(scenario.interval_s * kTicksPerSecond);
  grid.epochs = grid.AtOrAfter(scenario.hours * 3600);
  return grid;
}

std::vector<ActiveFault> ResolveFaults(const Scenario& scenario, const EpochGrid& grid,
                                       const VisibleAt& visible) {
  std::vector<ActiveFault> faults;
  const RandomStream stream = RandomStream(scenario.seed).Of(kFaultStream);
  std::uint64_t number = 0;
  for (const Fault& fault : scenario.faults) {
    ++number;
    if (fault.random <= 0) faults.push_back(OnGrid(fault, grid));
    for (int i = 0; i < fault.random; ++i) {
      Fault drawn = fault;
      drawn.random = 0;
      const RandomStream own = stream.Of(number).Of(static_cast<std::uint64_t>(i));
      if (Draw(grid, visible, own, drawn)) faults.push_back(OnGrid(drawn, grid));
    }
  }
  return faults;
}

}  // namespace orsolva_host
