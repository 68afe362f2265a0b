#include "python/src/pushed_source.h"

#include "host/judging/library_epoch.h"

namespace orsolva_python {

bool PushedSource::Next(ObsEpoch_QC_gbt& epoch, orsolva_host::ObservationEpoch& full) {
  if (!queue_.Take(full)) return false;
  orsolva_host::FillLibraryEpoch(full, name_, diagnostics_, epoch);
  return true;
}

}  // namespace orsolva_python
