// The library over a whole station-day, and its phases.
#include <benchmark/benchmark.h>

#include "bench/station_day.h"
#include "orsolva/detail.h"
#include "qc/process.h"

namespace orsolva_bench {
namespace {

using orsolva_test::Process;
using orsolva_test::Results;

/// From creation to both results, the whole day in one batch.
void StationDayOneBatch(benchmark::State& state) {
  const StationDay& day = Day();
  for (auto _ : state) {
    Process process;
    process.Initialise(day.Navigation, day.Config);
    process.Feed(day.Epochs);
    const Results results(process);
    benchmark::DoNotOptimize(results.Whole->duration);
  }
  state.SetItemsProcessed(state.iterations() * day.SatelliteEpochs());
}
BENCHMARK(StationDayOneBatch)->Unit(benchmark::kMillisecond);

/// The same in batches of range(0) epochs.
void StationDayBatches(benchmark::State& state) {
  const StationDay& day = Day();
  const auto size = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    Process process;
    process.Initialise(day.Navigation, day.Config);
    for (std::size_t at = 0; at < day.Epochs.size(); at += size) {
      process.Feed(day.Epochs.data() + at, static_cast<int>(std::min(size, day.Epochs.size() - at)));
    }
    const Results results(process);
    benchmark::DoNotOptimize(results.Whole->duration);
  }
  state.SetItemsProcessed(state.iterations() * day.SatelliteEpochs());
}
BENCHMARK(StationDayBatches)->Arg(1)->Arg(120)->Unit(benchmark::kMillisecond);

/// Creation and disposal of an unused handle.
void CreateAndDispose(benchmark::State& state) {
  for (auto _ : state) {
    Process process;
    benchmark::DoNotOptimize(process.Handle());
  }
}
BENCHMARK(CreateAndDispose)->Unit(benchmark::kMicrosecond);

/// Configuration and a day of navigation records.
void LoadDay(benchmark::State& state) {
  const StationDay& day = Day();
  for (auto _ : state) {
    Process process;
    process.Initialise(day.Navigation, day.Config);
    benchmark::DoNotOptimize(process.Handle());
  }
}
BENCHMARK(LoadDay)->Unit(benchmark::kMillisecond);

/// Ingesting the epochs, without measures.
void IngestDay(benchmark::State& state) {
  const StationDay& day = Day();
  for (auto _ : state) {
    orsolva::PostProcessGnssQc process;
    orsolva::QcConfig config;
    config.ApplyDefaults();
    config.Overlay(day.Config);
    process.Configure(config);
    orsolva::BatchCodes codes;
    orsolva::BatchSummary summary;
    const ObsBodyData_QC_gbt batch = {static_cast<int>(day.Epochs.size()), day.Epochs.data()};
    codes.Collect(batch);
    process.Ingest(batch, codes, summary);
    benchmark::DoNotOptimize(summary.EpochCount);
  }
}
BENCHMARK(IngestDay)->Unit(benchmark::kMillisecond);

/// Both results of a day already processed.
void BothResults(benchmark::State& state) {
  const StationDay& day = Day();
  Process process;
  process.Initialise(day.Navigation, day.Config);
  process.Feed(day.Epochs);
  for (auto _ : state) {
    const Results results(process);
    benchmark::DoNotOptimize(results.Whole->duration);
  }
}
BENCHMARK(BothResults)->Unit(benchmark::kMillisecond);

/// Counts what the run computed, for the costs per satellite-epoch and pair-epoch.
class Counter : public orsolva::QcDetailObserver {
 public:
  void OnSatelliteEpoch(const orsolva::SatelliteEpochDetail&) override { ++Satellites; }
  void OnPairEpoch(const orsolva::PairEpochDetail&) override { ++Pairs; }
  std::int64_t Satellites = 0;
  std::int64_t Pairs = 0;
};

/// The day once with a counting observer; the others are divided by its counters.
void StationDayObserved(benchmark::State& state) {
  const StationDay& day = Day();
  Counter counter;
  for (auto _ : state) {
    Process process;
    process.Initialise(day.Navigation, day.Config);
    counter = Counter();
    orsolva::SetDetailObserver(process.Handle(), &counter);
    process.Feed(day.Epochs);
  }
  state.counters["satellite_epochs"] = static_cast<double>(counter.Satellites);
  state.counters["pair_epochs"] = static_cast<double>(counter.Pairs);
}
BENCHMARK(StationDayObserved)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orsolva_bench
