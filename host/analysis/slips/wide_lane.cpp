#include "host/analysis/slips/wide_lane.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/geometry/constants.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kLookBack = 20;
constexpr int kMinForSpread = 5;
constexpr double kUnknownSpread = 0.4;  // cycles
constexpr double kModelSigma = 0.05;    // cycles
constexpr double kLargestSigma = 5;
constexpr double kLargestMisfit = 25;

/// Epochs [begin, end) around a step that hang together.
struct Span {
  std::int64_t begin;
  std::int64_t end;
};

Span SpanAround(const SatelliteTrack& track, std::int64_t step) {
  Span span{std::max({track.first, step - kLookBack, track.next - kRing + 1}),
            std::min(track.next, step + kLead + 1)};
  for (std::int64_t i = step - 1; i > span.begin; --i) {
    if (track.At(i).broken) {
      span.begin = i;
      break;
    }
  }
  for (std::int64_t i = step + 1; i < span.end; ++i) {
    if (track.At(i).broken || track.At(i).gap) {
      span.end = i;
      break;
    }
  }
  return span;
}

struct Sample {
  int count = 0;
  double mean = 0;
  double spread = 0;
};

/// Wide lane in cycles over a span of epochs where both phases and codes are known.
Sample WideLane(const SignalTrack& a, const SignalTrack& b, std::int64_t begin, std::int64_t end) {
  const double fa = a.frequency_hz, fb = b.frequency_hz;
  double sum = 0, squares = 0;
  Sample sample;
  double origin = 0;
  for (std::int64_t i = begin; i < end; ++i) {
    if (!a.IsKnown(i) || !b.IsKnown(i)) continue;
    const double phase = (fa * a.X(i) - fb * b.X(i)) / (fa - fb);
    const double code = (fa * a.code_m[RingSlot(i)] + fb * b.code_m[RingSlot(i)]) / (fa + fb);
    const double value = (phase - code) * (fa - fb) / kLightSpeed_m_s;
    if (!std::isfinite(value)) continue;
    if (sample.count == 0) origin = value;
    sum += value - origin;
    squares += (value - origin) * (value - origin);
    ++sample.count;
  }
  if (sample.count == 0) return sample;
  const double mean = sum / sample.count;
  sample.mean = origin + mean;
  sample.spread = std::sqrt(std::max(squares / sample.count - mean * mean, 0.0));
  return sample;
}

bool HasCodes(const SignalTrack& s, const Span& span) {
  for (std::int64_t i = span.begin; i < span.end; ++i) {
    if (std::isfinite(s.code_m[RingSlot(i)])) return true;
  }
  return false;
}

}  // namespace

WideLaneEvidence WideLaneJumps(const SatelliteTrack& track, std::int64_t step, const StepTest& test,
                               double interval_s) {
  WideLaneEvidence evidence;
  const Span span = SpanAround(track, step);
  if (step - span.begin < 1 || span.end - step < 1) return evidence;
  const auto signal = [&](int place) -> const SignalTrack& {
    return track.signals[test.signal[static_cast<std::size_t>(place)]];
  };
  int first = 0;
  while (first < test.count && !HasCodes(signal(first), span)) ++first;
  const double gain = interval_s >= 5 ? 3 : 6;  // codes close in time are correlated
  for (int j = first + 1; j < test.count; ++j) {
    if (signal(j).frequency_hz == signal(first).frequency_hz) continue;
    const Sample before = WideLane(signal(first), signal(j), span.begin, step);
    const Sample after = WideLane(signal(first), signal(j), step, span.end);
    if (before.count < 1 || after.count < 1) continue;
    const double spread = std::max(before.count >= kMinForSpread ? before.spread : kUnknownSpread,
                                   0.08 + 0.04 / track.At(step).sin_elevation);
    const double variance =
        spread * spread * (gain / before.count + gain / after.count) + kModelSigma * kModelSigma;
    evidence.jumps[static_cast<std::size_t>(evidence.count++)] = {
        first, j, after.mean - before.mean, std::min(std::sqrt(variance), kLargestSigma)};
  }
  return evidence;
}

double WideLaneMisfit(const WideLaneEvidence& evidence, const std::array<double, kMaxSignals>& cycles) {
  double sum = 0;
  for (int i = 0; i < evidence.count; ++i) {
    const WideLaneJump& jump = evidence.jumps[static_cast<std::size_t>(i)];
    const double expected =
        cycles[static_cast<std::size_t>(jump.first)] - cycles[static_cast<std::size_t>(jump.second)];
    const double off = (jump.cycles - expected) / jump.sigma;
    sum += std::min(off * off, kLargestMisfit);
  }
  return sum;
}

}  // namespace orsolva_host::analysis
