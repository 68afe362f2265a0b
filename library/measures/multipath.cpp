#include "measures/multipath.h"

#include <cmath>
#include <cstring>

#include "toolkit/constants.h"

namespace orsolva {
namespace {

using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::kSpeedOfLight;

bool Present(double value) { return value > kPresenceLimit; }

bool Complete(const PairSignals& signals, const CodeObservation& code, const CodeObservation& partner) {
  return Present(code.Pseudorange) && Present(code.Phase) && Present(partner.Phase) &&
         Present(partner.Pseudorange) && Present(signals.CodeWavelength) &&
         Present(signals.PartnerWavelength);
}

double GpsThreshold(int band) {
  if (band == 1 || band == 5) return 5.5;
  return band == 2 ? 5.75 : 0.0;
}

double GlonassThreshold(int band) {
  if (band == 1 || band == 3) return 5.6;
  return band == 2 ? 6.25 : 0.0;
}

double BdsThreshold(int band) {
  // Kept for compatibility: bands 8 and 36 have no row, so that every step of their residual restarts.
  return band == 1 || band == 5 || band == 6 || band == 7 || band == 21 || band == 27 ? 5.4 : 0.0;
}

double GalileoThreshold(int band) { return band == 1 || (band >= 5 && band <= 8) ? 5.4 : 0.0; }

double QzssThreshold(int band) {
  if (band == 1 || band == 5 || band == 6) return 5.5;
  return band == 2 ? 5.75 : 0.0;
}

RestartReason ReasonFor(bool gap, bool slip, bool jump) {
  if (gap) return RestartReason::kGap;
  if (slip) return RestartReason::kIonosphereSlip;
  return jump ? RestartReason::kJump : RestartReason::kNone;
}

}  // namespace

void MovingWindow::Push(double value, int length) {
  if (count_ > 0 && count_ >= length) {
    ++start_;
    --count_;
  }
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

void MovingWindow::Fill(double value) {
  for (int i = 0; i < count_; ++i) values_[start_ + i] = value;
}

void MovingWindow::SetNewest(double value) {
  if (count_ > 0) values_[start_ + count_ - 1] = value;
}

bool MpCoefficients(double f_i, double f_j, double f_k, int band_j, int band_k,
                    MpCoefficientSet& coefficients) {
  coefficients = MpCoefficientSet();
  if (band_j == band_k) return false;
  const double i2 = f_i * f_i;
  const double j2 = f_j * f_j;
  const double k2 = f_k * f_k;
  coefficients.C0 = 1.0;
  coefficients.C1 = -(j2 * (i2 + k2)) / ((j2 - k2) * i2);
  coefficients.C2 = k2 * (i2 + j2) / ((j2 - k2) * i2);
  return true;
}

double MpValue(double pseudorange, double phase_a, double phase_b, double lambda_a, double lambda_b,
               const MpCoefficientSet& coefficients) {
  return coefficients.C0 * pseudorange + coefficients.C1 * phase_a * lambda_a +
         coefficients.C2 * phase_b * lambda_b;
}

bool MpJumpThreshold(int system, int band, double& threshold) {
  switch (system) {
    case gnssqctoolkit::kGps:
      threshold = GpsThreshold(band);
      return true;
    case gnssqctoolkit::kGlonass:
      threshold = GlonassThreshold(band);
      return true;
    case gnssqctoolkit::kBds:
      threshold = BdsThreshold(band);
      return true;
    case gnssqctoolkit::kGalileo:
      threshold = GalileoThreshold(band);
      return true;
    case gnssqctoolkit::kQzss:
      threshold = QzssThreshold(band);
      return true;
    default:
      threshold = 0.0;
      return false;
  }
}

bool UpdateMultipath(AbsoluteMp& state, const PairSignals& signals, const AbsoluteTime& epoch,
                     const CodeObservation& code, const CodeObservation& partner, bool slip, bool counting,
                     MultipathStep* step) {
  double threshold = 0.0;
  if (!MpJumpThreshold(signals.System, signals.CodeBand, threshold)) return false;
  state.Code = code.Code;
  state.Partner = partner.Code;
  if (!Complete(signals, code, partner)) return false;
  const double f_a = kSpeedOfLight / signals.CodeWavelength;
  const double f_b = kSpeedOfLight / signals.PartnerWavelength;
  MpCoefficientSet coefficients;
  if (!MpCoefficients(f_a, f_a, f_b, signals.CodeBand, signals.PartnerBand, coefficients)) return false;

  const bool first = !IsSet(state.LastEpoch);
  const bool gap = !first && std::fabs(gnssqctoolkit::TimeDifference(epoch, state.LastEpoch)) > kArcGap;
  const double m = MpValue(code.Pseudorange, code.Phase, partner.Phase, signals.CodeWavelength,
                           signals.PartnerWavelength, coefficients);
  state.Values.Push(m, state.WindowLength);
  double r = m - state.Values.Mean();
  state.Residuals.Push(r, state.WindowLength);
  const bool jump = std::fabs(state.Residuals.Mean() - r) > threshold;
  const bool restart = jump || slip || gap;
  if (restart) {
    r = 0.0;
    state.Residuals.SetNewest(0.0);
    state.Values.Fill(m);
    // A data gap restarts silently: only jumps and slips are events.
    if (counting && !gap) state.RestartTimes.Append(FromAbsolute(epoch));
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
