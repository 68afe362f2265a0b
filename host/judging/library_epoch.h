// An epoch of the observation model as the library's record, which has its limits.
#ifndef ORSOLVA_JUDGING_LIBRARY_EPOCH_H
#define ORSOLVA_JUDGING_LIBRARY_EPOCH_H

#include <string>

#include "host/observation/observation_epoch.h"
#include "host/rinex/diagnostics.h"
#include "orsolva/records.h"

namespace orsolva_host {

/// Fills the record as a reader of RINEX files does: absent values are 0; satellites and signals that the
/// library does not know are left out, and those beyond 80 satellites and 8 signals with a notice.
/// @param name  of the data, in notices
void FillLibraryEpoch(const ObservationEpoch& epoch, const std::string& name, Diagnostics& diagnostics,
                      ObsEpoch_QC_gbt& record);

}  // namespace orsolva_host

#endif  // ORSOLVA_JUDGING_LIBRARY_EPOCH_H
