#include "host/analysis/figures/moving_scatter.h"

#include <algorithm>
#include <cmath>

namespace orsolva_host::analysis {
namespace {

constexpr int kMinInWindow = 5;  // values of a mean that others are held against

}  // namespace

std::optional<double> ScatterByElevation::Sum::Rms(Count least) const {
  if (values == 0 || values < least) return std::nullopt;
  return std::sqrt(squares / static_cast<double>(values));
}

int ScatterByElevation::BinOf(double elevation_deg) {
  constexpr std::array<std::int8_t, 9> kBinOfTen = {0, 1, 2, 3, 3, 3, 4, 4, 4};
  if (!(elevation_deg >= 0)) return -1;
  return kBinOfTen[std::min<std::size_t>(static_cast<std::size_t>(elevation_deg / 10), kBinOfTen.size() - 1)];
}

void ScatterByElevation::Add(const ScatterByElevation& other) {
  up_.Add(other.up_.squares, other.up_.values);
  for (std::size_t k = 0; k < bins_.size(); ++k) bins_[k].Add(other.bins_[k].squares, other.bins_[k].values);
}

std::vector<ElevationBin> ScatterByElevation::Bins(Count least) const {
  std::vector<ElevationBin> bins;
  for (std::size_t k = 0; k < bins_.size(); ++k) {
    const auto rms = bins_[k].Rms(least);
    if (rms) bins.push_back({kEdges_deg[k], kEdges_deg[k + 1], *rms, bins_[k].values});
  }
  return bins;
}

void MovingScatter::Add(std::int64_t time_ns, double value, double elevation_deg, bool up,
                        ScatterByElevation& sums, JudgedBlocks& blocks) {
  const std::int64_t number = time_ns / kBlock_ns;
  if (open_.values == 0 && closed_ == 0) number_ = number;
  // Blocks without values count as time, too; more of them than the window holds change nothing.
  for (std::int64_t k = std::min<std::int64_t>(number - number_, kBlocks + 1); k > 0; --k)
    Close(sums, blocks);
  number_ = number;
  ++open_.values;
  open_.sum += value;
  open_.squares += value * value;
  open_.bin = static_cast<std::int8_t>(ScatterByElevation::BinOf(elevation_deg));
  open_.up = up;
}

bool MovingScatter::End(ScatterByElevation& sums, JudgedBlocks& blocks) {
  if (open_.values > 0) Close(sums, blocks);
  const bool full = Full();
  for (int k = kHalf + 1; full && k < kBlocks; ++k) Judge(k, sums, blocks);
  oldest_ = closed_ = values_ = 0;  // blocks are written before they are read
  open_ = Block();
  sum_ = 0;
  return full;
}

/// Ends the open block. With it the one in the middle of the window, and all before it while it is the first,
/// can be judged.
void MovingScatter::Close(ScatterByElevation& sums, JudgedBlocks& blocks) {
  const bool was_full = Full();
  if (was_full) {
    const Block& gone = blocks_[static_cast<std::size_t>(oldest_)];
    values_ -= gone.values;
    sum_ -= gone.sum;
    oldest_ = Wrapped(oldest_ + 1);
    --closed_;
  }
  blocks_[static_cast<std::size_t>(Wrapped(oldest_ + closed_))] = open_;
  values_ += open_.values;
  sum_ += open_.sum;
  ++closed_;
  ++number_;
  open_ = Block();
  if (!Full()) return;
  for (int k = was_full ? kHalf : 0; k <= kHalf; ++k) Judge(k, sums, blocks);
}

/// @param place  in the window, the oldest block 0
void MovingScatter::Judge(int place, ScatterByElevation& sums, JudgedBlocks& blocks) const {
  const Block& block = blocks_[static_cast<std::size_t>(Wrapped(oldest_ + place))];
  if (block.values == 0 || values_ < kMinInWindow) return;
  const double mean = sum_ / values_;
  const double squares = block.squares - mean * (2 * block.sum - block.values * mean);
  const double unbiased = static_cast<double>(values_) / (values_ - 1);
  const double judged = std::max(squares, 0.0) * unbiased;
  sums.Add(judged, block.values, block.bin, block.up);
  if (block.up) blocks.Add({(number_ - closed_ + place) * kBlock_ns, judged, block.values});
}

}  // namespace orsolva_host::analysis
