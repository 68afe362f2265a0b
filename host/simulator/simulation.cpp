#include "host/simulator/simulation.h"

#include <algorithm>
#include <cmath>
#include <deque>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/simulator/active_faults.h"
#include "host/simulator/antenna_path.h"
#include "host/simulator/fault_kinds.h"
#include "host/simulator/portable_math.h"
#include "host/simulator/receiver_clock_bias.h"
#include "host/simulator/satellite_work.h"
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
/// Doppler is the change of the phase over this long, half before and half after the epoch.
constexpr double kDopplerSpan_s = 0.1;
constexpr double kTrackStep_s = 10;

/// An epoch as a record of the library and with everything that a file holds.
struct Delivery {
  ObsEpoch_QC_gbt record;
  ObservationEpoch epoch;
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
      : scenario(given),
        grid(GridOf(given)),
        sky(scenario),
        start(MakeSite(given.receiver.position_m)),
        site(start),
        clock_(scenario) {
    BeginTruth();
    BeginSatellites();
    BeginFaults();
  }

  /// The next epoch; valid until the next call. @return nullptr at the end of the span
  const Delivery* Next();
  /// Upper bound of the epochs still to be delivered: each may come twice.
  std::size_t MostLeft() const {
    return 2 * (static_cast<std::size_t>(grid.epochs - done) + held_.size()) + waiting_.size();
  }

  Scenario scenario;
  EpochGrid grid;
  Sky sky;
  Site start;  ///< at rest
  Site site;   ///< at the epoch
  ClockState clock;
  Truth truth;
  std::vector<SatelliteMoment> moments;
  std::int64_t done = 0;

 private:
  void BeginTruth();
  void BeginSatellites();
  void BeginFaults();
  void Assign(ActiveFault& active);
  void LogOnce(ActiveFault& active);
  void LogEpochFaults();
  bool Has(FaultKind kind, std::int64_t epoch) const { return HasFault(faults_, kind, epoch); }
  bool Off(std::int64_t epoch) const;
  std::uint32_t EventsBefore(std::int64_t epoch) const;
  void LogClock(const Time_gbt& time, double time_s, double bias_s);
  void LogTrack(const Time_gbt& time, double time_s);
  void Make(Delivery& out);
  void SetTime(Delivery& out);
  void FinishLog(std::size_t from, const Time_gbt& time);
  void MakeSatellite(std::size_t index, double true_s, bool delivered, Delivery& out);
  SatelliteMoment MomentOf(std::size_t index, const LineOfSight& los);
  void AddRates(std::size_t index, double true_s, EpochGeometry& geometry) const;
  void Observe(std::size_t index, const EpochGeometry& geometry, Delivery& out);
  bool ObserveSignal(std::size_t index, std::size_t j, const EpochGeometry& geometry, Satellite_gbt& record,
                     ObservationEpoch& epoch);
  double Tec(const Direction& direction, double time_s) const;
  LineOfSight LineOfSightTo(std::size_t index, double true_s, double& travel_s, const Site& from) const;
  const Delivery* Deliver();
  std::vector<FaultTarget> Visible(const FaultTarget& target, double seconds, double above_deg) const;

  std::vector<SatelliteWork> work_;
  std::vector<ActiveFault> faults_;  ///< but for slips, which only their signals need to know
  std::vector<ActiveFault> slips_;
  ReceiverClockBias clock_;
  Delivery current_ = {};
  std::deque<Delivery> waiting_;  ///< duplicate and held epochs, delivered next
  std::deque<Delivery> held_;     ///< delivered after the next epoch
  bool powerless_ = false;
  double tag_s_ = 0;
  double bias_s_ = 0;
  double last_clock_log_s_ = -1e9;
  double last_track_log_s_ = -1e9;
  double day_start_s_ = 0;
};

void Simulation::Work::BeginTruth() {
  truth.position_m = scenario.receiver.position_m;
  truth.header_position_m = truth.position_m;
  for (const Fault& fault : scenario.faults) {
    if (fault.kind != FaultKind::kHeaderOffset) continue;
    for (std::size_t i = 0; i < 3; ++i) truth.header_position_m[i] += fault.size * start.east[i];
  }
  truth.cutoff_deg = scenario.truth_cutoff_deg;
  truth.interval_s = scenario.interval_s;
  truth.mean_window = orsolva::AveragingWindow(scenario.interval_s);
  day_start_s_ = static_cast<double>(scenario.start.time % 86400);
}

void Simulation::Work::BeginSatellites() {
  for (const SkySatellite& satellite : sky.Satellites()) {
    SatelliteWork work(scenario, satellite.system, satellite.number, work_.size());
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
    work_.push_back(std::move(work));
    truth.satellites.push_back(std::move(t));
  }
}

void Simulation::Work::BeginFaults() {
  faults_ =
      ResolveFaults(scenario, grid, [this](const FaultTarget& target, double seconds, double above_deg) {
        return Visible(target, seconds, above_deg);
      });
  const auto slips = std::stable_partition(faults_.begin(), faults_.end(), [](const ActiveFault& active) {
    return active.fault.kind != FaultKind::kSlip;
  });
  slips_.assign(slips, faults_.end());
  faults_.erase(slips, faults_.end());
  for (ActiveFault& active : faults_) Assign(active);
  for (ActiveFault& active : slips_) Assign(active);
}

/// Hands a fault to the satellites and signals that it affects.
void Simulation::Work::Assign(ActiveFault& active) {
  for (std::size_t i = 0; i < work_.size(); ++i) {
    if (!active.Meets(truth.satellites[i].system, truth.satellites[i].number)) continue;
    work_[i].AddFault(&active);
    for (std::size_t j = 0; j < work_[i].signals.size(); ++j) {
      const bool meets = MeetsSignals(active.fault.kind) && active.Meets(truth.satellites[i].signals[j].name);
      if (meets) work_[i].signals[j].AddFault(&active);
    }
  }
}

/// The satellites and signals of a target above an elevation limit; one entry per signal.
std::vector<FaultTarget> Simulation::Work::Visible(const FaultTarget& target, double seconds,
                                                   double above_deg) const {
  std::vector<FaultTarget> all;
  const Site from = SiteOnPath(start, scenario.receiver.path, seconds);
  for (std::size_t i = 0; i < work_.size(); ++i) {
    const SatelliteTruth& s = truth.satellites[i];
    if ((target.system != 0 && target.system != s.system) ||
        (target.satellite != 0 && target.satellite != s.number)) {
      continue;
    }
    double travel = kFirstTravel_s;
    if (LineOfSightTo(i, seconds, travel, from).direction.elevation_rad <= above_deg * kRadian) continue;
    for (const SignalTruth& signal : s.signals) {
      if (!target.signal.empty() && target.signal != signal.name) continue;
      all.push_back({s.system, s.number, signal.name});
    }
  }
  return all;
}

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

LineOfSight Simulation::Work::LineOfSightTo(std::size_t index, double true_s, double& travel_s,
                                            const Site& from) const {
  LineOfSight los;
  double line[3];
  for (int round = 0; round < 10; ++round) {
    los.state = sky.StateAt(index, true_s - travel_s, true_s);
    const double turn = kEarthRotation_rad_s * travel_s;
    const auto [s, c] = SineCosineOf(turn);
    const double* p = los.state.position_m;
    line[0] = c * p[0] + s * p[1] - from.position_m[0];
    line[1] = -s * p[0] + c * p[1] - from.position_m[1];
    line[2] = p[2] - from.position_m[2];
    los.range_m = std::sqrt(line[0] * line[0] + line[1] * line[1] + line[2] * line[2]);
    const double found = los.range_m / kLightSpeed_m_s;
    const bool settled = std::fabs(found - travel_s) < kTravelTolerance_s;
    travel_s = found;
    if (settled) break;
  }
  los.direction = DirectionOf(from, line, los.range_m);
  return los;
}

double Simulation::Work::Tec(const Direction& direction, double time_s) const {
  if (!scenario.errors.ionosphere) return 0;
  return SlantTec(site, direction, day_start_s_ + time_s, scenario.errors.vertical_tec_night,
                  scenario.errors.vertical_tec_day);
}

SatelliteMoment Simulation::Work::MomentOf(std::size_t index, const LineOfSight& los) {
  SatelliteWork& work = work_[index];
  SatelliteMoment m;
  m.system = truth.satellites[index].system;
  m.number = truth.satellites[index].number;
  m.elevation_rad = los.direction.elevation_rad;
  m.azimuth_rad = los.direction.azimuth_rad;
  m.range_m = los.range_m;
  m.satellite_clock_s = los.state.clock_s;
  if (scenario.errors.troposphere) m.troposphere_m = TroposphereDelay(site, m.elevation_rad);
  m.slant_tec = Tec(los.direction, tag_s_);
  m.slant_tec += work.WaveTec(done, tag_s_, grid.Seconds(grid.epochs)) + work.RandomTec(done, tag_s_);
  m.glitch_m = work.Glitch(done);
  return m;
}

/// Rates of change over a short span around the epoch. That of a random TEC is not in it.
void Simulation::Work::AddRates(std::size_t index, double true_s, EpochGeometry& g) const {
  double range_m[2], tec[2];
  for (const int side : {0, 1}) {
    const double time_s = true_s + (side - 0.5) * kDopplerSpan_s;
    double travel_s = work_[index].travel_s;
    const Site from = SiteOnPath(start, scenario.receiver.path, time_s);
    const LineOfSight los = LineOfSightTo(index, time_s, travel_s, from);
    range_m[side] = los.range_m - kLightSpeed_m_s * los.state.clock_s;
    if (scenario.errors.troposphere) range_m[side] += TroposphereDelay(from, los.direction.elevation_rad);
    tec[side] = Tec(los.direction, time_s + bias_s_) +
                work_[index].WaveTec(done, time_s + bias_s_, grid.Seconds(grid.epochs));
  }
  g.range_rate_m_s = (range_m[1] - range_m[0]) / kDopplerSpan_s + kLightSpeed_m_s * clock.rate;
  g.tec_rate = (tec[1] - tec[0]) / kDopplerSpan_s;
}

void Simulation::Work::MakeSatellite(std::size_t index, double true_s, bool delivered, Delivery& out) {
  SatelliteWork& work = work_[index];
  // A slip is recorded even when the satellite is below the horizon.
  const bool slips = std::find(work.slips.begin(), work.slips.end(), done) != work.slips.end();
  if (true_s < work.next_evaluation_s && !slips) return;
  const double step = true_s - work.travel_time_s;
  double travel = work.travel_s + (std::fabs(step) < 120 ? work.travel_rate * step : 0.0);
  const LineOfSight los = LineOfSightTo(index, true_s, travel, site);
  if (std::fabs(step) < 120 && step != 0) work.travel_rate = (travel - work.travel_s) / step;
  work.travel_s = travel;
  work.travel_time_s = true_s;

  SatelliteTruth& t = truth.satellites[index];
  EpochGeometry g;
  g.epoch = done;
  g.time_s = tag_s_;
  g.elevation_rad = los.direction.elevation_rad;
  g.delivered = delivered;
  g.trackable = g.elevation_rad >= std::max(scenario.receiver.cutoff_deg * kRadian, 0.0) && !powerless_;
  if (g.elevation_rad <= 0) {
    if (g.elevation_rad < kFarBelowHorizon_rad) work.next_evaluation_s = true_s + kBelowHorizonWait_s;
    return Observe(index, g, out);
  }
  g.above_cutoff = g.elevation_rad > scenario.truth_cutoff_deg * kRadian;
  g.above30 = g.elevation_rad > 30 * kRadian;
  ++t.visible;
  if (g.above_cutoff) ++t.above_cutoff;
  g.sine = Sine(g.elevation_rad);
  g.cosine_squared = 1 - g.sine * g.sine;

  const SatelliteMoment m = MomentOf(index, los);
  g.slant_tec = m.slant_tec;
  g.range_m = los.range_m + kLightSpeed_m_s * (bias_s_ - los.state.clock_s) + m.troposphere_m + m.glitch_m;
  g.code_only_m = kLightSpeed_m_s * clock.code_only_s;
  if (scenario.observables.doppler && g.trackable) AddRates(index, true_s, g);
  moments.push_back(m);
  Observe(index, g, out);
}

/// @return whether the signal is tracked, and then added to the satellite in both forms
bool Simulation::Work::ObserveSignal(std::size_t index, std::size_t j, const EpochGeometry& geometry,
                                     Satellite_gbt& record, ObservationEpoch& epoch) {
  SignalTrack& track = work_[index].signals[j];
  SignalObservation o;
  if (!track.Update(geometry, o, truth.satellites[index].signals[j], truth.faults)) return false;
  epoch.signals.push_back(o);
  Signal_QC_gbt& signal = record.signals[record.signal_num++];
  signal.code = static_cast<std::uint8_t>(track.Number());
  signal.pseudorange = o.pseudorange_m;
  signal.phase = o.phase_cycles;
  signal.snr = static_cast<float>(o.snr_dbhz);
  if (scenario.observables.doppler) signal.doppler = static_cast<float>(o.doppler_hz);
  return true;
}

void Simulation::Work::Observe(std::size_t index, const EpochGeometry& geometry, Delivery& out) {
  SatelliteTruth& t = truth.satellites[index];
  Satellite_gbt satellite = {};
  const std::size_t logged = truth.faults.size(), first = out.epoch.signals.size();
  for (std::size_t j = 0; j < work_[index].signals.size(); ++j) {
    ObserveSignal(index, j, geometry, satellite, out.epoch);
  }
  for (std::size_t i = logged; i < truth.faults.size(); ++i) {
    truth.faults[i].satellite = SatelliteName(t.system, t.number);
  }
  const bool two = satellite.signal_num >= std::min<std::size_t>(2, work_[index].signals.size());
  if (two && satellite.signal_num > 0 && geometry.above_cutoff && geometry.delivered) ++t.two_signals;
  if (geometry.elevation_rad > 0) moments.back().tracked_signals = static_cast<int>(satellite.signal_num);
  if (satellite.signal_num == 0) return;
  work_[index].MarkGlitchesSeen(done, truth.faults);
  const SatelliteId id = {t.system, static_cast<std::uint8_t>(t.number)};
  out.epoch.satellites.push_back({id, first, satellite.signal_num});
  if (out.record.sat_num >= ORSOLVA_MAX_SATELLITES) return;
  satellite.sys = static_cast<std::uint8_t>(kSystemTable[SystemSlot(t.system)].code);
  satellite.prn = t.number;
  out.record.sats[out.record.sat_num++] = satellite;
}

Simulation::Simulation(const Scenario& scenario)
    : work_(std::make_unique<Work>((CheckScenario(scenario), scenario))) {}
Simulation::~Simulation() = default;
Simulation::Simulation(Simulation&&) noexcept = default;
Simulation& Simulation::operator=(Simulation&&) noexcept = default;

const Scenario& Simulation::Settings() const { return work_->scenario; }
const NavigationSet& Simulation::Navigation() const { return work_->sky.Navigation(); }
const Sky& Simulation::sky() const { return work_->sky; }
bool Simulation::Next(ObsEpoch_QC_gbt& record) {
  const Delivery* next = work_->Next();
  if (next != nullptr) record = next->record;
  return next != nullptr;
}

bool Simulation::Next(ObsEpoch_QC_gbt& record, ObservationEpoch& epoch) {
  const Delivery* next = work_->Next();
  if (next == nullptr) return false;
  record = next->record;
  epoch = next->epoch;
  return true;
}

std::size_t Simulation::NextBatch(std::vector<ObsEpoch_QC_gbt>& batch, std::size_t most) {
  most = std::min(most, work_->MostLeft());
  batch.resize(most);
  std::size_t count = 0;
  while (count < most && Next(batch[count])) ++count;
  batch.resize(count);
  return count;
}

const std::vector<SatelliteMoment>& Simulation::Moments() const { return work_->moments; }
double Simulation::ClockBias() const { return work_->clock.bias_s; }
const std::array<double, 3>& Simulation::AntennaPosition() const { return work_->site.position_m; }
const Truth& Simulation::TruthSoFar() const { return work_->truth; }
std::uint64_t Simulation::NominalEpochs() const { return static_cast<std::uint64_t>(work_->grid.epochs); }
std::uint64_t Simulation::NominalEpochsDone() const { return static_cast<std::uint64_t>(work_->done); }

}  // namespace orsolva_host
