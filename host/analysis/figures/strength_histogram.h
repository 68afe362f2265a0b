// A distribution of signal strengths in bounded memory.
#ifndef ORSOLVA_ANALYSIS_FIGURES_STRENGTH_HISTOGRAM_H
#define ORSOLVA_ANALYSIS_FIGURES_STRENGTH_HISTOGRAM_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace orsolva_host::analysis {

/// Values in bins of 0.25 dB centred on its multiples, from 0 to 63.75 dB-Hz; what is outside counts in the
/// nearest bin. Quantiles are exact for receivers that give multiples of 0.25 dB and within 0.125 dB
/// otherwise.
class StrengthHistogram {
 public:
  static constexpr std::size_t kBins = 256;
  static constexpr double kBin_db = 0.25;

  static std::size_t BinOf(double dbhz) {
    const double bin = dbhz / kBin_db + 0.5;
    return bin < 0 ? 0 : bin >= kBins ? kBins - 1 : static_cast<std::size_t>(bin);
  }
  void Add(std::size_t bin) { ++bins_[bin]; }
  void Add(const StrengthHistogram& other) {
    for (std::size_t i = 0; i < kBins; ++i) bins_[i] += other.bins_[i];
  }
  std::uint64_t Count() const {
    std::uint64_t count = 0;
    for (const std::uint32_t n : bins_) count += n;
    return count;
  }
  /// The least value that has at least a part of all values at or below it.
  /// @return absent with fewer values than asked for
  std::optional<double> Quantile(double part, std::uint64_t least_values) const {
    const std::uint64_t count = Count();
    if (count == 0 || count < least_values) return std::nullopt;
    std::size_t bin = 0;
    for (double below = bins_[0]; below < part * static_cast<double>(count);) below += bins_[++bin];
    return static_cast<double>(bin) * kBin_db;
  }

 private:
  std::array<std::uint32_t, kBins> bins_ = {};
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_STRENGTH_HISTOGRAM_H
