#include "host/cli/epoch_batch.h"

#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace orsolva_host {
namespace {

constexpr std::size_t kHugePage = std::size_t{1} << 21;
constexpr std::align_val_t kAlignment{kHugePage};

}  // namespace

void FreeEpochs::operator()(ObsEpoch_QC_gbt* epochs) const noexcept { ::operator delete(epochs, kAlignment); }

EpochBatch MakeEpochBatch(std::size_t count) {
  const std::size_t bytes = count * sizeof(ObsEpoch_QC_gbt);
  void* room = ::operator new(bytes, kAlignment);
#if defined(__linux__)
  // Whole huge pages only: what follows the batch is not ours. A refusal costs nothing but the faults.
  static_cast<void>(madvise(room, bytes / kHugePage * kHugePage, MADV_HUGEPAGE));
#endif
  return EpochBatch(static_cast<ObsEpoch_QC_gbt*>(room));
}

}  // namespace orsolva_host
