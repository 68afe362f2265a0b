// What the analysis alone costs per satellite-step: a simulated sky of five systems, epoch by epoch.
#include <benchmark/benchmark.h>

#include <cstddef>

#include "host/analysis/station_analysis.h"
#include "tests/support/analysis_sky.h"
#include "tests/support/simulated_sky.h"

namespace {

using orsolva_host::analysis::StationAnalysis;

orsolva_test::AnalysisSky SkyOf(double interval_s, int epochs) {
  orsolva_test::SkyOptions options;
  options.Interval = interval_s;
  options.Epochs = epochs;
  options.LowestElevation = 0.2;  // rad; below, the sky's troposphere and that of the analysis disagree
  return orsolva_test::AnalysisSky(orsolva_test::SimulatedSky(options));
}

/// All epochs and the figures at the end. range(0) is the interval in seconds.
void Analysis(benchmark::State& state) {
  const orsolva_test::AnalysisSky sky = SkyOf(static_cast<double>(state.range(0)), 1800);
  std::size_t steps = 0;
  for (const auto& epoch : sky.Epochs) steps += epoch.satellites.size();
  for (auto _ : state) {
    StationAnalysis analysis(sky.Options, sky.Records);
    for (const auto& epoch : sky.Epochs) analysis.Add(epoch);
    analysis.Finish();
    benchmark::DoNotOptimize(analysis.Result());
  }
  state.counters["per_satellite_step"] =
      benchmark::Counter(static_cast<double>(steps),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Analysis)->Arg(1)->Arg(30)->Unit(benchmark::kMillisecond);

}  // namespace
