// What the result side reads of a run: references to its stores, nothing of the process object itself.
#ifndef ORSOLVA_RESULTS_RESULT_SOURCES_H
#define ORSOLVA_RESULTS_RESULT_SOURCES_H

#include <cstdint>

#include "measures/driver.h"
#include "orsolva/records.h"
#include "qc/base/config.h"
#include "results/complete_snr.h"
#include "toolkit/lists.h"

namespace orsolva {

struct ResultSources {
  const QcConfig& Config;
  const IonSlipAndMultipath& IonMp;
  const CompleteSnr& Snr;
  const gnssqctoolkit::IList* CodeLists;  ///< kCodeListSlots lists
  const std::uint8_t* SatUsable;          ///< 208 values, read as signed bytes
  std::uint32_t CombinationMask;
  Time_gbt FirstTime;
  Time_gbt LastTime;
  std::uint32_t EpochCount;  ///< epochs taken in
  double Interval;           ///< s
  double Position[3];        ///< ECEF, m
};

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_RESULT_SOURCES_H
