#include "qc/observations.h"

#include <algorithm>
#include <cmath>

#include "toolkit/signals.h"

namespace orsolva {

namespace {

// A satellite keeps at most this many bytes between batches.
constexpr std::size_t kKeptBytes = std::size_t{1} << 20;

struct BandSlot {
  std::uint8_t Band;
  std::int8_t Slot;
};

// Frequency slot by band, per system; bands that are not listed are dropped.
// clang-format off
constexpr BandSlot kGpsBands[]     = {{1, 0}, {2, 1}, {5, 2}};
constexpr BandSlot kGlonassBands[] = {{1, 0}, {2, 1}, {3, 2}};
constexpr BandSlot kBdsBands[]     = {{1, 3}, {5, 1}, {6, 2}, {7, 4}, {8, 5}, {21, 0}, {27, 1}, {36, 2}};
constexpr BandSlot kGalileoBands[] = {{1, 0}, {5, 1}, {6, 4}, {7, 2}, {8, 3}};
constexpr BandSlot kQzssBands[]    = {{1, 0}, {2, 1}, {5, 2}, {6, 3}};
// clang-format on

struct SystemBands {
  int System;
  const BandSlot* Bands;
  std::size_t Count;
};

constexpr SystemBands kSystemBands[5] = {
    {gnssqctoolkit::kGps, kGpsBands, std::size(kGpsBands)},
    {gnssqctoolkit::kGlonass, kGlonassBands, std::size(kGlonassBands)},
    {gnssqctoolkit::kBds, kBdsBands, std::size(kBdsBands)},
    {gnssqctoolkit::kGalileo, kGalileoBands, std::size(kGalileoBands)},
    {gnssqctoolkit::kQzss, kQzssBands, std::size(kQzssBands)},
};

std::int8_t SlotOfBand(const SystemBands& system, int band) {
  for (std::size_t i = 0; i < system.Count; ++i) {
    if (system.Bands[i].Band == band) return system.Bands[i].Slot;
  }
  return -1;
}

Signal_QC_gbt Finite(const Signal_QC_gbt& signal) {
  Signal_QC_gbt out = signal;
  if (!std::isfinite(out.pseudorange)) out.pseudorange = 0.0;
  if (!std::isfinite(out.phase)) out.phase = 0.0;
  if (!std::isfinite(out.snr)) out.snr = 0.0F;
  return out;
}

template <class T>
void ClearOrFree(std::vector<T>& list) {
  if (list.capacity() * sizeof(T) > kKeptBytes) {
    std::vector<T>().swap(list);
  } else {
    list.clear();
  }
}

int FindCode(const BatchCodes::Table& table, std::uint8_t code) {
  for (int i = 0; i < table.Count; ++i) {
    if (table.Codes[i] == code) return i;
  }
  return -1;
}

void CollectSatellite(const Satellite_gbt& satellite, BatchCodes::Table* systems) {
  const int slot = SystemSlotOf(satellite.sys);
  if (slot < 0) return;
  BatchCodes::Table& table = systems[slot];
  for (std::uint32_t k = 0; k < SignalsIn(satellite); ++k) {
    const std::uint8_t code = satellite.signals[k].code;
    if (code == 0 || table.Count >= kCodesPerSystem || FindCode(table, code) >= 0) continue;
    table.Codes[table.Count++] = code;
  }
}

}  // namespace

std::uint32_t SatellitesIn(const ObsEpoch_QC_gbt& epoch) {
  return std::min(epoch.sat_num, kSatellitesPerEpoch);
}

std::uint32_t SignalsIn(const Satellite_gbt& satellite) {
  return std::min(satellite.signal_num, kSignalsPerSatellite);
}

bool UsableTime(const Time_gbt& t) { return std::isfinite(t.sec); }

void BatchCodes::Collect(const ObsBodyData_QC_gbt& obs) {
  const std::int32_t last = std::min(obs.epoch_num, kCodeCollectionEpochs);
  for (std::int32_t i = 0; i < last; ++i) {
    const ObsEpoch_QC_gbt& epoch = obs.epochs[i];
    for (std::uint32_t s = 0; s < SatellitesIn(epoch); ++s) CollectSatellite(epoch.sats[s], Systems);
  }
}

void BatchCodes::Hit(int system_slot, std::uint8_t code) {
  const int i = FindCode(Systems[system_slot], code);
  if (i >= 0) ++Systems[system_slot].Hits[i];
}

void QcSatData::Append(const Time_gbt& time, std::uint32_t sequence, const SlottedSignals& signals) {
  StoredEpoch stored;
  stored.Time = time;
  stored.Sequence = sequence;
  stored.FirstSignal = static_cast<std::uint32_t>(Signals.size());
  for (int slot = 0; slot < kBandSlots; ++slot) {
    stored.Counts[slot] = signals.Counts[slot];
    for (int k = 0; k < signals.Counts[slot]; ++k) Signals.push_back(Finite(*signals.Entries[slot][k]));
  }
  Epochs.push_back(stored);
}

void QcSatData::Load(std::size_t i, QcEpochData& epoch) const {
  const StoredEpoch& stored = Epochs[i];
  const Signal_QC_gbt* next = Signals.data() + stored.FirstSignal;
  epoch.Time = stored.Time;
  for (int slot = 0; slot < kBandSlots; ++slot) {
    epoch.Slots[slot].Count = stored.Counts[slot];
    for (int k = 0; k < stored.Counts[slot]; ++k) epoch.Slots[slot].Signals[k] = *next++;
  }
}

void QcSatData::Reset() {
  ClearOrFree(Epochs);
  ClearOrFree(Signals);
}

void QcSatData::Release() {
  std::vector<StoredEpoch>().swap(Epochs);
  std::vector<Signal_QC_gbt>().swap(Signals);
}

QcGNSSObsData::QcGNSSObsData() {
  for (int system = 0; system < 5; ++system) {
    const SystemBands& bands = kSystemBands[system];
    for (int code = 0; code < 256; ++code) {
      slots_[system][code] = SlotOfBand(bands, gnssqctoolkit::SignalBand(bands.System, code));
    }
  }
}

int QcGNSSObsData::FrequencySlot(std::uint8_t system, std::uint8_t code) const {
  const int slot = SystemSlotOf(system);
  return slot < 0 ? -1 : slots_[slot][code];
}

void QcGNSSObsData::StoreEpoch(const ObsEpoch_QC_gbt& epoch, std::uint32_t sequence,
                               std::uint32_t system_mask, BatchCodes* codes) {
  for (std::uint32_t s = 0; s < SatellitesIn(epoch); ++s) {
    StoreSatellite(epoch.sats[s], epoch.time, sequence, system_mask, codes);
  }
}

void QcGNSSObsData::StoreSatellite(const Satellite_gbt& satellite, const Time_gbt& time,
                                   std::uint32_t sequence, std::uint32_t system_mask, BatchCodes* codes) {
  const gnssqctoolkit::SatelliteId id{satellite.sys, satellite.prn};
  const int number = gnssqctoolkit::QcSatelliteIndex(id);
  const int system_slot = SystemSlotOf(satellite.sys);
  if (number < 1 || system_slot < 0 || (satellite.sys & system_mask) == 0) return;

  SlottedSignals slotted;
  for (std::uint32_t k = 0; k < SignalsIn(satellite); ++k) {
    const Signal_QC_gbt& signal = satellite.signals[k];
    if (signal.code == 0) continue;
    if (codes != nullptr) codes->Hit(system_slot, signal.code);
    const int slot = slots_[system_slot][signal.code];
    if (slot < 0 || slotted.Counts[slot] >= kSignalsPerSlot) continue;
    slotted.Entries[slot][slotted.Counts[slot]++] = &signal;
  }
  QcSatData& stored = Sats[number - 1];
  if (stored.Epochs.empty()) {
    present_.push_back(number);
    present_sorted_ = false;
  }
  stored.Satellite = id;
  stored.Append(time, sequence, slotted);
}

bool QcGNSSObsData::CodeListsEmpty() const {
  return std::all_of(CodeLists, CodeLists + kCodeListSlots,
                     [](const gnssqctoolkit::IList& list) { return list.Count() == 0; });
}

void QcGNSSObsData::FillCodeLists(const BatchCodes& codes) {
  for (int system = 0; system < 5; ++system) {
    gnssqctoolkit::IList& list = CodeLists[CodeListSlotOf(1 << system)];
    if (list.Count() != 0) continue;
    const BatchCodes::Table& table = codes.Systems[system];
    for (int i = 0; i < table.Count; ++i) {
      if (table.Hits[i] > 0) list.Push(table.Codes[i]);
    }
  }
}

const std::vector<int>& QcGNSSObsData::PresentSatellites() {
  if (!present_sorted_) std::sort(present_.begin(), present_.end());
  present_sorted_ = true;
  return present_;
}

void QcGNSSObsData::ResetBatch() {
  for (const int number : present_) Sats[number - 1].Reset();
  present_.clear();
  present_sorted_ = true;
}

void QcGNSSObsData::Release() {
  for (QcSatData& satellite : Sats) satellite.Release();
  for (gnssqctoolkit::IList& list : CodeLists) list.Release();
  present_.clear();
  present_sorted_ = true;
}

}  // namespace orsolva
