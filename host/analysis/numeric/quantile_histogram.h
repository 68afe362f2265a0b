// Quantiles of a stream of values in bounded memory.
#ifndef ORSOLVA_ANALYSIS_NUMERIC_QUANTILE_HISTOGRAM_H
#define ORSOLVA_ANALYSIS_NUMERIC_QUANTILE_HISTOGRAM_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace orsolva_host::analysis {

/// Counts values in equal bins from `low` to `high`; values outside count in the first and last bin.
class QuantileHistogram {
 public:
  QuantileHistogram(double low, double high, std::size_t bins)
      : low_(low), width_((high - low) / static_cast<double>(bins)), bins_(bins, 0) {}

  void Add(double value) {
    const double place = std::floor((value - low_) / width_);
    const double last = static_cast<double>(bins_.size() - 1);
    ++bins_[static_cast<std::size_t>(place > 0 ? (place < last ? place : last) : 0)];
    ++count_;
  }

  std::uint64_t Count() const { return count_; }

  /// The value below which a part of all values lies, by a straight line within its bin; NaN without values.
  double Quantile(double part) const {
    if (count_ == 0) return std::numeric_limits<double>::quiet_NaN();
    const double wanted = part * static_cast<double>(count_);
    std::uint64_t below = 0;
    std::size_t bin = 0;
    while (bin + 1 < bins_.size() && static_cast<double>(below + bins_[bin]) < wanted) below += bins_[bin++];
    const double within =
        bins_[bin] == 0 ? 0 : (wanted - static_cast<double>(below)) / static_cast<double>(bins_[bin]);
    return low_ + width_ * (static_cast<double>(bin) + within);
  }

 private:
  double low_;
  double width_;
  std::vector<std::uint32_t> bins_;
  std::uint64_t count_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_NUMERIC_QUANTILE_HISTOGRAM_H
