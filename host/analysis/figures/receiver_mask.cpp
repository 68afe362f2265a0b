#include "host/analysis/figures/receiver_mask.h"

#include <algorithm>
#include <cmath>

namespace orsolva_host::analysis {

void ReceiverMask::Add(double elevation_deg) {
  if (std::isnan(elevation_deg)) return;
  const double bin = std::clamp((elevation_deg - kLowest_deg) / kBin_deg, 0.0, kBins - 1.0);
  ++bins_[static_cast<std::size_t>(bin)];
  ++values_;
}

void ReceiverMask::FillIn(MaskFigures& figures) const {
  if (values_ < kMinValues) return;
  Count below = 0;
  std::size_t bin = 0;
  while (100 * (below + bins_[bin]) < values_) below += bins_[bin++];
  // Within the bin as if its values were spread evenly.
  const double part =
      (static_cast<double>(values_) / 100 - static_cast<double>(below)) / static_cast<double>(bins_[bin]);
  figures.lowest_deg = kLowest_deg + kBin_deg * (static_cast<double>(bin) + part);
}

}  // namespace orsolva_host::analysis
