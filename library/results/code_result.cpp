#include "results/code_result.h"

#include <algorithm>
#include <cmath>

#include "results/code_combinations.h"
#include "results/slot_tables.h"
#include "toolkit/signals.h"

namespace orsolva {
namespace {

using gnssqctoolkit::IList;

/// Completeness of a code within a block, 0 for a code that has no entry.
double CompletenessOf(const code_qc_block& block, std::uint32_t code) {
  for (int i = 0; i < block.count; ++i) {
    if (block.entries[i].code == code) return block.entries[i].completeness;
  }
  return 0.0;
}

/// Of the pairs of a measured code the one whose partner is the most complete; null when the code has none.
template <class Pair>
const Pair* ChoosePair(const Pair* const* pairs, int count, std::uint8_t code, const code_qc_block& block) {
  const Pair* chosen = nullptr;
  double best = -1.0;
  for (int k = 0; k < std::min(count, kPairsPerBand); ++k) {
    if (pairs[k] == nullptr || pairs[k]->Code != code) continue;
    const double completeness = CompletenessOf(block, pairs[k]->Partner);
    if (!(completeness > best)) continue;
    best = completeness;
    chosen = pairs[k];
  }
  return chosen;
}

/// Observed epochs per slip, as a fraction unlike the figure of the whole-run result.
double ObservedPerSlip(const code_qc_entry& entry) {
  const double observed = static_cast<double>(entry.observed_epochs);
  return entry.slip_count >= 1 ? observed / entry.slip_count : observed;
}

void FillCounts(const SatelliteStores& stores, int b, int k, code_qc_entry& entry) {
  const ChannelCompleteObsList& complete = stores.Complete.Channels[b][k];
  const SnrChannelList& snr = stores.Snr.Channels[b][k];
  entry.code = complete.Code;
  entry.observed_epochs = complete.Observed();
  entry.expected_epochs = stores.Complete.ExpectedEpochs;
  entry.completeness = CompletenessRatio(entry.observed_epochs, entry.expected_epochs);
  entry.snr = snr.AboveMask.Mean;
  entry.snr_below30 = snr.Below30.Mean;
  entry.snr_above30 = snr.Above30.Mean;
  entry.snr_count = snr.AboveMask.Count;
  entry.snr_count_above30 = snr.Above30.Count;
  entry.snr_count_below30 = snr.Below30.Count;
}

void FillMultipath(const SatelliteStores& stores, const code_qc_block& block, code_qc_entry& entry) {
  const int b = gnssqctoolkit::SignalFrequency(stores.Satellite.system, entry.code) - 1;
  const AbsoluteMp* pair =
      ChoosePair(stores.Multipath.Pairs[b], stores.Multipath.Count[b], entry.code, block);
  const IodDetect* ionosphere =
      ChoosePair(stores.Ionosphere.Pairs[b], stores.Ionosphere.Count[b], entry.code, block);
  if (pair == nullptr) return;
  if (ionosphere != nullptr) entry.iod_slip_count = static_cast<std::uint32_t>(ionosphere->SlipTimes.Size());
  if (pair->Count > 0) {
    entry.mp_rms = std::sqrt(pair->SumOfSquares / static_cast<double>(pair->Count));
    entry.mp_count = static_cast<std::uint64_t>(pair->Count);
    entry.slip_count = pair->RestartTimes.Size();
  } else {
    entry.slip_count = static_cast<std::int32_t>(entry.iod_slip_count);
  }
  entry.obs_per_slip = ObservedPerSlip(entry);
}

void AbsorbEpochs(const code_qc_entry& sat, code_qc_entry& sum) {
  // A satellite that never observed the code leaves the epoch counts alone.
  if (sat.observed_epochs == 0) return;
  sum.expected_epochs += sat.expected_epochs;
  sum.observed_epochs += sat.observed_epochs;
  sum.completeness = CompletenessRatio(sum.observed_epochs, sum.expected_epochs);
}

void AbsorbMean(double value, std::uint32_t count, double& mean, std::uint32_t& mean_count) {
  const double all = static_cast<double>(mean_count) + static_cast<double>(count);
  mean = all > 0.0 ? (mean * mean_count + value * count) / all : 0.0;
  mean_count += count;
}

void AbsorbMultipath(const code_qc_entry& sat, code_qc_entry& sum) {
  const std::uint64_t count = sum.mp_count + sat.mp_count;
  sum.mp_rms = count == 0 ? 0.0
                          : std::sqrt((sum.mp_rms * sum.mp_rms * static_cast<double>(sum.mp_count) +
                                       sat.mp_rms * sat.mp_rms * static_cast<double>(sat.mp_count)) /
                                      static_cast<double>(count));
  sum.mp_count = count;
}

void AbsorbEntry(const code_qc_entry& sat, code_qc_entry& sum) {
  AbsorbEpochs(sat, sum);
  AbsorbMean(sat.snr, sat.snr_count, sum.snr, sum.snr_count);
  AbsorbMean(sat.snr_below30, sat.snr_count_below30, sum.snr_below30, sum.snr_count_below30);
  AbsorbMean(sat.snr_above30, sat.snr_count_above30, sum.snr_above30, sum.snr_count_above30);
  AbsorbMultipath(sat, sum);
  sum.iod_slip_count += sat.iod_slip_count;
  sum.slip_count = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum.slip_count) +
                                             static_cast<std::uint32_t>(sat.slip_count));
  sum.obs_per_slip = ObservedPerSlip(sum);
}

}  // namespace

void FillSatelliteBlock(const QcSysConfig& config, const SatelliteStores& stores, code_qc_block& block) {
  block.system = stores.Satellite.system;
  for (int b = 0; b < kBandSlots; ++b) {
    const int codes = std::min<int>(stores.Complete.CodeCount[b], kCodesPerSlot);
    for (int k = 0; k < codes && block.count < kEntriesPerBlock; ++k) {
      const ChannelCompleteObsList& channel = stores.Complete.Channels[b][k];
      if (channel.Code == 0 || channel.Flags.Count() == 0) continue;
      if (!IsCodeEnabled(config, stores.Satellite.system, channel.Code)) continue;
      FillCounts(stores, b, k, block.entries[block.count++]);
    }
  }
  for (int i = 0; i < block.count; ++i) FillMultipath(stores, block, block.entries[i]);
}

void StartSystemBlock(int system, const IList& codes, code_qc_block& block) {
  block.system = static_cast<std::uint8_t>(system);
  block.count = std::min(codes.Count(), kEntriesPerBlock);
  for (int i = 0; i < block.count; ++i) block.entries[i].code = static_cast<std::uint8_t>(codes.At(i));
}

void AbsorbSatellite(const code_qc_block& satellite, code_qc_block& system) {
  for (int i = 0; i < satellite.count; ++i) {
    for (int k = 0; k < system.count; ++k) {
      if (system.entries[k].code == satellite.entries[i].code) {
        AbsorbEntry(satellite.entries[i], system.entries[k]);
      }
    }
  }
}

IList RegroupCodes(const QcSysConfig& config, int system, const IList& codes) {
  IList regrouped;
  for (int slot = 1; slot <= kBandSlots; ++slot) {
    if (config.FreqEnable[slot - 1] == 0) continue;
    for (const std::int32_t code : codes) {
      const int band = gnssqctoolkit::SignalBand(system, code);
      if (ChannelSlot(system, band, BdsGeneration::kBoth) == slot) regrouped.Push(code);
    }
  }
  return regrouped;
}

}  // namespace orsolva
