// Memory for the epochs of one batch.
#ifndef ORSOLVA_JUDGING_EPOCH_BATCH_H
#define ORSOLVA_JUDGING_EPOCH_BATCH_H

#include <cstddef>
#include <memory>

#include "orsolva/records.h"

namespace orsolva_host {

struct FreeEpochs {
  void operator()(ObsEpoch_QC_gbt* epochs) const noexcept;
};
using EpochBatch = std::unique_ptr<ObsEpoch_QC_gbt[], FreeEpochs>;

/// Memory for `count` epochs, not initialised. A batch takes tens of megabytes that are written once from
/// front to end; where the system has huge pages it is asked for them, which saves ten thousand page faults.
/// @throws std::bad_alloc when there is no memory
EpochBatch MakeEpochBatch(std::size_t count);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_EPOCH_BATCH_H
