#include "host/analysis/slips/satellite_intake.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"
#include "host/analysis/slips/prediction.h"
#include "host/observation/carriers.h"

namespace orsolva_host::analysis {
namespace {

constexpr double kUsualRange_m = 2.25e7;
constexpr std::size_t kNoPlace = kMaxSignals;

/// How the clock of a satellite of a system wanders, relative to GPS: it sets the weight of its phase change.
double WanderOf(char system) {
  switch (system) {
    case 'E':
      return 0.5;
    case 'C':
      return 0.7;
    case 'R':
      return 2;
    default:
      return 1;
  }
}

/// A plain mapping function for doubts about the troposphere, not for delays. @param sin_elevation  as it is
double RoughMapping(double sin_elevation) {
  const double s = std::max(sin_elevation, 0.005);
  return 1.001 / std::sqrt(0.002001 + s * s);
}

}  // namespace

SatelliteIntake::SatelliteIntake(SatelliteId id, SatelliteRecords* records, std::optional<int> channel)
    : records_(records), channel_(channel) {
  track.satellite = id;
  if (!channel_ && records_) channel_ = records_->Channel();
  track.budget = 50;
}

double SatelliteIntake::Frequency(SignalCode code) const {
  const bool divided = track.satellite.system == 'R' && (code.band == '1' || code.band == '2');
  if (divided && !channel_) return 0;
  return CarrierFrequency(track.satellite.system, code.band, channel_.value_or(0));
}

void SatelliteIntake::LearnChannel(const ObservationEpoch& epoch, const SatelliteObservation& satellite) {
  if (channel_ || track.satellite.system != 'R') return;
  for (std::size_t i = 0; i < satellite.signal_count; ++i) {
    const SignalObservation& o = epoch.signals[satellite.first_signal + i];
    if (o.code.band != '1') continue;
    learned_channel_.Add(o.pseudorange_m, o.phase_cycles);
    break;
  }
  channel_ = learned_channel_.Known();
}

bool SatelliteIntake::IsUsable(const ObservationEpoch& epoch, const SatelliteObservation& satellite) {
  LearnChannel(epoch, satellite);
  for (std::size_t i = 0; i < satellite.signal_count; ++i) {
    const SignalObservation& o = epoch.signals[satellite.first_signal + i];
    if (std::isfinite(o.phase_cycles) && Frequency(o.code) > 0) return true;
  }
  return false;
}

void SatelliteIntake::StartArc() {
  BeginArc(track);
  number_ = -1;
}

/// Any code of the satellite; where there is none, the one before carried on by the phase.
double SatelliteIntake::TravelCode() const {
  for (std::size_t i = 0; i < satellite_->signal_count; ++i) {
    const double code = epoch_->signals[satellite_->first_signal + i].pseudorange_m;
    if (IsRange(code)) return code;
  }
  const double carried = last_travel_code_m_ + (std::isfinite(phase_change_m_) ? phase_change_m_ : 0);
  return IsRange(carried) ? carried : kUsualRange_m;
}

void SatelliteIntake::Begin(const ObservationEpoch& epoch, const SatelliteObservation& satellite,
                            const Station* station, std::int64_t number) {
  epoch_ = &epoch;
  satellite_ = &satellite;
  last_number_ = number_;
  last_time_ns_ = time_ns_;
  last_travel_code_m_ = travel_code_m_;
  last_phase_change_m_ = number == number_ + 1 ? phase_change_m_ : kAbsent;
  number_ = number;
  time_ns_ = epoch.time_ns;
  FindPlaces();
  MeasureChanges();
  travel_code_m_ = TravelCode();
  ModelRange(station);
}

/// Phase changes over the step: of the first signal, ionosphere-free of the two carriers farthest apart, code
/// minus phase.
void SatelliteIntake::MeasureChanges() {
  phase_change_m_ = clock_change_sample_m_ = code_minus_phase_change_m_ = kAbsent;
  const double last_code_minus_phase = code_minus_phase_m_;
  code_minus_phase_m_ = kAbsent;
  double first_mu = 0, last_mu = 0, first_change = 0, last_change = 0;
  for (std::size_t i = 0; i < satellite_->signal_count; ++i) {
    const SignalObservation& o = epoch_->signals[satellite_->first_signal + i];
    if (!std::isfinite(o.phase_cycles) || places_[i] == kNoPlace) continue;
    const SignalTrack& s = track.signals[places_[i]];
    const double phase_m = o.phase_cycles * s.wavelength_m;
    if (std::isnan(code_minus_phase_m_) && std::isfinite(o.pseudorange_m)) {
      code_minus_phase_m_ = o.pseudorange_m - phase_m;
      const bool same = o.code == code_phase_signal_ && last_number_ + 1 == number_;
      if (same) code_minus_phase_change_m_ = code_minus_phase_m_ - last_code_minus_phase;
      code_phase_signal_ = o.code;
    }
    if (s.unstable || !std::isfinite(s.last_phase_m)) continue;
    const double change = phase_m - s.last_phase_m;
    if (std::isnan(phase_change_m_) || s.mu < first_mu)
      phase_change_m_ = first_change = change, first_mu = s.mu;
    if (s.mu > last_mu) last_change = change, last_mu = s.mu;
  }
  if (std::isnan(phase_change_m_)) return;
  sample_has_two_bands_ = last_mu - first_mu > 0.05;
  const double gain = sample_has_two_bands_ ? last_mu / (last_mu - first_mu) : 1;
  clock_change_sample_m_ = gain * first_change + (1 - gain) * last_change;
}

/// The same record at both ends of the step, hence no jump where records change.
void SatelliteIntake::ModelRange(const Station* station) {
  step_modelled_ = false;
  const ModelledRange before = range_;
  const std::optional<std::size_t> record_before = record_;
  record_ = records_ && station ? records_->Select(time_ns_) : std::nullopt;
  range_ = record_ ? RangeAt(*records_, *record_, *station, time_ns_, travel_code_m_) : ModelledRange{};
  const bool stale = range_station_stale_;
  range_station_stale_ = false;
  if (!range_.valid || last_number_ < 0) return;
  ModelledRange begin = before;
  if (stale || record_before != record_ || !before.valid) {
    begin = RangeAt(*records_, *record_, *station, last_time_ns_, last_travel_code_m_);
  }
  if (!begin.valid) return;
  range_change_m_ = range_.metres - begin.metres;
  step_modelled_ = true;
}

std::optional<ClockSample> SatelliteIntake::SampleOfClock() {
  if (!step_modelled_ || last_number_ + 1 != number_ || std::isnan(clock_change_sample_m_))
    return std::nullopt;
  ClockSample sample;
  sample.metres = clock_change_sample_m_ - range_change_m_;
  sample.sigma = WanderOf(track.satellite.system) * (sample_has_two_bands_ ? 1 : 2) *
                 (0.5 + 0.2 / std::max(range_.sin_elevation, 0.05));
  sample.line_of_sight = range_.line_of_sight;
  sample.offsets = &clock_offsets_;
  sample.epoch = number_;
  sample.dt_s = SecondsBetween(time_ns_, last_time_ns_);
  return sample;
}

/// Finds the epoch's signals in the track; mostly where they did in the epoch before.
void SatelliteIntake::FindPlaces() {
  places_.resize(satellite_->signal_count, kNoPlace);
  for (std::size_t k = 0; k < satellite_->signal_count; ++k) {
    const SignalObservation& o = epoch_->signals[satellite_->first_signal + k];
    std::size_t& place = places_[k];
    if (!std::isfinite(o.phase_cycles)) continue;
    if (place < track.signals.size() && track.signals[place].code == o.code) continue;
    place = PlaceOf(o.code);
    if (place != kNoPlace) continue;
    const double frequency = Frequency(o.code);
    if (!(frequency > 0) || track.signals.size() == kMaxSignals) continue;
    AddSignal(o.code, frequency);
    k = static_cast<std::size_t>(-1);  // others may have moved
  }
}

std::size_t SatelliteIntake::PlaceOf(SignalCode code) const {
  for (std::size_t place = 0; place < track.signals.size(); ++place) {
    if (track.signals[place].code == code) return place;
  }
  return kNoPlace;
}

/// The track keeps signals by descending frequency.
void SatelliteIntake::AddSignal(SignalCode code, double frequency_hz) {
  std::size_t place = 0;
  while (place < track.signals.size() && track.signals[place].frequency_hz >= frequency_hz) ++place;
  SignalTrack s;
  s.code = code;
  s.frequency_hz = frequency_hz;
  s.wavelength_m = kLightSpeed_m_s / frequency_hz;
  const double ratio = kReferenceCarrier_hz / frequency_hz;
  s.mu = ratio * ratio;
  s.unstable = std::find(track.distrusted.begin(), track.distrusted.end(), code) != track.distrusted.end();
  track.signals.insert(track.signals.begin() + static_cast<std::ptrdiff_t>(place), s);
}

void SatelliteIntake::StoreSignals(double code_shift_m) {
  const std::int64_t i = track.next;
  const std::uint32_t bit = RingBit(i);
  for (SignalTrack& s : track.signals) {
    s.real &= ~bit, s.known &= ~bit, s.lost_lock &= ~bit, s.half_cycle &= ~bit, s.broken &= ~bit;
    s.code_m[RingSlot(i)] = kAbsent;
    s.last_phase_m = kAbsent;
  }
  for (std::size_t k = 0; k < satellite_->signal_count; ++k) {
    const SignalObservation& o = epoch_->signals[satellite_->first_signal + k];
    if (!std::isfinite(o.phase_cycles) || places_[k] == kNoPlace) continue;
    SignalTrack& s = track.signals[places_[k]];
    const double phase_m = o.phase_cycles * s.wavelength_m;
    s.last_phase_m = phase_m;
    s.phase_m[RingSlot(i)] = phase_m - track.origin_m - track.model_sum_m - s.repaired_m;
    s.code_m[RingSlot(i)] = o.pseudorange_m - track.origin_m - track.model_sum_m - code_shift_m;
    s.real |= bit, s.known |= bit;
    if (o.loss_of_lock & kLossOfLock) s.lost_lock |= bit;
    if (o.loss_of_lock & kHalfCycle) s.half_cycle |= bit;
  }
}

void SatelliteIntake::Append(const ClockSums& clock, const Vector3& shift_m, double shift_doubt_m,
                             double reset_s, double code_shift_m, double interval_s) {
  const bool first = track.next == track.first || last_number_ < 0;
  StepState step;
  step.time_ns = time_ns_;
  step.epoch = number_;
  if (range_.valid) {
    step.sin_elevation = std::max(range_.sin_elevation, kMinSinElevation);
    step.elevation_rad = std::asin(std::clamp(range_.sin_elevation, -1.0, 1.0));
  }
  const double mapping = range_.valid ? RoughMapping(range_.sin_elevation) : kAbsent;
  if (first) {
    step.broken = true;
    track.origin_m = travel_code_m_;
  } else {
    step.dt_s = SecondsBetween(time_ns_, last_time_ns_);
    step.gap = step.dt_s > kGapFactor * interval_s;
    step.modelled = step_modelled_;
    step.shift_doubt_m = shift_doubt_m;
    step.clock_known = clock.unknown == clock_.unknown;
    double change = clock.metres - clock_.metres;
    if (step_modelled_) change += range_change_m_;
    for (std::size_t k = 0; k < 3; ++k) change -= range_.line_of_sight[k] * shift_m[k];
    if (reset_s != 0) {
      const double rate = std::isfinite(last_phase_change_m_) ? last_phase_change_m_ / step.dt_s : 0;
      change += reset_s * (kLightSpeed_m_s - rate);
    }
    track.model_sum_m += change;
    const double mapping_change = mapping - last_mapping_;
    if (std::isfinite(mapping_change))
      step.troposphere_change_m = std::fabs(kZenithTroposphere_m * mapping_change);
  }
  last_mapping_ = mapping;
  clock_ = clock;
  StoreSignals(code_shift_m);
  track.At(track.next) = step;
  ++track.next;
  if (!first) FitRates(track, track.next - 1);
}

}  // namespace orsolva_host::analysis
