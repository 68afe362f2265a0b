// The names of the reasons for restarts and slips: the same in tables and plots.
#ifndef ORSOLVA_REPORT_DETAIL_REASONS_H
#define ORSOLVA_REPORT_DETAIL_REASONS_H

#include "orsolva/detail.h"

namespace orsolva_host {

/// "first_value", "gap", "jump", "slip"; empty for none.
const char* RestartText(orsolva::RestartReason reason);
/// "ionospheric_rate", "long_gap"; empty for none.
const char* IonosphereSlipText(orsolva::IonosphereSlipReason reason);
/// "data_gap", "geometry", "new_ephemeris"; empty for none.
const char* GeometrySlipText(orsolva::GeometrySlipReason reason);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_DETAIL_REASONS_H
