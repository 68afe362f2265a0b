#include "host/analysis/slips/receiver_clock.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/analysis/numeric/linear_solve.h"
#include "host/analysis/numeric/robust.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kMinOffsetSteps = 5;
constexpr double kMostDrift_m = 0.2;  // in a step; clocks of satellites wander by up to 0.15 m in 30 s
constexpr double kMinSpread_m = 0.004;
constexpr double kAgreement_m = 0.06;
constexpr std::size_t kMinSatellites = 4;
constexpr std::size_t kMinSatellitesMoving = 6;
constexpr double kMovingSpread_m = 0.03;
constexpr double kShiftDoubt = 3;  // usual GDOP of all systems together, with reweighting
constexpr double kOutlierSpreads = 3;
constexpr double kCluster_m = 0.02;        // half the width of what counts as one clock
constexpr double kMinClusterPart = 0.3;    // of the satellites
constexpr double kClearlyMoreOften = 1.5;  // than the next cluster

double WeightOf(const ClockSample& s) { return 1 / (s.sigma * s.sigma); }

struct Weighted {
  double metres, weight;
};

/// Twice the weighted mean of what lies within three spreads. @param mean  to begin with, a median
double RobustMean(const std::vector<Weighted>& values, double mean) {
  std::vector<double> scratch;
  for (int round = 0; round < 2; ++round) {
    scratch.clear();
    for (const Weighted& v : values) scratch.push_back(std::fabs(v.metres - mean));
    const double limit = kOutlierSpreads * std::max(kSigmaOfMedian * Median(scratch), kMinSpread_m);
    double sum = 0, weights = 0;
    for (const Weighted& v : values) {
      if (!(std::fabs(v.metres - mean) < limit)) continue;
      sum += v.weight * (v.metres - mean);
      weights += v.weight;
    }
    if (weights > 0) mean += sum / weights;
  }
  return mean;
}

/// Finds for each sample what its satellite's clock drifts by against what is common to all. That must be
/// robust: one wrong offset would else move the receiver clock, and with it every other satellite.
void TakeOffsets(std::vector<ClockSample>& samples) {
  std::vector<Weighted> known;
  std::vector<double> metres;
  for (ClockSample& s : samples) {
    s.offset_m = s.offsets->Rate() * s.dt_s;
    if (!std::isfinite(s.offset_m)) continue;
    known.push_back({s.offset_m, WeightOf(s)});
    metres.push_back(s.offset_m);
  }
  const double common = known.empty() ? 0 : RobustMean(known, Median(metres));
  for (ClockSample& s : samples) s.offset_m = std::isfinite(s.offset_m) ? s.offset_m - common : 0;
}

double ClockOf(const std::vector<ClockSample>& samples) {
  std::vector<Weighted> values;
  std::vector<double> metres;
  for (const ClockSample& s : samples) {
    values.push_back({s.metres - s.offset_m, WeightOf(s)});
    metres.push_back(s.metres);
  }
  return RobustMean(values, Median(metres));
}

/// Moves the offsets on by what is left of the samples.
void Learn(const std::vector<ClockSample>& samples, double clock_m) {
  for (const ClockSample& s : samples) {
    const double drift_m = s.metres - clock_m;
    const bool drifts = std::fabs(drift_m - s.offset_m) < kMostDrift_m;
    s.offsets->Push(s.epoch, drifts ? drift_m / s.dt_s : std::numeric_limits<double>::quiet_NaN());
  }
}

/// Residuals of the samples once a clock and their own offsets are taken off.
void Residuals(const std::vector<ClockSample>& samples, double clock_m, std::vector<double>& out) {
  out.clear();
  for (const ClockSample& s : samples) out.push_back(s.metres - clock_m - s.offset_m);
}

double Spread(const std::vector<double>& residuals, std::vector<double>& scratch) {
  scratch.clear();
  for (const double r : residuals) scratch.push_back(std::fabs(r));
  return kSigmaOfMedian * Median(scratch);
}

std::size_t CountWithin(const std::vector<double>& residuals, double limit_m) {
  return static_cast<std::size_t>(
      std::count_if(residuals.begin(), residuals.end(), [&](double r) { return std::fabs(r) < limit_m; }));
}

/// Shift and clock by least squares, reweighted against outliers; residuals are left in `residuals`.
bool SolveShift(const std::vector<ClockSample>& samples, std::array<double, 4>& x,
                std::vector<double>& residuals) {
  std::vector<double> weights;
  for (const ClockSample& s : samples) weights.push_back(WeightOf(s));
  std::vector<double> robust = weights;
  std::vector<double> scratch;
  for (int round = 0; round < 8; ++round) {
    NormalSystem<4> normal(4);
    for (std::size_t i = 0; i < samples.size(); ++i) {
      const Vector3& e = samples[i].line_of_sight;
      normal.Add({-e[0], -e[1], -e[2], 1}, samples[i].metres - samples[i].offset_m, robust[i]);
    }
    if (!normal.Solve(x)) return false;
    residuals.clear();
    for (const ClockSample& s : samples) {
      const Vector3& e = s.line_of_sight;
      residuals.push_back(s.metres - s.offset_m + e[0] * x[0] + e[1] * x[1] + e[2] * x[2] - x[3]);
    }
    const double spread = std::max(Spread(residuals, scratch), 0.003);
    for (std::size_t i = 0; i < samples.size(); ++i) {
      const double off = residuals[i] / (2 * spread);
      robust[i] = weights[i] / (1 + off * off);
    }
  }
  return true;
}

std::optional<ClockChange> SolveMoving(const std::vector<ClockSample>& samples, double spread_m) {
  std::array<double, 4> x = {};
  std::vector<double> residuals, scratch;
  if (samples.size() < kMinSatellitesMoving || !SolveShift(samples, x, residuals)) return std::nullopt;
  const double left = std::max(Spread(residuals, scratch), 0.003);
  const std::size_t agree = CountWithin(residuals, std::max(4 * left, kMovingSpread_m));
  if (left >= spread_m / 3 || agree < std::max<std::size_t>(5, (samples.size() * 6 + 9) / 10))
    return std::nullopt;
  const double doubt = kShiftDoubt * left / std::sqrt(static_cast<double>(agree));
  return ClockChange{x[3], {x[0], x[1], x[2]}, true, doubt};
}

/// Where many satellites slip in one epoch, as when half-cycle ambiguities are resolved together: the clock
/// on which most of the others agree.
/// @param residuals  any clock taken off
/// @return what is left of the clock; absent where none is clearly the largest
std::optional<double> LargestCluster(std::vector<double> residuals) {
  std::sort(residuals.begin(), residuals.end());
  const auto size = [&](std::size_t from) {
    std::size_t end = from;
    while (end < residuals.size() && residuals[end] - residuals[from] <= 2 * kCluster_m) ++end;
    return end - from;
  };
  std::size_t first = 0, most = 0, next = 0;
  for (std::size_t i = 0; i < residuals.size(); ++i) {
    if (size(i) > most) first = i, most = size(i);
  }
  for (std::size_t i = 0; i < residuals.size(); ++i) {
    if (std::fabs(residuals[i] - residuals[first]) > 4 * kCluster_m) next = std::max(next, size(i));
  }
  const double part = static_cast<double>(most) / static_cast<double>(residuals.size());
  if (most < kMinSatellites || part < kMinClusterPart || most < kClearlyMoreOften * next) return std::nullopt;
  double sum = 0;
  for (std::size_t i = first; i < first + most; ++i) sum += residuals[i];
  return sum / static_cast<double>(most);
}

}  // namespace

void ClockOffsets::Push(std::int64_t epoch, double rate_m_s) {
  rates_.Push(rate_m_s);
  epochs_[static_cast<std::size_t>(pushed_)] = epoch;
  pushed_ = pushed_ + 1 == kSteps ? 0 : pushed_ + 1;
}

void ClockOffsets::Drop(std::int64_t epoch) {
  for (int ago = 0; ago < kSteps; ++ago) {
    const int place = (pushed_ - 1 - ago + kSteps) % kSteps;
    if (epochs_[static_cast<std::size_t>(place)] == epoch) return rates_.Forget(ago);
  }
}

double ClockOffsets::Rate() const {
  return rates_.Count() < kMinOffsetSteps ? std::numeric_limits<double>::quiet_NaN()
                                          : Median(rates_.Sorted());
}

std::optional<ClockChange> SolveClock(std::vector<ClockSample>& samples) {
  if (samples.size() < kMinSatellites) return std::nullopt;
  TakeOffsets(samples);
  ClockChange change;
  change.metres = ClockOf(samples);
  std::vector<double> residuals, scratch;
  Residuals(samples, change.metres, residuals);
  const double spread = Spread(residuals, scratch);
  const std::size_t agree = CountWithin(residuals, kAgreement_m);
  const bool known = agree >= 3 && 2 * agree >= samples.size();
  if (spread > kMovingSpread_m) {
    if (const auto moving = SolveMoving(samples, spread)) return moving;
  }
  if (!known) {
    const auto rest = LargestCluster(residuals);
    if (!rest) return std::nullopt;
    change.metres += *rest;
  }
  Learn(samples, change.metres);
  return change;
}

}  // namespace orsolva_host::analysis
