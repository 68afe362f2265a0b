// Single operations: orbits, selection of records, a multipath step, flags.
#include <benchmark/benchmark.h>

#include "bench/station_day.h"
#include "measures/multipath.h"
#include "navigation/ephemerides/ephemeris.h"
#include "navigation/orbits/geometry.h"
#include "qc/navigation_loading.h"
#include "results/completeness.h"

namespace orsolva_bench {
namespace {

using gnssqctoolkit::AbsoluteTime;
using gnssqctoolkit::SatelliteId;

struct LoadedSky {
  orsolva_test::SkyOptions Options;
  gnssqctoolkit::Ephemeris Stores;

  LoadedSky() {
    Options.Epochs = 2880;
    const orsolva_test::SkyStream sky(Options);
    std::uint8_t usable[gnssqctoolkit::kMaxSatellites] = {};
    orsolva::LoadNavigation(sky.Navigation().Body(), Stores, usable);
  }
  AbsoluteTime Time(std::int64_t k) const { return {Options.Start + 30 * (k % 2880), 0.0}; }
};

LoadedSky& Sky() {
  static LoadedSky sky;
  return sky;
}

/// Position and clock of one satellite for the epochs of a day in turn; range(0) is the system.
void Orbit(benchmark::State& state) {
  const LoadedSky& sky = Sky();
  const SatelliteId satellite{static_cast<std::uint8_t>(state.range(0)), 11};
  gnssqctoolkit::SatelliteState found;
  std::int64_t k = 0;
  for (auto _ : state) {
    gnssqctoolkit::EphemerisChoice choice;
    sky.Stores.Select(satellite, sky.Time(k), gnssqctoolkit::kDefaultMaxAges, choice);
    sky.Stores.SatellitePosition(choice, sky.Time(k++), 2.3e7, found);
    benchmark::DoNotOptimize(found);
  }
}
BENCHMARK(Orbit)->Arg(gnssqctoolkit::kGps)->Arg(gnssqctoolkit::kGlonass)->Arg(gnssqctoolkit::kBds);

/// The record of one satellite for the epochs of a day in turn.
void Selection(benchmark::State& state) {
  const LoadedSky& sky = Sky();
  const SatelliteId satellite{static_cast<std::uint8_t>(state.range(0)), 11};
  std::int64_t k = 0;
  for (auto _ : state) {
    gnssqctoolkit::EphemerisChoice choice;
    sky.Stores.Select(satellite, sky.Time(k++), gnssqctoolkit::kDefaultMaxAges, choice);
    benchmark::DoNotOptimize(choice);
  }
}
BENCHMARK(Selection)->Arg(gnssqctoolkit::kGps)->Arg(gnssqctoolkit::kGlonass)->Arg(gnssqctoolkit::kBds);

/// One epoch of one pair; range(0) is the averaging window in epochs.
void MultipathOneStep(benchmark::State& state) {
  orsolva::AbsoluteMp pair;
  pair.WindowLength = static_cast<int>(state.range(0));
  const std::int32_t channels[32] = {};
  const auto signals = orsolva::MakePairSignals({gnssqctoolkit::kGps, 7}, 1, 16, channels);
  std::int64_t k = 0;
  for (auto _ : state) {
    const double range = 2.3e7 + 0.3 * static_cast<double>(k % 7);
    const orsolva::CodeObservation code = {1, range / signals.CodeWavelength, range};
    const orsolva::CodeObservation partner = {16, range / signals.PartnerWavelength, range};
    orsolva::UpdateMultipath(pair, signals, {1593000000 + k++, 0.0}, code, partner, false, true, nullptr);
    benchmark::DoNotOptimize(pair.SumOfSquares);
  }
}
BENCHMARK(MultipathOneStep)->Arg(10)->Arg(50);

/// Availability flags of one satellite and epoch with four codes.
void Flags(benchmark::State& state) {
  orsolva::QcEpochData epoch;
  orsolva::SatCompleteObsList list;
  const std::uint8_t codes[] = {62, 66, 69, 76};
  for (int b = 0; b < 4; ++b) {
    epoch.Slots[b].Count = 1;
    Signal_QC_gbt& signal = epoch.Slots[b].Signals[0];
    signal = Signal_QC_gbt{};
    signal.code = codes[b];
    signal.pseudorange = 2.3e7;
    signal.phase = 1.2e8;
    signal.snr = 45.0F;
    list.CodeCount[b] = 1;
    list.Channels[b][0].Code = codes[b];
  }
  std::int64_t k = 0;
  for (auto _ : state) {
    list.AddEpoch(epoch);
    if (++k % 86400 != 0) continue;
    for (auto& slot : list.Channels) slot[0].Flags.Clear();
  }
}
BENCHMARK(Flags);

}  // namespace
}  // namespace orsolva_bench
