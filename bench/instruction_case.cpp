// Small fixed cases whose instructions are counted by callgrind: bench/check_instructions.py runs them.
//
// usage: instruction_case NAME
#include <cstdio>
#include <string>

#ifdef ORSOLVA_HAS_ANALYSIS
#include "tests/support/analysis_sky.h"
#endif
#include "tests/support/run.h"
#include "tests/support/simulated_sky.h"

namespace {

using orsolva_test::Process;
using orsolva_test::Results;
using orsolva_test::SimulatedSky;

struct Case {
  const char* Name;
  double Interval;  // s
  int Epochs;
  int Batch;  // epochs per call
  bool PositionGiven;
};

// The two spans differ only in length: their costs per satellite-epoch are compared.
constexpr Case kCases[] = {
    {"empty", 30.0, 1, 120, true},
    {"hour-30s", 30.0, 120, 120, true},
    {"live-1s", 1.0, 120, 1, true},
    {"computed-position", 30.0, 120, 120, false},
    {"six-hours-120s", 120.0, 180, 30, true},
    {"two-days-120s", 120.0, 1440, 30, true},
};

// The analysis takes epochs one at a time.
constexpr const char* kAnalysisCase = "analysis-hour-30s";
constexpr const char* kAnalysisWithoutRecords = "analysis-no-navigation";
// Library and analysis over as many epochs in a row, and over one in fifty of a span fifty times as long.
constexpr const char* kWhole = "whole-1s";
constexpr const char* kHoles = "holes-1s";
constexpr int kOneIn = 50;

orsolva_test::SkyOptions Options(const Case& chosen) {
  orsolva_test::SkyOptions options;
  options.Interval = chosen.Interval;
  options.Epochs = chosen.Epochs;
  options.MissingShare = 0.02;
  return options;
}

/// Counting starts and ends with this function; the script refers to it by name.
/// @param batch  epochs per call
extern "C" __attribute__((noinline)) void CountedRun(const SimulatedSky& sky, const config_qct& config,
                                                     int batch) {
  Process process;
  process.Initialise(sky.Navigation, config);
  const int count = static_cast<int>(sky.Epochs.size());
  for (int at = 0; at < count; at += batch) {
    process.Feed(sky.Epochs.data() + at, count - at < batch ? count - at : batch);
  }
  const Results results(process);
  std::printf("%u epochs observed\n", static_cast<unsigned>(results.Whole->sys[0].observed_epochs));
}

#ifdef ORSOLVA_HAS_ANALYSIS
/// Counted as CountedRun is: the script names both by how they begin.
extern "C" __attribute__((noinline)) void CountedRunOfAnalysis(const orsolva_test::AnalysisSky& sky,
                                                               bool with_records) {
  orsolva_host::analysis::StationAnalysis analysis(
      sky.Options, with_records ? sky.Records : orsolva_host::BroadcastRecords());
  for (const orsolva_host::ObservationEpoch& epoch : sky.Epochs) analysis.Add(epoch);
  analysis.Finish();
  std::printf("%zu events\n", analysis.TakeEvents().size());
  std::printf("%zu signals\n", analysis.Result().signals.size());
}

/// @param spacing_s  of the epochs; the nominal interval given to both is one second
void RunBoth(double spacing_s) {
  orsolva_test::SkyOptions options;
  options.LowestElevation = 0.2;
  options.Interval = spacing_s;
  options.Epochs = 300;
  const SimulatedSky sky(options);
  orsolva_test::AnalysisSky analysis_sky(sky);
  analysis_sky.Options.detector.interval_s = 1;
  config_qct config = sky.Config();
  config.interval = 1;
  std::size_t satellite_epochs = 0;
  for (const orsolva_host::ObservationEpoch& epoch : analysis_sky.Epochs)
    satellite_epochs += epoch.satellites.size();
  std::printf("%zu satellite-epochs\n", satellite_epochs);
  CountedRun(sky, config, options.Epochs);
  CountedRunOfAnalysis(analysis_sky, true);
}

/// An hour from 11 degrees up, where the sky's troposphere and that of the analysis agree.
void RunAnalysis(bool with_records) {
  orsolva_test::SkyOptions options;
  options.LowestElevation = 0.2;
  options.MissingShare = 0.02;
  const orsolva_test::AnalysisSky sky{SimulatedSky(options)};
  std::size_t satellite_epochs = 0;
  for (const orsolva_host::ObservationEpoch& epoch : sky.Epochs) satellite_epochs += epoch.satellites.size();
  std::printf("%zu satellite-epochs\n", satellite_epochs);
  CountedRunOfAnalysis(sky, with_records);
}
#endif

}  // namespace

int main(int count, char** arguments) {
  const std::string name = count > 1 ? arguments[1] : "";
#ifdef ORSOLVA_HAS_ANALYSIS
  if (name == kAnalysisCase || name == kAnalysisWithoutRecords) {
    RunAnalysis(name == kAnalysisCase);
    return 0;
  }
  if (name == kWhole || name == kHoles) {
    RunBoth(name == kWhole ? 1 : kOneIn);
    return 0;
  }
#endif
  for (const Case& chosen : kCases) {
    if (name != chosen.Name) continue;
    const SimulatedSky sky(Options(chosen));
    config_qct config = sky.Config();
    config.enable_position = chosen.PositionGiven ? 1 : 0;
    long satellite_epochs = 0;
    for (const ObsEpoch_QC_gbt& epoch : sky.Epochs) satellite_epochs += epoch.sat_num;
    std::printf("%ld satellite-epochs\n", satellite_epochs);
    CountedRun(sky, config, chosen.Batch);
    return 0;
  }
  std::fprintf(stderr, "usage: instruction_case NAME; names:");
  for (const Case& one : kCases) std::fprintf(stderr, " %s", one.Name);
  std::fprintf(stderr, " %s %s %s %s\n", kAnalysisCase, kAnalysisWithoutRecords, kWhole, kHoles);
  return 2;
}
