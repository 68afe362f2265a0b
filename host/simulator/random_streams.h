// Random numbers without state: each value depends only on the seed and its purpose, not on the order or the
// number of the others. Integer arithmetic up to the last step gives the same bits with every compiler.
#ifndef ORSOLVA_SIMULATOR_RANDOM_STREAMS_H
#define ORSOLVA_SIMULATOR_RANDOM_STREAMS_H

#include <cstdint>

namespace orsolva_host {

/// The finaliser of SplitMix64 (Steele, Lea and Flood 2014): mixes 64 bits.
constexpr std::uint64_t Scatter(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15ULL;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
  return x ^ (x >> 31);
}

/// A stream for one purpose, numbered by its owner.
class RandomStream {
 public:
  constexpr explicit RandomStream(std::uint64_t seed) : key_(Scatter(seed)) {}
  constexpr RandomStream Of(std::uint64_t number) const { return RandomStream(key_ ^ Scatter(number), 0); }

  constexpr std::uint64_t Bits(std::uint64_t index) const { return Scatter(key_ + index * kStep); }
  /// In [0, 1).
  double Uniform(std::uint64_t index) const { return static_cast<double>(Bits(index) >> 11) * 0x1p-53; }
  double Between(std::uint64_t index, double low, double high) const {
    return low + (high - low) * Uniform(index);
  }
  /// Mean 0 and standard deviation 1: the sum of twelve uniform numbers of 16 bits, bounded by 6.
  double Normal(std::uint64_t index) const {
    const std::uint64_t sum = Sum4(Bits(3 * index)) + Sum4(Bits(3 * index + 1)) + Sum4(Bits(3 * index + 2));
    return (static_cast<double>(sum) - 12 * 32767.5) * (1.0 / 65536);
  }

 private:
  static constexpr std::uint64_t kStep = 0xD1B54A32D192ED03ULL;

  constexpr RandomStream(std::uint64_t key, int) : key_(Scatter(key)) {}
  static constexpr std::uint64_t Sum4(std::uint64_t b) {
    return (b & 0xFFFF) + ((b >> 16) & 0xFFFF) + ((b >> 32) & 0xFFFF) + (b >> 48);
  }

  std::uint64_t key_;
};

}  // namespace orsolva_host

#endif  // ORSOLVA_SIMULATOR_RANDOM_STREAMS_H
