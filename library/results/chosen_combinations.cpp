#include "results/chosen_combinations.h"

#include <memory>

#include "results/result_analysis.h"
#include "toolkit/signals.h"

namespace orsolva {
namespace {

using gnssqctoolkit::IList;
using gnssqctoolkit::kMaxSatellites;
using gnssqctoolkit::SatelliteFromIndex;
using gnssqctoolkit::SatelliteId;

void TakeCodes(int system, const IList& codes, ChosenCombination& chosen) {
  for (const std::int32_t code : codes) {
    const int slot = gnssqctoolkit::SignalFrequency(system, code);
    if (slot >= 1 && slot <= kBandSlots) chosen.codes[slot - 1] = static_cast<std::uint8_t>(code);
  }
}

void TakePairs(const QcResultCore& core, ChosenCombination& chosen) {
  for (int b = 0; b < kBandSlots; ++b) {
    chosen.mp_codes[b] = core.Mp[b].Code1;
    chosen.mp_partners[b] = core.Mp[b].Code2;
  }
}

/// The combination of a satellite whose system slot has chosen number `best`.
ChosenCombination OfSatellite(const QcResultAnalysis& analysis, const SatelliteStores& stores,
                              const QcConfig& config, const QcResult& result, int best) {
  ChosenCombination chosen;
  const SatelliteCombinations own = analysis.CombinationsOf(stores, config, result);
  if (own.Combinations.Count == 0) return chosen;
  const SatelliteId& satellite = stores.Satellite;
  const QcResultCore* figures = result.All[SystemSlotOf(satellite.system)].PerSat[satellite.prn - 1];
  const int index = SatelliteChoice(figures, best);
  TakeCodes(satellite.system, own.Combinations.Lists[index], chosen);
  TakePairs(figures[index], chosen);
  return chosen;
}

}  // namespace

ChosenCombinations::ChosenCombinations(const ResultSources& sources) {
  const QcResultAnalysis analysis;
  const auto result = std::make_unique<QcResult>();
  QcResultCore total;
  analysis.Analyse(sources, *result, total);
  int best[kSystemSlots];
  for (int s = 0; s < kSystemSlots; ++s) {
    best[s] = BestCombination(result->All[s]);
    if (best[s] < 0) continue;
    TakeCodes(result->Optimal[s].System, result->Optimal[s].Codes, Systems[s]);
    TakePairs(result->Optimal[s].Sys, Systems[s]);
  }
  // The newer BDS satellites are pooled with the older ones by the number of the combination.
  Systems[kSlotBd3] = ChosenCombination();
  const QcCodeCombination& newer = result->All[kSlotBd3].Combinations;
  if (best[kSlotBds] >= 0 && best[kSlotBds] < newer.Count) {
    TakeCodes(gnssqctoolkit::kBds, newer.Lists[best[kSlotBds]], Systems[kSlotBd3]);
  }
  const QcConfig config = analysis.ResultConfig(sources.Config);
  for (int number = 1; number <= kMaxSatellites; ++number) {
    SatelliteId satellite;
    if (!SatelliteFromIndex(number, satellite)) continue;
    const int slot = SystemSlotOf(satellite.system);
    if (slot < 0 || best[slot] < 0) continue;
    Satellites[number - 1] =
        OfSatellite(analysis, StoresOf(sources, satellite, number), config, *result, best[slot]);
  }
  for (int b = 0; b < kBandSlots; ++b) Total.codes[b] = total.Snr[b].Code;
  TakePairs(total, Total);
}

}  // namespace orsolva
