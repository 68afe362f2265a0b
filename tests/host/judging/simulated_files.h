// A simulated hour in a folder, made once per program.
#ifndef ORSOLVA_TESTS_HOST_JUDGING_SIMULATED_FILES_H
#define ORSOLVA_TESTS_HOST_JUDGING_SIMULATED_FILES_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/judging/settings.h"
#include "host/simulator/file_set.h"
#include "host/simulator/scenario.h"
#include "tests/host/folder.h"

namespace orsolva_test {

inline orsolva_host::Scenario SimulatedHour() {
  orsolva_host::Scenario scenario;
  scenario.hours = 1;
  scenario.systems = "GE";
  return scenario;
}

/// The header's position spares the computation of one.
inline orsolva_host::JudgingSettings SettingsOfSimulatedHour() {
  orsolva_host::JudgingSettings settings;
  settings.systems = "GE";
  settings.position.source = orsolva_host::PositionSource::kHeader;
  return settings;
}

/// "a.rnx" and "b.rnx" hold the simulated hour, "broken.rnx" no observations, "nav.rnx" the broadcast
/// records.
class SimulatedFiles {
 public:
  SimulatedFiles() {
    namespace fs = std::filesystem;
    const auto names = orsolva_host::FileSetOptions{folder_.Path(), false, false};
    const orsolva_host::FileSet files = orsolva_host::FileNames(SimulatedHour(), names);
    orsolva_host::WriteFileSet(SimulatedHour(), names, [](std::uint64_t, std::uint64_t) {});
    fs::copy_file(files.observations, Path("b.rnx"));
    fs::rename(files.observations, Path("a.rnx"));
    fs::rename(files.navigation, Path("nav.rnx"));
    std::ofstream(Path("broken.rnx")) << "nothing of RINEX\n";
  }
  std::string Path(const std::string& name) const { return folder_ / name; }
  /// The hour of "a.rnx" without ten epochs in the middle: every satellite has a gap of 330 s.
  std::string WithAHole() const {
    std::ifstream whole(Path("a.rnx"));
    std::ofstream holed(Path("holed.rnx"));
    int epochs = 0;
    for (std::string line; std::getline(whole, line);) {
      if (line[0] == '>') ++epochs;
      const bool skipped = epochs > 60 && epochs <= 70;
      if (!skipped || line[0] == ' ') holed << line << '\n';
    }
    return Path("holed.rnx");
  }

 private:
  Folder folder_;
};

}  // namespace orsolva_test

#endif  // ORSOLVA_TESTS_HOST_JUDGING_SIMULATED_FILES_H
