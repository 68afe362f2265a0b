#include "results/snr.h"

#include <algorithm>
#include <cmath>

namespace orsolva {
namespace {

constexpr double kSamplesPerUnit = 4.0;
constexpr double kUnitsPerSample = 0.25;
constexpr double kSampleRange = 256.0;

/// The entry of a band that carries the code of channel k, null when there is none.
///
/// Kept for compatibility: beside entry k only as many entries are searched as the slot has channels, not as
/// the band has observations, so a code behind them is not found.
const Signal_QC_gbt* FindEntry(const QcSlotSignals& slot, int k, std::uint8_t code, int channels) {
  const int signals = std::min<int>(slot.Count, kSignalsPerSlot);
  if (k < signals && slot.Signals[k].code == code) return &slot.Signals[k];
  const int searched = std::min(channels, signals);
  for (int i = 0; i < searched; ++i) {
    if (slot.Signals[i].code == code) return &slot.Signals[i];
  }
  return nullptr;
}

}  // namespace

std::int32_t QuantiseSnr(double snr_dbhz) {
  const double wrapped = std::fmod(std::trunc(snr_dbhz * kSamplesPerUnit + 0.5), kSampleRange);
  if (!(wrapped >= 0.0)) return 0;
  return static_cast<std::int32_t>(wrapped);
}

void SnrGroup::Add(double snr_dbhz) {
  Sum += snr_dbhz;
  Count += 1;
  Mean = Sum / Count;
}

void SnrChannelList::Add(double snr_dbhz, bool above_cutoff, bool above_30) {
  if (!(snr_dbhz > kPresenceLimit)) return;
  Sum += snr_dbhz;
  Count += 1;
  Mean = Sum / Count;
  Samples.Push(QuantiseSnr(snr_dbhz));
  (above_cutoff ? AboveMask : BelowMask).Add(snr_dbhz);
  (above_30 ? Above30 : Below30).Add(snr_dbhz);
}

double SnrChannelList::StdDev() const {
  const int n = Samples.Count();
  if (n <= 1) return 0.0;
  double sum = 0.0;
  for (const std::int32_t sample : Samples) {
    const double deviation = sample * kUnitsPerSample - Mean;
    sum += deviation * deviation;
  }
  return std::sqrt(sum / (n - 1));
}

void SnrSatList::AddEpoch(const QcEpochData& epoch, bool above_cutoff, bool above_30) {
  for (int b = 0; b < kBandSlots; ++b) {
    const int codes = std::min<int>(CodeCount[b], kCodesPerSlot);
    for (int k = 0; k < codes; ++k) {
      SnrChannelList& channel = Channels[b][k];
      const Signal_QC_gbt* entry = FindEntry(epoch.Slots[b], k, channel.Code, codes);
      if (entry != nullptr) channel.Add(static_cast<double>(entry->snr), above_cutoff, above_30);
    }
  }
}

}  // namespace orsolva
