// Runs too long for a micro-benchmark: a day at 1 Hz, a live feed, scaling.
//
// usage: bench_long_runs day [EPOCHS] | live [EPOCHS] | epochs [ROUNDS] | satellites [ROUNDS]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "bench/memory.h"
#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_bench {
namespace {

using orsolva_test::Process;
using orsolva_test::Results;
using orsolva_test::SkyOptions;
using orsolva_test::SkyStream;

double WallNow() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Processor time of this thread, unaffected by other work on the machine.
double Now() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

/// A run over a simulated sky; only the calls of the library are timed.
class TimedRun {
 public:
  explicit TimedRun(const SkyOptions& options) : stream_(options) {
    const double start = Now();
    process_.Initialise(stream_.Navigation(), orsolva_test::ConfigOf(options));
    Total = Now() - start;
  }

  /// Feeds the next `count` epochs as one batch. @return seconds of processor time
  double Feed(int count) {
    batch_.clear();
    for (int i = 0; i < count; ++i) batch_.push_back(stream_.Next());
    for (const ObsEpoch_QC_gbt& epoch : batch_) SatelliteEpochs += epoch.sat_num;
    const double wall = WallNow();
    const double start = Now();
    process_.Feed(batch_);
    const double seconds = Now() - start;
    LastWall = WallNow() - wall;
    Total += seconds;
    return seconds;
  }

  /// Gets both results. @return seconds
  double Finish() {
    const double start = Now();
    const Results results(process_);
    const double seconds = Now() - start;
    Total += seconds;
    return seconds;
  }

  double Total = 0.0;     ///< s of processor time in the library
  double LastWall = 0.0;  ///< wall time of the last batch, s
  std::int64_t SatelliteEpochs = 0;

 private:
  SkyStream stream_;
  Process process_;
  std::vector<ObsEpoch_QC_gbt> batch_;
};

SkyOptions Sky1Hz(int epochs) {
  SkyOptions options;
  options.Interval = 1.0;
  options.Epochs = epochs;
  options.MissingShare = 0.01;
  options.LowestElevation = 0.05;
  return options;
}

double Sum(const std::vector<double>& values, std::size_t first, std::size_t last) {
  double sum = 0.0;
  for (std::size_t i = first; i < last; ++i) sum += values[i];
  return sum;
}

/// A run at 1 Hz in batches of 2,880 epochs.
void RunDay(int epochs) {
  constexpr int kBatch = 2880;
  TimedRun run(Sky1Hz(epochs));
  const double before = ResidentMb();
  std::vector<double> batches;  // ns per satellite-epoch
  for (int at = 0; at < epochs; at += kBatch) {
    const std::int64_t seen = run.SatelliteEpochs;
    const double seconds = run.Feed(std::min(kBatch, epochs - at));
    batches.push_back(seconds * 1e9 / static_cast<double>(run.SatelliteEpochs - seen));
  }
  const double grown = ResidentMb() - before;
  const double results = run.Finish();
  std::printf("1 Hz, %d epochs, %.1f satellites, batches of %d\n", epochs,
              static_cast<double>(run.SatelliteEpochs) / epochs, kBatch);
  std::printf("  library %.2f s, results %.3f s, %.0f ns per satellite-epoch\n", run.Total, results,
              run.Total * 1e9 / static_cast<double>(run.SatelliteEpochs));
  std::printf("  ns per satellite-epoch by batch:");
  for (const double cost : batches) std::printf(" %.0f", cost);
  std::printf("\n  last batch over first batch %.2f\n", batches.back() / batches.front());
  std::printf("  memory: grown %.0f MB, peak of the process %.0f MB\n", grown, PeakMb());
}

void PrintPercentiles(const char* clock, std::vector<double> calls) {
  std::sort(calls.begin(), calls.end());
  const auto microseconds = [&](double share) {
    return calls[static_cast<std::size_t>(share * static_cast<double>(calls.size() - 1))] * 1e6;
  };
  std::printf("  call, %s time: median %.0f us, 99%% %.0f us, 99.9%% %.0f us, longest %.0f us\n", clock,
              microseconds(0.5), microseconds(0.99), microseconds(0.999), microseconds(1.0));
}

/// One epoch per batch, as from a receiver at 1 Hz.
void RunLive(int epochs) {
  TimedRun run(Sky1Hz(epochs));
  std::vector<double> calls, walls;
  calls.reserve(static_cast<std::size_t>(epochs));
  walls.reserve(static_cast<std::size_t>(epochs));
  std::vector<double> memory;
  for (int k = 0; k < epochs; ++k) {
    if (k % 3600 == 0) memory.push_back(ResidentMb());
    calls.push_back(run.Feed(1));
    walls.push_back(run.LastWall);
  }
  memory.push_back(ResidentMb());
  const std::size_t hour = std::min<std::size_t>(3600, calls.size());
  const double first = Sum(calls, 0, hour), last = Sum(calls, calls.size() - hour, calls.size());
  std::printf("live feed, %d epochs at 1 Hz, %.1f satellites\n", epochs,
              static_cast<double>(run.SatelliteEpochs) / epochs);
  PrintPercentiles("processor", calls);
  PrintPercentiles("wall", walls);
  std::printf("  last hour over first hour %.2f\n", last / first);
  std::printf("  memory: %.1f MB an hour, peak of the process %.0f MB; by hour",
              (memory.back() - memory.front()) / (static_cast<double>(epochs) / 3600.0), PeakMb());
  for (const double mb : memory) std::printf(" %.0f", mb);
  std::printf("\n");
}

/// Prints the cost of the fastest of several runs: other work on the machine can only add to it.
void PrintScaling(const char* what, int value, int rounds, const SkyOptions& options) {
  double best = 0.0;
  std::int64_t satellite_epochs = 0;
  for (int round = 0; round < rounds; ++round) {
    TimedRun run(options);
    for (int at = 0; at < options.Epochs; at += 120) run.Feed(120);
    run.Finish();
    if (round == 0 || run.Total < best) best = run.Total;
    satellite_epochs = run.SatelliteEpochs;
  }
  std::printf("  %s %6d: %8.1f ms, %6.0f ns per satellite-epoch\n", what, value, best * 1e3,
              best * 1e9 / static_cast<double>(satellite_epochs));
}

/// One hour to seven days of 30 s epochs.
void ScaleEpochs(int rounds) {
  for (const int hours : {1, 3, 6, 12, 24, 48, 96, 168}) {
    SkyOptions options = Sky1Hz(hours * 120);
    options.Interval = 30.0;
    PrintScaling("hours", hours, rounds, options);
  }
}

/// 8 to 60 satellites per epoch, including those below the horizon so that there are enough.
void ScaleSatellites(int rounds) {
  for (const int satellites : {8, 16, 24, 32, 40, 50, 60}) {
    SkyOptions options = Sky1Hz(2880);
    options.Interval = 30.0;
    options.LowestElevation = -0.5;
    options.MostSatellites = satellites;
    PrintScaling("satellites", satellites, rounds, options);
  }
}

int Run(int count, char** arguments) {
  const std::string what = count > 1 ? arguments[1] : "";
  const int told = count > 2 ? std::atoi(arguments[2]) : 0;
  const int epochs = told > 0 ? std::max(2, told) : 86400;
  const int rounds = told > 0 ? told : 3;
  if (what == "day") return RunDay(std::max(epochs, 5760)), 0;
  if (what == "live") return RunLive(epochs), 0;
  if (what == "epochs") return ScaleEpochs(rounds), 0;
  if (what == "satellites") return ScaleSatellites(rounds), 0;
  std::fprintf(
      stderr,
      "usage: bench_long_runs day [EPOCHS] | live [EPOCHS] | epochs [ROUNDS] | satellites [ROUNDS]\n");
  return 2;
}

}  // namespace
}  // namespace orsolva_bench

int main(int count, char** arguments) { return orsolva_bench::Run(count, arguments); }
