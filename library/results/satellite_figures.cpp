#include "results/satellite_figures.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "results/distinct_times.h"
#include "toolkit/signals.h"

namespace orsolva {
namespace {

using gnssqctoolkit::IList;

bool Holds(const IList& codes, std::uint32_t code) { return codes.Contains(static_cast<std::int32_t>(code)); }

std::uint8_t SlotByte(int system, std::uint32_t code) {
  return static_cast<std::uint8_t>(gnssqctoolkit::SignalFrequency(system, static_cast<int>(code)));
}

int PairCount(std::uint8_t count) { return std::min<int>(count, kPairsPerBand); }

/// The codes that count towards the completeness of a combination.
IList CountedCodes(const gnssqctoolkit::SatelliteId& satellite, const IList& codes) {
  if (codes.Count() <= 1) return codes;
  IList counted;
  for (const std::int32_t code : codes) {
    const int band = gnssqctoolkit::SignalBand(satellite.system, code);
    if (!IsDroppedFromCombination(satellite.system, satellite.prn, band)) counted.Push(code);
  }
  return counted;
}

/// The first pair of a band that lies within the combination, null when there is none.
const AbsoluteMp* FindPair(const SatMp& multipath, int band, const IList& codes) {
  for (int k = 0; k < PairCount(multipath.Count[band]); ++k) {
    const AbsoluteMp* pair = multipath.Pairs[band][k];
    if (pair == nullptr || !Holds(codes, pair->Code)) continue;
    if (codes.Count() == 1 || Holds(codes, pair->Partner)) return pair;
  }
  return nullptr;
}

const IodDetect* FindIonosphere(const SatIodDetect& ionosphere, int band, const AbsoluteMp& pair) {
  for (int k = 0; k < PairCount(ionosphere.Count[band]); ++k) {
    const IodDetect* record = ionosphere.Pairs[band][k];
    if (record != nullptr && record->Code == pair.Code && record->Partner == pair.Partner) return record;
  }
  return nullptr;
}

void FillPair(int system, const AbsoluteMp& pair, QcMpIodResult& result) {
  result.Code1 = static_cast<std::uint8_t>(pair.Code);
  result.Code2 = static_cast<std::uint8_t>(pair.Partner);
  result.BandSlot1 = SlotByte(system, pair.Code);
  result.BandSlot2 = SlotByte(system, pair.Partner);
  result.BandSlot = result.BandSlot1;
  result.MpRms = pair.Count > 0 ? std::sqrt(pair.SumOfSquares / static_cast<double>(pair.Count)) : 0.0;
  result.MpCount = pair.Count > 0 ? static_cast<std::uint64_t>(pair.Count) : 0;
  result.JumpTimes = &pair.RestartTimes;
  result.JumpCount = static_cast<std::uint64_t>(pair.RestartTimes.Size());
}

void FillIonosphere(const IodDetect& record, QcMpIodResult& result) {
  result.SlipCount = record.SlipCount;
  result.SlipTimes = &record.SlipTimes;
  result.IodRms = std::sqrt(record.IonosphereStatistic());
}

void FillMultipath(const SatelliteStores& stores, const IList& codes, QcResultCore& core) {
  for (int b = 0; b < kBandSlots; ++b) {
    const AbsoluteMp* pair = FindPair(stores.Multipath, b, codes);
    if (pair == nullptr) continue;
    FillPair(stores.Satellite.system, *pair, core.Mp[b]);
    const IodDetect* record = FindIonosphere(stores.Ionosphere, b, *pair);
    if (record != nullptr) FillIonosphere(*record, core.Mp[b]);
  }
}

void CountEvents(int code_count, QcResultCore& core) {
  const TimeList* slips[kBandSlots];
  const TimeList* jumps[kBandSlots];
  for (int b = 0; b < kBandSlots; ++b) {
    slips[b] = core.Mp[b].SlipTimes;
    jumps[b] = core.Mp[b].JumpTimes;
  }
  core.SlipEpochs = CountDistinctTimes(slips, kBandSlots);
  // Kept for compatibility: jumps of the third band count for GPS only, those of later bands never; a single
  // code shows its slips as jumps.
  const int jump_bands = core.System == gnssqctoolkit::kGps ? 3 : 2;
  core.JumpEpochs = code_count == 1 ? core.SlipEpochs : CountDistinctTimes(jumps, jump_bands);
}

}  // namespace

SatelliteView::SatelliteView(const SatelliteStores& stores, bool shifted) : stores_(stores) {
  if (shifted) {
    source_[5] = 4;
    source_[4] = 1;
    source_[1] = -1;
  }
}

double SatelliteView::StdDev(int slot, int channel) const {
  std::optional<double>& known = std_dev_[slot][channel];
  if (!known) known = stores_.Snr.Channels[slot][channel].StdDev();
  return *known;
}

int SatelliteView::SourceSlot(int code) const {
  const int slot = gnssqctoolkit::SignalFrequency(stores_.Satellite.system, code);
  return slot >= 1 && slot <= kBandSlots ? source_[slot - 1] : -1;
}

const ChannelCompleteObsList* SatelliteView::FindComplete(int code) const {
  const int slot = SourceSlot(code);
  if (slot < 0) return nullptr;
  const int codes = std::min<int>(stores_.Complete.CodeCount[slot], kCodesPerSlot);
  for (int k = 0; k < codes; ++k) {
    if (stores_.Complete.Channels[slot][k].Code == code) return &stores_.Complete.Channels[slot][k];
  }
  return nullptr;
}

bool SatelliteView::FillSnr(int code, QcSnrResult& result) const {
  const int slot = SourceSlot(code);
  if (slot < 0) return false;
  const int codes = std::min<int>(stores_.Snr.CodeCount[slot], kCodesPerSlot);
  for (int k = 0; k < codes; ++k) {
    const SnrChannelList& channel = stores_.Snr.Channels[slot][k];
    if (channel.Code != code) continue;
    result.Code = channel.Code;
    result.AboveMaskCount = channel.AboveMask.Count;
    result.BelowMaskCount = channel.BelowMask.Count;
    result.AboveMaskMean = channel.AboveMask.Mean;
    result.BelowMaskMean = channel.BelowMask.Mean;
    result.Mean = channel.Mean;
    result.StdDev = StdDev(slot, k);
    result.Above30Count = channel.Above30.Count;
    result.Below30Count = channel.Below30.Count;
    result.Above30Mean = channel.Above30.Mean;
    result.Below30Mean = channel.Below30.Mean;
    return true;
  }
  return false;
}

std::uint64_t ObservedTogether(const SatelliteView& view, const IList& codes) {
  const IList counted = CountedCodes(view.Stores().Satellite, codes);
  if (counted.Count() == 0) return 0;
  // A flag outside its list counts as 0, so the shortest list bounds the walk.
  int positions = std::numeric_limits<int>::max();
  for (const std::int32_t code : counted) {
    const ChannelCompleteObsList* channel = view.FindComplete(code);
    if (channel == nullptr) return 0;
    positions = std::min(positions, channel->Flags.Count());
  }
  if (positions == 0) return 0;
  std::vector<std::uint8_t> together(static_cast<std::size_t>(positions), 1);
  for (const std::int32_t code : counted) {
    const std::int32_t* flags = view.FindComplete(code)->Flags.Data();
    for (int i = 0; i < positions; ++i) together[static_cast<std::size_t>(i)] &= flags[i] != 0 ? 1 : 0;
  }
  return static_cast<std::uint64_t>(std::count(together.begin(), together.end(), 1));
}

void EvaluateCombination(const SatelliteView& view, const IList& codes, QcResultCore& core) {
  const SatelliteStores& stores = view.Stores();
  core.System = stores.Satellite.system;
  core.ExpectedEpochs = stores.Complete.ExpectedEpochs;
  core.ObservedEpochs = ObservedTogether(view, codes);
  core.Completeness = CompletenessRatio(core.ObservedEpochs, core.ExpectedEpochs);
  for (const std::int32_t code : codes) {
    const int slot = gnssqctoolkit::SignalFrequency(stores.Satellite.system, code);
    if (slot >= 1 && slot <= kBandSlots) view.FillSnr(code, core.Snr[slot - 1]);
  }
  FillMultipath(stores, codes, core);
  CountEvents(codes.Count(), core);
  core.ObsPerSlip = ObservationsPerSlip(core.ObservedEpochs, core.JumpEpochs);
}

UsableCodes FindUsableCodes(const QcSysConfig& config, const SatelliteStores& stores) {
  const int system = stores.Satellite.system;
  UsableCodes usable;
  bool in_use[kBandSlots] = {};
  for (int b = 0; b < kBandSlots; ++b) {
    const int codes = std::min<int>(stores.Complete.CodeCount[b], kCodesPerSlot);
    for (int k = 0; k < codes; ++k) {
      const ChannelCompleteObsList& channel = stores.Complete.Channels[b][k];
      if (channel.Flags.Count() == 0 || channel.ValidCount == 0) continue;
      if (!IsCodeEnabled(config, system, channel.Code)) continue;
      usable.Codes.Push(channel.Code);
      in_use[gnssqctoolkit::SignalFrequency(system, channel.Code) - 1] = true;
    }
  }
  usable.BandCount = static_cast<int>(std::count(in_use, in_use + kBandSlots, true));
  return usable;
}

}  // namespace orsolva
