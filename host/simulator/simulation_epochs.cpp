#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "host/rinex/satellite_names.h"
#include "host/simulator/antenna_path.h"
#include "host/simulator/fault_kinds.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/simulation_work.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kTicksPerSecond = 10000000;
constexpr double kClockLogStep_s = 600;
constexpr double kTrackStep_s = 10;

}  // namespace

const Delivery* Simulation::Work::Next() {
  if (!waiting_.empty()) {
    current_ = std::move(waiting_.front());
    waiting_.pop_front();
    return Deliver();
  }
  while (done < grid.epochs) {
    const std::int64_t number = done;
    Make(current_);
    ++done;
    if (Off(number)) {
      ++truth.missing_epochs;
      continue;
    }
    if (Has(FaultKind::kLateDelivery, number) && done < grid.epochs) {
      held_.push_back(current_);
      continue;
    }
    if (Has(FaultKind::kDuplicate, number)) waiting_.push_back(current_);
    waiting_.insert(waiting_.end(), held_.begin(), held_.end());
    held_.clear();
    return Deliver();
  }
  if (held_.empty()) return nullptr;
  current_ = std::move(held_.front());
  held_.pop_front();
  return Deliver();
}

const Delivery* Simulation::Work::Deliver() {
  if (truth.delivered_epochs++ == 0) truth.first = current_.record.time;
  truth.last = current_.record.time;
  return &current_;
}

/// Whether an epoch is not delivered.
bool Simulation::Work::Off(std::int64_t epoch) const {
  return Has(FaultKind::kMissingEpoch, epoch) || Has(FaultKind::kPowerOutage, epoch);
}

/// What an observation file says of the time before an epoch. A power failure shows at the first epoch after
/// it.
std::uint32_t Simulation::Work::EventsBefore(std::int64_t epoch) const {
  std::int64_t before = epoch - 1;
  while (before >= 0 && Has(FaultKind::kMissingEpoch, before)) --before;
  return before >= 0 && Has(FaultKind::kPowerOutage, before) ? kPowerFailure : 0;
}

void Simulation::Work::LogClock(const Time_gbt& time, double time_s, double bias_s) {
  // The smooth part changes slowly, so a step since the last epoch of more than half a millisecond is a jump.
  const bool jumped = std::fabs(bias_s - bias_s_) > 5e-4 && done > 0;
  if (!jumped && time_s < last_clock_log_s_ + kClockLogStep_s) return;
  truth.clock.push_back({time, bias_s});
  last_clock_log_s_ = time_s;
}

void Simulation::Work::LogTrack(const Time_gbt& time, double time_s) {
  if (scenario.receiver.path.kind == PathKind::kStatic || time_s < last_track_log_s_ + kTrackStep_s) return;
  truth.track.push_back({time, site.position_m});
  last_track_log_s_ = time_s;
}

/// Records a fault in the truth at its first epoch. Slips are recorded by the signals that they affect.
void Simulation::Work::LogOnce(ActiveFault& active) {
  if (active.record >= 0 || active.first != done) return;
  const Fault& fault = active.fault;
  InjectedFault record;
  record.kind = FaultName(fault.kind);
  if (fault.target.satellite > 0)
    record.satellite = SatelliteName(fault.target.system, fault.target.satellite);
  record.signal = fault.target.signal;
  record.duration_s = fault.duration_s;
  record.size = fault.size;
  // Signals and satellites say so when they are tracked.
  record.seen = RowOf(fault.kind).reach == FaultReach::kEverything;
  active.record = static_cast<int>(truth.faults.size());
  truth.faults.push_back(record);
}

void Simulation::Work::LogEpochFaults() {
  for (ActiveFault& active : faults_) LogOnce(active);
}

void Simulation::Work::SetTime(Delivery& out) {
  const std::int64_t late = std::llround(LateBy(faults_, done) * static_cast<double>(kTicksPerSecond));
  const std::int64_t ticks = done * grid.interval_ticks + late;
  tag_s_ = static_cast<double>(ticks) / static_cast<double>(kTicksPerSecond);
  out.record = {};
  out.record.time.time = scenario.start.time + ticks / kTicksPerSecond;
  out.record.time.sec = static_cast<double>(ticks % kTicksPerSecond) / static_cast<double>(kTicksPerSecond);
  out.epoch.Clear();
  out.epoch.time_ns =
      scenario.start.time * kNanosecondsPerSecond + ticks * (kNanosecondsPerSecond / kTicksPerSecond);
  out.epoch.events = EventsBefore(done);
}

void Simulation::Work::Make(Delivery& out) {
  SetTime(out);
  clock = clock_.At(done, tag_s_, faults_);
  LogClock(out.record.time, tag_s_, clock.bias_s);
  bias_s_ = clock.bias_s;
  site = SiteOnPath(start, scenario.receiver.path, tag_s_ - bias_s_);
  LogTrack(out.record.time, tag_s_);

  const std::size_t logged = truth.faults.size();
  LogEpochFaults();
  const bool delivered = !Off(done);
  powerless_ = Has(FaultKind::kPowerOutage, done);
  ++truth.nominal_epochs;
  moments.clear();
  for (std::size_t i = 0; i < work_.size(); ++i) MakeSatellite(i, tag_s_ - bias_s_, delivered, out);
  FinishLog(logged, out.record.time);
}

/// Time and elevation of the faults of this epoch.
void Simulation::Work::FinishLog(std::size_t from, const Time_gbt& time) {
  for (std::size_t i = from; i < truth.faults.size(); ++i) {
    InjectedFault& record = truth.faults[i];
    record.time = time;
    for (const SatelliteMoment& m : moments) {
      if (record.satellite == SatelliteName(m.system, m.number))
        record.elevation_deg = m.elevation_rad / kRadian;
    }
  }
}

}  // namespace orsolva_host
