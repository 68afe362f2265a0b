#include "host/rinex/timed_blocks.h"

#include <utility>

#include "host/rinex/civil_time.h"

namespace orsolva_host {
namespace {

constexpr double kLongStep = 1.5;    // of the last step: worth a look ahead
constexpr double kTimesFarther = 5;  // from the wrong time than from the one before
constexpr double kFirstIsWrong_s = 3600;

bool IsEpoch(const EpochBlock& block) { return block.flag <= 1; }

}  // namespace

bool TimedBlocks::Take(ObservationBody& body, const ObservationTypes& types, EpochBlock& block) {
  if (has_ahead_) {
    std::swap(block, ahead_);
    has_ahead_ = false;
    return true;
  }
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
  return body.Next(types, block);
}

/// A failure is thrown when the epoch is asked for.
bool TimedBlocks::LooksAhead(ObservationBody& body, const ObservationTypes& types) {
  if (failure_) return false;
  try {
    has_ahead_ = body.Next(types, ahead_);
  } catch (...) {
    failure_ = std::current_exception();
  }
  return has_ahead_;
}

bool TimedBlocks::IsWrong(const EpochBlock& block) const {
  if (!IsEpoch(ahead_)) return false;
  const double back_s = Difference(block.time, ahead_.time);
  if (!last_) return back_s > kFirstIsWrong_s;
  const double on_s = Difference(ahead_.time, *last_);
  return on_s > 0 && back_s > kTimesFarther * on_s;
}

bool TimedBlocks::Next(ObservationBody& body, const ObservationTypes& types, EpochBlock& block) {
  if (!Take(body, types, block)) return false;
  wrong_ = false;
  if (!IsEpoch(block)) return true;
  const double step_s = last_ ? Difference(block.time, *last_) : 0;
  const bool is_long = !last_ || step_s > kLongStep * step_s_;
  if (is_long && !has_ahead_ && LooksAhead(body, types)) wrong_ = IsWrong(block);
  if (wrong_) return true;
  if (step_s > 0) step_s_ = step_s;
  last_ = block.time;
  return true;
}

}  // namespace orsolva_host
