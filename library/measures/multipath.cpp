#include "measures/multipath.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orsolva {
namespace {

using gnssqctoolkit::AbsoluteTime;

bool Complete(const PairSignals& signals, const CodeObservation& code, const CodeObservation& partner) {
  return Present(code.Pseudorange) && Present(code.Phase) && Present(partner.Phase) &&
         Present(partner.Pseudorange) && Present(signals.CodeWavelength) &&
         Present(signals.PartnerWavelength);
}

RestartReason ReasonFor(bool gap, bool slip, bool jump) {
  if (gap) return RestartReason::kGap;
  if (slip) return RestartReason::kIonosphereSlip;
  return jump ? RestartReason::kJump : RestartReason::kNone;
}

}  // namespace

void MovingWindow::MakeRoom(int length) {
  if (count_ == 0 || count_ < length) return;
  ++start_;
  --count_;
}

void MovingWindow::Push(double value, int length) {
  MakeRoom(length);
  if (start_ + count_ >= 2 * kMaxMpWindow) {
    std::memmove(values_, values_ + start_, static_cast<std::size_t>(count_) * sizeof(double));
    start_ = 0;
  }
  values_[start_ + count_] = value;
  ++count_;
}

double MovingWindow::Mean() const {
  if (count_ == 0) return 0.0;
  double sum = 0.0;
  for (int i = 0; i < count_; ++i) sum += values_[start_ + i];
  return sum / count_;
}

WindowSums SumBoth(const MovingWindow& first, const MovingWindow& second) {
  constexpr int kTurn = 5;  // of the loop, which would cost as much as the additions
  const int common = std::min(first.Count(), second.Count());
  const double *a = first.Oldest(), *b = second.Oldest();
  WindowSums sums;
  int i = 0;
  for (; i + kTurn <= common; i += kTurn) {
    for (int k = 0; k < kTurn; ++k) {
      sums.First += a[i + k];
      sums.Second += b[i + k];
    }
  }
  for (; i < common; ++i) {
    sums.First += a[i];
    sums.Second += b[i];
  }
  for (int k = common; k < first.Count(); ++k) sums.First += a[k];
  for (int k = common; k < second.Count(); ++k) sums.Second += b[k];
  return sums;
}

void MovingWindow::Fill(double value) {
  for (int i = 0; i < count_; ++i) values_[start_ + i] = value;
}

void MovingWindow::SetNewest(double value) {
  if (count_ > 0) values_[start_ + count_ - 1] = value;
}

double MpValue(double pseudorange, double phase_a, double phase_b, double lambda_a, double lambda_b,
               const MpCoefficientSet& coefficients) {
  return coefficients.C0 * pseudorange + coefficients.C1 * phase_a * lambda_a +
         coefficients.C2 * phase_b * lambda_b;
}

bool UpdateMultipath(AbsoluteMp& state, const PairSignals& signals, const AbsoluteTime& epoch,
                     const CodeObservation& code, const CodeObservation& partner, bool slip, bool counting,
                     MultipathStep* step) {
  if (!signals.HasJumpThreshold) return false;
  state.Code = code.Code;
  state.Partner = partner.Code;
  if (!Complete(signals, code, partner)) return false;
  if (!signals.HasMultipath) return false;

  const bool first = !IsSet(state.LastEpoch);
  const bool gap = !first && std::fabs(gnssqctoolkit::TimeDifference(epoch, state.LastEpoch)) > kArcGap;
  const double m = MpValue(code.Pseudorange, code.Phase, partner.Phase, signals.CodeWavelength,
                           signals.PartnerWavelength, signals.Multipath);
  state.Values.Push(m, state.WindowLength);
  state.Residuals.MakeRoom(state.WindowLength);
  const WindowSums sums = SumBoth(state.Values, state.Residuals);
  double r = m - sums.First / state.Values.Count();
  state.Residuals.Push(r, state.WindowLength);
  const bool jump = std::fabs((sums.Second + r) / state.Residuals.Count() - r) > signals.JumpThreshold;
  const bool restart = jump || slip || gap;
  if (restart) {
    r = 0.0;
    state.Residuals.SetNewest(0.0);
    state.Values.Fill(m);
    // A data gap restarts silently: only jumps and slips are events.
    if (counting && !gap) state.RestartTimes.Push(FromAbsolute(epoch));
  }
  if (counting) {
    state.SumOfSquares += r * r;
    ++state.Count;
  }
  state.LastEpoch = epoch;
  if (step != nullptr) {
    *step = {true, m, r, first && !restart ? RestartReason::kFirstValue : ReasonFor(gap, slip, jump)};
  }
  return restart;
}

}  // namespace orsolva
