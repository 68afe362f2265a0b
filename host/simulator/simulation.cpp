#include "host/simulator/simulation.h"

#include <algorithm>
#include <cmath>
#include <deque>

#include "host/rinex/satellite_names.h"
#include "host/simulator/active_faults.h"
#include "host/simulator/orbits.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/signal_track.h"
#include "host/simulator/surroundings.h"
#include "orsolva/run_facts.h"
#include "orsolva/signals.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kTicksPerSecond = 10000000;
constexpr double kClockLogStep_s = 600;
/// A satellite this far below the horizon is not evaluated for a minute: none climbs a degree in that time.
constexpr double kFarBelowHorizon_rad = -2 * kRadian;
constexpr double kBelowHorizonWait_s = 60;
constexpr double kTravelTolerance_s = 1e-9;
constexpr double kFirstTravel_s = 0.075;

struct SatelliteWork {
  std::vector<SignalTrack> signals;
  std::vector<ActiveFault*> storms;
  std::vector<std::int64_t> slips;  ///< epochs
  double travel_s = kFirstTravel_s;
  double travel_rate = 0;
  double travel_time_s = -1e9;  ///< time of its computation
  double next_evaluation_s = -1e9;
  double storm_phase = 0;
};

/// Geometry of a satellite at a true reception time.
struct LineOfSight {
  SkyState state;
  Direction direction;
  double range_m = 0;
};

}  // namespace

class Simulation::Work {
 public:
  explicit Work(const Scenario& given)
      : scenario(given), grid(GridOf(given)), sky(scenario), site(MakeSite(given.receiver.position_m)) {
    BeginTruth();
    BeginSatellites();
    BeginFaults();
  }

  bool Next(ObsEpoch_QC_gbt& epoch);
  /// Upper bound of the epochs still to be delivered: each may come twice.
  std::size_t MostLeft() const {
    return 2 * (static_cast<std::size_t>(grid.epochs - done) + held_.size()) + waiting_.size();
  }

  Scenario scenario;
  EpochGrid grid;
  Sky sky;
  Site site;
  Truth truth;
  std::vector<SatelliteMoment> moments;
  std::int64_t done = 0;

 private:
  void BeginTruth();
  void BeginSatellites();
  void BeginFaults();
  void LogOnce(ActiveFault& active);
  void LogEpochFaults();
  bool Has(FaultKind kind, std::int64_t epoch) const;
  double LateBy(std::int64_t epoch) const;
  double ClockBias(std::int64_t epoch, double time_s) const;
  void LogClock(const Time_gbt& time, double time_s, double bias_s);
  void Make(ObsEpoch_QC_gbt& epoch);
  void MakeSatellite(std::size_t index, double true_s, bool delivered, ObsEpoch_QC_gbt& epoch);
  void Observe(std::size_t index, const EpochGeometry& geometry, ObsEpoch_QC_gbt& epoch);
  double StormTec(const SatelliteWork& work, double time_s) const;
  LineOfSight LineOfSightTo(std::size_t index, double true_s, double& travel_s) const;
  bool Deliver(const ObsEpoch_QC_gbt& epoch);
  std::vector<FaultTarget> Visible(const FaultTarget& target, double seconds, double above_deg) const;

  std::vector<SatelliteWork> work_;
  std::vector<ActiveFault> faults_;
  std::deque<ObsEpoch_QC_gbt> waiting_;  ///< duplicate and held epochs, delivered next
  std::deque<ObsEpoch_QC_gbt> held_;     ///< delivered after the next epoch
  double tag_s_ = 0;
  double bias_s_ = 0;
  double last_clock_log_s_ = -1e9;
  double day_start_s_ = 0;
};

void Simulation::Work::BeginTruth() {
  truth.position_m = scenario.receiver.position_m;
  truth.header_position_m = truth.position_m;
  for (const Fault& fault : scenario.faults) {
    if (fault.kind != FaultKind::kHeaderOffset) continue;
    for (std::size_t i = 0; i < 3; ++i) truth.header_position_m[i] += fault.size * site.east[i];
  }
  truth.cutoff_deg = scenario.truth_cutoff_deg;
  truth.interval_s = scenario.interval_s;
  truth.mean_window = orsolva::AveragingWindow(scenario.interval_s);
  day_start_s_ = static_cast<double>(scenario.start.time % 86400);
}

void Simulation::Work::BeginSatellites() {
  for (const SkySatellite& satellite : sky.Satellites()) {
    SatelliteWork work;
    SatelliteTruth t;
    t.system = satellite.system;
    t.number = satellite.number;
    t.healthy = satellite.healthy;
    for (const std::string& name : SignalsOf(scenario, satellite.system, satellite.number)) {
      work.signals.emplace_back(scenario, satellite.system, satellite.number, satellite.channel, name,
                                static_cast<std::size_t>(truth.mean_window));
      t.signals.emplace_back();
      t.signals.back().name = name;
      t.signals.back().number = work.signals.back().Number();
    }
    work.storm_phase = 2 * kPi * RandomStream(scenario.seed).Of(303).Uniform(work_.size());
    work_.push_back(std::move(work));
    truth.satellites.push_back(std::move(t));
  }
}

void Simulation::Work::BeginFaults() {
  faults_ =
      ResolveFaults(scenario, grid, [this](const FaultTarget& target, double seconds, double above_deg) {
        return Visible(target, seconds, above_deg);
      });
  for (ActiveFault& active : faults_) {
    for (std::size_t i = 0; i < work_.size(); ++i) {
      if (!active.Meets(truth.satellites[i].system, truth.satellites[i].number)) continue;
      if (active.fault.kind == FaultKind::kIonoStorm) work_[i].storms.push_back(&active);
      if (active.fault.kind == FaultKind::kSlip) work_[i].slips.push_back(active.first);
      for (std::size_t j = 0; j < work_[i].signals.size(); ++j) {
        const bool meets =
            MeetsSignals(active.fault.kind) && active.Meets(truth.satellites[i].signals[j].name);
        if (meets) work_[i].signals[j].AddFault(&active);
      }
    }
  }
}

/// The satellites and signals of a target above an elevation limit; one entry per signal.
std::vector<FaultTarget> Simulation::Work::Visible(const FaultTarget& target, double seconds,
                                                   double above_deg) const {
  std::vector<FaultTarget> all;
  for (std::size_t i = 0; i < work_.size(); ++i) {
    const SatelliteTruth& s = truth.satellites[i];
    if ((target.system != 0 && target.system != s.system) ||
        (target.satellite != 0 && target.satellite != s.number)) {
      continue;
    }
    double travel = kFirstTravel_s;
    if (LineOfSightTo(i, seconds, travel).direction.elevation_rad <= above_deg * kRadian) continue;
    for (const SignalTruth& signal : s.signals) {
      if (!target.signal.empty() && target.signal != signal.name) continue;
      all.push_back({s.system, s.number, signal.name});
    }
  }
  return all;
}

bool Simulation::Work::Next(ObsEpoch_QC_gbt& epoch) {
  if (!waiting_.empty()) {
    epoch = waiting_.front();
    waiting_.pop_front();
    return Deliver(epoch);
  }
  while (done < grid.epochs) {
    const std::int64_t number = done;
    Make(epoch);
    ++done;
    if (Has(FaultKind::kMissingEpoch, number)) {
      ++truth.missing_epochs;
      continue;
    }
    if (Has(FaultKind::kLateDelivery, number) && done < grid.epochs) {
      held_.push_back(epoch);
      continue;
    }
    if (Has(FaultKind::kDuplicate, number)) waiting_.push_back(epoch);
    waiting_.insert(waiting_.end(), held_.begin(), held_.end());
    held_.clear();
    return Deliver(epoch);
  }
  if (held_.empty()) return false;
  epoch = held_.front();
  held_.pop_front();
  return Deliver(epoch);
}

bool Simulation::Work::Deliver(const ObsEpoch_QC_gbt& epoch) {
  if (truth.delivered_epochs++ == 0) truth.first = epoch.time;
  truth.last = epoch.time;
  return true;
}

bool Simulation::Work::Has(FaultKind kind, std::int64_t epoch) const {
  for (const ActiveFault& active : faults_) {
    if (active.fault.kind == kind && active.At(epoch)) return true;
  }
  return false;
}

double Simulation::Work::LateBy(std::int64_t epoch) const {
  double late = 0;
  for (const ActiveFault& active : faults_) {
    if (active.fault.kind == FaultKind::kLateTag && active.At(epoch)) late += active.fault.size;
  }
  return late;
}

double Simulation::Work::ClockBias(std::int64_t epoch, double time_s) const {
  double bias = scenario.receiver.clock_bias_s + scenario.receiver.clock_drift * time_s;
  for (const ActiveFault& active : faults_) {
    if (active.fault.kind == FaultKind::kClockJump && epoch >= active.first) bias += active.fault.size * 1e-3;
  }
  return bias;
}

void Simulation::Work::LogClock(const Time_gbt& time, double time_s, double bias_s) {
  // The smooth part changes slowly, so a step since the last epoch of more than half a millisecond is a jump.
  const bool jumped = std::fabs(bias_s - bias_s_) > 5e-4 && done > 0;
  if (!jumped && time_s < last_clock_log_s_ + kClockLogStep_s) return;
  truth.clock.push_back({time, bias_s});
  last_clock_log_s_ = time_s;
}

/// Records a fault in the truth at its first epoch. Slips are recorded by the signals that they affect.
void Simulation::Work::LogOnce(ActiveFault& active) {
  if (active.record >= 0 || active.first != done || active.fault.kind == FaultKind::kSlip) return;
  const Fault& fault = active.fault;
  InjectedFault record;
  record.kind = FaultName(fault.kind);
  if (fault.target.satellite > 0)
    record.satellite = SatelliteName(fault.target.system, fault.target.satellite);
  record.signal = fault.target.signal;
  record.duration_s = fault.duration_s;
  record.size = fault.size;
  record.seen = fault.kind != FaultKind::kOutage && fault.kind != FaultKind::kCodeJump &&
                fault.kind != FaultKind::kSnrDrop;
  active.record = static_cast<int>(truth.faults.size());
  truth.faults.push_back(record);
}

void Simulation::Work::LogEpochFaults() {
  for (ActiveFault& active : faults_) LogOnce(active);
}

void Simulation::Work::Make(ObsEpoch_QC_gbt& epoch) {
  const std::int64_t late = std::llround(LateBy(done) * static_cast<double>(kTicksPerSecond));
  const std::int64_t ticks = done * grid.interval_ticks + late;
  tag_s_ = static_cast<double>(ticks) / static_cast<double>(kTicksPerSecond);
  epoch = {};
  epoch.time.time = scenario.start.time + ticks / kTicksPerSecond;
  epoch.time.sec = static_cast<double>(ticks % kTicksPerSecond) / static_cast<double>(kTicksPerSecond);

  double bias = ClockBias(done, tag_s_);
  if (scenario.receiver.millisecond_jumps) bias -= 1e-3 * std::nearbyint(bias / 1e-3);
  LogClock(epoch.time, tag_s_, bias);
  bias_s_ = bias;

  const std::size_t logged = truth.faults.size();
  LogEpochFaults();
  const bool delivered = !Has(FaultKind::kMissingEpoch, done);
  ++truth.nominal_epochs;
  moments.clear();
  for (std::size_t i = 0; i < work_.size(); ++i) MakeSatellite(i, tag_s_ - bias, delivered, epoch);
  for (std::size_t i = logged; i < truth.faults.size(); ++i) {
    InjectedFault& record = truth.faults[i];
    record.time = epoch.time;
    for (const SatelliteMoment& m : moments) {
      if (record.satellite == SatelliteName(m.system, m.number))
        record.elevation_deg = m.elevation_rad / kRadian;
    }
  }
}

LineOfSight Simulation::Work::LineOfSightTo(std::size_t index, double true_s, double& travel_s) const {
  LineOfSight los;
  double line[3];
  for (int round = 0; round < 10; ++round) {
    los.state = sky.StateAt(index, true_s - travel_s, true_s);
    const double turn = kEarthRotation_rad_s * travel_s;
    const auto [s, c] = SineCosineOf(turn);
    const double* p = los.state.position_m;
    line[0] = c * p[0] + s * p[1] - site.position_m[0];
    line[1] = -s * p[0] + c * p[1] - site.position_m[1];
    line[2] = p[2] - site.position_m[2];
    los.range_m = std::sqrt(line[0] * line[0] + line[1] * line[1] + line[2] * line[2]);
    const double found = los.range_m / kLightSpeed_m_s;
    const bool settled = std::fabs(found - travel_s) < kTravelTolerance_s;
    travel_s = found;
    if (settled) break;
  }
  los.direction = DirectionOf(site, line, los.range_m);
  return los;
}

double Simulation::Work::StormTec(const SatelliteWork& work, double time_s) const {
  double sum = 0;
  for (const ActiveFault* storm : work.storms) {
    if (!storm->At(done)) continue;
    const Fault& f = storm->fault;
    const double length = f.duration_s > 0 ? f.duration_s : grid.Seconds(grid.epochs) - f.at_s;
    const double swell = Sine(kPi * (time_s - f.at_s) / length);
    sum += f.size * swell * swell * Sine(2 * kPi * (time_s - f.at_s) / f.period_s + work.storm_phase);
  }
  return sum;
}

void Simulation::Work::MakeSatellite(std::size_t index, double true_s, bool delivered,
                                     ObsEpoch_QC_gbt& epoch) {
  SatelliteWork& work = work_[index];
  // A slip is recorded even when the satellite is below the horizon.
  const bool slips = std::find(work.slips.begin(), work.slips.end(), done) != work.slips.end();
  if (true_s < work.next_evaluation_s && !slips) return;
  const double step = true_s - work.travel_time_s;
  double travel = work.travel_s + (std::fabs(step) < 120 ? work.travel_rate * step : 0.0);
  const LineOfSight los = LineOfSightTo(index, true_s, travel);
  if (std::fabs(step) < 120 && step != 0) work.travel_rate = (travel - work.travel_s) / step;
  work.travel_s = travel;
  work.travel_time_s = true_s;

  SatelliteTruth& t = truth.satellites[index];
  EpochGeometry g;
  g.epoch = done;
  g.time_s = tag_s_;
  g.elevation_rad = los.direction.elevation_rad;
  g.delivered = delivered;
  g.trackable = g.elevation_rad >= std::max(scenario.receiver.cutoff_deg * kRadian, 0.0);
  if (g.elevation_rad <= 0) {
    if (g.elevation_rad < kFarBelowHorizon_rad) work.next_evaluation_s = true_s + kBelowHorizonWait_s;
    return Observe(index, g, epoch);
  }
  g.above_cutoff = g.elevation_rad > scenario.truth_cutoff_deg * kRadian;
  g.above30 = g.elevation_rad > 30 * kRadian;
  ++t.visible;
  if (g.above_cutoff) ++t.above_cutoff;
  g.sine = Sine(g.elevation_rad);
  g.cosine_squared = 1 - g.sine * g.sine;

  SatelliteMoment m;
  m.system = t.system;
  m.number = t.number;
  m.elevation_rad = g.elevation_rad;
  m.azimuth_rad = los.direction.azimuth_rad;
  m.range_m = los.range_m;
  m.satellite_clock_s = los.state.clock_s;
  if (scenario.errors.troposphere) m.troposphere_m = TroposphereDelay(site, g.elevation_rad);
  if (scenario.errors.ionosphere) {
    m.slant_tec = SlantTec(site, los.direction, day_start_s_ + tag_s_, scenario.errors.vertical_tec_night,
                           scenario.errors.vertical_tec_day);
  }
  if (!work.storms.empty()) m.slant_tec += StormTec(work, tag_s_);
  g.slant_tec = m.slant_tec;
  g.range_m = los.range_m + kLightSpeed_m_s * (bias_s_ - los.state.clock_s) + m.troposphere_m;
  moments.push_back(m);
  Observe(index, g, epoch);
}

void Simulation::Work::Observe(std::size_t index, const EpochGeometry& geometry, ObsEpoch_QC_gbt& epoch) {
  SatelliteTruth& t = truth.satellites[index];
  Satellite_gbt satellite = {};
  const std::size_t logged = truth.faults.size();
  for (std::size_t j = 0; j < work_[index].signals.size(); ++j) {
    Signal_QC_gbt signal = {};
    if (work_[index].signals[j].Update(geometry, signal, t.signals[j], truth.faults)) {
      satellite.signals[satellite.signal_num++] = signal;
    }
  }
  for (std::size_t i = logged; i < truth.faults.size(); ++i) {
    truth.faults[i].satellite = SatelliteName(t.system, t.number);
  }
  const bool two = satellite.signal_num >= std::min<std::size_t>(2, work_[index].signals.size());
  if (two && satellite.signal_num > 0 && geometry.above_cutoff && geometry.delivered) ++t.two_signals;
  if (geometry.elevation_rad > 0) moments.back().tracked_signals = static_cast<int>(satellite.signal_num);
  if (satellite.signal_num == 0 || epoch.sat_num >= ORSOLVA_MAX_SATELLITES) return;
  satellite.sys = static_cast<std::uint8_t>(kSystemTable[SystemSlot(t.system)].code);
  satellite.prn = t.number;
  epoch.sats[epoch.sat_num++] = satellite;
}

Simulation::Simulation(const Scenario& scenario)
    : work_(std::make_unique<Work>((CheckScenario(scenario), scenario))) {}
Simulation::~Simulation() = default;
Simulation::Simulation(Simulation&&) noexcept = default;
Simulation& Simulation::operator=(Simulation&&) noexcept = default;

const Scenario& Simulation::Settings() const { return work_->scenario; }
const NavigationSet& Simulation::Navigation() const { return work_->sky.Navigation(); }
const Sky& Simulation::sky() const { return work_->sky; }
bool Simulation::Next(ObsEpoch_QC_gbt& epoch) { return work_->Next(epoch); }

std::size_t Simulation::NextBatch(std::vector<ObsEpoch_QC_gbt>& batch, std::size_t most) {
  most = std::min(most, work_->MostLeft());
  batch.resize(most);
  std::size_t count = 0;
  while (count < most && work_->Next(batch[count])) ++count;
  batch.resize(count);
  return count;
}

const std::vector<SatelliteMoment>& Simulation::Moments() const { return work_->moments; }
const Truth& Simulation::TruthSoFar() const { return work_->truth; }
std::uint64_t Simulation::NominalEpochs() const { return static_cast<std::uint64_t>(work_->grid.epochs); }
std::uint64_t Simulation::NominalEpochsDone() const { return static_cast<std::uint64_t>(work_->done); }

}  // namespace orsolva_host
