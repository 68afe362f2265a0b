#include "host/judging/selected_epochs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "host/judging/selection_texts.h"
#include "host/rinex/civil_time.h"
#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"

namespace orsolva_host {
namespace {

constexpr std::int64_t kDay_ns = 86400 * kNanosecondsPerSecond;
constexpr std::int64_t kMinTolerance_ns = 5'000'000;
constexpr std::int64_t kMaxTolerance_ns = kNanosecondsPerSecond / 2;

std::int64_t Nanoseconds(double seconds) { return std::llround(seconds * 1e9); }

/// The header's interval as it is after sampling; absent where the two do not divide.
std::optional<double> IntervalAfter(double sampling_s, const std::optional<double>& interval_s) {
  if (!interval_s || *interval_s >= sampling_s) return interval_s;
  constexpr double kWhole = 1e-6;
  const double steps = sampling_s / *interval_s;
  if (std::fabs(steps - std::nearbyint(steps)) > kWhole) return std::nullopt;
  return sampling_s;
}

}  // namespace

SelectedEpochs::SelectedEpochs(EpochSource& source, const EpochSelection& selection, Diagnostics& diagnostics)
    : source_(source),
      selection_(selection),
      diagnostics_(diagnostics),
      header_(source.Header()),
      seen_(selection.signals.size()) {
  if (selection.sampling_s) {
    header_.interval_s = IntervalAfter(*selection.sampling_s, header_.interval_s);
    sampling_ns_ = Nanoseconds(*selection.sampling_s);
  }
  // What the header states of the whole file does not hold for a part of it.
  header_.first_epoch.reset();
  header_.last_epoch.reset();
}

void SelectedEpochs::Begin(std::int64_t first_ns) {
  first_ns_ = first_ns;
  const std::int64_t day_ns = first_ns - first_ns % kDay_ns;
  const auto on_day = [day_ns](const std::optional<TimeLimit>& limit) {
    std::optional<std::int64_t> time_ns;
    if (limit) time_ns = limit->time_ns + (limit->of_first_day ? day_ns : 0);
    return time_ns;
  };
  start_ns_ = on_day(selection_.start);
  end_ns_ = on_day(selection_.end);
  // From an evening to a morning.
  if (start_ns_ && end_ns_ && selection_.end->of_first_day) {
    while (*end_ns_ <= *start_ns_) *end_ns_ += kDay_ns;
  }
}

bool SelectedEpochs::IsInSpan(std::int64_t time_ns) const {
  return (!start_ns_ || time_ns >= *start_ns_) && (!end_ns_ || time_ns < *end_ns_);
}

bool SelectedEpochs::IsOnGrid(std::int64_t time_ns) {
  if (sampling_ns_ == 0) return true;
  const std::int64_t tolerance_ns = std::clamp(shortest_step_ns_ / 2, kMinTolerance_ns, kMaxTolerance_ns);
  const std::int64_t number = (time_ns + sampling_ns_ / 2) / sampling_ns_;
  const bool near = std::abs(time_ns - number * sampling_ns_) < tolerance_ns;
  if (!near || number == grid_number_) return false;
  grid_number_ = number;
  return true;
}

void SelectedEpochs::KeepFlags(const ObservationEpoch& skipped) {
  events_ |= skipped.events;
  for (const SatelliteObservation& satellite : skipped.satellites) {
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      const SignalObservation& o = skipped.signals[satellite.first_signal + k];
      if ((o.loss_of_lock & kLossOfLock) != 0)
        lost_lock_.insert({satellite.id, o.code.band, o.code.attribute});
    }
  }
}

void SelectedEpochs::ReturnFlags(ObservationEpoch& taken) {
  taken.events |= events_;
  events_ = 0;
  if (lost_lock_.empty()) return;
  for (const SatelliteObservation& satellite : taken.satellites) {
    for (std::size_t k = 0; k < satellite.signal_count; ++k) {
      SignalObservation& o = taken.signals[satellite.first_signal + k];
      if (std::isnan(o.phase_cycles)) continue;
      if (lost_lock_.erase({satellite.id, o.code.band, o.code.attribute}) > 0) o.loss_of_lock |= kLossOfLock;
    }
  }
}

/// The signals that stay move to the front of their satellite's.
void SelectedEpochs::KeepChosen(ObservationEpoch& full) {
  if (selection_.signals.empty()) return;
  for (SatelliteObservation& satellite : full.satellites) {
    const auto begin = full.signals.begin() + static_cast<std::ptrdiff_t>(satellite.first_signal);
    const auto end = begin + static_cast<std::ptrdiff_t>(satellite.signal_count);
    const auto is_out = [&](const SignalObservation& o) {
      for (std::size_t i = 0; i < seen_.size(); ++i)
        seen_[i] = seen_[i] || selection_.signals[i].Has(satellite.id.system, o.code);
      return !IsChosen(selection_.signals, satellite.id.system, o.code);
    };
    satellite.signal_count = static_cast<std::size_t>(std::remove_if(begin, end, is_out) - begin);
  }
  const auto is_empty = [](const SatelliteObservation& satellite) { return satellite.signal_count == 0; };
  full.satellites.erase(std::remove_if(full.satellites.begin(), full.satellites.end(), is_empty),
                        full.satellites.end());
}

void SelectedEpochs::KeepChosen(ObsEpoch_QC_gbt& epoch) const {
  if (selection_.signals.empty()) return;
  std::uint32_t satellites = 0;
  for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
    Satellite_gbt satellite = epoch.sats[i];
    const int slot = SystemSlotOfCode(satellite.sys);
    const char letter = slot < 0 ? ' ' : kSystemTable[slot].letter;
    std::uint32_t kept = 0;
    for (std::uint32_t k = 0; k < satellite.signal_num; ++k) {
      const std::string_view name = SignalName(satellite.sys, satellite.signals[k].code);
      if (name.size() == 2 && IsChosen(selection_.signals, letter, {name[0], name[1]}))
        satellite.signals[kept++] = satellite.signals[k];
    }
    std::fill(satellite.signals + kept, satellite.signals + satellite.signal_num, Signal_QC_gbt{});
    satellite.signal_num = kept;
    if (kept > 0) epoch.sats[satellites++] = satellite;
  }
  epoch.sat_num = satellites;
}

bool SelectedEpochs::Next(ObsEpoch_QC_gbt& epoch, ObservationEpoch& full) {
  while (source_.Next(epoch, full)) {
    const std::int64_t time_ns = full.time_ns;
    if (!first_ns_) Begin(time_ns);
    const std::int64_t step_ns = last_ns_ ? std::abs(time_ns - *last_ns_) : 0;
    if (step_ns > 0)
      shortest_step_ns_ = shortest_step_ns_ == 0 ? step_ns : std::min(shortest_step_ns_, step_ns);
    last_ns_ = last_ns_ ? std::max(*last_ns_, time_ns) : time_ns;
    const bool in_span = IsInSpan(time_ns);
    if (in_span && IsOnGrid(time_ns)) {
      ReturnFlags(full);
      KeepChosen(full);
      KeepChosen(epoch);
      return true;
    }
    ++left_out_;
    if (in_span) KeepFlags(full);
  }
  NoteUnseen();
  return false;
}

void SelectedEpochs::NoteUnseen() {
  for (std::size_t i = 0; i < seen_.size(); ++i) {
    if (seen_[i]) continue;
    diagnostics_.Add(Name(), 0,
                     "no epoch taken holds the signal " + TextOf(ChosenSignals{selection_.signals[i]}) +
                         " that was asked for");
  }
  std::fill(seen_.begin(), seen_.end(), true);
}

std::string SelectedEpochs::NothingFound() const {
  if (!first_ns_) return source_.NothingFound();
  return fmt::format("no epoch lies in the time and on the grid asked for; the data go from {} to {} GPST.",
                     TimeText(TimeOfNanoseconds(*first_ns_)), TimeText(TimeOfNanoseconds(*last_ns_)));
}

ReportSelection SelectedEpochs::Facts() const {
  ReportSelection facts;
  if (start_ns_) facts.start = TimeOfNanoseconds(*start_ns_);
  if (end_ns_) facts.end = TimeOfNanoseconds(*end_ns_);
  facts.sampling_s = selection_.sampling_s;
  facts.signals = TextOf(selection_.signals);
  facts.epochs_left_out = left_out_;
  return facts;
}

}  // namespace orsolva_host
