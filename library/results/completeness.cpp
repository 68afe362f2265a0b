#include "results/completeness.h"

#include <algorithm>

#include "toolkit/satellite.h"

namespace orsolva {
namespace {

/// The flags of one channel at one epoch: one for each entry of its code, a 0 when there is none.
void AddFlags(const QcSlotSignals& slot, int signals, ChannelCompleteObsList& channel) {
  bool matched = false;
  for (int i = 0; i < signals; ++i) {
    if (slot.Signals[i].code != channel.Code) continue;
    matched = true;
    channel.Append(IsCompleteObservation(slot.Signals[i]));
  }
  if (!matched) channel.Append(false);
}

bool IsNewBdsBand(int band) { return band == 1 || band == 5 || band == 7 || band == 8 || band == 36; }

}  // namespace

void ChannelCompleteObsList::Append(bool valid) {
  Flags.Push(valid ? 1 : 0);
  if (valid) ++ValidCount;
}

std::uint64_t ChannelCompleteObsList::Observed() const {
  return static_cast<std::uint64_t>(
      std::count_if(Flags.begin(), Flags.end(), [](std::int32_t flag) { return flag != 0; }));
}

void SatCompleteObsList::AddEpoch(const QcEpochData& epoch) {
  for (int b = 0; b < kBandSlots; ++b) {
    const QcSlotSignals& slot = epoch.Slots[b];
    const int signals = std::min<int>(slot.Count, kSignalsPerSlot);
    const int codes = std::min<int>(CodeCount[b], kCodesPerSlot);
    for (int k = 0; k < codes; ++k) AddFlags(slot, signals, Channels[b][k]);
  }
}

bool IsCompleteObservation(const Signal_QC_gbt& signal) {
  return signal.phase >= kPresenceLimit && signal.pseudorange >= kPresenceLimit &&
         static_cast<double>(signal.snr) >= kPresenceLimit;
}

double CompletenessRatio(std::uint64_t observed, std::uint64_t expected) {
  return expected == 0 ? 0.0 : static_cast<double>(observed) / static_cast<double>(expected);
}

bool IsDroppedFromCombination(int system, int prn, int band) {
  switch (system) {
    case gnssqctoolkit::kGps:
      return band == 5;
    case gnssqctoolkit::kGlonass:
      return band == 3;
    case gnssqctoolkit::kQzss:
      return band == 5 || band == 6;
    case gnssqctoolkit::kBds:
      // Kept for compatibility: the first BDS-3 satellite, 18, falls between the two branches.
      if (prn > gnssqctoolkit::kFirstBds3) return band == 27;
      return prn < gnssqctoolkit::kFirstBds3 && IsNewBdsBand(band);
    default:
      return false;
  }
}

}  // namespace orsolva
