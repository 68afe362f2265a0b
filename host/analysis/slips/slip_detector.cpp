#include "host/analysis/slips/slip_detector.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"
#include "host/analysis/geometry/station_position.h"
#include "host/analysis/numeric/robust.h"
#include "host/analysis/slips/evidence.h"
#include "host/analysis/slips/prediction.h"

namespace orsolva_host::analysis {
namespace {

constexpr std::size_t kStartEpochs = 16;
constexpr double kMillisecond_s = 1e-3;
constexpr double kResetPart = 0.3;        // of a millisecond, from which a clock change counts as a reset
constexpr double kResetTolerance = 0.02;  // of a millisecond
constexpr double kCodeJump_m = 30;
constexpr double kCommonAgreement_m = 0.06;
constexpr std::size_t kMinForCommon = 4;
constexpr int kMinSkySamples = 8;

std::size_t CountNear(const std::vector<double>& values, double center, double distance) {
  return static_cast<std::size_t>(std::count_if(values.begin(), values.end(),
                                                [&](double v) { return std::fabs(v - center) < distance; }));
}

bool Earlier(const Event& a, const Event& b) {
  return a.time_ns != b.time_ns ? a.time_ns < b.time_ns : a.satellite < b.satellite;
}

bool IsSized(const Event& event) { return IsSlip(event.kind) && !event.sizes.empty(); }

/// Several repairs of one step are one slip; what adds up to nothing goes.
void Merge(Event& into, const Event& more) {
  for (std::size_t i = 0; i < more.signals.size(); ++i) {
    const auto known = std::find(into.signals.begin(), into.signals.end(), more.signals[i]);
    if (known == into.signals.end()) {
      into.signals.push_back(more.signals[i]);
      into.sizes.push_back(more.sizes[i]);
    } else {
      into.sizes[static_cast<std::size_t>(known - into.signals.begin())] += more.sizes[i];
    }
  }
  for (std::size_t i = into.signals.size(); i-- > 0;) {
    if (into.sizes[i] != 0) continue;
    into.signals.erase(into.signals.begin() + static_cast<std::ptrdiff_t>(i));
    into.sizes.erase(into.sizes.begin() + static_cast<std::ptrdiff_t>(i));
  }
  into.evidence = SlippedText(into.signals, into.sizes) +
                  into.evidence.substr(std::min(into.evidence.find(';'), into.evidence.size()));
  into.margin = std::min(into.margin, more.margin);
  into.sure = into.sure && more.sure;
  if (into.kind != EventKind::kSlip && into.kind != EventKind::kHalfCycle) return;
  const bool half =
      std::any_of(into.sizes.begin(), into.sizes.end(), [](double z) { return z != std::nearbyint(z); });
  into.kind = half ? EventKind::kHalfCycle : EventKind::kSlip;
}

/// A step that an event explains says nothing about the drift of the satellite's clock, nor does the way back
/// from an outlier.
void ForgetClock(SatelliteIntake& intake, std::int64_t step, EventKind kind) {
  if (kind == EventKind::kGapContinuous || kind == EventKind::kSignalGapContinuous) return;
  intake.DropFromClock(intake.track.At(step).epoch);
  if (kind == EventKind::kOutlier && intake.track.Has(step + 1))
    intake.DropFromClock(intake.track.At(step + 1).epoch);
}

}  // namespace

SlipDetector::SlipDetector(const DetectorOptions& options, const BroadcastRecords& records,
                           DetectorObserver* observer)
    : options_(options), observer_(observer) {
  records_.Add(records);
  if (options_.precise_orbits) records_.Add(*options_.precise_orbits);
}

SlipDetector::~SlipDetector() = default;

void SlipDetector::Add(const ObservationEpoch& epoch) {
  if ((number_ >= 0 || !start_.empty()) && epoch.time_ns <= last_time_ns_) {
    ++disordered_;
    return;
  }
  last_time_ns_ = epoch.time_ns;
  if (started_) return Process(epoch);
  start_.push_back(epoch);
  if (start_.size() == kStartEpochs) Start();
}

/// Interval and position from the first epochs, which are then taken as any other.
void SlipDetector::Start() {
  started_ = true;
  interval_s_ = options_.interval_s <= kMaxInterval_s ? options_.interval_s : 0;
  if (!(interval_s_ > 0) && start_.size() > 1) {
    std::vector<double> steps;
    for (std::size_t i = 1; i < start_.size(); ++i) {
      steps.push_back(SecondsBetween(start_[i].time_ns, start_[i - 1].time_ns));
    }
    std::sort(steps.begin(), steps.end());
    interval_s_ = std::min(steps[steps.size() / 2], kMaxInterval_s);
  }
  if (!(interval_s_ > 0)) interval_s_ = kUsualInterval_s;
  if (!records_.Empty()) {
    if (const auto position = StationPosition(start_, records_, options_.position))
      station_.emplace(*position);
  }
  decision_ = std::make_unique<Decision>(interval_s_);
  if (observer_ != nullptr) observer_->Started(interval_s_, station_ ? &*station_ : nullptr);
  std::vector<ObservationEpoch> first;
  first.swap(start_);
  for (const ObservationEpoch& epoch : first) Process(epoch);
}

void SlipDetector::Finish() {
  if (!started_ && !start_.empty()) Start();
  DecideUpTo(number_);
}

SatelliteIntake& SlipDetector::IntakeOf(SatelliteId id) {
  std::unique_ptr<SatelliteIntake>& intake = satellites_[id];
  if (!intake) {
    std::optional<int> channel;
    if (id.system == 'R' && id.number < options_.glonass_channels.size())
      channel = options_.glonass_channels[id.number];
    intake = std::make_unique<SatelliteIntake>(id, records_.Find(id), channel);
  }
  return *intake;
}

void SlipDetector::Process(const ObservationEpoch& epoch) {
  ++number_;
  if (epoch.events & kPowerFailure) AddReceiverEvent(epoch, EventKind::kPowerFailure, kAbsent);
  BeginSatellites(epoch);
  if (observer_ != nullptr && station_) ShowRanges(epoch);
  SolveReceiver(epoch);
  FindCodeJump(epoch);
  if (observer_ != nullptr) observer_->Taken(epoch, receiver_steps_[RingSlot(number_)]);
  for (SatelliteIntake* intake : present_) {
    const bool open = intake->track.decide < intake->track.next;
    intake->Append(clock_, shift_m_, shift_doubt_m_, reset_s_, code_shift_m_, interval_s_);
    if (!open) active_.push_back(intake);
  }
  FindCommonPart(2, &StepState::common_m, CubicRangeRate);
  FindCommonPart(3, &StepState::wide_common_m, WideRangeRate);
  WatchIonosphere();
  DecideUpTo(number_ - kLead);
}

void SlipDetector::BeginSatellites(const ObservationEpoch& epoch) {
  present_.clear();
  samples_.clear();
  for (const SatelliteObservation& satellite : epoch.satellites) {
    SatelliteIntake& intake = IntakeOf(satellite.id);
    if (!intake.IsUsable(epoch, satellite)) continue;
    if (!IsTestable(satellite.id.system, interval_s_)) {
      ++CountsOf(intake).observed_epochs;
      ++CountsOf(intake).untested_steps;
      continue;
    }
    if (intake.SecondsSinceLast(epoch.time_ns) > kLongestGap_s) {
      while (intake.track.decide < intake.track.next) Decide(intake);
      CollectEvents(intake);
      intake.StartArc();
    }
    intake.Begin(epoch, satellite, station_ ? &*station_ : nullptr, number_);
    present_.push_back(&intake);
    if (const auto sample = intake.SampleOfClock()) samples_.push_back(*sample);
  }
}

void SlipDetector::ShowRanges(const ObservationEpoch& epoch) {
  modelled_.clear();
  for (const SatelliteIntake* intake : present_) {
    if (!intake->Range().valid) continue;
    const auto place = static_cast<std::size_t>(intake->Observation() - epoch.satellites.data());
    modelled_.push_back({place, intake->Range()});
  }
  observer_->Modelled(epoch, *station_, modelled_);
}

void SlipDetector::SolveReceiver(const ObservationEpoch& epoch) {
  shift_m_ = {};
  shift_doubt_m_ = 0;
  reset_s_ = 0;
  const std::optional<ClockChange> change = SolveClock(samples_);
  ReceiverStep& step = receiver_steps_[RingSlot(number_)];
  step = {number_, station_ ? &*station_ : nullptr, change.has_value(), kAbsent, false, {}};
  if (!change) {
    ++clock_.unknown;
    if (samples_.size() >= kMinForCommon) {
      AddReceiverEvent(epoch, EventKind::kReceiverRestart, kAbsent);
    } else {
      FindUnmodelledReset(epoch);
    }
    return;
  }
  clock_.metres += change->metres;
  step.clock_change_m = change->metres;
  step.shift_m = change->shift_m;
  step.clock_reset = NoteClockReset(epoch, change->metres);
  if (!change->moved) return;
  shift_m_ = change->shift_m;
  shift_doubt_m_ = change->shift_doubt_m;
  Vector3 position = station_->Position();
  for (std::size_t i = 0; i < 3; ++i) position[i] += shift_m_[i];
  station_.emplace(position);
  for (auto& [id, intake] : satellites_) intake->ForgetRange();
}

/// @return whether the change holds a reset
bool SlipDetector::NoteClockReset(const ObservationEpoch& epoch, double change_m) {
  const double usual = Median(clock_rates_.Sorted());
  const double jump_ms = (change_m - usual) / kLightSpeed_m_s / kMillisecond_s;
  const bool reset = std::fabs(jump_ms) > kResetPart;
  if (reset) AddReceiverEvent(epoch, EventKind::kReceiverClockReset, jump_ms);
  clock_rates_.Push(change_m);
  return reset;
}

/// Without a modelled range: whole milliseconds that all phases jump by.
void SlipDetector::FindUnmodelledReset(const ObservationEpoch& epoch) {
  scratch_.clear();
  for (const SatelliteIntake* intake : present_) {
    const double change = intake->PhaseChangeOfChange();
    if (std::isfinite(change)) scratch_.push_back(change);
  }
  const bool was_reset = was_reset_;
  was_reset_ = false;
  if (scratch_.size() < kMinForCommon) return;
  const double milliseconds = Median(scratch_) / kLightSpeed_m_s / kMillisecond_s;
  const double whole = std::nearbyint(milliseconds);
  if (whole == 0 || std::fabs(milliseconds - whole) > kResetTolerance || was_reset) return;
  reset_s_ = whole * kMillisecond_s;
  was_reset_ = true;
  AddReceiverEvent(epoch, EventKind::kReceiverClockReset, whole);
}

/// A jump that the codes of most satellites make against their phases.
void SlipDetector::FindCodeJump(const ObservationEpoch& epoch) {
  scratch_.clear();
  for (const SatelliteIntake* intake : present_) {
    const double change = intake->CodeMinusPhaseChange();
    if (std::isfinite(change)) scratch_.push_back(change);
  }
  // Where more than half are small their median is, too.
  if (scratch_.size() < 3 || 2 * CountNear(scratch_, 0, kCodeJump_m) > scratch_.size()) return;
  const double jump = Median(scratch_);
  if (std::fabs(jump) < kCodeJump_m || 10 * CountNear(scratch_, jump, kCodeJump_m) < 6 * scratch_.size())
    return;
  code_shift_m_ += jump;
  AddReceiverEvent(epoch, EventKind::kCodeClockJump, jump / kLightSpeed_m_s / kMillisecond_s);
}

/// The receiver clock as satellites without a modelled range show it, in the stencil that predicts their
/// ranges: so many epochs after a step as the stencil has on one side. Where the clock has been solved and
/// taken off, nothing is left.
void SlipDetector::FindCommonPart(std::int64_t width, double StepState::*common_m,
                                  double (*rate_of)(const SatelliteTrack&, std::int64_t)) {
  const std::int64_t middle = number_ - width;
  bool solved = middle >= width;
  for (std::int64_t n = middle - width; solved && n <= middle + width; ++n) {
    const ReceiverStep& step = receiver_steps_[RingSlot(n)];
    solved = step.number == n && step.clock_known;
  }
  scratch_.clear();
  std::vector<StepState*> steps;
  for (SatelliteIntake* intake : present_) {
    SatelliteTrack& track = intake->track;
    const std::int64_t i = track.next - 1 - width;
    if (i - width <= track.first || track.At(i).epoch != middle) continue;
    if (track.At(i - width).epoch != middle - width || track.At(i).HasGeometry()) continue;
    const double rate = track.RangeRate(i) - rate_of(track, i);
    if (!std::isfinite(rate)) continue;
    scratch_.push_back(rate * track.At(i).dt_s);
    steps.push_back(&track.At(i));
  }
  double common = 0;
  if (!solved) {
    if (scratch_.size() < kMinForCommon) return;
    common = Median(scratch_);
    if (2 * CountNear(scratch_, common, kCommonAgreement_m) < scratch_.size()) return;
  }
  for (StepState* step : steps) step->*common_m = common;
}

/// What the ionosphere does now, over all satellites with two bands: its change from step to step, known at
/// once, and its departure from the median rate.
void SlipDetector::WatchIonosphere() {
  for (const SatelliteIntake* intake : present_) {
    const SatelliteTrack& track = intake->track;
    const std::int64_t newest = track.next - 1;
    if (track.two_band_step != newest || !track.Has(newest - 1)) continue;
    const double change = track.IonosphereRate(newest) - track.IonosphereRate(newest - 1);
    if (std::isfinite(change)) ionosphere_changes_m_.Push(std::fabs(change * track.At(newest).dt_s));
  }
  double size_m = kAbsent;
  for (const auto* sizes : {&ionosphere_changes_m_, &ionosphere_departures_m_}) {
    if (sizes->Count() >= kMinSkySamples) size_m = std::fmax(size_m, Median(sizes->Sorted()));
  }
  decision_->SetIonosphere(kSigmaOfMedian * size_m);
}

void SlipDetector::DecideUpTo(std::int64_t number) {
  std::size_t kept = 0;
  for (SatelliteIntake* intake : active_) {
    SatelliteTrack& track = intake->track;
    while (track.decide < track.next && track.At(track.decide).epoch <= number) Decide(*intake);
    if (!track.events.empty()) CollectEvents(*intake);
    if (track.decide < track.next) active_[kept++] = intake;
  }
  active_.resize(kept);
  for (std::size_t i = 0; i < receiver_events_.size();) {
    if (receiver_events_[i].first > number) {
      ++i;
      continue;
    }
    fresh_.push_back(receiver_events_[i].second);
    receiver_events_.erase(receiver_events_.begin() + static_cast<std::ptrdiff_t>(i));
  }
  // Sorted per epoch, not per call, so that the order does not depend on when events are taken.
  std::stable_sort(fresh_.begin(), fresh_.end(), Earlier);
  for (Event& event : fresh_) {
    if (observer_ != nullptr) observer_->Found(event);
    events_.push_back(std::move(event));
  }
  fresh_.clear();
}

TestCounts& SlipDetector::CountsOf(SatelliteIntake& intake) {
  if (intake.counts == nullptr) intake.counts = &counts_[intake.track.satellite];
  return *intake.counts;
}

void SlipDetector::Decide(SatelliteIntake& intake) {
  SatelliteTrack& track = intake.track;
  const std::int64_t step = track.decide;
  decision_->DecideNext(track);
  if (observer_ != nullptr) observer_->Decided(track, step);
  const StepState& s = track.At(step);
  if (track.two_band_step >= step && !s.lone_band)
    ionosphere_departures_m_.Push(std::fabs((s.ionosphere_rate - s.ionosphere_median) * s.dt_s));
  TestCounts& counts = CountsOf(intake);
  ++counts.observed_epochs;
  ++(std::isfinite(s.chi2) ? counts.tested_steps : counts.untested_steps);
  bool lost = false;
  int signals = 0;
  for (const SignalTrack& signal : track.signals) {
    lost = lost || (signal.lost_lock & RingBit(step)) != 0;
    signals += signal.IsReal(step);
  }
  counts.lost_lock_epochs += lost;
  if (keeps_steps_)
    steps_.push_back({track.satellite, s.time_ns, s.elevation_rad * 180 / kPi, s.chi2, signals, s.weak});
}

/// Events of decided steps, one slip a step.
void SlipDetector::CollectEvents(SatelliteIntake& intake) {
  SatelliteTrack& track = intake.track;
  for (std::size_t i = 0; i < track.events.size(); ++i) {
    if (!IsSized(track.events[i].second)) continue;
    for (std::size_t j = i + 1; j < track.events.size();) {
      if (track.events[j].first != track.events[i].first || !IsSized(track.events[j].second)) {
        ++j;
        continue;
      }
      Merge(track.events[i].second, track.events[j].second);
      track.events.erase(track.events.begin() + static_cast<std::ptrdiff_t>(j));
    }
  }
  std::size_t kept = 0;
  for (auto& [step, event] : track.events) {
    if (step >= track.decide) {
      track.events[kept++] = {step, std::move(event)};
    } else if (!(IsSlip(event.kind) && event.kind != EventKind::kJump && event.sizes.empty())) {
      ForgetClock(intake, step, event.kind);
      fresh_.push_back(std::move(event));
    }
  }
  track.events.resize(kept);
}

void SlipDetector::AddReceiverEvent(const ObservationEpoch& epoch, EventKind kind, double size_ms) {
  Event event;
  event.time_ns = epoch.time_ns;
  event.kind = kind;
  event.sure = true;
  if (std::isfinite(size_ms)) event.sizes.push_back(size_ms);
  receiver_events_.emplace_back(number_, std::move(event));
}

std::vector<Event> SlipDetector::TakeEvents() {
  std::vector<Event> taken;
  taken.swap(events_);
  return taken;
}

std::vector<DecidedStep> SlipDetector::TakeSteps() {
  keeps_steps_ = true;
  std::vector<DecidedStep> taken;
  taken.swap(steps_);
  return taken;
}

}  // namespace orsolva_host::analysis
