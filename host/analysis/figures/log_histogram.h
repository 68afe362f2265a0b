// Quantiles of positive values with a fixed memory.
#ifndef ORSOLVA_ANALYSIS_FIGURES_LOG_HISTOGRAM_H
#define ORSOLVA_ANALYSIS_FIGURES_LOG_HISTOGRAM_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>

namespace orsolva_host::analysis {

/// Counts in eight equal classes per octave from 2^LowExponent to 2^HighExponent; smaller values and zeros
/// fall below the first, larger ones into the last. A quantile is interpolated within its class, which is 6
/// to 12 % wide: for a smooth distribution of hundreds of values it is within 1 % of the exact one.
template <int LowExponent, int HighExponent>
class LogHistogram {
 public:
  /// @param value  not negative, not NaN
  void Add(double value) { Put(ClassOf(value), 1); }
  void Add(const LogHistogram& other) {
    for (std::size_t k = 0; k < kClasses; ++k) Put(k, other.counts_[k]);
  }

  std::uint64_t Count() const { return total_; }

  /// @param part  of the values that are smaller, 0 to 1
  /// @return nothing without values and where the quantile lies below the first class
  std::optional<double> Quantile(double part) const {
    const double rank = part * static_cast<double>(total_);
    double below = 0;
    for (std::size_t k = 0; k < kClasses; ++k) {
      const auto here = static_cast<double>(counts_[k]);
      if (here > 0 && below + here >= rank) {
        if (k == 0) return std::nullopt;
        return LowerEnd(k) + (LowerEnd(k + 1) - LowerEnd(k)) * std::max(rank - below, 0.0) / here;
      }
      below += here;
    }
    return std::nullopt;
  }

 private:
  static constexpr std::size_t kPerOctave = 8;
  static constexpr std::size_t kClasses =
      1 + kPerOctave * static_cast<std::size_t>(HighExponent - LowExponent);
  static_assert(std::numeric_limits<double>::is_iec559, "classes are read off the bits of a double");

  /// Exponent and the first three digits of the mantissa, which follow each other in a double's bits.
  static std::size_t ClassOf(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    constexpr std::int64_t kFirst = (LowExponent + 1023LL) * kPerOctave;
    const std::int64_t place = static_cast<std::int64_t>(bits >> 49) - kFirst + 1;
    return static_cast<std::size_t>(std::clamp<std::int64_t>(place, 0, kClasses - 1));
  }
  static double LowerEnd(std::size_t k) {
    const std::size_t octave = (k - 1) / kPerOctave;
    const double low = LowExponent < 0 ? 1.0 / static_cast<double>(std::uint64_t{1} << -LowExponent)
                                       : static_cast<double>(std::uint64_t{1} << std::max(LowExponent, 0));
    return low * static_cast<double>(std::uint64_t{1} << octave) *
           (1 + static_cast<double>((k - 1) % kPerOctave) / kPerOctave);
  }
  void Put(std::size_t k, std::uint32_t count) {
    counts_[k] += count;
    total_ += count;
  }

  std::array<std::uint32_t, kClasses> counts_ = {};
  std::uint64_t total_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_LOG_HISTOGRAM_H
