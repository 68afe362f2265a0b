// Process objects over the small sky of tests/support/sky.h, and the two ways to hand them epochs.
#ifndef ORSOLVA_TESTS_UNIT_QC_PROCESS_RUNS_H
#define ORSOLVA_TESTS_UNIT_QC_PROCESS_RUNS_H

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "qc/process.h"
#include "tests/support/sky.h"

namespace orsolva_test {

inline std::unique_ptr<orsolva::PostProcessGnssQc> Process(const config_qct& host) {
  auto process = std::make_unique<orsolva::PostProcessGnssQc>();
  orsolva::QcConfig config;
  config.ApplyDefaults();
  config.Overlay(host);
  process->Configure(config);
  process->SetCombination(host.combination_system);
  return process;
}

inline std::unique_ptr<orsolva::PostProcessGnssQc> Process(const config_qct& host,
                                                           const std::vector<GpsEph_gbt>& records) {
  auto process = Process(host);
  EXPECT_TRUE(process->LoadNavigationSet(sky::Navigation(records)));
  return process;
}

inline bool Ingested(orsolva::PostProcessGnssQc& process, const std::vector<ObsEpoch_QC_gbt>& epochs) {
  orsolva::BatchCodes codes;
  codes.Collect(sky::Batch(epochs));
  orsolva::BatchSummary summary;
  process.ResetBatch();
  return process.Ingest(sky::Batch(epochs), codes, summary);
}

inline GNSSQC_STATE Take(orsolva::PostProcessGnssQc& process, const std::vector<ObsEpoch_QC_gbt>& epochs) {
  return process.TakeBatch(sky::Batch(epochs));
}

inline config_qct Config(double interval) {
  config_qct config = sky::Config();
  config.interval = interval;
  return config;
}

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_UNIT_QC_PROCESS_RUNS_H
