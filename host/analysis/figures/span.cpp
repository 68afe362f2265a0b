#include "host/analysis/figures/span.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orsolva_host::analysis {
namespace {

constexpr int kSatellitesOfUsable = 4;
constexpr Count kFirstSteps = 16;
constexpr std::int64_t kAlike = 50;  // steps that differ by a fiftieth make one run

/// Whole intervals in a time, rounded to the nearest.
std::int64_t Intervals(std::int64_t time_ns, std::int64_t interval_ns) {
  return interval_ns > 0 ? (time_ns + interval_ns / 2) / interval_ns : 1;
}

bool HasTwoBands(const ObservationEpoch& epoch, const SatelliteObservation& satellite) {
  char first = ' ';
  for (std::size_t i = 0; i < satellite.signal_count; ++i) {
    const SignalObservation& o = epoch.signals[satellite.first_signal + i];
    if (std::isnan(o.pseudorange_m) || std::isnan(o.phase_cycles)) continue;
    if (first == ' ') first = o.code.band;
    if (o.code.band != first) return true;
  }
  return false;
}

}  // namespace

bool HasObservation(const ObservationEpoch& epoch) {
  return std::any_of(epoch.signals.begin(), epoch.signals.end(), [](const SignalObservation& o) {
    return !std::isnan(o.pseudorange_m) || !std::isnan(o.phase_cycles) || !std::isnan(o.doppler_hz) ||
           !std::isnan(o.snr_dbhz);
  });
}

bool IsUsable(const ObservationEpoch& epoch) {
  int satellites = 0;
  for (const SatelliteObservation& satellite : epoch.satellites) satellites += HasTwoBands(epoch, satellite);
  return satellites >= kSatellitesOfUsable;
}

std::int64_t NominalSteps::Add(std::int64_t time_ns, std::int64_t interval_ns) {
  const std::int64_t n = nominal_ns_ ? Intervals(time_ns - *nominal_ns_, interval_ns) : 1;
  if (n > 0) nominal_ns_ = time_ns;
  return n;
}

bool Span::GoesOn(const Run& run, std::int64_t step_ns, bool present) const {
  return run.present == present && std::abs(step_ns - run.step_ns) <= run.step_ns / kAlike;
}

void Span::Begin(double interval_s) {
  first_interval_ns_ = static_cast<std::int64_t>(std::llround(interval_s * 1e9));
}

void Span::FindNominalStep(std::int64_t time_ns) {
  const bool early = first_interval_ns_ > 0 && steps_seen_ < kFirstSteps;
  const std::int64_t interval_ns = early ? first_interval_ns_ : interval_.Nanoseconds();
  nominal_step_ = steps_.Add(time_ns, interval_ns);
}

void Span::Add(const ObservationEpoch& epoch) {
  const bool present = HasObservation(epoch);
  const bool usable = present && IsUsable(epoch);
  const std::int64_t step_ns = last_ns_ ? epoch.time_ns - *last_ns_ : 0;
  last_ns_ = epoch.time_ns;
  if (step_ns > 0) ++steps_seen_;
  kind_ = kinds_.Of(step_ns);
  interval_.Add(step_ns);
  FindNominalStep(epoch.time_ns);
  const bool fresh = runs_.empty() || runs_.size() == 1 || !GoesOn(runs_.back(), step_ns, present);
  overflows_now_ = !overflown_ && fresh && runs_.size() == kMaxRuns;
  overflown_ = overflown_ || overflows_now_;
  if (overflown_) {
    later_nominal_ += static_cast<Count>(nominal_step_);
    later_present_ += nominal_step_ > 0 && present;
    later_usable_ += nominal_step_ > 0 && usable;
    later_gaps_ += present && (nominal_step_ > 1 || !last_was_present_);
  } else {
    if (fresh) runs_.push_back({step_ns, epoch.time_ns, epoch.time_ns, 0, 0, present, kind_, 0, 0});
    Run& run = runs_.back();
    run.last_ns = epoch.time_ns;
    ++run.epochs;
    run.usable += usable;
    run.steps += static_cast<Count>(nominal_step_);
    run.nominal += nominal_step_ > 0;
  }
  last_was_present_ = present;
}

/// Hands each run with its stretches, at most two, and with the epochs of it that are nominal.
template <typename Take>
void Span::GoThrough(const Take& take) const {
  const std::int64_t interval_ns = interval_.Nanoseconds();
  std::int64_t nominal_ns = 0;
  for (std::size_t i = 0; i < runs_.size(); ++i) {
    const Run& run = runs_[i];
    const std::int64_t each = Intervals(run.step_ns, interval_ns);
    Stretch first = {run.first_ns, 1, 1}, rest;
    if (i > 0 && each == 0) {
      first.last_ns = run.last_ns;
      first.steps = Intervals(run.last_ns - nominal_ns, interval_ns);
      first.present = std::min(static_cast<Count>(first.steps), run.epochs);
    } else if (i > 0) {
      first.steps = std::max<std::int64_t>(Intervals(run.first_ns - nominal_ns, interval_ns), 1);
      rest = {run.last_ns, each * static_cast<std::int64_t>(run.epochs - 1), run.epochs - 1};
    }
    if (first.steps > 0) nominal_ns = run.last_ns;
    take(run, first, rest);
  }
}

bool Span::CountsOtherwise() const {
  if (overflown_ && !overflows_now_) return false;
  bool otherwise = false;
  GoThrough([&](const Run& run, const Stretch& first, const Stretch& rest) {
    otherwise = otherwise || run.steps != static_cast<Count>(first.steps + rest.steps) ||
                run.nominal != first.present + rest.present;
  });
  return otherwise;
}

std::vector<Span::Stretch> Span::Stretches() const {
  std::vector<Stretch> stretches;
  GoThrough([&](const Run& run, Stretch first, Stretch rest) {
    if (!run.present) first.present = rest.present = 0;
    if (first.steps > 0) stretches.push_back(first);
    if (rest.steps > 0) stretches.push_back(rest);
  });
  return stretches;
}

Span::Kinds Span::CountsOfKinds() const {
  Kinds kinds = {};
  GoThrough([&](const Run& run, const Stretch& first, const Stretch& rest) {
    if (!run.present) return;
    kinds[run.kind].epochs += run.epochs;
    kinds[run.kind].nominal += first.present + rest.present;
  });
  return kinds;
}

/// Goes through the runs with the interval of the whole stream.
class Span::Counting {
 public:
  Counting(std::int64_t interval_ns, SpanFigures& figures) : interval_ns_(interval_ns), figures_(figures) {}

  Count nominal = 0, present = 0, usable = 0;

  void Begin(const Run& first) {
    nominal = 1;
    present = first.present;
    usable = first.usable;
    nominal_ns_ = last_present_ns_ = first.first_ns;
    absent_ = !first.present;
  }

  void Take(const Run& run) {
    const std::int64_t each = Intervals(run.step_ns, interval_ns_);
    if (each == 0) return TakeDense(run);
    const std::int64_t to_first =
        std::max<std::int64_t>(Intervals(run.first_ns - nominal_ns_, interval_ns_), 1);
    nominal += static_cast<Count>(to_first) + static_cast<Count>(each) * (run.epochs - 1);
    nominal_ns_ = run.last_ns;
    if (!run.present) {
      absent_ += static_cast<Count>(to_first) + static_cast<Count>(each) * (run.epochs - 1);
      return;
    }
    present += run.epochs;
    usable += run.usable;
    List(last_present_ns_, run.first_ns, absent_ + static_cast<Count>(to_first) - 1);
    ListWithin(run, static_cast<Count>(each) - 1);
    absent_ = 0;
    last_present_ns_ = run.last_ns;
  }

  /// The last nominal epochs held nothing.
  void End(std::int64_t last_ns) { List(last_present_ns_, last_ns, absent_); }

 private:
  /// Steps below half an interval: of epochs denser than the grid those count that fall on it.
  void TakeDense(const Run& run) {
    const std::int64_t all = Intervals(run.last_ns - nominal_ns_, interval_ns_);
    if (all == 0) return;
    const auto on_grid = std::min(static_cast<Count>(all), run.epochs);
    nominal += static_cast<Count>(all);
    nominal_ns_ = run.last_ns;
    if (!run.present) {
      absent_ += static_cast<Count>(all);
      return;
    }
    present += static_cast<Count>(all);
    usable += run.usable * on_grid / run.epochs;
    List(last_present_ns_, run.first_ns, absent_);
    absent_ = 0;
    last_present_ns_ = run.last_ns;
  }

  /// Gaps between the epochs of a run.
  void ListWithin(const Run& run, Count missing) {
    if (missing == 0) return;
    for (Count i = 1; i < run.epochs; ++i) {
      const auto step = static_cast<double>(run.last_ns - run.first_ns) / static_cast<double>(run.epochs - 1);
      const auto at = [&](Count k) {
        return k + 1 == run.epochs ? run.last_ns : run.first_ns + std::llround(static_cast<double>(k) * step);
      };
      List(at(i - 1), at(i), missing);
    }
  }

  void List(std::int64_t last_before_ns, std::int64_t first_after_ns, Count missing) {
    if (missing == 0) return;
    if (figures_.gaps.size() < kMaxGaps) {
      figures_.gaps.push_back({last_before_ns, first_after_ns, missing});
    } else {
      ++figures_.further_gaps;
    }
  }

  std::int64_t interval_ns_;
  SpanFigures& figures_;
  std::int64_t nominal_ns_ = 0;
  std::int64_t last_present_ns_ = 0;
  Count absent_ = 0;  ///< lost nominal epochs since the last present one
};

void Span::FillIn(SpanFigures& figures) const {
  figures.interval_s = static_cast<double>(interval_.Nanoseconds()) / 1e9;
  if (runs_.empty()) return;
  figures.first_ns = runs_.front().first_ns;
  figures.last_ns = *last_ns_;
  Counting counting(interval_.Nanoseconds(), figures);
  counting.Begin(runs_.front());
  for (std::size_t i = 1; i < runs_.size(); ++i) counting.Take(runs_[i]);
  if (!overflown_) counting.End(*last_ns_);
  figures.further_gaps += later_gaps_;
  figures.expected_epochs = counting.nominal + later_nominal_;
  figures.present_epochs = counting.present + later_present_;
  figures.usable_epochs = counting.usable + later_usable_;
  figures.lost_epochs = *figures.expected_epochs - *figures.present_epochs;
}

}  // namespace orsolva_host::analysis
