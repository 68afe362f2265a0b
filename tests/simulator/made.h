// Short ways to make scenarios and their epochs.
#ifndef ORSOLVA_TESTS_SIMULATE_MADE_H
#define ORSOLVA_TESTS_SIMULATE_MADE_H

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/rinex/satellite_names.h"
#include "host/rinex/signal_codes.h"
#include "host/simulator/scenario.h"
#include "host/simulator/simulation.h"
#include "tests/support/text_file.h"

namespace orsolva_test {

/// A place from which all five systems are seen.
inline constexpr std::array<double, 3> kEastAsia_m = {-3024831.536, 4928986.861, 2681262.589};

inline orsolva_host::Scenario ScenarioOf(double hours, double interval_s,
                                         const std::string& systems = "GREJC") {
  orsolva_host::Scenario scenario;
  scenario.hours = hours;
  scenario.interval_s = interval_s;
  scenario.systems = systems;
  scenario.receiver.position_m = kEastAsia_m;
  return scenario;
}

inline std::vector<ObsEpoch_QC_gbt> EpochsOf(orsolva_host::Simulation& simulation) {
  std::vector<ObsEpoch_QC_gbt> epochs;
  simulation.NextBatch(epochs, 100000);
  return epochs;
}

inline bool SameBits(const ObsEpoch_QC_gbt& a, const ObsEpoch_QC_gbt& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

/// nullptr when the satellite is not in the epoch.
inline const Satellite_gbt* Find(const ObsEpoch_QC_gbt& epoch, char system, int number) {
  const int code = orsolva_host::kSystemTable[orsolva_host::SystemSlot(system)].code;
  for (std::uint32_t i = 0; i < epoch.sat_num; ++i) {
    if (epoch.sats[i].sys == code && epoch.sats[i].prn == number) return &epoch.sats[i];
  }
  return nullptr;
}

/// nullptr when the signal, such as "1C", is not in the epoch.
inline const Signal_QC_gbt* Find(const ObsEpoch_QC_gbt& epoch, char system, int number,
                                 const std::string& name) {
  const Satellite_gbt* satellite = Find(epoch, system, number);
  if (!satellite) return nullptr;
  for (std::uint32_t i = 0; i < satellite->signal_num; ++i) {
    if (orsolva_host::SignalName(satellite->sys, satellite->signals[i].code) == name) {
      return &satellite->signals[i];
    }
  }
  return nullptr;
}

/// A folder of the running test, gone at its end.
class TestFolder {
 public:
  explicit TestFolder(const std::string& name)
      : path_(std::filesystem::temp_directory_path() / ("orsolva_" + name + "_" + std::to_string(getpid()))) {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  std::string Path(const std::string& name = "") const {
    return (name.empty() ? path_ : path_ / name).string();
  }
  /// Names of the files inside, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_SIMULATE_MADE_H
