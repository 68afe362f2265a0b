#include "measures/channel_combinations.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "toolkit/signals.h"
#include "toolkit/trace.h"

namespace orsolva {
namespace {

using gnssqctoolkit::IList;
using CodesOfBands = std::array<std::vector<std::uint32_t>, kBandSlots>;

// Which bands fill which slot of a record, and which band flags the record governs.
struct BandPlan {
  int system;
  int bands[kBandSlots][2];  // 0 = none
  unsigned governed;         // flags that need codes to stay set, bit = slot
  unsigned cleared;          // flags that automatic detection clears before it sets
};

constexpr unsigned kFiveFlags = 0x1f;
constexpr unsigned kSixFlags = 0x3f;

constexpr BandPlan kGpsPlan = {gnssqctoolkit::kGps, {{1}, {2}, {5}}, 0x07, kFiveFlags};
constexpr BandPlan kGlonassPlan = {gnssqctoolkit::kGlonass, {{1}, {2}}, 0x03, kFiveFlags};
constexpr BandPlan kBds2Plan = {gnssqctoolkit::kBds, {{21}, {27}, {6}}, 0x07, kSixFlags};
constexpr BandPlan kBds3Plan = {
    gnssqctoolkit::kBds, {{21}, {}, {6, 36}, {1}, {5}, {7}}, kSixFlags, kSixFlags};
constexpr BandPlan kGeostationaryPlan = {gnssqctoolkit::kBds, {{21}, {}, {6}}, 0x05, 0x05};
constexpr BandPlan kGalileoPlan = {gnssqctoolkit::kGalileo, {{1}, {5}, {7}, {8}, {6}}, 0x1f, kFiveFlags};
constexpr BandPlan kQzssPlan = {gnssqctoolkit::kQzss, {{1}, {2}, {5}, {6}}, 0x0f, kFiveFlags};

int SlotOfBand(const BandPlan& plan, int band) {
  if (band == 0) return -1;
  for (int slot = 0; slot < kBandSlots; ++slot) {
    if (plan.bands[slot][0] == band || plan.bands[slot][1] == band) return slot;
  }
  return -1;
}

CodesOfBands CollectCodes(const BandPlan& plan, const QcSysConfig& config, const IList& observed) {
  CodesOfBands codes;
  for (std::int32_t code : observed) {
    if (config.Extra != 0 && !config.CodeList.Contains(code)) continue;
    const int slot = SlotOfBand(plan, gnssqctoolkit::SignalBand(plan.system, code));
    if (slot >= 0) codes[static_cast<std::size_t>(slot)].push_back(static_cast<std::uint32_t>(code));
  }
  return codes;
}

// Narrows the band flags to the bands with codes and empties the lists of disabled bands.
// Returns the number of bands in use.
int NarrowBands(const BandPlan& plan, bool automatic, QcSysConfig& config, CodesOfBands& codes) {
  int in_use = 0;
  for (std::size_t slot = 0; slot < kBandSlots; ++slot) {
    const unsigned bit = 1u << slot;
    std::uint8_t& flag = config.FreqEnable[slot];
    if (automatic && (plan.cleared & bit) != 0) flag = 0;
    if ((plan.governed & bit) == 0) continue;
    if (automatic && !codes[slot].empty()) flag = 1;
    if (codes[slot].empty()) flag = 0;
    if (flag == 0) codes[slot].clear();
    if (flag != 0) ++in_use;
  }
  if (config.Select != 0 || automatic) config.FreqNum = static_cast<std::uint8_t>(in_use);
  return in_use;
}

void PairSlots(const CodesOfBands& codes, std::size_t a, std::size_t b, MpIodChannelCombination& record) {
  record.Count[a] = static_cast<std::uint8_t>(PairCodes(codes[a], codes[b], record.Pairs[a]));
}

// The first band with the second, every other band with the first, whether they have codes or not.
void PairWithFirst(const CodesOfBands& codes, MpIodChannelCombination& record) {
  PairSlots(codes, 0, 1, record);
  for (std::size_t slot = 1; slot < kBandSlots; ++slot) PairSlots(codes, slot, 0, record);
}

// Every band in use with the lowest other slot in use.
void PairWithLowestOther(const CodesOfBands& codes, MpIodChannelCombination& record) {
  for (std::size_t slot = 0; slot < kBandSlots; ++slot) {
    std::size_t other = 0;
    while (other < kBandSlots && (other == slot || codes[other].empty())) ++other;
    if (other < kBandSlots) PairSlots(codes, slot, other, record);
  }
}

// Pairs one record. In two-frequency mode records with up to `lowest_other_up_to` bands pair each band with
// the lowest other one in use, all the rest pair with the first band of the system. Returns the number of
// bands in use, -1 when codes have to be chosen but none is.
int BuildRecord(const BandPlan& plan, int lowest_other_up_to, bool automatic, QcSysConfig& config,
                const IList& observed, MpIodChannelCombination& record) {
  record = MpIodChannelCombination();
  record.System = static_cast<std::uint8_t>(plan.system);
  if (config.Extra != 0 && config.CodeList.Count() == 0) return -1;
  CodesOfBands codes = CollectCodes(plan, config, observed);
  const int in_use = NarrowBands(plan, automatic, config, codes);
  if (in_use < 2) return in_use;
  if (config.Select != 0 && in_use <= lowest_other_up_to) {
    PairWithLowestOther(codes, record);
  } else {
    PairWithFirst(codes, record);
  }
  return in_use;
}

int BuildBds3Record(const BandPlan& plan, bool automatic, QcSysConfig& config, const IList& observed,
                    MpIodChannelCombination& record) {
  record = MpIodChannelCombination();
  record.System = static_cast<std::uint8_t>(plan.system);
  if (config.Extra != 0 && config.CodeList.Count() == 0) return -1;
  CodesOfBands codes = CollectCodes(plan, config, observed);
  const int in_use = NarrowBands(plan, automatic, config, codes);
  if (in_use >= 2) PairWithLowestOther(codes, record);
  return in_use;
}

void WarnBdsBands(int in_use) {
  if (in_use >= 0 && in_use < 2) {
    gnssqctoolkit::Trace(2, "error; bds system not enough frequency number!\n");
  }
}

}  // namespace

int PairCodes(const std::vector<std::uint32_t>& list_a, const std::vector<std::uint32_t>& list_b,
              ChannelComb* pairs) {
  int count = 0;
  for (std::uint32_t a : list_a) {
    for (std::uint32_t b : list_b) {
      if (count >= kPairsPerBand) return count;
      pairs[count].Code = a;
      pairs[count].Partner = b;
      ++count;
    }
  }
  return count;
}

int MpWindowLength(double interval) {
  if (interval <= 5.0) return 50;
  if (interval > 5.0 && interval <= 30.0) return static_cast<int>(300.0 / interval);
  return 10;
}

std::array<BandsInUse, kSystemSlots> ChannelCombinations::Build(const QcConfig& config,
                                                                const IList* code_lists) {
  const bool automatic = config.AutoDetectFreq != 0;
  const IList& bds_codes = code_lists[2];
  QcConfig narrowed = config;
  QcSysConfig* sys = narrowed.Sys;
  BuildRecord(kGpsPlan, 2, automatic, sys[kSlotGps], code_lists[0], Systems[kSlotGps]);
  BuildRecord(kGlonassPlan, 2, automatic, sys[kSlotGlonass], code_lists[1], Systems[kSlotGlonass]);
  WarnBdsBands(BuildRecord(kBds2Plan, 2, automatic, sys[kSlotBds], bds_codes, Systems[kSlotBds]));
  WarnBdsBands(BuildBds3Record(kGeostationaryPlan, automatic, sys[kSlotBd3], bds_codes, Bds3Geostationary));
  WarnBdsBands(BuildBds3Record(kBds3Plan, automatic, sys[kSlotBd3], bds_codes, Bds3));
  if (BuildRecord(kGalileoPlan, 3, automatic, sys[kSlotGalileo], code_lists[3], Systems[kSlotGalileo]) < 0) {
    gnssqctoolkit::Trace(2, "error; no choose galileo system qc code num!\n");
  }
  BuildRecord(kQzssPlan, 3, automatic, sys[kSlotQzss], code_lists[5], Systems[kSlotQzss]);
  std::array<BandsInUse, kSystemSlots> bands;
  for (std::size_t slot = 0; slot < kSystemSlots; ++slot) {
    std::copy_n(sys[slot].FreqEnable, kBandSlots, bands[slot].FreqEnable);
    bands[slot].FreqNum = sys[slot].FreqNum;
  }
  return bands;
}

const MpIodChannelCombination* ChannelCombinations::ForSatellite(
    const gnssqctoolkit::SatelliteId& satellite) const {
  switch (satellite.system) {
    case gnssqctoolkit::kGps:
      return &Systems[kSlotGps];
    case gnssqctoolkit::kGlonass:
      return &Systems[kSlotGlonass];
    case gnssqctoolkit::kGalileo:
      return &Systems[kSlotGalileo];
    case gnssqctoolkit::kQzss:
      return &Systems[kSlotQzss];
    case gnssqctoolkit::kBds:
      break;
    default:
      return nullptr;
  }
  if (satellite.prn < gnssqctoolkit::kFirstBds3) return &Systems[kSlotBds];
  return gnssqctoolkit::BdsOrbitClass(satellite.prn) == 0 ? &Bds3Geostationary : &Bds3;
}

}  // namespace orsolva
