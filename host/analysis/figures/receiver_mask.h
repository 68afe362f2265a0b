// The elevation mask of the receiver as the data show it: the first percentile of the elevations at which
// satellites were observed (code or phase), over all satellites with an orbit, to 0.1 degree. A percentile is
// not moved by a few reflections or diffracted signals from below the mask. Absent with fewer than
// kMinValues.
#ifndef ORSOLVA_ANALYSIS_FIGURES_RECEIVER_MASK_H
#define ORSOLVA_ANALYSIS_FIGURES_RECEIVER_MASK_H

#include <array>
#include <cstddef>

#include "host/analysis/analysis_result.h"

namespace orsolva_host::analysis {

class ReceiverMask {
 public:
  static constexpr Count kMinValues = 1000;

  /// @param elevation_deg  NaN where it is not known
  void Add(double elevation_deg);
  void FillIn(MaskFigures& figures) const;

 private:
  static constexpr double kLowest_deg = -10;
  static constexpr double kBin_deg = 0.1;
  static constexpr std::size_t kBins = 1000;
  std::array<Count, kBins> bins_ = {};
  Count values_ = 0;
};

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_RECEIVER_MASK_H
