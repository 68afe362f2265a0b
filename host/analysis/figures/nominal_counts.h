// The nominal epochs of a stream counted again, with an interval that was found after they came.
#ifndef ORSOLVA_ANALYSIS_FIGURES_NOMINAL_COUNTS_H
#define ORSOLVA_ANALYSIS_FIGURES_NOMINAL_COUNTS_H

#include <cstdint>
#include <vector>

#include "host/analysis/figures/expected_epochs.h"
#include "host/analysis/figures/span.h"
#include "host/analysis/figures/visibility.h"

namespace orsolva_host::analysis {

/// From the beginning of the stream up to a time.
struct NominalCounts {
  Count present = 0;
  std::vector<ExpectedEpochs::Counts> expected;  ///< of satellites of the visibility; empty without a station
};

/// @param borders_ns  ascending; an epoch at a border comes after it
/// @param station     null: nothing is expected. Of an antenna that moved it is the last one known
/// @return those up to each border, then those of all
std::vector<NominalCounts> CountAgain(const std::vector<Span::Stretch>& stretches,
                                      const std::vector<std::int64_t>& borders_ns, Visibility visibility,
                                      const Station* station);

}  // namespace orsolva_host::analysis

#endif  // ORSOLVA_ANALYSIS_FIGURES_NOMINAL_COUNTS_H
