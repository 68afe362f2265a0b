#include "qc/expected_epochs.h"

#include <algorithm>
#include <cmath>

#include "qc/base/epoch_time.h"

namespace orsolva {

namespace {

constexpr double kCheckStep = 60.0;               // s between two checks of the flag
constexpr double kMaxChecks = 2000.0;             // per step, about a day
constexpr double kLeastSteps = 8.0;               // checked one by one before a bound is asked for
constexpr std::int64_t kCloseChecks = 60;         // checks of a run close to the cut-off
constexpr double kMaxSteps = 4503599627370496.0;  // 2^52
constexpr double kLongestGap = 1.0e12;            // s; anything longer is no gap but a broken clock

std::int64_t Steps(double seconds, double interval) {
  const double steps = std::floor(seconds / interval);
  return steps < kMaxSteps ? static_cast<std::int64_t>(steps) : static_cast<std::int64_t>(kMaxSteps);
}

}  // namespace

NominalGap::NominalGap(const Time_gbt& last, const Time_gbt& current, double interval, QcEleList& elevations)
    : last_(last),
      current_(current),
      interval_(interval),
      elevations_(elevations),
      gap_s_(TimeDifference(current, last)) {}

std::uint64_t NominalGap::CountAboveCutoff() const {
  if (!(interval_ > 0.0) || !(gap_s_ > interval_ / 2.0) || !(gap_s_ < kLongestGap)) return 0;
  if (!(gap_s_ / interval_ <= kLiteralSteps)) return CountRuns();
  return IsWhole() ? CountBetweenSamples() : CountOneByOne();
}

// Whether repeated addition of the interval never rounds.
bool NominalGap::IsWhole() const { return last_.sec == 0.0 && interval_ == std::floor(interval_); }

std::uint64_t NominalGap::CountBetweenSamples() const {
  std::int64_t steps = Steps(gap_s_, interval_);
  while (steps > 0 && !(TimeDifference(current_, WholeNominal(steps)) > interval_ / 2.0)) --steps;
  std::uint64_t count = 0;
  for (std::int64_t k = 1; k <= steps;) {
    Time_gbt until{};
    const bool above = elevations_.AboveCutoffUntil(WholeNominal(k), until);
    const std::int64_t end = std::min(steps, k + Steps(TimeDifference(until, WholeNominal(k)), interval_));
    if (above) count += static_cast<std::uint64_t>(end - k + 1);
    k = end + 1;
  }
  return count;
}

Time_gbt NominalGap::WholeNominal(std::int64_t k) const {
  // Wraps as every sum of times does, whatever the host's times are.
  const auto step = static_cast<std::uint64_t>(interval_) * static_cast<std::uint64_t>(k);
  return {static_cast<std::int64_t>(static_cast<std::uint64_t>(last_.time) + step), 0.0};
}

std::uint64_t NominalGap::CountOneByOne() const {
  std::uint64_t count = 0;
  Time_gbt below_from = last_;
  double below_for = 0.0;
  gnssqctoolkit::AbsoluteTime nominal = gnssqctoolkit::AbsoluteTimeAdd(ToAbsolute(last_), interval_);
  // The count of steps ends it too: an absurdly large fraction does not change when the interval is added.
  for (int k = 0; k <= static_cast<int>(kLiteralSteps); ++k) {
    if (!(TimeDifference(current_, FromAbsolute(nominal)) > interval_ / 2.0)) break;
    const Time_gbt t = FromAbsolute(nominal);
    if (!(TimeDifference(t, below_from) < below_for)) {
      const bool above = elevations_.AboveCutoff(t);
      if (above) ++count;
      const bool pays = !above && TimeDifference(current_, t) > kLeastSteps * interval_;
      below_from = t;
      below_for = pays ? elevations_.BelowCutoffFor(t) : 0.0;
    }
    nominal = gnssqctoolkit::AbsoluteTimeAdd(nominal, interval_);
  }
  return count;
}

std::uint64_t NominalGap::CountRuns() const {
  const double exact_steps = std::ceil(gap_s_ / interval_ - 0.5) - 1.0;
  const auto steps = static_cast<std::int64_t>(std::min(exact_steps, kMaxSteps));
  std::uint64_t count = 0;
  for (std::int64_t first = 1; first <= steps;) {
    const std::int64_t last = std::min(steps, RunEnd(first));
    const std::uint64_t counted = CountRun(first, last);
    count += counted;
    first = last + 1;
    if (counted == 0 && first <= steps) first += SurelyBelow(first);
  }
  return count;
}

// How many nominal epochs from `first` on are certainly below the cut-off: whole checks, so that those behind
// stay where they would have been.
std::int64_t NominalGap::SurelyBelow(std::int64_t first) const {
  const double check_s = static_cast<double>(StepsBetweenChecks()) * interval_;
  const double checks = std::floor(elevations_.BelowCutoffFor(Nominal(first)) / check_s);
  return checks >= 1.0 && checks < kMaxChecks ? static_cast<std::int64_t>(checks) * StepsBetweenChecks() : 0;
}

// Nominal epochs between two checks.
std::int64_t NominalGap::StepsBetweenChecks() const {
  return std::max<std::int64_t>(1, Steps(kCheckStep, interval_));
}

std::int64_t NominalGap::RunEnd(std::int64_t first) const {
  const std::int64_t apart = StepsBetweenChecks();
  const Time_gbt from = Nominal(first);
  Time_gbt covered{};
  const double still = elevations_.StandsStillFor(from);
  if (still > kCheckStep) return first + std::max(apart, Steps(still, interval_)) - 1;
  if (!elevations_.CoveredAtOrAfter(from, covered)) return static_cast<std::int64_t>(kMaxSteps);
  const double ahead = TimeDifference(covered, from);
  if (!(ahead > kCheckStep)) return first + apart - 1;
  // One step short of the coverage: its start is known to a microsecond.
  return first + std::max(apart, Steps(ahead, interval_)) - 1;
}

std::uint64_t NominalGap::CountRun(std::int64_t first, std::int64_t last) const {
  const std::int64_t length = last - first + 1;
  if (length < 3 || !(elevations_.NearCutoff(Nominal(first)) || elevations_.NearCutoff(Nominal(last)))) {
    return CountMonotone(first, last);
  }
  const std::int64_t stride = (length + kCloseChecks - 1) / kCloseChecks;
  std::uint64_t count = 0;
  for (std::int64_t k = first; k <= last; k += stride) {
    count += CountMonotone(k, std::min(last, k + stride - 1));
  }
  return count;
}

std::uint64_t NominalGap::CountMonotone(std::int64_t first, std::int64_t last) const {
  const bool at_first = elevations_.AboveCutoff(Nominal(first));
  if (first == last) return at_first ? 1 : 0;
  const bool at_last = elevations_.AboveCutoff(Nominal(last));
  const auto length = static_cast<std::uint64_t>(last - first + 1);
  if (at_first == at_last) return at_first ? length : 0;
  std::int64_t low = first;  // carries the flag of the first
  std::int64_t high = last;  // carries the flag of the last
  while (high - low > 1) {
    const std::int64_t middle = low + (high - low) / 2;
    (elevations_.AboveCutoff(Nominal(middle)) == at_first ? low : high) = middle;
  }
  return at_first ? static_cast<std::uint64_t>(high - first) : static_cast<std::uint64_t>(last - high + 1);
}

Time_gbt NominalGap::Nominal(std::int64_t k) const {
  const double ahead = static_cast<double>(k) * interval_;
  return FromAbsolute(gnssqctoolkit::AbsoluteTimeAdd(ToAbsolute(last_), ahead));
}

std::uint64_t ExpectedEpochs::Advance(int number, const Time_gbt& epoch, std::uint32_t sequence, bool above,
                                      double interval, QcEleList& elevations) {
  LastCounted& last = last_[number - 1];
  std::uint64_t count = above ? 1 : 0;
  if (last.Set) {
    if (last.Sequence == sequence) return 0;
    count += NominalGap(last.Time, epoch, interval, elevations).CountAboveCutoff();
  }
  last = {epoch, sequence, true};
  return count;
}

}  // namespace orsolva
