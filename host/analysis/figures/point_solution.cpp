#include "host/analysis/figures/point_solution.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/analysis/numeric/robust.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kRounds = 3;
constexpr double kMinLimit_m = 5;
constexpr double kLimitMedians = 2;
constexpr double kGlonassWeight = 0.25;
constexpr double kMaxPdop = 30;
constexpr int kMinRedundant = 4;  // three unknowns, and one more to see an error by

/// Symmetric 3 by 3 matrix: xx, xy, xz, yy, yz, zz.
struct Symmetric {
  std::array<double, 6> a = {};
  void Add(const Vector3& d, double weight) {
    a[0] += weight * d[0] * d[0], a[1] += weight * d[0] * d[1], a[2] += weight * d[0] * d[2];
    a[3] += weight * d[1] * d[1], a[4] += weight * d[1] * d[2], a[5] += weight * d[2] * d[2];
  }
  /// Adjugate, and its determinant. The inverse is their quotient.
  Symmetric Adjugate() const {
    return {{a[3] * a[5] - a[4] * a[4], a[2] * a[4] - a[1] * a[5], a[1] * a[4] - a[2] * a[3],
             a[0] * a[5] - a[2] * a[2], a[1] * a[2] - a[0] * a[4], a[0] * a[3] - a[1] * a[1]}};
  }
  Vector3 Times(const Vector3& v) const {
    return {a[0] * v[0] + a[1] * v[1] + a[2] * v[2], a[1] * v[0] + a[3] * v[1] + a[4] * v[2],
            a[2] * v[0] + a[4] * v[1] + a[5] * v[2]};
  }
  double Trace() const { return a[0] + a[3] + a[5]; }
  double Determinant(const Symmetric& adjugate) const {
    return a[0] * adjugate.a[0] + a[1] * adjugate.a[1] + a[2] * adjugate.a[2];
  }
};

/// Weighted means of one system.
struct Mean {
  double weight = 0;
  Vector3 sight = {};
  double value = 0;
};

class Solver {
 public:
  explicit Solver(const std::vector<CodeSample>& samples) : samples_(samples) {
    weights_.resize(samples.size());
    residuals_.resize(samples.size());
  }

  std::optional<PointSolution> Solve() {
    if (!StartFromMedians()) return std::nullopt;
    for (int round = 0; round < kRounds; ++round) {
      WeighByResiduals();
      if (!SolveOnce()) return std::nullopt;
    }
    return Judged();
  }

 private:
  /// Residuals off the median of each system. @return whether the satellites are enough
  bool StartFromMedians() {
    int redundant = 0;
    for (std::size_t clock = 0; clock < kClockSystems; ++clock) {
      scratch_.clear();
      for (const CodeSample& s : samples_) {
        if (s.clock == clock) scratch_.push_back(s.code_less_range_m);
      }
      if (scratch_.empty()) continue;
      redundant += static_cast<int>(scratch_.size()) - 1;
      const double median = UpperMedian(scratch_);
      for (std::size_t i = 0; i < samples_.size(); ++i) {
        if (samples_[i].clock == clock) residuals_[i] = samples_[i].code_less_range_m - median;
      }
    }
    return redundant >= kMinRedundant;
  }

  void WeighByResiduals() {
    scratch_.clear();
    for (const double r : residuals_) scratch_.push_back(std::fabs(r));
    limit_m_ = std::max(kMinLimit_m, kLimitMedians * UpperMedian(scratch_));
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      const CodeSample& s = samples_[i];
      const double system = s.clock == ClockPlace('R') ? kGlonassWeight : 1;
      const double off = std::max(1.0, std::fabs(residuals_[i]) / limit_m_);
      weights_[i] = system * s.sin_elevation * s.sin_elevation / (off * off);
    }
  }

  double Straightened(const CodeSample& s) const {
    const double along = Dot(s.line_of_sight, shift_m_);
    return s.code_less_range_m - (Dot(shift_m_, shift_m_) - along * along) / (2 * s.range_m);
  }

  bool SolveOnce() {
    std::array<Mean, kClockSystems> means;
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      const CodeSample& s = samples_[i];
      Mean& m = means[s.clock];
      m.weight += weights_[i];
      m.value += weights_[i] * Straightened(s);
      for (std::size_t k = 0; k < 3; ++k) m.sight[k] += weights_[i] * s.line_of_sight[k];
    }
    for (Mean& m : means) {
      if (!(m.weight > 0)) continue;
      m.value /= m.weight;
      for (double& x : m.sight) x /= m.weight;
    }
    Symmetric normal;
    Vector3 right = {};
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      const CodeSample& s = samples_[i];
      const Mean& m = means[s.clock];
      const Vector3 d = Off(s, m);
      const double value = Straightened(s) - m.value;
      normal.Add(d, weights_[i]);
      for (std::size_t k = 0; k < 3; ++k) right[k] -= weights_[i] * d[k] * value;
    }
    const Symmetric adjugate = normal.Adjugate();
    const double determinant = normal.Determinant(adjugate);
    if (!(determinant > 0)) return false;
    // The values are straightened by the shift before this one.
    std::vector<double>& values = scratch_;
    values.clear();
    for (const CodeSample& s : samples_) values.push_back(Straightened(s));
    shift_m_ = adjugate.Times(right);
    for (double& x : shift_m_) x /= determinant;
    for (std::size_t clock = 0; clock < kClockSystems; ++clock) {
      clock_m_[clock] = means[clock].weight > 0 ? means[clock].value + Dot(means[clock].sight, shift_m_)
                                                : std::numeric_limits<double>::quiet_NaN();
    }
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      residuals_[i] = values[i] - clock_m_[samples_[i].clock] + Dot(samples_[i].line_of_sight, shift_m_);
    }
    return true;
  }

  static Vector3 Off(const CodeSample& s, const Mean& m) {
    return {s.line_of_sight[0] - m.sight[0], s.line_of_sight[1] - m.sight[1],
            s.line_of_sight[2] - m.sight[2]};
  }

  /// Takes what lies within the limit for residuals and PDOP.
  std::optional<PointSolution> Judged() const {
    PointSolution solution;
    solution.shift_m = shift_m_;
    solution.clock_m = clock_m_;
    std::array<Mean, kClockSystems> means;
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      if (std::fabs(residuals_[i]) > limit_m_) continue;
      Mean& m = means[samples_[i].clock];
      m.weight += 1;
      for (std::size_t k = 0; k < 3; ++k) m.sight[k] += samples_[i].line_of_sight[k];
      solution.sum_of_squares_m2 += residuals_[i] * residuals_[i];
      ++solution.used;
    }
    for (Mean& m : means) {
      for (double& x : m.sight) x /= std::max(m.weight, 1.0);
    }
    Symmetric normal;
    for (std::size_t i = 0; i < samples_.size(); ++i) {
      if (std::fabs(residuals_[i]) <= limit_m_) normal.Add(Off(samples_[i], means[samples_[i].clock]), 1);
    }
    const Symmetric adjugate = normal.Adjugate();
    const double determinant = normal.Determinant(adjugate);
    if (!(determinant > 0) || 2 * solution.used < samples_.size()) return std::nullopt;
    solution.pdop = std::sqrt(adjugate.Trace() / determinant);
    if (!(solution.pdop < kMaxPdop)) return std::nullopt;
    return solution;
  }

  const std::vector<CodeSample>& samples_;
  std::vector<double> weights_, residuals_, scratch_;
  Vector3 shift_m_ = {};
  std::array<double, kClockSystems> clock_m_ = {};
  double limit_m_ = 0;
};

}  // namespace

std::size_t ClockPlace(char system) {
  switch (system) {
    case 'G':
    case 'J':
      return 0;
    case 'R':
      return 1;
    case 'E':
      return 2;
    case 'C':
      return 3;
    default:
      return kClockSystems;
  }
}

std::optional<PointSolution> SolvePoint(const std::vector<CodeSample>& samples) {
  return Solver(samples).Solve();
}

}  // namespace orsolva_host::analysis
