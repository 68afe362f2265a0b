#include "host/analysis/figures/receiver_clock_figures.h"

#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr Count kMinPairs = 10;
constexpr Count kMinOffsets = 10;
constexpr Count kPartsAway = 100;  // one offset in so many may be far
constexpr double kSteered_s = 1e-6;
constexpr double kMinSpan_s = 300;  // in which an oscillator of a receiver that is left alone goes farther
constexpr double kSameInterval = 0.01;

}  // namespace

void AllanSum::Add(double frequency) {
  sum_ += frequency;
  if (++gathered_ < steps_) return;
  const double mean = sum_ / steps_;
  if (last_) {
    squares_ += (mean - *last_) * (mean - *last_);
    ++pairs_;
  }
  last_ = mean;
  gathered_ = 0;
  sum_ = 0;
}

void AllanSum::Break() {
  last_.reset();
  gathered_ = 0;
  sum_ = 0;
}

std::optional<double> AllanSum::Deviation() const {
  if (pairs_ < kMinPairs) return std::nullopt;
  return std::sqrt(squares_ / static_cast<double>(pairs_) / 2);
}

void ReceiverClockSums::AddOffset(std::int64_t time_ns, double clock_m) {
  if (!std::isfinite(clock_m)) return;
  const double offset_s = clock_m / kLightSpeed_m_s;
  if (offsets_ == 0) {
    first_offset_s_ = offset_s;
    first_offset_ns_ = time_ns;
  }
  last_offset_ns_ = time_ns;
  offset_sum_s_ += offset_s;
  ++offsets_;
  if (std::fabs(offset_s - first_offset_s_) <= kSteered_s) ++near_offsets_;
}

void ReceiverClockSums::AddStep(std::int64_t time_ns, const ReceiverStep& step) {
  const double dt_s = last_ns_ ? SecondsBetween(time_ns, *last_ns_) : 0;
  const bool known = last_ns_ && step.clock_known && !step.clock_reset;
  last_ns_ = time_ns;
  ++steps_;
  if (!known) {
    at_interval_.Break();
    at_ten_.Break();
    return;
  }
  const double change_s = step.clock_change_m / kLightSpeed_m_s;
  change_sum_s_ += change_s;
  time_sum_s_ += dt_s;
  if (std::fabs(dt_s - interval_s_) > kSameInterval * interval_s_) {
    at_interval_.Break();
    at_ten_.Break();
    return;
  }
  at_interval_.Add(change_s / dt_s);
  at_ten_.Add(change_s / dt_s);
}

void ReceiverClockSums::AddEvent(const Event& event) {
  if (event.kind == EventKind::kReceiverClockReset) ++resets_;
  if (event.kind == EventKind::kCodeClockJump) ++code_jumps_;
  if (event.kind == EventKind::kReceiverRestart) ++restarts_;
}

void ReceiverClockSums::FillIn(ReceiverClockFigures& figures) const {
  if (steps_ < 2) return;
  figures.resets = resets_;
  figures.code_clock_jumps = code_jumps_;
  figures.restarts = restarts_;
  if (time_sum_s_ > 0) figures.drift_s_per_s = change_sum_s_ / time_sum_s_;
  figures.allan_deviation = at_interval_.Deviation();
  figures.allan_deviation_10 = at_ten_.Deviation();
  if (offsets_ < kMinOffsets) return;
  figures.mean_offset_s = offset_sum_s_ / static_cast<double>(offsets_);
  if (SecondsBetween(last_offset_ns_, first_offset_ns_) < kMinSpan_s) return;
  figures.steered = resets_ + code_jumps_ == 0 && kPartsAway * (offsets_ - near_offsets_) <= offsets_;
}

}  // namespace orsolva_host::analysis
