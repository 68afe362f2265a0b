// The observations of one satellite at one epoch, sorted into frequency slots.
#ifndef ORSOLVA_QC_BASE_EPOCH_DATA_H
#define ORSOLVA_QC_BASE_EPOCH_DATA_H

#include <cstdint>

#include "orsolva/records.h"

namespace orsolva {

inline constexpr int kBandSlots = 6;
inline constexpr int kSignalsPerSlot = 3;

/// Up to three signals of one frequency slot, copied whole from the input. Entries at Count and above are not
/// initialised.
struct QcSlotSignals {
  std::uint8_t Count = 0;
  Signal_QC_gbt Signals[kSignalsPerSlot];
};

/// One satellite at one epoch. Signals that are not finite have been turned into missing ones (0).
class QcEpochData {
 public:
  virtual ~QcEpochData() = default;

  Time_gbt Time{};
  QcSlotSignals Slots[kBandSlots];
};

/// Values above this are present.
inline constexpr double kPresenceLimit = 1e-12;
inline bool Present(double value) { return value > kPresenceLimit; }

}  // namespace orsolva

#endif  // ORSOLVA_QC_BASE_EPOCH_DATA_H
