#include "host/simulator/active_faults.h"

#include <algorithm>
#include <cmath>

#include "host/simulator/random_streams.h"

namespace orsolva_host {
namespace {

constexpr std::uint64_t kFaultStream = 101;
constexpr double kTicksPerSecond = 1e7;
/// The satellite of a random fault must have been well above the horizon for this long, so that the fault
/// shows.
constexpr double kUpBefore_s = 600;
constexpr int kMaxDraws = 50;

bool IsMomentary(FaultKind kind) {
  return kind == FaultKind::kSlip || kind == FaultKind::kMissingEpoch || kind == FaultKind::kDuplicate ||
         kind == FaultKind::kLateTag || kind == FaultKind::kLateDelivery;
}

/// Draws time, satellite and signal. @return false when no satellite was up at any time drawn
bool Draw(const EpochGrid& grid, const VisibleAt& visible, const RandomStream& stream, Fault& fault) {
  for (std::uint64_t draw = 0; draw < kMaxDraws; ++draw) {
    const double place = std::floor(stream.Uniform(2 * draw) * static_cast<double>(grid.epochs));
    fault.at_s = grid.Seconds(static_cast<std::int64_t>(place));
    if (!MeetsSignals(fault.kind)) return true;
    const double before = std::max(0.0, fault.at_s - kUpBefore_s);
    std::vector<FaultTarget> up;
    for (const FaultTarget& one : visible(fault.target, fault.at_s, fault.random_above_deg)) {
      const auto earlier = visible(one, before, fault.random_above_deg);
      if (!earlier.empty()) up.push_back(one);
    }
    if (up.empty()) continue;
    fault.target = up[stream.Bits(2 * draw + 1) % up.size()];
    return true;
  }
  return false;
}

ActiveFault OnGrid(const Fault& fault, const EpochGrid& grid) {
  ActiveFault active;
  active.fault = fault;
  active.first = grid.AtOrAfter(fault.at_s);
  active.end = grid.AtOrAfter(fault.at_s + fault.duration_s);
  if (fault.duration_s <= 0) active.end = IsMomentary(fault.kind) ? active.first + 1 : grid.epochs;
  active.end = std::max(active.end, active.first + 1);
  return active;
}

}  // namespace

bool MeetsSignals(FaultKind kind) {
  return kind == FaultKind::kSlip || kind == FaultKind::kCodeJump || kind == FaultKind::kOutage ||
         kind == FaultKind::kSnrDrop;
}

const char* FaultName(FaultKind kind) {
  switch (kind) {
    case FaultKind::kSlip:
      return "slip";
    case FaultKind::kCodeJump:
      return "code_jump";
    case FaultKind::kOutage:
      return "outage";
    case FaultKind::kSnrDrop:
      return "snr_drop";
    case FaultKind::kMissingEpoch:
      return "missing_epoch";
    case FaultKind::kDuplicate:
      return "duplicate_epoch";
    case FaultKind::kLateTag:
      return "late_epoch";
    case FaultKind::kLateDelivery:
      return "late_delivery";
    case FaultKind::kIonoStorm:
      return "iono_storm";
    case FaultKind::kUnhealthy:
      return "unhealthy";
    case FaultKind::kClockJump:
      return "clock_jump";
    case FaultKind::kHeaderOffset:
      return "header_offset";
  }
  return "";
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
