#include "host/analysis/figures/moving_scatter.h"

#include <algorithm>
#include <cmath>

#include "host/analysis/figures/step_outcome.h"

namespace orsolva_host::analysis {
namespace {

constexpr int kLeastInWindow = 5;  // values of a mean that others are held against

}  // namespace

void ScatterByElevation::Sum::Add(double more, Count count) {
  squares += more;
  values += count;
}

std::optional<double> ScatterByElevation::Sum::Rms(Count least) const {
  if (values == 0 || values < least) return std::nullopt;
  return std::sqrt(squares / static_cast<double>(values));
}

void ScatterByElevation::Add(double squares, int values, double elevation_deg, double cutoff_deg) {
  const auto count = static_cast<Count>(values);
  if (IsUp(elevation_deg, cutoff_deg)) up_.Add(squares, count);
  for (std::size_t k = 0; k < bins_.size(); ++k) {
    const bool last = k + 1 == bins_.size();
    if (elevation_deg >= kEdges_deg[k] && (last || elevation_deg < kEdges_deg[k + 1]))
      bins_[k].Add(squares, count);
  }
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

void MovingScatter::Add(std::int64_t time_ns, double value, double elevation_deg, double cutoff_deg,
                        ScatterByElevation& sums) {
  const std::int64_t number = time_ns / kBlock_ns;
  if (open_.values == 0 && closed_ == 0) number_ = number;
  // Blocks without values count as time, too; more of them than the window holds change nothing.
  for (std::int64_t k = std::min<std::int64_t>(number - number_, kBlocks + 1); k > 0; --k)
    Close(cutoff_deg, sums);
  number_ = number;
  ++open_.values;
  const double off = value - open_.mean;
  open_.mean += off / open_.values;
  open_.squares += off * (value - open_.mean);
  open_.elevation_deg = static_cast<float>(elevation_deg);
}

bool MovingScatter::End(double cutoff_deg, ScatterByElevation& sums) {
  if (open_.values > 0) Close(cutoff_deg, sums);
  const bool full = Full();
  for (int k = kHalf + 1; full && k < kBlocks; ++k) Judge(k, cutoff_deg, sums);
  *this = MovingScatter();
  return full;
}

/// Ends the open block. With it the one in the middle of the window, and all before it while it is the first,
/// can be judged.
void MovingScatter::Close(double cutoff_deg, ScatterByElevation& sums) {
  const bool was_full = Full();
  if (was_full) {
    const Block& gone = blocks_[static_cast<std::size_t>(oldest_)];
    values_ -= gone.values;
    sum_ -= gone.values * gone.mean;
    oldest_ = (oldest_ + 1) % kBlocks;
    --closed_;
  }
  blocks_[static_cast<std::size_t>((oldest_ + closed_) % kBlocks)] = open_;
  values_ += open_.values;
  sum_ += open_.values * open_.mean;
  ++closed_;
  open_ = Block();
  if (!Full()) return;
  for (int k = was_full ? kHalf : 0; k <= kHalf; ++k) Judge(k, cutoff_deg, sums);
}

/// @param place  in the window, the oldest block 0
void MovingScatter::Judge(int place, double cutoff_deg, ScatterByElevation& sums) const {
  const Block& block = blocks_[static_cast<std::size_t>((oldest_ + place) % kBlocks)];
  if (block.values == 0 || values_ < kLeastInWindow) return;
  const double off = block.mean - sum_ / values_;
  const double squares = block.squares + block.values * off * off;
  const double unbiased = static_cast<double>(values_) / (values_ - 1);
  sums.Add(squares * unbiased, block.values, static_cast<double>(block.elevation_deg), cutoff_deg);
}

}  // namespace orsolva_host::analysis
