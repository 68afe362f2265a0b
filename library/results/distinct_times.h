// The number of distinct epochs in several lists of epochs.
#ifndef ORSOLVA_RESULTS_DISTINCT_TIMES_H
#define ORSOLVA_RESULTS_DISTINCT_TIMES_H

#include <cstdint>

#include "qc/base/epoch_time.h"

namespace orsolva {

/// Size of the union of the lists as a set of epochs, equal within the tolerance of TimeQc. Linear in the
/// number of epochs when every list ascends, as the lists of a run in time order do.
/// @param lists  null entries count as empty
std::uint64_t CountDistinctTimes(const TimeList* const* lists, int count);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_DISTINCT_TIMES_H
