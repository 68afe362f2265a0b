#include "host/judging/epoch_batch.h"

#include <new>

#include "host/platform/platform.h"

namespace orsolva_host {
namespace {

constexpr std::align_val_t kAlignment{kHugePageBytes};

}  // namespace

void FreeEpochs::operator()(ObsEpoch_QC_gbt* epochs) const noexcept { ::operator delete(epochs, kAlignment); }

EpochBatch MakeEpochBatch(std::size_t count) {
  const std::size_t bytes = count * sizeof(ObsEpoch_QC_gbt);
  void* room = ::operator new(bytes, kAlignment);
  // Whole huge pages only: what follows the batch is not ours.
  PreferHugePages(room, bytes / kHugePageBytes * kHugePageBytes);
  return EpochBatch(static_cast<ObsEpoch_QC_gbt*>(room));
}

}  // namespace orsolva_host
