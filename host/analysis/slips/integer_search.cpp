#include "host/analysis/slips/integer_search.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace orsolva_host::analysis {
namespace {

constexpr std::size_t kBeam = 400;
constexpr std::size_t kNarrowBeam = 24;
constexpr std::size_t kKept = 12;
constexpr double kWide_steps =
    4;  // around the mean of the first band, from which on a narrow beam saves time
constexpr double kWidth_sigma = 4;
constexpr double kMinWidth_cycles = 1;
constexpr double kMaxWidth_cycles = 60;
constexpr double kLargest_cycles =
    1e12;  // beyond, nothing is a slip, and steps of one would be lost in rounding
constexpr double kHalfMustFit_cycles = 0.12;
constexpr double kSingleMustFit_cycles = 1.2;
constexpr double kOneFrequency_hz = 1e3;

double RoundTo(double value, double step) { return std::nearbyint(value / step) * step; }

bool IsHalf(double cycles) {
  const double fraction = std::fabs(cycles) - std::floor(std::fabs(cycles));
  return std::fabs(fraction - 0.5) < 0.1;
}

}  // namespace

std::size_t SlipCandidates::Add(const Cycles& cycles, int count) {
  double mark = 0;  // differs for most different vectors
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
    mark += static_cast<double>(i + 1) * cycles[i];
  std::size_t place = 0;
  for (; place < list_.size(); ++place) {
    if (list_[place].mark == mark &&
        std::equal(cycles.begin(), cycles.begin() + count, list_[place].cycles.begin()))
      return place;
  }
  list_.push_back({cycles, mark});
  return place;
}

const std::vector<std::size_t>& CheapestFirst::Of(const std::vector<double>& costs, std::size_t most) {
  order_.resize(costs.size());
  std::iota(order_.begin(), order_.end(), std::size_t{0});
  const auto end = order_.begin() + static_cast<std::ptrdiff_t>(std::min(most, order_.size()));
  std::partial_sort(order_.begin(), end, order_.end(), [&costs](std::size_t a, std::size_t b) {
    return costs[a] != costs[b] ? costs[a] < costs[b] : a < b;
  });
  order_.erase(end, order_.end());
  return order_;
}

/// Whole offsets within each band, and the bands' means without them.
void IntegerSearch::TieBands(const SatelliteTrack& track, const StepTest& test,
                             const std::array<double, kMaxSignals>& r, double step) {
  bands_.clear();
  std::array<std::size_t, kMaxSignals> reference = {};
  for (std::size_t i = 0; i < static_cast<std::size_t>(test.count); ++i) {
    const SignalTrack& s = track.signals[test.signal[i]];
    std::size_t b = 0;
    while (b < bands_.size() && std::fabs(track.signals[test.signal[reference[b]]].frequency_hz -
                                          s.frequency_hz) > kOneFrequency_hz)
      ++b;
    offset_[i] = 0;
    b = std::min(b, kMaxBands - 1);
    if (b == bands_.size()) {
      reference[b] = i;
      bands_.push_back({s.wavelength_m, s.mu, 0, 0, 0});
    } else {
      const double apart = (r[i] - r[reference[b]]) / s.wavelength_m;
      offset_[i] = RoundTo(apart, step);
      if (IsHalf(offset_[i]) && std::fabs(apart - offset_[i]) > kHalfMustFit_cycles)
        offset_[i] = RoundTo(apart, 1);
    }
    band_of_[i] = static_cast<int>(b);
    bands_[b].mean_m += r[i] - s.wavelength_m * offset_[i];
    bands_[b].noise_m2 += test.noise_m2[i];
    ++bands_[b].signals;
  }
  for (Band& band : bands_) {
    band.mean_m /= band.signals;
    band.noise_m2 /= static_cast<double>(band.signals) * band.signals;
  }
}

/// Rows of L and conditional variances of all bands.
void IntegerSearch::Factorize(const StepTest& test) {
  factor_.clear();
  diagonal_.clear();
  for (std::size_t b = 0; b < bands_.size(); ++b) {
    const Band& band = bands_[b];
    std::array<double, kMaxBands> row = {};
    double variance = test.range_m2 + test.ionosphere_m2 * band.mu * band.mu + band.noise_m2;
    for (std::size_t j = 0; j < b; ++j) {
      double covariance = test.range_m2 + test.ionosphere_m2 * band.mu * bands_[j].mu;
      for (std::size_t k = 0; k < j; ++k) covariance -= row[k] * factor_[j][k] * diagonal_[k];
      row[j] = covariance / diagonal_[j];
      variance -= row[j] * row[j] * diagonal_[j];
    }
    factor_.push_back(row);
    diagonal_.push_back(std::max(variance, 1e-9));
  }
}

/// How many cycles on both sides of the conditional mean are tried.
double IntegerSearch::Width_cycles(std::size_t b) const {
  return std::clamp(kWidth_sigma * std::sqrt(diagonal_[b]) / bands_[b].wavelength_m, kMinWidth_cycles,
                    kMaxWidth_cycles);
}

/// Grows every branch by the next band: whole numbers around the conditional mean.
/// @param most, limit  of the beam, see Grow
void IntegerSearch::Extend(std::size_t b, double step, std::size_t most, double limit) {
  const Band& band = bands_[b];
  const std::array<double, kMaxBands>& row = factor_[b];
  const double variance = diagonal_[b];
  const double width = Width_cycles(b);
  grown_.clear();
  costs_.clear();
  most_ = most;
  too_expensive_ = limit;
  for (std::size_t parent = 0; parent < beam_.size(); ++parent) {
    const Branch& branch = beam_[parent];
    double mean = band.mean_m;
    for (std::size_t j = 0; j < b; ++j) mean -= row[j] * branch.innovation[j];
    const double center = mean / band.wavelength_m;
    if (!(std::fabs(center) < kLargest_cycles)) continue;
    const double reach =
        std::min(width, Reach_m(branch.cost, variance) / band.wavelength_m + step);  // a step for rounding
    const double last = std::floor((center + reach) / step) * step;
    for (double z = std::ceil((center - reach) / step) * step; z <= last + 0.1 * step; z += step) {
      const double innovation = mean - band.wavelength_m * z;
      const double cost = branch.cost + innovation * innovation / variance;
      if (MayStay(cost)) grown_.push_back({parent, z, innovation, cost});
    }
  }
  KeepCheapestGrown(b);
}

/// Innovations beyond this make a branch too expensive for the beam; 0 where it is already.
double IntegerSearch::Reach_m(double cost, double variance) const {
  return std::sqrt(std::max(0.0, too_expensive_ - cost) * variance);
}

/// Whether a branch of this cost may stay in the beam. Hundreds of branches grow from each of the beam where
/// nothing limits the cycles; nearly all are left out here, before they take memory.
bool IntegerSearch::MayStay(double cost) {
  if (!(cost < too_expensive_)) return false;
  costs_.push_back(cost);
  if (costs_.size() >= 2 * most_) FindTooExpensive();
  return true;
}

/// The beam is full with the branches that are cheaper than the first one beyond it.
void IntegerSearch::FindTooExpensive() {
  if (costs_.size() <= most_) return;
  std::nth_element(costs_.begin(), costs_.begin() + static_cast<std::ptrdiff_t>(most_), costs_.end());
  too_expensive_ = costs_[most_];
  costs_.resize(most_ + 1);
}

void IntegerSearch::KeepCheapestGrown(std::size_t b) {
  FindTooExpensive();
  next_.clear();
  for (const Growth& growth : grown_) {
    if (!(growth.cost < too_expensive_)) continue;
    next_.push_back(beam_[growth.parent]);
    Branch& branch = next_.back();
    branch.cycles[b] = growth.cycles;
    branch.innovation[b] = growth.innovation;
    branch.cost = growth.cost;
  }
  beam_.swap(next_);
}

void IntegerSearch::OfferSingles(const SatelliteTrack& track, const StepTest& test,
                                 const std::array<double, kMaxSignals>& r, SlipCandidates& out) const {
  const auto count = static_cast<std::size_t>(test.count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto own = static_cast<std::size_t>(band_of_[i]);
    const double cycles = r[i] / track.signals[test.signal[i]].wavelength_m;
    const double nearest = std::nearbyint(cycles);
    for (const double z : {nearest, nearest - 1, nearest + 1}) {
      if (z == 0 || !(std::fabs(cycles - z) < kSingleMustFit_cycles)) continue;
      Cycles slip = {};
      slip[i] = z;
      out.Add(slip, test.count);
      if (bands_[own].signals == 1) continue;
      for (std::size_t j = 0; j < count; ++j) slip[j] = band_of_[j] == band_of_[i] ? z : 0;
      out.Add(slip, test.count);
    }
  }
}

/// Grows a beam from nothing through all bands.
/// @param most   branches that it holds
/// @param limit  cost from which on branches are left out
void IntegerSearch::Grow(double step, std::size_t most, double limit) {
  beam_.assign(1, Branch{{}, {}, 0});
  for (std::size_t b = 0; b < bands_.size(); ++b) Extend(b, step, most, limit);
}

void IntegerSearch::CyclesOf(const Branch& branch, int count, Cycles& cycles) const {
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
    cycles[i] = branch.cycles[static_cast<std::size_t>(band_of_[i])] + offset_[i];
}

/// Costs of the grown beam together with the wide lanes.
void IntegerSearch::AddWideLanes(const WideLaneEvidence& wide_lanes, int count) {
  Cycles cycles = {};
  costs_.clear();
  for (const Branch& branch : beam_) {
    CyclesOf(branch, count, cycles);
    costs_.push_back(branch.cost + WideLaneMisfit(wide_lanes, cycles));
  }
}

/// What the last of those kept costs in a narrow beam, and so at most in a wide one that holds them. Branches
/// that cost more without their wide lanes need not be grown.
double IntegerSearch::LimitByNarrowBeam(double step, const WideLaneEvidence& wide_lanes, int count) {
  constexpr double kNone = std::numeric_limits<double>::infinity();
  if (bands_.size() < 2 || Width_cycles(0) < kWide_steps * step) return kNone;
  Grow(step, kNarrowBeam, kNone);
  AddWideLanes(wide_lanes, count);
  if (costs_.size() < kKept) return kNone;
  std::nth_element(costs_.begin(), costs_.begin() + (kKept - 1), costs_.end());
  return std::nextafter(costs_[kKept - 1], kNone);
}

void IntegerSearch::Offer(const SatelliteTrack& track, const StepTest& test,
                          const std::array<double, kMaxSignals>& r, const WideLaneEvidence& wide_lanes,
                          bool halves, SlipCandidates& out) {
  constexpr double kNone = std::numeric_limits<double>::infinity();
  const double step = halves ? 0.5 : 1;
  TieBands(track, test, r, step);
  Factorize(test);
  const double limit = LimitByNarrowBeam(step, wide_lanes, test.count);
  Grow(step, kBeam, limit);
  AddWideLanes(wide_lanes, test.count);
  const auto within = std::count_if(costs_.begin(), costs_.end(), [&](double cost) { return cost < limit; });
  if (limit < kNone && within < static_cast<std::ptrdiff_t>(kKept)) {  // the wide beam lost some of them
    Grow(step, kBeam, kNone);
    AddWideLanes(wide_lanes, test.count);
  }
  Cycles cycles = {};
  for (const std::size_t i : cheapest_.Of(costs_, kKept)) {
    CyclesOf(beam_[i], test.count, cycles);
    out.Add(cycles, test.count);
  }
  OfferSingles(track, test, r, out);
}

}  // namespace orsolva_host::analysis
