#include "results/complete_snr.h"

#include <memory>

#include "results/slot_tables.h"
#include "toolkit/signals.h"

namespace orsolva {
namespace {

using gnssqctoolkit::IList;
using gnssqctoolkit::kMaxSatellites;
using gnssqctoolkit::SatelliteFromIndex;
using gnssqctoolkit::SatelliteId;

bool IsNumber(int number) { return number >= 1 && number <= kMaxSatellites; }

/// Gives every code of the list a channel.
///
/// Kept for compatibility: the walk ends as soon as any slot is full, so codes of other bands behind it in
/// the list get no channel.
void BuildTemplate(const SatelliteId& satellite, const IList& codes, SatCompleteObsList& complete,
                   SnrSatList& snr) {
  const BdsGeneration generation = BdsGenerationOf(satellite.prn);
  for (const std::int32_t code : codes) {
    const int band = gnssqctoolkit::SignalBand(satellite.system, code);
    const int slot = ChannelSlot(satellite.system, band, generation);
    if (slot == 0) continue;
    std::uint8_t& count = complete.CodeCount[slot - 1];
    complete.Channels[slot - 1][count].Code = static_cast<std::uint8_t>(code);
    snr.Channels[slot - 1][count].Code = static_cast<std::uint8_t>(code);
    snr.CodeCount[slot - 1] = ++count;
    if (count >= kCodesPerSlot) return;
  }
}

/// Leaves the channels that hold a code as constructed; assigning empty ones would keep the memory of their
/// lists.
template <class SatLists>
void ReleaseChannels(SatLists& sat) noexcept {
  for (int slot = 0; slot < kBandSlots; ++slot) {
    for (int i = 0; i < sat.CodeCount[slot]; ++i) {
      std::destroy_at(&sat.Channels[slot][i]);
      std::construct_at(&sat.Channels[slot][i]);
    }
    sat.CodeCount[slot] = 0;
  }
}

}  // namespace

void CompleteSnr::BuildTemplates(const IList* code_lists) {
  if (Ready) return;
  for (int number = 1; number <= kMaxSatellites; ++number) {
    SatelliteId satellite;
    if (!SatelliteFromIndex(number, satellite)) continue;
    const int list = CodeListSlotOf(satellite.system);
    if (list < 0) continue;
    BuildTemplate(satellite, code_lists[list], CompleteSats[number - 1], SnrSats[number - 1]);
  }
  Ready = true;
}

void CompleteSnr::AddEpoch(int number, const QcEpochData& epoch, bool above_cutoff, bool above_30) {
  if (!IsNumber(number)) return;
  if (above_cutoff) CompleteSats[number - 1].AddEpoch(epoch);
  SnrSats[number - 1].AddEpoch(epoch, above_cutoff, above_30);
}

void CompleteSnr::AddExpected(int number, std::uint64_t epochs) {
  if (IsNumber(number)) CompleteSats[number - 1].ExpectedEpochs += epochs;
}

void CompleteSnr::Release() {
  for (SatCompleteObsList& sat : CompleteSats) {
    ReleaseChannels(sat);
    sat.ExpectedEpochs = 0;
  }
  for (SnrSatList& sat : SnrSats) ReleaseChannels(sat);
  Ready = false;
}

}  // namespace orsolva
