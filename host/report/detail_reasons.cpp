#include "host/report/detail_reasons.h"

namespace orsolva_host {

const char* RestartText(orsolva::RestartReason reason) {
  switch (reason) {
    case orsolva::RestartReason::kFirstValue:
      return "first_value";
    case orsolva::RestartReason::kGap:
      return "gap";
    case orsolva::RestartReason::kJump:
      return "jump";
    case orsolva::RestartReason::kIonosphereSlip:
      return "slip";
    case orsolva::RestartReason::kNone:
      break;
  }
  return "";
}

const char* IonosphereSlipText(orsolva::IonosphereSlipReason reason) {
  switch (reason) {
    case orsolva::IonosphereSlipReason::kRate:
      return "ionospheric_rate";
    case orsolva::IonosphereSlipReason::kLongGap:
      return "long_gap";
    case orsolva::IonosphereSlipReason::kNone:
      break;
  }
  return "";
}

const char* GeometrySlipText(orsolva::GeometrySlipReason reason) {
  switch (reason) {
    case orsolva::GeometrySlipReason::kDataGap:
      return "data_gap";
    case orsolva::GeometrySlipReason::kThreshold:
      return "geometry";
    case orsolva::GeometrySlipReason::kNewEphemeris:
      return "new_ephemeris";
    case orsolva::GeometrySlipReason::kNone:
      break;
  }
  return "";
}

}  // namespace orsolva_host
