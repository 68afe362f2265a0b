// Scatter of a series about its moving mean, in a window of time and with a memory that no rate changes.
//
// Time is cut into blocks of 30 s. A value is held against the mean of its block and the ten on both sides,
// 630 s in all; in the first and last ten blocks of a series against that of its first and last 630 s. White
// noise of variance s^2 differs from a mean of n values that holds it by s^2 (n - 1) / n, so squares are
// multiplied by n / (n - 1). Of a sinusoid of period T the part 1 - sinc(630 s / T) is left: 1 % of its
// amplitude at three hours, 19 % at half an hour, half of it at 1,000 s and all at 630 s. Series shorter than
// the window leave nothing.
#ifndef ORSOLVA_ANALYSIS_FIGURES_MOVING_SCATTER_H
#define ORSOLVA_ANALYSIS_FIGURES_MOVING_SCATTER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/analysis/analysis_result.h"

namespace orsolva_host::analysis {

/// Squares of deviations by elevation.
class ScatterByElevation {
 public:
  /// @param bin  of BinOf
  void Add(double squares, int values, int bin, bool up) {
    if (up) up_.Add(squares, static_cast<Count>(values));
    if (bin >= 0) bins_[static_cast<std::size_t>(bin)].Add(squares, static_cast<Count>(values));
  }
  void Add(const ScatterByElevation& other);
  /// -1 below the horizon and where the elevation is not known.
  static int BinOf(double elevation_deg);

  Count Values() const { return up_.values; }
  /// RMS from the cut-off up and by elevation; absent below a number of values.
  std::optional<double> Rms(Count least) const { return up_.Rms(least); }
  std::vector<ElevationBin> Bins(Count least) const;

 private:
  struct Sum {
    double squares = 0;
    Count values = 0;

    void Add(double more, Count count) {
      squares += more;
      values += count;
    }
    std::optional<double> Rms(Count least) const;
  };
  static constexpr std::array<int, 6> kEdges_deg = {0, 10, 20, 30, 60, 90};

  Sum up_;
  std::array<Sum, kEdges_deg.size() - 1> bins_;
};

/// A block that has been judged.
struct JudgedBlock {
  std::int64_t time_ns = 0;  ///< at which it begins
  double squares = 0;
  int values = 0;
};

/// Blocks from the cut-off up as they are judged, where someone takes them.
class JudgedBlocks {
 public:
  void Keep() { kept_ = true; }
  void Add(const JudgedBlock& block) {
    if (kept_) blocks_.push_back(block);
  }
  std::vector<JudgedBlock> Take() { return std::exchange(blocks_, {}); }

 private:
  bool kept_ = false;
  std::vector<JudgedBlock> blocks_;
};

class MovingScatter {
 public:
  static constexpr std::int64_t kBlock_ns = 30'000'000'000;
  static constexpr int kHalf = 10;
  static constexpr int kBlocks = 2 * kHalf + 1;

  /// The next value. What can be judged by now is added to the sums.
  /// @param value  less some value near all, which keeps its square small
  void Add(std::int64_t time_ns, double value, double elevation_deg, bool up, ScatterByElevation& sums,
           JudgedBlocks& blocks);
  /// The series ends: judges what is left and forgets everything.
  /// @return whether it was as long as the window
  bool End(ScatterByElevation& sums, JudgedBlocks& blocks);
  /// Whether the series is as long as the window.
  bool Full() const { return closed_ == kBlocks; }

 private:
  struct Block {
    int values = 0;
    std::int8_t bin = -1;  ///< of the last value's elevation
    bool up = false;
    double sum = 0;
    double squares = 0;
  };

  void Close(ScatterByElevation& sums, JudgedBlocks& blocks);
  void Judge(int place, ScatterByElevation& sums, JudgedBlocks& blocks) const;
  static int Wrapped(int place) { return place < kBlocks ? place : place - kBlocks; }

  std::array<Block, kBlocks> blocks_;  ///< a ring
  int oldest_ = 0;
  int closed_ = 0;
  Block open_;
  std::int64_t number_ = 0;  ///< of the open block, which follows the closed ones
  int values_ = 0;           ///< in the closed blocks
  double sum_ = 0;           ///< of them
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_MOVING_SCATTER_H
