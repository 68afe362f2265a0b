// The station-day of the benchmarks: a day of 30 s epochs of five systems, the records in memory.
#ifndef ORSOLVA_BENCH_STATION_DAY_H
#define ORSOLVA_BENCH_STATION_DAY_H

#include <memory>
#include <vector>

#include "tests/support/reference_case.h"
#include "tests/support/run.h"
#include "tests/support/shared_folder.h"
#include "tests/support/simulated_sky.h"

namespace orsolva_bench {

struct StationDay {
  config_qct Config{};
  orsolva_test::NavigationSet Navigation;
  std::vector<ObsEpoch_QC_gbt> Epochs;

  /// Satellite-epochs: satellites summed over all epochs.
  std::int64_t SatelliteEpochs() const {
    std::int64_t sum = 0;
    for (const ObsEpoch_QC_gbt& epoch : Epochs) sum += epoch.sat_num;
    return sum;
  }
};

/// The day of a real station if the shared folder has it, otherwise a simulated one.
inline const StationDay& Day() {
  static const StationDay day = [] {
    const auto folder = orsolva_test::SharedFolder() / "reference" / "whole-station-day";
    if (std::filesystem::exists(folder / "case.json")) {
      orsolva_test::ReferenceCase reference(folder);
      return StationDay{reference.Config, std::move(reference.Navigation), std::move(reference.Epochs)};
    }
    orsolva_test::SkyOptions options;
    options.Epochs = 2880;
    options.MissingShare = 0.02;
    orsolva_test::SimulatedSky sky(options);
    return StationDay{sky.Config(), std::move(sky.Navigation), std::move(sky.Epochs)};
  }();
  return day;
}

}  // namespace orsolva_bench

#endif  // ORSOLVA_BENCH_STATION_DAY_H
